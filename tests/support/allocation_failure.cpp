#include "support/allocation_failure.h"

#include <atomic>

#include "core/memory_hooks.h"

namespace testsupport {

namespace {

// Atomic: code under test may allocate on several threads.
MemoryHooks gSaved;
std::atomic<u64> gFailAt = 0;
std::atomic<u64> gAttempts = 0;
std::atomic<i64> gLive = 0;

bool Refuse() { return ++gAttempts >= gFailAt && gFailAt != 0; }

void* CountingAllocate(size_t size) {
  if (Refuse()) return nullptr;
  void* block = gSaved.Allocate(size);
  if (block) ++gLive;
  return block;
}

void* CountingAlignedAllocate(size_t size, size_t alignment) {
  if (Refuse()) return nullptr;
  void* block = gSaved.AlignedAllocate(size, alignment);
  if (block) ++gLive;
  return block;
}

void CountingFree(void* block) {
  if (block) --gLive;
  gSaved.Free(block);
}

void CountingAlignedFree(void* block) {
  if (block) --gLive;
  gSaved.AlignedFree(block);
}

}  // namespace

ScopedAllocationFailure::ScopedAllocationFailure(u64 n) : failAt(n) {
  gSaved = gMemoryHooks;
  gFailAt = n;
  gAttempts = 0;
  gLive = 0;
  gMemoryHooks = {&CountingFree, &CountingAllocate, &CountingAlignedFree, &CountingAlignedAllocate};
}

ScopedAllocationFailure::~ScopedAllocationFailure() { gMemoryHooks = gSaved; }

u64 ScopedAllocationFailure::Attempts() const { return gAttempts; }
i64 ScopedAllocationFailure::Live() const { return gLive; }

}  // namespace testsupport
