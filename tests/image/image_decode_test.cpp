#include "image/image_decode.h"

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <string>
#include <vector>

#include "game_writers/image_writer.h"
#include "support/allocation_failure.h"

namespace {

using gamewriters::BuildDdsDx10;
using gamewriters::BuildDdsWithFormat;
using gamewriters::DdsFourCC;
using gamewriters::DdsPixelFormat;
using Pixel = std::array<u8, 4>;
using namespace std::string_literals;

constexpr u32 kAlphaPixels = 0x1, kAlphaOnly = 0x2, kFourCCFlag = 0x4, kRgb = 0x40, kLuminance = 0x20000;

std::string Bytes(std::initializer_list<int> values) {
  std::string out;
  for (int v : values) out.push_back(char(v));
  return out;
}

std::string WithFourCC(u32 width, u32 height, const char* code, const std::string& data) {
  return BuildDdsWithFormat(width, height, {kFourCCFlag, DdsFourCC(code), 0, {}}, data);
}

std::string Patched(std::string file, size_t at, u32 value) {
  for (int i = 0; i < 4; ++i) file[at + i] = char(value >> (8 * i));
  return file;
}

bool Decode(const std::string& file, DecodedImage& image) {
  return DecodeImage(reinterpret_cast<const u8*>(file.data()), file.size(), image);
}

Pixel At(const DecodedImage& image, u32 x, u32 y) {
  const u8* p = image.pixels.Data() + (size_t(y) * image.width + x) * 4;
  return {p[0], p[1], p[2], p[3]};
}

std::vector<u8> Pixels(const DecodedImage& image) { return {image.pixels.begin(), image.pixels.end()}; }

// Index p % 8 for every pixel p, so one block shows all eight values of a ramp.
const std::string kRampIndices = Bytes({0x88, 0xC6, 0xFA, 0x88, 0xC6, 0xFA});
// Indices 0, 1, 2, 3 along every row.
const std::string kColourIndices = Bytes({0xE4, 0xE4, 0xE4, 0xE4});

TEST(ImageDecode, PngTgaAndDdsRoundTrip) {
  const std::vector<u8> rgba = {255, 0, 0, 255, 0,   255, 0,   128, 0, 0,  255, 0,
                                1,   2, 3, 4,   250, 251, 252, 253, 9, 99, 199, 255};
  for (const std::string& file :
       {gamewriters::BuildPng(3, 2, rgba), gamewriters::BuildTga(3, 2, rgba), gamewriters::BuildDds(3, 2, rgba)}) {
    DecodedImage image;
    ASSERT_TRUE(Decode(file, image)) << file.substr(0, 4);
    EXPECT_EQ(image.width, 3u);
    EXPECT_EQ(image.height, 2u);
    EXPECT_EQ(Pixels(image), rgba) << file.substr(0, 4);
  }
}

TEST(DdsDecode, BitMaskLayoutsScaleEachChannel) {
  struct Case {
    const char* name;
    DdsPixelFormat format;
    std::string data;  // one pixel
    Pixel expected;
  };
  const Case cases[] = {
      {"565", {kRgb, 0, 16, {0xF800, 0x07E0, 0x001F, 0}}, Bytes({0x10, 0x04}), {0, 130, 132, 255}},
      {"4444",
       {kRgb | kAlphaPixels, 0, 16, {0x0F00, 0x00F0, 0x000F, 0xF000}},
       Bytes({0x3C, 0x8F}),
       {255, 51, 204, 136}},
      {"1555", {kRgb | kAlphaPixels, 0, 16, {0x7C00, 0x03E0, 0x001F, 0x8000}}, Bytes({0x01, 0xFC}), {255, 0, 8, 255}},
      {"888", {kRgb, 0, 24, {0xFF0000, 0xFF00, 0xFF, 0}}, Bytes({0x10, 0x20, 0x30}), {0x30, 0x20, 0x10, 255}},
      {"alpha mask without its flag",
       {kRgb, 0, 32, {0xFF0000, 0xFF00, 0xFF, 0xFF000000}},
       Bytes({1, 2, 3, 4}),
       {3, 2, 1, 255}},
      {"L8", {kLuminance, 0, 8, {0xFF, 0, 0, 0}}, Bytes({0x7F}), {127, 127, 127, 255}},
      {"L8A8", {kLuminance | kAlphaPixels, 0, 16, {0xFF, 0, 0, 0xFF00}}, Bytes({0x40, 0x80}), {64, 64, 64, 128}},
      {"L16", {kLuminance, 0, 16, {0xFFFF, 0, 0, 0}}, Bytes({0x80, 0x80}), {128, 128, 128, 255}},
      {"A8", {kAlphaOnly, 0, 8, {0, 0, 0, 0xFF}}, Bytes({0x99}), {0, 0, 0, 0x99}},
  };
  for (const Case& c : cases) {
    DecodedImage image;
    ASSERT_TRUE(Decode(BuildDdsWithFormat(1, 1, c.format, c.data), image)) << c.name;
    EXPECT_EQ(At(image, 0, 0), c.expected) << c.name;
  }
}

// A channel of a 4x4 block, pixel by pixel, rows from the top.
using Channel = std::array<u8, 16>;

Channel Repeat(std::initializer_list<u8> values) {
  Channel out{};
  for (u32 p = 0; p < 16; ++p) out[p] = values.begin()[p % values.size()];
  return out;
}

TEST(DdsDecode, BlockFormatsGiveTheirChannels) {
  // c0 < c1, the transparent mode of BC1; BC2 and BC3 keep four opaque colours all the same.
  const std::string colour = Bytes({0, 0, 0xFF, 0xFF}) + kColourIndices;
  const Channel grey = Repeat({0, 255, 85, 170}), zero = Repeat({0}), full = Repeat({255});
  const Channel steps = Repeat({0, 17, 34, 51, 68, 85, 102, 119, 136, 153, 170, 187, 204, 221, 238, 255});
  const Channel ramp8 = Repeat({140, 0, 120, 100, 80, 60, 40, 20});  // 140 > 0: eight values
  const Channel ramp6 = Repeat({0, 100, 20, 40, 60, 80, 0, 255});    // 0 <= 100: six, then 0 and 255
  // BC1 with c0 > c1 interpolates four colours; otherwise three and transparent black.
  const Channel four = Repeat({255, 0, 170, 85}), three = Repeat({0, 132, 66, 0}), same = Repeat({132, 132, 132, 0});
  const Channel holed = Repeat({255, 255, 255, 0});
  const std::string eight = Bytes({140, 0}) + kRampIndices, six = Bytes({0, 100}) + kRampIndices;
  struct Case {
    const char* fourCC;
    std::string data;
    std::array<const Channel*, 4> rgba;
  };
  const Case cases[] = {
      {"DXT1", Bytes({0xFF, 0xFF, 0, 0}) + kColourIndices, {&four, &four, &four, &full}},
      {"DXT1", Bytes({0, 0, 0x00, 0x80}) + kColourIndices, {&three, &zero, &zero, &holed}},
      {"DXT1", Bytes({0x00, 0x80, 0x00, 0x80}) + kColourIndices, {&same, &zero, &zero, &holed}},
      {"DXT3", Bytes({0x10, 0x32, 0x54, 0x76, 0x98, 0xBA, 0xDC, 0xFE}) + colour, {&grey, &grey, &grey, &steps}},
      {"DXT5", eight + colour, {&grey, &grey, &grey, &ramp8}},
      {"DXT5", six + colour, {&grey, &grey, &grey, &ramp6}},
      {"ATI1", eight, {&ramp8, &ramp8, &ramp8, &full}},
      {"BC4U", six, {&ramp6, &ramp6, &ramp6, &full}},
      {"ATI2", eight + six, {&ramp8, &ramp6, &zero, &full}},
      {"BC5U", six + eight, {&ramp6, &ramp8, &zero, &full}},
  };
  for (const Case& c : cases) {
    DecodedImage image;
    ASSERT_TRUE(Decode(WithFourCC(4, 4, c.fourCC, c.data), image)) << c.fourCC;
    for (u32 p = 0; p < 16; ++p) {
      const Pixel expected = {(*c.rgba[0])[p], (*c.rgba[1])[p], (*c.rgba[2])[p], (*c.rgba[3])[p]};
      EXPECT_EQ(At(image, p % 4, p / 4), expected) << c.fourCC << " pixel " << p;
    }
  }
}

TEST(DdsDecode, Dx10FormatsMatchTheirOlderForms) {
  const std::string bc1 = Bytes({0, 0, 0x00, 0x80}) + kColourIndices;
  const std::string alpha = Bytes({140, 0}) + kRampIndices;
  const auto masks = [](u32 flags, u32 r, u32 b, u32 a) {
    return BuildDdsWithFormat(1, 1, {flags, 0, 32, {r, 0xFF00, b, a}}, Bytes({1, 2, 3, 4}));
  };
  struct Case {
    std::array<u32, 2> dxgi;  // plain and sRGB
    std::string data;
    std::string older;  // the same texture without the DX10 header
  };
  const Case cases[] = {
      {{28, 29}, Bytes({1, 2, 3, 4}), masks(kRgb | kAlphaPixels, 0xFF, 0xFF0000, 0xFF000000)},
      {{87, 91}, Bytes({1, 2, 3, 4}), masks(kRgb | kAlphaPixels, 0xFF0000, 0xFF, 0xFF000000)},
      {{88, 93}, Bytes({1, 2, 3, 4}), masks(kRgb, 0xFF0000, 0xFF, 0)},
      {{71, 72}, bc1, WithFourCC(4, 4, "DXT1", bc1)},
      {{74, 75}, alpha + bc1, WithFourCC(4, 4, "DXT3", alpha + bc1)},
      {{77, 78}, alpha + bc1, WithFourCC(4, 4, "DXT5", alpha + bc1)},
      {{80, 80}, alpha, WithFourCC(4, 4, "ATI1", alpha)},
      {{83, 83}, alpha + bc1, WithFourCC(4, 4, "ATI2", alpha + bc1)},
  };
  for (const Case& c : cases) {
    DecodedImage older;
    ASSERT_TRUE(Decode(c.older, older)) << c.dxgi[0];
    for (u32 dxgi : c.dxgi) {
      DecodedImage image;
      const u32 side = c.data.size() == 4 ? 1 : 4;
      ASSERT_TRUE(Decode(BuildDdsDx10(side, side, dxgi, c.data), image)) << dxgi;
      EXPECT_EQ(Pixels(image), Pixels(older)) << dxgi;
    }
  }
}

// Every shorter prefix of a good file fails, each copied to a buffer of exactly its length so that
// the sanitizer sees any read past it; the whole file decodes.
TEST(DdsDecode, EveryPrefixFailsAndTheWholeFileDecodes) {
  const std::vector<u8> rgba(4 * 5 * 3, 77);
  const std::string bc1 = Bytes({0, 0, 0x00, 0x80}) + kColourIndices;
  const std::pair<const char*, std::string> files[] = {
      {"bit masks", gamewriters::BuildDds(5, 3, rgba)},
      {"four-character code", WithFourCC(4, 4, "DXT1", bc1)},
      {"DX10 header", BuildDdsDx10(4, 4, 71, bc1)},
  };
  for (const auto& [what, file] : files) {
    for (size_t length = 0; length <= file.size(); ++length) {
      std::vector<u8> prefix(file.begin(), file.begin() + std::ptrdiff_t(length));
      DecodedImage image;
      EXPECT_EQ(DecodeImage(prefix.data(), prefix.size(), image), length == file.size()) << what << ", " << length;
    }
  }
}

TEST(DdsDecode, EdgeBlocksAreClippedToTheImage) {
  for (const auto& [width, height] : {std::pair<u32, u32>{5, 3}, {3, 5}, {1, 1}, {8, 6}}) {
    // A flat block per grey level, 10, 20, 30, ... in row order.
    std::string blocks;
    const u32 across = (width + 3) / 4, down = (height + 3) / 4;
    for (u32 b = 0; b < across * down; ++b) blocks += Bytes({int(10 * (b + 1)), int(10 * (b + 1)), 0, 0, 0, 0, 0, 0});
    DecodedImage image;
    ASSERT_TRUE(Decode(WithFourCC(width, height, "ATI1", blocks), image)) << width << "x" << height;
    ASSERT_EQ(image.pixels.Count(), width * height * 4);
    for (u32 y = 0; y < height; ++y) {
      for (u32 x = 0; x < width; ++x) {
        const u8 level = u8(10 * ((y / 4) * across + x / 4 + 1));
        EXPECT_EQ(At(image, x, y), (Pixel{level, level, level, 255})) << width << "x" << height << " " << x << "," << y;
      }
    }
  }
}

TEST(ImageDecode, BadFilesFailAndEmptyTheImage) {
  const std::string dxt1 = WithFourCC(4, 4, "DXT1", std::string(8, '\x55'));
  const std::string png = gamewriters::BuildPng(4, 4, {});
  const std::pair<const char*, std::string> cases[] = {
      {"empty", ""},
      {"truncated header", dxt1.substr(0, 100)},
      {"wrong header size", Patched(dxt1, 4, 123)},
      {"truncated data", dxt1.substr(0, dxt1.size() - 1)},
      {"a 5x3 image needs two blocks", WithFourCC(5, 3, "DXT1", std::string(8, '\0'))},
      {"zero width", Patched(dxt1, 16, 0)},
      {"zero height", Patched(dxt1, 12, 0)},
      {"huge width", Patched(dxt1, 16, 16385)},
      {"huge height", Patched(dxt1, 12, 0xFFFFFFFF)},
      {"huge uncompressed", BuildDdsWithFormat(16384, 16384, {kRgb, 0, 32, {0xFF, 0xFF00, 0xFF0000, 0}}, "")},
      {"unknown four-character code", WithFourCC(4, 4, "DXT9", std::string(16, '\0'))},
      {"unknown DX10 format", BuildDdsDx10(1, 1, 2, std::string(16, '\0'))},
      {"DX10 header cut short", WithFourCC(1, 1, "DX10", Bytes({28, 0, 0}))},
      {"12 bits a pixel", BuildDdsWithFormat(1, 1, {kRgb, 0, 12, {0xF00, 0xF0, 0xF, 0}}, std::string(4, '\0'))},
      {"no colour masks", BuildDdsWithFormat(1, 1, {kRgb, 0, 32, {}}, std::string(4, '\0'))},
      {"mask beyond the pixel",
       BuildDdsWithFormat(1, 1, {kRgb, 0, 16, {0xFF0000, 0xFF00, 0xFF, 0}}, std::string(2, '\0'))},
      {"no layout flag", BuildDdsWithFormat(1, 1, {0, 0, 32, {0xFF, 0xFF00, 0xFF0000, 0}}, std::string(4, '\0'))},
      {"GIF", "GIF89a\x01\x00\x01\x00\x80\x00\x00\xFF\xFF\xFF\x00\x00\x00!\xF9\x04\x01\x00\x00\x00\x00,"s},
      {"truncated PNG", png.substr(0, png.size() / 2)},
      // An empty image data chunk, which the PNG reader copies as zero bytes into no buffer.
      {"PNG with an empty data chunk",
       Bytes({0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a, 0x00, 0x00, 0x00, 0x0d, 0x49, 0x48, 0x44, 0x52, 0x00,
              0x00, 0x00, 0x05, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00,
              0x00, 0x00, 0x00, 0x49, 0x44, 0x41, 0x54, 0x78, 0x9c, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x09,
              0x00, 0x00, 0x67, 0xf2, 0xf1, 0xff, 0x8c, 0x4c, 0xcc, 0x2c, 0x00, 0x51, 0x0d, 0x06, 0xb9, 0xa0, 0x57,
              0x9b, 0x64, 0x00, 0x00, 0x00, 0x00, 0x49, 0x45, 0x4e, 0x44, 0xae, 0x42, 0x60, 0x82})},
      {"a 16384x16384 TGA of 82 bytes", Patched(gamewriters::BuildTga(4, 4, {}), 12, 0x40004000)},
      {"random bytes", Bytes({0x5E, 0xB7, 0x21, 0x93, 0x0C, 0xF4, 0x6A, 0xD1, 0x38, 0x8F, 0xE2, 0x47, 0x15, 0xAB})},
  };
  for (const auto& [name, file] : cases) {
    DecodedImage image;
    ASSERT_TRUE(Decode(png, image));
    EXPECT_FALSE(Decode(file, image)) << name;
    EXPECT_EQ(image.pixels.Count(), 0u) << name;
    EXPECT_EQ(image.width, 0u) << name;
    EXPECT_EQ(image.height, 0u) << name;
  }
}

TEST(ImageDecode, PngInflatingFarPastItsRowsFails) {
  // A little left over is harmless; 64 MiB behind a 1x1 image (a 64 KiB file) is not let grow.
  for (const auto& [trailing, decodes] : {std::pair<size_t, bool>{100, true}, {size_t(64) << 20, false}}) {
    DecodedImage image;
    EXPECT_EQ(Decode(gamewriters::BuildPng(1, 1, {1, 2, 3, 4}, trailing), image), decodes) << trailing;
  }
}

TEST(ImageDecode, RefusedMemoryAtEveryStepFailsCleanly) {
  const std::vector<u8> rgba(16 * 16 * 4, 0x7E);
  for (const std::string& file : {gamewriters::BuildPng(16, 16, rgba), gamewriters::BuildDds(16, 16, rgba)}) {
    u64 failAt = 1;
    for (; failAt < 100; ++failAt) {
      SCOPED_TRACE(failAt);
      testsupport::ScopedAllocationFailure refuse(failAt);
      {
        DecodedImage image;
        const bool decoded = Decode(file, image);
        if (!refuse.Failed()) {
          ASSERT_TRUE(decoded);
          EXPECT_EQ(Pixels(image), rgba);
          break;
        }
        EXPECT_FALSE(decoded);
        EXPECT_EQ(image.pixels.Count(), 0u);
      }
      EXPECT_EQ(refuse.Live(), 0) << "nothing leaks";
    }
    EXPECT_LT(failAt, 100u) << file.substr(0, 4);
  }
}

}  // namespace
