#include "assets/name_store.h"

#include <cstring>

#include "core/memory_hooks.h"

const char* NameStore::Add(const u8* bytes, u32 length) {
  if (length >= room) {
    // A name longer than a block gets a block of its own size.
    const u64 size = length >= kBlockSize ? u64(length) + 1 : kBlockSize;
    char** slot = blocks.Append();
    char* block = slot ? static_cast<char*>(MemAllocate(size)) : nullptr;
    if (!block) {
      if (slot) (void)blocks.SetSize(blocks.Count() - 1);
      return nullptr;
    }
    *slot = block;
    free = block;
    room = u32(size);
  }
  char* name = free;
  if (length) std::memcpy(name, bytes, length);
  name[length] = 0;
  free += length + 1;
  room -= length + 1;
  return name;
}

void NameStore::Clear() {
  for (char* block : blocks) MemFree(block);
  (void)blocks.SetSize(0);
  free = nullptr;
  room = 0;
}
