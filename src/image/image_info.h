#pragma once

#include <cstddef>

#include "core/types.h"

// The container of an image file, as its first bytes tell it.
enum class ImageFormat : u8 { kDds, kPng, kJpeg, kTga, kBmp };

// What an image file's header says about it, read without decoding a pixel.
struct ImageInfo {
  ImageFormat format = ImageFormat::kPng;
  u32 width = 0;
  u32 height = 0;
  u32 levels = 1;  // mip levels a DDS header declares; 1 for every other format
  // A DDS file's pixel format ("BC1", "uncompressed 32-bit", "DXGI 98", ...); empty for the others.
  // Always terminated.
  char pixelFormat[32] = {};
};

// Reads the header of a DDS, PNG, JPEG, TGA or BMP file of `size` bytes, never past them. False,
// with `info` reset, for anything else, a header cut short, or sizes that don't add up (a zero
// width or height, more mip levels than the sizes allow). A TGA has no magic: bytes that none of
// the others claim are taken for one when its header is consistent.
[[nodiscard]] bool ReadImageInfo(const u8* bytes, size_t size, ImageInfo& info);

// "DDS", "PNG", "JPEG", "TGA" or "BMP".
const char* ImageFormatName(ImageFormat format);
