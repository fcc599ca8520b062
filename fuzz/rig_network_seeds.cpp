#include "game_writers/rig_writer.h"
#include "seeds.h"

using gamewriters::BuildRigFile;
using gamewriters::BuildRigNetwork;
using gamewriters::LookupLayout;
using gamewriters::NetworkLayout;
using gamewriters::RigLayout;
using gamewriters::RigNetworkLayout;

namespace {

RigLayout Rig(u32 boneCount, bool forwardParent) {
  RigLayout rig;
  for (u32 i = 0; i < boneCount; ++i) {
    rig.bones.push_back({.name = "bone" + std::to_string(i), .parent = i32(i) - 1, .translation = {f32(i), 0, 1, 1}});
  }
  if (forwardParent && boneCount > 1) {
    rig.bones[0].parent = i32(boneCount - 1);
    rig.bones[boneCount - 1].parent = -1;
  }
  return rig;
}

NetworkLayout Network(bool fallback) {
  NetworkLayout network;
  network.nodeNames = {"root", "other", "marked"};
  network.tableNames = {{"table"}};
  network.nodes.push_back({.typeId = 3,
                           .flags = 0x04,
                           .attributeWords = {1, 2, 1, 2},
                           .lookups = {{.typeId = fallback ? 5u : 3u, .setStride = 2, .slot = 1}}});
  if (fallback) network.nodes[0].fallback = LookupLayout{.setStride = 1, .slot = 0};
  network.nodes.push_back({.typeId = 4, .flags = 0x05, .nameIndex = 2});
  return network;
}

}  // namespace

Seeds RigNetworkSeeds() {
  Seeds seeds;
  RigNetworkLayout full{.rigs = {{.id = 1, .rig = Rig(4, false)}, {.id = 2, .rig = Rig(3, true)}},
                        .animSets = {{"idle", "run"}},
                        .network = Network(false)};
  seeds.push_back({"full", BuildRigNetwork(full)});
  full.network = Network(true);
  seeds.push_back({"fallback_lookup", BuildRigNetwork(full)});
  full.alignment = 0;
  full.animSets.reset();
  seeds.push_back({"unaligned_no_sets", BuildRigNetwork(full)});
  seeds.push_back(
      {"other_chunks", BuildRigFile({{.type = 99, .data = "abcde"},
                                     {.type = 3, .data = "xyz"},
                                     {.type = 13, .data = "held"},
                                     {.type = 1, .id = 7, .data = gamewriters::BuildRigChunkData(Rig(1, false))},
                                     {.type = 15, .dataSize = 64}})});
  return seeds;
}
