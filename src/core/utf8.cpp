#include "core/utf8.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Sink that counts every unit and stores those that fit.
template <class Unit>
struct UnitSink {
  Unit* dest;
  u32 capacity;
  u32 count = 0;
  void Put(u32 unit) {
    if (dest && count < capacity) dest[count] = static_cast<Unit>(unit);
    ++count;
  }
};

bool IsHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

void PutUtf8(UnitSink<char>& sink, char32_t c) {
  if (c < 0x80) {
    sink.Put(c);
  } else if (c < 0x800) {
    sink.Put(0xC0 | (c >> 6));
    sink.Put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    sink.Put(0xE0 | (c >> 12));
    sink.Put(0x80 | ((c >> 6) & 0x3F));
    sink.Put(0x80 | (c & 0x3F));
  } else {
    sink.Put(0xF0 | (c >> 18));
    sink.Put(0x80 | ((c >> 12) & 0x3F));
    sink.Put(0x80 | ((c >> 6) & 0x3F));
    sink.Put(0x80 | (c & 0x3F));
  }
}

// Strict UTF-8 (no overlong forms, no surrogates, nothing past U+10FFFF); advances `p` past the
// sequence, or past its longest valid prefix when it is ill-formed.
char32_t NextStrictUtf8(const unsigned char*& p) {
  const unsigned lead = *p++;
  if (lead < 0x80) return lead;
  int more;
  char32_t c;
  char32_t low;
  if (lead >= 0xC2 && lead <= 0xDF) {
    more = 1, c = lead & 0x1F, low = 0x80;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    more = 2, c = lead & 0x0F, low = 0x800;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    more = 3, c = lead & 0x07, low = 0x10000;
  } else {
    return kReplacement;
  }
  for (int i = 0; i < more; ++i) {
    if ((*p & 0xC0) != 0x80) return kReplacement;
    c = (c << 6) | (*p++ & 0x3F);
  }
  if (c < low || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return kReplacement;
  return c;
}

}  // namespace

u32 Utf16ToUtf8(const char16_t* source, char* dest, u32 destCapacity) {
  UnitSink<char> sink{dest, destCapacity};
  for (const char16_t* p = source;; ++p) {
    char32_t c = *p;
    if (c == 0) break;
    if (IsHighSurrogate(c) && IsLowSurrogate(p[1])) {
      c = 0x10000 + ((c - 0xD800) << 10) + (p[1] - 0xDC00);
      ++p;
    } else if (IsHighSurrogate(c) || IsLowSurrogate(c)) {
      c = kReplacement;
    }
    PutUtf8(sink, c);
  }
  sink.Put(0);
  return sink.count;
}

u32 Utf8ToUtf16(const char* source, char16_t* dest, u32 destCapacity) {
  UnitSink<char16_t> sink{dest, destCapacity};
  const auto* p = reinterpret_cast<const unsigned char*>(source);
  while (*p) {
    const char32_t c = NextStrictUtf8(p);
    if (c >= 0x10000) {
      sink.Put(0xD800 + ((c - 0x10000) >> 10));
      sink.Put(0xDC00 + ((c - 0x10000) & 0x3FF));
    } else {
      sink.Put(c);
    }
  }
  sink.Put(0);
  return sink.count;
}
