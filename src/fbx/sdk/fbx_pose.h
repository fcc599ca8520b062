#pragma once

#include "fbx/sdk/fbx_node.h"

// A set of nodes with the matrices they had at one moment; a bind pose records where each bone of
// a skin was when the mesh was bound to it.
class FbxPose final : public FbxObject, public FbxCreatable<FbxPose> {
 public:
  struct Entry {
    FbxNode* node = nullptr;
    FbxMatrix matrix;
    bool local = false;
  };

  FbxObjectKind Kind() const override { return FbxObjectKind::Pose; }
  void SetIsBindPose(bool bindPose) { isBindPose = bindPose; }
  bool IsBindPose() const { return isBindPose; }

  // The node's index in the pose; a node already in it keeps its entry. -1 for null or when memory
  // is refused. Matrices are global unless `localMatrix`; a bind pose may share its nodes with
  // other bind poses (`multipleBindPose`), which one scene never needs to check.
  int Add(FbxNode* node, const FbxMatrix& matrix, bool localMatrix = false, bool multipleBindPose = true);
  u32 GetCount() const { return entries.Count(); }
  const Entry& GetEntry(u32 index) const { return entries[index]; }

 private:
  TArray<Entry> entries;
  bool isBindPose = false;
};
