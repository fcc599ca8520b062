#pragma once

#include <memory>
#include <string>

#include "core/array.h"
#include "core/string_buffer.h"
#include "export/build_export_scene.h"
#include "fbx/sdk/fbx_scene.h"

struct FbxManagerDestroyer {
  void operator()(FbxManager* manager) const { manager->Destroy(); }
};

// The FBX side of one conversion: the manager that owns every object of the scene, the scene, and
// the nodes that SetupRig makes and each mesh reads. Lives for one conversion and is never reused.
struct ConvertState {
  // The manager goes first, with every object of the scene; then the arrays and the name.
  ~ConvertState() { fbxManager.reset(); }

  std::unique_ptr<FbxManager, FbxManagerDestroyer> fbxManager;
  FbxScene* fbxScene = nullptr;
  TArray<FbxNode*> boneNodes;   // one node per bone of the export scene; empty without a rig
  FbxNode* rootNode = nullptr;  // the node everything hangs under, named after the actor
  TArray<FbxNode*> meshNodes;   // each converted mesh's node, in mesh order
};

// Makes the manager and the scene "Tarnwick" with its document information and the metre as unit.
// False when memory is refused.
[[nodiscard]] bool Setup(ConvertState& state);

// The FBX objects of `scene` in `state`, after Setup: the rig, then every mesh in order. Each
// mesh's geometry is released once converted, as the FBX objects hold it from then on. The step
// that failed when memory is refused.
[[nodiscard]] SceneBuildResult BuildFbxScene(ConvertState& state, ExportScene& scene);

// Writes `scene` to `path`. A path that can't be written prints two lines on standard output and
// gives false, as does a failed export; the file format's version is printed before the export.
// `batch` prints nothing and leaves the flush to disk to the caller, for many writes at once. What
// failed goes to `reason` where given.
[[nodiscard]] bool WriteScene(FbxManager* manager, FbxScene* scene, const char* path, bool batch = false,
                              std::string* reason = nullptr);
