#include <benchmark/benchmark.h>

#include <random>

#include "app/batch_convert.h"
#include "app/output_names.h"
#include "game_writers/image_writer.h"
#include "game_writers/pack_writer.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/xml_writer.h"
#include "support/temp_dir.h"

namespace {

constexpr u32 kDdsFourCCFlag = 0x4;

// A block-compressed DDS of `size` x `size` with blocks of noise: as costly to decode as a real one.
std::string NoiseDds(u32 size, const char* code, u32 seed) {
  const u32 blockBytes = std::string(code) == "DXT1" ? 8 : 16;
  std::string blocks(size_t(size / 4) * (size / 4) * blockBytes, '\0');
  std::mt19937 random(seed);
  for (char& byte : blocks) byte = char(random());
  return gamewriters::BuildDdsWithFormat(size, size, {kDdsFourCCFlag, gamewriters::DdsFourCC(code), 0, {}}, blocks);
}

// A game of `actors` actors over one pack, `meshCount` meshes of `grid` squared vertices each, and
// `textures` textures of `size` squared that the meshes take in turn as their diffuse texture.
struct TexturedGame {
  testsupport::TempDir dir;
  PackIndex packs;
  MaterialDefinitionSet materials;
  RigTable rigs;
  std::vector<BatchActor> actors;

  TexturedGame(u32 actorCount, u32 meshCount, u32 grid, u32 textures, u32 size) {
    std::vector<gamewriters::PackFileEntry> files;
    for (u32 t = 0; t < textures; ++t) {
      files.push_back({"tex\\t" + std::to_string(t) + ".dds", NoiseDds(size, t % 2 ? "DXT5" : "DXT1", t)});
    }
    std::vector<std::string> names;
    for (u32 a = 0; a < actorCount; ++a) {
      gamewriters::SkinnedActorDesc desc{.meshCount = meshCount, .gridSize = grid, .boneCount = 4};
      for (u32 m = 0; m < meshCount; ++m)
        desc.textures.push_back({{"baseDiffuse", "tex\\t" + std::to_string((a * meshCount + m) % textures) + ".dds"}});
      const gamewriters::SkinnedActor actor = gamewriters::BuildSkinnedActor(desc);
      if (a == 0) files.push_back({"materials_3.xml", actor.catalogue});
      const std::string model = "models\\m" + std::to_string(a) + ".dmod";
      names.push_back("actors\\a" + std::to_string(a) + ".adr");
      files.push_back({model, actor.model});
      files.push_back({names.back(), gamewriters::BuildActor({.fileName = model})});
    }
    (void)gamewriters::WriteFileBytes(dir.Join("assets_000.pack"),
                                      gamewriters::BuildPack({{gamewriters::PackChunk{files}}}));
    CByteBuffer catalogue;
    ok = packs.Open(dir.Path().c_str()) && packs.FetchByName("materials_3.xml", catalogue) && materials.Read(catalogue);
    const std::vector<std::string> outputs = OutputNames(names, ".fbx");
    for (size_t a = 0; a < names.size(); ++a) actors.push_back({packs.Find(names[a].c_str()), names[a], outputs[a]});
  }
  ~TexturedGame() { materials.Destroy(); }
  bool ok = false;
};

void RunTextured(benchmark::State& state, TexturedGame& game, u32 jobs) {
  if (!game.ok) return state.SkipWithError("game not written");
  std::vector<BatchActorResult> results;
  const std::atomic<bool> stop{false};
  u32 run = 0;
  for (auto _ : state) {
    TextureStore store(false);
    BatchSettings settings;
    settings.outDir = game.dir.Join("out" + std::to_string(run++));
    settings.jobs = jobs;
    settings.convert = {.batch = true, .textures = true, .textureStore = &store};
    const BatchSummary summary =
        RunBatch(GameTables{game.packs, game.materials, game.rigs}, game.actors, settings, nullptr, stop, results);
    if (summary.written != game.actors.size() || !results[0].notes.empty()) state.SkipWithError("not written whole");
  }
}

// The 200,704-vertex actor with its four meshes on four 2048 x 2048 textures, two BC1 and two BC3:
// the model, then the textures decoded and written as PNG on both cores.
void BM_ExportLargeActorWithTextures(benchmark::State& state) {
  static TexturedGame game(1, 4, 224, 4, 2048);
  RunTextured(state, game, 1);
}
BENCHMARK(BM_ExportLargeActorWithTextures)->Unit(benchmark::kMillisecond)->UseRealTime();

// A batch of 1,000 small actors sharing 50 textures of 512 x 512, on two jobs: each texture is
// decoded once, the other actors copy its file.
void BM_BatchWithSharedTextures(benchmark::State& state) {
  static TexturedGame game(1000, 1, 8, 50, 512);
  RunTextured(state, game, 2);
}
BENCHMARK(BM_BatchWithSharedTextures)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
