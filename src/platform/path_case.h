#pragma once

#include "core/string_buffer.h"

// Whether `a` and `b` are equal when ASCII letters are folded, as Windows compares file names.
bool EqualIgnoringCase(const char* a, const char* b);

// `path` (separated by `\` or `/`) in the system's form, with each part that doesn't exist as
// spelled replaced by the entry of its folder that equals it ignoring case, as Windows finds files;
// of several such entries the first in byte order. From the first part that nothing matches, the
// rest stays as spelled. True when the whole path exists.
[[nodiscard]] bool MatchPathCase(const char* path, CStringBufferA& out);
