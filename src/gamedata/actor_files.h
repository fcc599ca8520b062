#pragma once

#include "assets/pack_index.h"
#include "core/byte_buffer.h"
#include "gamedata/actor_definition.h"
#include "gamedata/model_file.h"

// An actor's files as read from the packs: its definition, its model and, when it names one, its
// palette, whose material chunk then replaces the model's own as a whole.
struct ActorFiles {
  ActorDefinition actor;
  ModelFile model;
  ModelMaterials modelMaterials;
  ModelMaterials paletteMaterials;

  const ModelMaterials& Applied() const { return actor.paletteName.Text()[0] ? paletteMaterials : modelMaterials; }
};

// The step at which reading an actor's files stopped.
enum class ActorFilesFailure { kNone, kParseActor, kReadModel, kParseModel, kReadPalette, kParsePalette };

// Reads the actor from `actorBytes`, then fetches and reads its model and palette into the given
// buffers, which keep their capacity for the next actor.
ActorFilesFailure ReadActorFiles(ActorFiles& files, const CByteBuffer& actorBytes, const PackIndex& packs,
                                 CByteBuffer& modelBytes, CByteBuffer& paletteBytes);
