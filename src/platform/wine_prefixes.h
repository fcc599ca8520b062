#pragma once

#include <string>
#include <vector>

// Where Windows games keep their files on this machine besides the native per-user folder.
struct WinePrefixSearch {
  std::string home;                   // the home folder, below which ~/.wine and Steam lie
  std::string winePrefix;             // $WINEPREFIX; empty when unset
  std::vector<std::string> prefixes;  // given by hand, looked in before all others
};

// The Wine prefixes to look in, in order: those given by hand, $WINEPREFIX, ~/.wine, then every
// Steam library's steamapps/compatdata/*/pfx (prefixes sorted by name), the libraries taken from
// the libraryfolders.vdf of each Steam root in turn (~/.steam/steam, ~/.local/share/Steam, the
// Flatpak one), each root counting as a library of its own. Only folders that exist, each once
// however many ways lead to it; paths in the platform's form.
std::vector<std::string> FindWinePrefixes(const WinePrefixSearch& search);

// The Steam roots below `home` that FindWinePrefixes reads, existing or not.
std::vector<std::string> SteamRoots(const std::string& home);

// The folders of `prefix` below which a Windows program keeps per-user files that no roaming
// takes along: drive_c/users/<user>/AppData/LocalLow, users sorted by name, spelled as they are
// on disk, in the system's form with `\`. Empty for a prefix without users.
std::vector<std::string> PrefixLocalLowFolders(const std::string& prefix);
