#pragma once

#include "core/types.h"
#include "core/utf8.h"

// Whole-text match of the search box. `*` any run (also none), `?` one character, `#` one digit
// 0-9; other characters match themselves with ASCII letters folded. No escape. Both texts are read
// as UTF-8, bad sequences as U+FFFD.
bool WildcardMatch(const char* text, const char* pattern);
