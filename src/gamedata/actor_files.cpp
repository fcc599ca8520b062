#include "gamedata/actor_files.h"

#include "core/byte_reader.h"

ActorFilesFailure ReadActorFiles(ActorFiles& files, const CByteBuffer& actorBytes, const PackIndex& packs,
                                 CByteBuffer& modelBytes, CByteBuffer& paletteBytes) {
  if (!Read(files.actor, actorBytes)) return ActorFilesFailure::kParseActor;
  if (!packs.FetchByName(files.actor.fileName.Text(), modelBytes)) return ActorFilesFailure::kReadModel;
  if (!Read(files.model, modelBytes, files.modelMaterials)) return ActorFilesFailure::kParseModel;
  if (!files.actor.paletteName.Text()[0]) return ActorFilesFailure::kNone;
  if (!packs.FetchByName(files.actor.paletteName.Text(), paletteBytes)) return ActorFilesFailure::kReadPalette;
  ByteReader reader(paletteBytes);
  if (!ReadMaterials(files.paletteMaterials, reader)) return ActorFilesFailure::kParsePalette;
  return ActorFilesFailure::kNone;
}
