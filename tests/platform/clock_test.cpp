#include "platform/clock.h"

#include <gtest/gtest.h>

namespace {

TEST(Clock, ElapsedSurvivesTheWrap) {
  EXPECT_EQ(ElapsedMilliseconds(1000, 990), 10u);
  EXPECT_EQ(ElapsedMilliseconds(5, 0xFFFFFFFB), 10u);
  EXPECT_EQ(ElapsedMilliseconds(0, 0xFFFFFFFF), 1u);
}

}  // namespace
