#pragma once

#include "app/app_state.h"
#include "app/convert_actor.h"

// Writes the actor selected in the file list as an FBX file: reads its definition, model and
// palette afresh, builds the scene with its rig, every mesh, and asks `save` for the path. Each
// failure leaves one log line and no file; nothing selected, or no game, does nothing at all.
// `options` turns on what goes beyond the model itself (textures).
void Convert(AppState& app, ISaveDialog& save, IRigDialog& rigDialog, const ConvertOptions& options = {});

// Logs what a conversion has to say: a line for each texture it left out, what failed in a write
// that failed, then its failure's line.
void LogOutcome(AppState& app, const ConvertOutcome& outcome);
