#include "platform/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

constexpr u32 kNameAttempts = 16;
std::atomic<u32> gSerial{0};

}  // namespace

bool OutputFile::Fail(const char* step) {
  (void)error.Format("%s%s", step, std::strerror(errno));
  Discard();
  return false;
}

bool OutputFile::Open(const char* path) {
  Discard();
  error.Clear(false);
  if (!path || !*path) {
    errno = ENOENT;
    return Fail();
  }
  // The target must be one we may replace: not a folder, and writable if it exists.
  struct stat existing {};
  if (stat(path, &existing) == 0) {
    if (S_ISDIR(existing.st_mode)) {
      errno = EISDIR;
      return Fail();
    }
    if (access(path, W_OK) != 0) return Fail();
  }
  if (target.Format("%s", path) <= 0) {
    errno = ENOMEM;
    return Fail();
  }
  // A name of our own beside the target; the usual mode, so the umask applies as to any new file.
  for (u32 attempt = 0; attempt < kNameAttempts; ++attempt) {
    if (temporary.Format("%s.%d-%u.partial", path, int(getpid()), gSerial.fetch_add(1)) <= 0) {
      errno = ENOMEM;
      return Fail();
    }
    fd = ::open(temporary.Text(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0) return true;
    if (errno != EEXIST) break;
  }
  temporary.Clear(false);
  return Fail();
}

bool OutputFile::Write(const void* data, u64 size) {
  if (fd < 0) return false;
  const char* at = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t written = ::write(fd, at, size);
    if (written < 0 && errno == EINTR) continue;
    if (written == 0) errno = ENOSPC;  // a write that takes nothing has found the disk full
    if (written <= 0) return Fail("short write: ");
    at += written;
    size -= u64(written);
  }
  return true;
}

bool OutputFile::Commit(bool flush) {
  if (fd < 0) return false;
  // On disk before it takes the target's place, so a crash leaves the old file or the whole new one.
  if (flush && fsync(fd) != 0) return Fail();
  const int closed = ::close(fd);
  fd = -1;
  if (closed != 0) return Fail();
  if (std::rename(temporary.Text(), target.Text()) != 0) return Fail("rename refused: ");
  temporary.Clear(false);
  return true;
}

void OutputFile::Discard() {
  if (fd >= 0) {
    ::close(fd);
    fd = -1;
  }
  if (temporary.Length() > 0) {
    ::unlink(temporary.Text());
    temporary.Clear(false);
  }
}
