#pragma once

#include "core/types.h"

// The main loop's pacing of the preview: at most 120 ticks a second, however often the loop runs.
// Times are milliseconds of a counter that wraps at 2^32.
class TickTimer {
 public:
  static constexpr f32 kInterval = 1.0f / 120.0f;

  explicit TickTimer(u32 now) : last(now) {}
  // One pass of the loop at `now`: true when the preview should tick in it.
  bool Pass(u32 now) {
    // A counter that wrapped still gives the small positive step.
    const u64 elapsed = now >= last ? u64(now - last) : u64(now) + (u64(1) << 32) - last;
    last = now;
    const bool tick = accumulator >= kInterval;
    if (tick) accumulator = 0;
    accumulator += f32(elapsed) / 1000.0f;
    return tick;
  }
  // Milliseconds until the next pass would tick, for a loop that sleeps between passes.
  u32 WaitMilliseconds() const { return accumulator >= kInterval ? 0 : u32((kInterval - accumulator) * 1000.0f) + 1; }

 private:
  u32 last;
  f32 accumulator = kInterval;  // the first pass ticks at once
};
