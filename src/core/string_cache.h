#pragma once

#include <mutex>

#include "core/auto_pool.h"
#include "core/types.h"
#include "core/value_string.h"

// A process-wide free list of reference-counted string records for the XML reader. It does no
// interning: records handed out are on `liveList`, records given back wait on `spareList` with
// their old text until the next Acquire reuses the oldest. Lock order: the cache's mutex outside,
// a pool's spin lock inside.
template <class S>
class TStringCache {
 public:
  // A string with a count: 1 for the cache, one more for the holder while handed out. The counts
  // are only touched under the cache's lock or by the record's sole holder.
  class TRefStr : public S, public TAutoPoolClass<TRefStr, 64> {
   public:
    virtual ~TRefStr() = default;
    virtual i32 AddRef() { return ++refCount; }
    virtual i32 Release() {
      const i32 left = --refCount;
      if (left == 0) TAutoPoolClass<TRefStr, 64>::Delete(this);
      return left;
    }
    i32 RefCount() const { return refCount; }

   private:
    i32 refCount = 1;
  };

  static TStringCache& Instance() {
    static TStringCache cache;
    return cache;
  }

  TStringCache() {
    TAutoPoolClass<TRefStr, 64>::Prepare();
    Cell::Prepare();
  }
  TStringCache(const TStringCache&) = delete;
  TStringCache& operator=(const TStringCache&) = delete;
  // At exit spares still hold their last texts; they go back before the pools do.
  ~TStringCache() { DestroyAll(); }

  // A record for one more text, holding whatever text it had before; null when out of memory.
  TRefStr* Acquire() {
    std::lock_guard guard(lock);
    TRefStr* record = nullptr;
    if (spareList.head) {
      record = spareList.PopHead();
    } else {
      record = TAutoPoolClass<TRefStr, 64>::New();
      if (!record) return nullptr;
    }
    if (!liveList.Append(record)) {
      record->Release();
      return nullptr;
    }
    record->AddRef();
    return record;
  }

  // Gives a record back; it keeps its text for the next user.
  void Recycle(TRefStr* record) {
    if (!record) return;
    std::lock_guard guard(lock);
    record->Release();
    liveList.Remove(record);
    if (!spareList.Append(record)) record->Release();
  }

  // At program end: spares are destroyed, records still handed out lose the cache's count.
  void DestroyAll() {
    std::lock_guard guard(lock);
    while (spareList.head) spareList.PopHead()->Release();
    while (liveList.head) liveList.PopHead()->Release();
  }

  u32 LiveCount() const { return liveList.count; }
  u32 SpareCount() const { return spareList.count; }

 private:
  struct Cell : TAutoPoolClass<Cell, 256> {
    Cell* next = nullptr;
    Cell* previous = nullptr;
    TRefStr* record = nullptr;
  };
  struct List {
    Cell* head = nullptr;
    Cell* tail = nullptr;
    u32 count = 0;

    bool Append(TRefStr* record) {
      Cell* cell = Cell::New();
      if (!cell) return false;
      cell->record = record;
      cell->previous = tail;
      (tail ? tail->next : head) = cell;
      tail = cell;
      ++count;
      return true;
    }
    TRefStr* PopHead() {
      Cell* cell = head;
      head = cell->next;
      (head ? head->previous : tail) = nullptr;
      --count;
      TRefStr* record = cell->record;
      Cell::Delete(cell);
      return record;
    }
    // Records are mostly given back newest first, so the search runs from the tail.
    void Remove(TRefStr* record) {
      for (Cell* cell = tail; cell; cell = cell->previous) {
        if (cell->record != record) continue;
        (cell->previous ? cell->previous->next : head) = cell->next;
        (cell->next ? cell->next->previous : tail) = cell->previous;
        --count;
        Cell::Delete(cell);
        return;
      }
    }
  };

  std::recursive_mutex lock;
  List liveList;
  List spareList;
};

using CStringCache = TStringCache<CStringA>;
using TRefStr = CStringCache::TRefStr;
