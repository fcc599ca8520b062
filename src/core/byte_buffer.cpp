#include "core/byte_buffer.h"

#include <cstring>
#include <utility>

#include "core/memory_hooks.h"

CByteBuffer::CByteBuffer(const CByteBuffer& other) : granule(other.granule) {
  if (SetSize(other.size) && size) std::memcpy(data, other.data, size);
}

CByteBuffer& CByteBuffer::operator=(const CByteBuffer& other) {
  if (this == &other) return *this;
  Release();
  granule = other.granule;
  if (SetSize(other.size) && size) std::memcpy(data, other.data, size);
  return *this;
}

CByteBuffer::CByteBuffer(CByteBuffer&& other) noexcept
    : granule(other.granule), size(other.size), capacity(other.capacity), data(other.data) {
  other.size = other.capacity = 0;
  other.data = nullptr;
}

CByteBuffer& CByteBuffer::operator=(CByteBuffer&& other) noexcept {
  if (this != &other) {
    Release();
    granule = other.granule;
    std::swap(size, other.size);
    std::swap(capacity, other.capacity);
    std::swap(data, other.data);
  }
  return *this;
}

bool CByteBuffer::Reserve(u32 n) { return Grow(n, 0); }

// Capacity for `n` bytes; of the bytes the store gains, those from `zeroFrom` on are zeroed (the
// caller writes the ones before it).
bool CByteBuffer::Grow(u32 n, u32 zeroFrom) {
  const u64 rounded = (u64(n) + granule - 1) / granule * granule;
  if (rounded <= capacity) return true;
  if (rounded > UINT32_MAX) return false;
  auto* store = static_cast<u8*>(MemAllocate(rounded));
  if (!store) return false;
  // The whole old store moves, not only `size`: bytes past it may have been written.
  if (capacity) std::memcpy(store, data, capacity);
  const u32 zeroStart = zeroFrom > capacity ? zeroFrom : capacity;
  std::memset(store + zeroStart, 0, rounded - zeroStart);
  if (data) MemFree(data);
  data = store;
  capacity = static_cast<u32>(rounded);
  return true;
}

bool CByteBuffer::SetSize(u32 n) {
  if (!Reserve(n)) return false;
  size = n;
  return true;
}

bool CByteBuffer::SetSizeForOverwrite(u32 n) {
  if (!Grow(n, n)) return false;
  size = n;
  return true;
}

void CByteBuffer::Release() {
  if (data) MemFree(data);
  data = nullptr;
  size = 0;
  capacity = 0;
}
