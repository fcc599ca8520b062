#include "image/texture_png.h"

#include "image/image_decode.h"
#include "image/png_encode.h"

bool MakeTexturePng(const u8* bytes, size_t size, AlphaForm form, TexturePng& out) {
  out = {};
  DecodedImage image;
  if (!DecodeImage(bytes, size, image)) return false;
  if (form == AlphaForm::kAsStored) return EncodePng(image, out.png);
  return EncodePng(image, out.png, PngChannels::kRgb) &&
         (IsOpaque(image) || EncodePng(image, out.alpha, PngChannels::kAlpha));
}
