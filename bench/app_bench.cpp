#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "app/file_list.h"
#include "app/game_selection.h"
#include "app/worker.h"
#include "bench_game.h"
#include "platform/headless_window_system.h"

namespace {

// Discovery, packs, catalogue and the load walk into the headless list, to the last item.
void BM_LoadGame(benchmark::State& state) {
  const std::string data = BenchGameData();
  const gamewriters::StressGameDesc& desc = BenchGameDesc();
  for (auto _ : state) {
    HeadlessWindowSystem window;
    AppState app;
    InitMainDialog(app, window, data.c_str());
    WaitForWorker(app);
    if (window.GetCount(kFileList) != i32(desc.actors + desc.largeActors) || app.rigs.Count() != desc.rigs + 1) {
      state.SkipWithError("incomplete");
    }
  }
}
BENCHMARK(BM_LoadGame)->Unit(benchmark::kMillisecond)->UseRealTime();

// A search over the 20,000 actors, from the request to the last item listed.
void BM_SearchActors(benchmark::State& state) {
  HeadlessWindowSystem window;
  AppState app;
  InitMainDialog(app, window, BenchGameData().c_str());
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
