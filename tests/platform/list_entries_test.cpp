#include "platform/list_entries.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

ListEntries Entries(const std::vector<std::string>& texts) {
  ListEntries entries;
  for (const std::string& text : texts) entries.push_back({text, std::intptr_t(entries.size() + 100)});
  return entries;
}

// A batch lands where adding its items one by one would put them, with their data.
TEST(MergeSorted, MatchesAddingOneByOne) {
  struct Case {
    std::vector<std::string> before;
    std::vector<const char*> batch;
    size_t limit;
    i32 selection;
    std::vector<std::string> after;
    i32 selectionAfter;
  };
  const Case cases[] = {
      {{}, {"b", "a", "c"}, 100, kListError, {"a", "b", "c"}, kListError},
      // Equal texts, ignoring case: the old item first, then the batch's in their order.
      {{"B"}, {"b", "a", "B"}, 100, 0, {"a", "B", "b", "B"}, 1},
      {{"a", "c"}, {"b", "d"}, 100, 1, {"a", "b", "c", "d"}, 2},
      // Only as many as the limit leaves room for, taken in the batch's order.
      {{"m"}, {"z", "a", "b"}, 3, 0, {"a", "m", "z"}, 1},
      {{"m"}, {"a"}, 1, 0, {"m"}, 0},
      // Old items before the first new one stay where they are.
      {{"a", "c"}, {"d", "b"}, 100, 0, {"a", "b", "c", "d"}, 0},
  };
  for (const Case& c : cases) {
    ListEntries entries = Entries(c.before);
    std::vector<ListItem> items;
    for (const char* text : c.batch) items.push_back({text, std::intptr_t(text[0])});
    i32 selection = c.selection;
    MergeSorted(entries, items.data(), u32(items.size()), c.limit, selection);
    std::vector<std::string> texts;
    for (const ListEntry& entry : entries) {
      texts.push_back(entry.text);
      // Old items keep their data, new ones bring theirs.
      if (entry.data < 100) {
        EXPECT_EQ(entry.data, std::intptr_t(entry.text[0])) << entry.text;
      }
    }
    EXPECT_EQ(texts, c.after);
    EXPECT_EQ(selection, c.selectionAfter);
  }
}

}  // namespace
