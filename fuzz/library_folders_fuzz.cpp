// Any bytes as Steam's libraryfolders.vdf: the parser gives true or false without a crash or a read
// outside the text, and false leaves no folders.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/library_folders.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string> folders;
  const bool ok = ParseLibraryFolders(std::string_view(reinterpret_cast<const char*>(data), size), folders);
  if (!ok && !folders.empty()) __builtin_trap();
  return 0;
}
