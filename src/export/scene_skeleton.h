#pragma once

#include "export/export_scene.h"
#include "gamedata/model_file.h"
#include "gamedata/rig_network.h"

// The skeleton of `rig` (owned by the rig table; null for none) in `scene`: its bones with their
// bind transforms, and in `modelToRig` each bone of `model` as a bone of the scene or kSceneNoBone.
// A model without bones takes no rig. False when memory is refused or two rig bones claim one
// model bone.
[[nodiscard]] bool BuildSceneSkeleton(ExportScene& scene, const ModelFile& model, const RigSkeleton* rig,
                                      TArray<u32>& modelToRig);
