#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "core/types.h"

// How writing one file below the tree went.
enum class TreeWrite {
  kWritten,
  kLinkInTheWay,  // a symbolic link (or a file) stands where one of its folders goes: left alone
  kFailed,
};

// A folder that files are written below by relative paths that the caller has cleaned: each folder
// is entered without following a symbolic link, so no link inside the folder leads a write outside
// it. A file goes to a temporary beside its place and takes it, whole, only when written; a link
// already in its place is replaced, never followed. Safe on any thread once open.
class OutputTree {
 public:
  OutputTree() = default;
  OutputTree(const OutputTree&) = delete;
  OutputTree& operator=(const OutputTree&) = delete;
  ~OutputTree();

  // Makes `folder` (and the folders above it) where missing, and holds it open. False, with the
  // reason in `error`, when it can't.
  [[nodiscard]] bool Open(const std::string& folder, std::string& error);
  // Writes `size` bytes at `path`: parts joined by `/`, none empty, "." or "..". On any failure,
  // the system's reason in `error`, and nothing is left.
  [[nodiscard]] TreeWrite Write(const std::string& path, const void* data, u64 size, std::string& error) const;

 private:
  // An open folder below the root, closed when its last user lets it go.
  struct Folder;
  // The folder `path` below the root, entered part by part and kept for the next file there.
  std::shared_ptr<Folder> Enter(const std::string& path, TreeWrite& failure) const;

  // Folders held open at most: a game's files lie in a few thousand folders, and each open one
  // takes a descriptor of the process's limited number.
  static constexpr size_t kHeldFolders = 128;

  int root = -1;
  int pid = 0;
  mutable std::mutex lock;
  mutable std::unordered_map<std::string, std::shared_ptr<Folder>> folders;
};
