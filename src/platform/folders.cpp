#include "platform/folders.h"

#include <limits.h>
#include <sys/stat.h>

#include <cerrno>

#include "platform/file_handle.h"

FolderResult MakeFolder(const char* path) {
  char platformPath[PATH_MAX];
  if (!path || !ToPlatformPath(path, platformPath, sizeof(platformPath))) return FolderResult::Failed;
  if (::mkdir(platformPath, 0777) == 0) return FolderResult::Made;
  return errno == EEXIST ? FolderResult::Exists : FolderResult::Failed;
}
