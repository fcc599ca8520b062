#include "core/string_buffer.h"

#include <gtest/gtest.h>

#include <string>

#include "support/allocation_failure.h"

namespace {

template <class Buffer>
class InlineBufferTest : public testing::Test {};

template <u32 N>
struct Size {
  using Buffer = TStringBufferA<N>;
  static constexpr u32 kN = N;
};
using Sizes = testing::Types<Size<1>, Size<32>, Size<64>, Size<261>>;
TYPED_TEST_SUITE(InlineBufferTest, Sizes);

TYPED_TEST(InlineBufferTest, StaysInlineUpToNThenMovesToARoundedBlock) {
  constexpr u32 n = TypeParam::kN;
  typename TypeParam::Buffer buffer;
  EXPECT_EQ(buffer.Length(), 0u);
  EXPECT_EQ(buffer.Capacity(), 0u);
  EXPECT_STREQ(buffer.Text(), "");

  const std::string fits(n - 1, 'x');
  buffer.Assign(fits.c_str());
  EXPECT_EQ(buffer.Capacity(), n) << "inline capacity is the size last asked for";
  ASSERT_TRUE(buffer.Reserve(n));
  EXPECT_EQ(buffer.Capacity(), n);

  ASSERT_TRUE(buffer.Reserve(n + 1));
  EXPECT_EQ(buffer.Capacity(), (n + 1 + 255) / 256 * 256);
  EXPECT_EQ(buffer.Text(), fits) << "text carried to the block";

  const u32 heapCapacity = buffer.Capacity();
  ASSERT_TRUE(buffer.Reserve(1));
  buffer.Clear(false);
  EXPECT_EQ(buffer.Capacity(), heapCapacity) << "a heap store stays for small requests";
  buffer.Assign("y");
  EXPECT_EQ(buffer.Capacity(), heapCapacity);

  buffer.Clear(true);
  EXPECT_EQ(buffer.Capacity(), 0u);
  EXPECT_STREQ(buffer.Text(), "");
}

TYPED_TEST(InlineBufferTest, ClearOfAnInlineStoreReturnsToTheSharedEmptyString) {
  typename TypeParam::Buffer buffer;
  ASSERT_TRUE(buffer.Reserve(1));
  buffer.Clear(false);
  EXPECT_EQ(buffer.Capacity(), 0u);
  EXPECT_STREQ(buffer.Text(), "");
}

TEST(StringBuffer, ReserveSizesInText) {
  TStringBufferA<64> buffer;
  ASSERT_TRUE(buffer.Reserve(10));
  EXPECT_EQ(buffer.Capacity(), 10u);
  ASSERT_TRUE(buffer.Reserve(64));
  EXPECT_EQ(buffer.Capacity(), 64u);
  buffer.Assign("kept");
  ASSERT_TRUE(buffer.Reserve(65));
  EXPECT_EQ(buffer.Capacity(), 256u);
  EXPECT_STREQ(buffer.Text(), "kept");

  struct Case {
    u32 asked;
    u32 capacity;
  };
  for (const Case c : {Case{1, 256}, {256, 256}, {257, 512}}) {
    CStringBufferA heap;
    ASSERT_TRUE(heap.Reserve(c.asked));
    EXPECT_EQ(heap.Capacity(), c.capacity) << c.asked;
  }
}

TEST(StringBuffer, AssignOfNullAndEmpty) {
  CStringBufferA buffer;
  buffer.Assign("something");
  buffer.Assign(nullptr);
  EXPECT_STREQ(buffer.Text(), "");
  EXPECT_EQ(buffer.Capacity(), 256u) << "store kept";
  buffer.Assign("");
  EXPECT_EQ(buffer.Length(), 0u);
  EXPECT_EQ(buffer.Text()[0], '\0');
}

TEST(StringBuffer, FormatAndAppend) {
  TStringBufferA<8> buffer;
  EXPECT_EQ(buffer.Format("%s\\assets_%.3u.pack", "C:\\Game", 7u), 23);
  EXPECT_STREQ(buffer.Text(), "C:\\Game\\assets_007.pack");
  EXPECT_EQ(buffer.AppendFormat("%s", ""), 23) << "nothing appended";
  EXPECT_STREQ(buffer.Text(), "C:\\Game\\assets_007.pack");
  EXPECT_EQ(buffer.AppendFormat(" %u", 1000u), 28);
  EXPECT_STREQ(buffer.Text(), "C:\\Game\\assets_007.pack 1000");
  EXPECT_EQ(buffer.Format("%s", ""), 0);
  EXPECT_STREQ(buffer.Text(), "");

  const std::string big(1000, 'q');
  EXPECT_EQ(buffer.Format("%s!", big.c_str()), 1001);
  EXPECT_EQ(buffer.Text(), big + "!");
}

TEST(StringBuffer, AssignWideGivesUtf8ByteLength) {
  TStringBufferA<16> buffer;
  EXPECT_EQ(buffer.AssignWide(u"caf\u00E9 \U0001F600"), 10);
  EXPECT_STREQ(buffer.Text(), "caf\xC3\xA9 \xF0\x9F\x98\x80");
  EXPECT_EQ(buffer.AssignWide(u""), 0);
  EXPECT_STREQ(buffer.Text(), "");
}

TEST(StringBuffer, WideBufferHoldsItsText) {
  TStringBufferW<8> buffer;
  buffer.Assign(u"twenty characters!!!");
  EXPECT_EQ(buffer.Length(), 20u);
  EXPECT_EQ(std::u16string(buffer.Text()), u"twenty characters!!!");
  EXPECT_EQ(buffer.Capacity(), 256u);
}

TEST(StringBuffer, RefusedMemoryLeavesTheBufferAsItWas) {
  TStringBufferA<4> buffer;
  buffer.Assign("abc");
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(buffer.Reserve(100));
  EXPECT_STREQ(buffer.Assign("longer than four"), "abc");
  EXPECT_EQ(buffer.Format("%s", "longer than four"), 0);
  EXPECT_STREQ(buffer.Text(), "");
}

}  // namespace
