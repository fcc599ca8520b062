#pragma once

#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include "core/memory_hooks.h"
#include "core/types.h"

// Growable array of constructed elements. All-zero is a valid empty array.
//
// Growth is exact first. Elements that own memory (strings, nested arrays, records with them)
// grow to exactly `n`, and by a half more only when that allocation is refused. Plain elements
// (trivially copyable: numbers, index pairs, draw and bone records) grow to `n + n / 2` at once and
// are zero-filled; readers that know the final size call Reserve(n) first and get it exactly.
template <class T>
class TArray {
 public:
  TArray() = default;
  TArray(const TArray&) = delete;
  TArray& operator=(const TArray&) = delete;
  // Moving hands the block over, so arrays nest inside the elements of other arrays and tables.
  TArray(TArray&& other) noexcept : data(other.data), count(other.count), capacity(other.capacity) {
    other.data = nullptr;
    other.count = other.capacity = 0;
  }
  TArray& operator=(TArray&& other) noexcept {
    if (this != &other) {
      Release();
      std::swap(data, other.data);
      std::swap(count, other.count);
      std::swap(capacity, other.capacity);
    }
    return *this;
  }
  ~TArray() { Release(); }

  u32 Count() const { return count; }
  u32 Capacity() const { return capacity; }
  T* Data() { return data; }
  const T* Data() const { return data; }
  T& operator[](u32 i) { return data[i]; }
  const T& operator[](u32 i) const { return data[i]; }
  T* begin() { return data; }
  T* end() { return data + count; }
  const T* begin() const { return data; }
  const T* end() const { return data + count; }

  // Room for exactly `n` elements. False when memory is refused; the array is then unchanged.
  [[nodiscard]] bool Reserve(u32 n) {
    if (n <= capacity) return true;
    if (u64(n) * sizeof(T) > kMaxBytes) return false;
    T* block = static_cast<T*>(MemAlignedAllocate(size_t(n) * sizeof(T), alignof(T)));
    if (!block) return false;
    if constexpr (std::is_trivially_copyable_v<T>) {
      if (count) std::memcpy(block, data, size_t(count) * sizeof(T));
    } else {
      for (u32 i = 0; i < count; ++i) {
        ::new (&block[i]) T(std::move(data[i]));
        data[i].~T();
      }
    }
    if (data) MemAlignedFree(data);
    data = block;
    capacity = n;
    return true;
  }

  // False only when memory is refused; the array is then unchanged.
  [[nodiscard]] bool SetSize(u32 n) {
    if (n == count) return true;
    if (n < count) {
      for (u32 i = n; i < count; ++i) data[i].~T();
      count = n;
      return true;
    }
    if constexpr (std::is_trivially_copyable_v<T>) {
      if (n > capacity && !Reserve(GrownByHalf(n))) return false;
      std::memset(static_cast<void*>(data + count), 0, size_t(n - count) * sizeof(T));
    } else {
      if (!Reserve(n) && !Reserve(GrownByHalf(n))) return false;
      for (u32 i = count; i < n; ++i) ::new (&data[i]) T();
    }
    count = n;
    return true;
  }

  // Plain elements only: `n` elements whose new ones are left unfilled, for a caller that writes
  // each of them before anything reads it, and so spares a pass over a large block. False only when
  // memory is refused; the array is then unchanged.
  [[nodiscard]] bool SetSizeForOverwrite(u32 n) requires std::is_trivially_copyable_v<T> {
    if (n > capacity && !Reserve(GrownByHalf(n))) return false;
    count = n;
    return true;
  }

  // One more default-constructed element at the end, for builders that add one at a time: the
  // block doubles when full, so appending stays linear. Null when memory is refused.
  T* Append() {
    if (count == capacity && !Reserve(capacity < 4 ? 4 : GrownDoubled(capacity))) return nullptr;
    ::new (&data[count]) T();
    return &data[count++];
  }

  // Element-wise copy of `other`. False when memory is refused; the array is then unchanged.
  [[nodiscard]] bool Assign(const TArray& other) {
    if (this == &other) return true;
    if (other.count == 0) return SetSize(0);
    if (!Reserve(other.count)) return false;
    const u32 common = count < other.count ? count : other.count;
    for (u32 i = 0; i < common; ++i) data[i] = other.data[i];
    for (u32 i = common; i < other.count; ++i) ::new (&data[i]) T(other.data[i]);
    for (u32 i = other.count; i < count; ++i) data[i].~T();
    count = other.count;
    return true;
  }

  void Release() {
    if (capacity == 0 || !data) return;
    for (u32 i = 0; i < count; ++i) data[i].~T();
    MemAlignedFree(data);
    data = nullptr;
    count = 0;
    capacity = 0;
  }

 private:
  static constexpr u64 kMaxBytes = u64(1) << 40;

  static u32 GrownDoubled(u32 n) { return n > UINT32_MAX / 2 ? UINT32_MAX : 2 * n; }

  // n + n / 2, saturating rather than wrapping.
  static u32 GrownByHalf(u32 n) {
    const u64 grown = u64(n) + (n >> 1);
    return grown > UINT32_MAX ? UINT32_MAX : static_cast<u32>(grown);
  }

  T* data = nullptr;
  u32 count = 0;
  u32 capacity = 0;
};
