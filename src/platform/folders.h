#pragma once

#include <string>
#include <vector>

enum class FolderResult { Made, Exists, Failed };

// Makes one folder; `path` may use `\` as separator.
FolderResult MakeFolder(const char* path);

// Makes `path` and every folder above it that is missing, as `mkdir -p` does. False when one can't
// be made or a file stands in the way.
[[nodiscard]] bool MakeFolders(const char* path);

// Flushes to disk everything written on the file system that holds the folder `path`: one flush
// for many files written without one each. False when the folder can't be opened or flushed.
bool SyncFileSystem(const char* path);

// The names in the folder `path`, without "." and "..", sorted byte by byte. False when it can't be
// read.
[[nodiscard]] bool ListFolder(const char* path, std::vector<std::string>& names);

// Whether `path` is a folder, following links.
bool IsFolder(const char* path);

// `path` with every link and "." or ".." resolved, in the platform's form. False when some part of
// it doesn't exist, as for a link that leads nowhere.
[[nodiscard]] bool RealPath(const char* path, std::string& out);
