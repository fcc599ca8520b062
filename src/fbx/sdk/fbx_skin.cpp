#include "fbx/sdk/fbx_skin.h"

bool FbxCluster::AddControlPointIndex(int index, f64 weight) {
  // Room in both arrays first, so a refusal leaves them the same length.
  if (indices.Count() == indices.Capacity() && !indices.Reserve(indices.Count() < 8 ? 8 : 2 * indices.Count())) {
    return false;
  }
  if (weights.Count() == weights.Capacity() && !weights.Reserve(indices.Capacity())) return false;
  *indices.Append() = index;
  *weights.Append() = weight;
  return true;
}

bool FbxSkin::AddCluster(FbxCluster* cluster) {
  FbxCluster** slot = cluster ? clusters.Append() : nullptr;
  if (!slot) return false;
  *slot = cluster;
  return true;
}
