#pragma once

#include <cstddef>
#include <vector>

#include "core/types.h"

// What becomes of a texture's alpha when it is exported.
enum class AlphaForm {
  kAsStored,  // kept in the PNG, as the game stores it
  kSplit,     // the PNG is opaque; an alpha that isn't all 255 goes to a greyscale PNG of its own
};

// An exported texture: its PNG file and, where the alpha was split off and isn't all opaque, the
// greyscale PNG that holds it.
struct TexturePng {
  std::vector<u8> png;
  std::vector<u8> alpha;  // empty for none
};

// The image file `bytes` (any format the preview reads; its top level) as `out`. False for a file
// that can't be decoded or encoded.
[[nodiscard]] bool MakeTexturePng(const u8* bytes, size_t size, AlphaForm form, TexturePng& out);
