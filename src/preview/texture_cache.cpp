#include "preview/texture_cache.h"

#include <strings.h>

#include "core/hash.h"
#include "preview/render_device.h"

TextureEntry* TextureCache::Find(const char* name, u32 hash, TextureBlock** owner) const {
  for (TextureBlock* block = buckets[hash & 0xFF]; block; block = block->nextBlock) {
    if (block->usedCount == 0) continue;
    for (TextureEntry& entry : block->entries) {
      // The hash settles almost every miss before any text is compared.
      if (entry.used && entry.hash == hash && strcasecmp(entry.name.Text(), name) == 0) {
        if (owner) *owner = block;
        return &entry;
      }
    }
  }
  return nullptr;
}

TextureEntry* TextureCache::FindOrAdd(const char* name) {
  const u32 hash = HashName(name);
  if (TextureEntry* found = Find(name, hash)) return found;
  TextureBlock*& head = buckets[hash & 0xFF];
  TextureBlock* block = head;
  while (block && block->usedCount == TextureBlock::kEntries) block = block->nextBlock;
  if (!block) {
    block = TextureBlock::New();
    if (!block) return nullptr;
    block->nextBlock = head;
    head = block;
  }
  for (TextureEntry& entry : block->entries) {
    if (entry.used) continue;
    entry.texture = 0;
    entry.used = true;
    entry.hash = hash;
    entry.name.Assign(name);
    ++block->usedCount;
    return &entry;
  }
  return nullptr;  // unreachable: the block had a free slot
}

void TextureCache::Release(TextureBlock& block, TextureEntry& entry) {
  if (entry.texture && device) device->ReleaseTexture(entry.texture);
  entry.texture = 0;
  entry.used = false;
  --block.usedCount;
}

void TextureCache::Remove(const char* name) {
  TextureBlock* block = nullptr;
  if (TextureEntry* entry = Find(name, HashName(name), &block)) Release(*block, *entry);
}

void TextureCache::ReleaseAll() {
  for (TextureBlock* head : buckets) {
    for (TextureBlock* block = head; block; block = block->nextBlock) {
      if (block->usedCount == 0) continue;
      for (TextureEntry& entry : block->entries) {
        if (entry.used) Release(*block, entry);
      }
    }
  }
}

void TextureCache::Destroy() {
  ReleaseAll();
  for (TextureBlock*& head : buckets) {
    while (head) {
      TextureBlock* next = head->nextBlock;
      TextureBlock::Delete(head);
      head = next;
    }
  }
}

u32 TextureCache::BlockCount(u32 bucket) const {
  u32 count = 0;
  for (const TextureBlock* block = buckets[bucket & 0xFF]; block; block = block->nextBlock) ++count;
  return count;
}
