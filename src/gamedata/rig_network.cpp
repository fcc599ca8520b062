#include "gamedata/rig_network.h"

#include <bit>
#include <cstddef>
#include <cstring>
#include <utility>

#include "core/byte_reader.h"

namespace {

static_assert(std::endian::native == std::endian::little, "records are loaded as they lie in the file");

// -- On-disk records. Fields named `unread` are there only to keep the offsets.

constexpr u32 kChunkTag0 = 24;
constexpr u32 kChunkTag1 = 6;

struct ChunkHeader {
  u32 tag0;
  u32 tag1;
  u32 type;
  u32 id;
  u32 unread[4];
  u32 dataSize;
  u32 alignment;
};
static_assert(sizeof(ChunkHeader) == 40 && offsetof(ChunkHeader, dataSize) == 32);

enum ChunkType : u32 {
  kRigChunk = 1,
  kCopiedChunk3 = 3,
  kNetworkDefinitionChunk = 10,
  kHeldChunk13 = 13,
  kAnimSetChunk = 14,
  kCopiedChunk15 = 15,
};

struct StringTableHeader {
  u32 count;
  u32 unread[2];
  u32 offsets;  // from the table's start
  u32 chars;    // from the table's start
};
static_assert(sizeof(StringTableHeader) == 20);

struct RigHeader {
  u8 unread[32];
  u32 hierarchy;
  u32 unread2[2];
  u32 boneNames;
  u32 pose;
};
static_assert(sizeof(RigHeader) == 52 && offsetof(RigHeader, boneNames) == 44);

// The parents start this far into the hierarchy block.
constexpr u64 kHierarchySkip = 8;

struct PoseHeader {
  u32 unread[2];
  u32 poseData;  // from the pose header's start
};
static_assert(sizeof(PoseHeader) == 12);

struct PoseData {
  u32 unread[2];
  u32 boneCount;
  u32 unread2;
  u32 channelCount;
  u32 unread3;
  u32 channels;  // this and the channel entries count from the pose data's start
};
static_assert(sizeof(PoseData) == 28 && offsetof(PoseData, channels) == 24);

// Channel 0 holds the translations, channel 1 the rotations.
constexpr u32 kPoseChannels = 2;

struct PoseRecord {
  f32 value[4];
};
static_assert(sizeof(PoseRecord) == 16);

struct NetworkDefinition {
  u8 unread[80];
  u32 nodeCount;
  u32 nodes;  // array of nodeCount node positions; all positions here count from the chunk's start
  u8 unread2[20];
  u32 nodeNames;
  u32 nameTable;  // 0: none
  u8 unread3[36];
  u32 flaggedNodeCount;
};
static_assert(sizeof(NetworkDefinition) == 156 && offsetof(NetworkDefinition, nodeNames) == 108 &&
              offsetof(NetworkDefinition, flaggedNodeCount) == 152);

// Positions in a node and its lookup records count from the node's start.
struct Node {
  u32 typeId;
  u8 flags;
  u8 unread;
  u16 nameIndex;
  u8 unread2[24];
  u32 attributes;  // array of AttributeRecord
  u8 unread3[104];
  u32 lookupCount;
  u32 lookups;  // array of lookupCount lookup record positions
};
static_assert(sizeof(Node) == 148 && offsetof(Node, attributes) == 32 && offsetof(Node, lookupCount) == 140);

constexpr u8 kFlaggedNode = 0x04;

struct LookupRecord {
  u32 typeId;
  u8 setStride;
  u8 unread[3];
  u32 slots;  // from the record's start
};
static_assert(sizeof(LookupRecord) == 12);

// The slot is this byte of the block at `slots`.
constexpr u64 kSlotOffset = 16;

struct AttributeRecord {
  u32 attribute;  // from the node's start
  u32 unread[2];
};
static_assert(sizeof(AttributeRecord) == 12);

// Where an animation set's attribute holds its rig's id.
constexpr u64 kRigIdOffset = 8;

constexpr char kInvalidIndex[] = "<INVALID INDEX>";

// Granule of the chunk copies: they are short-lived, so no point in rounding them to pages.
constexpr u32 kCopyGranule = 64;

class StringTable {
 public:
  // The offsets array must lie inside the chunk, which bounds `count` by the chunk's size before
  // anyone sizes a list by it.
  StringTable(ByteReader& chunk, u64 at) : view(chunk), start(at), header(chunk.LoadAt<StringTableHeader>(at)) {
    if (!view.Fits(start + header.offsets, header.count, sizeof(u32))) header.count = 0;
  }

  u32 Count() const { return header.count; }

  const char* String(u32 i) {
    if (i >= header.count) return kInvalidIndex;
    return view.TextAt(start + header.chars + view.U32At(start + header.offsets + u64(i) * sizeof(u32)));
  }

 private:
  ByteReader& view;
  u64 start;
  StringTableHeader header;
};

// -- Rigs

// Parents may come after their children, so they are checked once all are read: each is a bone of
// the rig, and no chain of parents comes back on itself. The export walks these chains.
bool ParentsFormTrees(const TArray<RigBone>& bones) {
  const u32 count = bones.Count();
  for (const RigBone& bone : bones) {
    if (bone.parent >= 0 && u32(bone.parent) >= count) return false;
  }
  enum : u8 { kUnseen, kOnChain, kEndsAtRoot };
  TArray<u8> state;
  if (!state.SetSize(count)) return false;
  for (u32 i = 0; i < count; ++i) {
    i32 j = i32(i);
    while (j >= 0 && state[u32(j)] == kUnseen) {
      state[u32(j)] = kOnChain;
      j = bones[u32(j)].parent;
    }
    if (j >= 0 && state[u32(j)] == kOnChain) return false;
    for (i32 k = i32(i); k >= 0 && state[u32(k)] == kOnChain; k = bones[u32(k)].parent) state[u32(k)] = kEndsAtRoot;
  }
  return true;
}

bool ParseRig(ByteReader& view, u32 id, RigSkeleton& rig) {
  rig.id = id;
  const auto header = view.LoadAt<RigHeader>(0);
  const u64 poseHeaderAt = header.pose;
  const u64 poseAt = poseHeaderAt + view.LoadAt<PoseHeader>(poseHeaderAt).poseData;
  const auto pose = view.LoadAt<PoseData>(poseAt);
  if (pose.channelCount < kPoseChannels) return false;
  const u64 channelsAt = poseAt + pose.channels;
  const u64 translationsAt = poseAt + view.U32At(channelsAt);
  const u64 rotationsAt = poseAt + view.U32At(channelsAt + sizeof(u32));
  const u64 parentsAt = header.hierarchy + kHierarchySkip;
  StringTable names(view, header.boneNames);
  // Every block must hold boneCount records before a bone is made, so a huge count fails here.
  if (!view.Fits(translationsAt, pose.boneCount, sizeof(PoseRecord)) ||
      !view.Fits(rotationsAt, pose.boneCount, sizeof(PoseRecord)) ||
      !view.Fits(parentsAt, pose.boneCount, sizeof(i32))) {
    return false;
  }
  if (!rig.bones.SetSize(pose.boneCount)) return false;
  for (u32 i = 0; i < pose.boneCount; ++i) {
    RigBone& bone = rig.bones[i];
    const auto translation = view.LoadAt<PoseRecord>(translationsAt + u64(i) * sizeof(PoseRecord));
    const auto rotation = view.LoadAt<PoseRecord>(rotationsAt + u64(i) * sizeof(PoseRecord));
    std::memcpy(bone.translation, translation.value, sizeof(bone.translation));
    std::memcpy(bone.rotation, rotation.value, sizeof(bone.rotation));
    const i32 parent = view.LoadAt<i32>(parentsAt + u64(i) * sizeof(i32));
    bone.parent = parent < 0 ? -1 : parent;
    bone.index = i;
    if (!bone.name.Assign(names.String(i))) return false;
  }
  return !view.Failed() && ParentsFormTrees(rig.bones);
}

// -- Network definition

// Each set's rig id sits in an attribute of the first node, found through that node's lookup record.
bool ReadAnimSetNames(ByteReader& sets, ByteReader& definition, RigNetwork& network) {
  StringTable table(sets, sets.U32At(0));
  if (sets.Failed()) return false;
  if (table.Count() == 0) return true;
  const auto header = definition.LoadAt<NetworkDefinition>(0);
  if (header.nodeCount == 0) return false;  // sets, but no node to find their rigs through
  const u64 nodeAt = definition.U32At(header.nodes);
  const auto node = definition.LoadAt<Node>(nodeAt);
  const u64 lookupsAt = nodeAt + node.lookups;
  if (!definition.Fits(lookupsAt, node.lookupCount, sizeof(u32))) return false;
  // Without a record of the node's own type, the array's first word leads to the record, counted
  // from the array rather than from the node.
  u64 recordAt = lookupsAt + definition.U32At(lookupsAt);
  for (u32 k = 0; k < node.lookupCount; ++k) {
    const u64 at = nodeAt + definition.U32At(lookupsAt + u64(k) * sizeof(u32));
    if (definition.U32At(at) == node.typeId) {
      recordAt = at;
      break;
    }
  }
  const auto lookup = definition.LoadAt<LookupRecord>(recordAt);
  const u8 slot = definition.LoadAt<u8>(recordAt + lookup.slots + kSlotOffset);
  const u64 attributesAt = nodeAt + node.attributes;
  if (definition.Failed() || !network.animSetNames.SetSize(table.Count())) return false;
  for (u32 i = 0; i < table.Count(); ++i) {
    AnimSetName& set = network.animSetNames[i];
    const u64 record = u64(lookup.setStride) * i + slot;
    const auto attribute = definition.LoadAt<AttributeRecord>(attributesAt + record * sizeof(AttributeRecord));
    set.id = definition.U32At(nodeAt + attribute.attribute + kRigIdOffset);
    if (!set.name.Assign(table.String(i))) return false;
  }
  return !definition.Failed() && !sets.Failed();
}

bool ReadOtherNames(ByteReader& definition, RigNetwork& network) {
  const auto header = definition.LoadAt<NetworkDefinition>(0);
  if (definition.Failed()) return false;
  if (header.nameTable != 0) {
    StringTable table(definition, header.nameTable);
    if (definition.Failed() || !network.tableNames.SetSize(table.Count())) return false;
    for (u32 i = 0; i < table.Count(); ++i) {
      if (!network.tableNames[i].Assign(table.String(i))) return false;
    }
  }
  if (header.nodes == 0 || header.nodeNames == 0) return !definition.Failed();
  // Every flagged node is a node, so a larger count can't hold; checked before the list is sized.
  if (!definition.Fits(header.nodes, header.nodeCount, sizeof(u32)) || header.flaggedNodeCount > header.nodeCount) {
    return false;
  }
  StringTable names(definition, header.nodeNames);
  if (definition.Failed() || !network.flaggedNodeNames.SetSize(header.flaggedNodeCount)) return false;
  u32 flagged = 0;
  for (u32 n = 0; n < header.nodeCount; ++n) {
    const u64 nodeAt = definition.U32At(header.nodes + u64(n) * sizeof(u32));
    if (!(definition.LoadAt<u8>(nodeAt + offsetof(Node, flags)) & kFlaggedNode)) continue;
    if (flagged == header.flaggedNodeCount) return false;  // more flagged nodes than the count says
    const u16 nameIndex = definition.LoadAt<u16>(nodeAt + offsetof(Node, nameIndex));
    if (!network.flaggedNodeNames[flagged++].Assign(names.String(nameIndex))) return false;
  }
  return !definition.Failed();
}

// -- Chunks

// Calls `visit(header, position)` for each chunk, `position` being where its data starts, until
// `visit` gives false. A chunk whose data runs past the end is followed by a header read from its
// first data bytes; every step still moves on by a header's size, so the walk ends.
template <class Visit>
bool WalkChunks(const CByteBuffer& bytes, Visit visit) {
  ByteReader file(bytes);
  const u64 size = bytes.Size();
  u64 position = 0;
  while (size - position >= sizeof(ChunkHeader)) {
    const auto header = file.LoadAt<ChunkHeader>(position);
    position += sizeof(header);
    if (header.alignment != 0) {
      const u64 aligned = (position + header.alignment - 1) / header.alignment * header.alignment;
      position = aligned < size ? aligned : size;
    }
    if (!visit(header, position)) return false;
    const u64 padded = (u64(header.dataSize) + 3) & ~u64(3);
    if (padded <= size - position) position += padded;
  }
  return true;
}

bool IsCopied(u32 type) {
  switch (type) {
    case kRigChunk:
    case kCopiedChunk3:
    case kNetworkDefinitionChunk:
    case kHeldChunk13:
    case kAnimSetChunk:
    case kCopiedChunk15: return true;
    default: return false;
  }
}

bool ReadChunks(RigNetwork& network, const CByteBuffer& bytes) {
  u32 rigCount = 0;
  (void)WalkChunks(bytes, [&](const ChunkHeader& header, u64) {
    rigCount += header.type == kRigChunk;
    return true;
  });
  if (!network.rigs.SetSize(rigCount)) return false;

  // The network definition and the animation sets are read together at the end; rigs and the
  // dropped kinds reuse one scratch copy. A later chunk of a held kind replaces the earlier one.
  CByteBuffer scratch(kCopyGranule), definition(kCopyGranule), animSets(kCopyGranule), held13(kCopyGranule);
  u32 definitionSize = 0, animSetsSize = 0;
  bool haveDefinition = false, haveAnimSets = false;
  u32 nextRig = 0;
  const bool walked = WalkChunks(bytes, [&](const ChunkHeader& header, u64 position) {
    if (!IsCopied(header.type)) return true;
    const u64 padded = (u64(header.dataSize) + 3) & ~u64(3);
    if (padded > bytes.Size() - position) return false;
    CByteBuffer& copy = header.type == kNetworkDefinitionChunk ? definition
                        : header.type == kAnimSetChunk         ? animSets
                        : header.type == kHeldChunk13          ? held13
                                                               : scratch;
    if (!copy.SetSize(u32(padded))) return false;
    if (padded) std::memcpy(copy.Data(), bytes.Data() + position, size_t(padded));
    switch (header.type) {
      case kRigChunk: {
        if (nextRig >= network.rigs.Count()) return false;
        ByteReader view(copy.Data(), header.dataSize);
        return ParseRig(view, header.id, network.rigs[nextRig++]);
      }
      case kNetworkDefinitionChunk:
        haveDefinition = true;
        definitionSize = header.dataSize;
        return true;
      case kAnimSetChunk:
        haveAnimSets = true;
        animSetsSize = header.dataSize;
        return true;
      default: return true;
    }
  });
  if (!walked) return false;

  ByteReader definitionView(definition.Data(), definitionSize);
  ByteReader animSetsView(animSets.Data(), animSetsSize);
  if (haveDefinition && haveAnimSets && !ReadAnimSetNames(animSetsView, definitionView, network)) return false;
  return !haveDefinition || ReadOtherNames(definitionView, network);
}

void Empty(RigNetwork& network) {
  network.rigs.Release();
  network.animSetNames.Release();
  network.tableNames.Release();
  network.flaggedNodeNames.Release();
}

}  // namespace

bool IsRigNetwork(const CByteBuffer& bytes) {
  ByteReader file(bytes);
  const auto header = file.LoadAt<ChunkHeader>(0);
  return !file.Failed() && header.tag0 == kChunkTag0 && header.tag1 == kChunkTag1;
}

bool Read(RigNetwork& network, const CByteBuffer& bytes) {
  Empty(network);
  if (ReadChunks(network, bytes)) return true;
  Empty(network);
  return false;
}
