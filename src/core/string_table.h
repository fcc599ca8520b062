#pragma once

#include <mutex>

#include "core/array.h"
#include "core/byte_buffer.h"
#include "core/types.h"

class CStringTable;

// How a record refers to a text of its document's table.
struct XMLTextHandle {
  static constexpr i32 kNoSlot = -1;     // a failed store; reads as the empty text
  static constexpr i32 kEmptySlot = -2;  // the empty text; every handle starts so
  i32 slot = kEmptySlot;
  CStringTable* table = nullptr;
};

// The packed store of all texts of one XML document: each text with its NUL, one after another in a
// single byte buffer, reached by slot number. Equal texts are stored twice; nothing is searched.
class CStringTable {
 public:
  static constexpr u32 kGranule = 0x100000;

  // Stores `text` for a new handle and gives the slot: kEmptySlot for a null or empty text,
  // kNoSlot when memory is refused. `text` may lie inside this table's own store.
  i32 Store(XMLTextHandle& handle, const char* text);
  [[nodiscard]] bool Reserve(u32 bytes);
  // Stores that would take the texts past `bytes` fail, and LimitReached() says so afterwards.
  void SetLimit(u32 bytes) { limit = bytes; }
  bool LimitReached() const { return limitReached; }
  // Never null. Valid until the next Store that moves the store.
  const char* GetText(const XMLTextHandle& handle);

  u32 SlotCount() const { return offsets.Count(); }

 private:
  static constexpr u32 kFailedOffset = 0xFFFFFFFF;

  CByteBuffer store{kGranule};
  TArray<u32> offsets;
  std::recursive_mutex lock;
  char emptyText[1] = {};
  u32 limit = UINT32_MAX;
  bool limitReached = false;
};

// Free form of CStringTable::GetText that also takes a handle without a table.
const char* GetText(const XMLTextHandle& handle);
