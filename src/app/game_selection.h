#pragma once

#include "app/app_state.h"
#include "app/game_search.h"

// Binds the application to its window and finds the installed games from the digest files where
// `search` says, logging each, filling the game list, and opening the first one found; when none
// is found, logs where it looked and how else to open a game. With a `gameDir` it opens that
// folder instead, as "Open folder..." does.
void InitMainDialog(AppState& app, IWindowSystem& window, const GameSearch& search);
// The same with the digest files under `userFolder` alone (null: the platform's per-user folder).
void InitMainDialog(AppState& app, IWindowSystem& window, const char* userFolder);

// Main thread: empties the three tables and the file list, and starts the load worker for `row`.
// A row past the known games and the folders opened does nothing.
void SelectGame(AppState& app, u32 row);

// Load worker: opens the game's packs and catalogue, then fills the file list and the rig table.
void LoadGame(AppState& app, u32 row);

// Applies the game chosen in the game list, unless it is the one loaded.
void OnGameButton(AppState& app);
