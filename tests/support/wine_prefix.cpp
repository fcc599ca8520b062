#include "support/wine_prefix.h"

#include <filesystem>

#include "game_writers/file_bytes.h"

namespace testsupport {

bool MakeWinePrefix(const std::string& prefix, const std::string& user) {
  std::error_code error;
  std::filesystem::create_directories(prefix + "/drive_c/windows", error);
  std::filesystem::create_directories(prefix + "/dosdevices", error);
  if (error) return false;
  std::filesystem::create_directory_symlink("../drive_c", prefix + "/dosdevices/c:", error);
  if (error) return false;
  std::filesystem::create_directory_symlink("/", prefix + "/dosdevices/z:", error);
  if (error) return false;
  if (!user.empty())
    std::filesystem::create_directories(prefix + "/drive_c/users/" + user + "/AppData/LocalLow", error);
  return !error;
}

bool WritePrefixDigest(const std::string& prefix, const std::string& user, const std::string& maker,
                       const std::string& game, const std::string& text) {
  return gamewriters::WriteFileBytes(
      prefix + "/drive_c/users/" + user + "/AppData/LocalLow/" + maker + "/Digests/" + game + ".loc", text);
}

std::string LibraryFoldersVdf(const std::vector<std::string>& libraries) {
  std::string text = "\"libraryfolders\"\n{\n";
  for (size_t i = 0; i < libraries.size(); ++i) {
    text += "\t\"" + std::to_string(i) + "\"\n\t{\n\t\t\"path\"\t\t\"" + libraries[i] +
            "\"\n\t\t\"label\"\t\t\"\"\n\t\t\"contentid\"\t\t\"6172631234\"\n\t\t\"apps\"\n\t\t{"
            "\n\t\t\t\"228980\"\t\t\"0\"\n\t\t}\n\t}\n";
  }
  return text + "}\n";
}

}  // namespace testsupport
