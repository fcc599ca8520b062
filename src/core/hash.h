#pragma once

#include "core/types.h"

// The name hash in its four variants. The game's files store these values, so each variant's
// folding and widening of a byte is part of the format. All give 0 for the empty text.

// ASCII upper-case, bytes widened unsigned (0..255). Null gives 0.
u32 HashName(const char* text);
// ASCII upper-case, bytes widened as signed 16-bit: 0x80..0xFF become 0xFF80..0xFFFF.
u32 HashNameWide(const char* text);
// No folding, bytes widened unsigned.
u32 HashExact(const char* text);
// No folding, bytes widened signed: 0x80..0xFF add a negative number. Buckets of string keys.
u32 HashKey(const char* text);
// HashKey of `count` texts into `out`, the same values; four at a time, so that the rounds of
// different texts overlap instead of each text waiting for the one before.
void HashKeys(const char* const* texts, u32 count, u32* out);
