#include "fbx/setup_rig.h"

#include "fbx/sdk/fbx_pose.h"
#include "fbx/sdk/fbx_skeleton.h"

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

bool BuildBones(ConvertState& state, const ExportScene& scene) {
  const u32 count = scene.bones.Count();
  if (!state.boneNodes.SetSize(count)) return false;
  for (u32 i = 0; i < count; ++i) {
    const SceneBone& bone = scene.bones[i];
    FbxNode* node = MakeJoint(state.fbxScene, bone.name, FbxSkeleton::eLimbNode);
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
  // Parents may come after their children, so the tree is linked once every node exists.
  for (u32 i = 0; i < count; ++i) {
    const i32 parent = scene.bones[i].parent;
    FbxNode* above = parent >= 0 ? state.boneNodes[u32(parent)] : state.rootNode;
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

}  // namespace

bool SetupRig(ConvertState& state, const ExportScene& scene) {
  state.rootNode = MakeJoint(state.fbxScene, scene.rootName.Text(), FbxSkeleton::eRoot);
  FbxPose* pose = FbxPose::Create(state.fbxScene, scene.rootName.Text());
  if (!state.rootNode || !pose || !state.fbxScene->GetRootNode()->AddChild(state.rootNode)) return false;
  if (!scene.hasRig) return true;
  return BuildBones(state, scene) && AddBindPose(state, *pose);
}
