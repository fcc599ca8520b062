#include "platform/list_entries.h"

#include <strings.h>
#include <algorithm>

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
  // Merged from the back into the list's own storage, which grows as a vector does: a fresh list
  // for every batch was most of the memory a game's opening touched.
  size_t old = entries.size();
  size_t next = batch.size();
  entries.resize(old + next);
  for (size_t at = entries.size(); next > 0; --at) {
    // A new item goes before an old one only when it sorts strictly before it.
    if (old > 0 && Before(batch[next - 1]->text, entries[old - 1].text.c_str())) {
      --old;
      if (i32(old) == selection) selection = i32(at - 1);
      entries[at - 1] = std::move(entries[old]);
    } else {
      --next;
      entries[at - 1] = ListEntry{batch[next]->text, batch[next]->data};
    }
  }
}
