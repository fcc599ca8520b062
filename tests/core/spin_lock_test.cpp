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
  std::thread other([&] {
    lock.Lock();
    entered = true;
    lock.Unlock();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(entered);
  lock.Unlock();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(entered) << "still held once";
  lock.Unlock();
  other.join();
  EXPECT_TRUE(entered);
}

TEST(SpinLock, CountsStayExactUnderContention) {
  CSpinLock lock;
  u64 total = 0;
  auto work = [&] {
    for (int i = 0; i < 20000; ++i) {
      lock.Lock();
      lock.Lock();
      ++total;
      lock.Unlock();
      lock.Unlock();
    }
  };
  std::thread a(work);
  std::thread b(work);
  a.join();
  b.join();
  EXPECT_EQ(total, 40000u);
}

}  // namespace
