#pragma once

#include "fbx/convert_state.h"

// Makes the root node named after the actor and, where the scene has a rig, a node per bone and
// the bind pose. False when memory is refused.
[[nodiscard]] bool SetupRig(ConvertState& state, const ExportScene& scene);
