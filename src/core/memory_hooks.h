#pragma once

#include <memory>
#include <new>
#include <utility>

#include "core/types.h"

// The table behind all plain heap memory of the system. It is constant-initialised data, so objects
// built before main can allocate. Tests swap the targets to make the Nth allocation fail; nothing in
// the product replaces them. `Allocate` and `AlignedAllocate` give null on failure.
struct MemoryHooks {
  void (*Free)(void* block);
  void* (*Allocate)(size_t size);
  void (*AlignedFree)(void* block);
  void* (*AlignedAllocate)(size_t size, size_t alignment);
};

extern MemoryHooks gMemoryHooks;

inline void* MemAllocate(size_t size) { return gMemoryHooks.Allocate(size); }
inline void MemFree(void* block) { gMemoryHooks.Free(block); }
inline void* MemAlignedAllocate(size_t size, size_t alignment) { return gMemoryHooks.AlignedAllocate(size, alignment); }
inline void MemAlignedFree(void* block) { gMemoryHooks.AlignedFree(block); }

// `new` for the system's own objects: through the hooks, null when memory is refused.
template <class T, class... Args>
[[nodiscard]] T* MemNew(Args&&... args) {
  void* block = MemAlignedAllocate(sizeof(T), alignof(T));
  return block ? ::new (block) T(std::forward<Args>(args)...) : nullptr;
}

template <class T>
void MemDelete(T* object) {
  if (object) {
    object->~T();
    MemAlignedFree(object);
  }
}

struct MemDeleter {
  template <class T>
  void operator()(T* object) const {
    MemDelete(object);
  }
};

// Sole owner of an object made by MemNew.
template <class T>
using TOwned = std::unique_ptr<T, MemDeleter>;
