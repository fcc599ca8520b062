#pragma once

#include "core/string_buffer.h"
#include "core/string_table.h"
#include "xml/xml.h"
#include "xml/xml_data.h"

namespace pugi {
class xml_node;
class xml_attribute;
}  // namespace pugi

class CXMLNamespaceScope;

// The document: its root record held by value, the error text of the last load, and the one string
// table that holds every text of the tree. A parser builds its own tree from the stream, which is
// copied once into records and then let go.
class CXML final : public IXML {
 public:
  // Deeper trees are refused: the tree is built and freed recursively.
  static constexpr u32 kMaxDepth = 256;
  // Texts of a document may take this many times the bytes of its file, and 1 MiB more; a file
  // whose texts would take more (a long namespace prefix copied into every element) is refused.
  static constexpr u32 kTextsPerByte = 8;
  static constexpr u32 kTextsSlack = 0x100000;

  CXML();
  CXML(const CXML&) = delete;
  CXML& operator=(const CXML&) = delete;
  ~CXML() override = default;

  i32 AddRef() override { return ++refCount; }
  i32 Release() override;
  bool LoadFile(const char* path) override;
  bool LoadStream(IStream* stream) override;
  void Clear() override { root.FreeChildren(); }
  IXMLData* GetRoot() override { return &root; }
  const char* GetError() override { return error.Text(); }

  CStringTable& Strings() { return strings; }

 private:
  struct Source;
  struct BuildState;

  bool BuildTree(const pugi::xml_node& element);
  bool BuildNode(CXMLData& record, const Source& source, CXMLData* parent, BuildState& state, u32 depth);
  void BuildList(CXMLData& record, const Source& first, BuildState& state, u32 depth, bool attributes);

  i32 refCount = 1;
  CStringTable strings;  // before the root, whose handles point at it
  CXMLData root;
  CStringBufferA error;
  CStringBufferA scratch;  // "%s:%s" names
};
