#pragma once

#include <string>
#include <vector>

#include "platform/wine_prefixes.h"

// Where discovery looks for the games' digest files.
struct GameSearch {
  const char* userFolder = nullptr;  // the native per-user folder; null asks the platform
  bool winePrefixes = false;         // after it, the Wine prefixes that `prefixes` leads to
  WinePrefixSearch prefixes;
  const char* gameDir = nullptr;  // an installation folder to open instead of looking for digests
};

// The search of a program that a user runs: the per-user folder `userFolder` (null: the
// platform's), then `prefixes` given by hand, $WINEPREFIX, and those below the home folder.
GameSearch UserGameSearch(const char* userFolder, const std::vector<std::string>& prefixes);

// A folder below which the makers keep their folders of digests.
struct DigestPlace {
  std::string folder;  // in the system's form
  std::string prefix;  // the Wine prefix it lies in, in the platform's form
};

// The LocalLow folders of every user of every Wine prefix that `search` leads to, in search order,
// and in `prefixes` the prefixes themselves.
std::vector<DigestPlace> PrefixDigestPlaces(const GameSearch& search, std::vector<std::string>& prefixes);
