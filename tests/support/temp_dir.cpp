#include "support/temp_dir.h"

#include <stdlib.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace testsupport {

TempDir::TempDir() {
  const char* base = std::getenv("TMPDIR");
  std::string pattern = std::string(base && base[0] ? base : "/tmp") + "/tarnwick-XXXXXX";
  if (mkdtemp(pattern.data())) path = pattern;
}

TempDir::~TempDir() {
  std::error_code ignored;
  if (!path.empty()) std::filesystem::remove_all(path, ignored);
}

std::string TempDir::Join(std::string_view name) const { return path + "/" + std::string(name); }

}  // namespace testsupport
