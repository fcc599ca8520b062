#pragma once

#include "core/string_buffer.h"

// The whole file as text; true with it in `out`, false with `out` empty. Nothing is examined: a
// NUL in the file ends the text for whoever reads it.
[[nodiscard]] bool ReadTextFile(const char* path, CStringBufferA& out);
