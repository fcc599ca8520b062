#include "app/game_search.h"

#include <cstdlib>

#include "platform/user_folder.h"

GameSearch UserGameSearch(const char* userFolder, const std::vector<std::string>& prefixes) {
  GameSearch search;
  search.userFolder = userFolder;
  search.winePrefixes = true;
  search.prefixes.prefixes = prefixes;
  if (const char* winePrefix = std::getenv("WINEPREFIX")) search.prefixes.winePrefix = winePrefix;
  TStringBufferA<512> home;
  if (GetHomeFolder(home)) search.prefixes.home = home.Text();
  return search;
}

std::vector<DigestPlace> PrefixDigestPlaces(const GameSearch& search, std::vector<std::string>& prefixes) {
  prefixes.clear();
  std::vector<DigestPlace> places;
  if (!search.winePrefixes) return places;
  prefixes = FindWinePrefixes(search.prefixes);
  for (const std::string& prefix : prefixes) {
    for (std::string& folder : PrefixLocalLowFolders(prefix)) places.push_back({std::move(folder), prefix});
  }
  return places;
}
