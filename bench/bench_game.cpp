#include "bench_game.h"

#include <cstdio>
#include <cstdlib>

#include "support/temp_dir.h"

namespace {

struct BenchGame {
  testsupport::TempDir dir;
  gamewriters::StressGameDesc desc;
  BenchGame() {
    std::string error;
    if (!gamewriters::BuildStressGame(dir.Path(), desc, &error)) {
      std::fprintf(stderr, "bench game: %s\n", error.c_str());
      std::abort();
    }
  }
};

BenchGame& Game() {
  static BenchGame game;
  return game;
}

}  // namespace

const gamewriters::StressGameDesc& BenchGameDesc() { return Game().desc; }
std::string BenchGameData() { return Game().dir.Join("data"); }
std::string BenchGameFolder() { return Game().dir.Join("game"); }
