#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "assets/pack_index.h"

// How the export of one texture went.
enum class TextureResult { kWritten, kMissing, kUndecodable, kUnwritable };

// The textures a batch writes, each fetched, decoded and encoded once however many actors use it:
// the first actor to want one writes it, the others copy that file. Holds no image, so it stays
// small whatever the batch. Shared by the conversions of a batch; safe on any thread.
class TextureStore {
 public:
  // `flushEach`: each file goes to disk before it takes its place; a batch, which flushes once at
  // its end, passes false.
  explicit TextureStore(bool flushEach = true) : flush(flushEach) {}

  // Writes the texture `name` of the packs as a PNG file at `path` (through a temporary), or says
  // why it can't.
  TextureResult Write(const PackIndex& packs, const std::string& name, const std::string& path);
  // How many images were decoded so far: one per texture, unless a copy had to be made afresh.
  u32 DecodeCount() const { return decoded; }

 private:
  struct Entry {
    std::mutex lock;  // held while the first actor makes the file, so the others wait for it
    bool done = false;
    TextureResult result = TextureResult::kMissing;
    std::string file;  // the first file written, which the others copy
  };

  const bool flush;
  std::atomic<u32> decoded{0};
  std::mutex lock;
  std::unordered_map<std::string, std::shared_ptr<Entry>> entries;
};
