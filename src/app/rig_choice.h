#pragma once

#include "app/convert_questions.h"
#include "gamedata/actor_definition.h"
#include "gamedata/model_file.h"
#include "gamedata/rig_table.h"

// The rig a conversion of `actor` uses: the one its network's set drives, or, when the actor borrows
// a skeleton, the one rig of the table that fits the model, asking `dialog` when several do. Null
// for none, which is no failure. Not asked for a model without bones.
const RigSkeleton* PickRig(const ActorDefinition& actor, const ModelFile& model, const RigTable& rigs,
                           IRigDialog& dialog);

// The rig that the animation set `name` (in any case) drives in `network`, or null.
const RigSkeleton* FindRig(const RigNetwork& network, const char* name);

// What the rig dialog lists for a rig that no animation set names.
constexpr const char* kUnnamedRig = "(unnamed rig)";

// The rig PickRig would take, without asking anyone: where several fit, the first that the rig
// dialog lists (sorted by name, ignoring case). `name` gets the name that rig goes by: its
// animation set's, or kUnnamedRig. Null for none, and `name` is then left alone.
const RigSkeleton* PickRigUnasked(const ActorDefinition& actor, const ModelFile& model, const RigTable& rigs,
                                  const char*& name);

// Whether `rig` has a bone for every bone of `model`; it may have more.
bool RigMatches(const ModelFile& model, const RigSkeleton& rig);

// The one rig of the table that fits `model`, or the user's choice when several do; null when
// none fits or the user cancels.
const RigSkeleton* ChooseRig(const ModelFile& model, const RigTable& rigs, IRigDialog& dialog);
