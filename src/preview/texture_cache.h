#pragma once

#include "core/auto_pool.h"
#include "core/string_buffer.h"
#include "core/types.h"

class IRenderDevice;

// One image of the cache. `texture` is 0 until the image is decoded.
struct TextureEntry {
  u32 texture = 0;
  bool used = false;
  u32 hash = 0;             // HashName of the name
  TStringBufferA<48> name;  // the name as first asked for
};

// Eight entries of one bucket. Blocks never move, so an entry found stays where it is while
// others are added.
struct TextureBlock : TAutoPoolClass<TextureBlock, 32> {
  static constexpr u32 kEntries = 8;

  u32 usedCount = 0;
  TextureEntry entries[kEntries];
  TextureBlock* nextBlock = nullptr;  // an older block of the same bucket
};

// The textures of the shown model by name, ignoring case: 256 buckets by the low byte of the
// name's hash, each a chain of blocks, newest first. Textures are released through `device`.
class TextureCache {
 public:
  static constexpr u32 kBuckets = 256;

  TextureCache() = default;
  TextureCache(const TextureCache&) = delete;
  TextureCache& operator=(const TextureCache&) = delete;
  ~TextureCache() { Destroy(); }

  void SetDevice(IRenderDevice* renderDevice) { device = renderDevice; }
  // The entry of `name`, made (without a texture) if there is none; null when no block can be had.
  TextureEntry* FindOrAdd(const char* name);
  // Releases the entry's texture and frees its slot; the block keeps its place. A miss does nothing.
  void Remove(const char* name);
  // Releases every entry; the blocks stay for reuse.
  void ReleaseAll();
  // ReleaseAll, then every block goes back to the pool.
  void Destroy();

  u32 BlockCount(u32 bucket) const;  // for tests

 private:
  TextureEntry* Find(const char* name, u32 hash, TextureBlock** owner = nullptr) const;
  void Release(TextureBlock& block, TextureEntry& entry);

  TextureBlock* buckets[kBuckets] = {};
  IRenderDevice* device = nullptr;
};
