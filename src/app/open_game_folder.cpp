#include "app/open_game_folder.h"

#include <cstring>

#include "app/game_selection.h"
#include "app/log.h"
#include "app/worker.h"
#include "assets/normalize_path.h"
#include "platform/file_handle.h"

namespace {

// The item of the game list that carries `row`, or kListError.
i32 ItemOfRow(AppState& app, u32 row) {
  const i32 count = app.window->GetCount(kGameCombo);
  for (i32 item = 0; item < count; ++item) {
    if (app.window->GetItemData(kGameCombo, item) == std::intptr_t(row)) return item;
  }
  return kListError;
}

// The row of a listed game whose installation is `folder`, or GameRowCount when there is none.
u32 RowOfFolder(AppState& app, const char* folder) {
  for (u32 row = 0; row < GameRowCount(app); ++row) {
    if (std::strcmp(app.games[row].folder.Text(), folder) == 0 && ItemOfRow(app, row) != kListError) return row;
  }
  return GameRowCount(app);
}

}  // namespace

void OpenGameFolder(AppState& app, const char* folder) {
  if (!Idle(app) || !folder) return;
  TStringBufferA<512> normalized;
  TStringBufferA<512> shown;
  TStringBufferA<512> pack;
  NormalizePath(folder, normalized);
  DisplayPath(normalized.Text(), shown);
  FileHandle file;
  if (pack.Format("%s\\Resources\\Assets\\assets_000.pack", normalized.Text()) <= 0 || !file.Open(pack.Text())) {
    Log(app, "No game in %s: it holds no Resources/Assets/assets_000.pack", shown.Text());
    return;
  }
  u32 row = RowOfFolder(app, normalized.Text());
  if (row == GameRowCount(app)) {
    if (app.openedFolders == kOpenedFolderCount) {
      Log(app, "No room to list %s: %u folders are open already", shown.Text(), kOpenedFolderCount);
      return;
    }
    GameSlot& game = app.games[row];
    const char* base = std::strrchr(normalized.Text(), '\\');
    game.label.Assign(base && base[1] ? base + 1 : shown.Text());
    game.name = game.label.Text();
    game.folder.Assign(normalized.Text());
    game.windowsCase = false;
    Log(app, "Found game \"%s\" at %s", game.name, shown.Text());
    const i32 item = app.window->AddString(kGameCombo, game.name);
    if (item == kListErrSpace) return;
    app.window->SetItemData(kGameCombo, item, std::intptr_t(row));
    ++app.openedFolders;
  }
  app.window->SetCurSel(kGameCombo, ItemOfRow(app, row));
  if (i32(row) != app.currentGame) SelectGame(app, row);
}

void OnOpenFolderButton(AppState& app, IFolderDialog& dialog) {
  if (!Idle(app)) return;
  TStringBufferA<512> folder;
  if (!dialog.AskFolder(folder)) return;
  OpenGameFolder(app, folder.Text());
}
