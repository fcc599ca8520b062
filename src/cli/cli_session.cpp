#include "cli/cli_session.h"

#include <strings.h>
#include <cstdio>

#include "app/game_selection.h"
#include "app/worker.h"
#include "assets/normalize_path.h"

CliSession::CliSession() { window.EchoLog(stderr); }

CliSession::~CliSession() { WaitForWorker(app); }

void CliSession::Wait() { WaitForWorker(app); }

bool CliSession::Open(const CliOptions& options) {
  i32 row = -1;
  for (u32 i = 0; i < kGameCount; ++i) {
    if (!options.game.empty() && strcasecmp(options.game.c_str(), kGameNames[i]) == 0) row = i32(i);
  }
  if (!options.game.empty() && row < 0 && options.gameDir.empty()) {
    std::fprintf(stderr, "tarnwick-cli: no known game is called \"%s\"\n", options.game.c_str());
    return false;
  }
  // An installation given by hand opens as "Open folder..." opens it, in place of discovery.
  GameSearch search = UserGameSearch(options.dataDir.empty() ? nullptr : options.dataDir.c_str(), options.prefixes);
  if (!options.gameDir.empty()) search.gameDir = options.gameDir.c_str();
  InitMainDialog(app, window, search);
  Wait();
  if (!app.window || window.GetCount(kGameCombo) == 0) {
    // A folder that holds no game has said so in the log.
    if (options.gameDir.empty()) std::fprintf(stderr, "tarnwick-cli: no installed game was found\n");
    return false;
  }
  if (options.gameDir.empty()) {
    if (row >= 0 && row != app.currentGame) {
      const i32 items = window.GetCount(kGameCombo);
      i32 item = 0;
      while (item < items && window.GetItemData(kGameCombo, item) != row) ++item;
      if (item == items) {
        std::fprintf(stderr, "tarnwick-cli: %s is not installed\n", kGameNames[row]);
        return false;
      }
      window.SetCurSel(kGameCombo, item);
      OnGameButton(app);
    }
  }
  Wait();
  if (!app.ready) {
    std::fprintf(stderr, "tarnwick-cli: the game could not be loaded\n");
    return false;
  }
  return true;
}

std::vector<ListedEntry> SelectEntries(const std::vector<ListedEntry>& entries,
                                       const std::vector<std::string>& patterns, const char* noun) {
  std::vector<std::string> unmatched;
  std::vector<ListedEntry> selected = MatchingEntries(entries, patterns, unmatched);
  for (const std::string& pattern : unmatched) {
    std::fprintf(stderr, "tarnwick-cli: no %s matches \"%s\"\n", noun, pattern.c_str());
  }
  return selected;
}
