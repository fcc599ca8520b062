#pragma once

#include "fbx/convert_state.h"
#include "gamedata/model_file.h"
#include "gamedata/rig_network.h"

// Makes the root node named after the actor and, with `rig` (owned by the rig table; null for
// none), a node per rig bone, the bind pose and the map from model bones to rig bones. A model
// without bones takes no rig. False when memory is refused or two rig bones claim one model bone.
[[nodiscard]] bool SetupRig(ConvertState& state, const ModelFile& model, const RigSkeleton* rig);
