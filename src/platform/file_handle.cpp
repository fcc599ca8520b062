#include "platform/file_handle.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

bool ToPlatformPath(const char* path, char* out, u64 capacity) {
  u64 i = 0;
  for (; path[i]; ++i) {
    if (i + 1 >= capacity) return false;
    out[i] = path[i] == '\\' ? '/' : path[i];
  }
  if (capacity == 0) return false;
  out[i] = 0;
  return true;
}

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept {
  if (this != &other) {
    Close();
    fd = std::exchange(other.fd, -1);
    size = other.size;
  }
  return *this;
}

bool FileHandle::Open(const char* path) {
  Close();
  char platformPath[PATH_MAX];
  if (!path || !ToPlatformPath(path, platformPath, sizeof(platformPath))) return false;
  const int opened = ::open(platformPath, O_RDONLY | O_CLOEXEC);
  if (opened < 0) return false;
  struct stat info;
  if (::fstat(opened, &info) != 0 || !S_ISREG(info.st_mode)) {
    ::close(opened);
    return false;
  }
  fd = opened;
  size = static_cast<u64>(info.st_size);
  return true;
}

void FileHandle::Close() {
  if (fd >= 0) ::close(fd);
  fd = -1;
  size = 0;
}

u64 FileHandle::ReadAt(u64 offset, void* dest, u64 count) const {
  if (fd < 0) return 0;
  u64 done = 0;
  auto* out = static_cast<char*>(dest);
  while (done < count) {
    const u64 chunk = count - done < SSIZE_MAX ? count - done : SSIZE_MAX;
    const ssize_t got = ::pread(fd, out + done, chunk, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    done += static_cast<u64>(got);
  }
  return done;
}
