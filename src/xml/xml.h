#pragma once

#include "core/types.h"
#include "xml/stream.h"

// The read-only XML document: a parser fills a tree of element records once, and everything later
// reads the tree. Names given to the queries are compared with ASCII case folded: attributes by
// their name, children by their qualified name. Every text is UTF-8, owned by the document and
// never null. All three kinds are reference-counted, starting at 1; a reference on any record or
// result set keeps the whole document alive.

class IXMLResultSet;

enum XMLNodeType : i32 {
  kXMLElement = 1,
  kXMLAttribute = 2,
  kXMLText = 3,
  kXMLCData = 4,
  kXMLProcessingInstruction = 7,
  kXMLComment = 8,
};

class IXMLData {
 public:
  using Accept = bool (*)(IXMLData* item, void* context);

  virtual i32 AddRef() = 0;
  virtual i32 Release() = 0;
  virtual const char* GetName() = 0;
  virtual const char* GetValue() = 0;
  virtual const char* GetReservedText1() = 0;
  virtual const char* GetReservedText2() = 0;
  virtual const char* GetQualifiedName() = 0;
  virtual i32 GetNodeType() = 0;
  virtual IXMLData* GetNextSibling() = 0;
  virtual IXMLData* GetFirstChild() = 0;
  virtual IXMLData* GetFirstAttribute() = 0;
  // Null, never an empty set, when nothing matches.
  virtual IXMLResultSet* GetChildrenByName(const char* name) = 0;
  virtual IXMLResultSet* GetAttributesByName(const char* name) = 0;
  // The first match after `after`; from the head when `after` is null or not in this list.
  virtual IXMLData* FindAttribute(const char* name, IXMLData* after) = 0;
  virtual IXMLData* FindChild(const char* name, IXMLData* after) = 0;
  virtual IXMLResultSet* FilterChildren(Accept accept, void* context) = 0;
  virtual IXMLResultSet* FilterAttributes(Accept accept, void* context) = 0;

 protected:
  virtual ~IXMLData() = default;
};

class IXMLResultSet {
 public:
  using Visit = bool (*)(IXMLData* item, void* context);

  virtual i32 AddRef() = 0;
  virtual i32 Release() = 0;
  virtual i32 GetCount() = 0;
  // Null for an index outside 0 .. count-1.
  virtual IXMLData* GetItem(i32 index) = 0;
  // In order; stops after the first call that gives false.
  virtual void ForEach(Visit callback, void* context) = 0;

 protected:
  virtual ~IXMLResultSet() = default;
};

class IXML {
 public:
  virtual i32 AddRef() = 0;
  virtual i32 Release() = 0;
  virtual bool LoadFile(const char* path) = 0;
  virtual bool LoadStream(IStream* stream) = 0;
  virtual void Clear() = 0;
  virtual IXMLData* GetRoot() = 0;
  virtual const char* GetError() = 0;

 protected:
  virtual ~IXML() = default;
};

// A new, empty document with one reference, or null when out of memory.
IXML* CreateXML();

// Gives its object's reference back when it goes out of scope.
template <class T>
class TReleaser {
 public:
  explicit TReleaser(T* object) : held(object) {}
  TReleaser(const TReleaser&) = delete;
  TReleaser& operator=(const TReleaser&) = delete;
  ~TReleaser() {
    if (held) held->Release();
  }
  T* operator->() const { return held; }
  T* get() const { return held; }
  explicit operator bool() const { return held != nullptr; }

 private:
  T* held;
};
