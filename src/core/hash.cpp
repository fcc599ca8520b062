#include "core/hash.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr u32 AsciiUpper(u32 c) { return (c >= 'a' && c <= 'z') ? c - ('a' - 'A') : c; }

// Arithmetic right shift of the value taken as signed: the bits shifted in copy the top bit.
// The stored hashes were made this way; a logical shift gives other values.
constexpr u32 ShiftRightSigned(u32 h, int bits) { return static_cast<u32>(static_cast<i32>(h) >> bits); }

constexpr u32 Round(u32 h, u32 c) {
  h = (h + c) * 1025u;
  return h ^ ShiftRightSigned(h, 6);
}

constexpr u32 Finish(u32 h) {
  h *= 9u;
  h ^= ShiftRightSigned(h, 11);
  return h * 32769u;
}

template <class Widen>
u32 OneAtATime(const char* text, Widen widen) {
  u32 h = 0;
  for (const auto* p = reinterpret_cast<const unsigned char*>(text); *p; ++p) h = Round(h, widen(*p));
  return Finish(h);
}

u32 KeyByte(unsigned char byte) { return static_cast<u32>(static_cast<i32>(static_cast<i8>(byte))); }

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
  return OneAtATime(text, [](u32 byte) { return KeyByte(static_cast<unsigned char>(byte)); });
}

void HashKeys(const char* const* texts, u32 count, u32* out) {
  constexpr u32 kLanes = 4;
  u32 first = 0;
  for (; first + kLanes <= count; first += kLanes) {
    const unsigned char* text[kLanes];
    size_t length[kLanes];
    u32 h[kLanes] = {};
    for (u32 k = 0; k < kLanes; ++k) {
      text[k] = reinterpret_cast<const unsigned char*>(texts[first + k]);
      length[k] = std::strlen(texts[first + k]);
    }
    const size_t common = std::min(std::min(length[0], length[1]), std::min(length[2], length[3]));
    for (size_t i = 0; i < common; ++i) {
      for (u32 k = 0; k < kLanes; ++k) h[k] = Round(h[k], KeyByte(text[k][i]));
    }
    for (u32 k = 0; k < kLanes; ++k) {
      for (size_t i = common; i < length[k]; ++i) h[k] = Round(h[k], KeyByte(text[k][i]));
      out[first + k] = Finish(h[k]);
    }
  }
  for (; first < count; ++first) out[first] = HashKey(texts[first]);
}
