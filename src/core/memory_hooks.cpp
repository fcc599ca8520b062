#include "core/memory_hooks.h"

#include <sys/mman.h>

#include <cstddef>
#include <cstdlib>

namespace {

// Blocks this large are laid on whole 2 MiB pages: a large array then costs a page fault per
// 2 MiB instead of per 4 KiB, which was a third of an export's time. Smaller blocks would lose
// too much to the rounding.
constexpr size_t kHugePage = size_t(2) << 20;
constexpr size_t kHugeFrom = 2 * kHugePage;

size_t RoundUp(size_t size, size_t alignment) { return (size + alignment - 1) / alignment * alignment; }

void* AlignedAllocateImpl(size_t size, size_t alignment) {
  if (alignment < sizeof(void*)) alignment = sizeof(void*);
  if (size >= kHugeFrom && alignment <= kHugePage) {
    const size_t rounded = RoundUp(size, kHugePage);
    if (rounded < size) return nullptr;
    void* block = std::aligned_alloc(kHugePage, rounded);
    // Only advice: where the system keeps no huge pages the block stays as it is.
    if (block) (void)madvise(block, rounded, MADV_HUGEPAGE);
    return block;
  }
  // aligned_alloc wants a size that is a multiple of the alignment.
  const size_t rounded = RoundUp(size, alignment);
  if (rounded < size) return nullptr;
  return std::aligned_alloc(alignment, rounded == 0 ? alignment : rounded);
}

void* AllocateImpl(size_t size) {
  return size >= kHugeFrom ? AlignedAllocateImpl(size, alignof(std::max_align_t)) : std::malloc(size);
}

}  // namespace

MemoryHooks gMemoryHooks = {&std::free, &AllocateImpl, &std::free, &AlignedAllocateImpl};
