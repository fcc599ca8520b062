#pragma once

enum class FolderResult { Made, Exists, Failed };

// Makes one folder; `path` may use `\` as separator.
FolderResult MakeFolder(const char* path);
