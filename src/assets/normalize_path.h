#pragma once

#include "core/string_buffer.h"

// Replaces `out` with `text` where every run of `/` and `\` becomes one `\` when a character
// follows it and vanishes at the end. Nothing else is interpreted: `.`, `..`, drive letters and
// case stay. `text` may lie inside `out`'s own text.
void NormalizePath(const char* text, CStringBufferA& out);

// `path` (with the `\` separators kept inside the system) as a person reads it on this platform,
// with `/`. Only for what is shown: files are opened through the internal form.
void DisplayPath(const char* path, CStringBufferA& out);
