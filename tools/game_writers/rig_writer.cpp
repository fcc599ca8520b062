#include "game_writers/rig_writer.h"

#include <algorithm>
#include <cstring>

namespace gamewriters {

namespace {

constexpr u32 kChunkHeaderSize = 40;
constexpr u32 kStringTableHeaderSize = 20;
constexpr u32 kRigHeaderSize = 52;
constexpr u32 kNetworkHeaderSize = 156;
constexpr u32 kNodeSize = 148;
constexpr u32 kLookupRecordSize = 12;
constexpr u32 kSlotBlockSize = 20;  // the slot is its byte 16
constexpr u32 kAttributeRecordSize = 12;
constexpr u32 kAttributeSize = 12;  // the word at offset 8
constexpr u8 kFlaggedNode = 0x04;
// Blocks inside chunks start at multiples of this, as the game lays them out.
constexpr size_t kBlockAlignment = 16;

void Put(std::string& bytes, size_t at, const void* value, size_t size) {
  if (bytes.size() < at + size) bytes.resize(at + size);
  std::memcpy(bytes.data() + at, value, size);
}

template <class T>
void PutValue(std::string& bytes, size_t at, T value) {
  Put(bytes, at, &value, sizeof(value));
}

// Pads `bytes` to a multiple of `alignment` and gives where the next block starts.
u32 AlignEnd(std::string& bytes, size_t alignment = kBlockAlignment) {
  bytes.resize((bytes.size() + alignment - 1) / alignment * alignment);
  return static_cast<u32>(bytes.size());
}

u32 Append(std::string& bytes, const std::string& block) {
  const u32 at = AlignEnd(bytes);
  bytes += block;
  return at;
}

u32 Size(const auto& container) { return static_cast<u32>(container.size()); }

void PutLookupRecord(std::string& node, size_t at, const LookupLayout& lookup) {
  PutValue<u32>(node, at, lookup.typeId);
  PutValue<u8>(node, at + 4, lookup.setStride);
  PutValue<u32>(node, at + 8, kLookupRecordSize);
  PutValue<u8>(node, at + kLookupRecordSize + 16, lookup.slot);
  node.resize(std::max(node.size(), at + kLookupRecordSize + kSlotBlockSize));
}

// One node with its attributes and lookup records; positions count from the node's start.
std::string BuildNode(const NetworkNodeLayout& layout) {
  std::string node(kNodeSize, '\0');
  PutValue<u32>(node, 0, layout.typeId);
  PutValue<u8>(node, 4, layout.flags);
  PutValue<u16>(node, 6, layout.nameIndex);

  const u32 records = AlignEnd(node);
  PutValue<u32>(node, 32, records);
  node.resize(records + Size(layout.attributeWords) * kAttributeRecordSize);
  for (u32 i = 0; i < Size(layout.attributeWords); ++i) {
    const u32 attribute = AlignEnd(node);
    PutU32(node, attribute + 8, layout.attributeWords[i]);
    node.resize(attribute + kAttributeSize);
    PutU32(node, records + i * kAttributeRecordSize, attribute);
  }

  // The fallback record lies at the array plus the array's first word. Starting the array at least
  // as far in as the records reach keeps that place behind everything else.
  const u32 lookupRecordsSize = Size(layout.lookups) * (kLookupRecordSize + kSlotBlockSize);
  AlignEnd(node);
  node.resize(std::max<size_t>(node.size(), lookupRecordsSize));
  const u32 array = AlignEnd(node);
  PutValue<u32>(node, 140, Size(layout.lookups));
  PutValue<u32>(node, 144, array);
  node.resize(array + std::max<size_t>(Size(layout.lookups), 1) * 4);
  for (u32 i = 0; i < Size(layout.lookups); ++i) {
    const u32 record = AlignEnd(node);
    PutLookupRecord(node, record, layout.lookups[i]);
    PutU32(node, array + i * 4, record);
  }
  if (layout.fallback) {
    if (layout.lookups.empty()) PutU32(node, array, static_cast<u32>(node.size() - array));
    u32 firstWord = 0;
    std::memcpy(&firstWord, node.data() + array, 4);
    PutLookupRecord(node, array + firstWord, *layout.fallback);
  }
  AlignEnd(node);
  return node;
}

}  // namespace

void PutU32(std::string& bytes, size_t at, u32 value) { PutValue<u32>(bytes, at, value); }

std::string BuildRigFile(const std::vector<RigFileChunk>& chunks) {
  std::string file;
  for (const RigFileChunk& chunk : chunks) {
    const size_t header = file.size();
    file.resize(header + kChunkHeaderSize);
    PutU32(file, header, chunk.tag0);
    PutU32(file, header + 4, chunk.tag1);
    PutU32(file, header + 8, chunk.type);
    PutU32(file, header + 12, chunk.id);
    PutU32(file, header + 32, chunk.dataSize.value_or(Size(chunk.data)));
    PutU32(file, header + 36, chunk.alignment);
    if (chunk.alignment) AlignEnd(file, chunk.alignment);
    file += chunk.data;
    AlignEnd(file, 4);
  }
  return file;
}

std::string BuildStringTable(const std::vector<std::string>& strings, std::optional<u32> count) {
  std::string table(kStringTableHeaderSize, '\0');
  const u32 offsets = kStringTableHeaderSize;
  const u32 chars = offsets + Size(strings) * 4;
  PutU32(table, 0, count.value_or(Size(strings)));
  PutU32(table, 12, offsets);
  PutU32(table, 16, chars);
  std::string text;
  for (u32 i = 0; i < Size(strings); ++i) {
    PutU32(table, offsets + i * 4, Size(text));
    text += strings[i];
    text += '\0';
  }
  table.resize(chars);
  return table + text;
}

std::string BuildRigChunkData(const RigLayout& rig) {
  const u32 boneCount = Size(rig.bones);
  std::string data(kRigHeaderSize, '\0');

  std::string hierarchy(8, '\0');
  std::vector<std::string> names;
  for (const RigBoneLayout& bone : rig.bones) {
    PutValue<i32>(hierarchy, hierarchy.size(), bone.parent);
    names.push_back(bone.name);
  }
  const u32 hierarchyAt = Append(data, hierarchy);
  const u32 namesAt = Append(data, BuildStringTable(names, rig.nameCount));

  // Pose header, then the pose data with its channel array and the two record blocks.
  const u32 poseAt = AlignEnd(data);
  constexpr u32 kPoseDataFromHeader = 16;
  PutU32(data, poseAt + 8, kPoseDataFromHeader);
  const u32 poseDataAt = poseAt + kPoseDataFromHeader;
  const u32 channelEntries = std::max<u32>(rig.channelCount, 2);
  constexpr u32 kChannelsFromPoseData = 32;
  PutU32(data, poseDataAt + 8, rig.boneCount.value_or(boneCount));
  PutU32(data, poseDataAt + 16, rig.channelCount);
  PutU32(data, poseDataAt + 24, kChannelsFromPoseData);
  data.resize(poseDataAt + kChannelsFromPoseData + channelEntries * 4);
  const u32 translations = AlignEnd(data);
  for (const RigBoneLayout& bone : rig.bones) Put(data, data.size(), bone.translation.data(), 16);
  const u32 rotations = AlignEnd(data);
  for (const RigBoneLayout& bone : rig.bones) Put(data, data.size(), bone.rotation.data(), 16);
  for (u32 c = 0; c < channelEntries; ++c) {
    PutU32(data, poseDataAt + kChannelsFromPoseData + c * 4, (c == 1 ? rotations : translations) - poseDataAt);
  }

  PutU32(data, 32, rig.hierarchy.value_or(hierarchyAt));
  PutU32(data, 44, rig.boneNames.value_or(namesAt));
  PutU32(data, 48, rig.pose.value_or(poseAt));
  return data;
}

std::string BuildAnimSetChunkData(const std::vector<std::string>& names) {
  std::string data(4, '\0');
  PutU32(data, 0, Append(data, BuildStringTable(names)));
  return data;
}

std::string BuildNetworkDefinitionData(const NetworkLayout& network) {
  std::string data(kNetworkHeaderSize, '\0');
  u32 flagged = 0;
  for (const NetworkNodeLayout& node : network.nodes) flagged += (node.flags & kFlaggedNode) != 0;

  const u32 nodesAt = AlignEnd(data);
  data.resize(nodesAt + Size(network.nodes) * 4);
  const u32 nodeNamesAt = Append(data, BuildStringTable(network.nodeNames));
  const u32 tableNamesAt = network.tableNames ? Append(data, BuildStringTable(*network.tableNames)) : 0;
  for (u32 i = 0; i < Size(network.nodes); ++i)
    PutU32(data, nodesAt + i * 4, Append(data, BuildNode(network.nodes[i])));

  PutU32(data, 80, network.nodeCount.value_or(Size(network.nodes)));
  PutU32(data, 84, network.nodesPosition.value_or(nodesAt));
  PutU32(data, 108, network.nodeNamesPosition.value_or(nodeNamesAt));
  PutU32(data, 112, tableNamesAt);
  PutU32(data, 152, network.flaggedNodeCount.value_or(flagged));
  return data;
}

std::vector<RigFileChunk> RigNetworkChunks(const RigNetworkLayout& layout) {
  constexpr u32 kRigChunk = 1, kNetworkDefinitionChunk = 10, kAnimSetChunk = 14;
  std::vector<RigFileChunk> chunks;
  for (const RigNetworkLayout::Rig& rig : layout.rigs) {
    chunks.push_back(
        {.type = kRigChunk, .id = rig.id, .data = BuildRigChunkData(rig.rig), .alignment = layout.alignment});
  }
  if (layout.animSets) {
    chunks.push_back(
        {.type = kAnimSetChunk, .data = BuildAnimSetChunkData(*layout.animSets), .alignment = layout.alignment});
  }
  if (layout.network) {
    chunks.push_back({.type = kNetworkDefinitionChunk,
                      .data = BuildNetworkDefinitionData(*layout.network),
                      .alignment = layout.alignment});
  }
  return chunks;
}

}  // namespace gamewriters
