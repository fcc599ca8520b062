#pragma once

#include "core/types.h"

// Runs `body(worker, item)` for every item in [0, count) on up to `maxWorkers` threads, the caller's
// among them; `worker` is below `maxWorkers` and no two threads share one at a time. Items are
// handed out one by one, so their order of completion is free. When a thread can't be started, the
// threads that did start (the caller's at least) do all the work. Called from inside an item of
// another ParallelFor, it runs every item on the calling thread.
void ParallelFor(u32 count, u32 maxWorkers, void (*body)(void* context, u32 worker, u32 item), void* context);

template <class Body>
void ParallelFor(u32 count, u32 maxWorkers, Body& body) {
  ParallelFor(
      count, maxWorkers, [](void* context, u32 worker, u32 item) { (*static_cast<Body*>(context))(worker, item); },
      &body);
}

// Whether the calling thread runs an item of a ParallelFor, where a nested one has no threads.
bool InsideParallelFor();

// Threads worth starting for work that splits evenly: the processors available, at least 1.
u32 ProcessorCount();
