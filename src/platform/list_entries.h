#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/window_system.h"

// The items of a list control as both window systems keep them.
struct ListEntry {
  std::string text;
  std::intptr_t data = 0;
};
using ListEntries = std::vector<ListEntry>;

// Where a sorting list puts `text`: after every item equal to it, ignoring case.
size_t SortedPosition(const ListEntries& entries, const char* text);

// Adds `count` items to a sorting list with the order and indices that adding them one by one
// would give, in one pass over the list. Items past `limit` entries are dropped, and `selection`
// (an index or kListError) follows its item.
void MergeSorted(ListEntries& entries, const ListItem* items, u32 count, size_t limit, i32& selection);
