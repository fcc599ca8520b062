#include "fbx/sdk/fbx_node.h"

bool FbxNode::SetNodeAttribute(FbxNodeAttribute* newAttribute) {
  if (!newAttribute) return false;
  attribute = newAttribute;
  return true;
}

bool FbxNode::AddChild(FbxNode* child) {
  if (!child) return false;
  for (const FbxNode* above = this; above; above = above->parent) {
    if (above == child) return false;
  }
  FbxNode** slot = children.Append();
  if (!slot) return false;
  child->DetachFromParent();
  *slot = child;
  child->parent = this;
  return true;
}

void FbxNode::DetachFromParent() {
  if (!parent) return;
  TArray<FbxNode*>& siblings = parent->children;
  u32 at = 0;
  while (at < siblings.Count() && siblings[at] != this) ++at;
  for (u32 i = at + 1; i < siblings.Count(); ++i) siblings[i - 1] = siblings[i];
  if (at < siblings.Count()) (void)siblings.SetSize(siblings.Count() - 1);
  parent = nullptr;
}

int FbxNode::AddMaterial(FbxSurfaceMaterial* material) {
  FbxSurfaceMaterial** slot = material ? materials.Append() : nullptr;
  if (!slot) return -1;
  *slot = material;
  return int(materials.Count() - 1);
}

FbxAMatrix FbxNode::LocalTransform() const {
  const FbxDouble3& t = LclTranslation.Get();
  const FbxDouble3& r = LclRotation.Get();
  const FbxDouble3& s = LclScaling.Get();
  return FbxAMatrix::FromTRS({t.x, t.y, t.z, 1}, {r.x, r.y, r.z, 0}, {s.x, s.y, s.z, 0});
}

FbxAMatrix FbxNode::EvaluateGlobalTransform(FbxTime, EPivotSet, bool, bool) const {
  // AddChild never makes a cycle, so the walk up ends.
  FbxAMatrix global = LocalTransform();
  for (const FbxNode* above = parent; above; above = above->parent) global = above->LocalTransform() * global;
  return global;
}
