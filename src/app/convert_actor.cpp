#include "app/convert_actor.h"

#include <strings.h>

#include <cstring>
#include <new>

#include "app/actor_textures.h"
#include "app/glb_textures.h"
#include "app/rig_choice.h"
#include "assets/normalize_path.h"
#include "export/build_export_scene.h"
#include "fbx/convert_state.h"
#include "gltf/gltf_scene.h"
#include "gltf/write_glb.h"

namespace {

// Room for the paths a save dialog gives; a longer one moves to the heap.
constexpr u32 kSavePathSize = 1024;

void Fail(ConvertOutcome& outcome, ConvertResult result, const char* format, const char* name = nullptr) {
  outcome.result = result;
  (void)outcome.logLine.Format(format, name);
}

void FailBuild(ConvertOutcome& outcome, SceneBuildResult result) {
  switch (result) {
    case SceneBuildResult::kBuilt: return;
    case SceneBuildResult::kSetupFailed:
      return Fail(outcome, ConvertResult::kSetupFailed, "Failed to initialize convert state.\n");
    case SceneBuildResult::kRigFailed:
      return Fail(outcome, ConvertResult::kRigFailed, "Failed to initialize rig state.\n");
    case SceneBuildResult::kMeshFailed: return Fail(outcome, ConvertResult::kMeshFailed, "Failed to convert mesh.\n");
  }
}

void FailWrite(ConvertOutcome& outcome, const char* path, std::string reason) {
  outcome.reason = std::move(reason);
  TStringBufferA<kSavePathSize> shown;
  DisplayPath(path, shown);
  Fail(outcome, ConvertResult::kWriteFailed, "Failed to write \"%s\".", shown.Text());
}

// The textures' store: the batch's, or one of this conversion's own.
class StoreChoice {
 public:
  explicit StoreChoice(const ConvertOptions& options) : store(options.textureStore ? *options.textureStore : own) {}
  TextureStore& Get() { return store; }

 private:
  TextureStore own;
  TextureStore& store;
};

// The scene as one .glb, with each mesh's diffuse texture inside when textures are asked for.
void ExportGlb(const ExportScene& scene, const GameTables& game, const char* path, ConvertOutcome& outcome,
               const ConvertOptions& options) {
  GltfImages images;
  if (options.textures) {
    StoreChoice store(options);
    CollectGlbTextures(scene, game.packs, store.Get(), images, outcome.notes);
  }
  GltfDocument document;
  BuildGltf(scene, images, document);
  std::string reason;
  if (!WriteGlb(document, path, !options.batch, &reason)) return FailWrite(outcome, path, std::move(reason));
  outcome.result = ConvertResult::kWritten;
}

void ExportFbx(ExportScene& scene, const GameTables& game, const char* path, ConvertOutcome& outcome,
               const ConvertOptions& options) {
  ConvertState state;
  if (!Setup(state)) return Fail(outcome, ConvertResult::kSetupFailed, "Failed to initialize convert state.\n");
  if (options.creationTime) state.fbxManager->SetCreationTimeSource(options.creationTime);
  const SceneBuildResult built = BuildFbxScene(state, scene);
  if (built != SceneBuildResult::kBuilt) return FailBuild(outcome, built);
  ActorTextures textures;
  if (options.textures) {
    StoreChoice store(options);
    if (!ExportActorTextures(state, scene, game.packs, path, store.Get(), textures)) {
      return FailWrite(outcome, path, "Out of memory");
    }
    outcome.notes = textures.notes;
  }
  std::string reason;
  if (!WriteScene(state.fbxManager.get(), state.fbxScene, path, options.batch, &reason)) {
    return FailWrite(outcome, path, std::move(reason));
  }
  textures.keep = true;
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

bool BuildActorScene(ExportScene& scene, const GameTables& game, const char* actorName, const ActorDefinition& actor,
                     const ModelFile& model, const ModelMaterials& materials, IRigDialog& rigDialog,
                     ConvertOutcome& outcome) {
  outcome.logLine.Clear(false);
  const RigSkeleton* rig = model.bones.Count() ? PickRig(actor, model, game.rigs, rigDialog) : nullptr;
  if (rigDialog.StopsConversion()) {
    outcome.result = ConvertResult::kCancelled;
    return false;
  }
  const SceneBuildResult built = BuildExportScene(scene, actorName, model, materials, game.materials, rig);
  FailBuild(outcome, built);
  return built == SceneBuildResult::kBuilt;
}

void ExportActor(const GameTables& game, const char* actorName, const ActorDefinition& actor, const ModelFile& model,
                 const ModelMaterials& materials, const ConvertQuestions& questions, ConvertOutcome& outcome,
                 const ConvertOptions& options) {
  outcome.notes.clear();
  outcome.reason.clear();
  ExportScene scene;
  // The standard containers report refused memory by throwing: it ends this conversion with its
  // line, nothing written, and never the program.
  try {
    if (!BuildActorScene(scene, game, actorName, actor, model, materials, questions.rig, outcome)) return;
  } catch (const std::bad_alloc&) {
    return FailBuild(outcome, SceneBuildResult::kMeshFailed);
  }
  TStringBufferA<kSavePathSize> path;
  if (!questions.save.AskSavePath(path)) {
    outcome.result = ConvertResult::kCancelled;
    return;
  }
  try {
    if (ResolveFormat(options.format, path.Text()) == ExportFormat::kGlb) {
      return ExportGlb(scene, game, path.Text(), outcome, options);
    }
    ExportFbx(scene, game, path.Text(), outcome, options);
  } catch (const std::bad_alloc&) {
    outcome.notes.clear();
    FailWrite(outcome, path.Text(), "Out of memory");
  }
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
    case ActorFilesFailure::kNone: break;
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
