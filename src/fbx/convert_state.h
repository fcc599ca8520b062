#pragma once

#include <memory>

#include "core/array.h"
#include "core/string_buffer.h"
#include "fbx/sdk/fbx_scene.h"
#include "gamedata/rig_network.h"

struct FbxManagerDestroyer {
  void operator()(FbxManager* manager) const { manager->Destroy(); }
};

// The FBX side of one conversion: the manager that owns every object of the scene, the scene, and
// the rig that SetupRig fills and each mesh reads. Lives for one conversion and is never reused.
struct ConvertState {
  // The manager goes first, with every object of the scene; then the arrays and the name.
  ~ConvertState() { fbxManager.reset(); }

  std::unique_ptr<FbxManager, FbxManagerDestroyer> fbxManager;
  FbxScene* fbxScene = nullptr;
  TArray<FbxNode*> boneNodes;     // one node per rig bone, by the bone's index; empty without a rig
  const RigSkeleton* rig = nullptr;  // owned by the rig table; null without a rig
  FbxNode* rootNode = nullptr;    // the node everything hangs under, named after the actor
  TStringBufferA<48> name;        // the actor's base name
  TArray<u32> modelToRig;         // for each model bone its rig bone, or kNoRigBone
  TArray<FbxNode*> meshNodes;     // each converted mesh's node, in mesh order
};

constexpr u32 kNoRigBone = 0xFFFFFFFF;

// Makes the manager and the scene "Tarnwick" with its document information and the metre as unit,
// and takes the actor's base name. False when memory is refused.
[[nodiscard]] bool Setup(ConvertState& state, const char* actorName);

// The file name of `text` without folders (`/` or `\`) and without what follows its last `.`.
// False, with `out` empty, when memory is refused.
bool FileStem(const char* text, CStringBufferA& out);

// Writes `scene` to `path`. A path that can't be written prints two lines on standard output and
// gives false, as does a failed export; the file format's version is printed before the export.
// `batch` prints nothing and leaves the flush to disk to the caller, for many writes at once.
[[nodiscard]] bool WriteScene(FbxManager* manager, FbxScene* scene, const char* path, bool batch = false);
