#pragma once

#include "core/value_string.h"
#include "xml/xml.h"

// The small attribute readers that the XML-based game files share. Names and keyword values are
// matched with ASCII case folded, as the files spell them freely.

bool SameText(const char* a, const char* b);

// The attribute's text, or null when it is missing.
const char* AttributeText(IXMLData* element, const char* name);
// True when the attribute is there; its text is then stored (false also when memory is refused).
bool ReadText(IXMLData* element, const char* name, CStringA& out);
// True when the attribute is there and `format` scans exactly one item from it; trailing text is
// ignored.
bool ReadNumber(IXMLData* element, const char* name, const char* format, void* out);
// "true" or "false" in any case, else a number that is not 0. False when missing or neither.
bool ReadBool(IXMLData* element, const char* name, bool& out);
