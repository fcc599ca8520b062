#include "fbx/sdk/fbx_math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

FbxAMatrix Translation(const FbxVector4& t) { return FbxAMatrix::FromTRS(t, {}, {1, 1, 1, 0}); }

FbxAMatrix Rotation(const FbxQuaternion& q) {
  FbxAMatrix r;
  r.SetQ(q);
  return r;
}

void ExpectNear(const FbxAMatrix& a, const FbxAMatrix& b, f64 tolerance) {
  for (u32 r = 0; r < 4; ++r) {
    for (u32 c = 0; c < 4; ++c) ASSERT_NEAR(a.At(r, c), b.At(r, c), tolerance) << r << "," << c;
  }
}

// What the bind pose needs: global matrices composed from the Euler angles that SetQ then GetR
// give equal those composed straight from the rig's quaternions, down deep chains.
TEST(FbxMath, EulerAnglesReproduceQuaternionChains) {
  std::mt19937 random(7);
  std::uniform_real_distribution<f64> unit(-1, 1);
  std::vector<FbxQuaternion> rotations;
  for (int i = 0; i < 200; ++i) rotations.push_back({unit(random), unit(random), unit(random), unit(random) * 1.01});
  // Gimbal lock both ways, a half turn, the identity, and a quaternion a little off unit length.
  const f64 h = std::sqrt(0.5);
  for (const FbxQuaternion& q :
       {FbxQuaternion{0, h, 0, h}, FbxQuaternion{0, -h, 0, h}, FbxQuaternion{1, 0, 0, 0}, FbxQuaternion{0, 0, 0, 1},
        FbxQuaternion{0.5, 0.2, 0.1, 0.9}, FbxQuaternion{0.3, h, -0.3, h}}) {
    rotations.push_back(q);
  }
  FbxAMatrix fromQuaternions;
  FbxAMatrix fromAngles;
  for (const FbxQuaternion& q : rotations) {
    const FbxVector4 t{unit(random) * 10, unit(random) * 10, unit(random) * 10, 1};
    const FbxVector4 angles = Rotation(q).GetR();
    fromQuaternions = fromQuaternions * Translation(t) * Rotation(q);
    fromAngles = fromAngles * FbxAMatrix::FromTRS(t, angles, {1, 1, 1, 0});
    ExpectNear(fromAngles, fromQuaternions, 1e-5);
    EXPECT_GT(angles.x, -180.0);
    EXPECT_LE(angles.x, 180.0);
    EXPECT_LE(std::fabs(angles.y), 90.0);
  }
  // A quarter turn about z moves x onto y (column vectors), and the angles say 90 degrees about z.
  const FbxAMatrix quarter = Rotation({0, 0, h, h});
  EXPECT_NEAR(quarter.At(1, 0), 1, 1e-12);
  EXPECT_NEAR(quarter.GetR().z, 90, 1e-9);
}

TEST(FbxMath, InverseAndFileOrder) {
  const FbxAMatrix m = FbxAMatrix::FromTRS({1, 2, 3, 1}, {10, -20, 30, 0}, {2, 2, 2, 0});
  ExpectNear(m * m.Inverse(), FbxAMatrix(), 1e-12);
  f64 stored[16];
  m.ToFileOrder(stored);
  EXPECT_EQ(stored[12], 1.0);
  EXPECT_EQ(stored[13], 2.0);
  EXPECT_EQ(stored[14], 3.0);
  EXPECT_EQ(stored[15], 1.0);
  EXPECT_EQ(stored[1], m.At(1, 0)) << "column after column";
}

}  // namespace
