#pragma once

#include "app/app_state.h"

enum class WorkerKind { Load, List, Search };

// Starts the worker of `kind` on its own thread and returns at once: the load worker for `row`,
// the list and search workers with `filter` (empty for the list). False, with nothing started,
// while another worker runs: a second request in the moment before the first has disabled the
// controls is refused here.
bool StartWorker(AppState& app, WorkerKind kind, u32 row, const char* filter);

// Main thread: serves the worker's window calls until it has ended.
void WaitForWorker(AppState& app);
