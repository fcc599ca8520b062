#pragma once

enum class FolderResult { Made, Exists, Failed };

// Makes one folder; `path` may use `\` as separator.
FolderResult MakeFolder(const char* path);

// Makes `path` and every folder above it that is missing, as `mkdir -p` does. False when one can't
// be made or a file stands in the way.
[[nodiscard]] bool MakeFolders(const char* path);
