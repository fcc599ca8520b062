#include "platform/windows_path.h"

#include <string>

#include "platform/folders.h"
#include "platform/path_case.h"

namespace {

bool IsSeparator(char c) { return c == '\\' || c == '/'; }

bool IsDriveLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

}  // namespace

bool MapWindowsPath(const char* prefix, const char* path, CStringBufferA& out) {
  out.Clear(false);
  if (!prefix || !path || !IsDriveLetter(path[0]) || path[1] != ':' || (path[2] && !IsSeparator(path[2]))) {
    return false;
  }
  // Wine names its drive links in lower case.
  const char letter = path[0] >= 'A' && path[0] <= 'Z' ? char(path[0] - 'A' + 'a') : path[0];
  std::string link = std::string(prefix) + "/dosdevices/" + letter + ":";
  std::string drive;
  if (!RealPath(link.c_str(), drive) || !IsFolder(drive.c_str())) return false;
  if (drive == "/") drive.clear();  // the root is the separator that the rest begins with
  (void)MatchPathCase((drive + "/" + (path + 2)).c_str(), out);
  return out.Length() > 0;
}
