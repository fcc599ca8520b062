#include "fbx/sdk/fbx_skin.h"

bool FbxSkin::AddCluster(FbxCluster* cluster) {
  FbxCluster** slot = cluster ? clusters.Append() : nullptr;
  if (!slot) return false;
  *slot = cluster;
  return true;
}
