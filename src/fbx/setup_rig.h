#pragma once

#include "fbx/convert_state.h"
#include "gamedata/actor_definition.h"
#include "gamedata/model_file.h"
#include "gamedata/rig_table.h"

// Makes the root node named after the actor, finds the model's rig (by the actor's network and set,
// or among every rig that fits when the actor borrows a skeleton, asking the user when several
// do), and then makes a node per rig bone, the bind pose and the map from model bones to rig bones.
// No rig is no failure. False when memory is refused or two rig bones claim one model bone.
[[nodiscard]] bool SetupRig(ConvertState& state, const ActorDefinition& actor, const ModelFile& model,
                            const RigTable& rigs, IRigDialog& dialog);

// The rig that the animation set `name` (in any case) drives in `network`, or null.
const RigSkeleton* FindRig(const RigNetwork& network, const char* name);

// Whether `rig` has a bone for every bone of `model`; it may have more.
bool RigMatches(const ModelFile& model, const RigSkeleton& rig);

// The one rig of the table that fits `model`, or the user's choice when several do; null when
// none fits or the user cancels.
const RigSkeleton* ChooseRig(const ModelFile& model, const RigTable& rigs, IRigDialog& dialog);
