#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include "app/batch_convert.h"
#include "app/game_selection.h"
#include "app/output_names.h"
#include "app/worker.h"
#include "bench_game.h"
#include "platform/headless_window_system.h"
#include "support/temp_dir.h"

namespace {

// Every actor of the stress game (20,000 small ones and 21 of 200,704 vertices) converted below a
// fresh folder with `range(0)` jobs, as `tarnwick-cli convert '*' --out-dir` does after the game
// is open. One run each: a run takes seconds.
void BM_BatchConvertGame(benchmark::State& state) {
  HeadlessWindowSystem window;
  AppState app;
  InitMainDialog(app, window, BenchGameData().c_str());
  WaitForWorker(app);
  std::vector<BatchActor> actors;
  std::vector<std::string> names;
  for (const ListEntry& item : window.Snapshot(kFileList).items) {
    actors.push_back({reinterpret_cast<const PackEntry*>(item.data), item.text, {}});
    names.push_back(item.text);
  }
  const std::vector<std::string> outputs = OutputNames(names, ".fbx");
  for (size_t i = 0; i < actors.size(); ++i) actors[i].output = outputs[i];

  testsupport::TempDir out;
  std::vector<BatchActorResult> results;
  const std::atomic<bool> stop{false};
  for (auto _ : state) {
    BatchSettings settings;
    settings.outDir = out.Join(std::to_string(state.range(0)));
    settings.jobs = u32(state.range(0));
    settings.convert.batch = true;
    const BatchSummary summary =
        RunBatch(GameTables{app.packIndex, app.materials, app.rigs}, actors, settings, nullptr, stop, results);
    if (summary.written != actors.size()) state.SkipWithError("not every actor was written");
  }
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  state.counters["actors"] = double(actors.size());
  state.counters["actors_per_s"] = benchmark::Counter(double(actors.size()), benchmark::Counter::kIsRate);
  state.counters["peak_rss_MB"] = double(usage.ru_maxrss) / 1024.0;
}
BENCHMARK(BM_BatchConvertGame)->Arg(1)->Arg(2)->Iterations(1)->Unit(benchmark::kSecond)->UseRealTime();

}  // namespace
