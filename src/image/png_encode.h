#pragma once

#include <vector>

#include "image/image_decode.h"

// `image` as a PNG file of 8-bit RGBA, rows from the top as the image holds them. False, with
// `png` emptied, for an empty image or when the encoder fails.
[[nodiscard]] bool EncodePng(const DecodedImage& image, std::vector<u8>& png);
