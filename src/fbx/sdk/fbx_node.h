#pragma once

#include "fbx/sdk/fbx_object.h"

// What a node is: a skeleton joint or a mesh.
class FbxNodeAttribute : public FbxObject {};

class FbxSurfaceMaterial : public FbxObject {};

// The time of an evaluation; the scenes written are not animated, so every time gives the same.
using FbxTime = i64;
constexpr FbxTime kFbxTimeInfinite = 0x7FFFFFFFFFFFFFFF;

class FbxNode final : public FbxObject, public FbxCreatable<FbxNode> {
 public:
  enum EPivotSet { eSourcePivot, eDestinationPivot };

  FbxObjectKind Kind() const override { return FbxObjectKind::Node; }

  // The transform relative to the parent: translation, XYZ Euler angles in degrees, scale.
  FbxPropertyT<FbxDouble3> LclTranslation;
  FbxPropertyT<FbxDouble3> LclRotation;
  FbxPropertyT<FbxDouble3> LclScaling{FbxDouble3{1, 1, 1}};

  // False for null.
  bool SetNodeAttribute(FbxNodeAttribute* attribute);
  FbxNodeAttribute* GetNodeAttribute() const { return attribute; }

  // Moves `child` under this node, after the children it has. False for null, for this node or
  // one of its ancestors (which would make a cycle), or when memory is refused.
  [[nodiscard]] bool AddChild(FbxNode* child);
  u32 GetChildCount() const { return children.Count(); }
  FbxNode* GetChild(u32 index) const { return children[index]; }
  FbxNode* GetParent() const { return parent; }

  // The material's index on this node, or -1 when memory is refused or `material` is null.
  int AddMaterial(FbxSurfaceMaterial* material);
  u32 GetMaterialCount() const { return materials.Count(); }
  FbxSurfaceMaterial* GetMaterial(u32 index) const { return materials[index]; }

  // Parent's global matrix times T * R * S of this node, up to the top of its tree. Pivots, offsets
  // and pre- and post-rotations stay at their defaults in the scenes written, so they drop out.
  FbxAMatrix EvaluateGlobalTransform(FbxTime time = kFbxTimeInfinite, EPivotSet pivotSet = eSourcePivot,
                                     bool applyTarget = false, bool forceEval = false) const;

 private:
  FbxAMatrix LocalTransform() const;
  void DetachFromParent();

  FbxNodeAttribute* attribute = nullptr;
  FbxNode* parent = nullptr;
  TArray<FbxNode*> children;
  TArray<FbxSurfaceMaterial*> materials;
};
