#include "fbx/setup_rig.h"

#include "core/hash.h"
#include "fbx/sdk/fbx_pose.h"
#include "fbx/sdk/fbx_skeleton.h"
#include "gamedata/xml_attributes.h"
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

const RigSkeleton* PickRig(const ActorDefinition& actor, const ModelFile& model, const RigTable& rigs,
                           IRigDialog& dialog) {
  if (actor.animationNetworkName.Text()[0] && actor.animSetName.Text()[0]) {
    TStringBufferA<260> stem;
    if (!FileStem(actor.animationNetworkName.Text(), stem)) return nullptr;
    CStringA key;
    key.Borrow(stem.Text());
    const u32 found = rigs.Find(key);
    return found < rigs.Count() ? FindRig(rigs.ValueAt(found), actor.animSetName.Text()) : nullptr;
  }
  return actor.borrowSkeleton ? ChooseRig(model, rigs, dialog) : nullptr;
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

bool SetupRig(ConvertState& state, const ActorDefinition& actor, const ModelFile& model, const RigTable& rigs,
              IRigDialog& dialog) {
  state.rootNode = MakeJoint(state.fbxScene, state.name.Text(), FbxSkeleton::eRoot);
  FbxPose* pose = FbxPose::Create(state.fbxScene, state.name.Text());
  if (!state.rootNode || !pose || !state.fbxScene->GetRootNode()->AddChild(state.rootNode)) return false;
  if (model.bones.Count() == 0) return true;
  state.rig = PickRig(actor, model, rigs, dialog);
  if (!state.rig) return true;
  return BuildBones(state, *state.rig) && AddBindPose(state, *pose) && MatchBones(state, *state.rig, model);
}

const RigSkeleton* FindRig(const RigNetwork& network, const char* name) {
  for (const AnimSetName& set : network.animSetNames) {
    if (!SameText(set.name.Text(), name)) continue;
    for (const RigSkeleton& rig : network.rigs) {
      if (rig.id == set.id) return &rig;
    }
    return nullptr;
  }
  return nullptr;
}

bool RigMatches(const ModelFile& model, const RigSkeleton& rig) {
  if (rig.bones.Count() == 0) return model.bones.Count() == 0;
  u32 matched = 0;
  for (const RigBone& bone : rig.bones) {
    const u32 hash = HashNameWide(bone.name.Text());
    for (const ModelBone& modelBone : model.bones) {
      if (modelBone.nameHash == hash) {
        ++matched;
        break;
      }
    }
  }
  return matched == model.bones.Count();
}

const RigSkeleton* ChooseRig(const ModelFile& model, const RigTable& rigs, IRigDialog& dialog) {
  TOwnedList<RigCandidate> candidates;
  for (u32 n = 0; n < rigs.Count(); ++n) {
    const RigNetwork& network = rigs.ValueAt(n);
    for (const RigSkeleton& rig : network.rigs) {
      if (!RigMatches(model, rig)) continue;
      RigCandidate* candidate = MemNew<RigCandidate>();
      if (!candidate) continue;  // left out, as if it didn't fit
      candidate->rig = &rig;
      for (const AnimSetName& set : network.animSetNames) {
        if (set.id == rig.id) {
          candidate->name = set.name.Text();
          break;
        }
      }
      candidates.Append(candidate);
    }
  }
  if (candidates.count == 0) return nullptr;
  if (candidates.count == 1) return candidates.first->rig;
  const RigSkeleton* selected = nullptr;
  return dialog.Run(candidates.first, selected) == 1 ? selected : nullptr;
}
