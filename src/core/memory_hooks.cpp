#include "core/memory_hooks.h"

#include <cstdlib>

namespace {

void* AlignedAllocateImpl(size_t size, size_t alignment) {
  if (alignment < sizeof(void*)) alignment = sizeof(void*);
  // aligned_alloc wants a size that is a multiple of the alignment.
  const size_t rounded = (size + alignment - 1) / alignment * alignment;
  if (rounded < size) return nullptr;
  return std::aligned_alloc(alignment, rounded == 0 ? alignment : rounded);
}

}  // namespace

MemoryHooks gMemoryHooks = {&std::free, &std::malloc, &std::free, &AlignedAllocateImpl};
