#include "app/convert.h"

#include "app/file_list.h"
#include "app/log.h"
#include "fbx/convert_mesh.h"
#include "fbx/convert_state.h"
#include "fbx/setup_rig.h"
#include "gamedata/actor_definition.h"
#include "gamedata/byte_reader.h"
#include "gamedata/model_file.h"

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
  if (!app.ready) return;
  const i32 selection = app.window->GetCurSel(kFileList);
  if (selection < 0) return;
  const auto* entry = reinterpret_cast<const PackEntry*>(app.window->GetItemData(kFileList, selection));
  if (!entry || reinterpret_cast<std::intptr_t>(entry) == kListError) return;
  TStringBufferA<260> actorName;
  if (!GetSelectedName(app, actorName)) return;

  CByteBuffer actorBytes, modelBytes, paletteBytes;
  ActorDefinition actor;
  if (!PackIndex::FetchEntry(entry, actorBytes)) return Log(app, "Error reading \"%s\".", actorName.Text());
  if (!Read(actor, actorBytes)) return Log(app, "Error parsing \"%s\".", actorName.Text());
  if (!app.packIndex.FetchByName(actor.fileName.Text(), modelBytes)) {
    return Log(app, "Error reading \"%s\".", actor.fileName.Text());
  }
  ModelFile model;
  ModelMaterials modelMaterials, paletteMaterials;
  if (!Read(model, modelBytes, modelMaterials)) return Log(app, "Error parsing \"%s\".", actorName.Text());
  const ModelMaterials* materials = &modelMaterials;
  if (actor.paletteName.Text()[0]) {
    // A palette replaces the model's own materials as a whole.
    if (!app.packIndex.FetchByName(actor.paletteName.Text(), paletteBytes)) {
      return Log(app, "Error reading \"%s\".", actor.paletteName.Text());
    }
    ByteReader reader(paletteBytes);
    if (!ReadMaterials(paletteMaterials, reader)) return Log(app, "Error parsing \"%s\".", actor.paletteName.Text());
    materials = &paletteMaterials;
  }
  Export(app, actorName.Text(), actor, model, *materials, save, rigDialog);
}
