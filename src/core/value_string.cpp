#include "core/value_string.h"

#include <utility>

#include "core/memory_hooks.h"
#include "core/utf8.h"

template <class Char>
bool CStringT<Char>::Grow(u32 n) {
  if (!(flags & kOwned) && n < kInlineLimit) {
    flags &= ~kBorrowed;
    return true;
  }
  if (flags & kOwned) {
    BlockHeader* header = Header();
    if (u64(n) + 1 <= header->blockCapacity) {
      header->blockLength = n;
      return true;
    }
  }
  const u64 characters = u64(n) + 1;
  void* block = characters <= UINT32_MAX ? MemAllocate(sizeof(BlockHeader) + characters * sizeof(Char))
                                         : nullptr;
  if (!block) {
    Reset();
    return false;
  }
  auto* header = static_cast<BlockHeader*>(block);
  header->blockCapacity = static_cast<u32>(characters);
  header->blockLength = n;
  if (flags & kOwned) MemFree(Header());
  store.pointer = reinterpret_cast<Char*>(header + 1);
  flags = (flags & ~kBorrowed) | kOwned;
  return true;
}

template <class Char>
bool CStringT<Char>::Assign(const Char* text) {
  // Nothing of a borrowed text survives; `text` itself is still read from where it lies.
  flags &= ~kBorrowed;
  static constexpr Char kEmpty[1] = {};
  if (!text) text = kEmpty;
  const size_t n = std::char_traits<Char>::length(text);
  if (n >= UINT32_MAX || !Grow(static_cast<u32>(n))) {
    Reset();
    return false;
  }
  // memmove: the text may be this string's own.
  std::memmove(MutableText(), text, (n + 1) * sizeof(Char));
  return true;
}

template <class Char>
bool CStringT<Char>::CopyFrom(const CStringT& other) {
  if (this == &other) return true;
  if (!(flags & kOwned) && (other.flags & kBorrowed)) {
    store.pointer = other.store.pointer;
    flags |= kBorrowed;
    return true;
  }
  if (!(flags & kOwned) && !(other.flags & kFormBits)) {
    store = other.store;
    flags &= ~kBorrowed;
    return true;
  }
  return Assign(other.Text());
}

template <class Char>
void CStringT<Char>::MoveFrom(CStringT& other) {
  if (this == &other) return;
  if (flags & kOwned) {
    std::swap(store, other.store);
    const u32 mine = flags & kFormBits;
    flags = (flags & ~kFormBits) | (other.flags & kFormBits);
    other.flags = (other.flags & ~kFormBits) | mine;
    return;
  }
  store = other.store;
  flags = (flags & ~kFormBits) | (other.flags & kFormBits);
  other.flags &= ~kFormBits;
  other.store.inlineText[0] = 0;
}

template <class Char>
void CStringT<Char>::Borrow(const Char* text) {
  Reset();
  store.pointer = const_cast<Char*>(text);
  flags |= kBorrowed;
}

template <class Char>
void CStringT<Char>::Reset() {
  if (flags & kOwned) MemFree(Header());
  flags &= ~kFormBits;
  store.inlineText[0] = 0;
}

template <class Char>
bool CStringT<Char>::AssignWide(const char16_t* wide) requires std::same_as<Char, char> {
  Reset();
  if (!wide || !wide[0]) return true;
  const u32 needed = Utf16ToUtf8(wide, nullptr, 0);
  if (!Grow(needed)) return false;
  Utf16ToUtf8(wide, MutableText(), needed);
  return true;
}

template <class Char>
bool CStringT<Char>::AssignNarrow(const char* narrow) requires std::same_as<Char, char16_t> {
  Reset();
  if (!narrow || !narrow[0]) return true;
  const u32 needed = Utf8ToUtf16(narrow, nullptr, 0);
  if (!Grow(needed)) return false;
  Utf8ToUtf16(narrow, MutableText(), needed);
  return true;
}

template class CStringT<char>;
template class CStringT<char16_t>;
