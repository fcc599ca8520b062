#pragma once

#include "fbx/sdk/fbx_node.h"

// The attribute that makes a node a joint of a skeleton.
class FbxSkeleton final : public FbxNodeAttribute, public FbxCreatable<FbxSkeleton> {
 public:
  enum EType { eRoot, eLimb, eLimbNode, eEffector };

  FbxObjectKind Kind() const override { return FbxObjectKind::Skeleton; }
  void SetSkeletonType(EType newType) { type = newType; }
  EType GetSkeletonType() const { return type; }

 private:
  EType type = eRoot;
};
