#pragma once

#include <vector>

#include "image/image_decode.h"

// Which channels of an RGBA image a PNG file keeps.
enum class PngChannels {
  kRgba,   // all four: colour type 6
  kRgb,    // the colour without alpha: colour type 2
  kAlpha,  // the alpha alone, as a greyscale image: colour type 0
};

// `image` as a PNG file of 8-bit `channels`, rows from the top as the image holds them. False,
// with `png` emptied, for an empty image or when the encoder fails.
[[nodiscard]] bool EncodePng(const DecodedImage& image, std::vector<u8>& png,
                             PngChannels channels = PngChannels::kRgba);

// Whether every pixel of `image` has an alpha of 255.
bool IsOpaque(const DecodedImage& image);
