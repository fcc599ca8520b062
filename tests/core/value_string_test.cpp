#include "core/value_string.h"

#include <gtest/gtest.h>

#include <string>

#include "support/allocation_failure.h"

namespace {

TEST(ValueString, FormsFollowLengthAndStayOwned) {
  CStringA s;
  ASSERT_TRUE(s.Assign("fourteen chars"));
  EXPECT_FALSE(s.IsOwned());
  ASSERT_TRUE(s.Assign("fifteen chars!!"));
  EXPECT_EQ(s.BlockCapacity(), 16u);
  EXPECT_EQ(s.BlockLength(), 15u);
  ASSERT_TRUE(s.Assign("abc"));
  EXPECT_EQ(s.BlockCapacity(), 16u) << "an owned string stays in its block";
  EXPECT_EQ(s.BlockLength(), 3u);
  const CStringA copy(s);
  EXPECT_FALSE(copy.IsOwned()) << "a copy of a short owned text goes inline";
  EXPECT_STREQ(copy.Text(), "abc");

  // The conversion starts afresh: 13 UTF-8 bytes and the NUL go inline even from a block; 14 don't.
  ASSERT_TRUE(s.AssignWide(u"caf\u00E9 1234567"));
  EXPECT_FALSE(s.IsOwned());
  ASSERT_TRUE(s.AssignWide(u"caf\u00E9 12345678"));
  EXPECT_TRUE(s.IsOwned());
  CStringW wide;
  ASSERT_TRUE(wide.AssignNarrow("twenty characters \xC3\xA9!"));
  EXPECT_EQ(std::u16string(wide.Text()), u"twenty characters \u00E9!");
}

TEST(ValueString, BorrowedTextIsSharedAndMovesHandBlocksOver) {
  const char outside[] = "outside text that is long";
  CStringA borrowed;
  borrowed.Borrow(outside);
  CStringA copy(borrowed);
  EXPECT_EQ(copy.Text(), outside);
  CStringA owned;
  ASSERT_TRUE(owned.Assign("an owned text of some length"));
  ASSERT_TRUE(owned.CopyFrom(borrowed));
  EXPECT_TRUE(owned.IsOwned()) << "copied deeply into the block";
  EXPECT_STREQ(owned.Text(), outside);

  const char* block = owned.Text();
  CStringA target;
  target.MoveFrom(owned);
  EXPECT_EQ(target.Text(), block);
  EXPECT_STREQ(owned.Text(), "");
  // Over an owned target the two exchange, so nothing leaks and nothing is freed twice.
  CStringA other;
  ASSERT_TRUE(other.Assign("another text long enough for one"));
  target.MoveFrom(other);
  EXPECT_EQ(other.Text(), block);
}

TEST(ValueString, RefusedBlockLeavesAnEmptyString) {
  CStringA s;
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(s.Assign("a text that needs a heap block"));
  EXPECT_STREQ(s.Text(), "");
  EXPECT_TRUE(s.Assign("fits inline"));
}

}  // namespace
