#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "app/file_list.h"
#include "app/game_selection.h"
#include "app/worker.h"
#include "platform/headless_window_system.h"
#include "support/pack_writer.h"
#include "support/skinned_actor.h"
#include "support/temp_dir.h"

namespace {

constexpr u32 kPacks = 4;
constexpr u32 kEntries = 200000;
constexpr u32 kActors = 20000;
constexpr u32 kRigs = 2000;

// A game of 200,000 entries over four packs: 20,000 actor definitions, 2,000 rig networks, the
// catalogue, and textures and models for the rest, with its digest.
struct BigGame {
  testsupport::TempDir dir;
  BigGame() {
    const testsupport::SkinnedActor actor = testsupport::BuildSkinnedActor({.boneCount = 3});
    const std::string rig = testsupport::BuildRigNetwork(testsupport::NetworkWithSets({{7, actor.rig}}, {{"Idle", 7}}));
    std::vector<testsupport::PackLayout> packs(kPacks);
    for (u32 i = 0; i < kEntries; ++i) {
      testsupport::PackFileEntry entry;
      char name[64];
      if (i == 5) {
        entry = {"materials_3.xml", actor.catalogue};
      } else if (i % 10 == 0) {
        std::snprintf(name, sizeof(name), "actors\\group_%u\\actor_%06u.adr", i % 97, i);
        entry = {name, "<ActorRuntime/>"};
      } else if (i % 100 == 1) {
        std::snprintf(name, sizeof(name), "rig_%06u.mrn", i);
        entry = {name, rig};
      } else {
        std::snprintf(name, sizeof(name), "textures\\set_%u\\texture_%06u.dds", i % 131, i);
        entry = {name, "DDS "};
      }
      auto& chunks = packs[i % kPacks].chunks;
      if (chunks.empty() || chunks.back().entries.size() == 1000) chunks.emplace_back();
      chunks.back().entries.push_back(entry);
    }
    for (u32 p = 0; p < kPacks; ++p) {
      char file[64];
      std::snprintf(file, sizeof(file), "game/Resources/Assets/assets_%03u.pack", p);
      testsupport::WriteFileBytes(dir.Join(file), testsupport::BuildPack(packs[p]));
    }
    testsupport::WriteFileBytes(dir.Join("data/Marrowgate Studio/Digests/Aldermoor.loc"), dir.Join("game"));
  }
};

BigGame& Game() {
  static BigGame game;
  return game;
}

// Discovery, packs, catalogue and the load walk into the headless list, to the last item.
void BM_LoadGame(benchmark::State& state) {
  const std::string data = Game().dir.Join("data");
  for (auto _ : state) {
    HeadlessWindowSystem window;
    AppState app;
    InitMainDialog(app, window, data.c_str());
    WaitForWorker(app);
    if (window.GetCount(kFileList) != i32(kActors) || app.rigs.Count() != kRigs) state.SkipWithError("incomplete");
  }
}
BENCHMARK(BM_LoadGame)->Unit(benchmark::kMillisecond)->UseRealTime();

// A search over the 20,000 actors, from the request to the last item listed.
void BM_SearchActors(benchmark::State& state) {
  HeadlessWindowSystem window;
  AppState app;
  InitMainDialog(app, window, Game().dir.Join("data").c_str());
  WaitForWorker(app);
  window.SetText(kSearchEdit, "group_1?");
  for (auto _ : state) {
    SearchRequest(app);
    WaitForWorker(app);
  }
  state.counters["found"] = window.GetCount(kFileList);
}
BENCHMARK(BM_SearchActors)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
