// Any bytes as an image file: DecodeImage gives true or false without a crash or a read outside
// the buffer, and on true the pixels are exactly width * height * 4 bytes.
#include <cstdint>
#include <vector>

#include "image/image_decode.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // A copy of exactly the input's length, so a read past it lands outside the block.
  const std::vector<u8> bytes(data, data + size);
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
