#pragma once

#include <string>
#include <string_view>

#include "game_writers/file_bytes.h"  // the files put in such a folder

namespace testsupport {

// A fresh folder under $TMPDIR (or /tmp), removed with everything in it when this object dies.
class TempDir {
 public:
  TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  ~TempDir();

  const std::string& Path() const { return path; }
  // Path of `name` inside the folder.
  std::string Join(std::string_view name) const;

 private:
  std::string path;
};

}  // namespace testsupport
