#include "core/value_string.h"

#include <gtest/gtest.h>

#include <string>

#include "support/allocation_failure.h"

namespace {

TEST(ValueString, FourteenCharactersStayInline) {
  CStringA s;
  ASSERT_TRUE(s.Assign("fourteen chars"));
  EXPECT_FALSE(s.IsOwned());
  ASSERT_TRUE(s.Assign("fifteen chars!!"));
  EXPECT_TRUE(s.IsOwned());
  EXPECT_EQ(s.BlockCapacity(), 16u);
  EXPECT_EQ(s.BlockLength(), 15u);

  ASSERT_TRUE(s.Assign("abc"));
  EXPECT_TRUE(s.IsOwned()) << "an owned string stays in its block";
  EXPECT_EQ(s.BlockCapacity(), 16u);
  EXPECT_EQ(s.BlockLength(), 3u);
  EXPECT_STREQ(s.Text(), "abc");

  CStringA copy(s);
  EXPECT_FALSE(copy.IsOwned()) << "a copy of a short owned text goes inline";
  EXPECT_STREQ(copy.Text(), "abc");

  ASSERT_TRUE(s.Assign(nullptr));
  EXPECT_STREQ(s.Text(), "");
}

TEST(ValueString, CopiesOfBorrowedTextShareThePointer) {
  const char outside[] = "outside text that is long";
  CStringA borrowed;
  borrowed.Borrow(outside);
  CStringA copy;
  ASSERT_TRUE(copy.CopyFrom(borrowed));
  EXPECT_TRUE(copy.IsBorrowed());
  EXPECT_EQ(copy.Text(), outside);

  CStringA owned;
  ASSERT_TRUE(owned.Assign("an owned text of some length"));
  ASSERT_TRUE(owned.CopyFrom(borrowed));
  EXPECT_TRUE(owned.IsOwned());
  EXPECT_NE(owned.Text(), outside);
  EXPECT_STREQ(owned.Text(), outside);
}

TEST(ValueString, MoveHandsTheBlockOver) {
  CStringA source;
  ASSERT_TRUE(source.Assign("a text long enough for a block"));
  const char* block = source.Text();
  CStringA target;
  target.MoveFrom(source);
  EXPECT_EQ(target.Text(), block);
  EXPECT_STREQ(source.Text(), "");
  EXPECT_FALSE(source.IsOwned());

  // Over an owned target the two exchange, so nothing leaks and nothing is freed twice.
  CStringA other;
  ASSERT_TRUE(other.Assign("another text long enough for one"));
  const char* otherBlock = other.Text();
  target.MoveFrom(other);
  EXPECT_EQ(target.Text(), otherBlock);
  EXPECT_EQ(other.Text(), block);
}

TEST(ValueString, WideConversionsChooseTheForm) {
  struct Case {
    const char16_t* wide;
    bool owned;
  };
  // 13 UTF-8 bytes plus the NUL stay inline; 14 need a block.
  for (const Case c : {Case{u"caf\u00E9 1234567", false}, Case{u"caf\u00E9 12345678", true}}) {
    CStringA s;
    ASSERT_TRUE(s.AssignWide(c.wide));
    EXPECT_EQ(s.IsOwned(), c.owned) << s.Text();
  }
  CStringW wide;
  ASSERT_TRUE(wide.AssignNarrow("twenty characters!!!"));
  EXPECT_EQ(std::u16string(wide.Text()), u"twenty characters!!!");
  ASSERT_TRUE(wide.Assign(u"\u00E9t\u00E9"));
  EXPECT_EQ(std::u16string(wide.Text()), u"\u00E9t\u00E9");
}

TEST(ValueString, RefusedBlockLeavesAnEmptyString) {
  CStringA s;
  ASSERT_TRUE(s.Assign("short"));
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(s.Assign("a text that needs a heap block"));
  EXPECT_STREQ(s.Text(), "");
  EXPECT_FALSE(s.IsOwned());
  EXPECT_TRUE(s.Assign("fits inline")) << "no block needed";
}

}  // namespace
