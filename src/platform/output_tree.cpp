#include "platform/output_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/folders.h"

namespace {

std::atomic<u32> gSerial{0};

// An open folder, closed when it goes; the tree's root is never closed by it.
class FolderHandle {
 public:
  explicit FolderHandle(int fd, bool owned) : handle(fd), own(owned) {}
  FolderHandle(const FolderHandle&) = delete;
  FolderHandle& operator=(const FolderHandle&) = delete;
  ~FolderHandle() {
    if (own && handle >= 0) ::close(handle);
  }
  int Get() const { return handle; }
  void Reset(int fd) {
    if (own && handle >= 0) ::close(handle);
    handle = fd;
    own = true;
  }

 private:
  int handle;
  bool own;
};

// The folder `name` in `parent`, made if missing; a link or a file in its place is refused.
int EnterFolder(int parent, const char* name) {
  const int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
  int fd = ::openat(parent, name, flags);
  if (fd < 0 && errno == ENOENT) {
    // Another thread may make it at the same time: either way it is there afterwards.
    if (::mkdirat(parent, name, 0777) != 0 && errno != EEXIST) return -1;
    fd = ::openat(parent, name, flags);
  }
  return fd;
}

bool WriteAll(int fd, const void* data, u64 size) {
  const char* at = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t written = ::write(fd, at, size);
    if (written < 0 && errno == EINTR) continue;
    if (written == 0) errno = ENOSPC;
    if (written <= 0) return false;
    at += written;
    size -= u64(written);
  }
  return true;
}

bool Fail(std::string& error, const char* step) {
  error = std::string(step) + std::strerror(errno);
  return false;
}

}  // namespace

OutputTree::~OutputTree() {
  if (root >= 0) ::close(root);
}

bool OutputTree::Open(const std::string& folder, std::string& error) {
  if (!MakeFolders(folder.c_str())) return Fail(error, "can't make the folder: ");
  root = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  return root >= 0 || Fail(error, "can't open the folder: ");
}

TreeWrite OutputTree::Write(const std::vector<std::string>& components, const void* data, u64 size,
                            std::string& error) const {
  if (root < 0 || components.empty()) {
    errno = EINVAL;
    return Fail(error, ""), TreeWrite::kFailed;
  }
  FolderHandle folder(root, false);
  for (size_t i = 0; i + 1 < components.size(); ++i) {
    const int next = EnterFolder(folder.Get(), components[i].c_str());
    if (next < 0) {
      const bool inTheWay = errno == ELOOP || errno == ENOTDIR;
      Fail(error, "");
      return inTheWay ? TreeWrite::kLinkInTheWay : TreeWrite::kFailed;
    }
    folder.Reset(next);
  }
  const std::string& name = components.back();
  char temporary[48];
  std::snprintf(temporary, sizeof(temporary), ".%d-%u.partial", int(::getpid()), gSerial++);
  const int fd = ::openat(folder.Get(), temporary, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
  if (fd < 0) return Fail(error, ""), TreeWrite::kFailed;
  const bool written = WriteAll(fd, data, size);
  const int writeError = errno;
  const bool closed = ::close(fd) == 0;
  // The rename puts the file in place of whatever entry has its name, a link included.
  if (written && closed && ::renameat(folder.Get(), temporary, folder.Get(), name.c_str()) == 0) {
    return TreeWrite::kWritten;
  }
  const int failure = written ? errno : writeError;
  ::unlinkat(folder.Get(), temporary, 0);
  errno = failure;
  Fail(error, written && closed ? "rename refused: " : "");
  return TreeWrite::kFailed;
}
