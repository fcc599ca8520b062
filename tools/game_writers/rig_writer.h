#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "core/types.h"

namespace gamewriters {

// Plain descriptions of a rig network file (.mrn), turned into bytes by the Build functions. The
// fields that a reader checks can be overridden (the std::optional ones) to make broken files.

// -- Chunks

struct RigFileChunk {
  u32 type = 0;
  u32 id = 0;
  std::string data{};
  u32 alignment = 0;  // 0: data right behind the header; else at a multiple of this in the file
  u32 tag0 = 24;
  u32 tag1 = 6;
  std::optional<u32> dataSize{};  // written instead of data.size()
};

// Each chunk is its 40-byte header, zeros up to its alignment, then its data padded with zeros to a
// multiple of 4.
std::string BuildRigFile(const std::vector<RigFileChunk>& chunks);

// A string table (count, offsets, chars) that can sit anywhere: its positions count from its start.
std::string BuildStringTable(const std::vector<std::string>& strings, std::optional<u32> count = {});

// -- Rig chunk (type 1)

struct RigBoneLayout {
  std::string name{};
  i32 parent = -1;
  std::array<f32, 4> translation{};
  std::array<f32, 4> rotation{0, 0, 0, 1};
};

struct RigLayout {
  std::vector<RigBoneLayout> bones{};
  u32 channelCount = 2;            // entries past the first two point at the translations again
  std::optional<u32> boneCount{};  // written instead of bones.size()
  std::optional<u32> nameCount{};  // the bone name table's count, instead of bones.size()
  // Chunk positions written instead of the true ones.
  std::optional<u32> hierarchy{};
  std::optional<u32> boneNames{};
  std::optional<u32> pose{};
};

std::string BuildRigChunkData(const RigLayout& rig);

// -- Animation set chunk (type 14)

std::string BuildAnimSetChunkData(const std::vector<std::string>& names);

// -- Network definition chunk (type 10)

struct LookupLayout {
  u32 typeId = 0;
  u8 setStride = 1;
  u8 slot = 0;
};

struct NetworkNodeLayout {
  u32 typeId = 0;
  u8 flags = 0;  // 0x04: flagged
  u16 nameIndex = 0;
  // One 12-byte attribute record each, leading to an attribute with this word at its offset 8
  // (the rig id, for the attributes that animation sets pick).
  std::vector<u32> attributeWords{};
  std::vector<LookupLayout> lookups{};
  // A record placed where the lookup array's first word leads when counted from the array's start.
  std::optional<LookupLayout> fallback{};
};

struct NetworkLayout {
  std::vector<NetworkNodeLayout> nodes{};
  std::vector<std::string> nodeNames{};
  std::optional<std::vector<std::string>> tableNames{};  // none: nameTable is 0
  std::optional<u32> nodeCount{};                        // written instead of nodes.size()
  std::optional<u32> flaggedNodeCount{};                 // written instead of the nodes flagged 0x04
  std::optional<u32> nodesPosition{};                    // e.g. 0, which says there are no nodes
  std::optional<u32> nodeNamesPosition{};
};

std::string BuildNetworkDefinitionData(const NetworkLayout& network);

// -- Whole networks

struct RigNetworkLayout {
  struct Rig {
    u32 id = 0;
    RigLayout rig{};
  };
  std::vector<Rig> rigs{};
  std::optional<std::vector<std::string>> animSets{};
  std::optional<NetworkLayout> network{};
  u32 alignment = 16;
};

// The rig chunks in order, then the animation set chunk and the network definition if given.
std::vector<RigFileChunk> RigNetworkChunks(const RigNetworkLayout& layout);

inline std::string BuildRigNetwork(const RigNetworkLayout& layout) { return BuildRigFile(RigNetworkChunks(layout)); }

// Little-endian store at `at`, growing `bytes` with zeros as needed.
void PutU32(std::string& bytes, size_t at, u32 value);

}  // namespace gamewriters
