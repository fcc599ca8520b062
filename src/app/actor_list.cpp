#include "app/actor_list.h"

#include <strings.h>

#include "assets/wildcard_match.h"

std::vector<ListedEntry> ListedEntries(AppState& app, const std::vector<i32>& indices) {
  std::vector<ListedEntry> actors;
  actors.reserve(indices.size());
  for (i32 index : indices) {
    const std::intptr_t data = app.window->GetItemData(kFileList, index);
    const i32 length = app.window->GetTextLength(kFileList, index);
    if (data == kListError || data == 0 || length < 0) continue;
    std::string name(size_t(length), '\0');
    if (app.window->GetText(kFileList, index, name.data()) < 0) continue;
    // The list's item data is the entry it was given: the one place that turns it back.
    actors.push_back({std::move(name), reinterpret_cast<const PackEntry*>(data)});
  }
  return actors;
}

std::vector<ListedEntry> ListedEntries(AppState& app) {
  const i32 count = app.window->GetCount(kFileList);
  std::vector<i32> all(size_t(count > 0 ? count : 0));
  for (i32 i = 0; i < count; ++i) all[size_t(i)] = i;
  return ListedEntries(app, all);
}

std::vector<ListedEntry> MatchingEntries(const std::vector<ListedEntry>& entries,
                                         const std::vector<std::string>& patterns,
                                         std::vector<std::string>& unmatched) {
  std::vector<bool> chosen(entries.size(), false);
  for (const std::string& pattern : patterns) {
    bool any = false;
    for (size_t i = 0; i < entries.size(); ++i) {
      if (WildcardMatch(entries[i].name.c_str(), pattern.c_str())) chosen[i] = any = true;
    }
    if (!any) unmatched.push_back(pattern);
  }
  std::vector<ListedEntry> matching;
  for (size_t i = 0; i < entries.size(); ++i) {
    if (chosen[i]) matching.push_back(entries[i]);
  }
  return matching;
}

const ListedEntry* FindListedEntry(const std::vector<ListedEntry>& actors, const std::string& name) {
  for (const ListedEntry& actor : actors) {
    if (strcasecmp(actor.name.c_str(), name.c_str()) == 0) return &actor;
  }
  return nullptr;
}
