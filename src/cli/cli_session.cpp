#include "cli/cli_session.h"

#include <cstdio>
#include <strings.h>

#include "app/game_selection.h"
#include "app/worker.h"
#include "assets/normalize_path.h"

CliSession::CliSession() { window.EchoLog(stderr); }

CliSession::~CliSession() { WaitForWorker(app); }

void CliSession::Wait() { WaitForWorker(app); }

bool CliSession::Open(const CliOptions& options, bool load) {
  i32 row = -1;
  for (u32 i = 0; i < kGameCount; ++i) {
    if (!options.game.empty() && strcasecmp(options.game.c_str(), kGameNames[i]) == 0) row = i32(i);
  }
  if (!options.game.empty() && row < 0) {
    std::fprintf(stderr, "tarnwick-cli: no known game is called \"%s\"\n", options.game.c_str());
    return false;
  }
  if (!options.gameDir.empty()) {
    // An installation given by hand stands in for discovery.
    if (row < 0) row = 0;
    app.window = &window;
    NormalizePath(options.gameDir.c_str(), app.games[row].folder);
    if (load) SelectGame(app, u32(row));
  } else {
    InitMainDialog(app, window, UserGameSearch(options.dataDir.empty() ? nullptr : options.dataDir.c_str(), options.prefixes));
    Wait();
    if (!app.window || window.GetCount(kGameCombo) == 0) {
      std::fprintf(stderr, "tarnwick-cli: no installed game was found\n");
      return false;
    }
    if (row >= 0 && row != app.currentGame) {
      const i32 items = window.GetCount(kGameCombo);
      i32 item = 0;
      while (item < items && window.GetItemData(kGameCombo, item) != row) ++item;
      if (item == items) {
        std::fprintf(stderr, "tarnwick-cli: %s is not installed\n", kGameNames[row]);
        return false;
      }
      window.SetCurSel(kGameCombo, item);
      if (load) OnGameButton(app);
    }
  }
  Wait();
  if (load && !app.ready) {
    std::fprintf(stderr, "tarnwick-cli: the game could not be loaded\n");
    return false;
  }
  return true;
}
