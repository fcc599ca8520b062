#include "image/dds_decoder.h"

#include <bit>
#include <cstring>
#include <utility>

#include "core/byte_reader.h"

namespace {

constexpr u32 kHeaderSize = 124;
constexpr size_t kHeaderStart = 4;  // after the magic
constexpr size_t kDataStart = kHeaderStart + kHeaderSize;
constexpr size_t kExtendedHeaderSize = 20;
constexpr u64 kPixelFormatStart = kHeaderStart + 72;
// Larger textures are surely not what a game previews; the cap also keeps every size below in u32.
constexpr u32 kMaxDimension = 16384;

// Pixel format flags.
constexpr u32 kAlphaPixels = 0x1;
constexpr u32 kAlphaOnly = 0x2;
constexpr u32 kFourCC = 0x4;
constexpr u32 kRgb = 0x40;
constexpr u32 kLuminance = 0x20000;

constexpr u32 FourCC(const char (&code)[5]) {
  return u32(u8(code[0])) | u32(u8(code[1])) << 8 | u32(u8(code[2])) << 16 | u32(u8(code[3])) << 24;
}

enum class Layout { kMasks, kBc1, kBc2, kBc3, kBc4, kBc5 };

// Where each channel sits in a little-endian pixel of `bytesPerPixel` bytes. A zero mask gives 0 for
// a colour and 255 for alpha; `grey` copies red into green and blue.
struct Format {
  Layout layout = Layout::kMasks;
  u32 bytesPerPixel = 0;
  u32 masks[4] = {};  // r, g, b, a
  bool grey = false;
};

u32 BlockBytes(Layout layout) { return layout == Layout::kBc1 || layout == Layout::kBc4 ? 8 : 16; }

// Four-character codes and DX10 format numbers, both mapped to the same layouts.
bool FormatOfFourCC(u32 code, Format& format) {
  switch (code) {
    case FourCC("DXT1"): format.layout = Layout::kBc1; return true;
    case FourCC("DXT2"):
    case FourCC("DXT3"): format.layout = Layout::kBc2; return true;
    case FourCC("DXT4"):
    case FourCC("DXT5"): format.layout = Layout::kBc3; return true;
    case FourCC("ATI1"):
    case FourCC("BC4U"): format.layout = Layout::kBc4; return true;
    case FourCC("ATI2"):
    case FourCC("BC5U"): format.layout = Layout::kBc5; return true;
    default: return false;
  }
}

// The sRGB variants are copied as stored: the preview shows the bytes, not linear light.
bool FormatOfDxgi(u32 number, Format& format) {
  switch (number) {
    case 28:
    case 29: format = {Layout::kMasks, 4, {0xFF, 0xFF00, 0xFF0000, 0xFF000000}}; return true;
    case 87:
    case 91: format = {Layout::kMasks, 4, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}}; return true;
    case 88:
    case 93: format = {Layout::kMasks, 4, {0xFF0000, 0xFF00, 0xFF, 0}}; return true;
    case 71:
    case 72: format.layout = Layout::kBc1; return true;
    case 74:
    case 75: format.layout = Layout::kBc2; return true;
    case 77:
    case 78: format.layout = Layout::kBc3; return true;
    case 80: format.layout = Layout::kBc4; return true;
    case 83: format.layout = Layout::kBc5; return true;
    default: return false;
  }
}

// A bit-mask layout. Masks must fit in the pixel, and at least the channels the flags name must
// have one, so that a blank pixel format is not taken for black.
bool FormatOfMasks(ByteReader& file, Format& format) {
  const u64 pf = kPixelFormatStart;
  const u32 flags = file.U32At(pf + 4);
  const u32 bitCount = file.U32At(pf + 12);
  if (bitCount != 8 && bitCount != 16 && bitCount != 24 && bitCount != 32) return false;
  format.bytesPerPixel = bitCount / 8;
  const u32 r = file.U32At(pf + 16), g = file.U32At(pf + 20), b = file.U32At(pf + 24);
  const u32 a = (flags & (kAlphaPixels | kAlphaOnly)) ? file.U32At(pf + 28) : 0;
  if (flags & kRgb) {
    if ((r | g | b) == 0) return false;
    format.masks[0] = r, format.masks[1] = g, format.masks[2] = b;
  } else if (flags & kLuminance) {
    if (r == 0) return false;
    format.masks[0] = r;
    format.grey = true;
  } else if (flags & kAlphaOnly) {
    if (a == 0) return false;
  } else {
    return false;
  }
  format.masks[3] = a;
  for (u32 mask : format.masks) {
    if (bitCount < 32 && (mask >> bitCount) != 0) return false;
  }
  return true;
}

// Reads the pixel format, and the DX10 header after the main one when there is one. `dataStart` is
// where the top level begins.
bool ReadFormat(ByteReader& file, Format& format, size_t& dataStart) {
  dataStart = kDataStart;
  if (!(file.U32At(kPixelFormatStart + 4) & kFourCC)) return FormatOfMasks(file, format) && !file.Failed();
  const u32 code = file.U32At(kPixelFormatStart + 8);
  if (code != FourCC("DX10")) return FormatOfFourCC(code, format) && !file.Failed();
  dataStart = kDataStart + kExtendedHeaderSize;
  const u32 dxgiFormat = file.U32At(kDataStart);
  return !file.Failed() && file.Fits(dataStart, 0, 1) && FormatOfDxgi(dxgiFormat, format);
}

// Channel `mask` of `pixel` scaled to 0..255, rounded to nearest.
u8 Channel(u32 pixel, u32 mask, u8 absent) {
  if (mask == 0) return absent;
  const int shift = std::countr_zero(mask);
  const u64 top = mask >> shift;
  const u64 value = (pixel & mask) >> shift;
  return top == 255 ? u8(value) : u8((value * 255 + top / 2) / top);
}

void DecodeMasks(const u8* data, const Format& format, u32 width, u32 height, u8* out) {
  const size_t count = size_t(width) * height;
  for (size_t i = 0; i < count; ++i, data += format.bytesPerPixel, out += 4) {
    u32 pixel = 0;
    for (u32 byte = 0; byte < format.bytesPerPixel; ++byte) pixel |= u32(data[byte]) << (8 * byte);
    out[0] = Channel(pixel, format.masks[0], 0);
    out[1] = format.grey ? out[0] : Channel(pixel, format.masks[1], 0);
    out[2] = format.grey ? out[0] : Channel(pixel, format.masks[2], 0);
    out[3] = Channel(pixel, format.masks[3], 255);
  }
}

// A decoded 4x4 block, RGBA by pixel, rows from the top.
using Block = u8[16][4];

void Expand565(u16 c, u8* rgb) {
  const u32 r = c >> 11, g = (c >> 5) & 0x3F, b = c & 0x1F;
  rgb[0] = u8(r << 3 | r >> 2);
  rgb[1] = u8(g << 2 | g >> 4);
  rgb[2] = u8(b << 3 | b >> 2);
}

// The colour half of BC1, BC2 and BC3. Only BC1 has the 3-colour mode with transparent black
// (c0 <= c1); the other two always interpolate four colours. Alpha is left alone otherwise.
void DecodeColourBlock(const u8* in, bool allowThreeColour, Block& out) {
  const u16 c0 = LoadU16LE(in), c1 = LoadU16LE(in + 2);
  u8 palette[4][4] = {};
  Expand565(c0, palette[0]);
  Expand565(c1, palette[1]);
  const bool threeColour = allowThreeColour && c0 <= c1;
  for (int ch = 0; ch < 3; ++ch) {
    const u32 a = palette[0][ch], b = palette[1][ch];
    if (threeColour) {
      palette[2][ch] = u8((a + b + 1) / 2);
      palette[3][ch] = 0;
    } else {
      palette[2][ch] = u8((2 * a + b + 1) / 3);
      palette[3][ch] = u8((a + 2 * b + 1) / 3);
    }
  }
  for (int i = 0; i < 4; ++i) palette[i][3] = 255;
  if (threeColour) palette[3][3] = 0;
  const u32 indices = LoadU32LE(in + 4);
  for (int p = 0; p < 16; ++p) {
    const u8* colour = palette[(indices >> (2 * p)) & 3];
    if (allowThreeColour) {
      std::memcpy(out[p], colour, 4);
    } else {
      std::memcpy(out[p], colour, 3);
    }
  }
}

// The 8-byte interpolated block of BC3 alpha, BC4 and BC5: two endpoints and 3-bit indices. With
// e0 > e1 eight values; otherwise six and then 0 and 255.
void DecodeRampBlock(const u8* in, Block& out, int channel) {
  const u32 e0 = in[0], e1 = in[1];
  u8 ramp[8] = {u8(e0), u8(e1)};
  if (e0 > e1) {
    for (u32 i = 1; i < 7; ++i) ramp[i + 1] = u8(((7 - i) * e0 + i * e1 + 3) / 7);
  } else {
    for (u32 i = 1; i < 5; ++i) ramp[i + 1] = u8(((5 - i) * e0 + i * e1 + 2) / 5);
    ramp[6] = 0;
    ramp[7] = 255;
  }
  u64 indices = 0;
  for (int byte = 0; byte < 6; ++byte) indices |= u64(in[2 + byte]) << (8 * byte);
  for (int p = 0; p < 16; ++p) out[p][channel] = ramp[(indices >> (3 * p)) & 7];
}

void DecodeBlock(Layout layout, const u8* in, Block& out) {
  switch (layout) {
    case Layout::kBc1: DecodeColourBlock(in, true, out); break;
    case Layout::kBc2:
      DecodeColourBlock(in + 8, false, out);
      for (int p = 0; p < 16; ++p) out[p][3] = u8(((in[p / 2] >> (4 * (p % 2))) & 0xF) * 17);
      break;
    case Layout::kBc3:
      DecodeColourBlock(in + 8, false, out);
      DecodeRampBlock(in, out, 3);
      break;
    case Layout::kBc4:
      DecodeRampBlock(in, out, 0);
      for (auto& pixel : out) pixel[1] = pixel[2] = pixel[0], pixel[3] = 255;
      break;
    case Layout::kBc5:
      // Blue stays 0 as the format stores none; making z from x and y is the shader's business.
      DecodeRampBlock(in, out, 0);
      DecodeRampBlock(in + 8, out, 1);
      for (auto& pixel : out) pixel[2] = 0, pixel[3] = 255;
      break;
    case Layout::kMasks: break;
  }
}

// Blocks on the right and bottom edges may hang over the image; only their inside is copied.
void DecodeBlocks(const u8* data, Layout layout, u32 width, u32 height, u8* out) {
  const u32 blockBytes = BlockBytes(layout);
  for (u32 by = 0; by < height; by += 4) {
    for (u32 bx = 0; bx < width; bx += 4, data += blockBytes) {
      Block block = {};
      DecodeBlock(layout, data, block);
      for (u32 y = 0; y < 4 && by + y < height; ++y) {
        for (u32 x = 0; x < 4 && bx + x < width; ++x) {
          std::memcpy(out + (size_t(by + y) * width + bx + x) * 4, block[y * 4 + x], 4);
        }
      }
    }
  }
}

}  // namespace

bool DecodeDds(const u8* bytes, size_t size, DecodedImage& image) {
  image = DecodedImage{};
  // Pack entries are below 4 GiB; anything larger is not a texture of theirs.
  if (!bytes || size < kDataStart || size > UINT32_MAX || std::memcmp(bytes, "DDS ", 4) != 0) return false;
  ByteReader file(bytes, u32(size));
  if (file.U32At(kHeaderStart) != kHeaderSize) return false;
  const u32 height = file.U32At(kHeaderStart + 8);
  const u32 width = file.U32At(kHeaderStart + 12);
  if (width == 0 || height == 0 || width > kMaxDimension || height > kMaxDimension) return false;

  Format format;
  size_t dataStart = 0;
  if (!ReadFormat(file, format, dataStart)) return false;
  // The level's size comes from the dimensions and the format; the header's pitch is not trusted.
  u64 levelBytes = 0;
  if (format.layout == Layout::kMasks) {
    levelBytes = u64(width) * height * format.bytesPerPixel;
  } else {
    levelBytes = u64((width + 3) / 4) * ((height + 3) / 4) * BlockBytes(format.layout);
  }
  if (levelBytes > size - dataStart) return false;

  DecodedImage decoded;
  const u32 pixelBytes = width * height * 4;  // at most 2^30 under the cap
  if (!decoded.pixels.Reserve(pixelBytes) || !decoded.pixels.SetSize(pixelBytes)) return false;
  if (format.layout == Layout::kMasks) {
    DecodeMasks(bytes + dataStart, format, width, height, decoded.pixels.Data());
  } else {
    DecodeBlocks(bytes + dataStart, format.layout, width, height, decoded.pixels.Data());
  }
  decoded.width = width;
  decoded.height = height;
  image = std::move(decoded);
  return true;
}
