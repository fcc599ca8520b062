#include "app/convert_actor.h"

#include <strings.h>

#include <cstring>

#include "app/actor_textures.h"
#include "app/glb_textures.h"
#include "app/rig_choice.h"
#include "assets/normalize_path.h"
#include "fbx/convert_mesh.h"
#include "fbx/convert_state.h"
#include "fbx/setup_rig.h"
#include "gltf/gltf_scene.h"
#include "gltf/write_glb.h"
#include "mesh/export_mesh.h"

namespace {

// Room for the paths a save dialog gives; a longer one moves to the heap.
constexpr u32 kSavePathSize = 1024;

void Fail(ConvertOutcome& outcome, ConvertResult result, const char* format, const char* name = nullptr) {
  outcome.result = result;
  (void)outcome.logLine.Format(format, name);
}

// Decodes `mesh` through the layout that its material's definition chooses.
bool DecodeMesh(const MaterialDefinitionSet& definitions, const ModelMaterial& material, const ModelMesh& mesh,
                const ModelFile& model, ExportMesh& exportMesh) {
  const InputLayout* layout = definitions.ChooseInputLayout(material.definitionHash);
  const MaterialDefinition* definition = definitions.FindDefinition(material.definitionHash);
  return layout && definition && Build(exportMesh, model, mesh, layout, definition->flags);
}

void FailWrite(ConvertOutcome& outcome, const char* path) {
  TStringBufferA<kSavePathSize> shown;
  DisplayPath(path, shown);
  Fail(outcome, ConvertResult::kWriteFailed, "Failed to write \"%s\".", shown.Text());
}

// The scene as one .glb, with each mesh's diffuse texture inside when textures are asked for.
void ExportGlb(const ConvertState& state, const GameTables& game, const ModelMaterials& materials, u32 meshCount,
               const char* path, ConvertOutcome& outcome, const ConvertOptions& options) {
  GltfImages images;
  if (options.textures) CollectGlbTextures(materials, meshCount, game.packs, images, outcome.notes);
  GltfDocument document;
  if (!BuildGltf(state, images, document) || !WriteGlb(document, path, !options.batch)) {
    return FailWrite(outcome, path);
  }
  outcome.result = ConvertResult::kWritten;
}

bool HasGlbExtension(const char* path) {
  const size_t length = std::strlen(path);
  return length >= 4 && strncasecmp(path + length - 4, ".glb", 4) == 0;
}

}  // namespace

ExportFormat ResolveFormat(ExportFormat format, const char* path) {
  if (format != ExportFormat::kByExtension) return format;
  return HasGlbExtension(path) ? ExportFormat::kGlb : ExportFormat::kFbx;
}

bool BuildActorScene(ConvertState& state, const GameTables& game, const char* actorName, const ActorDefinition& actor,
                     const ModelFile& model, const ModelMaterials& materials, IRigDialog& rigDialog,
                     ConvertOutcome& outcome, const ConvertOptions& options) {
  outcome.logLine.Clear(false);
  if (!Setup(state, actorName)) {
    Fail(outcome, ConvertResult::kSetupFailed, "Failed to initialize convert state.\n");
    return false;
  }
  if (options.creationTime) state.fbxManager->SetCreationTimeSource(options.creationTime);
  const RigSkeleton* rig = model.bones.Count() ? PickRig(actor, model, game.rigs, rigDialog) : nullptr;
  if (!SetupRig(state, model, rig)) {
    Fail(outcome, ConvertResult::kRigFailed, "Failed to initialize rig state.\n");
    return false;
  }
  for (u32 i = 0; i < model.meshes.Count(); ++i) {
    // A material list shorter than the meshes fails the mesh that has none.
    ExportMesh exportMesh;
    if (i >= materials.materials.Count() ||
        !DecodeMesh(game.materials, materials.materials[i], model.meshes[i], model, exportMesh) ||
        !ConvertMesh(state, exportMesh, model.bones.Count(), i)) {
      Fail(outcome, ConvertResult::kMeshFailed, "Failed to convert mesh.\n");
      return false;
    }
  }
  return true;
}

void ExportActor(const GameTables& game, const char* actorName, const ActorDefinition& actor, const ModelFile& model,
                 const ModelMaterials& materials, const ConvertQuestions& questions, ConvertOutcome& outcome,
                 const ConvertOptions& options) {
  outcome.notes.clear();
  ConvertState state;
  if (!BuildActorScene(state, game, actorName, actor, model, materials, questions.rig, outcome, options)) return;
  TStringBufferA<kSavePathSize> path;
  if (!questions.save.AskSavePath(path)) {
    outcome.result = ConvertResult::kCancelled;
    return;
  }
  if (ResolveFormat(options.format, path.Text()) == ExportFormat::kGlb) {
    return ExportGlb(state, game, materials, model.meshes.Count(), path.Text(), outcome, options);
  }
  ActorTextures textures;
  if (options.textures) {
    TextureStore ownStore;
    TextureStore& store = options.textureStore ? *options.textureStore : ownStore;
    ExportActorTextures(state, materials, model.meshes.Count(), game.packs, path.Text(), store, textures);
    outcome.notes = textures.notes;
  }
  if (!WriteScene(state.fbxManager.get(), state.fbxScene, path.Text(), options.batch)) {
    RemoveActorTextures(textures);  // a failed conversion leaves nothing behind
    return FailWrite(outcome, path.Text());
  }
  outcome.result = ConvertResult::kWritten;
}

void ConvertActor(const GameTables& game, const PackEntry& entry, const char* actorName,
                  const ConvertQuestions& questions, ConvertOutcome& outcome, const ConvertOptions& options) {
  outcome.logLine.Clear(false);
  CByteBuffer actorBytes, modelBytes, paletteBytes;
  if (!PackIndex::FetchEntry(&entry, actorBytes)) {
    return Fail(outcome, ConvertResult::kReadActorFailed, "Error reading \"%s\".", actorName);
  }
  ActorFiles files;
  switch (ReadActorFiles(files, actorBytes, game.packs, modelBytes, paletteBytes)) {
    case ActorFilesFailure::kNone:
      break;
    case ActorFilesFailure::kParseActor:
      return Fail(outcome, ConvertResult::kParseActorFailed, "Error parsing \"%s\".", actorName);
    case ActorFilesFailure::kParseModel:
      // The model's name is not the one a user picked: the actor's is logged.
      return Fail(outcome, ConvertResult::kParseModelFailed, "Error parsing \"%s\".", actorName);
    case ActorFilesFailure::kReadModel:
      return Fail(outcome, ConvertResult::kReadModelFailed, "Error reading \"%s\".", files.actor.fileName.Text());
    case ActorFilesFailure::kReadPalette:
      return Fail(outcome, ConvertResult::kReadPaletteFailed, "Error reading \"%s\".", files.actor.paletteName.Text());
    case ActorFilesFailure::kParsePalette:
      return Fail(outcome, ConvertResult::kParsePaletteFailed, "Error parsing \"%s\".", files.actor.paletteName.Text());
  }
  // The model holds copies of its streams; the file's bytes would only add to the export's peak.
  modelBytes.Release();
  ExportActor(game, actorName, files.actor, files.model, files.Applied(), questions, outcome, options);
}
