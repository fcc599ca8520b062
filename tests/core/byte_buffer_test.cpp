#include "core/byte_buffer.h"

#include <gtest/gtest.h>

#include <cstring>

#include "support/allocation_failure.h"

namespace {

TEST(ByteBuffer, GrowsByItsGranuleAndKeepsItsBytes) {
  CByteBuffer buffer;
  ASSERT_TRUE(buffer.Reserve(1));
  EXPECT_EQ(buffer.Capacity(), 8192u);
  for (u32 i = 0; i < 8192; ++i) ASSERT_EQ(buffer.Data()[i], 0) << i;
  std::memset(buffer.Data(), 0xAB, 8192);
  const u8* before = buffer.Data();
  ASSERT_TRUE(buffer.Reserve(8192));
  EXPECT_EQ(buffer.Data(), before);
  ASSERT_TRUE(buffer.Reserve(8193));
  EXPECT_EQ(buffer.Capacity(), 16384u);
  EXPECT_EQ(buffer.Data()[8191], 0xAB);
  EXPECT_EQ(buffer.Data()[8192], 0);
  EXPECT_EQ(buffer.Size(), 0u) << "Reserve leaves the size";
}

TEST(ByteBuffer, SizesThatLeave32BitsAreRefused) {
  CByteBuffer buffer;
  EXPECT_FALSE(buffer.SetSize(0xFFFFFFFF));
  EXPECT_EQ(buffer.Size(), 0u);
  EXPECT_EQ(buffer.Capacity(), 0u);
  ASSERT_TRUE(buffer.SetSize(0));
}

TEST(ByteBuffer, CopyKeepsGranuleAndBytes) {
  CByteBuffer source(16);
  ASSERT_TRUE(source.SetSize(5));
  std::memcpy(source.Data(), "bytes", 5);
  CByteBuffer copy(source);
  EXPECT_EQ(copy.Granule(), 16u);
  EXPECT_EQ(copy.Capacity(), 16u);
  ASSERT_EQ(copy.Size(), 5u);
  EXPECT_EQ(std::memcmp(copy.Data(), "bytes", 5), 0);
}

TEST(ByteBuffer, RefusedMemoryKeepsTheOldStore) {
  CByteBuffer buffer;
  ASSERT_TRUE(buffer.SetSize(3));
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(buffer.SetSize(10000));
  EXPECT_EQ(buffer.Size(), 3u);
  EXPECT_EQ(buffer.Capacity(), 8192u);
}

}  // namespace
