#pragma once

#include "fbx/sdk/fbx_node.h"
#include "fbx/sdk/fbx_pose.h"

// A unit of length as centimetres per unit: 100 is the metre.
class FbxSystemUnit {
 public:
  explicit FbxSystemUnit(f64 scaleFactor = 1.0, f64 multiplier = 1.0) : scale(scaleFactor), factor(multiplier) {}
  f64 GetScaleFactor() const { return scale; }
  f64 GetMultiplier() const { return factor; }

 private:
  f64 scale;
  f64 factor;
};

// The scene-wide settings a file carries. No axis system is ever set, so files keep the default.
class FbxGlobalSettings {
 public:
  void SetSystemUnit(const FbxSystemUnit& unit) { systemUnit = unit; }
  const FbxSystemUnit& GetSystemUnit() const { return systemUnit; }
  void SetOriginalSystemUnit(const FbxSystemUnit& unit) { originalUnit = unit; }
  const FbxSystemUnit& GetOriginalSystemUnit() const { return originalUnit; }

 private:
  FbxSystemUnit systemUnit;
  FbxSystemUnit originalUnit;
};

// What a file says of its document: title, subject and the rest.
class FbxDocumentInfo final : public FbxObject, public FbxCreatable<FbxDocumentInfo> {
 public:
  FbxObjectKind Kind() const override { return FbxObjectKind::DocumentInfo; }

  CStringA mTitle;
  CStringA mSubject;
  CStringA mAuthor;
  CStringA mRevision;
  CStringA mKeywords;
  CStringA mComment;
};

// A scene: a tree of nodes under a root that the file doesn't store as a node of its own, the
// poses, the settings and the document information.
class FbxScene final : public FbxObject {
 public:
  FbxObjectKind Kind() const override { return FbxObjectKind::Scene; }

  // A scene with its root node. Null when memory is refused.
  static FbxScene* Create(FbxManager* manager, const char* name);

  FbxNode* GetRootNode() const { return rootNode; }
  FbxGlobalSettings& GetGlobalSettings() { return globalSettings; }
  const FbxGlobalSettings& GetGlobalSettings() const { return globalSettings; }
  void SetDocumentInfo(FbxDocumentInfo* info) { documentInfo = info; }
  FbxDocumentInfo* GetDocumentInfo() const { return documentInfo; }

  // False for null or when memory is refused.
  [[nodiscard]] bool AddPose(FbxPose* pose);
  u32 GetPoseCount() const { return poses.Count(); }
  FbxPose* GetPose(u32 index) const { return poses[index]; }

 private:
  FbxNode* rootNode = nullptr;
  FbxGlobalSettings globalSettings;
  FbxDocumentInfo* documentInfo = nullptr;
  TArray<FbxPose*> poses;
};

// The exporter's options, by name.
class FbxIOSettings final : public FbxObject, public FbxCreatable<FbxIOSettings> {
 public:
  FbxObjectKind Kind() const override { return FbxObjectKind::IOSettings; }

  // An option that can't be kept for want of memory keeps its former value.
  void SetBoolProp(const char* name, bool value);
  bool GetBoolProp(const char* name, bool defaultValue) const;

 private:
  struct Option {
    CStringA name;
    bool value = false;
  };
  TArray<Option> options;
};
