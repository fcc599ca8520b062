#include "xml/xml_document.h"

#include <strings.h>

#include <cstring>
#include <pugixml.hpp>

#include "core/byte_buffer.h"
#include "core/memory_hooks.h"
#include "core/value_string.h"
#include "xml/file_stream.h"
#include "xml/xml_namespace_scope.h"

namespace {

// Comments and processing instructions become records too; whitespace-only text between elements
// yields none.
constexpr unsigned kParseFlags = pugi::parse_default | pugi::parse_comments | pugi::parse_pi;
constexpr u32 kReadStep = 64 * 1024;

// Line and position, both from 1, of a byte offset into the parsed text.
void LineAndPosition(const CByteBuffer& text, ptrdiff_t offset, u32& line, u32& position) {
  line = 1;
  position = 1;
  const u32 end = offset < 0 ? 0 : offset > ptrdiff_t(text.Size()) ? text.Size() : u32(offset);
  for (u32 i = 0; i < end; ++i) {
    if (text.Data()[i] == '\n') {
      ++line;
      position = 1;
    } else {
      ++position;
    }
  }
}

// The whole stream, read in steps; false when memory is refused.
bool ReadWhole(IStream* stream, u64 sizeHint, CByteBuffer& out) {
  if (sizeHint && sizeHint <= UINT32_MAX && !out.Reserve(static_cast<u32>(sizeHint))) return false;
  for (;;) {
    const u32 at = out.Size();
    if (u64(at) + kReadStep > UINT32_MAX || !out.SetSize(at + kReadStep)) return false;
    u32 got = 0;
    const HResult result = stream->Read(out.Data() + at, kReadStep, &got);
    if (!out.SetSize(at + got)) return false;
    if (result != S_OK || got == 0) return true;
  }
}

bool HasPrefix(const char* name) {
  const char* colon = std::strchr(name, ':');
  return colon && colon != name;
}

}  // namespace

// One node of the parser's tree: an element or other node, or an attribute.
struct CXML::Source {
  pugi::xml_node node;
  pugi::xml_attribute attribute;

  explicit operator bool() const { return attribute || node; }
  i32 Type() const {
    if (attribute) return kXMLAttribute;
    switch (node.type()) {
      case pugi::node_element: return kXMLElement;
      case pugi::node_pcdata: return kXMLText;
      case pugi::node_cdata: return kXMLCData;
      case pugi::node_comment: return kXMLComment;
      default: return kXMLProcessingInstruction;
    }
  }
  const char* Name() const {
    if (attribute) return attribute.name();
    switch (node.type()) {
      case pugi::node_pcdata: return "#text";
      case pugi::node_cdata: return "#cdata-section";
      case pugi::node_comment: return "#comment";
      default: return node.name();
    }
  }
  const char* Value() const { return attribute ? attribute.value() : node.value(); }
  Source Next() const { return attribute ? Source{{}, attribute.next_attribute()} : Source{node.next_sibling(), {}}; }
};

struct CXML::BuildState {
  CXMLNamespaceScope scope;
  bool tooDeep = false;
};

IXML* CreateXML() { return MemNew<CXML>(); }

CXML::CXML() : root(this) {}

i32 CXML::Release() {
  const i32 left = --refCount;
  if (left == 0) MemDelete(this);
  return left;
}

bool CXML::LoadFile(const char* path) {
  CFileStream* stream = MemNew<CFileStream>();
  if (!stream) return false;
  CStringW widePath;
  const bool opened = widePath.AssignNarrow(path) && stream->Open(widePath.Text());
  const bool loaded = opened && LoadStream(stream);
  stream->Release();
  return loaded;
}

bool CXML::LoadStream(IStream* stream) {
  Clear();
  if (!stream) return false;
  stream->AddRef();
  StreamStat stat;
  const u64 size = stream->Stat(&stat, STATFLAG_NONAME) == S_OK ? stat.size : 0;
  CByteBuffer text;
  pugi::xml_document parsed;
  pugi::xml_parse_result result;
  if (ReadWhole(stream, size, text)) {
    result = parsed.load_buffer(text.Data(), text.Size(), kParseFlags);
  } else {
    result.status = pugi::status_out_of_memory;
  }
  stream->Release();

  u32 line = 0;
  u32 position = 0;
  if (!result) LineAndPosition(text, result.offset, line, position);
  if (!result) {
    error.Format("XML parse error %.8X at line %u, position %u: %s", static_cast<u32>(result.status), line, position,
                 result.description());
  } else {
    error.Format("XML parse error %.8X at line %u, position %u", 0u, 0u, 0u);
  }
  if (!result) return false;
  if (size != 0) (void)strings.Reserve(static_cast<u32>(size));
  const u64 budget = u64(text.Size()) * kTextsPerByte + kTextsSlack;
  strings.SetLimit(budget > UINT32_MAX ? UINT32_MAX : static_cast<u32>(budget));
  // The parser takes several top-level elements; a document has one.
  u32 elements = 0;
  for (pugi::xml_node node = parsed.first_child(); node; node = node.next_sibling())
    elements += node.type() == pugi::node_element;
  if (elements > 1) {
    error.Format("XML parse error %.8X at line 0, position 0: more than one top-level element", 0u);
    return false;
  }
  return BuildTree(parsed.document_element());
}

bool CXML::BuildTree(const pugi::xml_node& element) {
  if (!element) return false;
  // The root record is reused from load to load; it starts afresh.
  root.ResetForBuild();
  BuildState state;
  BuildNode(root, Source{element, {}}, nullptr, state, 0);
  if (state.tooDeep || strings.LimitReached()) {
    Clear();
    error.Format(state.tooDeep ? "XML nesting deeper than %u levels" : "XML texts beyond %u times the file's size",
                 state.tooDeep ? kMaxDepth : kTextsPerByte);
    return false;
  }
  return true;
}

void CXML::BuildList(CXMLData& record, const Source& first, BuildState& state, u32 depth, bool attributes) {
  for (Source source = first; source; source = source.Next()) {
    CXMLData* item = MemNew<CXMLData>(this);
    if (!item) continue;  // the node is skipped and the build goes on
    BuildNode(*item, source, &record, state, depth + 1);
    if (attributes) {
      CXMLData::Append(record.firstAttribute, record.lastAttribute, record.attributeCount, item);
    } else {
      CXMLData::Append(record.firstChild, record.lastChild, record.childCount, item);
    }
  }
}

bool CXML::BuildNode(CXMLData& record, const Source& source, CXMLData* parent, BuildState& state, u32 depth) {
  CXMLNamespaceScope& scope = state.scope;
  record.parent = parent;
  record.FreeChildren();
  if (!source) return false;
  record.nodeType = source.Type();
  const bool isAttribute = record.nodeType == kXMLAttribute;
  if (!isAttribute) record.savedDepth = static_cast<i32>(scope.DeclaredCount());
  strings.Store(record.name, source.Name());
  if (isAttribute || record.nodeType == kXMLText) strings.Store(record.value, source.Value());

  if (record.nodeType == kXMLElement) BuildList(record, Source{{}, source.node.first_attribute()}, state, depth, true);

  const char* name = source.Name();
  if (isAttribute) {
    if (::strcasecmp(name, "xmlns") == 0) {
      if (parent && !parent->defaultPushed && scope.PushDefault(source.Value())) parent->defaultPushed = true;
    } else if (HasPrefix(name) && std::strncmp(name, "xmlns:", 6) == 0) {
      (void)scope.Declare(name + 6, source.Value());
    }
  } else if (record.nodeType == kXMLElement) {
    // A second try: xmlns="u" may stand before the xmlns:p="u" that makes it count.
    if (!record.defaultPushed) {
      IXMLData* declaration = record.FindAttribute("xmlns", nullptr);
      if (declaration && scope.PushDefault(declaration->GetValue())) record.defaultPushed = true;
    }
    const char* defaultPrefix = scope.DefaultPrefix();
    if (!HasPrefix(name) && defaultPrefix[0]) {
      scratch.Format("%s:%s", defaultPrefix, name);
      strings.Store(record.qualifiedName, scratch.Text());
    } else {
      record.qualifiedName = record.name;
    }
  } else {
    record.qualifiedName = record.name;
  }

  if (!isAttribute && source.node.first_child()) {
    if (depth + 1 >= kMaxDepth) {
      state.tooDeep = true;
    } else {
      BuildList(record, Source{source.node.first_child(), {}}, state, depth, false);
    }
  }

  if (GetText(record.value)[0] == 0) {
    auto* text = static_cast<CXMLData*>(record.FindChild("#text", nullptr));
    if (text && text->nodeType == kXMLText) record.value = text->value;
  }
  if (!isAttribute && record.savedDepth >= 0) {
    scope.Restore(static_cast<u32>(record.savedDepth), record.defaultPushed);
    record.savedDepth = -1;
  }
  return true;
}
