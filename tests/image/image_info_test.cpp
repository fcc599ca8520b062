#include "image/image_info.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "game_writers/image_writer.h"

namespace {

using gamewriters::BuildDds;
using gamewriters::BuildDdsDx10;
using gamewriters::BuildDdsWithFormat;
using gamewriters::DdsFourCC;

constexpr u32 kFourCCFlag = 0x4;
constexpr size_t kDdsMipCount = 28;

std::string Bytes(std::initializer_list<int> values) {
  std::string out;
  for (int v : values) out.push_back(char(v));
  return out;
}

std::string Patched(std::string file, size_t at, std::initializer_list<int> values) {
  const std::string replacement = Bytes(values);
  return file.replace(at, replacement.size(), replacement);
}

std::string WithFourCC(u32 width, u32 height, const char* code) {
  return BuildDdsWithFormat(width, height, {kFourCCFlag, DdsFourCC(code), 0, {}}, std::string(64, '\0'));
}

std::string WithLevels(std::string file, u8 levels) { return Patched(std::move(file), kDdsMipCount, {levels}); }

// A baseline JPEG's start: an APP0 segment, then the frame header with `width` x `height`, then
// the start of the scan.
std::string Jpeg(int frameMarker, u16 width, u16 height, const std::string& padding = "") {
  return Bytes({0xFF, 0xD8}) + Bytes({0xFF, 0xE0, 0, 6, 'J', 'F', 'I', 'F'}) + padding +
         Bytes({0xFF, frameMarker, 0, 11, 8, height >> 8, height & 0xFF, width >> 8, width & 0xFF, 1, 1, 0x11, 0}) +
         Bytes({0xFF, 0xDA, 0, 2});
}

// A BMP's file header and an info header of `headerSize` bytes, sizes as that header stores them.
std::string Bmp(u32 headerSize, i32 width, i32 height) {
  std::string out = Bytes({'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  std::string header(headerSize, '\0');
  header[0] = char(headerSize);
  const int sizeBytes = headerSize == 12 ? 2 : 4;
  for (int i = 0; i < sizeBytes; ++i) {
    header[4 + i] = char(u32(width) >> (8 * i));
    header[4 + sizeBytes + i] = char(u32(height) >> (8 * i));
  }
  return out + header;
}

bool Read(const std::string& file, ImageInfo& info) {
  // A buffer of exactly the file's length, so that the sanitizer sees any read past it.
  const std::vector<u8> bytes(file.begin(), file.end());
  return ReadImageInfo(bytes.data(), bytes.size(), info);
}

TEST(ImageInfo, EachFormatGivesItsSizesLevelsAndPixelFormat) {
  struct Case {
    const char* name;
    std::string file;
    size_t header;  // the bytes it needs: every shorter prefix fails
    ImageFormat format;
    u32 width, height, levels;
    std::string pixelFormat;
  };
  const std::vector<u8> pixels(3 * 2 * 4, 0x80);
  const Case cases[] = {
      {"png", gamewriters::BuildPng(3, 2, pixels), 29, ImageFormat::kPng, 3, 2, 1, ""},
      {"tga", gamewriters::BuildTga(3, 2, pixels), 18, ImageFormat::kTga, 3, 2, 1, ""},
      {"dds uncompressed", BuildDds(3, 2, pixels), 128, ImageFormat::kDds, 3, 2, 1, "uncompressed 32-bit"},
      {"dds 565", BuildDdsWithFormat(4, 4, {0x40, 0, 16, {0xF800, 0x07E0, 0x001F, 0}}, ""), 128, ImageFormat::kDds, 4,
       4, 1, "uncompressed 16-bit"},
      {"dds BC1 with every level", WithLevels(WithFourCC(8, 2, "DXT1"), 4), 128, ImageFormat::kDds, 8, 2, 4, "BC1"},
      {"dds BC2", WithFourCC(4, 4, "DXT3"), 128, ImageFormat::kDds, 4, 4, 1, "BC2"},
      {"dds BC3", WithLevels(WithFourCC(16, 16, "DXT5"), 3), 128, ImageFormat::kDds, 16, 16, 3, "BC3"},
      {"dds BC5", WithFourCC(4, 4, "ATI2"), 128, ImageFormat::kDds, 4, 4, 1, "BC5"},
      {"dds unknown code", WithFourCC(4, 4, "RGBG"), 128, ImageFormat::kDds, 4, 4, 1, "RGBG"},
      {"dds format number", BuildDdsWithFormat(4, 4, {kFourCCFlag, 113, 0, {}}, ""), 128, ImageFormat::kDds, 4, 4, 1,
       "format 113"},
      {"dds dx10 BC7", BuildDdsDx10(4, 4, 98, std::string(16, '\0')), 132, ImageFormat::kDds, 4, 4, 1, "BC7"},
      {"dds dx10 other", BuildDdsDx10(4, 4, 2, ""), 132, ImageFormat::kDds, 4, 4, 1, "DXGI 2"},
      {"jpeg", Jpeg(0xC0, 640, 480), 23, ImageFormat::kJpeg, 640, 480, 1, ""},
      {"jpeg progressive after fill bytes", Jpeg(0xC2, 7, 300, Bytes({0xFF, 0xFE, 0, 3, 'x', 0xFF})), 29,
       ImageFormat::kJpeg, 7, 300, 1, ""},
      {"bmp", Bmp(40, 9, 4), 54, ImageFormat::kBmp, 9, 4, 1, ""},
      {"bmp top row first", Bmp(124, 9, -4), 138, ImageFormat::kBmp, 9, 4, 1, ""},
      {"bmp oldest header", Bmp(12, 300, 2), 26, ImageFormat::kBmp, 300, 2, 1, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ImageInfo info;
    ASSERT_TRUE(Read(c.file, info));
    EXPECT_EQ(info.format, c.format);
    EXPECT_EQ(info.width, c.width);
    EXPECT_EQ(info.height, c.height);
    EXPECT_EQ(info.levels, c.levels);
    EXPECT_EQ(std::string(info.pixelFormat), c.pixelFormat);

    ImageInfo prefix;
    ASSERT_LE(c.header, c.file.size());
    EXPECT_TRUE(Read(c.file.substr(0, c.header), prefix)) << "the header alone is enough";
    EXPECT_EQ(prefix.width, c.width);
    for (size_t length = 0; length < c.header; ++length) {
      EXPECT_FALSE(Read(c.file.substr(0, length), prefix)) << length << " bytes";
      EXPECT_EQ(prefix.width, 0u) << length << " bytes";
    }
  }
}

TEST(ImageInfo, HeadersThatDontAddUpFail) {
  const std::vector<u8> pixels(8 * 8 * 4, 0x80);
  const std::string png = gamewriters::BuildPng(8, 8, pixels), tga = gamewriters::BuildTga(8, 8, pixels);
  struct Case {
    const char* name;
    std::string file;
  };
  const Case cases[] = {
      {"dds zero width", WithFourCC(0, 4, "DXT1")},
      {"dds more levels than halvings", WithLevels(WithFourCC(8, 8, "DXT1"), 5)},
      {"dds wrong header size", Patched(WithFourCC(4, 4, "DXT1"), 4, {100})},
      {"dds without a bit count", BuildDdsWithFormat(4, 4, {0x40, 0, 0, {0xFF, 0, 0, 0}}, "")},
      {"dds dx10 header cut off", BuildDdsWithFormat(4, 4, {kFourCCFlag, DdsFourCC("DX10"), 0, {}}, "")},
      {"png chunk other than IHDR first", Patched(png, 15, {'X'})},
      {"png wrong IHDR length", Patched(png, 11, {14})},
      {"png zero height", Patched(png, 20, {0, 0, 0, 0})},
      {"png width past 2^31", Patched(png, 16, {0x80, 0, 0, 0})},
      {"jpeg scan before any frame", Bytes({0xFF, 0xD8, 0xFF, 0xDA, 0, 2, 0xFF, 0xC0, 0, 11, 8, 0, 1, 0, 1})},
      {"jpeg segment length 1", Bytes({0xFF, 0xD8, 0xFF, 0xE0, 0, 1, 0xFF, 0xC0, 0, 11, 8, 0, 1, 0, 1})},
      {"jpeg frame header too short", Bytes({0xFF, 0xD8, 0xFF, 0xC0, 0, 7, 8, 0, 1, 0, 1, 0, 0})},
      {"jpeg zero height", Jpeg(0xC0, 4, 0)},
      {"jpeg junk between segments",
       Bytes({0xFF, 0xD8, 0xFF, 0xE0, 0, 4, 'a', 'b', 0x00, 0xFF, 0xC0, 0, 11, 8, 0, 1, 0, 1, 1, 1, 0x11, 0})},
      {"bmp unknown header size", Bmp(200, 4, 4)},
      {"bmp negative width", Bmp(40, -4, 4)},
      {"bmp most negative height", Bmp(40, 4, INT32_MIN)},
      {"tga unknown image type", Patched(tga, 2, {4})},
      {"tga colour map without its entry size", Patched(tga, 1, {1})},
      {"tga twelve bits a pixel", Patched(tga, 16, {12})},
      {"tga zero width", Patched(tga, 12, {0, 0})},
      {"text", "<Materials>\n  <Material name=\"x\"/>\n</Materials>\n"},
  };
  for (const Case& c : cases) {
    ImageInfo info;
    EXPECT_FALSE(Read(c.file, info)) << c.name;
    EXPECT_EQ(info.width, 0u) << c.name;
    EXPECT_EQ(std::string(info.pixelFormat), "") << c.name;
  }
  ImageInfo info;
  EXPECT_FALSE(ReadImageInfo(nullptr, 0, info));
}

}  // namespace
