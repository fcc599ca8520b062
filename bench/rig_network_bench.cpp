#include <benchmark/benchmark.h>

#include <cstring>

#include "game_writers/rig_writer.h"
#include "gamedata/rig_network.h"

namespace {

constexpr u32 kBones = 300;
constexpr u32 kSets = 40;

// A character-sized rig: 300 bones in branches of ten, forty animation sets, a few dozen nodes.
CByteBuffer RigFile() {
  gamewriters::RigLayout rig;
  for (u32 i = 0; i < kBones; ++i) {
    const f32 f = f32(i);
    rig.bones.push_back({.name = "skeleton_bone_" + std::to_string(i),
                         .parent = i % 10 ? i32(i) - 1 : i32(i / 10) - 1,
                         .translation = {f, 1, 2, 1},
                         .rotation = {0, 0, f / kBones, 1}});
  }
  gamewriters::NetworkLayout network;
  std::vector<u32> rigIds(kSets, 11);
  network.nodes.push_back({.typeId = 1, .flags = 0x04, .attributeWords = rigIds, .lookups = {{.typeId = 1}}});
  for (u16 n = 1; n < 48; ++n) {
    network.nodeNames.push_back("node_" + std::to_string(n));
    network.nodes.push_back({.typeId = n, .flags = u8(n % 3 ? 0 : 0x04), .nameIndex = n});
  }
  network.tableNames = std::vector<std::string>(16, "a table name");
  std::vector<std::string> sets;
  for (u32 s = 0; s < kSets; ++s) sets.push_back("animation_set_" + std::to_string(s));
  const std::string file =
      gamewriters::BuildRigNetwork({.rigs = {{.id = 11, .rig = rig}}, .animSets = sets, .network = network});
  CByteBuffer bytes;
  if (bytes.SetSize(u32(file.size()))) std::memcpy(bytes.Data(), file.data(), file.size());
  return bytes;
}

void BM_RigNetworkRead(benchmark::State& state) {
  const CByteBuffer bytes = RigFile();
  for (auto _ : state) {
    RigNetwork network;
    if (!Read(network, bytes) || network.rigs[0].bones.Count() != kBones) state.SkipWithError("read failed");
    benchmark::DoNotOptimize(network.rigs.Data());
  }
  state.SetBytesProcessed(i64(state.iterations()) * bytes.Size());
}
BENCHMARK(BM_RigNetworkRead);

}  // namespace
