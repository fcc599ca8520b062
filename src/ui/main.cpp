// tarnwick: the desktop program.
#include <QApplication>
#include <cstdio>
#include <cstring>

#include "app/app_state.h"
#include "ui/main_window.h"
#include "ui/render_control.h"

namespace {

void PrintUsage(std::FILE* stream) {
  std::fputs(
      "usage: tarnwick [--data-dir DIR]\n"
      "  --data-dir DIR  the per-user data folder that holds the games' digest files\n"
      "                  (default: $XDG_DATA_HOME, else ~/.local/share)\n",
      stream);
}

}  // namespace

int main(int argc, char** argv) {
  const char* dataDir = nullptr;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--data-dir") == 0 && i + 1 < argc) {
      dataDir = argv[++i];
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
  window.Start(dataDir);
  return application.exec();
}
