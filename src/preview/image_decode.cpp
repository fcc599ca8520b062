#include "preview/image_decode.h"

#include <climits>
#include <cstring>
#include <memory>
#include <utility>

#include "core/memory_hooks.h"
#include "preview/dds_decoder.h"

namespace {

constexpr int kMaxDimension = 16384;

// stb has no free-with-size, so a growing buffer is moved by hand; on refusal the old block stays
// with stb, as realloc would leave it.
void* StbReallocate(void* block, size_t oldSize, size_t newSize) {
  void* grown = MemAllocate(newSize);
  if (grown && block) std::memcpy(grown, block, oldSize < newSize ? oldSize : newSize);
  if (grown) MemFree(block);
  return grown;
}

}  // namespace

// Only the four formats a game's textures come in are compiled, which keeps the other decoders'
// bugs out of reach of whatever bytes a pack holds. stb's memory goes through our hooks like the
// rest, so refused memory is a failed decode here too.
#define STB_IMAGE_STATIC
// stb_image inlined at -O3 trips the uninitialised-use analysis on its own context struct.
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_TGA
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#define STBI_NO_FAILURE_STRINGS
#define STBI_MAX_DIMENSIONS kMaxDimension
#define STBI_MALLOC(size) MemAllocate(size)
#define STBI_FREE(block) MemFree(block)
#define STBI_REALLOC_SIZED(block, oldSize, newSize) StbReallocate(block, oldSize, newSize)
#include <stb_image.h>

namespace {

struct StbFree {
  void operator()(stbi_uc* pixels) const { stbi_image_free(pixels); }
};

bool DecodeWithStb(const u8* bytes, size_t size, DecodedImage& image) {
  if (size > size_t(INT_MAX)) return false;
  int width = 0, height = 0, channels = 0;
  std::unique_ptr<stbi_uc, StbFree> pixels(stbi_load_from_memory(bytes, int(size), &width, &height, &channels, 4));
  if (!pixels || width <= 0 || height <= 0 || width > kMaxDimension || height > kMaxDimension) return false;
  const u32 pixelBytes = u32(width) * u32(height) * 4;
  DecodedImage decoded;
  if (!decoded.pixels.Reserve(pixelBytes) || !decoded.pixels.SetSize(pixelBytes)) return false;
  std::memcpy(decoded.pixels.Data(), pixels.get(), pixelBytes);
  decoded.width = u32(width);
  decoded.height = u32(height);
  image = std::move(decoded);
  return true;
}

}  // namespace

bool DecodeImage(const u8* bytes, size_t size, DecodedImage& image) {
  image = DecodedImage{};
  if (!bytes || size == 0) return false;
  if (size >= 4 && std::memcmp(bytes, "DDS ", 4) == 0) return DecodeDds(bytes, size, image);
  return DecodeWithStb(bytes, size, image);
}
