#pragma once

#include <atomic>

#include "core/types.h"

// Recursive lock held only for a few list operations; it spins without sleeping or yielding.
// `guard` protects the reading and writing of `owner` and `depth`; waiting for another owner is a
// spin on taking `depth` from 0 to 1.
class CSpinLock {
 public:
  void Lock();
  void Unlock();

 private:
  void TakeGuard();
  void DropGuard() { guard.exchange(0, std::memory_order_release); }

  std::atomic<u32> guard{0};
  std::atomic<u32> owner{0};  // 0 when free
  std::atomic<u32> depth{0};
};
