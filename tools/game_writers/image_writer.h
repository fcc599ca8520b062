#pragma once

#include <string>
#include <vector>

#include "core/types.h"

namespace gamewriters {

// Minimal image files for texture entries of a game. `rgba` holds width * height pixels of four
// bytes, row by row from the top; a short vector is padded with transparent black.

// PNG, 8-bit RGBA, the whole image in one IDAT, every row unfiltered. `trailingZeros` more bytes
// follow the rows in the compressed data, as in a file made to inflate far beyond its image.
std::string BuildPng(u32 width, u32 height, const std::vector<u8>& rgba, size_t trailingZeros = 0);
// Uncompressed 32-bit TGA, rows from the top, each pixel stored as B, G, R, A.
std::string BuildTga(u16 width, u16 height, const std::vector<u8>& rgba);
// Uncompressed 32-bit DDS without mipmaps; each pixel is stored as B, G, R, A.
std::string BuildDds(u32 width, u32 height, const std::vector<u8>& rgba);

// The pixel format words of a DDS header after its size: flags, four-character code, bit count and
// the red, green, blue and alpha masks.
struct DdsPixelFormat {
  u32 flags = 0;
  u32 fourCC = 0;
  u32 bitCount = 0;
  u32 masks[4] = {};
};

constexpr u32 DdsFourCC(const char* code) {
  return u32(u8(code[0])) | u32(u8(code[1])) << 8 | u32(u8(code[2])) << 16 | u32(u8(code[3])) << 24;
}

// DDS of the given pixel format whose top level is `data` as it stands (pixels or blocks).
std::string BuildDdsWithFormat(u32 width, u32 height, const DdsPixelFormat& format, const std::string& data);
// DDS with the DX10 header after the main one, naming DXGI format number `dxgiFormat`.
std::string BuildDdsDx10(u32 width, u32 height, u32 dxgiFormat, const std::string& data);

}  // namespace gamewriters
