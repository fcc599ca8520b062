// Writes the sample game below a folder, for trying the program on something whole without an
// installed game.
#include <cstdio>
#include <string>

#include "support/sample_game.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make-sample-game DIR\n");
    return 1;
  }
  std::string error;
  if (!testsupport::BuildSampleGame(argv[1], &error)) {
    std::fprintf(stderr, "make-sample-game: %s\n", error.c_str());
    return 1;
  }
  const testsupport::SampleGamePaths paths = testsupport::SampleGameLayout(argv[1]);
  std::printf("game:   %s\n", paths.game.c_str());
  std::printf("digest: %s\n", paths.digest.c_str());
  std::printf("Run the program with XDG_DATA_HOME=%s to find it as \"Aldermoor\".\n", paths.userData.c_str());
  return 0;
}
