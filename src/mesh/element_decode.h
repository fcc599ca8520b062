#pragma once

#include <array>
#include <cstring>
#include <type_traits>

#include "core/types.h"
#include "gamedata/material_definitions.h"
#include "mesh/half_float.h"

// The arithmetic of every element type, with the type as a compile-time constant: a loop over
// one element of a whole mesh decodes each vertex without choosing the type again. The runtime
// reads of vertex_stream.h go through the same functions, so both give the same bits.

template <u32 kType>
using ElementTypeTag = std::integral_constant<u32, kType>;

// All four values of an element as floats, scaled or not, with the count the type stores.
struct ElementValues {
  f32 v[4] = {};
  u32 count = 0;
};

namespace element_decode {

constexpr f32 kByteScale = 255.0f;
constexpr f32 kShortScale = 32767.0f;
constexpr f32 kUshortScale = 65535.0f;

// byte / 255 for every byte, divided exactly as a read would divide it.
constexpr std::array<f32, 256> MakeByteUnits() {
  std::array<f32, 256> table{};
  for (u32 i = 0; i < 256; ++i) table[i] = f32(i) / kByteScale;
  return table;
}
inline constexpr std::array<f32, 256> kByteUnits = MakeByteUnits();

template <class T>
T Load(const u8* bytes, u32 index) {
  T value;
  std::memcpy(&value, bytes + index * sizeof(T), sizeof(T));
  return value;
}

template <class T, u32 kCount, class Convert>
ElementValues Stored(const u8* bytes, Convert convert) {
  ElementValues out;
  out.count = kCount;
  for (u32 i = 0; i < kCount; ++i) out.v[i] = convert(Load<T>(bytes, i));
  return out;
}

inline constexpr auto kPlain = [](auto value) { return f32(value); };

}  // namespace element_decode

// The element at `bytes` (never null). Normalised types are scaled when `kScaled`; the packed and
// unknown types give no values.
template <u32 kType, bool kScaled>
ElementValues DecodeElement(const u8* bytes) {
  using namespace element_decode;
  if constexpr (kType == kFloat1) {
    return Stored<f32, 1>(bytes, kPlain);
  } else if constexpr (kType == kFloat2) {
    return Stored<f32, 2>(bytes, kPlain);
  } else if constexpr (kType == kFloat3) {
    return Stored<f32, 3>(bytes, kPlain);
  } else if constexpr (kType == kFloat4) {
    return Stored<f32, 4>(bytes, kPlain);
  } else if constexpr ((kType == kD3dcolor || kType == kUbyte4n) && kScaled) {
    return Stored<u8, 4>(bytes, [](u8 b) { return kByteUnits[b]; });
  } else if constexpr (kType == kD3dcolor || kType == kUbyte4n || kType == kUbyte4) {
    return Stored<u8, 4>(bytes, kPlain);
  } else if constexpr ((kType == kShort2n || kType == kShort4n) && kScaled) {
    return Stored < i16, kType == kShort2n ? 2 : 4 > (bytes, [](i16 s) { return f32(s) / kShortScale; });
  } else if constexpr (kType == kShort2 || kType == kShort2n) {
    return Stored<i16, 2>(bytes, kPlain);
  } else if constexpr (kType == kShort4 || kType == kShort4n) {
    return Stored<i16, 4>(bytes, kPlain);
  } else if constexpr ((kType == kUshort2n || kType == kUshort4n) && kScaled) {
    return Stored < u16, kType == kUshort2n ? 2 : 4 > (bytes, [](u16 s) { return f32(s) / kUshortScale; });
  } else if constexpr (kType == kUshort2n || kType == kUshort4n) {
    return Stored < u16, kType == kUshort2n ? 2 : 4 > (bytes, kPlain);
  } else if constexpr (kType == kFloat16_2 || kType == kFloat16_4) {
    return Stored < u16, kType == kFloat16_2 ? 2 : 4 > (bytes, [](u16 h) { return HalfToFloatValue(h); });
  } else {
    return {};
  }
}

// Calls body(ElementTypeTag<type>{}) for a type that has values and gives true; false for the
// packed and unknown types, which read as zeros.
template <class Body>
bool WithElementType(u32 type, Body&& body) {
  switch (type) {
    case kFloat1: body(ElementTypeTag<kFloat1>{}); return true;
    case kFloat2: body(ElementTypeTag<kFloat2>{}); return true;
    case kFloat3: body(ElementTypeTag<kFloat3>{}); return true;
    case kFloat4: body(ElementTypeTag<kFloat4>{}); return true;
    case kD3dcolor: body(ElementTypeTag<kD3dcolor>{}); return true;
    case kUbyte4: body(ElementTypeTag<kUbyte4>{}); return true;
    case kShort2: body(ElementTypeTag<kShort2>{}); return true;
    case kShort4: body(ElementTypeTag<kShort4>{}); return true;
    case kUbyte4n: body(ElementTypeTag<kUbyte4n>{}); return true;
    case kShort2n: body(ElementTypeTag<kShort2n>{}); return true;
    case kShort4n: body(ElementTypeTag<kShort4n>{}); return true;
    case kUshort2n: body(ElementTypeTag<kUshort2n>{}); return true;
    case kUshort4n: body(ElementTypeTag<kUshort4n>{}); return true;
    case kFloat16_2: body(ElementTypeTag<kFloat16_2>{}); return true;
    case kFloat16_4: body(ElementTypeTag<kFloat16_4>{}); return true;
    default: return false;
  }
}

constexpr bool IsFloatElementType(u32 type) { return type <= kFloat4 || type == kFloat16_2 || type == kFloat16_4; }
