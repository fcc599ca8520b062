#pragma once

#include <string>
#include <string_view>
#include <vector>

// The library folders that a Steam `libraryfolders.vdf` lists, in the file's order. The file is
// Steam's text of nested quoted keys and values:
//   "libraryfolders" { "0" { "path" "/home/u/.local/share/Steam" ... } "1" { "path" ... } }
// and in its older form a numbered key's value is the path itself: "1" "/mnt/games/SteamLibrary".
// False, with `folders` empty, when the text is malformed: an open quote or brace, a key without a
// value, nesting deeper than kMaxLibraryFoldersDepth.
[[nodiscard]] bool ParseLibraryFolders(std::string_view text, std::vector<std::string>& folders);

constexpr unsigned kMaxLibraryFoldersDepth = 16;
