#pragma once

#include "app/app_state.h"
#include "app/convert_questions.h"

// Main thread, no worker running: lists the installation folder `folder` as a game named after the
// folder, selects it and opens it. A folder listed before is selected again. A folder without
// Resources/Assets/assets_000.pack is not a game: one log line says so and nothing else changes.
void OpenGameFolder(AppState& app, const char* folder);

// "Open folder...": asks for an installation folder and opens it as above. A cancel does nothing.
void OnOpenFolderButton(AppState& app, IFolderDialog& dialog);
