#pragma once

#include "core/array.h"
#include "core/string_table.h"
#include "xml/xml.h"

class CXML;

// One node of the tree: an element, attribute, text, CDATA section, comment or processing
// instruction. A record in a tree is owned by its parent's list; its own count never frees it, and
// AddRef/Release pass on to the parent and the document. Texts are handles into the document's
// string table.
class CXMLData final : public IXMLData {
 public:
  explicit CXMLData(CXML* document);
  CXMLData(const CXMLData&) = delete;
  CXMLData& operator=(const CXMLData&) = delete;
  ~CXMLData() override { FreeChildren(); }

  i32 AddRef() override;
  i32 Release() override;
  const char* GetName() override { return GetText(name); }
  const char* GetValue() override { return GetText(value); }
  const char* GetReservedText1() override { return GetText(reserved1); }
  const char* GetReservedText2() override { return GetText(reserved2); }
  const char* GetQualifiedName() override { return GetText(qualifiedName); }
  i32 GetNodeType() override { return nodeType; }
  IXMLData* GetNextSibling() override { return nextSibling; }
  IXMLData* GetFirstChild() override { return firstChild; }
  IXMLData* GetFirstAttribute() override { return firstAttribute; }
  IXMLResultSet* GetChildrenByName(const char* wanted) override;
  IXMLResultSet* GetAttributesByName(const char* wanted) override;
  IXMLData* FindAttribute(const char* wanted, IXMLData* after) override;
  IXMLData* FindChild(const char* wanted, IXMLData* after) override;
  IXMLResultSet* FilterChildren(Accept accept, void* context) override;
  IXMLResultSet* FilterAttributes(Accept accept, void* context) override;

  i32 ChildCount() const { return childCount; }
  const CXMLData* Parent() const { return parent; }
  i32 AttributeCount() const { return attributeCount; }

 private:
  friend class CXML;

  void FreeChildren();
  // Back to a new record's state: the document's root is built again by every load.
  void ResetForBuild();
  // Lists are linked through nextSibling with a tail, so appending is constant time.
  static void Append(CXMLData*& first, CXMLData*& last, i32& count, CXMLData* record);
  IXMLResultSet* Collect(CXMLData* first, Accept accept, void* context);

  i32 refCount = 1;
  CXMLData* firstChild = nullptr;
  CXMLData* lastChild = nullptr;
  i32 childCount = 0;
  CXMLData* firstAttribute = nullptr;
  CXMLData* lastAttribute = nullptr;
  i32 attributeCount = 0;
  CXMLData* nextSibling = nullptr;
  XMLTextHandle name;
  XMLTextHandle value;
  XMLTextHandle reserved1;
  XMLTextHandle reserved2;
  XMLTextHandle qualifiedName;
  i32 nodeType = 0;
  CXML* owner;
  CXMLData* parent = nullptr;
  i32 savedDepth = -1;  // declared namespace pairs when this element began; -1 when none saved
  bool defaultPushed = false;
};

// The matches of one query, in list order; holds a reference on the document while it lives.
class CXMLResultSet final : public IXMLResultSet {
 public:
  explicit CXMLResultSet(CXML* document);
  CXMLResultSet(const CXMLResultSet&) = delete;
  CXMLResultSet& operator=(const CXMLResultSet&) = delete;
  ~CXMLResultSet() override = default;

  i32 AddRef() override { return ++refCount; }
  i32 Release() override;
  i32 GetCount() override { return static_cast<i32>(items.Count()); }
  IXMLData* GetItem(i32 index) override;
  void ForEach(Visit callback, void* context) override;

 private:
  friend class CXMLData;

  i32 refCount = 1;
  TArray<IXMLData*> items;
  CXML* owner;
};
