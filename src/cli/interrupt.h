#pragma once

#include <atomic>

// From now on Ctrl-C (or a termination request) sets the flag given back: no further item of a
// batch starts, those under way end whole. A second Ctrl-C ends the program at once.
const std::atomic<bool>& CatchInterrupt();
