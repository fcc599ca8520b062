#include "gamedata/xml_attributes.h"

#include <strings.h>

#include <cstdio>

bool SameText(const char* a, const char* b) { return ::strcasecmp(a, b) == 0; }

const char* AttributeText(IXMLData* element, const char* name) {
  IXMLData* attribute = element ? element->FindAttribute(name, nullptr) : nullptr;
  return attribute ? attribute->GetValue() : nullptr;
}

bool ReadText(IXMLData* element, const char* name, CStringA& out) {
  const char* text = AttributeText(element, name);
  return text && out.Assign(text);
}

bool ReadNumber(IXMLData* element, const char* name, const char* format, void* out) {
  const char* text = AttributeText(element, name);
  return text && std::sscanf(text, format, out) == 1;
}

bool ReadBool(IXMLData* element, const char* name, bool& out) {
  const char* text = AttributeText(element, name);
  if (!text) return false;
  if (SameText(text, "true") || SameText(text, "false")) {
    out = SameText(text, "true");
    return true;
  }
  unsigned number = 0;
  if (std::sscanf(text, "%u", &number) != 1) return false;
  out = number != 0;
  return true;
}
