#include "image/png_encode.h"

#include <spng.h>

#include <cstdlib>
#include <memory>

namespace {

// Fast more than small: the textures of a whole game go through here, and a reader never notices
// the difference in size. One filter, the cheapest that still helps decoded textures, which are
// smooth along their rows.
constexpr int kCompressionLevel = 1;
constexpr int kFilters = SPNG_FILTER_CHOICE_SUB;

struct ContextDeleter {
  void operator()(spng_ctx* context) const { spng_ctx_free(context); }
};

struct MallocFree {
  void operator()(u8* block) const { std::free(block); }
};

// The pixels of `image` with only `channels` kept, tightly packed.
std::vector<u8> Pack(const DecodedImage& image, PngChannels channels) {
  const size_t pixels = size_t(image.width) * image.height;
  const u8* rgba = image.pixels.Data();
  std::vector<u8> packed(channels == PngChannels::kRgb ? 3 * pixels : pixels);
  for (size_t i = 0; i < pixels; ++i) {
    if (channels == PngChannels::kRgb) {
      packed[3 * i] = rgba[4 * i], packed[3 * i + 1] = rgba[4 * i + 1], packed[3 * i + 2] = rgba[4 * i + 2];
    } else {
      packed[i] = rgba[4 * i + 3];
    }
  }
  return packed;
}

u8 ColorType(PngChannels channels) {
  switch (channels) {
    case PngChannels::kRgba: return SPNG_COLOR_TYPE_TRUECOLOR_ALPHA;
    case PngChannels::kRgb: return SPNG_COLOR_TYPE_TRUECOLOR;
    case PngChannels::kAlpha: return SPNG_COLOR_TYPE_GRAYSCALE;
  }
  return SPNG_COLOR_TYPE_TRUECOLOR_ALPHA;
}

}  // namespace

bool IsOpaque(const DecodedImage& image) {
  const u8* rgba = image.pixels.Data();
  for (u32 i = 3; i < image.pixels.Count(); i += 4) {
    if (rgba[i] != 255) return false;
  }
  return true;
}

bool EncodePng(const DecodedImage& image, std::vector<u8>& png, PngChannels channels) {
  png.clear();
  const u64 size = u64(image.width) * image.height * 4;
  if (image.width == 0 || image.height == 0 || size != image.pixels.Count()) return false;
  const std::unique_ptr<spng_ctx, ContextDeleter> context(spng_ctx_new(SPNG_CTX_ENCODER));
  if (!context || spng_set_option(context.get(), SPNG_ENCODE_TO_BUFFER, 1) != 0 ||
      spng_set_option(context.get(), SPNG_IMG_COMPRESSION_LEVEL, kCompressionLevel) != 0 ||
      spng_set_option(context.get(), SPNG_FILTER_CHOICE, kFilters) != 0) {
    return false;
  }
  spng_ihdr header{};
  header.width = image.width;
  header.height = image.height;
  header.bit_depth = 8;
  header.color_type = ColorType(channels);
  if (spng_set_ihdr(context.get(), &header) != 0) return false;
  const std::vector<u8> packed = channels == PngChannels::kRgba ? std::vector<u8>() : Pack(image, channels);
  const u8* pixels = channels == PngChannels::kRgba ? image.pixels.Data() : packed.data();
  const size_t length = channels == PngChannels::kRgba ? size_t(size) : packed.size();
  if (spng_encode_image(context.get(), pixels, length, SPNG_FMT_PNG, SPNG_ENCODE_FINALIZE) != 0) return false;
  size_t written = 0;
  int error = 0;
  // The encoder's buffer is the caller's, from malloc; it goes even when the copy throws.
  const std::unique_ptr<u8, MallocFree> bytes(static_cast<u8*>(spng_get_png_buffer(context.get(), &written, &error)));
  if (!bytes || error != 0) return false;
  png.assign(bytes.get(), bytes.get() + written);
  return true;
}
