#include "xml/xml_data.h"

#include <strings.h>

#include "core/memory_hooks.h"
#include "xml/xml_document.h"

namespace {

// Names are compared with ASCII letters folded, as the game's files spell them freely.
bool SameName(const char* a, const char* b) { return ::strcasecmp(a, b) == 0; }

struct NameMatch {
  const char* wanted;
  bool byQualifiedName;
};

bool MatchesName(IXMLData* item, void* context) {
  const auto* match = static_cast<const NameMatch*>(context);
  return SameName(match->byQualifiedName ? item->GetQualifiedName() : item->GetName(), match->wanted);
}

// The first record to look at: the one after `after` when `after` lies in this list (a record
// knows its parent, and its node type says which list), else the head.
CXMLData* SearchStart(const CXMLData* owner, CXMLData* first, IXMLData* after, bool attributes) {
  if (!after) return first;
  auto* record = static_cast<CXMLData*>(after);
  const bool member = record->Parent() == owner && (record->GetNodeType() == kXMLAttribute) == attributes;
  return member ? static_cast<CXMLData*>(record->GetNextSibling()) : first;
}

}  // namespace

CXMLData::CXMLData(CXML* document) : owner(document) {
  CStringTable* table = document ? &document->Strings() : nullptr;
  for (XMLTextHandle* handle : {&name, &value, &reserved1, &reserved2, &qualifiedName}) handle->table = table;
}

i32 CXMLData::AddRef() {
  if (parent) parent->AddRef();
  if (owner) owner->AddRef();
  return ++refCount;
}

i32 CXMLData::Release() {
  if (parent) parent->Release();
  const i32 left = --refCount;
  if (owner) owner->Release();
  return left;
}

// Children's subtrees first, then the attributes'. Depth is bounded by the tree's build.
void CXMLData::FreeChildren() {
  for (CXMLData** head : {&firstChild, &firstAttribute}) {
    while (CXMLData* record = *head) {
      *head = record->nextSibling;
      MemDelete(record);
    }
  }
  lastChild = lastAttribute = nullptr;
  childCount = attributeCount = 0;
}

void CXMLData::ResetForBuild() {
  FreeChildren();
  for (XMLTextHandle* handle : {&name, &value, &reserved1, &reserved2, &qualifiedName})
    handle->slot = XMLTextHandle::kEmptySlot;
  nodeType = 0;
  parent = nullptr;
  savedDepth = -1;
  defaultPushed = false;
}

void CXMLData::Append(CXMLData*& first, CXMLData*& last, i32& count, CXMLData* record) {
  record->nextSibling = nullptr;
  (last ? last->nextSibling : first) = record;
  last = record;
  ++count;
}

IXMLData* CXMLData::FindAttribute(const char* wanted, IXMLData* after) {
  for (CXMLData* item = SearchStart(this, firstAttribute, after, true); item; item = item->nextSibling) {
    if (SameName(item->GetName(), wanted)) return item;
  }
  return nullptr;
}

IXMLData* CXMLData::FindChild(const char* wanted, IXMLData* after) {
  for (CXMLData* item = SearchStart(this, firstChild, after, false); item; item = item->nextSibling) {
    if (SameName(item->GetQualifiedName(), wanted)) return item;
  }
  return nullptr;
}

IXMLResultSet* CXMLData::GetChildrenByName(const char* wanted) {
  NameMatch match{wanted, true};
  return Collect(firstChild, &MatchesName, &match);
}

IXMLResultSet* CXMLData::GetAttributesByName(const char* wanted) {
  NameMatch match{wanted, false};
  return Collect(firstAttribute, &MatchesName, &match);
}

IXMLResultSet* CXMLData::FilterChildren(Accept accept, void* context) { return Collect(firstChild, accept, context); }

IXMLResultSet* CXMLData::FilterAttributes(Accept accept, void* context) {
  return Collect(firstAttribute, accept, context);
}

// One pass in list order; an empty list, no callback or no match gives null.
IXMLResultSet* CXMLData::Collect(CXMLData* first, Accept accept, void* context) {
  if (!first || !accept) return nullptr;
  TArray<IXMLData*> matches;
  for (CXMLData* item = first; item; item = item->nextSibling) {
    if (!accept(item, context)) continue;
    if (!matches.SetSize(matches.Count() + 1)) return nullptr;
    matches[matches.Count() - 1] = item;
  }
  if (matches.Count() == 0) return nullptr;
  CXMLResultSet* set = MemNew<CXMLResultSet>(owner);
  if (!set) return nullptr;
  if (!set->items.Reserve(matches.Count()) || !set->items.Assign(matches)) {
    set->Release();
    return nullptr;
  }
  return set;
}

CXMLResultSet::CXMLResultSet(CXML* document) : owner(document) {
  if (owner) owner->AddRef();
}

i32 CXMLResultSet::Release() {
  const i32 left = --refCount;
  if (left == 0) {
    CXML* document = owner;
    MemDelete(this);
    if (document) document->Release();
  }
  return left;
}

IXMLData* CXMLResultSet::GetItem(i32 index) {
  if (index < 0 || static_cast<u32>(index) >= items.Count()) return nullptr;
  return items[static_cast<u32>(index)];
}

void CXMLResultSet::ForEach(Visit callback, void* context) {
  if (!callback) return;
  for (IXMLData* item : items) {
    if (!callback(item, context)) return;
  }
}
