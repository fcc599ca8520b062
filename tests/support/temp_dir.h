#pragma once

#include <string>
#include <string_view>

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

// The whole file at `path`; empty when it can't be read.
std::string ReadFileBytes(const std::string& path);

// Writes `bytes` to `path`, making the folders above it. False on any failure.
bool WriteFileBytes(const std::string& path, std::string_view bytes);

}  // namespace testsupport
