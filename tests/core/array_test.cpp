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
};
using Elements = testing::Types<u32, Counted>;
TYPED_TEST_SUITE(ArrayTest, Elements);

template <class T>
u32 ValueOf(const T& element) {
  if constexpr (std::is_same_v<T, u32>) {
    return element;
  } else {
    return element.value;
  }
}

template <class T>
void Fill(TArray<T>& array, u32 n) {
  ASSERT_TRUE(array.SetSize(n));
  for (u32 i = 0; i < n; ++i) array[i] = T(i + 1);
}

TYPED_TEST(ArrayTest, ReserveIsExactAndShrinkingKeepsTheBlock) {
  TArray<TypeParam> array;
  ASSERT_TRUE(array.Reserve(10));
  EXPECT_EQ(array.Capacity(), 10u);
  Fill(array, 10);
  EXPECT_EQ(array.Capacity(), 10u);
  ASSERT_TRUE(array.SetSize(4));
  EXPECT_EQ(array.Count(), 4u);
  EXPECT_EQ(array.Capacity(), 10u);
  for (u32 i = 0; i < 4; ++i) EXPECT_EQ(ValueOf(array[i]), i + 1);
}

TYPED_TEST(ArrayTest, GrowthFollowsTheElementKind) {
  TArray<TypeParam> array;
  Fill(array, 3);
  ASSERT_TRUE(array.SetSize(10));
  // Owning elements grow to exactly n; plain ones to n + n / 2, zero-filled.
  const u32 expected = std::is_trivially_copyable_v<TypeParam> ? 15u : 10u;
  EXPECT_EQ(array.Capacity(), expected);
  for (u32 i = 0; i < 3; ++i) EXPECT_EQ(ValueOf(array[i]), i + 1) << "kept through growth";
  for (u32 i = 3; i < 10; ++i) EXPECT_EQ(ValueOf(array[i]), 0u);
}

TYPED_TEST(ArrayTest, AssignCopiesAndAnEmptySourceKeepsTheBlock) {
  TArray<TypeParam> source;
  Fill(source, 5);
  TArray<TypeParam> target;
  Fill(target, 8);
  ASSERT_TRUE(target.Assign(source));
  ASSERT_EQ(target.Count(), 5u);
  for (u32 i = 0; i < 5; ++i) EXPECT_EQ(ValueOf(target[i]), i + 1);

  TArray<TypeParam> empty;
  const u32 capacity = target.Capacity();
  ASSERT_TRUE(target.Assign(empty));
  EXPECT_EQ(target.Count(), 0u);
  EXPECT_EQ(target.Capacity(), capacity);
}

TYPED_TEST(ArrayTest, RefusedMemoryLeavesTheArrayWhole) {
  TArray<TypeParam> array;
  Fill(array, 2);
  TArray<TypeParam> bigger;
  Fill(bigger, 20);
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(array.Reserve(50));
  EXPECT_FALSE(array.SetSize(50));
  EXPECT_FALSE(array.Assign(bigger));
  ASSERT_EQ(array.Count(), 2u);
  EXPECT_EQ(ValueOf(array[1]), 2u);
}

TEST(Array, OwnedStringsMoveThroughGrowth) {
  TArray<CStringA> names;
  ASSERT_TRUE(names.SetSize(1));
  ASSERT_TRUE(names[0].Assign("a bone name well past fourteen"));
  ASSERT_TRUE(names.SetSize(100));
  EXPECT_STREQ(names[0].Text(), "a bone name well past fourteen");
  EXPECT_STREQ(names[99].Text(), "");
}

}  // namespace
