#include "core/value_string.h"

#include <utility>

#include "core/memory_hooks.h"
#include "core/utf8.h"

template <class Char>
bool TStringValue<Char>::Grow(u32 n) {
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
  void* block = characters <= UINT32_MAX ? MemAllocate(sizeof(BlockHeader) + characters * sizeof(Char)) : nullptr;
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
bool TStringValue<Char>::Assign(const Char* text) {
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
bool TStringValue<Char>::CopyFrom(const TStringValue& other) {
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
void TStringValue<Char>::MoveFrom(TStringValue& other) {
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
void TStringValue<Char>::Borrow(const Char* text) {
  Reset();
  store.pointer = const_cast<Char*>(text);
  flags |= kBorrowed;
}

template <class Char>
void TStringValue<Char>::FreeBlock() {
  MemFree(Header());
}

template class TStringValue<char>;
template class TStringValue<char16_t>;

bool CStringA::AssignWide(const char16_t* wide) {
  const u32 needed = wide ? Utf16ToUtf8(wide, nullptr, 0) : 0;
  return AssignConverted(needed, [&](char* dest, u32 capacity) { Utf16ToUtf8(wide, dest, capacity); });
}

bool CStringW::AssignNarrow(const char* narrow) {
  const u32 needed = narrow ? Utf8ToUtf16(narrow, nullptr, 0) : 0;
  return AssignConverted(needed, [&](char16_t* dest, u32 capacity) { Utf8ToUtf16(narrow, dest, capacity); });
}
