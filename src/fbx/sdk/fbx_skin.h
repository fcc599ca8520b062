#pragma once

#include "fbx/sdk/fbx_mesh.h"

// The control points that one bone moves, with their weights and the matrices of the binding.
class FbxCluster final : public FbxObject, public FbxCreatable<FbxCluster> {
 public:
  enum ELinkMode { eNormalize, eAdditive, eTotalOne };

  FbxObjectKind Kind() const override { return FbxObjectKind::Cluster; }

  void SetLink(FbxNode* node) { link = node; }
  FbxNode* GetLink() const { return link; }
  void SetLinkMode(ELinkMode mode) { linkMode = mode; }
  ELinkMode GetLinkMode() const { return linkMode; }
  // The mesh's global matrix at bind time.
  void SetTransformMatrix(const FbxAMatrix& matrix) { transform = matrix; }
  const FbxAMatrix& GetTransformMatrix() const { return transform; }
  // The bone's global matrix at bind time.
  void SetTransformLinkMatrix(const FbxAMatrix& matrix) { transformLink = matrix; }
  const FbxAMatrix& GetTransformLinkMatrix() const { return transformLink; }

  // False when memory is refused. Inline: a skin adds one for every weight of its mesh.
  [[nodiscard]] bool AddControlPointIndex(int index, f64 weight) {
    // Room in both arrays first, so a refusal leaves them the same length.
    if (indices.Count() == indices.Capacity() && !indices.Reserve(indices.Count() < 8 ? 8 : 2 * indices.Count())) {
      return false;
    }
    if (weights.Count() == weights.Capacity() && !weights.Reserve(indices.Capacity())) return false;
    *indices.Append() = index;
    *weights.Append() = weight;
    return true;
  }
  u32 GetControlPointIndicesCount() const { return indices.Count(); }
  const int* GetControlPointIndices() const { return indices.Data(); }
  const f64* GetControlPointWeights() const { return weights.Data(); }

 private:
  FbxNode* link = nullptr;
  ELinkMode linkMode = eNormalize;
  FbxAMatrix transform;
  FbxAMatrix transformLink;
  TArray<int> indices;
  TArray<f64> weights;
};

// The clusters that bind one mesh to a skeleton, in the order they were added.
class FbxSkin final : public FbxDeformer, public FbxCreatable<FbxSkin> {
 public:
  FbxObjectKind Kind() const override { return FbxObjectKind::Skin; }

  // False for null or when memory is refused.
  [[nodiscard]] bool AddCluster(FbxCluster* cluster);
  u32 GetClusterCount() const { return clusters.Count(); }
  FbxCluster* GetCluster(u32 index) const { return clusters[index]; }

 private:
  TArray<FbxCluster*> clusters;
};
