#include "platform/output_tree.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/folders.h"

struct OutputTree::Folder {
  explicit Folder(int opened) : fd(opened) {}
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() { ::close(fd); }
  const int fd;
};

namespace {

std::atomic<u32> gSerial{0};

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

TreeWrite Fail(std::string& error, const char* step, TreeWrite result = TreeWrite::kFailed) {
  error = std::string(step) + std::strerror(errno);
  return result;
}

}  // namespace

OutputTree::~OutputTree() {
  folders.clear();
  if (root >= 0) ::close(root);
}

bool OutputTree::Open(const std::string& folder, std::string& error) {
  pid = int(::getpid());
  if (!MakeFolders(folder.c_str())) {
    Fail(error, "can't make the folder: ");
    return false;
  }
  root = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (root >= 0) return true;
  Fail(error, "can't open the folder: ");
  return false;
}

std::shared_ptr<OutputTree::Folder> OutputTree::Enter(const std::string& path, TreeWrite& failure) const {
  {
    const std::lock_guard guard(lock);
    const auto known = folders.find(path);
    if (known != folders.end()) return known->second;
  }
  int fd = ::dup(root);
  for (size_t start = 0; fd >= 0 && start < path.size();) {
    const size_t end = std::min(path.find('/', start), path.size());
    const int next = EnterFolder(fd, path.substr(start, end - start).c_str());
    const int error = errno;
    ::close(fd);
    errno = error;
    fd = next;
    start = end + 1;
  }
  if (fd < 0) {
    failure = errno == ELOOP || errno == ENOTDIR ? TreeWrite::kLinkInTheWay : TreeWrite::kFailed;
    return nullptr;
  }
  auto folder = std::make_shared<Folder>(fd);
  const std::lock_guard guard(lock);
  // Past the limit the folders held so far go; those in use stay open until their files are done.
  if (folders.size() >= kHeldFolders) folders.clear();
  return folders.try_emplace(path, folder).first->second;
}

TreeWrite OutputTree::Write(const std::string& path, const void* data, u64 size, std::string& error) const {
  const size_t slash = path.rfind('/');
  const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
  if (root < 0 || name.empty()) {
    errno = EINVAL;
    return Fail(error, "");
  }
  TreeWrite failure = TreeWrite::kFailed;
  const std::shared_ptr<Folder> folder =
      Enter(slash == std::string::npos ? std::string() : path.substr(0, slash), failure);
  if (!folder) return Fail(error, "", failure);
  char temporary[48];
  std::snprintf(temporary, sizeof(temporary), ".%d-%u.partial", pid, gSerial++);
  const int fd = ::openat(folder->fd, temporary, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
  if (fd < 0) return Fail(error, "");
  const bool written = WriteAll(fd, data, size);
  const int writeError = errno;
  const bool closed = ::close(fd) == 0;
  // The rename puts the file in place of whatever entry has its name, a link included.
  if (written && closed && ::renameat(folder->fd, temporary, folder->fd, name.c_str()) == 0) return TreeWrite::kWritten;
  const int cause = written ? errno : writeError;
  ::unlinkat(folder->fd, temporary, 0);
  errno = cause;
  return Fail(error, written && closed ? "rename refused: " : "");
}
