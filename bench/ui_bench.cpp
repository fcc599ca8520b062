// The desktop program's speed on a display (run under xvfb-run): listing a large game, showing a
// large model, a frame of it with and without the views for checking it, and what an idle window
// costs.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QListView>
#include <QTimer>
#include <cstdio>
#include <functional>
#include <string>

#include "app/app_state.h"
#include "game_writers/pack_writer.h"
#include "game_writers/rig_writer.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/xml_writer.h"
#include "support/temp_dir.h"
#include "ui/main_window.h"
#include "ui/render_control.h"

namespace {

constexpr u32 kActors = 100000;
constexpr u32 kGridSize = 448;  // 200,704 vertices

// 100,000 actor definitions and one whose model has 200,704 vertices and a rig, with the digest.
struct ListedGame {
  testsupport::TempDir dir;
  ListedGame() {
    const gamewriters::SkinnedActor big = gamewriters::BuildSkinnedActor(
        {.meshCount = 1, .gridSize = kGridSize, .boneCount = 4, .bounds = {0, 0, -0.1f, 1, 1, 0.1f}});
    gamewriters::PackLayout pack;
    auto add = [&](gamewriters::PackFileEntry entry) {
      if (pack.chunks.empty() || pack.chunks.back().entries.size() == 1000) pack.chunks.emplace_back();
      pack.chunks.back().entries.push_back(std::move(entry));
    };
    add({"materials_3.xml", big.catalogue});
    add({"models\\big.dmod", big.model});
    add({"big.mrn", gamewriters::BuildRigNetwork(gamewriters::NetworkWithSets({{1, big.rig}}, {{"Idle", 1}}))});
    add({"actors\\big.adr", gamewriters::BuildActor({.fileName = "models\\big.dmod",
                                                     .hasAnimationNetwork = true,
                                                     .networkFileName = "big.mrn",
                                                     .animSetName = "Idle"})});
    for (u32 i = 0; i < kActors; ++i) {
      char name[64];
      std::snprintf(name, sizeof(name), "actors\\group_%u\\actor_%06u.adr", (i * 7919) % 101, i);
      add({name, "<ActorRuntime/>"});
    }
    gamewriters::WriteFileBytes(dir.Join("game/Resources/Assets/assets_000.pack"), gamewriters::BuildPack(pack));
    gamewriters::WriteFileBytes(dir.Join("data/Marrowgate Studio/Digests/Aldermoor.loc"), dir.Join("game"));
  }
};

ListedGame& Game() {
  static ListedGame game;
  return game;
}

void PumpUntil(const std::function<bool()>& done) {
  while (!done()) QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
}

// A shown window with the game loaded.
struct LoadedWindow {
  AppState app;
  MainWindow window{app};
  LoadedWindow() {
    window.show();
    window.Start(Game().dir.Join("data").c_str());
    PumpUntil([&] { return app.ready && !app.workerBusy; });
  }
};

// From start-up to the last of 100,001 actors in the file list.
void BM_DesktopListActors(benchmark::State& state) {
  (void)Game();
  for (auto _ : state) {
    LoadedWindow loaded;
    if (loaded.window.Window().GetCount(kFileList) != i32(kActors + 1)) state.SkipWithError("incomplete");
  }
}
BENCHMARK(BM_DesktopListActors)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3);

// The views for checking a model, by the benchmarks' argument: 0 none, 1 skeleton and wireframe.
PreviewViews ViewsOf(const benchmark::State& state) {
  const bool on = state.range(0) != 0;
  return {.skeleton = on, .wireframe = on};
}

// A click on the 200,704-vertex actor until its first frame is drawn.
void BM_DesktopClickToFirstFrame(benchmark::State& state) {
  LoadedWindow loaded;
  QListView& view = loaded.window.FileView();
  const QModelIndex big = view.model()->index(0, 0);  // "actors\big.adr" sorts first
  for (auto _ : state) {
    view.selectionModel()->clearSelection();
    view.selectionModel()->setCurrentIndex(big, QItemSelectionModel::ClearAndSelect);
    const QImage frame = loaded.window.Render().RenderFrame();
    if (frame.isNull() || loaded.window.Render().Preview().DrawCount() != 1) state.SkipWithError("nothing drawn");
  }
}
BENCHMARK(BM_DesktopClickToFirstFrame)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(10);

double CpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// One frame of the 200,704-vertex actor, read back as the tests read it.
void BM_DesktopFrame(benchmark::State& state) {
  LoadedWindow loaded;
  QListView& view = loaded.window.FileView();
  view.selectionModel()->setCurrentIndex(view.model()->index(0, 0), QItemSelectionModel::ClearAndSelect);
  loaded.window.Render().Preview().SetViews(ViewsOf(state));
  if (state.range(0) && !loaded.window.Render().Preview().Skeleton().vertexArray) state.SkipWithError("no skeleton");
  for (auto _ : state) {
    if (loaded.window.Render().RenderFrame().isNull()) state.SkipWithError("nothing drawn");
  }
}
BENCHMARK(BM_DesktopFrame)
    ->ArgName("views")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(20);

// Two seconds of an idle window with a model shown: the share of one core it takes.
void BM_DesktopIdle(benchmark::State& state) {
  LoadedWindow loaded;
  QListView& view = loaded.window.FileView();
  view.selectionModel()->setCurrentIndex(view.model()->index(0, 0), QItemSelectionModel::ClearAndSelect);
  loaded.window.Render().Preview().SetViews(ViewsOf(state));
  double share = 0;
  for (auto _ : state) {
    QElapsedTimer wall;
    const double cpuBefore = CpuSeconds();
    wall.start();
    QEventLoop loop;
    QTimer::singleShot(2000, &loop, &QEventLoop::quit);
    loop.exec();
    share = (CpuSeconds() - cpuBefore) / (double(wall.elapsed()) / 1000.0);
  }
  state.counters["core_percent"] = share * 100.0;
}
BENCHMARK(BM_DesktopIdle)
    ->ArgName("views")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

}  // namespace

int main(int argc, char** argv) {
  RenderControl::UseSurfaceFormat();
  QApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
