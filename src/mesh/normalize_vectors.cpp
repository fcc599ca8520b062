#include "mesh/normalize_vectors.h"

#include <cmath>

namespace {

// The steps of NormalizeVector in its order, with every operation done for every vector and the
// results chosen by selects, so that the loop has no branch left and is vectorised. A binary32
// square root is what the scalar one's binary64 root rounds back to.
template <bool kAxisShortcut>
[[gnu::always_inline]] inline void NormalizeLoop(f32* x, f32* y, f32* z, u32 count) {
  for (u32 i = 0; i < count; ++i) {
    const f32 vx = x[i], vy = y[i], vz = z[i];
    const f32 length = std::sqrt(vx * vx + vy * vy + vz * vz);
    const bool zero = length == 0.0f;
    const f32 inverse = 1.0f / (zero ? 1.0f : length);  // a zero length is never divided by
    const f32 scaledX = vx * inverse, scaledY = vy * inverse, scaledZ = vz * inverse;
    bool drop = zero;
    bool snapX = false, snapY = false, snapZ = false;
    if constexpr (kAxisShortcut) {
      const f32 ax = std::fabs(vx), ay = std::fabs(vy), az = std::fabs(vz);
      snapX = (ax == 1.0f) & (ay == az);
      snapY = !snapX & (ay == 1.0f) & (ax == az);
      snapZ = !snapX & !snapY & (az == 1.0f) & (ax == ay);
      drop = drop | snapX | snapY | snapZ;
    }
    // One select after the other, never nested: nested ones come out as branches.
    f32 nx = drop ? 0.0f : scaledX;
    f32 ny = drop ? 0.0f : scaledY;
    f32 nz = drop ? 0.0f : scaledZ;
    nx = snapX ? vx : nx;
    ny = snapY ? vy : ny;
    nz = snapZ ? vz : nz;
    x[i] = nx;
    y[i] = ny;
    z[i] = nz;
  }
}

[[gnu::always_inline]] inline void Normalize(f32* x, f32* y, f32* z, u32 count, bool axisShortcut) {
  if (axisShortcut) {
    NormalizeLoop<true>(x, y, z, count);
  } else {
    NormalizeLoop<false>(x, y, z, count);
  }
}

// With AVX2, twice the vectors a step halve the time. The loop is inlined into each version so
// that each vectorises it for its own processor.
[[gnu::target("avx2")]] void NormalizeAvx2(f32* x, f32* y, f32* z, u32 count, bool axisShortcut) {
  Normalize(x, y, z, count, axisShortcut);
}

void NormalizeBaseline(f32* x, f32* y, f32* z, u32 count, bool axisShortcut) {
  Normalize(x, y, z, count, axisShortcut);
}

}  // namespace

void NormalizeVectors(f32* x, f32* y, f32* z, u32 count, bool axisShortcut) {
  static const bool avx2 = __builtin_cpu_supports("avx2");
  (avx2 ? NormalizeAvx2 : NormalizeBaseline)(x, y, z, count, axisShortcut);
}
