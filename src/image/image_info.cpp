#include "image/image_info.h"

#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "core/byte_reader.h"

namespace {

// DDS: the magic, then a 124-byte header; a DX10 header of 20 bytes follows where the four-character
// code says so.
constexpr u32 kDdsHeaderSize = 124;
constexpr u64 kDdsHeight = 12, kDdsWidth = 16, kDdsMipCount = 28;
constexpr u64 kDdsPixelFlags = 80, kDdsFourCC = 84, kDdsBitCount = 88;
constexpr u64 kDdsDx10Format = 128;
constexpr u32 kDdsFourCCFlag = 0x4;
constexpr u32 kMaxBitsPerPixel = 128;

// PNG: the signature, then the IHDR chunk's length, type and its width and height, big-endian.
constexpr u8 kPngSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr u32 kIhdrLength = 13;
constexpr u32 kMaxPngDimension = 0x7FFFFFFF;

// JPEG markers: the frame headers that carry the size, and those that stand without a length.
constexpr u8 kStartOfImage = 0xD8, kEndOfImage = 0xD9, kStartOfScan = 0xDA;
constexpr u32 kFrameHeaderLength = 8;  // length, precision, height, width, component count

// TGA: an 18-byte header, sizes little-endian at 12 and 14.
constexpr u32 kTgaHeaderSize = 18;

// BMP: the 14-byte file header, then the info header, whose size tells its kind: 12 for the oldest
// with 16-bit sizes, 16 to 124 for the later ones with signed 32-bit sizes (negative height: top row
// first).
constexpr u64 kBmpInfoStart = 14;
constexpr u32 kBmpCoreHeader = 12, kBmpMinInfoHeader = 16, kBmpMaxInfoHeader = 124;

constexpr u32 FourCC(const char (&code)[5]) {
  return u32(u8(code[0])) | u32(u8(code[1])) << 8 | u32(u8(code[2])) << 16 | u32(u8(code[3])) << 24;
}

void SetPixelFormat(ImageInfo& info, const char* text) {
  std::snprintf(info.pixelFormat, sizeof(info.pixelFormat), "%s", text);
}

const char* BlockFormatOfFourCC(u32 code) {
  switch (code) {
    case FourCC("DXT1"): return "BC1";
    case FourCC("DXT2"):
    case FourCC("DXT3"): return "BC2";
    case FourCC("DXT4"):
    case FourCC("DXT5"): return "BC3";
    case FourCC("ATI1"):
    case FourCC("BC4U"):
    case FourCC("BC4S"): return "BC4";
    case FourCC("ATI2"):
    case FourCC("BC5U"):
    case FourCC("BC5S"): return "BC5";
    default: return nullptr;
  }
}

const char* NameOfDxgi(u32 number) {
  switch (number) {
    case 28:
    case 29:
    case 87:
    case 88:
    case 91:
    case 93: return "uncompressed 32-bit";
    case 71:
    case 72: return "BC1";
    case 74:
    case 75: return "BC2";
    case 77:
    case 78: return "BC3";
    case 80:
    case 81: return "BC4";
    case 83:
    case 84: return "BC5";
    case 95:
    case 96: return "BC6H";
    case 98:
    case 99: return "BC7";
    default: return nullptr;
  }
}

// A code of four printable characters is named as it stands; older files put a format number
// there instead.
void NameFourCC(u32 code, ImageInfo& info) {
  char text[5] = {};
  for (u32 i = 0; i < 4; ++i) {
    text[i] = char(code >> (8 * i));
    if (text[i] < 0x20 || text[i] > 0x7E) {
      std::snprintf(info.pixelFormat, sizeof(info.pixelFormat), "format %u", code);
      return;
    }
  }
  SetPixelFormat(info, text);
}

bool ReadDds(ByteReader& file, ImageInfo& info) {
  if (!file.Fits(0, 1, 4 + kDdsHeaderSize) || file.U32At(4) != kDdsHeaderSize) return false;
  info.format = ImageFormat::kDds;
  info.height = file.U32At(kDdsHeight);
  info.width = file.U32At(kDdsWidth);
  const u32 declaredLevels = file.U32At(kDdsMipCount);
  const u32 flags = file.U32At(kDdsPixelFlags);
  const u32 code = file.U32At(kDdsFourCC);
  const u32 bitCount = file.U32At(kDdsBitCount);
  if (file.Failed() || info.width == 0 || info.height == 0) return false;
  // No count means the top level alone; each level halves the larger side down to 1.
  info.levels = declaredLevels ? declaredLevels : 1;
  if (info.levels > u32(std::bit_width(info.width > info.height ? info.width : info.height))) return false;
  if (!(flags & kDdsFourCCFlag)) {
    if (bitCount == 0 || bitCount % 8 != 0 || bitCount > kMaxBitsPerPixel) return false;
    std::snprintf(info.pixelFormat, sizeof(info.pixelFormat), "uncompressed %u-bit", bitCount);
    return true;
  }
  if (code == FourCC("DX10")) {
    const u32 number = file.U32At(kDdsDx10Format);
    if (file.Failed()) return false;
    if (const char* name = NameOfDxgi(number)) {
      SetPixelFormat(info, name);
    } else {
      std::snprintf(info.pixelFormat, sizeof(info.pixelFormat), "DXGI %u", number);
    }
    return true;
  }
  if (const char* name = BlockFormatOfFourCC(code)) {
    SetPixelFormat(info, name);
  } else {
    NameFourCC(code, info);
  }
  return true;
}

bool ReadPng(ByteReader& file, ImageInfo& info) {
  u32 length = 0, type = 0;
  if (!file.Seek(sizeof(kPngSignature)) || !file.ReadU32BE(length) || !file.ReadU32BE(type)) return false;
  if (length != kIhdrLength || type != LoadU32BE(reinterpret_cast<const u8*>("IHDR"))) return false;
  // The whole chunk's data must be there, not only the sizes at its start.
  if (!file.Fits(file.Position(), 1, kIhdrLength)) return false;
  info.format = ImageFormat::kPng;
  if (!file.ReadU32BE(info.width) || !file.ReadU32BE(info.height)) return false;
  return info.width != 0 && info.height != 0 && info.width <= kMaxPngDimension && info.height <= kMaxPngDimension;
}

bool ReadU16BE(ByteReader& file, u32& out) {
  u8 pair[2] = {};
  if (!file.ReadBytes(pair, 2)) return false;
  out = u32(pair[0]) << 8 | pair[1];
  return true;
}

bool IsFrameHeader(u8 marker) {
  // C4 (Huffman tables), C8 (reserved) and CC (arithmetic conditioning) share the range.
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// Segments up to the frame header. Every pass reads at least two bytes, so the walk ends.
bool ReadJpeg(ByteReader& file, ImageInfo& info) {
  info.format = ImageFormat::kJpeg;
  if (!file.Seek(2)) return false;
  for (;;) {
    u8 marker = 0;
    if (!file.ReadBytes(&marker, 1) || marker != 0xFF) return false;
    // Any number of 0xFF may pad before a marker.
    while (marker == 0xFF) {
      if (!file.ReadBytes(&marker, 1)) return false;
    }
    if (marker == kStartOfImage || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) continue;
    if (marker == kEndOfImage || marker == kStartOfScan) return false;  // pixels before any size
    u32 length = 0;
    if (!ReadU16BE(file, length) || length < 2) return false;
    if (IsFrameHeader(marker)) {
      u8 precision = 0;
      // The whole frame header, components included, as with the other formats' headers.
      if (length < kFrameHeaderLength || !file.Fits(file.Position(), 1, length - 2)) return false;
      if (!file.ReadBytes(&precision, 1)) return false;
      if (!ReadU16BE(file, info.height) || !ReadU16BE(file, info.width)) return false;
      // A height of 0 is given later by a DNL marker, which nothing we show uses.
      return info.width != 0 && info.height != 0;
    }
    if (!file.Skip(length - 2)) return false;
  }
}

bool ReadBmp(ByteReader& file, ImageInfo& info) {
  info.format = ImageFormat::kBmp;
  const u32 headerSize = file.U32At(kBmpInfoStart);
  if (file.Failed() || !file.Fits(kBmpInfoStart, 1, headerSize)) return false;
  if (headerSize == kBmpCoreHeader) {
    info.width = file.LoadAt<u16>(kBmpInfoStart + 4);
    info.height = file.LoadAt<u16>(kBmpInfoStart + 6);
  } else if (headerSize >= kBmpMinInfoHeader && headerSize <= kBmpMaxInfoHeader) {
    const i32 width = file.LoadAt<i32>(kBmpInfoStart + 4);
    const i32 height = file.LoadAt<i32>(kBmpInfoStart + 8);
    if (width <= 0 || height == 0 || height == INT32_MIN) return false;
    info.width = u32(width);
    info.height = u32(height < 0 ? -height : height);
  } else {
    return false;
  }
  return !file.Failed() && info.width != 0 && info.height != 0;
}

bool ReadTga(ByteReader& file, ImageInfo& info) {
  info.format = ImageFormat::kTga;
  if (!file.Fits(0, 1, kTgaHeaderSize)) return false;
  const u8 mapType = file.LoadAt<u8>(1);
  const u8 imageType = file.LoadAt<u8>(2);
  const u8 mapEntryBits = file.LoadAt<u8>(7);
  const u8 pixelBits = file.LoadAt<u8>(16);
  const bool mapped = imageType == 1 || imageType == 9;
  const bool direct = imageType == 2 || imageType == 3 || imageType == 10 || imageType == 11;
  if (mapType > 1 || (!mapped && !direct) || (mapped && mapType != 1)) return false;
  if (mapType == 1 && mapEntryBits != 15 && mapEntryBits != 16 && mapEntryBits != 24 && mapEntryBits != 32) {
    return false;
  }
  if (pixelBits != 8 && pixelBits != 15 && pixelBits != 16 && pixelBits != 24 && pixelBits != 32) return false;
  info.width = file.LoadAt<u16>(12);
  info.height = file.LoadAt<u16>(14);
  return info.width != 0 && info.height != 0;
}

bool StartsWith(const u8* bytes, size_t size, const void* magic, size_t length) {
  return size >= length && std::memcmp(bytes, magic, length) == 0;
}

}  // namespace

bool ReadImageInfo(const u8* bytes, size_t size, ImageInfo& info) {
  info = ImageInfo{};
  if (!bytes) return false;
  // Only headers are read: a file past 4 GiB is cut to what the reader can address.
  ByteReader file(bytes, size > UINT32_MAX ? UINT32_MAX : u32(size));
  bool read = false;
  if (StartsWith(bytes, size, "DDS ", 4)) {
    read = ReadDds(file, info);
  } else if (StartsWith(bytes, size, kPngSignature, sizeof(kPngSignature))) {
    read = ReadPng(file, info);
  } else if (StartsWith(bytes, size, "\xFF\xD8\xFF", 3)) {
    read = ReadJpeg(file, info);
  } else if (StartsWith(bytes, size, "BM", 2)) {
    read = ReadBmp(file, info);
  } else {
    read = ReadTga(file, info);
  }
  if (!read) info = ImageInfo{};
  return read;
}

const char* ImageFormatName(ImageFormat format) {
  switch (format) {
    case ImageFormat::kDds: return "DDS";
    case ImageFormat::kPng: return "PNG";
    case ImageFormat::kJpeg: return "JPEG";
    case ImageFormat::kTga: return "TGA";
    case ImageFormat::kBmp: return "BMP";
  }
  return "";
}
