#include "mesh/normalize_vectors.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <vector>

#include "mesh/unit_vector.h"

namespace {

u32 Bits(f32 v) { return std::bit_cast<u32>(v); }

// The block normaliser against the scalar functions, bit for bit, over the vectors where a
// reordered or shortened computation would show: the axis shortcut and its near misses, zero
// lengths, sums that underflow or overflow, denormals, signed zeros, a NaN, and unpacked bytes.
TEST(NormalizeVectors, MatchTheScalarFunctionsBitForBit) {
  const f32 denormal = std::numeric_limits<f32>::denorm_min();
  const f32 infinity = std::numeric_limits<f32>::infinity();
  const f32 nan = std::numeric_limits<f32>::quiet_NaN();
  std::vector<Vec3> vectors = {{0, 0, 0},
                               {-0.0f, 0, -0.0f},
                               {1, 0, 0},
                               {-1, 0, 0},
                               {0, -1, 0},
                               {0, 0, 1},
                               {1, -0.0f, 0},
                               {1, 0.5f, -0.5f},
                               {-1, 2, 2},
                               {1, 0.5f, 0.25f},
                               {2, 1, 2},
                               {0.25f, -0.25f, -1},
                               {1, 1, 1},
                               {1, 1, 0.5f},
                               {-1, -1, -1},
                               {0.5f, 1, 0.5f},
                               {3, 0, 4},
                               {1e-30f, 0, 0},
                               {1e-19f, 1e-19f, 0},
                               {denormal, 0, 0},
                               {denormal, denormal, denormal},
                               {1.17549435e-38f, 0, -1.17549435e-38f},
                               {1e30f, 1e30f, 1e30f},
                               {3.4e38f, 0, 0},
                               {1e19f, -2e19f, 3e19f},
                               {infinity, 0, 0},
                               {-infinity, 1, 1},
                               {nan, 0.5f, 0.5f},
                               {0.1f, 0.2f, 0.3f},
                               {-0.577350f, 0.577350f, -0.577350f}};
  // Every pair of bytes for x and y beside a few for z, unpacked as stored normals are: 3 x 65536
  // vectors, and an odd count for the loop's last partial step.
  for (u32 z : {0u, 128u, 255u}) {
    for (u32 x = 0; x < 256; ++x) {
      for (u32 y = 0; y < 256; ++y) vectors.push_back(UnpackUnit({x / 255.0f, y / 255.0f, z / 255.0f}));
    }
  }
  for (const bool axisShortcut : {true, false}) {
    SCOPED_TRACE(axisShortcut ? "with the axis shortcut" : "by length alone");
    std::vector<f32> x, y, z;
    for (const Vec3& v : vectors) {
      x.push_back(v.x);
      y.push_back(v.y);
      z.push_back(v.z);
    }
    NormalizeVectors(x.data(), y.data(), z.data(), u32(vectors.size()), axisShortcut);
    for (size_t i = 0; i < vectors.size(); ++i) {
      Vec3 want = vectors[i];
      if (axisShortcut) {
        NormalizeVector(want);
      } else {
        NormalizeByLength(want);
      }
      const Vec3 got{x[i], y[i], z[i]};
      ASSERT_EQ(Bits(got.x), Bits(want.x)) << i << ": " << vectors[i].x << " " << vectors[i].y << " " << vectors[i].z;
      ASSERT_EQ(Bits(got.y), Bits(want.y)) << i;
      ASSERT_EQ(Bits(got.z), Bits(want.z)) << i;
    }
  }
}

}  // namespace
