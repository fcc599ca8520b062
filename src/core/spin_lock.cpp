#include "core/spin_lock.h"

namespace {

// Non-zero for every thread, so 0 can mean "no owner".
u32 CurrentThreadId() {
  static std::atomic<u32> next{1};
  thread_local const u32 id = next.fetch_add(1, std::memory_order_relaxed);
  return id;
}

}  // namespace

void CSpinLock::TakeGuard() {
  u32 expected = 0;
  while (!guard.compare_exchange_weak(expected, 1, std::memory_order_acquire)) expected = 0;
}

void CSpinLock::Lock() {
  const u32 self = CurrentThreadId();
  TakeGuard();
  if (owner.load(std::memory_order_relaxed) == self) {
    depth.fetch_add(1, std::memory_order_relaxed);
  } else {
    DropGuard();
    u32 expected = 0;
    while (!depth.compare_exchange_weak(expected, 1, std::memory_order_acquire)) expected = 0;
    TakeGuard();
    owner.store(self, std::memory_order_relaxed);
  }
  DropGuard();
}

void CSpinLock::Unlock() {
  const u32 self = CurrentThreadId();
  TakeGuard();
  if (owner.load(std::memory_order_relaxed) == self) {
    // Clear the owner before the last level goes, so a waiter that takes `depth` next finds it free.
    if (depth.load(std::memory_order_relaxed) == 1) owner.store(0, std::memory_order_relaxed);
    depth.fetch_sub(1, std::memory_order_release);
  }
  DropGuard();
}
