#pragma once

#include "core/auto_pool.h"
#include "core/string_cache.h"
#include "core/types.h"

// A prefix and the namespace URI it was declared for.
struct XMLTextPair : TAutoPoolClass<XMLTextPair, 32> {
  TRefStr* prefix = nullptr;
  TRefStr* uri = nullptr;
};

struct XMLPairCell : TAutoPoolClass<XMLPairCell, 256> {
  XMLPairCell* next = nullptr;
  XMLTextPair* pair = nullptr;
};

// The namespace declarations in force while one tree is built: declared (prefix, URI) pairs and a
// stack of default namespaces, both newest first. A default namespace counts only through a prefix
// declared for the same URI, which is how an unprefixed element gets a qualified name.
class CXMLNamespaceScope {
 public:
  CXMLNamespaceScope();
  CXMLNamespaceScope(const CXMLNamespaceScope&) = delete;
  CXMLNamespaceScope& operator=(const CXMLNamespaceScope&) = delete;
  ~CXMLNamespaceScope();

  u32 DeclaredCount() const { return declaredCount; }
  // Puts (prefix, uri) at the head of the declared list; false when out of memory.
  bool Declare(const char* prefix, const char* uri);
  // An empty URI pushes the scope's own empty pair and turns the default prefix off; another URI
  // pushes the newest pair declared for it, and fails when there is none.
  bool PushDefault(const char* uri);
  // The prefix on top of the default stack, or the empty text.
  const char* DefaultPrefix() const;
  // Takes the declared list back to `depth` pairs, and one entry off the default stack if asked.
  void Restore(u32 depth, bool popDefault);

 private:
  static void PopCell(XMLPairCell*& head);

  TRefStr emptyPrefix;
  TRefStr emptyUri;
  XMLTextPair emptyPair;
  XMLPairCell* declared = nullptr;
  u32 declaredCount = 0;
  XMLPairCell* defaults = nullptr;
};
