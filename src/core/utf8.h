#pragma once

#include "core/types.h"

// The one conversion between wide (UTF-16) and narrow (UTF-8) text that the system uses.
// Both behave like the platform conversions with length -1: the source runs to its NUL, the result
// counts the NUL, and an ill-formed sequence becomes U+FFFD. `dest` may be null to measure only;
// otherwise at most `destCapacity` units are written and the result is the units needed in all.

u32 Utf16ToUtf8(const char16_t* source, char* dest, u32 destCapacity);
u32 Utf8ToUtf16(const char* source, char16_t* dest, u32 destCapacity);

// The code point at `text` and, in `size`, the bytes it took. Sequences of up to six bytes are
// taken; an unknown lead byte, a missing continuation (a NUL is one), an overlong form or a
// surrogate give U+FFFD. Never reads past a NUL. The search's matching walks names with it.
u32 DecodeUtf8(const char* text, u32& size);
