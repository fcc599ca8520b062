#include <cstdio>

#include "assets/normalize_path.h"
#include "cli/cli_session.h"

// The games discovery found, one per line: name, a tab, the installation folder.
int RunGames(const CliOptions& options) {
  CliSession session;
  if (!session.Open(options)) return kExitNothingStarted;
  HeadlessWindowSystem& window = session.Window();
  for (i32 item = 0; item < window.GetCount(kGameCombo); ++item) {
    const std::intptr_t row = window.GetItemData(kGameCombo, item);
    if (row < 0 || row >= std::intptr_t(GameRowCount(session.App()))) continue;
    const GameSlot& game = session.App().games[row];
    TStringBufferA<512> shown;
    DisplayPath(game.folder.Text(), shown);
    std::printf("%s\t%s\n", game.name, shown.Text());
  }
  return kExitDone;
}
