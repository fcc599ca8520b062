#pragma once

#include "core/types.h"

// The code point at `text` and, in `size`, the bytes it took. Sequences of up to six bytes are
// taken; an unknown lead byte, a missing continuation (a NUL is one), an overlong form or a
// surrogate give U+FFFD. Never reads past a NUL.
u32 DecodeUtf8(const char* text, u32& size);

// Whole-text match of the search box. `*` any run (also none), `?` one character, `#` one digit
// 0-9; other characters match themselves with ASCII letters folded. No escape. Both texts are read
// as UTF-8, bad sequences as U+FFFD.
bool WildcardMatch(const char* text, const char* pattern);
