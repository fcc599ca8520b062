#pragma once

#include "core/types.h"

// A steady millisecond counter that wraps at 2^32, as the main loop's timing expects.
u32 MillisecondClock();

// Milliseconds from `last` to `now` across one wrap of the counter.
inline u64 ElapsedMilliseconds(u32 now, u32 last) {
  return now >= last ? u64(now - last) : u64(now) + (u64(1) << 32) - last;
}
