#include "game_writers/image_writer.h"
#include "seeds.h"

using gamewriters::BuildDdsDx10;
using gamewriters::BuildDdsWithFormat;
using gamewriters::DdsFourCC;

Seeds ImageSeeds() {
  const std::vector<u8> rgba = {255, 0, 0, 255, 0, 255, 0, 128, 0, 0, 255, 0, 9, 99, 199, 255, 1, 2, 3, 4};
  const std::string blocks(32, '\x5A');
  constexpr u32 kFourCC = 0x4, kRgb = 0x40, kLuminance = 0x20000, kAlphaPixels = 0x1;
  Seeds seeds;
  seeds.push_back({"rgba.png", gamewriters::BuildPng(5, 1, rgba)});
  seeds.push_back({"rgba.tga", gamewriters::BuildTga(5, 1, rgba)});
  seeds.push_back({"bgra.dds", gamewriters::BuildDds(5, 1, rgba)});
  seeds.push_back({"565.dds", BuildDdsWithFormat(3, 1, {kRgb, 0, 16, {0xF800, 0x07E0, 0x001F, 0}}, "abcdef")});
  seeds.push_back(
      {"l8a8.dds", BuildDdsWithFormat(2, 1, {kLuminance | kAlphaPixels, 0, 16, {0xFF, 0, 0, 0xFF00}}, "abcd")});
  for (const char* code : {"DXT1", "DXT3", "DXT5", "ATI1", "ATI2"}) {
    seeds.push_back({std::string(code) + ".dds", BuildDdsWithFormat(5, 3, {kFourCC, DdsFourCC(code), 0, {}}, blocks)});
  }
  seeds.push_back({"dx10_bc3.dds", BuildDdsDx10(5, 3, 77, blocks)});
  seeds.push_back({"dx10_rgba.dds", BuildDdsDx10(2, 1, 28, "abcdefgh")});
  return seeds;
}
