#include "core/hash_map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "core/counted.h"
#include "support/allocation_failure.h"

namespace {

CStringA Owned(const char* text) {
  CStringA s;
  EXPECT_TRUE(s.Assign(text));
  return s;
}

TEST(HashMap, GrowsOnlyWhenFullWithTwiceMinusOneBuckets) {
  constexpr u32 kSteps[][3] = {{0, 0, 0}, {1, 1, 1}, {2, 3, 5}, {3, 3, 5}, {4, 7, 13}, {8, 15, 29}, {16, 31, 61}};
  THashMap<u32, u32> map;
  u32 inserted = 0;
  for (const auto& [count, capacity, buckets] : kSteps) {
    for (; inserted < count; ++inserted) ASSERT_NE(map.FindOrInsert(inserted * 7919), nullptr);
    EXPECT_EQ(map.Capacity(), capacity) << count;
    EXPECT_EQ(map.BucketCount(), buckets) << count;
  }
  for (u32 i = 0; i < inserted; ++i) EXPECT_EQ(map.KeyAt(i), i * 7919) << "insertion order";

  map.Clear();
  EXPECT_EQ(map.Find(0), map.Count());
  for (u32 i = 0; i < 31; ++i) ASSERT_NE(map.FindOrInsert(i + 1000), nullptr);
  EXPECT_EQ(map.Capacity(), 31u) << "a cleared table refills its block without growing";
}

// A table sized ahead for more entries than came ends, once shrunk, with the capacity and lookups
// of one filled entry by entry.
TEST(HashMap, SizingAheadEndsAsGrowingStepByStep) {
  const auto hashOf = [](u32, u32 key) { return key; };
  struct Case {
    u32 startWith, announced, inserted, capacity;
  };
  for (const Case c : {Case{0, 0, 0, 0}, Case{0, 100, 0, 0}, Case{0, 100, 5, 7}, Case{0, 3, 20, 31},
                       Case{3, 1000, 2, 3}, Case{3, 1000, 4, 7}, Case{0, 100000, 70000, 131071}}) {
    SCOPED_TRACE(c.announced);
    THashMap<u32, u32> map;
    for (u32 i = 0; i < c.startWith; ++i) ASSERT_NE(map.FindOrInsert(i), nullptr);
    map.Clear();
    const u32 start = map.Capacity();
    ASSERT_TRUE(map.GrowFor(c.announced, hashOf));
    for (u32 i = 0; i < c.inserted; ++i) ASSERT_NE(map.FindOrInsert(i * 7919 + 1), nullptr);
    ASSERT_TRUE(map.ShrinkToGrowthFrom(start, hashOf));
    EXPECT_EQ(map.Capacity(), c.capacity);
    for (u32 i = 0; i < c.inserted; ++i) ASSERT_EQ(map.Find(i * 7919 + 1), i);
    EXPECT_EQ(map.Find(2), map.Count());
  }
}

TEST(HashMap, StringKeysAreCaseSensitiveFormBlindAndUnique) {
  THashMap<CStringA, Counted> map;
  map.FindOrInsert(Owned("Name"))->value = 1;
  map.FindOrInsert(Owned("name"))->value = 2;
  map.FindOrInsert(Owned("a name longer than fourteen"))->value = 3;
  EXPECT_EQ(map.FindOrInsert(Owned("Name"))->value, 1u) << "a second insert finds the first";
  EXPECT_EQ(map.Count(), 3u);
  CStringA probe;
  probe.Borrow("a name longer than fourteen");
  ASSERT_LT(map.Find(probe), map.Count());
  EXPECT_EQ(map.ValueAt(map.Find(probe)).value, 3u);
  probe.Borrow("NAME");
  EXPECT_EQ(map.Find(probe), map.Count());
  map.Clear();
  EXPECT_EQ(Counted::alive, 0);
}

TEST(HashMap, EraseMovesTheLastEntryIntoTheHoleAndKeepsChains) {
  // Capacity 7 gives 13 buckets; keys equal modulo 13 share a chain.
  THashMap<u32, Counted> map;
  EXPECT_FALSE(map.Erase(1)) << "empty table";
  std::vector<u32> order = {3, 16, 29, 42, 5, 18, 7};
  for (u32 k : order) map.FindOrInsert(k)->value = k;
  ASSERT_EQ(map.BucketCount(), 13u);
  EXPECT_FALSE(map.Erase(99));
  for (u32 erased : {3u, 7u, 18u, 42u}) {
    SCOPED_TRACE(erased);
    ASSERT_TRUE(map.Erase(erased));
    // The former last entry takes the hole; erasing the last leaves the others.
    const auto at = std::find(order.begin(), order.end(), erased);
    *at = order.back();
    order.pop_back();
    std::vector<u32> values;
    for (u32 i = 0; i < map.Count(); ++i) values.push_back(map.ValueAt(i).value);
    EXPECT_EQ(values, order);
    for (u32 k : order) EXPECT_LT(map.Find(k), map.Count()) << k;
    EXPECT_EQ(map.Find(erased), map.Count());
  }
  EXPECT_EQ(Counted::alive, 3);
}

TEST(HashMap, RefusedMemoryLeavesTheTableAsItWas) {
  // A short key needs no block, so the refused allocation is the growth; a long key's copy is
  // refused before the table is touched.
  for (const char* name : {"short", "a key that needs a block"}) {
    SCOPED_TRACE(name);
    THashMap<CStringA, Counted> map;
    ASSERT_NE(map.FindOrInsert(Owned("kept")), nullptr);
    const CStringA key = Owned(name);
    {
      testsupport::ScopedAllocationFailure refuse(1);
      EXPECT_EQ(map.FindOrInsert(key), nullptr);
    }
    EXPECT_EQ(map.Count(), 1u);
    EXPECT_EQ(map.Capacity(), 1u);
    EXPECT_LT(map.Find(Owned("kept")), map.Count());
  }
}

}  // namespace
