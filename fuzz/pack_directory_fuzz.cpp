// Any bytes as a game's packs: Open must give true or false without a crash or a read outside a
// buffer, and whatever it indexed must be fetchable or fail cleanly.
#include <stdlib.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "assets/pack_index.h"

namespace {

// The input is split into up to three packs at the separator, so that chains across packs and
// duplicate names between them are reached too.
constexpr char kSeparator[] = "@@PACK@@";
constexpr size_t kMaxPacks = 3;

const std::string& Folder() {
  static const std::string folder = [] {
    char pattern[] = "/dev/shm/tarnwick-fuzz-XXXXXX";
    const char* made = mkdtemp(pattern);
    if (!made) __builtin_trap();
    return std::string(made);
  }();
  return folder;
}

void WritePack(size_t number, const uint8_t* data, size_t size) {
  char path[256];
  std::snprintf(path, sizeof(path), "%s/assets_%.3zu.pack", Folder().c_str(), number);
  FILE* file = std::fopen(path, "wb");
  if (!file) __builtin_trap();
  if (size) std::fwrite(data, 1, size, file);
  std::fclose(file);
}

void RemovePack(size_t number) {
  char path[256];
  std::snprintf(path, sizeof(path), "%s/assets_%.3zu.pack", Folder().c_str(), number);
  unlink(path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  size_t packs = 0;
  size_t start = 0;
  while (packs < kMaxPacks) {
    const size_t end = packs + 1 < kMaxPacks ? input.find(kSeparator, start) : std::string::npos;
    const size_t stop = end == std::string::npos ? input.size() : end;
    WritePack(packs++, data + start, stop - start);
    if (end == std::string::npos) break;
    start = end + sizeof(kSeparator) - 1;
  }
  for (size_t n = packs; n < kMaxPacks; ++n) RemovePack(n);

  static PackIndex index;
  if (index.Open(Folder().c_str())) {
    CByteBuffer bytes;
    index.Walk([&](const char* name, const PackEntry* entry) {
      if (index.Find(name) != entry) __builtin_trap();
      (void)PackIndex::FetchEntry(entry, bytes);
      return true;
    });
  } else if (index.EntryCount() != 0 || index.PackCount() != 0) {
    __builtin_trap();
  }
  return 0;
}
