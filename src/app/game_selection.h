#pragma once

#include "app/app_state.h"

// Binds the application to its window and finds the installed games from the digest files under
// `userFolder` (the per-user data folder; null asks the platform), logging each, filling the game
// list, and opening the first one found.
void InitMainDialog(AppState& app, IWindowSystem& window, const char* userFolder);

// Main thread: empties the three tables and the file list, and starts the load worker for `row`.
// A row of 8 or more does nothing.
void SelectGame(AppState& app, u32 row);

// Load worker: opens the game's packs and catalogue, then fills the file list and the rig table.
void LoadGame(AppState& app, u32 row);

// Applies the game chosen in the game list, unless it is the one loaded.
void OnGameButton(AppState& app);
