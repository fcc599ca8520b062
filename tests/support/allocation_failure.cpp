#include "support/allocation_failure.h"

#include <atomic>
#include <cstdlib>
#include <new>

#include "core/memory_hooks.h"

namespace testsupport {

namespace {

// Atomic: code under test may allocate on several threads.
MemoryHooks gSaved;
std::atomic<u64> gFailAt = 0;
std::atomic<u64> gAttempts = 0;
std::atomic<i64> gLive = 0;
std::atomic<bool> gOperatorNew = false;

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

// A block for operator new, or null when the sweep refuses it.
void* NewBlock(size_t size, size_t alignment) {
  if (gOperatorNew && Refuse()) return nullptr;
  if (size == 0) size = 1;
  if (alignment <= alignof(std::max_align_t)) return std::malloc(size);
  return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void* NewOrThrow(size_t size, size_t alignment) {
  void* block = NewBlock(size, alignment);
  if (!block) throw std::bad_alloc();
  return block;
}

ScopedAllocationFailure::ScopedAllocationFailure(u64 n, bool operatorNew) : failAt(n) {
  gSaved = gMemoryHooks;
  gFailAt = n;
  gAttempts = 0;
  gLive = 0;
  gOperatorNew = operatorNew;
  gMemoryHooks = {&CountingFree, &CountingAllocate, &CountingAlignedFree, &CountingAlignedAllocate};
}

ScopedAllocationFailure::~ScopedAllocationFailure() {
  gMemoryHooks = gSaved;
  gOperatorNew = false;
}

u64 ScopedAllocationFailure::Attempts() const { return gAttempts; }
i64 ScopedAllocationFailure::Live() const { return gLive; }

}  // namespace testsupport

// The test programs' operator new, so that a sweep reaches the standard containers. Every form
// takes its block from malloc, which the sanitizers watch, and gives it back with free.
void* operator new(size_t size) { return testsupport::NewOrThrow(size, 0); }
void* operator new[](size_t size) { return testsupport::NewOrThrow(size, 0); }
void* operator new(size_t size, std::align_val_t alignment) { return testsupport::NewOrThrow(size, size_t(alignment)); }
void* operator new[](size_t size, std::align_val_t alignment) {
  return testsupport::NewOrThrow(size, size_t(alignment));
}
void* operator new(size_t size, const std::nothrow_t&) noexcept { return testsupport::NewBlock(size, 0); }
void* operator new[](size_t size, const std::nothrow_t&) noexcept { return testsupport::NewBlock(size, 0); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }
void operator delete[](void* block, size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, size_t, std::align_val_t) noexcept { std::free(block); }
