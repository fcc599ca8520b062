#pragma once

#include "app/app_state.h"

// The search box's pattern for `text`: every name that holds it, "*text*". False when it doesn't
// fit `pattern`.
bool SearchPattern(const char* text, CStringBufferA& pattern);

// Main thread: the search text to the list. Empty: the whole list again, without a log line;
// otherwise "*text*" as a wildcard pattern over the names, after logging the text.
void SearchRequest(AppState& app);

// Main thread: "All files" turned on or off. The list is filled again as the search box would fill
// it, without a log line. False, with nothing changed, while a worker runs.
bool OnAllFilesCheck(AppState& app, bool on);

// Workers: walks over the pack table. The list walk lists every actor definition (.adr), or every
// file with `app.allFiles`; the search walk those whose whole name matches `filter`; the load walk
// lists them and reads every rig network (.mrn) into the rig table under its base name.
void ListWalk(AppState& app);
void SearchWalk(AppState& app, const char* filter);
void LoadWalk(AppState& app);

// The text of the file list's selected item; false without a game, a selection or the text.
[[nodiscard]] bool GetSelectedName(AppState& app, CStringBufferA& text);

// The pack entry of the file list's selected item; null without a game or a selection.
const PackEntry* SelectedEntry(AppState& app);

// Shows the selected actor in the preview and its textures in the info panel; with `app.allFiles`
// any other file as ShowPackFile shows it.
void OnFileSelected(AppState& app);
