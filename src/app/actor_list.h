#pragma once

#include <string>
#include <vector>

#include "app/app_state.h"

// An actor of the file list: its name as the list shows it and its pack entry.
struct ListedEntry {
  std::string name;
  const PackEntry* entry = nullptr;
};

// The items `indices` of the file list, in that order; an item without an entry or a text is
// passed over.
std::vector<ListedEntry> ListedEntries(AppState& app, const std::vector<i32>& indices);
// Every item of the file list, in the list's order.
std::vector<ListedEntry> ListedEntries(AppState& app);

// The entries whose names any of `patterns` matches whole (the search's wildcards), each once, in
// their order; `unmatched` gets the patterns that match none.
std::vector<ListedEntry> MatchingEntries(const std::vector<ListedEntry>& entries,
                                         const std::vector<std::string>& patterns, std::vector<std::string>& unmatched);

// The listed actor called `name`, ignoring case as the list's order does; null when none is.
const ListedEntry* FindListedEntry(const std::vector<ListedEntry>& actors, const std::string& name);
