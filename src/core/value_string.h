#pragma once

#include <concepts>
#include <cstring>
#include <string>

#include "core/types.h"

// Value strings for names and keys. Three forms, told apart by two bits of `flags`:
// - inline (no bit): the characters with their NUL in `store`, at most 14 characters;
// - owned: a heap block from MemoryHooks that this string alone owns. The block starts with
//   `blockCapacity` (characters it holds, NUL included) and `blockLength` (the length last asked
//   for), and `store.pointer` points just behind those two words. Blocks grow to exactly what is
//   asked and never shrink;
// - borrowed: `store.pointer` points at text of another owner. The string never frees it, and the
//   string (and any copy of it) must not be read after that text dies. Lookup keys are built so.
// All-zero is a valid empty inline string.
template <class Char>
class CStringT {
 public:
  CStringT() { store.inlineText[0] = 0; }
  CStringT(const CStringT& other) : CStringT() { (void)CopyFrom(other); }
  CStringT(CStringT&& other) noexcept : CStringT() { MoveFrom(other); }
  CStringT& operator=(const CStringT& other) {
    (void)CopyFrom(other);
    return *this;
  }
  CStringT& operator=(CStringT&& other) noexcept {
    MoveFrom(other);
    return *this;
  }
  ~CStringT() { Reset(); }

  // Never null.
  const Char* Text() const { return (flags & kFormBits) ? store.pointer : store.inlineText; }

  // Copies `text` (null reads as the empty text). False when memory is refused; the string is then
  // empty.
  [[nodiscard]] bool Assign(const Char* text);
  // Inline and borrowed sources are copied by their bytes or pointer; owned ones deeply.
  [[nodiscard]] bool CopyFrom(const CStringT& other);
  // Takes over `other`'s form and text and leaves it empty. Over an owned string the two exchange,
  // so the source ends up holding (and later freeing) the old block.
  void MoveFrom(CStringT& other);
  // Points at `text` without copying or measuring it.
  void Borrow(const Char* text);
  void Reset();
  // Prepares the store for `n` characters; the caller writes the whole text right after.
  [[nodiscard]] bool Grow(u32 n);

  [[nodiscard]] bool AssignWide(const char16_t* wide) requires std::same_as<Char, char>;
  [[nodiscard]] bool AssignNarrow(const char* narrow) requires std::same_as<Char, char16_t>;

  bool IsOwned() const { return flags & kOwned; }
  bool IsBorrowed() const { return flags & kBorrowed; }
  u32 BlockCapacity() const { return IsOwned() ? Header()->blockCapacity : 0; }
  u32 BlockLength() const { return IsOwned() ? Header()->blockLength : 0; }

 private:
  static constexpr u32 kOwned = 1;
  static constexpr u32 kBorrowed = 2;
  static constexpr u32 kFormBits = kOwned | kBorrowed;
  static constexpr u32 kInlineChars = 16;
  // A text of n characters stays inline while n is below this.
  static constexpr u32 kInlineLimit = 15;

  struct BlockHeader {
    u32 blockCapacity;
    u32 blockLength;
  };
  static_assert(sizeof(BlockHeader) == 8);

  BlockHeader* Header() const {
    return reinterpret_cast<BlockHeader*>(reinterpret_cast<char*>(store.pointer) - sizeof(BlockHeader));
  }
  Char* MutableText() { return (flags & kFormBits) ? store.pointer : store.inlineText; }

  union Store {
    Char inlineText[kInlineChars];
    Char* pointer;
  } store;
  // Bit 0 owned, bit 1 borrowed, never both; the other bits are left to the owner.
  u32 flags = 0;
};

using CStringA = CStringT<char>;
using CStringW = CStringT<char16_t>;

extern template class CStringT<char>;
extern template class CStringT<char16_t>;

// Equal when the same object, both borrowing the same pointer, or equal byte for byte.
inline bool KeysEqual(const CStringA& a, const CStringA& b) {
  if (&a == &b) return true;
  if (a.IsBorrowed() && b.IsBorrowed() && a.Text() == b.Text()) return true;
  return std::strcmp(a.Text(), b.Text()) == 0;
}
