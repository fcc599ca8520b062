#include "app/convert.h"

#include "app/file_list.h"
#include "app/log.h"
#include "fbx/convert_mesh.h"
#include "fbx/convert_state.h"
#include "fbx/setup_rig.h"
#include "gamedata/actor_files.h"

namespace {

// The conversion once its files are read: scene, rig, meshes, file.
void Export(AppState& app, const char* actorName, const ActorDefinition& actor, const ModelFile& model,
            const ModelMaterials& materials, ISaveDialog& save, IRigDialog& rigDialog) {
  ConvertState state;
  if (!Setup(state, actorName)) {
    Log(app, "Failed to initialize convert state.\n");
    return;
  }
  if (!SetupRig(state, actor, model, app.rigs, rigDialog)) {
    Log(app, "Failed to initialize rig state.\n");
    return;
  }
  for (u32 i = 0; i < model.meshes.Count(); ++i) {
    // A material list shorter than the meshes fails the mesh that has none.
    if (i >= materials.materials.Count() ||
        !ConvertMesh(state, materials.materials[i], model.meshes[i], model, i, app.materials)) {
      Log(app, "Failed to convert mesh.\n");
      return;
    }
  }
  (void)WriteScene(state.fbxManager.get(), state.fbxScene, save);
}

}  // namespace

void Convert(AppState& app, ISaveDialog& save, IRigDialog& rigDialog) {
  const PackEntry* entry = SelectedEntry(app);
  if (!entry) return;
  TStringBufferA<260> actorName;
  if (!GetSelectedName(app, actorName)) return;

  CByteBuffer actorBytes, modelBytes, paletteBytes;
  if (!PackIndex::FetchEntry(entry, actorBytes)) return Log(app, "Error reading \"%s\".", actorName.Text());
  ActorFiles files;
  switch (ReadActorFiles(files, actorBytes, app.packIndex, modelBytes, paletteBytes)) {
    case ActorFilesFailure::kNone:
      break;
    case ActorFilesFailure::kParseActor:
    case ActorFilesFailure::kParseModel:
      return Log(app, "Error parsing \"%s\".", actorName.Text());
    case ActorFilesFailure::kReadModel:
      return Log(app, "Error reading \"%s\".", files.actor.fileName.Text());
    case ActorFilesFailure::kReadPalette:
      return Log(app, "Error reading \"%s\".", files.actor.paletteName.Text());
    case ActorFilesFailure::kParsePalette:
      return Log(app, "Error parsing \"%s\".", files.actor.paletteName.Text());
  }
  Export(app, actorName.Text(), files.actor, files.model, files.Applied(), save, rigDialog);
}
