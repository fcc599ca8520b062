#pragma once

#include "app/app_state.h"

// Appends one line to the message log and scrolls it into view. Any thread; a worker's line waits
// for the main thread, so the main thread must not log while a worker may be inside.
[[gnu::format(printf, 2, 3)]] void Log(AppState& app, const char* format, ...);
