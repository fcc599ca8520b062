#include "core/utf8.h"

#include <bit>

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

// Strict UTF-8: DecodeUtf8 with only the lead bytes of sequences up to U+10FFFF (an ill-formed
// lead takes one byte) and nothing past U+10FFFF. Advances `p` past what was taken.
char32_t NextStrictUtf8(const unsigned char*& p) {
  const unsigned lead = *p;
  if (lead >= 0x80 && (lead < 0xC2 || lead > 0xF4)) {
    ++p;
    return kReplacement;
  }
  u32 size;
  const u32 code = DecodeUtf8(reinterpret_cast<const char*>(p), size);
  p += size;
  return code > 0x10FFFF ? kReplacement : code;
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

u32 DecodeUtf8(const char* text, u32& size) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(text);
  const u32 lead = bytes[0];
  size = 1;
  if (lead < 0x80) return lead;
  u32 more;
  u32 code;
  if (lead >= 0xC0 && lead <= 0xDF) {
    more = 1, code = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    more = 2, code = lead & 0x0F;
  } else if (lead >= 0xF0 && lead <= 0xF7) {
    more = 3, code = lead & 0x07;
  } else if (lead >= 0xF8 && lead <= 0xFB) {
    more = 4, code = lead & 0x03;
  } else if (lead >= 0xFC && lead <= 0xFD) {
    more = 5, code = lead & 0x01;
  } else {
    return kReplacement;
  }
  for (u32 i = 1; i <= more; ++i) {
    if ((bytes[i] & 0xC0) != 0x80) {
      size = i;
      return kReplacement;
    }
    code = (code << 6) | (bytes[i] & 0x3F);
  }
  size = more + 1;
  // The highest set bit decides how many bytes the code needs; more or fewer is malformed.
  const u32 highBit = code ? 31 - std::countl_zero(code) : 0;
  if (highBit < 6 || (highBit - 6) / 5 + 1 != more) return kReplacement;
  if (code >= 0xD800 && code <= 0xDFFF) return kReplacement;
  return code;
}
