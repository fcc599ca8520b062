#include "mesh/half_float.h"

namespace {

// The tables of van der Zijp's conversion, made by the compiler: complete before any code runs.
constexpr std::array<u32, 2048> MakeMantissa() {
  std::array<u32, 2048> table{};
  for (u32 i = 1; i < 1024; ++i) {
    // A denormal half: shift the mantissa up until its leading bit is the implicit one.
    u32 m = i << 13;
    u32 e = 0;
    while ((m & 0x800000) == 0) {
      m <<= 1;
      e -= 0x800000;
    }
    table[i] = (e + 0x38800000) | (m & ~0x800000u);
  }
  for (u32 i = 1024; i < 2048; ++i) table[i] = 0x38000000 + ((i - 1024) << 13);
  return table;
}

constexpr std::array<u32, 64> MakeExponent() {
  std::array<u32, 64> table{};
  for (u32 i = 1; i < 31; ++i) table[i] = i << 23;
  table[31] = 0x47800000;
  table[32] = 0x80000000;
  for (u32 i = 33; i < 63; ++i) table[i] = 0x80000000 + ((i - 32) << 23);
  table[63] = 0xC7800000;
  return table;
}

constexpr std::array<u32, 64> MakeOffset() {
  std::array<u32, 64> table{};
  for (u32 i = 0; i < 64; ++i) table[i] = (i == 0 || i == 32) ? 0 : 1024;
  return table;
}

}  // namespace

constexpr std::array<u32, 2048> kHalfMantissa = MakeMantissa();
constexpr std::array<u32, 64> kHalfExponent = MakeExponent();
constexpr std::array<u32, 64> kHalfOffset = MakeOffset();
