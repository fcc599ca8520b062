#include "mesh/bind_skeleton.h"

#include <cmath>

namespace {

// A bone's place in the model: where it rests and how it is turned, as a unit quaternion.
struct Pose {
  f64 position[3] = {};
  f64 rotation[4] = {0, 0, 0, 1};  // x, y, z, w
};

// The stored quaternion made unit length; one of no length is no rotation, as the export takes it.
void Normalised(const f32 (&q)[4], f64 (&out)[4]) {
  const f64 length = std::sqrt(f64(q[0]) * q[0] + f64(q[1]) * q[1] + f64(q[2]) * q[2] + f64(q[3]) * q[3]);
  if (length <= 0) {
    out[0] = out[1] = out[2] = 0;
    out[3] = 1;
    return;
  }
  for (int i = 0; i < 4; ++i) out[i] = q[i] / length;
}

// `a` after `b`: the rotation b, then a (column vectors, as the export's matrices are).
void Multiply(const f64 (&a)[4], const f64 (&b)[4], f64 (&out)[4]) {
  const f64 r[4] = {
      a[3] * b[0] + a[0] * b[3] + a[1] * b[2] - a[2] * b[1], a[3] * b[1] - a[0] * b[2] + a[1] * b[3] + a[2] * b[0],
      a[3] * b[2] + a[0] * b[1] - a[1] * b[0] + a[2] * b[3], a[3] * b[3] - a[0] * b[0] - a[1] * b[1] - a[2] * b[2]};
  for (int i = 0; i < 4; ++i) out[i] = r[i];
}

// `v` turned by the unit quaternion `q`: v + 2w (u x v) + 2 u x (u x v), u the vector part.
void Rotate(const f64 (&q)[4], const f32 (&v)[4], f64 (&out)[3]) {
  const f64 u[3] = {q[0], q[1], q[2]};
  const f64 t[3] = {2 * (u[1] * v[2] - u[2] * v[1]), 2 * (u[2] * v[0] - u[0] * v[2]), 2 * (u[0] * v[1] - u[1] * v[0])};
  out[0] = v[0] + q[3] * t[0] + (u[1] * t[2] - u[2] * t[1]);
  out[1] = v[1] + q[3] * t[1] + (u[2] * t[0] - u[0] * t[2]);
  out[2] = v[2] + q[3] * t[2] + (u[0] * t[1] - u[1] * t[0]);
}

}  // namespace

bool BuildBindSkeleton(BindSkeleton& skeleton, const RigSkeleton& rig) {
  const u32 count = rig.bones.Count();
  (void)skeleton.joints.SetSize(0);
  (void)skeleton.lines.SetSize(0);
  TArray<Pose> poses;
  TArray<u8> placed;  // 1 once a bone's pose is known
  TArray<u32> chain;  // bones whose parents are still to be placed, the nearest to a root last
  if (!poses.SetSize(count) || !placed.SetSize(count) || !chain.Reserve(count) || !skeleton.joints.SetSize(count)) {
    (void)skeleton.joints.SetSize(0);
    return false;
  }
  for (u32 bone = 0; bone < count; ++bone) {
    if (rig.bones[bone].parent >= i32(count)) {
      (void)skeleton.joints.SetSize(0);
      return false;
    }
    // Parents may follow their children: walk up to a placed bone or a root, then place back down.
    // A read rig has no loops, and the chain can't outgrow the bone count even if one had.
    (void)chain.SetSize(0);
    for (u32 at = bone; !placed[at] && chain.Count() < count;) {
      *chain.Append() = at;
      const i32 parent = rig.bones[at].parent;
      if (parent < 0 || parent >= i32(count)) break;
      at = u32(parent);
    }
    for (u32 i = chain.Count(); i-- > 0;) {
      const u32 at = chain[i];
      const RigBone& rigBone = rig.bones[at];
      Pose& pose = poses[at];
      f64 local[4];
      Normalised(rigBone.rotation, local);
      const i32 parent = rigBone.parent;
      if (parent < 0 || parent >= i32(count) || !placed[u32(parent)]) {
        for (int k = 0; k < 3; ++k) pose.position[k] = rigBone.translation[k];
        for (int k = 0; k < 4; ++k) pose.rotation[k] = local[k];
      } else {
        const Pose& above = poses[u32(parent)];
        f64 offset[3];
        Rotate(above.rotation, rigBone.translation, offset);
        for (int k = 0; k < 3; ++k) pose.position[k] = above.position[k] + offset[k];
        Multiply(above.rotation, local, pose.rotation);
      }
      placed[at] = 1;
    }
  }
  u32 lineCount = 0;
  for (const RigBone& bone : rig.bones) lineCount += bone.parent >= 0 ? 1 : 0;
  if (!skeleton.lines.SetSize(2 * lineCount)) {
    (void)skeleton.joints.SetSize(0);
    return false;
  }
  u32 next = 0;
  for (u32 bone = 0; bone < count; ++bone) {
    const Pose& pose = poses[bone];
    skeleton.joints[bone] = Vec3{f32(pose.position[0]), f32(pose.position[1]), f32(pose.position[2])};
    if (rig.bones[bone].parent < 0) continue;
    skeleton.lines[next++] = bone;
    skeleton.lines[next++] = u32(rig.bones[bone].parent);
  }
  return true;
}
