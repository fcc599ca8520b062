#include "image/image_decode.h"

#include <climits>
#include <cstring>
#include <memory>
#include <utility>

#include "core/memory_hooks.h"
#include "image/dds_decoder.h"

namespace {

constexpr int kMaxDimension = 16384;

// The largest block stb may take during one decode on this thread. Without it a small PNG whose
// deflate stream runs on past the image would grow stb's output buffer until memory runs out.
thread_local u64 tStbBudget = 0;

void* StbAllocate(size_t size) { return size > tStbBudget ? nullptr : MemAllocate(size); }

// stb has no free-with-size, so a growing buffer is moved by hand; on refusal the old block stays
// with stb, as realloc would leave it.
void* StbReallocate(void* block, size_t oldSize, size_t newSize) {
  void* grown = StbAllocate(newSize);
  if (grown && block) std::memcpy(grown, block, oldSize < newSize ? oldSize : newSize);
  if (grown) MemFree(block);
  return grown;
}

}  // namespace

// Only the four formats a game's textures come in are compiled, which keeps the other decoders'
// bugs out of reach of whatever bytes a pack holds. stb's memory goes through our hooks like the
// rest, so refused memory is a failed decode here too.
#define STB_IMAGE_STATIC
// stb_image inlined at -O3 trips GCC's uninitialised-use analysis on its own context struct; clang
// has no such warning.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_TGA
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#define STBI_NO_FAILURE_STRINGS
#define STBI_MAX_DIMENSIONS kMaxDimension
#define STBI_MALLOC(size) StbAllocate(size)
#define STBI_FREE(block) MemFree(block)
#define STBI_REALLOC_SIZED(block, oldSize, newSize) StbReallocate(block, oldSize, newSize)
#include <stb_image.h>

namespace {

struct StbFree {
  void operator()(stbi_uc* pixels) const { stbi_image_free(pixels); }
};

// stb reads zeros past the end of a TGA, BMP or JPEG, so a tiny file naming a large size would
// "decode" to gigabytes. None of the four stores more than about 8256 pixels a byte (1-bit PNG rows
// at deflate's best, 1032 to 1); anything denser than twice that cannot be a whole image.
constexpr u64 kMaxPixelsPerByte = 16384;

// Room for the decoders' own state, which reading the header alone needs too.
constexpr u64 kStbStateBudget = u64(1) << 20;

// The most any one block of a decode needs, from the size in the file's header: a 16-bit RGBA
// PNG's inflated rows with their filter bytes, doubled as stb grows its buffer by doubling; the
// compressed data gathered from the file, likewise; and the decoders' state. 0 for no image.
u64 StbBudget(const u8* bytes, size_t size) {
  int width = 0, height = 0, channels = 0;
  if (!stbi_info_from_memory(bytes, int(size), &width, &height, &channels)) return 0;
  if (width <= 0 || height <= 0 || width > kMaxDimension || height > kMaxDimension) return 0;
  if (u64(width) * u64(height) > kMaxPixelsPerByte * size) return 0;
  const u64 rows = u64(width) * u64(height) * 8 + u64(height);
  return 2 * rows + 2 * u64(size) + kStbStateBudget;
}

// Sets the budget for this thread's decode and takes it away after.
struct ScopedStbBudget {
  ScopedStbBudget() { tStbBudget = kStbStateBudget; }
  ~ScopedStbBudget() { tStbBudget = 0; }
  ScopedStbBudget(const ScopedStbBudget&) = delete;
  ScopedStbBudget& operator=(const ScopedStbBudget&) = delete;
};

bool DecodeWithStb(const u8* bytes, size_t size, DecodedImage& image) {
  if (size > size_t(INT_MAX)) return false;
  const ScopedStbBudget budget;
  tStbBudget = StbBudget(bytes, size);
  if (tStbBudget == 0) return false;
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
