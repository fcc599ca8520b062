#pragma once

// Lines for developers, not users: formatted like printf and written to standard error in debug
// builds; release builds compile them away.
[[gnu::format(printf, 1, 2)]] void DebugPrintA(const char* format, ...);
