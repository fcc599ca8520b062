#include "core/string_table.h"

#include <cstring>

i32 CStringTable::Store(XMLTextHandle& handle, const char* text) {
  handle.table = this;
  if (!text || !text[0]) return handle.slot = XMLTextHandle::kEmptySlot;
  const size_t n = std::strlen(text);
  std::lock_guard guard(lock);
  // The store may move below; a text inside it is found again by its offset.
  const u8* begin = store.Data();
  const auto* source = reinterpret_cast<const u8*>(text);
  const bool inside = begin && source >= begin && source < begin + store.Size();
  const size_t insideOffset = inside ? size_t(source - begin) : 0;

  const u32 slot = offsets.Count();
  if (slot >= u32(INT32_MAX) || !offsets.SetSize(slot + 1)) return handle.slot = XMLTextHandle::kNoSlot;
  const u64 end = u64(store.Size()) + n + 1;
  bool stored = end <= limit && end <= UINT32_MAX;
  limitReached |= end > limit;
  if (stored && end > store.Capacity()) {
    // Grow by half at least, so a store of many texts isn't copied once per granule.
    u64 want = u64(store.Capacity()) + store.Capacity() / 2;
    if (want < end || want > UINT32_MAX) want = end;
    stored = store.Reserve(static_cast<u32>(want));
  }
  if (!stored) {
    offsets[slot] = kFailedOffset;
    return handle.slot = XMLTextHandle::kNoSlot;
  }
  const u32 at = store.Size();
  offsets[slot] = at;
  (void)store.SetSize(static_cast<u32>(end));  // reserved just above
  const u8* from = inside ? store.Data() + insideOffset : source;
  std::memmove(store.Data() + at, from, n + 1);
  return handle.slot = static_cast<i32>(slot);
}

bool CStringTable::Reserve(u32 bytes) {
  std::lock_guard guard(lock);
  return store.Reserve(bytes);
}

const char* CStringTable::GetText(const XMLTextHandle& handle) {
  if (handle.slot < 0) return emptyText;
  std::lock_guard guard(lock);
  if (u32(handle.slot) >= offsets.Count()) return emptyText;
  const u32 offset = offsets[static_cast<u32>(handle.slot)];
  if (offset == kFailedOffset) return emptyText;
  return reinterpret_cast<const char*>(store.Data() + offset);
}

const char* GetText(const XMLTextHandle& handle) {
  static const char kEmpty[1] = {};
  if (handle.slot == XMLTextHandle::kNoSlot || !handle.table) return kEmpty;
  return handle.table->GetText(handle);
}
