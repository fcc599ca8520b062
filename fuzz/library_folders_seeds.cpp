#include "seeds.h"
#include "support/wine_prefix.h"

Seeds LibraryFoldersSeeds() {
  return {{"two_libraries.vdf", testsupport::LibraryFoldersVdf({"/home/u/.local/share/Steam", "/mnt/games/Steam"})},
          {"older_form.vdf", "\"LibraryFolders\"\n{\n\t\"ContentStatsID\"\t\"-1\"\n\t\"1\"\t\"/mnt/a\"\n}\n"},
          {"escapes_and_comments.vdf", "// by hand\nlibraryfolders { \"0\" { path \"/a \\\"b\\\" \\\\c\" } }"}};
}
