#include "game_writers/image_writer.h"

#include <zlib.h>

namespace gamewriters {

namespace {

void PutBE(std::string& out, u32 value) {
  for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<char>(value >> shift));
}

void PutLE(std::string& out, u32 value) {
  for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<char>(value >> shift));
}

std::vector<u8> Padded(u32 width, u32 height, const std::vector<u8>& rgba) {
  std::vector<u8> pixels = rgba;
  pixels.resize(size_t(width) * height * 4);
  return pixels;
}

std::string Bgra(const std::vector<u8>& rgba) {
  std::string out;
  for (size_t at = 0; at + 3 < rgba.size(); at += 4) {
    out += {static_cast<char>(rgba[at + 2]), static_cast<char>(rgba[at + 1]), static_cast<char>(rgba[at]),
            static_cast<char>(rgba[at + 3])};
  }
  return out;
}

// Length, type, data and the CRC over type and data.
std::string PngChunk(const char* type, const std::string& data) {
  std::string out;
  PutBE(out, static_cast<u32>(data.size()));
  const std::string body = type + data;
  out += body;
  PutBE(out, static_cast<u32>(crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()))));
  return out;
}

}  // namespace

std::string BuildPng(u32 width, u32 height, const std::vector<u8>& rgba, size_t trailingZeros) {
  const std::vector<u8> pixels = Padded(width, height, rgba);
  std::string rows;
  for (u32 y = 0; y < height; ++y) {
    rows.push_back('\0');  // filter type None
    rows.append(reinterpret_cast<const char*>(pixels.data()) + size_t(y) * width * 4, size_t(width) * 4);
  }
  rows.append(trailingZeros, '\0');
  uLongf packedSize = compressBound(rows.size());
  std::string packed(packedSize, '\0');
  if (compress(reinterpret_cast<Bytef*>(packed.data()), &packedSize, reinterpret_cast<const Bytef*>(rows.data()),
               rows.size()) != Z_OK) {
    return "";
  }
  packed.resize(packedSize);

  std::string header;
  PutBE(header, width);
  PutBE(header, height);
  header += std::string{8, 6, 0, 0, 0};  // 8 bits per channel, RGBA, deflate, no filter method, no interlace
  return "\x89PNG\r\n\x1a\n" + PngChunk("IHDR", header) + PngChunk("IDAT", packed) + PngChunk("IEND", "");
}

std::string BuildTga(u16 width, u16 height, const std::vector<u8>& rgba) {
  constexpr char kTrueColour = 2, kBitsPerPixel = 32, kTopLeftWithAlpha = 0x28;
  std::string out = {0, 0, kTrueColour, 0, 0, 0, 0, 0, 0, 0, 0, 0};  // no id, no colour map, origin 0, 0
  out += {char(width), char(width >> 8), char(height), char(height >> 8), kBitsPerPixel, kTopLeftWithAlpha};
  return out + Bgra(Padded(width, height, rgba));
}

std::string BuildDdsWithFormat(u32 width, u32 height, const DdsPixelFormat& format, const std::string& data) {
  constexpr u32 kHeaderSize = 124, kPixelFormatSize = 32;
  constexpr u32 kCaps = 0x1, kHeight = 0x2, kWidth = 0x4, kPixelFormat = 0x1000;
  constexpr u32 kTexture = 0x1000;
  std::string out = "DDS ";
  for (u32 word : {kHeaderSize, kCaps | kHeight | kWidth | kPixelFormat, height, width, 0u, 0u, 0u}) PutLE(out, word);
  for (int reserved = 0; reserved < 11; ++reserved) PutLE(out, 0);
  for (u32 word : {kPixelFormatSize, format.flags, format.fourCC, format.bitCount}) PutLE(out, word);
  for (u32 mask : format.masks) PutLE(out, mask);
  for (u32 word : {kTexture, 0u, 0u, 0u, 0u}) PutLE(out, word);
  return out + data;
}

std::string BuildDdsDx10(u32 width, u32 height, u32 dxgiFormat, const std::string& data) {
  constexpr u32 kFourCCFlag = 0x4, kTexture2D = 3;
  std::string extended;
  for (u32 word : {dxgiFormat, kTexture2D, 0u, 1u, 0u}) PutLE(extended, word);  // misc, array size, misc 2
  return BuildDdsWithFormat(width, height, {kFourCCFlag, DdsFourCC("DX10"), 0, {}}, extended + data);
}

std::string BuildDds(u32 width, u32 height, const std::vector<u8>& rgba) {
  constexpr u32 kAlphaPixels = 0x1, kRgb = 0x40;
  return BuildDdsWithFormat(width, height,
                            {kRgb | kAlphaPixels, 0, 32, {0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000}},
                            Bgra(Padded(width, height, rgba)));
}

}  // namespace gamewriters
