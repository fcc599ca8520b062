#include "game_writers/pack_writer.h"

#include <algorithm>
#include <cstdio>

#include "game_writers/file_bytes.h"

namespace gamewriters {

namespace {

constexpr u32 kChunkHeaderSize = 8;
constexpr u32 kEntryFixedSize = 16;

void PutU32BE(std::string& out, size_t at, u32 value) {
  if (out.size() < at + 4) out.resize(at + 4);
  out[at] = static_cast<char>(value >> 24);
  out[at + 1] = static_cast<char>(value >> 16);
  out[at + 2] = static_cast<char>(value >> 8);
  out[at + 3] = static_cast<char>(value);
}

void PutBytes(std::string& out, size_t at, const std::string& bytes) {
  if (out.size() < at + bytes.size()) out.resize(at + bytes.size());
  std::copy(bytes.begin(), bytes.end(), out.begin() + static_cast<std::ptrdiff_t>(at));
}

u32 DirectorySize(const PackChunk& chunk) {
  u32 size = kChunkHeaderSize;
  for (const PackFileEntry& entry : chunk.entries) size += kEntryFixedSize + static_cast<u32>(entry.name.size());
  return size;
}

}  // namespace

std::string BuildPack(const PackLayout& layout) {
  // First pass: where every chunk and every file's data go.
  std::vector<u32> chunkAt;
  std::vector<std::vector<u32>> dataAt(layout.chunks.size());
  u32 cursor = 0;
  for (size_t c = 0; c < layout.chunks.size(); ++c) {
    const PackChunk& chunk = layout.chunks[c];
    chunkAt.push_back(chunk.at.value_or(cursor));
    cursor = chunkAt.back() + DirectorySize(chunk);
    if (layout.placement == DataPlacement::AfterEachChunk) {
      for (const PackFileEntry& entry : chunk.entries) {
        dataAt[c].push_back(cursor);
        cursor += static_cast<u32>(entry.data.size());
      }
    }
  }
  if (layout.placement == DataPlacement::AfterDirectory) {
    for (size_t c = 0; c < layout.chunks.size(); ++c) {
      for (const PackFileEntry& entry : layout.chunks[c].entries) {
        dataAt[c].push_back(cursor);
        cursor += static_cast<u32>(entry.data.size());
      }
    }
  }

  // Second pass: the bytes.
  std::string out;
  for (size_t c = 0; c < layout.chunks.size(); ++c) {
    const PackChunk& chunk = layout.chunks[c];
    const u32 next = c + 1 < layout.chunks.size() ? chunkAt[c + 1] : 0;
    size_t at = chunkAt[c];
    PutU32BE(out, at, chunk.nextChunk.value_or(next));
    PutU32BE(out, at + 4, chunk.entryCount.value_or(static_cast<u32>(chunk.entries.size())));
    at += kChunkHeaderSize;
    for (size_t e = 0; e < chunk.entries.size(); ++e) {
      const PackFileEntry& entry = chunk.entries[e];
      PutU32BE(out, at, entry.nameLength.value_or(static_cast<u32>(entry.name.size())));
      PutBytes(out, at + 4, entry.name);
      at += 4 + entry.name.size();
      PutU32BE(out, at, entry.dataOffset.value_or(dataAt[c][e]));
      PutU32BE(out, at + 4, entry.dataSize.value_or(static_cast<u32>(entry.data.size())));
      PutU32BE(out, at + 8, entry.reserved);
      at += 12;
      PutBytes(out, dataAt[c][e], entry.data);
    }
  }
  return out;
}

PackLayout SingleChunkPack(const std::vector<std::pair<std::string, std::string>>& files) {
  PackLayout layout;
  layout.chunks.emplace_back();
  for (const auto& [name, data] : files) layout.chunks[0].entries.push_back({.name = name, .data = data});
  return layout;
}

std::string PackFileName(u32 number) {
  char name[32];
  std::snprintf(name, sizeof(name), "assets_%.3u.pack", number);
  return name;
}

bool WritePacks(const std::string& folder, const std::vector<PackLayout>& packs) {
  for (size_t i = 0; i < packs.size(); ++i) {
    if (!WriteFileBytes(folder + "/" + PackFileName(static_cast<u32>(i)), BuildPack(packs[i]))) return false;
  }
  return true;
}

}  // namespace gamewriters
