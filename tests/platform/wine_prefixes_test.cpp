#include "platform/wine_prefixes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "support/temp_dir.h"
#include "support/wine_prefix.h"

namespace {

using Paths = std::vector<std::string>;

std::string Internal(std::string path) {
  for (char& c : path) c = c == '/' ? '\\' : c;
  return path;
}

void Folder(const std::string& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  ASSERT_FALSE(error) << path;
}

TEST(WinePrefixes, GivenThenEnvironmentThenHomeThenEverySteamLibraryEachOnce) {
  testsupport::TempDir dir;
  const std::string home = dir.Join("home");
  const std::string steam = home + "/.local/share/Steam";
  const std::string flatpak = home + "/.var/app/com.valvesoftware.Steam/data/Steam";
  const std::string library = dir.Join("games/SteamLibrary");
  for (const std::string& prefix : {home + "/.wine", dir.Join("given"), dir.Join("env"),
                                    steam + "/steamapps/compatdata/200/pfx", steam + "/steamapps/compatdata/100/pfx",
                                    library + "/steamapps/compatdata/7/pfx", flatpak + "/steamapps/compatdata/5/pfx"}) {
    Folder(prefix);
  }
  Folder(steam + "/steamapps/compatdata/300");  // a game that never ran: no pfx
  // ~/.steam/steam is Steam's link to its root, and the file lists the root again.
  Folder(home + "/.steam");
  std::error_code error;
  std::filesystem::create_directory_symlink(steam, home + "/.steam/steam", error);
  ASSERT_FALSE(error);
  ASSERT_TRUE(gamewriters::WriteFileBytes(steam + "/steamapps/libraryfolders.vdf",
                                          testsupport::LibraryFoldersVdf({steam, library, "relative/library"})));
  ASSERT_TRUE(gamewriters::WriteFileBytes(flatpak + "/steamapps/libraryfolders.vdf", "\"libraryfolders\" { \"0\""));

  WinePrefixSearch search{
      .home = home, .winePrefix = dir.Join("env"), .prefixes = {dir.Join("given"), home + "/.wine/"}};
  const std::string linked = home + "/.steam/steam/steamapps/compatdata/";
  EXPECT_EQ(FindWinePrefixes(search),
            (Paths{dir.Join("given"), home + "/.wine/", dir.Join("env"), linked + "100/pfx", linked + "200/pfx",
                   library + "/steamapps/compatdata/7/pfx", flatpak + "/steamapps/compatdata/5/pfx"}));

  // Nothing below the home folder is looked at without one.
  EXPECT_EQ(FindWinePrefixes({.home = "", .winePrefix = dir.Join("missing"), .prefixes = {dir.Join("given")}}),
            Paths{dir.Join("given")});
  EXPECT_TRUE(SteamRoots("").empty());
}

TEST(WinePrefixes, LocalLowFoldersOfEachUserWhateverTheirCase) {
  testsupport::TempDir dir;
  const std::string prefix = dir.Join("pfx");
  ASSERT_TRUE(testsupport::MakeWinePrefix(prefix, "alice"));
  Folder(prefix + "/drive_c/users/Public/Desktop");
  Folder(prefix + "/drive_c/users/Bob/appdata/locallow");
  EXPECT_EQ(PrefixLocalLowFolders(prefix), (Paths{Internal(prefix + "/drive_c/users/Bob/appdata/locallow"),
                                                  Internal(prefix + "/drive_c/users/alice/AppData/LocalLow")}));

  const std::string bare = dir.Join("bare");
  ASSERT_TRUE(testsupport::MakeWinePrefix(bare, ""));
  EXPECT_TRUE(PrefixLocalLowFolders(bare).empty()) << "a prefix without a users folder";
  EXPECT_TRUE(PrefixLocalLowFolders(dir.Join("missing")).empty());
}

}  // namespace
