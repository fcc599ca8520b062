#include "xml/xml_namespace_scope.h"

#include <cstring>

namespace {

void RecycleText(TRefStr* text) {
  if (text) CStringCache::Instance().Recycle(text);
}

}  // namespace

CXMLNamespaceScope::CXMLNamespaceScope() {
  emptyPair.prefix = &emptyPrefix;
  emptyPair.uri = &emptyUri;
}

CXMLNamespaceScope::~CXMLNamespaceScope() {
  Restore(0, false);
  while (defaults) PopCell(defaults);
}

void CXMLNamespaceScope::PopCell(XMLPairCell*& head) {
  XMLPairCell* cell = head;
  head = cell->next;
  XMLPairCell::Delete(cell);
}

bool CXMLNamespaceScope::Declare(const char* prefix, const char* uri) {
  CStringCache& cache = CStringCache::Instance();
  TRefStr* prefixText = cache.Acquire();
  TRefStr* uriText = cache.Acquire();
  XMLTextPair* pair = XMLTextPair::New();
  XMLPairCell* cell = XMLPairCell::New();
  if (!prefixText || !uriText || !pair || !cell || !prefixText->Assign(prefix) || !uriText->Assign(uri)) {
    RecycleText(prefixText);
    RecycleText(uriText);
    XMLTextPair::Delete(pair);
    XMLPairCell::Delete(cell);
    return false;
  }
  pair->prefix = prefixText;
  pair->uri = uriText;
  cell->pair = pair;
  cell->next = declared;
  declared = cell;
  ++declaredCount;
  return true;
}

bool CXMLNamespaceScope::PushDefault(const char* uri) {
  XMLTextPair* found = nullptr;
  if (!uri || !uri[0]) {
    found = &emptyPair;
  } else {
    for (XMLPairCell* cell = declared; cell && !found; cell = cell->next) {
      if (std::strcmp(cell->pair->uri->Text(), uri) == 0) found = cell->pair;
    }
  }
  if (!found) return false;
  XMLPairCell* cell = XMLPairCell::New();
  if (!cell) return false;
  cell->pair = found;
  cell->next = defaults;
  defaults = cell;
  return true;
}

const char* CXMLNamespaceScope::DefaultPrefix() const { return defaults ? defaults->pair->prefix->Text() : ""; }

void CXMLNamespaceScope::Restore(u32 depth, bool popDefault) {
  while (declaredCount > depth && declared) {
    XMLTextPair* pair = declared->pair;
    RecycleText(pair->prefix);
    RecycleText(pair->uri);
    XMLTextPair::Delete(pair);
    PopCell(declared);
    --declaredCount;
  }
  if (popDefault && defaults) PopCell(defaults);
}
