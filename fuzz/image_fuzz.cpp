// Any bytes as an image file: DecodeImage gives true or false without a crash or a read outside
// the buffer, and on true the pixels are exactly width * height * 4 bytes. ReadImageInfo on the
// same bytes gives sizes and a level on true, and nothing on false.
#include <cstdint>
#include <vector>

#include "image/image_decode.h"
#include "image/image_info.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A copy of exactly the input's length, so a read past it lands outside the block.
  const std::vector<u8> bytes(data, data + size);
  ImageInfo info;
  const bool headerRead = ReadImageInfo(bytes.data(), bytes.size(), info);
  if (headerRead != (info.width != 0 && info.height != 0 && info.levels != 0)) __builtin_trap();
  if (info.pixelFormat[sizeof(info.pixelFormat) - 1] != 0) __builtin_trap();
  DecodedImage image;
  if (!DecodeImage(bytes.data(), bytes.size(), image)) {
    if (image.pixels.Count() != 0 || image.width != 0 || image.height != 0) __builtin_trap();
    return 0;
  }
  if (image.width == 0 || image.height == 0 || u64(image.width) * image.height * 4 != image.pixels.Count()) {
    __builtin_trap();
  }
  static_cast<void>(*static_cast<const volatile u8*>(image.pixels.Data() + image.pixels.Count() - 1));
  return 0;
}
