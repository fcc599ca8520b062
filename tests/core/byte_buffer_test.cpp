#include "core/byte_buffer.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/allocation_failure.h"

namespace {

TEST(ByteBuffer, GrowsByItsGranuleAndKeepsItsBytes) {
  CByteBuffer buffer;
  ASSERT_TRUE(buffer.Reserve(1));
  EXPECT_EQ(buffer.Capacity(), 8192u);
  EXPECT_EQ(buffer.Data()[8191], 0);
  std::memset(buffer.Data(), 0xAB, 8192);
  const u8* before = buffer.Data();
  ASSERT_TRUE(buffer.Reserve(8192));
  EXPECT_EQ(buffer.Data(), before);
  ASSERT_TRUE(buffer.Reserve(8193));
  EXPECT_EQ(buffer.Capacity(), 16384u);
  EXPECT_EQ(buffer.Data()[8191], 0xAB) << "the whole old store moves";
  EXPECT_EQ(buffer.Data()[8192], 0) << "the new tail is zeroed";
  EXPECT_EQ(buffer.Size(), 0u);
}

// Sizing for overwrite keeps the bytes already held and zeroes what lies past the new size.
TEST(ByteBuffer, SizingForOverwriteKeepsOldBytesAndZeroesTheTail) {
  CByteBuffer buffer(16);
  ASSERT_TRUE(buffer.SetSize(5));
  std::memset(buffer.Data(), 0xCD, 5);
  ASSERT_TRUE(buffer.SetSizeForOverwrite(40));
  EXPECT_EQ(buffer.Size(), 40u);
  EXPECT_EQ(buffer.Capacity(), 48u);
  EXPECT_EQ(buffer.Data()[4], 0xCD);
  for (u32 i = 40; i < 48; ++i) EXPECT_EQ(buffer.Data()[i], 0) << i;
  ASSERT_TRUE(buffer.SetSizeForOverwrite(8));
  EXPECT_EQ(buffer.Capacity(), 48u) << "shrinking keeps the store";
  EXPECT_EQ(buffer.Data()[4], 0xCD);
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(buffer.SetSizeForOverwrite(100));
  EXPECT_EQ(buffer.Size(), 8u);
}

TEST(ByteBuffer, RefusedOrUnrepresentableSizesKeepTheOldStore) {
  CByteBuffer buffer;
  ASSERT_TRUE(buffer.SetSize(3));
  EXPECT_FALSE(buffer.SetSize(0xFFFFFFFF)) << "rounded up it leaves 32 bits";
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(buffer.SetSize(10000));
  EXPECT_EQ(buffer.Size(), 3u);
  EXPECT_EQ(buffer.Capacity(), 8192u);
}

}  // namespace
