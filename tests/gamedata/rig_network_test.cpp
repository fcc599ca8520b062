#include "gamedata/rig_network.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "game_writers/rig_writer.h"
#include "support/allocation_failure.h"

namespace {

using gamewriters::BuildRigFile;
using gamewriters::BuildRigNetwork;
using gamewriters::LookupLayout;
using gamewriters::NetworkLayout;
using gamewriters::RigFileChunk;
using gamewriters::RigLayout;
using gamewriters::RigNetworkChunks;
using gamewriters::RigNetworkLayout;

// Granule 1: the buffer ends exactly where the bytes do, so any overread reaches the sanitizer.
CByteBuffer Bytes(const std::string& bytes) {
  CByteBuffer buffer(1);
  EXPECT_TRUE(buffer.SetSize(static_cast<u32>(bytes.size())));
  if (!bytes.empty()) std::memcpy(buffer.Data(), bytes.data(), bytes.size());
  return buffer;
}

// What the export relies on after any successful read.
void ExpectSound(const RigNetwork& network) {
  for (const RigSkeleton& rig : network.rigs) {
    const u32 count = rig.bones.Count();
    for (u32 i = 0; i < count; ++i) {
      const RigBone& bone = rig.bones[i];
      EXPECT_EQ(bone.index, i);
      ASSERT_TRUE(bone.parent == -1 || (bone.parent >= 0 && u32(bone.parent) < count)) << "bone " << i;
      u32 steps = 0;
      for (i32 p = bone.parent; p >= 0; p = rig.bones[u32(p)].parent) ASSERT_LE(++steps, count) << "cycle from " << i;
    }
  }
}

std::vector<std::string> Texts(const TArray<CStringA>& names) {
  std::vector<std::string> texts;
  for (const CStringA& name : names) texts.push_back(name.Text());
  return texts;
}

RigLayout Chain(const std::string& prefix, u32 count) {
  RigLayout rig;
  for (u32 i = 0; i < count; ++i) {
    const f32 f = f32(i);
    rig.bones.push_back({.name = prefix + std::to_string(i),
                         .parent = i32(i) - 1,
                         .translation = {f, f + 0.5f, -f, 1},
                         .rotation = {0, f / 8, 0, 1}});
  }
  return rig;
}

// Two rigs (the second with a parent after its child), three sets whose rig ids sit in every second
// attribute from 1 on, a lookup of another type before the node's own, table names and flagged nodes.
RigNetworkLayout FullNetwork() {
  RigNetworkLayout layout;
  layout.rigs.push_back({.id = 7, .rig = Chain("body_", 3)});
  RigLayout forward = Chain("arm_", 3);
  forward.bones[0].parent = 2;
  forward.bones[2].parent = -5;
  layout.rigs.push_back({.id = 9, .rig = forward});
  layout.animSets = {{"idle", "walk", "wave"}};
  NetworkLayout network;
  network.nodeNames = {"root", "hidden", "marked"};
  network.tableNames = {{"table_a", "table_b"}};
  network.nodes.push_back(
      {.typeId = 40,
       .flags = 0x04,
       .nameIndex = 0,
       .attributeWords = {0, 7, 0, 9, 0, 7},
       .lookups = {{.typeId = 41, .setStride = 1, .slot = 0}, {.typeId = 40, .setStride = 2, .slot = 1}}});
  network.nodes.push_back({.typeId = 41, .flags = 0x01, .nameIndex = 1});
  network.nodes.push_back({.typeId = 42, .flags = 0x05, .nameIndex = 2});
  layout.network = network;
  return layout;
}

struct RoundTrip {
  const char* name;
  std::function<void(RigNetworkLayout&)> change;
  std::vector<u32> setIds;
  std::vector<std::string> flagged;
};

TEST(RigNetworkTest, ReadsWhatWasWritten) {
  const RoundTrip cases[] = {
      {"own type's lookup, two rigs, forward parent", [](RigNetworkLayout&) {}, {7, 9, 7}, {"root", "marked"}},
      {"no lookup of the node's type: first word from the array",
       [](RigNetworkLayout& s) {
         auto& node = s.network->nodes[0];
         node.lookups[1].typeId = 43;
         node.fallback = LookupLayout{.typeId = 99, .setStride = 1, .slot = 3};
       },
       {9, 0, 7},
       {"root", "marked"}},
      {"fallback with no lookups at all",
       [](RigNetworkLayout& s) {
         s.network->nodes[0].lookups.clear();
         s.network->nodes[0].fallback = LookupLayout{.setStride = 0, .slot = 5};
       },
       {7, 7, 7},
       {"root", "marked"}},
      {"definition without sets still names", [](RigNetworkLayout& s) { s.animSets.reset(); }, {}, {"root", "marked"}},
      {"sets without definition give no names", [](RigNetworkLayout& s) { s.network.reset(); }, {}, {}},
      {"no nodes position: no flagged names",
       [](RigNetworkLayout& s) {
         s.network->nodesPosition = 0;
         s.animSets.reset();
       },
       {},
       {}},
      {"fewer flagged nodes than counted leave empty names",
       [](RigNetworkLayout& s) { s.network->flaggedNodeCount = 3; },
       {7, 9, 7},
       {"root", "marked", ""}},
      {"bone names past the table's count",
       [](RigNetworkLayout& s) { s.rigs[0].rig.nameCount = 1; },
       {7, 9, 7},
       {"root", "marked"}},
      {"empty rig, unaligned chunks",
       [](RigNetworkLayout& s) {
         s.rigs[1].rig.bones.clear();
         s.alignment = 0;
       },
       {7, 9, 7},
       {"root", "marked"}},
  };
  for (const RoundTrip& c : cases) {
    SCOPED_TRACE(c.name);
    RigNetworkLayout layout = FullNetwork();
    c.change(layout);
    const CByteBuffer bytes = Bytes(BuildRigNetwork(layout));
    EXPECT_TRUE(IsRigNetwork(bytes));
    RigNetwork read;
    ASSERT_TRUE(Read(read, bytes));
    // Networks move into the rig table; read through a moved-to one.
    RigNetwork network(std::move(read));
    EXPECT_EQ(read.rigs.Count(), 0u);
    ExpectSound(network);

    ASSERT_EQ(network.rigs.Count(), layout.rigs.size());
    for (u32 r = 0; r < network.rigs.Count(); ++r) {
      const RigSkeleton& rig = network.rigs[r];
      const RigLayout& want = layout.rigs[r].rig;
      EXPECT_EQ(rig.id, layout.rigs[r].id);
      ASSERT_EQ(rig.bones.Count(), want.bones.size());
      for (u32 i = 0; i < rig.bones.Count(); ++i) {
        const RigBone& bone = rig.bones[i];
        const bool named = i < want.nameCount.value_or(u32(want.bones.size()));
        EXPECT_STREQ(bone.name.Text(), named ? want.bones[i].name.c_str() : "<INVALID INDEX>");
        EXPECT_EQ(bone.parent, want.bones[i].parent < 0 ? -1 : want.bones[i].parent);
        EXPECT_EQ(0, std::memcmp(bone.translation, want.bones[i].translation.data(), 16));
        EXPECT_EQ(0, std::memcmp(bone.rotation, want.bones[i].rotation.data(), 16));
      }
    }
    std::vector<std::string> setNames;
    std::vector<u32> setIds;
    for (const AnimSetName& set : network.animSetNames) {
      setNames.push_back(set.name.Text());
      setIds.push_back(set.id);
    }
    EXPECT_EQ(setIds, c.setIds);
    if (!c.setIds.empty()) {
      EXPECT_EQ(setNames, *layout.animSets);
    }
    const std::vector<std::string> tableNames =
        layout.network ? *layout.network->tableNames : std::vector<std::string>{};
    EXPECT_EQ(Texts(network.tableNames), tableNames);
    EXPECT_EQ(Texts(network.flaggedNodeNames), c.flagged);
  }
}

struct Walk {
  const char* name;
  std::string bytes;
  bool reads;
  std::vector<u32> rigIds;
};

TEST(RigNetworkTest, WalksChunksAsLaidOut) {
  const std::string rig = gamewriters::BuildRigChunkData(Chain("b", 2));
  const RigFileChunk rigChunk{.type = 1, .id = 5, .data = rig};
  const RigFileChunk other{.type = 99, .data = "abcde"};
  const std::string alone = BuildRigFile({other});
  // Data that runs past the end: the next header is read from its first data bytes.
  const std::string overlong = BuildRigFile({{.type = 99, .dataSize = 1000}, rigChunk});
  const std::string copiedOverlong = BuildRigFile({rigChunk, {.type = 15, .dataSize = 8}});
  std::string farAligned = BuildRigFile({{.type = 1}});
  gamewriters::PutU32(farAligned, 36, 0x80000000);
  const Walk cases[] = {
      {"first header alone", alone, true, {}},
      {"trailing bytes too few for a header", alone + std::string(39, '\x01'), true, {}},
      {"dataSize 5 takes 8 bytes", BuildRigFile({other, rigChunk}), true, {5}},
      {"alignment 16 moves data at 40 to 48",
       BuildRigFile({{.type = 1, .id = 6, .data = rig, .alignment = 16}}),
       true,
       {6}},
      {"alignment 0 adds nothing", BuildRigFile({rigChunk}), true, {5}},
      {"other type past the end is walked into", overlong, true, {5}},
      {"copied type past the end", copiedOverlong, false, {}},
      {"alignment past the end", farAligned, false, {}},
      {"no header at all", std::string(39, '\0'), true, {}},
  };
  for (const Walk& c : cases) {
    SCOPED_TRACE(c.name);
    RigNetwork network;
    ASSERT_EQ(Read(network, Bytes(c.bytes)), c.reads);
    ExpectSound(network);
    std::vector<u32> ids;
    for (const RigSkeleton& skeleton : network.rigs) ids.push_back(skeleton.id);
    EXPECT_EQ(ids, c.rigIds);
  }

  std::string wrongTag = alone;
  gamewriters::PutU32(wrongTag, 4, 7);
  EXPECT_TRUE(IsRigNetwork(Bytes(alone)));
  EXPECT_FALSE(IsRigNetwork(Bytes(wrongTag)));
  EXPECT_FALSE(IsRigNetwork(Bytes(alone.substr(0, 39))));
}

TEST(RigNetworkTest, RejectsWhatDoesNotAddUp) {
  using Change = std::function<void(RigNetworkLayout&)>;
  const std::pair<const char*, Change> cases[] = {
      {"huge boneCount", [](RigNetworkLayout& s) { s.rigs[0].rig.boneCount = 0x10000000; }},
      {"one channel", [](RigNetworkLayout& s) { s.rigs[0].rig.channelCount = 1; }},
      {"parent not below boneCount", [](RigNetworkLayout& s) { s.rigs[0].rig.bones[1].parent = 3; }},
      {"own parent", [](RigNetworkLayout& s) { s.rigs[0].rig.bones[2].parent = 2; }},
      {"cycle of parents", [](RigNetworkLayout& s) { s.rigs[1].rig.bones[2].parent = 1; }},  // 0 -> 2 -> 1 -> 0
      {"hierarchy outside", [](RigNetworkLayout& s) { s.rigs[0].rig.hierarchy = 0xFFFFFFF0; }},
      {"pose outside", [](RigNetworkLayout& s) { s.rigs[1].rig.pose = 0x7FFFFFFF; }},
      {"bone names outside", [](RigNetworkLayout& s) { s.rigs[0].rig.boneNames = 0xFFFFFFFF; }},
      {"huge name count", [](RigNetworkLayout& s) { s.rigs[0].rig.nameCount = 0x40000000; }},
      {"more flagged nodes than counted", [](RigNetworkLayout& s) { s.network->flaggedNodeCount = 1; }},
      {"flagged count above node count", [](RigNetworkLayout& s) { s.network->flaggedNodeCount = 0x20000000; }},
      {"huge node count", [](RigNetworkLayout& s) { s.network->nodeCount = 0x20000000; }},
      {"sets but no nodes", [](RigNetworkLayout& s) { s.network->nodeCount = 0; }},
      {"set's attribute outside", [](RigNetworkLayout& s) { s.network->nodes[0].lookups[1].slot = 200; }},
      {"node names outside", [](RigNetworkLayout& s) { s.network->nodeNamesPosition = 0xFFFFFF00; }},
  };
  for (const auto& [name, change] : cases) {
    SCOPED_TRACE(name);
    RigNetworkLayout layout = FullNetwork();
    change(layout);
    RigNetwork network;
    EXPECT_FALSE(Read(network, Bytes(BuildRigNetwork(layout))));
    EXPECT_EQ(network.rigs.Count() + network.animSetNames.Count() + network.tableNames.Count() +
                  network.flaggedNodeNames.Count(),
              0u);
  }

  // The last set name's NUL dropped: the padding behind the data has a zero, but it isn't the chunk's.
  std::vector<RigFileChunk> chunks = RigNetworkChunks(FullNetwork());
  ASSERT_EQ(chunks[2].type, 14u);
  chunks[2].data.pop_back();
  RigNetwork network;
  EXPECT_FALSE(Read(network, Bytes(BuildRigFile(chunks))));
}

TEST(RigNetworkTest, EveryPrefixFailsOrReadsSoundly) {
  const std::string file = BuildRigNetwork(FullNetwork());
  for (size_t size = 0; size <= file.size(); ++size) {
    SCOPED_TRACE(size);
    const CByteBuffer prefix = Bytes(file.substr(0, size));
    EXPECT_EQ(IsRigNetwork(prefix), size >= 40);
    RigNetwork network;
    const bool read = Read(network, prefix);
    if (size == file.size()) {
      EXPECT_TRUE(read);
    }
    if (read) ExpectSound(network);
  }
}

TEST(RigNetworkTest, RefusedMemoryAtEveryStepFailsCleanly) {
  RigNetworkLayout layout = FullNetwork();
  layout.rigs[0].rig.bones[1].name = "a bone name long enough for a block";
  const CByteBuffer bytes = Bytes(BuildRigNetwork(layout));
  for (u64 failAt = 1; failAt < 1000; ++failAt) {
    SCOPED_TRACE(failAt);
    testsupport::ScopedAllocationFailure refuse(failAt);
    {
      RigNetwork network;
      const bool read = Read(network, bytes);
      if (!refuse.Failed()) {
        ASSERT_TRUE(read);
        EXPECT_EQ(network.animSetNames.Count(), 3u);
        return;
      }
      EXPECT_FALSE(read);
      EXPECT_EQ(network.rigs.Count(), 0u);
    }
    EXPECT_EQ(refuse.Live(), 0) << "nothing leaks";
  }
  FAIL() << "never succeeded";
}

}  // namespace
