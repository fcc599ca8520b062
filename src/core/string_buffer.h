#pragma once

#include <concepts>
#include <cstdarg>
#include <type_traits>

#include "core/types.h"

// NUL-terminated working strings. `text` points at one of three stores: the shared empty string
// (capacity and length 0), the inline store of a TStringBuffer, or a heap block from MemoryHooks
// that the buffer owns alone. `capacity` counts characters with the NUL; `length` those before it.
// Helpers take the size-free base; callers pick the inline size.
template <class Char>
class TStringBufferBase {
 public:
  TStringBufferBase() = default;
  TStringBufferBase(const TStringBufferBase&) = delete;
  TStringBufferBase& operator=(const TStringBufferBase&) = delete;
  virtual ~TStringBufferBase();

  // Room for `size` characters, NUL included, keeping the text. Heap stores grow in steps of 256.
  // False when memory is refused; the buffer is then as it was.
  virtual bool Reserve(u32 size);
  // Empties the buffer; `release` gives a heap store back, otherwise it stays for reuse.
  virtual void Clear(bool release);

  const Char* Text() const { return text ? text : SharedEmpty(); }
  u32 Length() const { return length; }
  u32 Capacity() const { return capacity; }

  // For a caller that writes straight into the store after a Reserve: `Data()` has room for the
  // size reserved, and `SetLength` puts the NUL behind the characters written.
  Char* Data() { return text; }
  void SetLength(u32 n) {
    text[n] = 0;
    length = n;
  }

  // Copies `source`; null empties the buffer. `source` must not lie inside this buffer.
  const Char* Assign(const Char* source);

 protected:
  // Process-wide and zero-filled; only ever read.
  static Char* SharedEmpty();

  Char* text = SharedEmpty();
  u32 capacity = 0;
  u32 length = 0;
};

// The narrow working string adds formatting and the conversion from wide text.
class CStringBufferA : public TStringBufferBase<char> {
 public:
  // UTF-16 to UTF-8; gives the length in bytes.
  i32 AssignWide(const char16_t* wide);
  // printf conventions; both give the new length.
  [[gnu::format(printf, 2, 3)]] i32 Format(const char* format, ...);
  [[gnu::format(printf, 2, 3)]] i32 AppendFormat(const char* format, ...);
  i32 FormatV(const char* format, va_list args);
  i32 AppendFormatV(const char* format, va_list args);
};

class CStringBufferW : public TStringBufferBase<char16_t> {};

template <class Char>
using StringBufferOf = std::conditional_t<std::same_as<Char, char>, CStringBufferA, CStringBufferW>;

// A working string with an inline store of N characters (NUL included). It stays inline until a
// request passes N, and once on the heap it stays there until Clear(true) or destruction. While
// inline, `capacity` holds the last size asked for, not N.
template <class Char, u32 N>
class TStringBuffer final : public StringBufferOf<Char> {
  static_assert(N > 0);
  using Base = TStringBufferBase<Char>;

 public:
  TStringBuffer() = default;
  explicit TStringBuffer(const Char* source) { this->Assign(source); }
  // A heap store changes hands; an inline text is copied, which needs no memory.
  TStringBuffer(TStringBuffer&& other) noexcept { TakeFrom(other); }
  TStringBuffer& operator=(TStringBuffer&& other) noexcept {
    if (this != &other) {
      Clear(true);
      TakeFrom(other);
    }
    return *this;
  }
  ~TStringBuffer() override {
    if (this->text == inlineText) this->text = Base::SharedEmpty();
  }

  bool Reserve(u32 size) override;
  void Clear(bool release) override;

 private:
  void TakeFrom(TStringBuffer& other) {
    if (other.text == other.inlineText) {
      for (u32 i = 0; i <= other.length; ++i) inlineText[i] = other.inlineText[i];
      this->text = inlineText;
    } else {
      this->text = other.text;
    }
    this->capacity = other.capacity;
    this->length = other.length;
    other.text = Base::SharedEmpty();
    other.capacity = other.length = 0;
  }

  Char inlineText[N];
};

template <u32 N>
using TStringBufferA = TStringBuffer<char, N>;
template <u32 N>
using TStringBufferW = TStringBuffer<char16_t, N>;

extern template class TStringBufferBase<char>;
extern template class TStringBufferBase<char16_t>;

template <class Char, u32 N>
bool TStringBuffer<Char, N>::Reserve(u32 size) {
  Char* const shared = Base::SharedEmpty();
  if (size <= N && (this->text == inlineText || this->text == shared)) {
    this->text = inlineText;
    if (this->length == 0) inlineText[0] = 0;
    this->capacity = size;
    return true;
  }
  if (this->text != inlineText) return Base::Reserve(size);

  // Leaving the inline store: let the base allocate from scratch, then bring the text over.
  const u32 savedCapacity = this->capacity;
  this->text = shared;
  this->capacity = 0;
  if (!Base::Reserve(size)) {
    this->text = inlineText;
    this->capacity = savedCapacity;
    return false;
  }
  for (u32 i = 0; i <= this->length; ++i) this->text[i] = inlineText[i];
  return true;
}

template <class Char, u32 N>
void TStringBuffer<Char, N>::Clear(bool release) {
  if (this->text == inlineText) {
    this->text = Base::SharedEmpty();
    this->capacity = 0;
    this->length = 0;
    return;
  }
  Base::Clear(release);
}
