#include "core/array.h"

#include <gtest/gtest.h>

#include "core/counted.h"
#include "core/value_string.h"
#include "support/allocation_failure.h"

namespace {

template <class T>
class ArrayTest : public testing::Test {
 protected:
  void TearDown() override { EXPECT_EQ(Counted::alive, 0); }
  static u32 ValueOf(const T& element) {
    if constexpr (std::is_same_v<T, u32>) {
      return element;
    } else {
      return element.value;
    }
  }
  static void Fill(TArray<T>& array, u32 n) {
    ASSERT_TRUE(array.SetSize(n));
    for (u32 i = 0; i < n; ++i) array[i] = T(i + 1);
  }
};
using Elements = testing::Types<u32, Counted>;
TYPED_TEST_SUITE(ArrayTest, Elements);

TYPED_TEST(ArrayTest, GrowthFollowsTheElementKindAndShrinkingKeepsTheBlock) {
  TArray<TypeParam> array;
  this->Fill(array, 3);
  ASSERT_TRUE(array.SetSize(10));
  // Owning elements grow to exactly n; plain ones to n + n / 2, zero-filled.
  EXPECT_EQ(array.Capacity(), std::is_trivially_copyable_v<TypeParam> ? 15u : 10u);
  for (u32 i = 0; i < 10; ++i) EXPECT_EQ(this->ValueOf(array[i]), i < 3 ? i + 1 : 0) << i;
  const u32 capacity = array.Capacity();
  ASSERT_TRUE(array.SetSize(2));
  EXPECT_EQ(array.Capacity(), capacity);
  TArray<TypeParam> exact;
  ASSERT_TRUE(exact.Reserve(7));
  this->Fill(exact, 7);
  EXPECT_EQ(exact.Capacity(), 7u) << "a reader that reserves first gets the exact size";
}

TYPED_TEST(ArrayTest, AssignCopiesAndAnEmptySourceKeepsTheBlock) {
  TArray<TypeParam> source;
  this->Fill(source, 5);
  TArray<TypeParam> target;
  this->Fill(target, 8);
  ASSERT_TRUE(target.Assign(source));
  ASSERT_EQ(target.Count(), 5u);
  for (u32 i = 0; i < 5; ++i) EXPECT_EQ(this->ValueOf(target[i]), i + 1);
  const u32 capacity = target.Capacity();
  ASSERT_TRUE(target.Assign(TArray<TypeParam>()));
  EXPECT_EQ(target.Count(), 0u);
  EXPECT_EQ(target.Capacity(), capacity);
}

TYPED_TEST(ArrayTest, RefusedMemoryLeavesTheArrayWhole) {
  TArray<TypeParam> array;
  this->Fill(array, 2);
  TArray<TypeParam> bigger;
  this->Fill(bigger, 20);
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(array.SetSize(50));
  EXPECT_FALSE(array.Assign(bigger));
  ASSERT_EQ(array.Count(), 2u);
  EXPECT_EQ(this->ValueOf(array[1]), 2u);
}

TEST(Array, OwnedStringsMoveThroughGrowth) {
  TArray<CStringA> names;
  ASSERT_TRUE(names.SetSize(1));
  ASSERT_TRUE(names[0].Assign("a bone name well past fourteen"));
  ASSERT_TRUE(names.SetSize(100));
  EXPECT_STREQ(names[0].Text(), "a bone name well past fourteen");
}

}  // namespace
