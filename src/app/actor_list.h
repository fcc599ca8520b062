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

// The listed actor called `name`, ignoring case as the list's order does; null when none is.
const ListedEntry* FindListedEntry(const std::vector<ListedEntry>& actors, const std::string& name);
