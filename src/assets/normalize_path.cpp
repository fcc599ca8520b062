#include "assets/normalize_path.h"

#include <cstring>
#include <functional>

namespace {

bool IsSeparator(char c) { return c == '/' || c == '\\'; }

// `out` is emptied first; the result is never longer than `text`.
void NormalizeInto(const char* text, CStringBufferA& out) {
  out.Clear(false);
  const size_t n = std::strlen(text);
  if (n >= UINT32_MAX || !out.Reserve(static_cast<u32>(n + 1))) return;
  char* dest = out.Data();
  u32 length = 0;
  bool afterSeparator = false;
  for (const char* p = text; *p; ++p) {
    if (IsSeparator(*p)) {
      afterSeparator = true;
      continue;
    }
    if (afterSeparator) dest[length++] = '\\';
    dest[length++] = *p;
    afterSeparator = false;
  }
  out.SetLength(length);
}

}  // namespace

void NormalizePath(const char* text, CStringBufferA& out) {
  const char* own = out.Text();
  const bool inside =
      std::greater_equal<const char*>()(text, own) && std::less_equal<const char*>()(text, own + out.Length());
  if (!inside) {
    NormalizeInto(text, out);
    return;
  }
  TStringBufferA<261> local;
  NormalizeInto(text, local);
  out.Assign(local.Text());
}

void DisplayPath(const char* path, CStringBufferA& out) {
  if (!out.Assign(path)) return;
  char* text = out.Data();
  for (u32 i = 0; i < out.Length(); ++i) {
    if (text[i] == '\\') text[i] = '/';
  }
}
