#include "core/hash_map.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/counted.h"
#include "support/allocation_failure.h"

namespace {

CStringA Owned(const char* text) {
  CStringA s;
  EXPECT_TRUE(s.Assign(text));
  return s;
}

template <class K, class V>
std::vector<u32> ValuesInOrder(const THashMap<K, V>& map) {
  std::vector<u32> out;
  for (u32 i = 0; i < map.Count(); ++i) out.push_back(map.ValueAt(i).value);
  return out;
}

TEST(HashMap, GrowsOnlyWhenFullWithTwiceMinusOneBuckets) {
  struct Step {
    u32 inserted;
    u32 capacity;
    u32 buckets;
  };
  constexpr Step kSteps[] = {{0, 0, 0}, {1, 1, 1}, {2, 3, 5}, {3, 3, 5}, {4, 7, 13}, {8, 15, 29}, {16, 31, 61}};
  THashMap<u32, u32> map;
  u32 inserted = 0;
  for (const Step& step : kSteps) {
    for (; inserted < step.inserted; ++inserted) ASSERT_NE(map.FindOrInsert(inserted * 7919), nullptr);
    EXPECT_EQ(map.Capacity(), step.capacity) << step.inserted;
    EXPECT_EQ(map.BucketCount(), step.buckets) << step.inserted;
  }
  for (u32 i = 0; i < inserted; ++i) EXPECT_EQ(map.KeyAt(i), i * 7919) << "insertion order";
}

TEST(HashMap, ClearKeepsCapacityAndRefills) {
  THashMap<CStringA, Counted> map;
  for (const char* name : {"a", "b", "c", "d"}) ASSERT_NE(map.FindOrInsert(Owned(name)), nullptr);
  ASSERT_EQ(map.Capacity(), 7u);
  map.Clear();
  EXPECT_EQ(map.Count(), 0u);
  EXPECT_EQ(map.Capacity(), 7u);
  EXPECT_EQ(Counted::alive, 0);
  EXPECT_EQ(map.Find(Owned("a")), map.Count());
  for (const char* name : {"e", "f", "g", "h", "i", "j", "k"}) ASSERT_NE(map.FindOrInsert(Owned(name)), nullptr);
  EXPECT_EQ(map.Capacity(), 7u) << "refill up to the old capacity without growth";
  map.Release();
  EXPECT_EQ(map.Capacity(), 0u);
  EXPECT_EQ(Counted::alive, 0);
}

TEST(HashMap, SecondInsertOfAKeyFindsTheFirst) {
  THashMap<CStringA, Counted> map;
  map.FindOrInsert(Owned("first"))->value = 1;
  map.FindOrInsert(Owned("second"))->value = 2;
  Counted* again = map.FindOrInsert(Owned("first"));
  EXPECT_EQ(again->value, 1u);
  EXPECT_EQ(map.Count(), 2u);
  EXPECT_STREQ(map.KeyAt(0).Text(), "first");
}

TEST(HashMap, StringKeysAreCaseSensitiveAndFormBlind) {
  THashMap<CStringA, Counted> map;
  map.FindOrInsert(Owned("Name"))->value = 1;
  map.FindOrInsert(Owned("name"))->value = 2;
  map.FindOrInsert(Owned("a name longer than fourteen"))->value = 3;
  EXPECT_EQ(map.Count(), 3u);
  CStringA probe;
  probe.Borrow("a name longer than fourteen");
  ASSERT_LT(map.Find(probe), map.Count());
  EXPECT_EQ(map.ValueAt(map.Find(probe)).value, 3u);
  probe.Borrow("NAME");
  EXPECT_EQ(map.Find(probe), map.Count());
}

TEST(HashMap, EraseMovesTheLastEntryIntoTheHole) {
  THashMap<u32, Counted> map;
  EXPECT_FALSE(map.Erase(1)) << "empty table";
  for (u32 k : {10u, 20u, 30u}) map.FindOrInsert(k)->value = k;
  EXPECT_FALSE(map.Erase(99));
  EXPECT_EQ(ValuesInOrder(map), (std::vector<u32>{10, 20, 30}));

  EXPECT_TRUE(map.Erase(10));
  EXPECT_EQ(ValuesInOrder(map), (std::vector<u32>{30, 20}));
  EXPECT_TRUE(map.Erase(20));
  EXPECT_EQ(ValuesInOrder(map), (std::vector<u32>{30})) << "erasing the last keeps the others";
  EXPECT_EQ(Counted::alive, 1);
}

TEST(HashMap, EraseKeepsSharedChainsReachable) {
  // Capacity 7 gives 13 buckets: keys equal modulo 13 share a chain.
  THashMap<u32, Counted> map;
  std::vector<u32> remaining = {3, 16, 29, 42, 5, 18, 7};
  for (u32 k : remaining) map.FindOrInsert(k)->value = k;
  ASSERT_EQ(map.BucketCount(), 13u);
  for (u32 erased : {16u, 3u, 18u, 42u}) {
    SCOPED_TRACE(erased);
    ASSERT_TRUE(map.Erase(erased));
    std::erase(remaining, erased);
    EXPECT_EQ(map.Find(erased), map.Count());
    for (u32 k : remaining) {
      const u32 at = map.Find(k);
      ASSERT_LT(at, map.Count()) << k;
      EXPECT_EQ(map.ValueAt(at).value, k);
    }
  }
}

TEST(HashMap, OwnedKeysSurviveRehashAndErase) {
  THashMap<CStringA, Counted> map;
  std::vector<std::string> names;
  for (int i = 0; i < 40; ++i) names.push_back("a rather long key number " + std::to_string(i));
  for (const std::string& n : names) ASSERT_NE(map.FindOrInsert(Owned(n.c_str())), nullptr);
  for (int i = 0; i < 40; i += 3) ASSERT_TRUE(map.Erase(Owned(names[i].c_str())));
  for (int i = 0; i < 40; ++i) {
    EXPECT_EQ(map.Find(Owned(names[i].c_str())) < map.Count(), i % 3 != 0) << names[i];
  }
}

TEST(HashMap, RefusedGrowthLeavesTheTableAsItWas) {
  // A short key needs no block of its own, so the refused allocation is the table's growth; a long
  // key's copy is refused before the table is touched.
  for (const char* name : {"short", "a key that needs a block"}) {
    SCOPED_TRACE(name);
    THashMap<CStringA, Counted> map;
    ASSERT_NE(map.FindOrInsert(Owned("kept")), nullptr);
    const CStringA key = Owned(name);
    {
      testsupport::ScopedAllocationFailure refuse(1);
      EXPECT_EQ(map.FindOrInsert(key), nullptr);
      EXPECT_TRUE(refuse.Failed());
    }
    EXPECT_EQ(map.Count(), 1u);
    EXPECT_EQ(map.Capacity(), 1u);
    EXPECT_LT(map.Find(Owned("kept")), map.Count());
  }
}

}  // namespace
