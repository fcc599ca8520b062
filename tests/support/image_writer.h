#pragma once

#include <string>
#include <vector>

#include "core/types.h"

namespace testsupport {

// Minimal image files for texture entries of a game. `rgba` holds width * height pixels of four
// bytes, row by row from the top; a short vector is padded with transparent black.

// PNG, 8-bit RGBA, the whole image in one IDAT, every row unfiltered.
std::string BuildPng(u32 width, u32 height, const std::vector<u8>& rgba);
// Uncompressed 32-bit DDS without mipmaps; each pixel is stored as B, G, R, A.
std::string BuildDds(u32 width, u32 height, const std::vector<u8>& rgba);

}  // namespace testsupport
