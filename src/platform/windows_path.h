#pragma once

#include "core/string_buffer.h"

// Where the Windows path `path` (`C:\Games\...`, separated by `\` or `/`) lies in the Wine prefix
// `prefix`, in the system's form: the drive letter through the prefix's `dosdevices/<letter>:` link
// (`c:` usually leads to `../drive_c`, `z:` to `/`), then each part as Windows finds it, ignoring
// case. Parts that don't exist stay as spelled, so a game that has gone is noticed when its packs
// are opened. False, with `out` empty, for a path without a drive letter or a drive that leads
// nowhere.
[[nodiscard]] bool MapWindowsPath(const char* prefix, const char* path, CStringBufferA& out);
