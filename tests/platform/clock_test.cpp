#include "platform/clock.h"

#include <gtest/gtest.h>

namespace {

TEST(Clock, ElapsedSurvivesTheWrap) {
  struct Case {
    u32 now;
    u32 last;
    u64 elapsed;
  };
  for (const Case c : {Case{1000, 990, 10}, {5, 0xFFFFFFFB, 10}, {0, 0xFFFFFFFF, 1}, {7, 7, 0}}) {
    EXPECT_EQ(ElapsedMilliseconds(c.now, c.last), c.elapsed) << c.now << " " << c.last;
  }
}

}  // namespace
