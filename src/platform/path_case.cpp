#include "platform/path_case.h"

#include <string>
#include <vector>

#include "platform/folders.h"

namespace {

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

char FoldAscii(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

bool Exists(const char* path) {
  std::string real;
  return RealPath(path, real);
}

}  // namespace

bool EqualIgnoringCase(const char* a, const char* b) {
  for (; *a && *b; ++a, ++b) {
    if (FoldAscii(*a) != FoldAscii(*b)) return false;
  }
  return *a == *b;
}

bool MatchPathCase(const char* path, CStringBufferA& out) {
  out.Clear(false);
  if (!path) return false;
  std::string built;
  std::string part;
  std::vector<std::string> names;
  bool found = true;
  const char* p = path;
  while (*p) {
    while (IsSeparator(*p)) ++p;
    const char* end = p;
    while (*end && !IsSeparator(*end)) ++end;
    if (end == p) break;
    part.assign(p, end);
    p = end;
    // A relative path starts without a separator; an absolute one keeps its leading one.
    const std::string folder = built;
    if (!built.empty() || IsSeparator(path[0])) built += '\\';
    if (found && !Exists((built + part).c_str())) {
      found = false;
      if (ListFolder(folder.empty() && IsSeparator(path[0]) ? "/" : folder.c_str(), names)) {
        for (const std::string& name : names) {
          if (EqualIgnoringCase(name.c_str(), part.c_str())) {
            part = name;
            found = true;
            break;
          }
        }
      }
    }
    built += part;
  }
  if (built.empty() && IsSeparator(path[0])) built.push_back('\\');
  return out.Assign(built.c_str()) && found;
}
