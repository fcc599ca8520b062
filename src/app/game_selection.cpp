#include "app/game_selection.h"

#include "app/file_list.h"
#include "app/log.h"
#include "app/open_game_folder.h"
#include "app/read_text_file.h"
#include "app/worker.h"
#include "assets/normalize_path.h"
#include "platform/path_case.h"
#include "platform/user_folder.h"
#include "platform/windows_path.h"
#include "preview/render_window.h"

namespace {

constexpr const char* kMakers[] = {"Marrowgate Studio", "Quillon Interactive"};  // the newer one first

// The digest of `game` under a maker's folder: its text is the installation folder.
bool ReadDigest(const CStringBufferA& makerFolder, const char* game, CStringBufferA& text) {
  TStringBufferA<512> path;
  return path.Format("%s\\Digests\\%s.loc", makerFolder.Text(), game) > 0 && ReadTextFile(path.Text(), text);
}

// The digest of `game` in a Wine prefix's LocalLow folder, whose folders the game named as it
// pleased: Windows doesn't mind their case, so neither do we. The newer maker wins, as at home.
bool ReadPrefixDigest(const DigestPlace& place, const char* game, CStringBufferA& text) {
  TStringBufferA<512> path;
  TStringBufferA<512> found;
  for (const char* maker : kMakers) {
    if (path.Format("%s\\%s\\Digests\\%s.loc", place.folder.c_str(), maker, game) > 0 &&
        MatchPathCase(path.Text(), found) && ReadTextFile(found.Text(), text)) {
      return true;
    }
  }
  return false;
}

// Says where discovery looked and how else a game can be found.
void LogNothingFound(AppState& app, const GameSearch& search, const std::vector<std::string>& prefixes) {
  TStringBufferA<512> shown;
  Log(app, "No installed game was found.");
  DisplayPath(app.userFolder.Text(), shown);
  Log(app, "Looked for digest files below %s", shown.Text());
  if (search.winePrefixes) {
    for (const std::string& prefix : prefixes) Log(app, "Looked in the Wine prefix %s", prefix.c_str());
    if (prefixes.empty()) {
      Log(app, "Found no Wine prefix at $WINEPREFIX, ~/.wine or in a Steam library");
    }
  }
  Log(app,
      "To open a game, choose its installation folder with \"Open folder...\", or start with "
      "--game-dir DIR, or with --prefix DIR for a Wine prefix elsewhere.");
}

void Discover(AppState& app, const GameSearch& search) {
  std::vector<std::string> prefixes;
  const std::vector<DigestPlace> places = PrefixDigestPlaces(search, prefixes);
  i32 first = -1;
  TStringBufferA<512> text;
  TStringBufferA<512> shown;
  TStringBufferA<512> windowsPath;
  for (u32 row = 0; row < kGameCount; ++row) {
    GameSlot& game = app.games[row];
    // The newer maker's digest wins where both exist; the native folder before any prefix.
    const DigestPlace* place = nullptr;
    if (!ReadDigest(app.newerMakerFolder, game.name, text) && !ReadDigest(app.olderMakerFolder, game.name, text)) {
      for (const DigestPlace& candidate : places) {
        if (ReadPrefixDigest(candidate, game.name, text)) {
          place = &candidate;
          break;
        }
      }
      if (!place) continue;
    }
    if (place) {
      NormalizePath(text.Text(), windowsPath);
      if (!MapWindowsPath(place->prefix.c_str(), windowsPath.Text(), game.folder)) {
        Log(app, "Skipped game \"%s\": its folder %s can't be reached through the Wine prefix %s", game.name,
            windowsPath.Text(), place->prefix.c_str());
        continue;
      }
      game.windowsCase = true;
      DisplayPath(game.folder.Text(), shown);
      Log(app, "Found game \"%s\" at %s (in the Wine prefix %s)", game.name, shown.Text(), place->prefix.c_str());
    } else {
      NormalizePath(text.Text(), game.folder);
      DisplayPath(game.folder.Text(), shown);
      Log(app, "Found game \"%s\" at %s", game.name, shown.Text());
    }
    const i32 item = app.window->AddString(kGameCombo, game.name);
    if (item == kListErrSpace) return;  // a full selector ends discovery, and no game is opened
    app.window->SetItemData(kGameCombo, item, std::intptr_t(row));
    if (first < 0) first = i32(row);
  }
  if (first < 0) {
    LogNothingFound(app, search, prefixes);
    return;
  }
  SelectGame(app, u32(first));
  app.window->SetCurSel(kGameCombo, 0);
}

}  // namespace

void InitMainDialog(AppState& app, IWindowSystem& window, const char* userFolder) {
  GameSearch search;
  search.userFolder = userFolder;
  InitMainDialog(app, window, search);
}

void InitMainDialog(AppState& app, IWindowSystem& window, const GameSearch& search) {
  if (search.userFolder) {
    (void)app.lineBuffer.Format("%s", search.userFolder);
  } else if (!GetUserDataFolder(app.lineBuffer)) {
    return;  // no per-user folder: the window stays up without function
  }
  NormalizePath(app.lineBuffer.Text(), app.userFolder);
  TStringBufferA<512> maker;
  (void)maker.Format("%s\\%s\\", app.lineBuffer.Text(), kMakers[1]);
  NormalizePath(maker.Text(), app.olderMakerFolder);
  (void)maker.Format("%s\\%s\\", app.lineBuffer.Text(), kMakers[0]);
  NormalizePath(maker.Text(), app.newerMakerFolder);
  app.window = &window;
  app.renderWindow = window.RenderWindow();
  if (app.renderWindow) (void)app.renderWindow->Init(&app.packIndex);
  if (search.gameDir) {
    OpenGameFolder(app, search.gameDir);
    return;
  }
  Discover(app, search);
}

void SelectGame(AppState& app, u32 row) {
  if (row >= GameRowCount(app)) return;
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
  if (!app.packIndex.Open(folder.Text(), game.windowsCase)) {
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
  if (row < 0 || row >= std::intptr_t(GameRowCount(app)) || row == app.currentGame) return;
  SelectGame(app, u32(row));
}
