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

}  // namespace

bool EncodePng(const DecodedImage& image, std::vector<u8>& png) {
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
  header.color_type = SPNG_COLOR_TYPE_TRUECOLOR_ALPHA;
  if (spng_set_ihdr(context.get(), &header) != 0 ||
      spng_encode_image(context.get(), image.pixels.Data(), size_t(size), SPNG_FMT_PNG, SPNG_ENCODE_FINALIZE) != 0) {
    return false;
  }
  size_t length = 0;
  int error = 0;
  void* bytes = spng_get_png_buffer(context.get(), &length, &error);
  if (!bytes || error != 0) {
    std::free(bytes);
    return false;
  }
  png.assign(static_cast<const u8*>(bytes), static_cast<const u8*>(bytes) + length);
  std::free(bytes);  // the encoder's buffer is the caller's, from malloc
  return true;
}
