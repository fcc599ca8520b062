#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/types.h"

namespace gamewriters {

// Plain descriptions of an assets_NNN.pack, turned into bytes by BuildPack. Every field that the
// reader checks can be overridden to make a broken pack.
struct PackFileEntry {
  std::string name{};
  std::string data{};               // stored in the pack where the layout puts it
  std::optional<u32> nameLength{};  // written instead of name.size()
  std::optional<u32> dataOffset{};  // written instead of where the data went
  std::optional<u32> dataSize{};    // written instead of data.size()
  u32 reserved = 0;
};

struct PackChunk {
  std::vector<PackFileEntry> entries{};
  std::optional<u32> at{};          // absolute offset of the chunk; default right after what came before
  std::optional<u32> nextChunk{};   // default: the next chunk's offset, 0 for the last
  std::optional<u32> entryCount{};  // default: entries.size()
};

enum class DataPlacement {
  AfterDirectory,  // all file data behind the last chunk
  AfterEachChunk,  // each chunk's data right behind that chunk, so data lies between chunks
};

struct PackLayout {
  std::vector<PackChunk> chunks;
  DataPlacement placement = DataPlacement::AfterDirectory;
};

std::string BuildPack(const PackLayout& layout);

// One chunk holding `files` (name, data) in order.
PackLayout SingleChunkPack(const std::vector<std::pair<std::string, std::string>>& files);

// Writes assets_000.pack, assets_001.pack, ... into `folder`.
bool WritePacks(const std::string& folder, const std::vector<PackLayout>& packs);

std::string PackFileName(u32 number);

}  // namespace gamewriters
