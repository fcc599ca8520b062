#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

#include "assets/pack_index.h"
#include "support/pack_writer.h"
#include "support/temp_dir.h"

namespace {

constexpr int kEntries = 200000;
constexpr int kPacks = 4;

// A game of 200,000 entries over four packs, written once; names look like the game's own.
struct Game {
  testsupport::TempDir dir;
  std::vector<std::string> names;

  Game() {
    std::vector<testsupport::PackLayout> packs(kPacks);
    for (int i = 0; i < kEntries; ++i) {
      char name[96];
      std::snprintf(name, sizeof(name), "actors\\group_%03d\\variant_%06d.%s", i % 500, i, i % 3 ? "dds" : "adr");
      names.emplace_back(name);
      testsupport::PackLayout& pack = packs[i % kPacks];
      // Chunks of 1,000 entries, as a directory written in several passes would be.
      if (pack.chunks.empty() || pack.chunks.back().entries.size() == 1000) pack.chunks.emplace_back();
      pack.chunks.back().entries.push_back({.name = name, .data = "x"});
    }
    testsupport::WritePacks(dir.Path(), packs);
  }
};

Game& SharedGame() {
  static Game game;
  return game;
}

void BM_OpenGame(benchmark::State& state) {
  Game& game = SharedGame();
  for (auto _ : state) {
    PackIndex index;
    if (!index.Open(game.dir.Path().c_str()) || index.EntryCount() != kEntries) state.SkipWithError("open failed");
    benchmark::DoNotOptimize(index.EntryCount());
  }
  state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(BM_OpenGame)->Unit(benchmark::kMillisecond);

void BM_FindEveryName(benchmark::State& state) {
  Game& game = SharedGame();
  PackIndex index;
  if (!index.Open(game.dir.Path().c_str())) state.SkipWithError("open failed");
  for (auto _ : state) {
    u32 found = 0;
    for (const std::string& name : game.names) found += index.Find(name.c_str()) != nullptr;
    if (found != kEntries) state.SkipWithError("lookup missed");
  }
  state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(BM_FindEveryName)->Unit(benchmark::kMillisecond);

}  // namespace
