#include "core/string_buffer.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "core/memory_hooks.h"
#include "core/utf8.h"

namespace {

constinit char gSharedEmptyA[1] = {};
constinit char16_t gSharedEmptyW[1] = {};

constexpr u64 kHeapStep = 256;

// Characters that `format` gives with `args`, or a negative number for a bad format.
int MeasureFormat(const char* format, va_list args) {
  va_list measure;
  va_copy(measure, args);
  const int n = std::vsnprintf(nullptr, 0, format, measure);
  va_end(measure);
  return n;
}

}  // namespace

template <class Char>
Char* TStringBufferBase<Char>::SharedEmpty() {
  if constexpr (std::same_as<Char, char>) {
    return gSharedEmptyA;
  } else {
    return gSharedEmptyW;
  }
}

template <class Char>
TStringBufferBase<Char>::~TStringBufferBase() {
  if (text && text != SharedEmpty()) MemFree(text);
}

template <class Char>
bool TStringBufferBase<Char>::Reserve(u32 size) {
  if (size <= capacity) return true;
  const u64 rounded = (u64(size) + kHeapStep - 1) & ~(kHeapStep - 1);
  if (rounded > UINT32_MAX) return false;
  auto* store = static_cast<Char*>(MemAllocate(rounded * sizeof(Char)));
  if (!store) return false;
  if (text && text != SharedEmpty()) {
    std::memcpy(store, text, (u64(length) + 1) * sizeof(Char));
    MemFree(text);
  } else {
    store[0] = 0;
  }
  text = store;
  capacity = static_cast<u32>(rounded);
  return true;
}

template <class Char>
void TStringBufferBase<Char>::Clear(bool release) {
  if (!release) {
    if (text && text != SharedEmpty()) text[0] = 0;
    length = 0;
    return;
  }
  if (text && text != SharedEmpty()) MemFree(text);
  text = SharedEmpty();
  capacity = 0;
  length = 0;
}

template <class Char>
const Char* TStringBufferBase<Char>::Assign(const Char* source) {
  if (!source) {
    Clear(false);
    return Text();
  }
  const size_t n = std::char_traits<Char>::length(source);
  if (n >= UINT32_MAX || !Reserve(static_cast<u32>(n + 1))) return Text();
  std::memcpy(text, source, (n + 1) * sizeof(Char));
  length = static_cast<u32>(n);
  return text;
}

i32 CStringBufferA::AssignWide(const char16_t* wide) {
  Clear(false);
  if (!wide || !wide[0]) return 0;
  const u32 needed = Utf16ToUtf8(wide, nullptr, 0);
  if (needed >= UINT32_MAX || !Reserve(needed + 1)) return 0;
  Utf16ToUtf8(wide, text, needed);
  length = needed - 1;
  return static_cast<i32>(length);
}

i32 CStringBufferA::FormatV(const char* format, va_list args) {
  const int n = MeasureFormat(format, args);
  if (n > 0 && Reserve(static_cast<u32>(n) + 1)) {
    std::vsnprintf(text, static_cast<size_t>(n) + 1, format, args);
    length = static_cast<u32>(n);
    return n;
  }
  Clear(false);
  return static_cast<i32>(length);
}

i32 CStringBufferA::AppendFormatV(const char* format, va_list args) {
  const int n = MeasureFormat(format, args);
  const u64 total = u64(length) + 1 + u64(n > 0 ? n : 0);
  if (n > 0 && total <= UINT32_MAX && Reserve(static_cast<u32>(total))) {
    std::vsnprintf(text + length, static_cast<size_t>(n) + 1, format, args);
    length += static_cast<u32>(n);
  }
  return static_cast<i32>(length);
}

i32 CStringBufferA::Format(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const i32 result = FormatV(format, args);
  va_end(args);
  return result;
}

i32 CStringBufferA::AppendFormat(const char* format, ...) {
  va_list args;
  va_start(args, format);
  const i32 result = AppendFormatV(format, args);
  va_end(args);
  return result;
}

template class TStringBufferBase<char>;
template class TStringBufferBase<char16_t>;
