#pragma once

#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/batch_convert.h"
#include "app/convert_questions.h"

// The window's Convert button. With one actor selected (or none) it is Convert, exactly. With
// several it asks `folder` for a folder and a format and converts them below it on the convert
// worker, the progress bar counting them and Cancel stopping them.
// `options` as Convert takes them; a batch takes their textures.
void OnConvertButton(AppState& app, ISaveDialog& save, IRigDialog& rig, IFolderDialog& folder,
                     const ConvertOptions& options = {});

// The window's Convert with "All files" on: asks `folder` for a folder and takes the selected files
// out of the packs below it on the convert worker, images as PNG as `extract --images png` writes
// them, the progress bar counting them and Cancel stopping them.
void OnExtractButton(AppState& app, IFolderDialog& folder);

// Stops the running batch: the conversions under way end whole, no other starts.
void OnCancelButton(AppState& app);

// Convert worker: converts `actors` below `outDir` in `format` on every processor, logs a line for
// each actor that fails or is skipped and one summary line at the end.
// With `textures`, each actor's textures go with its file, each decoded once for the batch.
void ConvertBatch(AppState& app, const std::vector<BatchActor>& actors, const std::string& outDir, ExportFormat format,
                  bool textures);

// Convert worker: writes `files` below `outDir` (see RunExtract) on every processor, logs a line for
// each file that fails or is skipped and one summary line at the end.
void ExtractFilesBatch(AppState& app, const std::vector<BatchActor>& files, const std::vector<bool>& asPng,
                       const std::string& outDir);
