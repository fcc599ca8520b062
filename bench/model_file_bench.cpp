#include <benchmark/benchmark.h>

#include <cstring>
#include <string>

#include "game_writers/model_writer.h"
#include "gamedata/model_file.h"

namespace {

constexpr u32 kVertices = 200000;
constexpr u32 kIndices = 600000;
constexpr u32 kBones = 100;
constexpr u32 kDrawCalls = 40;

// A large character: one mesh with a 32-byte and a 24-byte stream, 16-bit indices, draw calls of
// 5,000 vertices each addressing 10 bones, and the sample material chunk.
std::string LargeModel() {
  gamewriters::ModelDesc desc{.materials = gamewriters::SamplePalette()};
  desc.meshes.push_back(gamewriters::PatternMesh(kVertices, {32, 24}, 2, kIndices));
  desc.meshes[0].drawCallCount = kDrawCalls;
  for (u32 i = 0; i < kDrawCalls; ++i) {
    desc.drawCalls.push_back(
        {.firstBoneMapEntry = i * 10, .boneMapEntryCount = 10, .firstVertex = i * 5000, .vertexCount = 5000});
    for (u32 slot = 0; slot < 10; ++slot)
      desc.boneMap.push_back({.bone = u16((i * 7 + slot) % kBones), .slot = u16(slot)});
  }
  desc.bones.resize(kBones);
  for (u32 b = 0; b < kBones; ++b) desc.bones[b].nameHash = b * 2654435761u;
  return gamewriters::BuildModel(desc);
}

void BM_ReadModel(benchmark::State& state) {
  const std::string file = LargeModel();
  CByteBuffer bytes;
  if (!bytes.SetSize(static_cast<u32>(file.size()))) state.SkipWithError("no memory");
  std::memcpy(bytes.Data(), file.data(), file.size());
  for (auto _ : state) {
    ModelFile model;
    ModelMaterials materials;
    if (!Read(model, bytes, materials) || model.bones.Count() != kBones) state.SkipWithError("read failed");
    benchmark::DoNotOptimize(model.meshes[0].streams[1].data.Data());
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(file.size()));
}
BENCHMARK(BM_ReadModel)->Unit(benchmark::kMillisecond);

}  // namespace
