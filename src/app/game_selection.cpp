#include "app/game_selection.h"

#include "app/file_list.h"
#include "app/log.h"
#include "app/read_text_file.h"
#include "app/worker.h"
#include "assets/normalize_path.h"
#include "platform/user_folder.h"
#include "preview/render_window.h"

namespace {

// The digest of `game` under a maker's folder: its text is the installation folder.
bool ReadDigest(const CStringBufferA& makerFolder, const char* game, CStringBufferA& text) {
  TStringBufferA<512> path;
  return path.Format("%s\\Digests\\%s.loc", makerFolder.Text(), game) > 0 && ReadTextFile(path.Text(), text);
}

void Discover(AppState& app) {
  i32 first = -1;
  TStringBufferA<512> text;
  TStringBufferA<512> shown;
  for (u32 row = 0; row < kGameCount; ++row) {
    GameSlot& game = app.games[row];
    // The newer maker's digest wins where both exist.
    if (!ReadDigest(app.newerMakerFolder, game.name, text) && !ReadDigest(app.olderMakerFolder, game.name, text)) {
      continue;
    }
    NormalizePath(text.Text(), game.folder);
    DisplayPath(game.folder.Text(), shown);
    Log(app, "Found game \"%s\" at %s", game.name, shown.Text());
    const i32 item = app.window->AddString(kGameCombo, game.name);
    if (item == kListErrSpace) return;  // a full selector ends discovery, and no game is opened
    app.window->SetItemData(kGameCombo, item, std::intptr_t(row));
    if (first < 0) first = i32(row);
  }
  if (first < 0) return;
  SelectGame(app, u32(first));
  app.window->SetCurSel(kGameCombo, 0);
}

}  // namespace

void InitMainDialog(AppState& app, IWindowSystem& window, const char* userFolder) {
  if (userFolder) {
    (void)app.lineBuffer.Format("%s", userFolder);
  } else if (!GetUserDataFolder(app.lineBuffer)) {
    return;  // no per-user folder: the window stays up without function
  }
  TStringBufferA<512> maker;
  (void)maker.Format("%s\\Quillon Interactive\\", app.lineBuffer.Text());
  NormalizePath(maker.Text(), app.olderMakerFolder);
  (void)maker.Format("%s\\Marrowgate Studio\\", app.lineBuffer.Text());
  NormalizePath(maker.Text(), app.newerMakerFolder);
  app.window = &window;
  app.renderWindow = window.RenderWindow();
  if (app.renderWindow) (void)app.renderWindow->Init(&app.packIndex);
  Discover(app);
}

void SelectGame(AppState& app, u32 row) {
  if (row >= kGameCount) return;
  // A worker may still run: the tables are its until it ends, so nothing is touched.
  if (!Idle(app)) return;
  app.materials.Clear();
  app.packIndex.Clear();
  app.rigs.Clear();
  app.ready = false;
  app.currentGame = -1;
  app.window->ResetContent(kFileList);
  StartWorker(app, WorkerKind::Load, row, nullptr);
}

void LoadGame(AppState& app, u32 row) {
  const GameSlot& game = app.games[row];
  Log(app, "Initializing game data for %s", game.name);
  TStringBufferA<512> folder;
  (void)folder.Format("%s\\Resources\\Assets", game.folder.Text());
  if (!app.packIndex.Open(folder.Text())) {
    Log(app, "Failed to load assets for %s", game.name);
    return;
  }
  Log(app, "Loaded assets for %s", game.name);
  CByteBuffer bytes;
  if (!app.packIndex.FetchByName("materials_3.xml", bytes)) {
    Log(app, "Failed to read materials_3.xml.");
    return;
  }
  if (!app.materials.Read(bytes)) {
    Log(app, "Failed to parse materials_3.xml.");
    return;
  }
  Log(app, "Loaded materials_3.xml.");
  app.ready = true;
  app.currentGame = i32(row);
  app.window->SetText(kSearchEdit, "");
  LoadWalk(app);
}

void OnGameButton(AppState& app) {
  if (!Idle(app)) return;
  const i32 item = app.window->GetCurSel(kGameCombo);
  if (item < 0) return;
  const std::intptr_t row = app.window->GetItemData(kGameCombo, item);
  if (row < 0 || row >= std::intptr_t(kGameCount) || row == app.currentGame) return;
  SelectGame(app, u32(row));
}
