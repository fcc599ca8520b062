#include "core/string_buffer.h"

#include <gtest/gtest.h>

#include <string>

#include "support/allocation_failure.h"

namespace {

template <class Size>
class InlineBufferTest : public testing::Test {};
template <u32 N>
using Size = std::integral_constant<u32, N>;
using Sizes = testing::Types<Size<1>, Size<32>, Size<64>, Size<261>>;
TYPED_TEST_SUITE(InlineBufferTest, Sizes);

TYPED_TEST(InlineBufferTest, StaysInlineUpToNThenMovesToARoundedBlockForGood) {
  constexpr u32 n = TypeParam::value;
  TStringBufferA<n> buffer;
  EXPECT_EQ(buffer.Capacity(), 0u);
  EXPECT_STREQ(buffer.Text(), "");
  const std::string fits(n - 1, 'x');
  buffer.Assign(fits.c_str());
  EXPECT_EQ(buffer.Capacity(), n) << "inline capacity is the size last asked for";
  buffer.Clear(false);
  EXPECT_EQ(buffer.Capacity(), 0u) << "clearing an inline store returns to the shared empty string";

  buffer.Assign(fits.c_str());
  ASSERT_TRUE(buffer.Reserve(n + 1));
  EXPECT_EQ(buffer.Capacity(), (n + 1 + 255) / 256 * 256);
  EXPECT_EQ(buffer.Text(), fits) << "text carried to the block";
  const u32 heapCapacity = buffer.Capacity();
  ASSERT_TRUE(buffer.Reserve(1));
  buffer.Assign(nullptr);
  EXPECT_STREQ(buffer.Text(), "");
  EXPECT_EQ(buffer.Capacity(), heapCapacity) << "a heap store stays for small requests and Clear(false)";
  buffer.Clear(true);
  EXPECT_EQ(buffer.Capacity(), 0u);
}

TEST(StringBuffer, HeapStoresGrowInStepsOf256) {
  for (const auto& [asked, capacity] : {std::pair<u32, u32>{1, 256}, {256, 256}, {257, 512}}) {
    CStringBufferA heap;
    ASSERT_TRUE(heap.Reserve(asked));
    EXPECT_EQ(heap.Capacity(), capacity) << asked;
  }
  TStringBufferW<8> wide;
  wide.Assign(u"twenty characters!!!");
  EXPECT_EQ(wide.Length(), 20u);
  EXPECT_EQ(wide.Capacity(), 256u);
  EXPECT_EQ(std::u16string(wide.Text()), u"twenty characters!!!");
}

TEST(StringBuffer, FormatAppendAndWide) {
  TStringBufferA<8> buffer;
  EXPECT_EQ(buffer.Format("%s\\assets_%.3u.pack", "C:\\Game", 7u), 23);
  EXPECT_EQ(buffer.AppendFormat("%s", ""), 23) << "nothing appended";
  EXPECT_EQ(buffer.AppendFormat(" %u", 1000u), 28);
  EXPECT_STREQ(buffer.Text(), "C:\\Game\\assets_007.pack 1000");
  EXPECT_EQ(buffer.Format("%s", ""), 0);
  EXPECT_STREQ(buffer.Text(), "");
  EXPECT_EQ(buffer.AssignWide(u"caf\u00E9 \U0001F600"), 10) << "bytes, not characters";
  EXPECT_STREQ(buffer.Text(), "caf\xC3\xA9 \xF0\x9F\x98\x80");
}

TEST(StringBuffer, RefusedMemoryLeavesTheBufferAsItWas) {
  TStringBufferA<4> buffer;
  buffer.Assign("abc");
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(buffer.Reserve(100));
  EXPECT_STREQ(buffer.Assign("longer than four"), "abc");
  EXPECT_EQ(buffer.Format("%s", "longer than four"), 0);
}

}  // namespace
