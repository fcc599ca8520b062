#include <benchmark/benchmark.h>

#include <cstring>

#include "mesh/export_mesh.h"
#include "mesh/preview_mesh.h"

namespace {

constexpr u32 kVertices = 200000;
constexpr u32 kDrawCalls = 40;
constexpr u32 kBonesPerCall = 24;

// A skinned mesh as the game stores it: Float3 positions (12 bytes) in stream 0; in stream 1
// Ubyte4n normal, tangent and binormal, two Float16_2 uv channels, Ubyte4 blend indices and Ubyte4n
// weights (28 bytes); 16-bit indices; 40 draw calls, each with its own bone map.
struct SkinnedMesh {
  ModelFile model;
  ModelMesh mesh;
  InputLayout layout;

  SkinnedMesh() {
    const LayoutEntry entries[] = {
        {0, kFloat3, kPosition, 0, 0},      {1, kUbyte4n, kNormal, 0, 0},       {1, kUbyte4n, kTangent, 0, 4},
        {1, kUbyte4n, kBinormal, 0, 8},     {1, kFloat16_2, kTexcoord, 0, 12},  {1, kFloat16_2, kTexcoord, 1, 16},
        {1, kUbyte4, kBlendIndices, 0, 20}, {1, kUbyte4n, kBlendWeight, 0, 24},
    };
    (void)layout.entries.SetSize(8);
    for (u32 i = 0; i < 8; ++i) layout.entries[i] = entries[i];
    mesh.vertexCount = kVertices;
    (void)mesh.streams.SetSize(2);
    const u32 strides[] = {12, 28};
    for (u32 s = 0; s < 2; ++s) {
      mesh.streams[s].stride = strides[s];
      (void)mesh.streams[s].data.SetSize(strides[s] * kVertices);
      u8* bytes = mesh.streams[s].data.Data();
      for (u32 i = 0; i < strides[s] * kVertices; ++i) bytes[i] = u8(i * 37 + s);
    }
    for (u32 v = 0; v < kVertices; ++v) {
      const f32 position[3] = {f32(v % 100), f32(v / 100 % 100), f32(v / 10000)};
      std::memcpy(mesh.streams[0].data.Data() + 12 * v, position, 12);
      for (u32 k = 0; k < 4; ++k) mesh.streams[1].data.Data()[28 * v + 20 + k] = u8((v + k) % kBonesPerCall);
    }
    mesh.bytesPerIndex = 2;
    mesh.indexCount = kVertices * 3 / 2 / 3 * 3;
    (void)mesh.indexData.SetSize(mesh.indexCount * 2);
    for (u32 i = 0; i < mesh.indexCount; ++i) {
      const u16 index = u16((i * 7) % 65536 % kVertices);
      std::memcpy(mesh.indexData.Data() + 2 * i, &index, 2);
    }
    mesh.bonePaletteSize = kBonesPerCall;
    mesh.drawCallCount = kDrawCalls;
    (void)model.drawCalls.SetSize(kDrawCalls);
    (void)model.boneMap.SetSize(kDrawCalls * kBonesPerCall);
    for (u32 d = 0; d < kDrawCalls; ++d) {
      model.drawCalls[d] = {.firstBoneMapEntry = d * kBonesPerCall,
                            .boneMapEntryCount = kBonesPerCall,
                            .firstVertex = d * (kVertices / kDrawCalls),
                            .vertexCount = kVertices / kDrawCalls};
      for (u32 b = 0; b < kBonesPerCall; ++b) model.boneMap[d * kBonesPerCall + b] = {u16((d * 3 + b) % 100), u16(b)};
    }
  }
};

void BM_BuildExportMesh(benchmark::State& state) {
  const SkinnedMesh skinned;
  for (auto _ : state) {
    ExportMesh out;
    if (!Build(out, skinned.model, skinned.mesh, &skinned.layout, kSkinned)) state.SkipWithError("build failed");
    benchmark::DoNotOptimize(out.positions.Data());
  }
  state.SetItemsProcessed(state.iterations() * kVertices);
}
BENCHMARK(BM_BuildExportMesh)->Unit(benchmark::kMillisecond);

void BM_BuildPreviewMesh(benchmark::State& state) {
  const SkinnedMesh skinned;
  for (auto _ : state) {
    PreviewMesh out;
    if (!BuildPreview(out, skinned.mesh, &skinned.layout)) state.SkipWithError("build failed");
    benchmark::DoNotOptimize(out.vertices.Data());
  }
  state.SetItemsProcessed(state.iterations() * kVertices);
}
BENCHMARK(BM_BuildPreviewMesh)->Unit(benchmark::kMillisecond);

}  // namespace
