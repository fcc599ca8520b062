#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "app/open_game_folder.h"
#include "app_fixture.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/xml_writer.h"
#include "support/wine_prefix.h"

namespace {

using apptest::App;
using Lines = std::vector<std::string>;

// A test's folder by the path that links resolve to, as the drives of a prefix give it.
struct Home {
  testsupport::TempDir temp;
  std::string base = std::filesystem::canonical(temp.Path()).string();

  std::string Join(const std::string& name) const { return base + "/" + name; }
  GameSearch Search() const {
    GameSearch search;
    search.userFolder = nullptr;
    search.winePrefixes = true;
    search.prefixes.home = Join("home");
    return search;
  }
};

// A game of one actor whose packs lie in `assets` below `folder`, named `pack` with the number.
void WriteGame(const std::string& folder, const std::string& assets = "Resources/Assets",
               const std::string& pack = "assets_%03u.pack") {
  const gamewriters::SkinnedActor hero = gamewriters::BuildSkinnedActor({.boneCount = 2});
  const std::vector<gamewriters::PackFileEntry> files = {
      {"materials_3.xml", hero.catalogue},
      {"models\\hero.dmod", hero.model},
      {"actors\\hero.adr", gamewriters::BuildActor({.fileName = "models\\hero.dmod"})}};
  char name[64];
  std::snprintf(name, sizeof(name), pack.c_str(), 0u);
  ASSERT_TRUE(gamewriters::WriteFileBytes(folder + "/" + assets + "/" + name,
                                          gamewriters::BuildPack({{gamewriters::PackChunk{files}}})));
}

std::string Windows(std::string path) {
  for (char& c : path) c = c == '/' ? '\\' : c;
  return path;
}

// Selects the game list's item `item` and loads it; the log lines of the load.
Lines Load(App& app, i32 item) {
  app.window.SetCurSel(kGameCombo, item);
  OnGameButton(app.state);
  WaitForWorker(app.state);
  return app.NewLog();
}

TEST(WineDiscovery, EachRowFromTheFirstPlaceThatHasItsDigest) {
  Home home;
  const std::string wine = home.Join("home/.wine");
  const std::string steam = home.Join("home/.local/share/Steam");
  const std::string library = home.Join("games/SteamLibrary");
  const std::string proton = library + "/steamapps/compatdata/4000/pfx";
  const std::string broken = home.Join("broken");
  const std::string noUsers = home.Join("no-users");
  ASSERT_TRUE(testsupport::MakeWinePrefix(wine, "alice"));
  ASSERT_TRUE(testsupport::MakeWinePrefix(proton, "steamuser"));
  ASSERT_TRUE(testsupport::MakeWinePrefix(noUsers, ""));
  ASSERT_TRUE(testsupport::MakeWinePrefix(broken, "bob"));
  std::filesystem::remove(broken + "/dosdevices/c:");
  std::filesystem::create_directory_symlink("../drive_gone", broken + "/dosdevices/c:");
  ASSERT_TRUE(gamewriters::WriteFileBytes(steam + "/steamapps/libraryfolders.vdf",
                                          testsupport::LibraryFoldersVdf({steam, library})));

  // Aldermoor: at home and in ~/.wine; home comes first.
  apptest::Installation native;
  native.Digest("Marrowgate Studio", "Aldermoor", native.dir.Join("native"));
  WriteGame(native.dir.Join("native"));
  ASSERT_TRUE(testsupport::WritePrefixDigest(wine, "alice", "Marrowgate Studio", "Aldermoor", "C:\\Nowhere"));
  // Aldermoor Test: the older maker in ~/.wine before the newer one in the Proton prefix.
  WriteGame(wine + "/drive_c/Program Files/Aldermoor Test");
  ASSERT_TRUE(testsupport::WritePrefixDigest(wine, "alice", "Quillon Interactive", "Aldermoor Test",
                                             "C:\\Program Files\\Aldermoor Test"));
  ASSERT_TRUE(testsupport::WritePrefixDigest(proton, "steamuser", "Marrowgate Studio", "Aldermoor Test", "C:\\No"));
  // Brackenfell Beta: a Proton prefix of the second library, with the game on Z:; the newer maker
  // wins in its own place.
  WriteGame(library + "/steamapps/common/Brackenfell Beta");
  ASSERT_TRUE(testsupport::WritePrefixDigest(proton, "steamuser", "Marrowgate Studio", "Brackenfell Beta",
                                             "Z:" + Windows(library) + "\\steamapps\\common\\Brackenfell Beta"));
  ASSERT_TRUE(
      testsupport::WritePrefixDigest(proton, "steamuser", "Quillon Interactive", "Brackenfell Beta", "C:\\Older"));
  // Cinderhollow Brackenfell: a second user of ~/.wine, every name in another case than on disk.
  WriteGame(wine + "/drive_c/Program Files/Cinderhollow", "resources/ASSETS", "Assets_%03u.PACK");
  ASSERT_TRUE(gamewriters::WriteFileBytes(
      wine + "/drive_c/users/zed/appdata/locallow/marrowgate studio/DIGESTS/Cinderhollow Brackenfell.loc",
      "c:/PROGRAM FILES/cinderhollow"));
  // Dunmarrow: behind a drive link that leads nowhere.
  ASSERT_TRUE(testsupport::WritePrefixDigest(broken, "bob", "Marrowgate Studio", "Dunmarrow", "C:\\Games\\Dunmarrow"));

  GameSearch search = home.Search();
  const std::string userFolder = native.UserFolder();
  search.userFolder = userFolder.c_str();
  search.prefixes.winePrefix = noUsers;
  search.prefixes.prefixes = {broken};
  App app;
  app.Start(search);
  EXPECT_EQ(
      app.NewLog(),
      (Lines{"Found game \"Aldermoor\" at " + native.dir.Join("native"),
             "Found game \"Aldermoor Test\" at " + wine + "/drive_c/Program Files/Aldermoor Test (in the Wine prefix " +
                 wine + ")",
             "Found game \"Brackenfell Beta\" at " + library +
                 "/steamapps/common/Brackenfell Beta (in the Wine prefix " + proton + ")",
             "Found game \"Cinderhollow Brackenfell\" at " + wine +
                 "/drive_c/Program Files/Cinderhollow (in the Wine prefix " + wine + ")",
             "Skipped game \"Dunmarrow\": its folder C:\\Games\\Dunmarrow can't be reached through the Wine prefix " +
                 broken,
             "Initializing game data for Aldermoor", "Loaded assets for Aldermoor", "Loaded materials_3.xml."}));
  const auto combo = app.window.Snapshot(kGameCombo);
  ASSERT_EQ(combo.items.size(), 4u);
  for (i32 item = 0; item < 4; ++item) EXPECT_EQ(combo.items[size_t(item)].data, item);

  // Each game from a prefix loads and lists its actor, its packs found whatever their case.
  for (i32 item = 1; item < 4; ++item) {
    const std::string name = combo.items[size_t(item)].text;
    EXPECT_EQ(Load(app, item),
              (Lines{"Initializing game data for " + name, "Loaded assets for " + name, "Loaded materials_3.xml."}));
    EXPECT_EQ(app.Texts(kFileList), Lines{"actors\\hero.adr"}) << name;
  }
}

TEST(WineDiscovery, NothingFoundSaysWhereItLookedAndHowToOpenAGame) {
  const std::string hint =
      "To open a game, choose its installation folder with \"Open folder...\", or start with --game-dir DIR, or "
      "with --prefix DIR for a Wine prefix elsewhere.";
  Home home;
  const std::string data = home.Join("data");
  GameSearch search = home.Search();
  search.userFolder = data.c_str();
  {
    App app;
    app.Start(search);  // nothing at all below the home folder
    EXPECT_EQ(app.NewLog(), (Lines{"No installed game was found.", "Looked for digest files below " + data,
                                   "Found no Wine prefix at $WINEPREFIX, ~/.wine or in a Steam library", hint}));
  }
  ASSERT_TRUE(testsupport::MakeWinePrefix(home.Join("home/.wine"), ""));
  ASSERT_TRUE(testsupport::MakeWinePrefix(home.Join("elsewhere"), "carol"));
  search.prefixes.prefixes = {home.Join("elsewhere")};
  App app;
  app.Start(search);
  EXPECT_EQ(app.NewLog(), (Lines{"No installed game was found.", "Looked for digest files below " + data,
                                 "Looked in the Wine prefix " + home.Join("elsewhere"),
                                 "Looked in the Wine prefix " + home.Join("home/.wine"), hint}));
  EXPECT_EQ(app.window.GetCount(kGameCombo), 0);
}

TEST(OpenGameFolder, ListsSelectsAndOpensAFolderThatHoldsAGame) {
  Home home;
  const std::string mine = home.Join("My Game");
  WriteGame(mine);
  apptest::Installation installation;
  installation.Digest("Marrowgate Studio", "Dunmarrow", installation.dir.Join("nowhere"));
  const std::string userFolder = installation.UserFolder();
  GameSearch search;
  search.userFolder = userFolder.c_str();
  search.gameDir = mine.c_str();  // at start-up, instead of discovery
  App app;
  app.Start(search);
  EXPECT_EQ(app.NewLog(), (Lines{"Found game \"My Game\" at " + mine, "Initializing game data for My Game",
                                 "Loaded assets for My Game", "Loaded materials_3.xml."}));
  const auto combo = app.window.Snapshot(kGameCombo);
  ASSERT_EQ(combo.items.size(), 1u);
  EXPECT_EQ(combo.items[0].text, "My Game");
  EXPECT_EQ(combo.items[0].data, i32(kGameCount));
  EXPECT_EQ(app.window.GetCurSel(kGameCombo), 0);
  EXPECT_EQ(app.Texts(kFileList), Lines{"actors\\hero.adr"});

  OpenGameFolder(app.state, home.Join("empty").c_str());
  EXPECT_EQ(app.NewLog(), Lines{"No game in " + home.Join("empty") + ": it holds no Resources/Assets/assets_000.pack"});
  struct Answer : IFolderDialog {
    std::string folder;
    bool AskFolder(CStringBufferA& path) override { return !folder.empty() && path.Format("%s", folder.c_str()) > 0; }
  } dialog;
  OnOpenFolderButton(app.state, dialog);  // cancelled
  // The same folder again: selected, neither listed twice nor loaded again.
  dialog.folder = mine + "/";
  OnOpenFolderButton(app.state, dialog);
  WaitForWorker(app.state);
  EXPECT_TRUE(app.NewLog().empty());
  EXPECT_EQ(app.window.GetCount(kGameCombo), 1);
  SelectGame(app.state, kGameCount + 1);  // a row past the folders opened is no game
  EXPECT_EQ(app.state.currentGame, i32(kGameCount));

  for (u32 n = 1; n <= kOpenedFolderCount; ++n) {
    WriteGame(home.Join("more/" + std::to_string(n)));
    OpenGameFolder(app.state, home.Join("more/" + std::to_string(n)).c_str());
    WaitForWorker(app.state);
  }
  EXPECT_EQ(app.NewLog().back(), "No room to list " + home.Join("more/8") + ": 8 folders are open already");
  EXPECT_EQ(app.window.GetCount(kGameCombo), i32(kOpenedFolderCount));
  EXPECT_EQ(app.state.currentGame, i32(kGameCount + kOpenedFolderCount - 1));
}

}  // namespace
