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
class TStringValue {
 public:
  TStringValue() { store.inlineText[0] = 0; }
  TStringValue(const TStringValue& other) : TStringValue() { (void)CopyFrom(other); }
  TStringValue(TStringValue&& other) noexcept : TStringValue() { MoveFrom(other); }
  TStringValue& operator=(const TStringValue& other) {
    (void)CopyFrom(other);
    return *this;
  }
  TStringValue& operator=(TStringValue&& other) noexcept {
    MoveFrom(other);
    return *this;
  }
  ~TStringValue() { Reset(); }

  // Never null.
  const Char* Text() const { return (flags & kFormBits) ? store.pointer : store.inlineText; }

  // Copies `text` (null reads as the empty text). False when memory is refused; the string is then
  // empty.
  [[nodiscard]] bool Assign(const Char* text);
  // Inline and borrowed sources are copied by their bytes or pointer; owned ones deeply.
  [[nodiscard]] bool CopyFrom(const TStringValue& other);
  // Takes over `other`'s form and text and leaves it empty. Over an owned string the two exchange,
  // so the source ends up holding (and later freeing) the old block.
  void MoveFrom(TStringValue& other);
  // Points at `text` without copying or measuring it.
  void Borrow(const Char* text);
  void Reset() {
    if (flags & kOwned) FreeBlock();
    flags &= ~kFormBits;
    store.inlineText[0] = 0;
  }
  // Prepares the store for `n` characters; the caller writes the whole text right after.
  [[nodiscard]] bool Grow(u32 n);

  bool IsOwned() const { return flags & kOwned; }
  bool IsBorrowed() const { return flags & kBorrowed; }
  u32 BlockCapacity() const { return IsOwned() ? Header()->blockCapacity : 0; }
  u32 BlockLength() const { return IsOwned() ? Header()->blockLength : 0; }

 protected:
  // Conversion from the other width into this string; `needed` counts the NUL.
  template <class Convert>
  [[nodiscard]] bool AssignConverted(u32 needed, Convert convert) {
    Reset();
    if (needed <= 1) return true;
    if (!Grow(needed)) return false;
    convert(MutableText(), needed);
    return true;
  }

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
  void FreeBlock();
  Char* MutableText() { return (flags & kFormBits) ? store.pointer : store.inlineText; }

  union Store {
    Char inlineText[kInlineChars];
    Char* pointer;
  } store;
  // Bit 0 owned, bit 1 borrowed, never both; the other bits are left to the owner.
  u32 flags = 0;
};

extern template class TStringValue<char>;
extern template class TStringValue<char16_t>;

// The narrow form: keys of the pack and rig tables, names in models and rigs.
class CStringA : public TStringValue<char> {
 public:
  // UTF-16 to UTF-8. False when memory is refused; the string is then empty.
  [[nodiscard]] bool AssignWide(const char16_t* wide);
};

// The wide form: paths of file streams.
class CStringW : public TStringValue<char16_t> {
 public:
  // UTF-8 to UTF-16. False when memory is refused; the string is then empty.
  [[nodiscard]] bool AssignNarrow(const char* narrow);
};

// Equal when the same object, both borrowing the same pointer, or equal byte for byte.
inline bool KeysEqual(const CStringA& a, const CStringA& b) {
  if (&a == &b) return true;
  if (a.IsBorrowed() && b.IsBorrowed() && a.Text() == b.Text()) return true;
  return std::strcmp(a.Text(), b.Text()) == 0;
}
