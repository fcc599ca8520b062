#include "fbx/setup_rig.h"

#include "core/hash.h"
#include "fbx/sdk/fbx_pose.h"
#include "fbx/sdk/fbx_skeleton.h"
#include "platform/debug_channel.h"

namespace {

// A node with a skeleton attribute of `type`, both named `name`.
FbxNode* MakeJoint(FbxScene* scene, const char* name, FbxSkeleton::EType type) {
  FbxSkeleton* skeleton = FbxSkeleton::Create(scene, name);
  FbxNode* node = skeleton ? FbxNode::Create(scene, name) : nullptr;
  if (!node) return nullptr;
  skeleton->SetSkeletonType(type);
  (void)node->SetNodeAttribute(skeleton);
  return node;
}

bool BuildBones(ConvertState& state, const RigSkeleton& rig) {
  const u32 count = rig.bones.Count();
  if (!state.boneNodes.SetSize(count)) return false;
  for (u32 i = 0; i < count; ++i) {
    const RigBone& bone = rig.bones[i];
    FbxNode* node = MakeJoint(state.fbxScene, bone.name.Text(), FbxSkeleton::eLimbNode);
    if (!node) return false;
    const FbxVector4 translation{bone.translation[0], bone.translation[1], bone.translation[2], 1.0};
    const FbxQuaternion rotation{bone.rotation[0], bone.rotation[1], bone.rotation[2], bone.rotation[3]};
    FbxAMatrix matrix;
    matrix.SetQ(rotation);
    const FbxVector4 euler = matrix.GetR();
    node->LclTranslation.Set({translation.x, translation.y, translation.z});
    node->LclRotation.Set({euler.x, euler.y, euler.z});
    state.boneNodes[i] = node;
  }
  // Parents may come after their children, so the tree is linked once every node exists. A read
  // rig has only valid, acyclic parents; anything else would hang under the root.
  for (u32 i = 0; i < count; ++i) {
    const i32 parent = rig.bones[i].parent;
    FbxNode* above = parent >= 0 && u32(parent) < count ? state.boneNodes[u32(parent)] : state.rootNode;
    if (!above->AddChild(state.boneNodes[i])) return false;
  }
  return true;
}

bool AddBindPose(ConvertState& state, FbxPose& pose) {
  pose.SetIsBindPose(true);
  if (pose.Add(state.rootNode, FbxMatrix(state.rootNode->EvaluateGlobalTransform()), false, true) < 0) return false;
  for (FbxNode* node : state.boneNodes) {
    if (pose.Add(node, FbxMatrix(node->EvaluateGlobalTransform()), false, true) < 0) return false;
  }
  return state.fbxScene->AddPose(&pose);
}

bool MatchBones(ConvertState& state, const RigSkeleton& rig, const ModelFile& model) {
  if (!state.modelToRig.SetSize(model.bones.Count())) return false;
  for (u32& entry : state.modelToRig) entry = kNoRigBone;
  for (u32 i = 0; i < rig.bones.Count(); ++i) {
    const char* name = rig.bones[i].name.Text();
    const u32 hash = HashNameWide(name);
    DebugPrintA("%s -> %X\n", name, hash);
    for (u32 j = 0; j < model.bones.Count(); ++j) {
      if (model.bones[j].nameHash != hash) continue;
      if (state.modelToRig[j] != kNoRigBone) return false;  // two rig bones claim one model bone
      state.modelToRig[j] = i;
      break;
    }
  }
  return true;
}

}  // namespace

bool SetupRig(ConvertState& state, const ModelFile& model, const RigSkeleton* rig) {
  state.rootNode = MakeJoint(state.fbxScene, state.name.Text(), FbxSkeleton::eRoot);
  FbxPose* pose = FbxPose::Create(state.fbxScene, state.name.Text());
  if (!state.rootNode || !pose || !state.fbxScene->GetRootNode()->AddChild(state.rootNode)) return false;
  if (model.bones.Count() == 0 || !rig) return true;
  state.rig = rig;
  return BuildBones(state, *rig) && AddBindPose(state, *pose) && MatchBones(state, *rig, model);
}
