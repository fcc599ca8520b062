#pragma once

#include "core/string_buffer.h"

// The per-user data folder below which the makers keep their digest files: $XDG_DATA_HOME when it
// is an absolute path, else $HOME/.local/share, else the password entry's home + /.local/share.
// False when none of them is known.
[[nodiscard]] bool GetUserDataFolder(CStringBufferA& out);

// The user's home folder: $HOME when set, else the password entry's. False when neither is known.
[[nodiscard]] bool GetHomeFolder(CStringBufferA& out);
