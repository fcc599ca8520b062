#include <benchmark/benchmark.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "app/convert_actor.h"
#include "fbx/convert_state.h"
#include "fbx/sdk/fbx_binary_writer.h"
#include "fbx/sdk/fbx_document.h"
#include "fbx/sdk/fbx_scene_writer.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/stress_game.h"
#include "gltf/gltf_scene.h"
#include "mesh/export_mesh.h"
#include "platform/output_file.h"
#include "support/temp_dir.h"

namespace {

// The stress game's large actor: 4 meshes of 256 x 236 vertices (241,664 in all) with normals, one
// UV set and one to four influences each, skinned to 128 bones.
const gamewriters::SkinnedActorDesc kDesc = gamewriters::LargeModel({});

CByteBuffer Bytes(const std::string& bytes) {
  CByteBuffer buffer;
  if (buffer.SetSize(u32(bytes.size()))) std::memcpy(buffer.Data(), bytes.data(), bytes.size());
  return buffer;
}

struct Actor {
  MaterialDefinitionSet definitions;
  ModelFile model;
  ModelMaterials materials;
  RigTable rigs;
  ActorDefinition actor;
  bool ok = false;

  Actor() {
    const gamewriters::SkinnedActor files = gamewriters::BuildSkinnedActor(kDesc);
    CStringA key;
    RigNetwork* network = key.Assign("hero") ? rigs.FindOrInsert(key) : nullptr;
    ok = definitions.Read(Bytes(files.catalogue)) && Read(model, Bytes(files.model), materials) && network &&
         Read(*network,
              Bytes(gamewriters::BuildRigNetwork(gamewriters::NetworkWithSets({{7, files.rig}}, {{"Idle", 7}})))) &&
         actor.animationNetworkName.Assign("hero.mrn") && actor.animSetName.Assign("Idle");
  }
  ~Actor() { definitions.Destroy(); }
};

Actor& TheActor() {
  static Actor actor;
  return actor;
}

struct NoRigDialog : IRigDialog {
  i32 Run(const RigCandidate*, const RigSkeleton*&) override { return 0; }
};

struct FixedPath : ISaveDialog {
  std::string path;
  bool AskSavePath(CStringBufferA& out) override { return out.Format("%s", path.c_str()) > 0; }
};

FbxCreationTime FixedTime() { return {2026, 11, 23, 12, 0, 0, 0}; }

// The export scene of the whole actor, as a conversion builds it before asking for the path.
bool BuildScene(ExportScene& scene) {
  Actor& a = TheActor();
  NoRigDialog dialog;
  PackIndex noPacks;
  ConvertOutcome outcome;
  return a.ok && BuildActorScene(scene, GameTables{noPacks, a.definitions, a.rigs}, "hero.adr", a.actor, a.model,
                                 a.materials, dialog, outcome);
}

// The same scene as FBX objects, as a conversion builds them before writing.
bool BuildScene(ConvertState& state) {
  ExportScene scene;
  if (!BuildScene(scene) || !Setup(state)) return false;
  state.fbxManager->SetCreationTimeSource(FixedTime);
  return BuildFbxScene(state, scene) == SceneBuildResult::kBuilt;
}

// Fetching aside, what the Convert command does: set-up, rig, every mesh, the file, as .fbx or,
// with the argument 1, as .glb.
void BM_ExportWholeActor(benchmark::State& state) {
  const bool glb = state.range(0) == 1;
  testsupport::TempDir dir;
  FixedPath save;
  save.path = dir.Join(glb ? "hero.glb" : "hero.fbx");
  NoRigDialog dialog;
  PackIndex noPacks;
  Actor& a = TheActor();
  for (auto _ : state) {
    ConvertOutcome outcome;
    ExportActor(GameTables{noPacks, a.definitions, a.rigs}, "hero.adr", a.actor, a.model, a.materials, {save, dialog},
                outcome, {.creationTime = FixedTime, .format = ExportFormat::kByExtension});
    if (!outcome.Written()) state.SkipWithError("export failed");
  }
  state.SetLabel(glb ? "glb" : "fbx");
  state.counters["file_MB"] = double(std::filesystem::file_size(save.path)) / 1e6;
}
BENCHMARK(BM_ExportWholeActor)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// The glTF side alone, once the scene is built: the JSON and the binary buffer of the .glb.
void BM_ExportGlbDocument(benchmark::State& state) {
  ExportScene scene;
  if (!BuildScene(scene)) state.SkipWithError("scene failed");
  for (auto _ : state) {
    GltfDocument document;
    BuildGltf(scene, {}, document);
  }
}
BENCHMARK(BM_ExportGlbDocument)->Unit(benchmark::kMillisecond);

// The stages one by one: decoding the game's meshes, ...
void BM_ExportStage1Decode(benchmark::State& state) {
  Actor& a = TheActor();
  for (auto _ : state) {
    for (u32 m = 0; m < a.model.meshes.Count(); ++m) {
      const u32 hash = a.materials.materials[m].definitionHash;
      ExportMesh mesh;
      if (!Build(mesh, a.model, a.model.meshes[m], a.definitions.ChooseInputLayout(hash),
                 a.definitions.FindDefinition(hash)->flags)) {
        state.SkipWithError("decode failed");
      }
    }
  }
}
BENCHMARK(BM_ExportStage1Decode)->Unit(benchmark::kMillisecond);

// ... decoding and building the scene (subtract the decoding for the scene alone), ...
void BM_ExportStage2DecodeAndScene(benchmark::State& state) {
  for (auto _ : state) {
    ConvertState convert;
    if (!BuildScene(convert)) state.SkipWithError("scene failed");
  }
}
BENCHMARK(BM_ExportStage2DecodeAndScene)->Unit(benchmark::kMillisecond);

// ... turning the scene into the file's records, ...
void BM_ExportStage3Records(benchmark::State& state) {
  ConvertState convert;
  if (!BuildScene(convert)) state.SkipWithError("scene failed");
  for (auto _ : state) {
    FbxRecord document;
    if (!BuildSceneDocument(*convert.fbxScene, FixedTime(), document)) state.SkipWithError("records failed");
  }
}
BENCHMARK(BM_ExportStage3Records)->Unit(benchmark::kMillisecond);

// ... deflating the large arrays on every core and laying out the bytes, ...
void BM_ExportStage4DeflateAndEncode(benchmark::State& state) {
  ConvertState convert;
  if (!BuildScene(convert)) state.SkipWithError("scene failed");
  char time[24];
  FormatCreationTime(FixedTime(), time);
  for (auto _ : state) {
    // Writing deflates the document in place: each round packs a new one.
    state.PauseTiming();
    FbxRecord document;
    if (!BuildSceneDocument(*convert.fbxScene, FixedTime(), document)) state.SkipWithError("records failed");
    state.ResumeTiming();
    CByteBuffer bytes;
    if (!WriteFbxBinary(document, time, bytes)) state.SkipWithError("encoding failed");
  }
}
BENCHMARK(BM_ExportStage4DeflateAndEncode)->Unit(benchmark::kMillisecond);

// ... and writing the file through its temporary.
void BM_ExportStage5WriteFile(benchmark::State& state) {
  ConvertState convert;
  FbxRecord document;
  CByteBuffer bytes;
  char time[24];
  FormatCreationTime(FixedTime(), time);
  if (!BuildScene(convert) || !BuildSceneDocument(*convert.fbxScene, FixedTime(), document) ||
      !WriteFbxBinary(document, time, bytes)) {
    state.SkipWithError("encoding failed");
  }
  testsupport::TempDir dir;
  const std::string path = dir.Join("hero.fbx");
  for (auto _ : state) {
    OutputFile file;
    if (!file.Open(path.c_str()) || !file.Write(bytes.Data(), bytes.Size()) || !file.Commit()) {
      state.SkipWithError("write failed");
    }
  }
  state.SetBytesProcessed(i64(state.iterations()) * bytes.Size());
}
BENCHMARK(BM_ExportStage5WriteFile)->Unit(benchmark::kMillisecond);

}  // namespace
