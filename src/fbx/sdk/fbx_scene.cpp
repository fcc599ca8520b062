#include "fbx/sdk/fbx_scene.h"

#include <cstring>

FbxScene* FbxScene::Create(FbxManager* manager, const char* name) {
  FbxScene* scene = manager ? manager->Make<FbxScene>(name) : nullptr;
  if (!scene) return nullptr;
  scene->rootNode = FbxNode::Create(manager, "RootNode");
  if (!scene->rootNode) {
    scene->Destroy();
    return nullptr;
  }
  return scene;
}

bool FbxScene::AddPose(FbxPose* pose) {
  FbxPose** slot = pose ? poses.Append() : nullptr;
  if (!slot) return false;
  *slot = pose;
  return true;
}

void FbxIOSettings::SetBoolProp(const char* name, bool value) {
  for (Option& option : options) {
    if (std::strcmp(option.name.Text(), name) == 0) {
      option.value = value;
      return;
    }
  }
  Option* option = options.Append();
  if (!option) return;
  if (!option->name.Assign(name)) {
    (void)options.SetSize(options.Count() - 1);
    return;
  }
  option->value = value;
}

bool FbxIOSettings::GetBoolProp(const char* name, bool defaultValue) const {
  for (const Option& option : options) {
    if (std::strcmp(option.name.Text(), name) == 0) return option.value;
  }
  return defaultValue;
}
