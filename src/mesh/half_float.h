#pragma once

#include <array>
#include <bit>

#include "core/types.h"

// The tables of van der Zijp's conversion, complete before any code runs.
extern const std::array<u32, 2048> kHalfMantissa;
extern const std::array<u32, 64> kHalfExponent;
extern const std::array<u32, 64> kHalfOffset;

// The binary32 bits of a binary16 value, exact for all 65,536 inputs (zeros keep their sign,
// denormals become normal floats, infinities and NaNs stay so): three table reads and an add.
// Inline, since mesh loops convert every value of a stream through it.
inline u32 HalfToFloat(u16 bits) {
  const u32 e = bits >> 10;
  const u32 m = bits & 0x3FF;
  return kHalfMantissa[kHalfOffset[e] + m] + kHalfExponent[e];
}
inline f32 HalfToFloatValue(u16 bits) { return std::bit_cast<f32>(HalfToFloat(bits)); }
