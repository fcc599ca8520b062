#include "cli/interrupt.h"

#include <signal.h>

namespace {

std::atomic<bool> gStopRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free, "set from a signal handler");

void OnInterrupt(int) { gStopRequested = true; }

}  // namespace

const std::atomic<bool>& CatchInterrupt() {
  struct sigaction action {};
  action.sa_handler = OnInterrupt;
  action.sa_flags = SA_RESETHAND;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
  sigaction(SIGTERM, &action, nullptr);
  return gStopRequested;
}
