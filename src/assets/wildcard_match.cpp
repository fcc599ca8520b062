#include "assets/wildcard_match.h"

#include <bit>

namespace {

constexpr u32 kReplacement = 0xFFFD;

u32 AsciiLower(u32 c) { return (c >= 'A' && c <= 'Z') ? c + ('a' - 'A') : c; }

bool IsWildcard(u32 c) { return c == '*' || c == '?' || c == '#'; }

// One UTF-8 step: the code point at `p` and where the next one starts. ASCII, nearly all of a
// name, takes no call.
struct Cursor {
  const char* p;
  u32 code = 0;
  u32 size = 0;
  explicit Cursor(const char* text) : p(text) { Decode(); }
  void Step() {
    p += size;
    Decode();
  }
  void Decode() {
    const auto lead = static_cast<unsigned char>(*p);
    if (lead < 0x80) {
      code = lead;
      size = 1;
    } else {
      code = DecodeUtf8(p, size);
    }
  }
};

}  // namespace

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

bool WildcardMatch(const char* text, const char* pattern) {
  Cursor c(text);
  Cursor p(pattern);
  for (;;) {
    const u32 wanted = p.code;
    if (wanted != 0) p.Step();
    switch (wanted) {
      case 0:
        return c.code == 0;
      case '?':
        if (c.code == 0) return false;
        break;
      case '#':
        if (c.code < '0' || c.code > '9') return false;
        break;
      case '*':
        if (p.code == 0) return true;
        if (c.code == 0) return false;
        // One level of recursion per star: try the rest of the pattern at each place in the text.
        // Where the rest starts with a plain character, a place that doesn't hold it would fail
        // at the first comparison, so it isn't tried.
        for (const u32 first = AsciiLower(p.code);;) {
          if ((IsWildcard(first) || AsciiLower(c.code) == first) && WildcardMatch(c.p, p.p)) return true;
          if (c.code == 0) return false;
          c.Step();
        }
      default:
        if (AsciiLower(c.code) != AsciiLower(wanted)) return false;
        break;
    }
    c.Step();
  }
}
