#include "core/memory_hooks.h"

#include <cstdlib>

#include "core/block_arena.h"

namespace {

#if defined(__SANITIZE_ADDRESS__)
#define TARNWICK_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARNWICK_ADDRESS_SANITIZER 1
#endif
#endif

// Blocks this large come from the arena, which keeps freed memory on huge pages for the next
// block; smaller ones are malloc's. The address sanitizer only watches what malloc gives, so
// under it every block is malloc's.
#ifdef TARNWICK_ADDRESS_SANITIZER
constexpr size_t kArenaFrom = SIZE_MAX;
#else
constexpr size_t kArenaFrom = size_t(64) << 10;
#endif
// Address space only: memory is taken from it as blocks are made.
constexpr size_t kArenaReserve = size_t(64) << 30;

// Never destroyed: objects that outlive main may still free their blocks.
union GlobalArena {
  CBlockArena arena;
  constexpr GlobalArena() : arena(kArenaReserve) {}
  ~GlobalArena() {}
};
constinit GlobalArena gArena;

size_t RoundUp(size_t size, size_t alignment) { return (size + alignment - 1) / alignment * alignment; }

void* AlignedAllocateImpl(size_t size, size_t alignment) {
  if (alignment < sizeof(void*)) alignment = sizeof(void*);
  if (size >= kArenaFrom && alignment <= CBlockArena::kAlignment) {
    if (void* block = gArena.arena.Allocate(size)) return block;
  }
  // aligned_alloc wants a size that is a multiple of the alignment.
  const size_t rounded = RoundUp(size, alignment);
  if (rounded < size) return nullptr;
  return std::aligned_alloc(alignment, rounded == 0 ? alignment : rounded);
}

void* AllocateImpl(size_t size) {
  if (size >= kArenaFrom) {
    if (void* block = gArena.arena.Allocate(size)) return block;
  }
  return std::malloc(size);
}

void FreeImpl(void* block) {
  if (gArena.arena.Owns(block)) {
    gArena.arena.Free(block);
  } else {
    std::free(block);
  }
}

}  // namespace

MemoryHooks gMemoryHooks = {&FreeImpl, &AllocateImpl, &FreeImpl, &AlignedAllocateImpl};
