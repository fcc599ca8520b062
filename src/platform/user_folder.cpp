#include "platform/user_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace {

constexpr const char* kDataBelowHome = "%s/.local/share";

bool IsAbsolute(const char* path) { return path && path[0] == '/'; }

}  // namespace

bool GetUserDataFolder(CStringBufferA& out) {
  out.Clear(false);
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); IsAbsolute(xdg)) {
    out.Assign(xdg);
    return out.Length() > 0;
  }
  TStringBufferA<512> home;
  return GetHomeFolder(home) && out.Format(kDataBelowHome, home.Text()) > 0;
}

bool GetHomeFolder(CStringBufferA& out) {
  out.Clear(false);
  if (const char* home = std::getenv("HOME"); home && home[0]) return out.Assign(home) && out.Length() > 0;
  char scratch[4096];
  passwd entry;
  passwd* found = nullptr;
  if (getpwuid_r(getuid(), &entry, scratch, sizeof(scratch), &found) != 0 || !found || !found->pw_dir ||
      !found->pw_dir[0]) {
    return false;
  }
  return out.Assign(found->pw_dir) && out.Length() > 0;
}
