// Writes the sample game below a folder, for trying the program on something whole without an
// installed game; with --stress, the benchmarks' stress game instead, for timing whole processes.
#include <cstdio>
#include <cstring>
#include <string>

#include "game_writers/sample_game.h"
#include "game_writers/stress_game.h"

int main(int argc, char** argv) {
  const bool stress = argc == 3 && std::strcmp(argv[1], "--stress") == 0;
  if (argc != 2 && !stress) {
    std::fprintf(stderr, "usage: make-sample-game [--stress] DIR\n");
    return 1;
  }
  const std::string dir = argv[argc - 1];
  std::string error;
  const bool built = stress ? gamewriters::BuildStressGame(dir, {}, &error) : gamewriters::BuildSampleGame(dir, &error);
  if (!built) {
    std::fprintf(stderr, "make-sample-game: %s\n", error.c_str());
    return 1;
  }
  const gamewriters::SampleGamePaths paths = gamewriters::SampleGameLayout(dir);
  std::printf("game:   %s\n", paths.game.c_str());
  std::printf("digest: %s\n", paths.digest.c_str());
  std::printf("Run the program with XDG_DATA_HOME=%s to find it as \"Aldermoor\".\n", paths.userData.c_str());
  return 0;
}
