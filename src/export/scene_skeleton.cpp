#include "export/scene_skeleton.h"

#include <cmath>

#include "core/hash.h"
#include "platform/debug_channel.h"

namespace {

constexpr f64 kIdentity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

void AddBones(ExportScene& scene, const RigSkeleton& rig) {
  const u32 count = rig.bones.Count();
  for (u32 i = 0; i < count; ++i) {
    const RigBone& source = rig.bones[i];
    SceneBone& bone = scene.bones[i];
    bone.name = source.name.Text();
    // A read rig has only valid, acyclic parents; anything else hangs under the root.
    bone.parent = source.parent >= 0 && u32(source.parent) < count ? source.parent : -1;
    for (u32 a = 0; a < 3; ++a) bone.translation[a] = source.translation[a];
    for (u32 a = 0; a < 4; ++a) bone.rotation[a] = source.rotation[a];
  }
}

// Parents may come after their children: each bone's chain is walked up to a bone already placed
// (or a root) and placed from there down. The step bound keeps a malformed chain from looping.
bool PlaceBones(ExportScene& scene, TArray<u8>& placed, TArray<u32>& chain) {
  const u32 count = scene.bones.Count();
  if (!placed.SetSize(count) || !chain.SetSize(count)) return false;
  for (u32 i = 0; i < count; ++i) {
    u32 length = 0;
    for (i32 b = i32(i); b >= 0 && !placed[u32(b)] && length < count; b = scene.bones[u32(b)].parent) {
      chain[length++] = u32(b);
    }
    while (length > 0) {
      SceneBone& bone = scene.bones[chain[--length]];
      const f64* parent = bone.parent >= 0 && placed[u32(bone.parent)] ? scene.bones[u32(bone.parent)].bind : kIdentity;
      ComposeBind(parent, bone.translation, bone.rotation, bone.bind);
      placed[chain[length]] = 1;
    }
  }
  return true;
}

bool MatchBones(ExportScene& scene, const RigSkeleton& rig, const ModelFile& model, TArray<u32>& modelToRig) {
  if (!modelToRig.SetSize(model.bones.Count())) return false;
  for (u32& entry : modelToRig) entry = kSceneNoBone;
  for (u32 i = 0; i < rig.bones.Count(); ++i) {
    const char* name = rig.bones[i].name.Text();
    const u32 hash = HashNameWide(name);
    DebugPrintA("%s -> %X\n", name, hash);
    for (u32 j = 0; j < model.bones.Count(); ++j) {
      if (model.bones[j].nameHash != hash) continue;
      if (modelToRig[j] != kSceneNoBone) return false;  // two rig bones claim one model bone
      modelToRig[j] = i;
      break;
    }
  }
  for (u32 bone : modelToRig) {
    if (bone == kSceneNoBone) continue;
    u32* kept = scene.modelBones.Append();
    if (!kept) return false;
    *kept = bone;
  }
  return true;
}

}  // namespace

void ComposeBind(const f64* parent, const f32 (&t)[3], const f32 (&q)[4], f64 (&out)[16]) {
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

bool BuildSceneSkeleton(ExportScene& scene, const ModelFile& model, const RigSkeleton* rig, TArray<u32>& modelToRig) {
  if (model.bones.Count() == 0 || !rig) return true;
  scene.hasRig = true;
  TArray<u8> placed;
  TArray<u32> chain;
  if (!scene.bones.SetSize(rig->bones.Count())) return false;
  AddBones(scene, *rig);
  return PlaceBones(scene, placed, chain) && MatchBones(scene, *rig, model, modelToRig);
}
