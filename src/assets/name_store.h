#pragma once

#include "core/array.h"
#include "core/types.h"

// The names of a pack index, each a NUL-terminated copy in one of a few large blocks that never
// move, so the table's keys can borrow them: a game of 200,000 names then costs a handful of
// allocations instead of one per name, to fill and to free.
class NameStore {
 public:
  NameStore() = default;
  NameStore(const NameStore&) = delete;
  NameStore& operator=(const NameStore&) = delete;
  ~NameStore() { Clear(); }

  // A copy of `length` bytes with a NUL behind them, valid until Clear. Null when memory is
  // refused.
  const char* Add(const u8* bytes, u32 length);
  // Frees every name.
  void Clear();

 private:
  static constexpr u32 kBlockSize = 1 << 20;

  TArray<char*> blocks;  // each from MemAllocate
  char* free = nullptr;  // the unused end of the last block
  u32 room = 0;          // bytes there
};
