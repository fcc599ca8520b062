#include "platform/output_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

bool OutputFile::Fail() {
  (void)error.Format("%s", std::strerror(errno));
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
  if (!target.Format("%s", path) || !temporary.Format("%s.XXXXXX", path)) {
    errno = ENOMEM;
    return Fail();
  }
  // mkstemp makes the name unique and the file private to us; the mode is widened to the usual
  // one before the rename.
  fd = mkstemp(temporary.Data());
  if (fd < 0) {
    temporary.Clear(false);
    return Fail();
  }
  const mode_t mask = umask(0);
  umask(mask);
  if (fchmod(fd, 0666 & ~mask) != 0) return Fail();
  return true;
}

bool OutputFile::Write(const void* data, u64 size) {
  if (fd < 0) return false;
  const char* at = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t written = ::write(fd, at, size);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return Fail();
    at += written;
    size -= u64(written);
  }
  return true;
}

bool OutputFile::Commit() {
  if (fd < 0) return false;
  if (::close(fd) != 0) {
    fd = -1;
    return Fail();
  }
  fd = -1;
  if (std::rename(temporary.Text(), target.Text()) != 0) return Fail();
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
