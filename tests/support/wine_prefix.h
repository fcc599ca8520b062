#pragma once

#include <string>
#include <vector>

namespace testsupport {

// Makes a Wine prefix at `prefix` as Wine lays one out: drive_c, and dosdevices with `c:` leading
// to ../drive_c and `z:` to /; with a `user`, that user's AppData/LocalLow folder. False on failure.
bool MakeWinePrefix(const std::string& prefix, const std::string& user);

// Writes the digest of `game` under `maker` in `user`'s LocalLow folder of `prefix`, holding `text`.
bool WritePrefixDigest(const std::string& prefix, const std::string& user, const std::string& maker,
                       const std::string& game, const std::string& text);

// A Steam libraryfolders.vdf that lists `libraries` in order, as Steam writes it.
std::string LibraryFoldersVdf(const std::vector<std::string>& libraries);

}  // namespace testsupport
