#pragma once

#include <cstddef>

#include "core/array.h"
#include "core/types.h"

// An image as 8-bit RGBA, rows from the top, tightly packed: width * height * 4 bytes.
struct DecodedImage {
  TArray<u8> pixels;
  u32 width = 0;
  u32 height = 0;
};

// Decodes the top mip level of an image file whatever its format: DDS by our own reader, PNG,
// JPEG, TGA and BMP by stb_image. False, with `image` emptied, for anything else or a bad file.
[[nodiscard]] bool DecodeImage(const u8* bytes, size_t size, DecodedImage& image);
