#include "platform/library_folders.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/wine_prefix.h"

namespace {

using Folders = std::vector<std::string>;

TEST(LibraryFolders, ReadsBothFormsOfTheFile) {
  struct Case {
    const char* name;
    std::string text;
    Folders folders;
  };
  const Case cases[] = {
      {"as Steam writes it",
       testsupport::LibraryFoldersVdf({"/home/u/.local/share/Steam", "/mnt/games/Steam Library"}),
       {"/home/u/.local/share/Steam", "/mnt/games/Steam Library"}},
      {"the older form, numbered keys with the path as value",
       "\"LibraryFolders\"\n{\n\t\"TimeNextStatsReport\"\t\t\"1690000000\"\n\t\"ContentStatsID\"\t\t\"-1\"\n"
       "\t\"1\"\t\t\"/mnt/a\"\n\t\"2\"\t\t\"/mnt/b\"\n}\n",
       {"/mnt/a", "/mnt/b"}},
      {"escapes, comments and unquoted words",
       "// written by hand\nlibraryfolders { \"0\" { path \"/mnt/say \\\"hi\\\"\\\\x\" } // done\n}",
       {"/mnt/say \"hi\"\\x"}},
      {"a library block without a path, and keys that aren't numbers",
       "\"libraryfolders\" { \"0\" { \"label\" \"x\" } \"contentstatsid\" { \"path\" \"/no\" } \"1\" { \"path\" "
       "\"/yes\" } }",
       {"/yes"}},
      {"no libraries", "\"libraryfolders\" { }", {}},
  };
  for (const Case& c : cases) {
    Folders folders{"left over"};
    EXPECT_TRUE(ParseLibraryFolders(c.text, folders)) << c.name;
    EXPECT_EQ(folders, c.folders) << c.name;
  }
}

TEST(LibraryFolders, MalformedTextGivesFalseAndNoFolders_fail) {
  std::string deep = "\"libraryfolders\" ";
  for (unsigned i = 0; i < kMaxLibraryFoldersDepth + 1; ++i) deep += "{ \"k\" ";
  deep += "\"v\"";
  for (unsigned i = 0; i < kMaxLibraryFoldersDepth + 1; ++i) deep += " }";
  const std::pair<const char*, std::string> cases[] = {
      {"empty", ""},
      {"another root", "\"config\" { \"0\" { \"path\" \"/a\" } }"},
      {"a quote left open", "\"libraryfolders\" { \"0\" { \"path\" \"/a } }"},
      {"a brace left open", "\"libraryfolders\" { \"0\" { \"path\" \"/a\" }"},
      {"a closing brace too many", "\"libraryfolders\" { \"0\" \"/a\" } }"},
      {"a key without a value", "\"libraryfolders\" { \"0\" }"},
      {"a root without a block", "\"libraryfolders\" \"x\""},
      {"nesting past the limit", deep},
  };
  for (const auto& [name, text] : cases) {
    Folders folders{"left over"};
    EXPECT_FALSE(ParseLibraryFolders(text, folders)) << name;
    EXPECT_TRUE(folders.empty()) << name;
  }
}

TEST(LibraryFolders, EveryCutOfAFileEndsCleanly) {
  const std::string whole = testsupport::LibraryFoldersVdf({"/a", "/b"});
  for (size_t length = 0; length < whole.size(); ++length) {
    // A buffer of exactly this length, so that a read past it is seen by the sanitizer.
    const std::unique_ptr<char[]> cut = std::make_unique<char[]>(length ? length : 1);
    std::copy(whole.begin(), whole.begin() + std::ptrdiff_t(length), cut.get());
    Folders folders;
    const bool ok = ParseLibraryFolders(std::string_view(cut.get(), length), folders);
    // Only the final line end may go.
    EXPECT_EQ(ok, length + 1 == whole.size()) << length;
  }
}

}  // namespace
