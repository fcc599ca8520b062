#pragma once

#include <string>
#include <vector>

#include "core/types.h"

// How writing one file below the tree went.
enum class TreeWrite {
  kWritten,
  kLinkInTheWay,  // a symbolic link (or a file) stands where one of its folders goes: left alone
  kFailed,
};

// A folder that files are written below by path components that the caller has cleaned: each
// folder is entered without following a symbolic link, so no link inside the folder leads a write
// outside it. A file goes to a temporary beside its place and takes it, whole, only when written; a
// link already in its place is replaced, never followed. Safe on any thread once open.
class OutputTree {
 public:
  OutputTree() = default;
  OutputTree(const OutputTree&) = delete;
  OutputTree& operator=(const OutputTree&) = delete;
  ~OutputTree();

  // Makes `folder` (and the folders above it) where missing, and holds it open. False, with the
  // reason in `error`, when it can't.
  [[nodiscard]] bool Open(const std::string& folder, std::string& error);
  // Writes `size` bytes at `components` (folders, then the file's name; none empty, ".", ".." or
  // holding a `/`). On any failure, the system's reason in `error`, and nothing is left.
  [[nodiscard]] TreeWrite Write(const std::vector<std::string>& components, const void* data, u64 size,
                                std::string& error) const;

 private:
  int root = -1;
};
