#include "core/hash.h"

namespace {

constexpr u32 AsciiUpper(u32 c) { return (c >= 'a' && c <= 'z') ? c - ('a' - 'A') : c; }

// Arithmetic right shift of the value taken as signed: the bits shifted in copy the top bit.
// The stored hashes were made this way; a logical shift gives other values.
constexpr u32 ShiftRightSigned(u32 h, int bits) {
  return static_cast<u32>(static_cast<i32>(h) >> bits);
}

template <class Widen>
u32 OneAtATime(const char* text, Widen widen) {
  u32 h = 0;
  for (const auto* p = reinterpret_cast<const unsigned char*>(text); *p; ++p) {
    h = (h + widen(*p)) * 1025u;
    h ^= ShiftRightSigned(h, 6);
  }
  h *= 9u;
  h ^= ShiftRightSigned(h, 11);
  h *= 32769u;
  return h;
}

}  // namespace

u32 HashName(const char* text) {
  if (!text) return 0;
  return OneAtATime(text, [](u32 byte) { return AsciiUpper(byte); });
}

u32 HashNameWide(const char* text) {
  return OneAtATime(text, [](u32 byte) { return byte >= 0x80 ? 0xFF00u | byte : AsciiUpper(byte); });
}

u32 HashExact(const char* text) {
  return OneAtATime(text, [](u32 byte) { return byte; });
}

u32 HashKey(const char* text) {
  return OneAtATime(text, [](u32 byte) { return static_cast<u32>(static_cast<i32>(static_cast<i8>(byte))); });
}
