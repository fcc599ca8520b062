// tarnwick: the desktop program.
#include <QApplication>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/game_search.h"
#include "platform/folders.h"
#include "ui/main_window.h"
#include "ui/render_control.h"

namespace {

void PrintUsage(std::FILE* stream) {
  std::fputs(
      "Usage: tarnwick [--data-dir DIR] [--prefix DIR]... [--game-dir DIR]\n"
      "\n"
      "Options:\n"
      "  --data-dir DIR  the per-user data folder that holds the games' digest files\n"
      "                  (default: $XDG_DATA_HOME, else ~/.local/share)\n"
      "  --prefix DIR    a Wine prefix to look in for digests first (again for more)\n"
      "  --game-dir DIR  an installation folder to open, without looking for digests\n"
      "  --version       the version\n"
      "  --help          this text\n",
      stream);
}

}  // namespace

int main(int argc, char** argv) {
  const char* dataDir = nullptr;
  const char* gameDir = nullptr;
  std::vector<std::string> prefixes;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--data-dir") == 0 && i + 1 < argc) {
      dataDir = argv[++i];
    } else if (std::strcmp(argv[i], "--prefix") == 0 && i + 1 < argc) {
      if (!IsFolder(argv[i + 1])) {
        std::fprintf(stderr, "tarnwick: --prefix needs a value: an existing folder\n");
        return 2;
      }
      prefixes.emplace_back(argv[++i]);
    } else if (std::strcmp(argv[i], "--game-dir") == 0 && i + 1 < argc) {
      gameDir = argv[++i];
    } else if (std::strcmp(argv[i], "--version") == 0) {
      std::printf("tarnwick %s\n", TARNWICK_VERSION);
      return 0;
    } else if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
      PrintUsage(stdout);
      return 0;
    } else if (argv[i][0] == '-') {
      PrintUsage(stderr);
      return 2;
    }
  }
  RenderControl::UseSurfaceFormat();
  QApplication application(argc, argv);

  AppState app;
  MainWindow window(app);
  window.show();
  GameSearch search = UserGameSearch(dataDir, prefixes);
  search.gameDir = gameDir;
  window.Start(search);
  return application.exec();
}
