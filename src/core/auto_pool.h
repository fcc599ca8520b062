#pragma once

#include <cstring>
#include <new>
#include <utility>

#include "core/memory_hooks.h"
#include "core/spin_lock.h"
#include "core/types.h"

// A slab allocator of its own for each class T that derives from TAutoPoolClass<T, N>. Slabs of N
// objects come from MemoryHooks and stay until the program ends; freed objects go back on a LIFO
// free list threaded through their first word. Small, short-lived objects of the XML reader never
// reach the heap after the first slabs.
template <class T, u32 N>
class TAutoPoolClass {
 public:
  // Raw storage for one T, or null when no slab can be had. No constructor runs here.
  static void* Allocate() {
    Pool& pool = Instance();
    pool.lock.Lock();
    if (!pool.freeHead && !pool.AddSlab()) {
      pool.lock.Unlock();
      return nullptr;
    }
    Link* object = pool.freeHead;
    pool.freeHead = object->next;
    pool.lock.Unlock();
    return object;
  }

  // The destructor has already run.
  static void Free(void* object) {
    if (!object) return;
    Pool& pool = Instance();
    pool.lock.Lock();
    auto* link = static_cast<Link*>(object);
    link->next = pool.freeHead;
    pool.freeHead = link;
    pool.lock.Unlock();
  }

  // `new` of a pooled class; null when the pool is out of memory.
  template <class... Args>
  [[nodiscard]] static T* New(Args&&... args) {
    void* storage = Allocate();
    return storage ? ::new (storage) T(std::forward<Args>(args)...) : nullptr;
  }
  static void Delete(T* object) {
    if (!object) return;
    object->~T();
    Free(object);
  }

  // Builds the pool now, so that a static object made after this call, which frees objects into the
  // pool when it is destroyed, is destroyed before the pool.
  static void Prepare() { (void)Instance(); }

  // Slabs held by this class's pool, for tests.
  static u32 SlabCount() {
    u32 n = 0;
    for (Slab* slab = Instance().slabHead; slab; slab = slab->next) ++n;
    return n;
  }

 private:
  struct Link {
    Link* next;
  };
  struct Slab {
    Slab* next;
  };
  // T is complete only where the pool is used, so the sizes live in here.
  struct Pool {
    static constexpr size_t kObjectSize = sizeof(T) < sizeof(Link) ? sizeof(Link) : sizeof(T);
    static constexpr size_t kAlign = alignof(T) < alignof(Slab) ? alignof(Slab) : alignof(T);
    static constexpr size_t kHeader = (sizeof(Slab) + kAlign - 1) / kAlign * kAlign;

    Link* freeHead = nullptr;
    Slab* slabHead = nullptr;
    CSpinLock lock;

    // The exit handler: slabs go back; objects still alive are simply gone.
    ~Pool() {
      while (slabHead) {
        Slab* next = slabHead->next;
        MemAlignedFree(slabHead);
        slabHead = next;
      }
    }

    bool AddSlab() {
      auto* block = static_cast<char*>(MemAlignedAllocate(kHeader + N * kObjectSize, kAlign));
      if (!block) return false;
      std::memset(block, 0, kHeader + N * kObjectSize);
      auto* slab = reinterpret_cast<Slab*>(block);
      slab->next = slabHead;
      slabHead = slab;
      // Chained in address order, the last with a null link.
      char* first = block + kHeader;
      for (u32 i = 0; i < N; ++i) {
        reinterpret_cast<Link*>(first + i * kObjectSize)->next =
            i + 1 < N ? reinterpret_cast<Link*>(first + (i + 1) * kObjectSize) : nullptr;
      }
      freeHead = reinterpret_cast<Link*>(first);
      return true;
    }
  };

  static Pool& Instance() {
    static Pool pool;
    return pool;
  }
};
