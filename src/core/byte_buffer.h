#pragma once

#include "core/types.h"

// Growable byte store for file contents. `capacity` is a multiple of `granule`; bytes between
// `size` and `capacity` are zero until written. `data` is null while `capacity` is 0.
class CByteBuffer {
 public:
  static constexpr u32 kDefaultGranule = 8192;

  explicit CByteBuffer(u32 step = kDefaultGranule) : granule(step ? step : kDefaultGranule) {}
  CByteBuffer(const CByteBuffer& other);
  CByteBuffer& operator=(const CByteBuffer& other);
  CByteBuffer(CByteBuffer&& other) noexcept;
  CByteBuffer& operator=(CByteBuffer&& other) noexcept;
  ~CByteBuffer() { Release(); }

  // Capacity for `n` bytes, rounded up to the granule; `size` stays. False when memory is refused
  // or the rounded size leaves 32 bits; the buffer is then as it was.
  [[nodiscard]] bool Reserve(u32 n);
  [[nodiscard]] bool SetSize(u32 n);
  // SetSize for a caller that writes every byte from the old size up to `n` before reading any:
  // those are left unset instead of zeroed, which spares a pass over a large array.
  [[nodiscard]] bool SetSizeForOverwrite(u32 n);
  void Release();

  u8* Data() { return data; }
  const u8* Data() const { return data; }
  u32 Size() const { return size; }
  u32 Capacity() const { return capacity; }
  u32 Granule() const { return granule; }

 private:
  bool Grow(u32 n, u32 zeroFrom);

  u32 granule;
  u32 size = 0;
  u32 capacity = 0;
  u8* data = nullptr;
};
