#include "assets/name_store.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/allocation_failure.h"

namespace {

// Every name keeps its bytes and its place while later ones fill blocks, including a name longer
// than a block and an empty one; names may hold a NUL of their own.
TEST(NameStore, NamesStayWhereTheyWereStored) {
  std::vector<std::string> names = {"", "a", std::string(5, '\0') + "x", std::string((1 << 20) + 3, 'L')};
  for (int i = 0; i < 40000; ++i) names.push_back("actors\\group\\name_" + std::to_string(i));
  names.push_back(std::string(1 << 20, 'M'));
  NameStore store;
  std::vector<const char*> stored;
  for (const std::string& name : names) {
    stored.push_back(store.Add(reinterpret_cast<const u8*>(name.data()), u32(name.size())));
    ASSERT_NE(stored.back(), nullptr);
  }
  for (size_t i = 0; i < names.size(); ++i) {
    ASSERT_EQ(std::string(stored[i], names[i].size()), names[i]) << i;
    ASSERT_EQ(stored[i][names[i].size()], '\0') << i;
  }
  store.Clear();
  EXPECT_NE(store.Add(reinterpret_cast<const u8*>("again"), 5), nullptr);
}

TEST(NameStore, RefusedMemoryGivesNull) {
  for (u32 failAt = 1; failAt <= 2; ++failAt) {
    NameStore store;
    testsupport::ScopedAllocationFailure failure(failAt);
    EXPECT_EQ(store.Add(reinterpret_cast<const u8*>("name"), 4), nullptr) << failAt;
  }
}

}  // namespace
