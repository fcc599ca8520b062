#pragma once

enum class FolderResult { Made, Exists, Failed };

// Makes one folder; `path` may use `\` as separator.
FolderResult MakeFolder(const char* path);

// Makes `path` and every folder above it that is missing, as `mkdir -p` does. False when one can't
// be made or a file stands in the way.
[[nodiscard]] bool MakeFolders(const char* path);

// Flushes to disk everything written on the file system that holds the folder `path`: one flush
// for many files written without one each. False when the folder can't be opened or flushed.
bool SyncFileSystem(const char* path);
