#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>
#include <vector>

#include "assets/pack_index.h"
#include "game_writers/pack_writer.h"
#include "support/temp_dir.h"

namespace {

constexpr int kPacks = 4;

// A game of `entries` files over four packs, written once; names look like the game's own.
struct Game {
  testsupport::TempDir dir;
  std::vector<std::string> names;

  explicit Game(int entries) {
    std::vector<gamewriters::PackLayout> packs(kPacks);
    for (int i = 0; i < entries; ++i) {
      char name[96];
      std::snprintf(name, sizeof(name), "actors\\group_%03d\\variant_%06d.%s", i % 500, i, i % 3 ? "dds" : "adr");
      names.emplace_back(name);
      gamewriters::PackLayout& pack = packs[i % kPacks];
      // Chunks of 1,000 entries, as a directory written in several passes would be.
      if (pack.chunks.empty() || pack.chunks.back().entries.size() == 1000) pack.chunks.emplace_back();
      pack.chunks.back().entries.push_back({.name = name, .data = "x"});
    }
    gamewriters::WritePacks(dir.Path(), packs);
  }
};

Game& SharedGame(int entries) {
  static Game large(200000);
  static Game small(20000);
  return entries == 200000 ? large : small;
}

void BM_OpenGame(benchmark::State& state) {
  const int entries = static_cast<int>(state.range(0));
  Game& game = SharedGame(entries);
  for (auto _ : state) {
    PackIndex index;
    if (!index.Open(game.dir.Path().c_str()) || index.EntryCount() != u32(entries)) state.SkipWithError("open failed");
    benchmark::DoNotOptimize(index.EntryCount());
  }
  state.SetItemsProcessed(state.iterations() * entries);
}
BENCHMARK(BM_OpenGame)->Arg(200000)->Unit(benchmark::kMillisecond);

// The 20,000-entry game fits in cache and shows the cost of the lookup itself; the 200,000-entry
// one adds a random read of a 2 MiB bucket array per lookup.
void BM_FindEveryName(benchmark::State& state) {
  const int entries = static_cast<int>(state.range(0));
  Game& game = SharedGame(entries);
  PackIndex index;
  if (!index.Open(game.dir.Path().c_str())) state.SkipWithError("open failed");
  for (auto _ : state) {
    u32 found = 0;
    for (const std::string& name : game.names) found += index.Find(name.c_str()) != nullptr;
    if (found != u32(entries)) state.SkipWithError("lookup missed");
  }
  state.SetItemsProcessed(state.iterations() * entries);
}
BENCHMARK(BM_FindEveryName)->Arg(200000)->Arg(20000)->Unit(benchmark::kMillisecond);

}  // namespace
