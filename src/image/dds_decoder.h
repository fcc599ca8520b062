#pragma once

#include <cstddef>

#include "image/image_decode.h"

// DDS files: uncompressed RGB(A) and luminance layouts described by bit masks, BC1, BC2, BC3, BC4
// and BC5 (by four-character code or by a DX10 header's format). Only the top mip level of the
// first surface is decoded. False, with `image` emptied, on anything else or a file too short for
// what its header says.
[[nodiscard]] bool DecodeDds(const u8* bytes, size_t size, DecodedImage& image);
