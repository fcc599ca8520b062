#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "assets/pack_index.h"
#include "image/texture_png.h"

// How the export of one texture went.
enum class TextureResult { kWritten, kMissing, kUndecodable, kUnwritable };

// An exported texture shared by the files that embed it.
using SharedTexturePng = std::shared_ptr<const TexturePng>;

// The textures a batch exports, each fetched, decoded and encoded once per alpha form however many
// actors use it and whatever the format. Files beside an FBX file are written by the first actor
// that wants them and copied by the others; the PNG bytes that a .glb embeds are held for the
// next actor while they fit a budget, and made afresh past it. Shared by the conversions of a
// batch; safe on any thread.
class TextureStore {
 public:
  // PNG bytes held at most, over all textures.
  static constexpr u64 kHeldBytes = u64(256) << 20;

  // `flushEach`: each file goes to disk before it takes its place; a batch, which flushes once at
  // its end, passes false.
  explicit TextureStore(bool flushEach = true) : flush(flushEach) {}

  // Writes the texture `name` of the packs as a PNG file at `path` (through a temporary), and its
  // split alpha, if any, at `alphaPath`; or says why it can't. `wroteAlpha` tells whether there was
  // an alpha to write.
  TextureResult Write(const PackIndex& packs, const std::string& name, AlphaForm form, const std::string& path,
                      const std::string& alphaPath, bool& wroteAlpha);
  // The texture `name` of the packs as PNG bytes in `texture`, or why it can't be had (never
  // kUnwritable).
  TextureResult Encode(const PackIndex& packs, const std::string& name, AlphaForm form, SharedTexturePng& texture);
  // How many images were decoded so far: one per texture and form, unless one had to be made afresh.
  u32 DecodeCount() const { return decoded; }

 private:
  struct Entry {
    std::mutex lock;  // held while the first actor makes the texture, so the others wait for it
    bool done = false;
    TextureResult result = TextureResult::kMissing;
    std::string file, alphaFile;  // the first files written, which the others copy
    SharedTexturePng texture;     // held while within the budget
  };

  std::shared_ptr<Entry> Find(const std::string& name, AlphaForm form);
  TextureResult Make(const PackIndex& packs, const std::string& name, AlphaForm form, TexturePng& texture);
  // Keeps `texture` in `entry` when the budget has room for it.
  void Hold(Entry& entry, SharedTexturePng texture);

  const bool flush;
  std::atomic<u32> decoded{0};
  std::atomic<u64> held{0};
  std::mutex lock;
  std::unordered_map<std::string, std::shared_ptr<Entry>> entries;
};
