#include "mesh/bind_skeleton.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

struct Bone {
  i32 parent;
  f32 t[3];
  f32 q[4];  // x, y, z, w
};

RigSkeleton MakeRig(const std::vector<Bone>& bones) {
  RigSkeleton rig;
  EXPECT_TRUE(rig.bones.SetSize(u32(bones.size())));
  for (u32 i = 0; i < bones.size(); ++i) {
    rig.bones[i].parent = bones[i].parent;
    for (int k = 0; k < 3; ++k) rig.bones[i].translation[k] = bones[i].t[k];
    for (int k = 0; k < 4; ++k) rig.bones[i].rotation[k] = bones[i].q[k];
  }
  return rig;
}

const f32 kHalf = std::sqrt(0.5f);

// Each bone rests at its parent's place plus its own translation turned by every rotation above it.
TEST(BindSkeletonTest, ChainsTranslationsThroughTheParentsRotations) {
  const struct {
    const char* what;
    std::vector<Bone> bones;
    std::vector<Vec3> expected;
  } cases[] = {
      {"unturned: the sum of the chain",
       {{-1, {0, 1, 0}, {0, 0, 0, 1}}, {0, {0, 2, 0}, {0, 0, 0, 1}}, {1, {1, 0, 0}, {0, 0, 0, 1}}},
       {{0, 1, 0}, {0, 3, 0}, {1, 3, 0}}},
      {"a quarter turn about z carries the child's x onto y; the bone's own turn moves only its children",
       {{-1, {1, 0, 0}, {0, 0, kHalf, kHalf}}, {0, {2, 0, 0}, {0, 0, 0, 1}}},
       {{1, 0, 0}, {1, 2, 0}}},
      {"turns add up down the chain: two quarter turns about z are a half turn",
       {{-1, {0, 0, 0}, {0, 0, kHalf, kHalf}}, {0, {1, 0, 0}, {0, 0, kHalf, kHalf}}, {1, {1, 0, 0}, {0, 0, 0, 1}}},
       {{0, 0, 0}, {0, 1, 0}, {-1, 1, 0}}},
      {"the parent's turn comes last: a quarter turn about x below one about z lays y onto z",
       {{-1, {0, 0, 0}, {0, 0, kHalf, kHalf}}, {0, {1, 0, 0}, {kHalf, 0, 0, kHalf}}, {1, {0, 1, 0}, {0, 0, 0, 1}}},
       {{0, 0, 0}, {0, 1, 0}, {0, 1, 1}}},
      {"a quaternion stored at twice unit length turns as the unit one; one of no length doesn't turn",
       {{-1, {0, 0, 0}, {2 * kHalf, 0, 0, 2 * kHalf}}, {0, {0, 1, 0}, {0, 0, 0, 0}}, {1, {0, 1, 0}, {0, 0, 0, 1}}},
       {{0, 0, 0}, {0, 0, 1}, {0, 0, 2}}},
      {"parents after their children",
       {{2, {0, 0, 1}, {0, 0, 0, 1}}, {-1, {5, 0, 0}, {0, 0, 0, 1}}, {1, {0, 1, 0}, {0, 0, 0, 1}}},
       {{5, 1, 1}, {5, 0, 0}, {5, 1, 0}}},
  };
  for (const auto& c : cases) {
    BindSkeleton skeleton;
    ASSERT_TRUE(BuildBindSkeleton(skeleton, MakeRig(c.bones))) << c.what;
    ASSERT_EQ(skeleton.joints.Count(), c.expected.size()) << c.what;
    for (u32 i = 0; i < c.expected.size(); ++i) {
      EXPECT_NEAR(skeleton.joints[i].x, c.expected[i].x, 1e-6f) << c.what << ", bone " << i;
      EXPECT_NEAR(skeleton.joints[i].y, c.expected[i].y, 1e-6f) << c.what << ", bone " << i;
      EXPECT_NEAR(skeleton.joints[i].z, c.expected[i].z, 1e-6f) << c.what << ", bone " << i;
    }
  }
}

TEST(BindSkeletonTest, ALineRunsFromEachBoneToItsParent) {
  BindSkeleton skeleton;
  ASSERT_TRUE(BuildBindSkeleton(skeleton, MakeRig({{2, {}, {}}, {-1, {}, {}}, {1, {}, {}}, {-1, {}, {}}})));
  EXPECT_EQ(std::vector<u32>(skeleton.lines.begin(), skeleton.lines.end()), (std::vector<u32>{0, 2, 2, 1}));
}

TEST(BindSkeletonTest, AParentOutsideTheRigFailsEmpty) {
  BindSkeleton skeleton;
  EXPECT_FALSE(BuildBindSkeleton(skeleton, MakeRig({{-1, {}, {}}, {2, {}, {}}})));
  EXPECT_EQ(skeleton.joints.Count(), 0u);
  EXPECT_EQ(skeleton.lines.Count(), 0u);
  EXPECT_TRUE(BuildBindSkeleton(skeleton, MakeRig({})));
  EXPECT_EQ(skeleton.joints.Count(), 0u);
}

}  // namespace
