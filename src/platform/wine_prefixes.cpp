#include "platform/wine_prefixes.h"

#include "platform/file_handle.h"
#include "platform/folders.h"
#include "platform/library_folders.h"
#include "platform/path_case.h"

namespace {

// libraryfolders.vdf lists a few libraries; anything near this size is not Steam's.
constexpr u64 kMaxLibraryFoldersSize = 1u << 20;

// Adds `folder` when it exists and no folder added before is the same one.
void AddOnce(const std::string& folder, std::vector<std::string>& out, std::vector<std::string>& seen) {
  std::string real;
  if (folder.empty() || !IsFolder(folder.c_str()) || !RealPath(folder.c_str(), real)) return;
  for (const std::string& known : seen) {
    if (known == real) return;
  }
  seen.push_back(real);
  out.push_back(folder);
}

// The libraries of one Steam root: the root itself, then those its libraryfolders.vdf lists.
void AddLibraries(const std::string& root, std::vector<std::string>& libraries, std::vector<std::string>& seen) {
  AddOnce(root, libraries, seen);
  FileHandle file;
  if (!file.Open((root + "/steamapps/libraryfolders.vdf").c_str()) || file.Size() > kMaxLibraryFoldersSize) return;
  std::string text(size_t(file.Size()), '\0');
  if (!file.ReadExact(0, text.data(), text.size())) return;
  std::vector<std::string> listed;
  if (!ParseLibraryFolders(text, listed)) return;
  for (const std::string& library : listed) {
    // Only absolute paths mean a place on this machine.
    if (!library.empty() && library[0] == '/') AddOnce(library, libraries, seen);
  }
}

}  // namespace

std::vector<std::string> SteamRoots(const std::string& home) {
  if (home.empty()) return {};
  return {home + "/.steam/steam", home + "/.local/share/Steam", home + "/.var/app/com.valvesoftware.Steam/data/Steam"};
}

std::vector<std::string> FindWinePrefixes(const WinePrefixSearch& search) {
  std::vector<std::string> prefixes;
  std::vector<std::string> seen;
  for (const std::string& prefix : search.prefixes) AddOnce(prefix, prefixes, seen);
  AddOnce(search.winePrefix, prefixes, seen);
  if (search.home.empty()) return prefixes;
  AddOnce(search.home + "/.wine", prefixes, seen);

  std::vector<std::string> libraries;
  std::vector<std::string> seenLibraries;
  for (const std::string& root : SteamRoots(search.home)) AddLibraries(root, libraries, seenLibraries);
  std::vector<std::string> ids;
  for (const std::string& library : libraries) {
    const std::string compatdata = library + "/steamapps/compatdata";
    if (!ListFolder(compatdata.c_str(), ids)) continue;
    for (const std::string& id : ids) AddOnce(compatdata + "/" + id + "/pfx", prefixes, seen);
  }
  return prefixes;
}

std::vector<std::string> PrefixLocalLowFolders(const std::string& prefix) {
  std::vector<std::string> folders;
  TStringBufferA<512> users;
  if (!MatchPathCase((prefix + "/drive_c/users").c_str(), users)) return folders;
  std::vector<std::string> names;
  if (!ListFolder(users.Text(), names)) return folders;
  TStringBufferA<512> localLow;
  for (const std::string& user : names) {
    const std::string wanted = std::string(users.Text()) + "/" + user + "/AppData/LocalLow";
    if (MatchPathCase(wanted.c_str(), localLow) && IsFolder(localLow.Text())) folders.emplace_back(localLow.Text());
  }
  return folders;
}
