#include "core/spin_lock.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

TEST(SpinLock, RecursiveOwnerHoldsOffOthersUntilTheLastUnlock) {
  CSpinLock lock;
  lock.Lock();
  lock.Lock();
  std::atomic<bool> entered{false};
  u64 total = 0;
  std::thread other([&] {
    lock.Lock();
    entered = true;
    lock.Unlock();
    for (int i = 0; i < 20000; ++i) {
      lock.Lock();
      ++total;
      lock.Unlock();
    }
  });
  lock.Unlock();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(entered) << "still held once";
  lock.Unlock();
  for (int i = 0; i < 20000; ++i) {
    lock.Lock();
    ++total;
    lock.Unlock();
  }
  other.join();
  EXPECT_TRUE(entered);
  EXPECT_EQ(total, 40000u) << "no update lost under contention";
}

}  // namespace
