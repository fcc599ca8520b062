#include "platform/list_entries.h"

#include <algorithm>
#include <strings.h>

namespace {

bool Before(const char* a, const char* b) { return strcasecmp(a, b) < 0; }

}  // namespace

size_t SortedPosition(const ListEntries& entries, const char* text) {
  const auto at = std::upper_bound(entries.begin(), entries.end(), text,
                                   [](const char* t, const ListEntry& entry) { return Before(t, entry.text.c_str()); });
  return size_t(at - entries.begin());
}

void MergeSorted(ListEntries& entries, const ListItem* items, u32 count, size_t limit, i32& selection) {
  const size_t room = entries.size() < limit ? limit - entries.size() : 0;
  std::vector<const ListItem*> batch;
  batch.reserve(std::min<size_t>(count, room));
  for (u32 i = 0; i < count && batch.size() < room; ++i) batch.push_back(&items[i]);
  // Stable, so that equal items of the batch keep the order they came in.
  std::stable_sort(batch.begin(), batch.end(),
                   [](const ListItem* a, const ListItem* b) { return Before(a->text, b->text); });
  ListEntries merged;
  merged.reserve(entries.size() + batch.size());
  size_t next = 0;
  i32 movedSelection = kListError;
  for (size_t i = 0; i <= entries.size(); ++i) {
    // A new item goes before an old one only when it sorts strictly before it.
    while (next < batch.size() && (i == entries.size() || Before(batch[next]->text, entries[i].text.c_str()))) {
      merged.push_back(ListEntry{batch[next]->text, batch[next]->data});
      ++next;
    }
    if (i == entries.size()) break;
    if (i32(i) == selection) movedSelection = i32(merged.size());
    merged.push_back(std::move(entries[i]));
  }
  entries = std::move(merged);
  selection = movedSelection;
}
