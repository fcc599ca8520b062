#include "fbx/sdk/fbx_pose.h"

int FbxPose::Add(FbxNode* node, const FbxMatrix& matrix, bool localMatrix, bool) {
  if (!node) return -1;
  for (u32 i = 0; i < entries.Count(); ++i) {
    if (entries[i].node == node) return int(i);
  }
  Entry* entry = entries.Append();
  if (!entry) return -1;
  *entry = {node, matrix, localMatrix};
  return int(entries.Count() - 1);
}
