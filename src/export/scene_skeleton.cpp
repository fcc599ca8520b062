#include "export/scene_skeleton.h"

#include <cstring>

#include "core/hash.h"
#include "mesh/bind_skeleton.h"
#include "platform/debug_channel.h"

namespace {

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

bool BuildSceneSkeleton(ExportScene& scene, const ModelFile& model, const RigSkeleton* rig, TArray<u32>& modelToRig) {
  if (model.bones.Count() == 0 || !rig) return true;
  scene.hasRig = true;
  TArray<BindMatrix> binds;
  if (!scene.bones.SetSize(rig->bones.Count()) || !BindMatrices(*rig, binds)) return false;
  AddBones(scene, *rig);
  for (u32 i = 0; i < binds.Count(); ++i) std::memcpy(scene.bones[i].bind, binds[i].m, sizeof(binds[i].m));
  return MatchBones(scene, *rig, model, modelToRig);
}
