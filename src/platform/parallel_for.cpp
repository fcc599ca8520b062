#include "platform/parallel_for.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>

namespace {

constexpr u32 kMaxWorkers = 16;

// Set on the threads of a ParallelFor while they run items: work split again inside an item runs
// on the thread that has it, since the outer split already keeps every processor busy.
thread_local bool insideParallelFor = false;

struct Shared {
  void (*body)(void*, u32, u32);
  void* context;
  u32 count;
  std::atomic<u32> next{0};
};

struct Worker {
  Shared* shared;
  u32 index;
};

void Drain(Shared& shared, u32 worker) {
  for (u32 item = shared.next.fetch_add(1); item < shared.count; item = shared.next.fetch_add(1)) {
    shared.body(shared.context, worker, item);
  }
}

void* ThreadMain(void* argument) {
  const Worker* worker = static_cast<Worker*>(argument);
  insideParallelFor = true;
  Drain(*worker->shared, worker->index);
  return nullptr;
}

}  // namespace

void ParallelFor(u32 count, u32 maxWorkers, void (*body)(void*, u32, u32), void* context) {
  Shared shared{body, context, count};
  if (insideParallelFor) {
    Drain(shared, 0);
    return;
  }
  const u32 wanted = maxWorkers < 1 ? 1 : (maxWorkers > kMaxWorkers ? kMaxWorkers : maxWorkers);
  const u32 extra = (count < wanted ? count : wanted) - (count ? 1 : 0);
  pthread_t threads[kMaxWorkers];
  Worker workers[kMaxWorkers];
  u32 started = 0;
  for (u32 i = 0; i < extra; ++i) {
    workers[started] = {&shared, started + 1};
    if (pthread_create(&threads[started], nullptr, ThreadMain, &workers[started]) != 0) break;
    ++started;
  }
  // Alone, the caller leaves the processors to the work that its items split again.
  insideParallelFor = started > 0;
  Drain(shared, 0);
  insideParallelFor = false;
  for (u32 i = 0; i < started; ++i) pthread_join(threads[i], nullptr);
}

bool InsideParallelFor() { return insideParallelFor; }

u32 ProcessorCount() {
  const long n = sysconf(_SC_NPROCESSORS_ONLN);
  return n < 1 ? 1 : (n > long(kMaxWorkers) ? kMaxWorkers : u32(n));
}
