#include "mesh/bind_skeleton.h"

#include <cmath>

namespace {

constexpr f64 kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

// The matrix of translation `t` and rotation `q` (x, y, z, w) applied after the column-major
// `parent`.
void Compose(const f64* parent, const f32 (&t)[4], const f32 (&q)[4], f64 (&out)[16]) {
  const f64 length = std::sqrt(f64(q[0]) * q[0] + f64(q[1]) * q[1] + f64(q[2]) * q[2] + f64(q[3]) * q[3]);
  const f64 s = length > 0 ? 1 / length : 0;
  const f64 x = q[0] * s, y = q[1] * s, z = q[2] * s, w = length > 0 ? q[3] * s : 1;
  // The local matrix T * R, column-major.
  const f64 local[16] = {1 - 2 * (y * y + z * z),
                         2 * (x * y + z * w),
                         2 * (x * z - y * w),
                         0,
                         2 * (x * y - z * w),
                         1 - 2 * (x * x + z * z),
                         2 * (y * z + x * w),
                         0,
                         2 * (x * z + y * w),
                         2 * (y * z - x * w),
                         1 - 2 * (x * x + y * y),
                         0,
                         t[0],
                         t[1],
                         t[2],
                         1};
  for (u32 column = 0; column < 4; ++column) {
    for (u32 row = 0; row < 4; ++row) {
      f64 sum = 0;
      for (u32 k = 0; k < 4; ++k) sum += parent[4 * k + row] * local[4 * column + k];
      out[4 * column + row] = sum;
    }
  }
}

}  // namespace

bool BindMatrices(const RigSkeleton& rig, TArray<BindMatrix>& matrices) {
  const u32 count = rig.bones.Count();
  TArray<u8> placed;
  TArray<u32> chain;
  if (!matrices.SetSize(count) || !placed.SetSize(count) || !chain.SetSize(count)) return false;
  auto parentOf = [&](u32 bone) {
    const i32 parent = rig.bones[bone].parent;
    return parent >= 0 && u32(parent) < count ? parent : -1;
  };
  // Each bone's chain is walked up to a bone already placed (or a root) and placed from there
  // down. The step bound keeps a malformed chain from looping.
  for (u32 i = 0; i < count; ++i) {
    u32 length = 0;
    for (i32 b = i32(i); b >= 0 && !placed[u32(b)] && length < count; b = parentOf(u32(b))) chain[length++] = u32(b);
    while (length > 0) {
      const u32 bone = chain[--length];
      const i32 parent = parentOf(bone);
      const f64* above = parent >= 0 && placed[u32(parent)] ? matrices[u32(parent)].m : kIdentity;
      Compose(above, rig.bones[bone].translation, rig.bones[bone].rotation, matrices[bone].m);
      placed[bone] = 1;
    }
  }
  return true;
}

bool BuildBindSkeleton(BindSkeleton& skeleton, const RigSkeleton& rig) {
  const u32 count = rig.bones.Count();
  (void)skeleton.joints.SetSize(0);
  (void)skeleton.lines.SetSize(0);
  u32 lineCount = 0;
  for (const RigBone& bone : rig.bones) {
    if (bone.parent >= i32(count)) return false;
    lineCount += bone.parent >= 0 ? 1 : 0;
  }
  TArray<BindMatrix> matrices;
  if (!BindMatrices(rig, matrices) || !skeleton.joints.SetSize(count) || !skeleton.lines.SetSize(2 * lineCount)) {
    (void)skeleton.joints.SetSize(0);
    (void)skeleton.lines.SetSize(0);
    return false;
  }
  u32 next = 0;
  for (u32 bone = 0; bone < count; ++bone) {
    const f64* m = matrices[bone].m;
    skeleton.joints[bone] = Vec3{f32(m[12]), f32(m[13]), f32(m[14])};
    if (rig.bones[bone].parent < 0) continue;
    skeleton.lines[next++] = bone;
    skeleton.lines[next++] = u32(rig.bones[bone].parent);
  }
  return true;
}
