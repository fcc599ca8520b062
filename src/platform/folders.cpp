#include "platform/folders.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "platform/file_handle.h"

FolderResult MakeFolder(const char* path) {
  char platformPath[PATH_MAX];
  if (!path || !ToPlatformPath(path, platformPath, sizeof(platformPath))) return FolderResult::Failed;
  if (::mkdir(platformPath, 0777) == 0) return FolderResult::Made;
  return errno == EEXIST ? FolderResult::Exists : FolderResult::Failed;
}

bool MakeFolders(const char* path) {
  char platformPath[PATH_MAX];
  if (!path || !ToPlatformPath(path, platformPath, sizeof(platformPath))) return false;
  // Each prefix that ends at a separator, then the whole; the root and empty steps are skipped.
  for (char* p = platformPath + 1;; ++p) {
    const bool end = *p == 0;
    if (*p != '/' && !end) continue;
    const char kept = *p;
    *p = 0;
    const bool made = ::mkdir(platformPath, 0777) == 0 || errno == EEXIST;
    struct stat info {};
    const bool folder = made && ::stat(platformPath, &info) == 0 && S_ISDIR(info.st_mode);
    *p = kept;
    if (!folder) return false;
    if (end) return true;
  }
}

bool SyncFileSystem(const char* path) {
  char platformPath[PATH_MAX];
  if (!path || !ToPlatformPath(path, platformPath, sizeof(platformPath))) return false;
  const int fd = ::open(platformPath, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool synced = ::syncfs(fd) == 0;
  ::close(fd);
  return synced;
}

bool ListFolder(const char* path, std::vector<std::string>& names) {
  names.clear();
  char platformPath[PATH_MAX];
  if (!path || !ToPlatformPath(path, platformPath, sizeof(platformPath))) return false;
  DIR* folder = ::opendir(platformPath[0] ? platformPath : ".");
  if (!folder) return false;
  while (const dirent* entry = ::readdir(folder)) {
    if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
      names.emplace_back(entry->d_name);
  }
  ::closedir(folder);
  // readdir's order is the file system's; callers want the same answer every time.
  std::sort(names.begin(), names.end());
  return true;
}

bool IsFolder(const char* path) {
  char platformPath[PATH_MAX];
  if (!path || !ToPlatformPath(path, platformPath, sizeof(platformPath))) return false;
  struct stat info {};
  return ::stat(platformPath, &info) == 0 && S_ISDIR(info.st_mode);
}

bool RealPath(const char* path, std::string& out) {
  out.clear();
  char platformPath[PATH_MAX];
  char resolved[PATH_MAX];
  if (!path || !ToPlatformPath(path, platformPath, sizeof(platformPath))) return false;
  if (!::realpath(platformPath, resolved)) return false;
  out = resolved;
  return true;
}
