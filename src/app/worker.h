#pragma once

#include "app/app_state.h"
#include "app/batch_convert.h"

enum class WorkerKind { Load, List, Search, Convert, Extract };

// Starts the worker of `kind` on its own thread and returns at once: the load worker for `row`,
// the list and search workers with `filter` (empty for the list). False, with nothing started,
// while another worker runs: a second request in the moment before the first has disabled the
// controls is refused here.
bool StartWorker(AppState& app, WorkerKind kind, u32 row, const char* filter);

// Starts the convert worker on `actors`, written below `outDir` in `format` (with their textures
// when `textures`); false as StartWorker.
bool StartBatchWorker(AppState& app, std::vector<BatchActor> actors, std::string outDir, ExportFormat format,
                      bool textures);

// Starts the convert worker taking `files` out of the packs below `outDir`, as stored or as PNG where
// `asPng` says (see ExtractBatch); false as StartWorker.
bool StartExtractWorker(AppState& app, std::vector<BatchActor> files, std::vector<bool> asPng, std::string outDir);

// Main thread: serves the worker's window calls until it has ended.
void WaitForWorker(AppState& app);

// Main thread: whether a request of the user may act. Not before the window is bound (discovery
// found no per-user folder), and not while a worker runs, including the moment in which it is
// enabling the controls again: a request is carried out whole or refused with nothing changed.
bool Idle(const AppState& app);
