#include "platform/windows_path.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "platform/path_case.h"
#include "support/temp_dir.h"
#include "support/wine_prefix.h"

namespace {

// The system's form of a platform path.
std::string Internal(std::string path) {
  for (char& c : path) c = c == '/' ? '\\' : c;
  return path;
}

TEST(MatchPathCase, TakesEachPartAsSpelledElseTheFirstThatDiffersOnlyInCase) {
  testsupport::TempDir dir;
  for (const char* file : {"Games/Data/a.pack", "Games/DATA/b.pack", "Games/data/c.pack", "Other/x.pack"}) {
    ASSERT_TRUE(gamewriters::WriteFileBytes(dir.Join(file), "x"));
  }
  struct Case {
    const char* path;
    const char* found;
    bool exists;
  };
  const Case cases[] = {
      {"Games/data/c.pack", "Games/data/c.pack", true},
      {"GAMES\\Data\\A.PACK", "Games/Data/a.pack", true},
      {"games/dAtA/b.pack", "Games/DATA/b.pack", true},
      {"games/dAtA/a.pack", "Games/DATA/a.pack", false},  // DATA comes first in byte order; no going back
      {"other/missing/x.pack", "Other/missing/x.pack", false},
      {"Games//Other", "Games/Other", false},
  };
  for (const Case& c : cases) {
    TStringBufferA<512> out;
    EXPECT_EQ(MatchPathCase((dir.Path() + "/" + c.path).c_str(), out), c.exists) << c.path;
    EXPECT_EQ(std::string(out.Text()), Internal(dir.Path() + "/" + c.found)) << c.path;
  }
  TStringBufferA<16> root;
  EXPECT_TRUE(MatchPathCase("/", root));
  EXPECT_STREQ(root.Text(), "\\");
  EXPECT_TRUE(EqualIgnoringCase("Marrowgate Studio", "mARROWGATE sTUDIO"));
  EXPECT_FALSE(EqualIgnoringCase("Marrowgate", "Marrowgate Studio"));
}

TEST(WindowsPath, MapsTheDriveThroughItsLinkThenMatchesCase) {
  testsupport::TempDir temp;
  const std::string base = std::filesystem::canonical(temp.Path()).string();  // as a drive link resolves it
  const auto join = [&](const std::string& name) { return base + "/" + name; };
  const std::string prefix = join("pfx");
  ASSERT_TRUE(testsupport::MakeWinePrefix(prefix, "steamuser"));
  ASSERT_TRUE(gamewriters::WriteFileBytes(prefix + "/drive_c/Program Files/Aldermoor/game.txt", "x"));
  ASSERT_TRUE(gamewriters::WriteFileBytes(join("library/common/Dunmarrow/game.txt"), "x"));
  std::error_code error;
  std::filesystem::create_directory_symlink(join("library"), prefix + "/dosdevices/d:", error);
  std::filesystem::create_directory_symlink(join("gone"), prefix + "/dosdevices/e:", error);
  ASSERT_FALSE(error);
  const std::string drive = Internal(prefix + "/drive_c");
  struct Case {
    std::string path;
    std::string mapped;  // empty: not mapped
  };
  const Case cases[] = {
      {"C:\\Program Files\\Aldermoor", drive + "\\Program Files\\Aldermoor"},
      {"c:/PROGRAM FILES/aldermoor", drive + "\\Program Files\\Aldermoor"},
      {"C:\\Program Files\\Gone\\Sub", drive + "\\Program Files\\Gone\\Sub"},
      {"C:", drive},
      {"Z:" + Internal(base) + "\\library\\COMMON\\dunmarrow", Internal(join("library/common/Dunmarrow"))},
      {"D:\\common\\Dunmarrow", Internal(join("library/common/Dunmarrow"))},
      {"E:\\Games", ""},             // the link leads nowhere
      {"F:\\Games", ""},             // no such drive
      {"\\\\server\\share\\x", ""},  // no drive letter
      {"Games\\Aldermoor", ""},
      {"C:Games", ""},
      {"", ""},
  };
  for (const Case& c : cases) {
    TStringBufferA<512> out;
    out.Assign("left over");
    EXPECT_EQ(MapWindowsPath(prefix.c_str(), c.path.c_str(), out), !c.mapped.empty()) << c.path;
    EXPECT_EQ(std::string(out.Text()), c.mapped) << c.path;
  }
}

}  // namespace
