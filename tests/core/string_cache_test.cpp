#include "core/string_cache.h"

#include <gtest/gtest.h>

#include <vector>

#include "core/string_table.h"
#include "support/allocation_failure.h"

namespace {

TEST(StringCache, RecycledRecordsComeBackWithTheirTextAndPoolsGrowBySlabs) {
  CStringCache& cache = CStringCache::Instance();
  TRefStr* record = cache.Acquire();
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->RefCount(), 2) << "one for the cache, one for the holder";
  // Long enough for a block of its own: a spare that keeps it must not leak at exit.
  ASSERT_TRUE(record->Assign("an old text long enough for a block"));
  cache.Recycle(record);
  TRefStr* again = cache.Acquire();
  EXPECT_EQ(again, record);
  EXPECT_STREQ(again->Text(), "an old text long enough for a block");
  EXPECT_EQ(again->RefCount(), 2);
  cache.Recycle(again);

  using Pool = TAutoPoolClass<TRefStr, 64>;
  const u32 slabs = Pool::SlabCount();
  std::vector<TRefStr*> held;
  for (int i = 0; i < 65 + int(cache.SpareCount()); ++i) held.push_back(cache.Acquire());
  EXPECT_GT(Pool::SlabCount(), slabs) << "the 65th record needs a new slab";
  for (TRefStr* r : held) cache.Recycle(r);
}

TEST(StringTable, StoresCopiesAndSurvivesItsOwnGrowth) {
  CStringTable table;
  XMLTextHandle empty;
  EXPECT_EQ(table.Store(empty, ""), XMLTextHandle::kEmptySlot);
  EXPECT_EQ(table.SlotCount(), 0u);
  EXPECT_STREQ(GetText(empty), "");
  XMLTextHandle a;
  XMLTextHandle b;
  EXPECT_EQ(table.Store(a, "same"), 0);
  EXPECT_EQ(table.Store(b, "same"), 1) << "no interning";
  // A text taken from the table itself, stored while the store must grow past one granule.
  const std::string big(CStringTable::kGranule, 'x');
  XMLTextHandle large;
  table.Store(large, big.c_str());
  XMLTextHandle copy;
  table.Store(copy, GetText(a));
  EXPECT_STREQ(GetText(copy), "same");
  EXPECT_EQ(GetText(large), big);

  testsupport::ScopedAllocationFailure refuse(1);
  XMLTextHandle failed;
  EXPECT_EQ(table.Store(failed, big.c_str()), XMLTextHandle::kNoSlot);
  EXPECT_STREQ(GetText(failed), "");
  XMLTextHandle after;
  EXPECT_NE(table.Store(after, "x"), XMLTextHandle::kNoSlot) << "the lock was left free";
}

}  // namespace
