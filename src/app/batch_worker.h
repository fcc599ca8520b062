#pragma once

#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/batch_convert.h"
#include "app/convert_questions.h"

// The window's Convert button. With one actor selected (or none) it is Convert, exactly. With
// several it asks `folder` for a folder and converts them below it on the convert worker, the
// progress bar counting them and Cancel stopping them.
void OnConvertButton(AppState& app, ISaveDialog& save, IRigDialog& rig, IFolderDialog& folder);

// Stops the running batch: the conversions under way end whole, no other starts.
void OnCancelButton(AppState& app);

// Convert worker: converts `actors` below `outDir` on every processor, logs a line for each actor
// that fails or is skipped and one summary line at the end.
void ConvertBatch(AppState& app, const std::vector<BatchActor>& actors, const std::string& outDir);
