#include "assets/wildcard_match.h"

#include "core/utf8.h"

namespace {

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

bool WildcardMatch(const char* text, const char* pattern) {
  Cursor c(text);
  Cursor p(pattern);
  for (;;) {
    const u32 wanted = p.code;
    if (wanted != 0) p.Step();
    switch (wanted) {
      case 0: return c.code == 0;
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
