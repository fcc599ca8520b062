#include "platform/clock.h"

#include <chrono>

u32 MillisecondClock() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<u32>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}
