#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "mesh/export_mesh.h"
#include "mesh/preview_mesh.h"
#include "mesh_fixture.h"
#include "support/allocation_failure.h"

namespace {

using namespace meshtest;

// Every successful build: indices as stored, an entry per vertex in each element the flags name
// and none in the others.
void CheckExport(const ExportMesh& out, const ModelMesh& mesh) {
  ASSERT_EQ(out.vertexCount, mesh.vertexCount);
  ASSERT_EQ(out.indexCount, mesh.indexCount);
  EXPECT_TRUE(out.flags & kHasPosition);
  const auto expect = [&out](u32 count, u32 flag) {
    EXPECT_EQ(count, (out.flags & flag) ? out.vertexCount : 0) << flag;
  };
  expect(out.positions.Count(), kHasPosition);
  expect(out.normals.Count(), kHasNormal);
  expect(out.tangents.Count(), kHasTangentFrame);
  expect(out.binormals.Count(), kHasTangentFrame);
  for (u32 channel = 0; channel < kExportUvChannels; ++channel) expect(out.uvs[channel].Count(), HasUv(channel));
  expect(out.colors.Count(), kHasColor);
  expect(out.influences.Count(), kHasInfluences);
}

// Four vertices in one 16-byte stream: a Ubyte4n normal-ish vector at 0, tangent at 4, binormal
// at 8 and blend indices at 12; positions and uvs in a second stream.
struct Quad {
  ModelFile model;
  ModelMesh mesh;
  InputLayout layout;

  explicit Quad(std::initializer_list<Element> elements) {
    MakeLayout(layout, elements);
    const u8 slots[4][2] = {{0, 1}, {1, 2}, {1, 2}, {3, 0}};
    std::string frame;
    for (u8 v = 0; v < 4; ++v) {
      Append<u8>(frame, {255, 128, 128, 255});              // normal: snaps to +x
      Append<u8>(frame, {255, 128, 128, 255});              // tangent +x, w 255: s = 1
      Append<u8>(frame, {128, 255, 128, v});                // binormal +y, rigid bone = slot v
      Append<u8>(frame, {slots[v][0], slots[v][1], 0, 0});  // blend indices
    }
    std::string positions;
    for (int v = 0; v < 4; ++v) Append<f32>(positions, {f32(v), f32(v % 2), 0, 0.25f * v, 0.5f});
    MakeMesh(mesh, 4, {{16, frame}, {20, positions}});
    SetIndices(mesh, 2, {0, 1, 2, 2, 1, 3});
  }
};

TEST(ExportMesh, NormalSourcesChannelsAndColour) {
  struct Case {
    const char* what;
    std::initializer_list<Element> elements;
    u32 flags;
    f32 normalZ;  // of vertex 0
  };
  const Element position{kPosition, kFloat3, 0, 1};
  const Case cases[] = {
      {"stored normal and frame",
       {position, {kNormal, kUbyte4n, 0}, {kTangent, kUbyte4n, 4}, {kBinormal, kUbyte4n, 8}},
       kHasPosition | kHasNormal | kHasTangentFrame,
       0},
      {"normal beyond the stride: derived from the frame",
       {position, {kNormal, kFloat3, 8}, {kTangent, kUbyte4n, 4}, {kBinormal, kUbyte4n, 8}},
       kHasPosition | kHasNormal | kHasTangentFrame,
       1},
      {"normal and tangent alone",
       {position, {kNormal, kUbyte4n, 0}, {kTangent, kUbyte4n, 4}},
       kHasPosition | kHasNormal,
       0},
      {"tangent alone", {position, {kTangent, kUbyte4n, 4}}, kHasPosition, 0},
      {"uv channels 0 and 7, not 8",
       {position, {kTexcoord, kFloat2, 12, 1, 0}, {kTexcoord, kFloat2, 12, 1, 7}, {kTexcoord, kFloat2, 12, 1, 8}},
       kHasPosition | HasUv(0) | HasUv(7),
       0},
      {"colour with alpha", {position, {kColor, kUbyte4n, 0}}, kHasPosition | kHasColor | kHasColorAlpha, 0},
      {"colour without", {position, {kColor, kFloat3, 0, 1}}, kHasPosition | kHasColor, 0},
      {"colour beyond the stride is passed over", {position, {kColor, kFloat4, 8, 1}}, kHasPosition, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Quad quad(c.elements);
    ExportMesh out;
    ASSERT_TRUE(Build(out, quad.model, quad.mesh, &quad.layout, 0));
    CheckExport(out, quad.mesh);
    EXPECT_EQ(out.flags, c.flags);
    if (c.flags & kHasNormal) {
      EXPECT_NEAR(out.normals[0].z, c.normalZ, 1e-4f);
    }
    EXPECT_EQ(out.positions[3].x, 3.0f);
    EXPECT_EQ(out.influences.Count(), 0u) << "no skin without the flags";
    if (c.flags & kHasTangentFrame) {
      EXPECT_NEAR(out.binormals[2].y, 1.0f, 1e-4f);
    }
    if (c.flags & HasUv(7)) {
      EXPECT_EQ(out.uvs[7][2].x, 0.5f);
    }
    if (c.flags & kHasColorAlpha) {
      EXPECT_EQ(out.colors[1].w, 1.0f);
    }
  }
}

TEST(ExportMesh, IndicesAndFailures) {
  Quad quad({{kPosition, kFloat3, 0, 1}});
  ExportMesh out;
  ASSERT_TRUE(Build(out, quad.model, quad.mesh, &quad.layout, 0));
  EXPECT_EQ(std::vector<u32>(out.indices.begin(), out.indices.end()), (std::vector<u32>{0, 1, 2, 2, 1, 3}));
  SetIndices(quad.mesh, 4, {3, 0, 70000, 1, 2});
  ASSERT_TRUE(Build(out, quad.model, quad.mesh, &quad.layout, 0)) << "five indices don't fail here";
  EXPECT_EQ(out.indices[2], 70000u);
  quad.mesh.bytesPerIndex = 3;
  EXPECT_FALSE(Build(out, quad.model, quad.mesh, &quad.layout, 0));
  EXPECT_EQ(out.positions.Count() + out.vertexCount + out.flags, 0u) << "empty after a failure";
  SetIndices(quad.mesh, 2, {});
  EXPECT_FALSE(Build(out, quad.model, quad.mesh, nullptr, 0));
  InputLayout farPosition;
  MakeLayout(farPosition, {{kPosition, kFloat3, 12, 1}});
  EXPECT_FALSE(Build(out, quad.model, quad.mesh, &farPosition, 0)) << "a position outside its stream";
  ModelMesh empty;
  SetIndices(empty, 4, {});
  InputLayout anyPosition;
  MakeLayout(anyPosition, {{kPosition, kFloat3, 0}});
  ASSERT_TRUE(empty.streams.SetSize(1));
  empty.streams[0].stride = 12;
  ASSERT_TRUE(Build(out, quad.model, empty, &anyPosition, 0));
  EXPECT_EQ(out.flags, u32(kHasPosition));
  // A Position of a type that takes no bytes fits a stream of stride 0, which no byte of the file
  // backs: the count it would vouch for is refused before anything is sized by it.
  InputLayout sizeless;
  MakeLayout(sizeless, {{kPosition, kUdec3, 0}});
  empty.streams[0].stride = 0;
  empty.vertexCount = 1 << 20;
  PreviewMesh preview;
  EXPECT_FALSE(Build(out, quad.model, empty, &sizeless, 0));
  EXPECT_FALSE(BuildPreview(preview, empty, &sizeless));
  testsupport::ScopedAllocationFailure refuse(1);
  EXPECT_FALSE(Build(out, quad.model, quad.mesh, &quad.layout, 0));
}

TEST(ExportMesh, SkinsRenumberSlotsThroughTheDrawCalls) {
  Quad quad({{kPosition, kFloat3, 0, 1},
             {kBinormal, kUbyte4n, 8},
             {kBlendIndices, kUbyte4n, 12},
             {kBlendWeight, kUbyte4n, 4}});
  // Draw call 0 covers vertices 0-1 with slots 0->10, 1->11, 2->12. Draw call 1 covers 2-3 with a
  // base of 1: it rewrites slot 2 (1 + 1) and wraps 3 + 1 to slot 0, while slot 1 keeps the bone of
  // draw call 0. Slot 3 is never written and gives bone 0. A third draw call lies beyond the list.
  ASSERT_TRUE(quad.model.boneMap.SetSize(5));
  const BoneMapEntry map[] = {{10, 0}, {11, 1}, {12, 2}, {20, 1}, {21, 3}};
  for (u32 i = 0; i < 5; ++i) quad.model.boneMap[i] = map[i];
  ASSERT_TRUE(quad.model.drawCalls.SetSize(2));
  quad.model.drawCalls[0] = {
      .firstBoneMapEntry = 0, .boneMapEntryCount = 3, .slotBase = 0, .firstVertex = 0, .vertexCount = 2};
  quad.model.drawCalls[1] = {
      .firstBoneMapEntry = 3, .boneMapEntryCount = 2, .slotBase = 1, .firstVertex = 2, .vertexCount = 2};
  quad.mesh.drawCallCount = 3;
  quad.mesh.bonePaletteSize = 4;

  struct Case {
    const char* what;
    u32 flags;
    u32 paletteSize;
    std::vector<std::vector<i32>> bones;  // per vertex, the first two influences
    f32 weight1;
  };
  const Case cases[] = {
      {"skinned", kSkinned, 4, {{10, 11}, {11, 12}, {11, 20}, {0, 21}}, 128 / 255.0f},
      {"skinned wins over rigid", kSkinned | kRigidSkinned, 4, {{10, 11}, {11, 12}, {11, 20}, {0, 21}}, 128 / 255.0f},
      {"rigid: the binormal's fourth byte", kRigidSkinned, 4, {{10, 0}, {11, 0}, {20, 0}, {0, 0}}, 0},
      {"no palette: nothing to map", kSkinned, 0, {{0, 0}, {0, 0}, {0, 0}, {0, 0}}, 128 / 255.0f},
      {"slots beyond a palette of 2", kSkinned, 2, {{12, 11}, {11, 0}, {11, 0}, {0, 21}}, 128 / 255.0f},
      {"a huge palette keeps only the slots named",
       kSkinned,
       0x10000000,
       {{10, 11}, {11, 12}, {11, 20}, {0, 10}},
       128 / 255.0f},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    quad.mesh.bonePaletteSize = c.paletteSize;
    ExportMesh out;
    ASSERT_TRUE(Build(out, quad.model, quad.mesh, &quad.layout, c.flags));
    EXPECT_TRUE(out.flags & kHasInfluences);
    for (u32 v = 0; v < 4; ++v) {
      EXPECT_EQ(out.influences[v].k[0].bone, c.bones[v][0]) << v;
      EXPECT_EQ(out.influences[v].k[1].bone, c.bones[v][1]) << v;
      EXPECT_FLOAT_EQ(out.influences[v].k[1].weight, c.weight1) << v;
    }
    EXPECT_FLOAT_EQ(out.influences[0].k[0].weight, 1.0f);
  }
  // A draw call over vertices that an earlier one renumbered reads their bones as slots again:
  // 10 and 11 lie past every slot written and give bone 0.
  quad.model.drawCalls[1].firstVertex = 0;
  quad.model.drawCalls[1].vertexCount = 4;
  ExportMesh twice;
  ASSERT_TRUE(Build(twice, quad.model, quad.mesh, &quad.layout, kSkinned));
  EXPECT_EQ(twice.influences[0].k[0].bone, 0);
  // Ranges adding up to far more than the mesh and its map mark a corrupt file.
  quad.mesh.drawCallCount = 20000;
  ASSERT_TRUE(quad.model.drawCalls.SetSize(20000));
  for (DrawCall& call : quad.model.drawCalls) call = quad.model.drawCalls[1];
  EXPECT_FALSE(Build(twice, quad.model, quad.mesh, &quad.layout, kSkinned));

  InputLayout noIndices;
  MakeLayout(noIndices, {{kPosition, kFloat3, 0, 1}, {kBlendWeight, kUbyte4n, 4}});
  ExportMesh out;
  ASSERT_TRUE(Build(out, quad.model, quad.mesh, &noIndices, kSkinned));
  EXPECT_FALSE(out.flags & kHasInfluences);
  EXPECT_EQ(out.influences.Count(), 0u);
}

// No record is filled before its passes, so each pass must write every vertex: the vertices past
// a stream that ends early read as if their bytes were zero.
TEST(ExportMesh, VerticesPastAStreamsEndReadAsZeros) {
  struct Case {
    const char* what;
    std::initializer_list<Element> elements;
    u32 materialFlags;
  };
  const Element position{kPosition, kFloat3, 0, 1};
  const Case cases[] = {
      {"stored normal, frame, uv, colour and skin",
       {position,
        {kNormal, kUbyte4n, 0},
        {kTangent, kUbyte4n, 4},
        {kBinormal, kUbyte4n, 8},
        {kTexcoord, kFloat2, 0},
        {kColor, kUbyte4n, 8},
        {kBlendIndices, kUbyte4, 12},
        {kBlendWeight, kUbyte4n, 4}},
       kSkinned},
      {"derived normal and rigid skin", {position, {kTangent, kUbyte4n, 4}, {kBinormal, kUbyte4n, 8}}, kRigidSkinned},
  };
  const auto same = [](const auto& a, const auto& b) {
    return a.Count() == b.Count() && (a.Count() == 0 || std::memcmp(a.Data(), b.Data(), a.Count() * sizeof(a[0])) == 0);
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Quad cut(c.elements);
    ASSERT_TRUE(cut.mesh.streams[0].data.SetSize(32));
    cut.mesh.streams[0].dataSize = 32;
    Quad zeroed(c.elements);
    std::memset(zeroed.mesh.streams[0].data.Data() + 32, 0, 32);
    ExportMesh fromCut, fromZeros;
    ASSERT_TRUE(Build(fromCut, cut.model, cut.mesh, &cut.layout, c.materialFlags));
    ASSERT_TRUE(Build(fromZeros, zeroed.model, zeroed.mesh, &zeroed.layout, c.materialFlags));
    CheckExport(fromCut, cut.mesh);
    EXPECT_EQ(fromCut.flags, fromZeros.flags);
    EXPECT_TRUE(same(fromCut.normals, fromZeros.normals));
    EXPECT_TRUE(same(fromCut.tangents, fromZeros.tangents));
    EXPECT_TRUE(same(fromCut.binormals, fromZeros.binormals));
    for (u32 channel = 0; channel < kExportUvChannels; ++channel) {
      EXPECT_TRUE(same(fromCut.uvs[channel], fromZeros.uvs[channel]));
    }
    EXPECT_TRUE(same(fromCut.colors, fromZeros.colors));
    EXPECT_TRUE(same(fromCut.influences, fromZeros.influences));
    EXPECT_EQ(fromCut.influences.Count(), 4u);
  }
}

// Meshes are decoded and renumbered in blocks of vertices while few draw calls name their slots,
// and in one pass at the end past that; both must follow the draw calls' order exactly, over
// ranges that overlap and cross blocks and the spans of blocks decoded together.
TEST(ExportMesh, RenumberingOverManyDrawCallsAndBlocks) {
  constexpr u32 kVertices = 9000;
  constexpr u32 kPalette = 8;
  std::string stream;
  for (u32 v = 0; v < kVertices; ++v) {
    Append<f32>(stream, {f32(v), 0, 0});
    Append<u8>(stream, {u8(v % kPalette), u8((v + 3) % kPalette), 0, 200, 255, 0, 0, 0});
  }
  struct Case {
    u32 drawCalls;
    u32 vertexStep;
    u32 vertexSpan;
  };
  for (const Case c : {Case{100, 13, 40}, Case{100, 90, 200}, Case{1100, 1, 3}}) {
    SCOPED_TRACE(c.drawCalls);
    InputLayout layout;
    MakeLayout(layout, {{kPosition, kFloat3, 0}, {kBlendIndices, kUbyte4, 12}, {kBlendWeight, kUbyte4n, 16}});
    ModelFile model;
    ModelMesh mesh;
    MakeMesh(mesh, kVertices, {{20, stream}});
    SetIndices(mesh, 2, {0, 1, 2});
    mesh.bonePaletteSize = kPalette;
    mesh.drawCallCount = c.drawCalls;
    ASSERT_TRUE(model.drawCalls.SetSize(c.drawCalls));
    ASSERT_TRUE(model.boneMap.SetSize(c.drawCalls * 2));
    for (u32 d = 0; d < c.drawCalls; ++d) {
      model.boneMap[2 * d] = {u16(100 + d), u16(d % kPalette)};
      model.boneMap[2 * d + 1] = {u16(5000 + d), u16((d * 3) % kPalette)};
      model.drawCalls[d] = {.firstBoneMapEntry = 2 * d,
                            .boneMapEntryCount = 2,
                            .slotBase = d % 3,
                            .firstVertex = d * c.vertexStep,
                            .vertexCount = c.vertexSpan};
    }
    // The renumbering as written down: slots carried from call to call, vertices in call order.
    std::vector<std::vector<i32>> want(kVertices);
    for (u32 v = 0; v < kVertices; ++v) want[v] = {i32(v % kPalette), i32((v + 3) % kPalette), 0, 200};
    std::vector<i32> slots(kPalette, -1);
    for (u32 d = 0; d < c.drawCalls; ++d) {
      for (u32 e = 2 * d; e < 2 * d + 2; ++e) slots[(model.boneMap[e].slot + d % 3) % kPalette] = model.boneMap[e].bone;
      for (u32 v = d * c.vertexStep; v < std::min(kVertices, d * c.vertexStep + c.vertexSpan); ++v) {
        for (i32& bone : want[v]) bone = bone >= 0 && u32(bone) < slots.size() && slots[bone] >= 0 ? slots[bone] : 0;
      }
    }
    ExportMesh out;
    ASSERT_TRUE(Build(out, model, mesh, &layout, kSkinned));
    for (u32 v = 0; v < kVertices; ++v) {
      ASSERT_EQ(out.positions[v].x, f32(v));
      for (u32 k = 0; k < 4; ++k) ASSERT_EQ(out.influences[v].k[k].bone, want[v][k]) << v << " " << k;
    }
  }
}

TEST(PreviewMesh, IndexedWithNormalsFlatWithout) {
  Quad indexed({{kPosition, kFloat3, 0, 1}, {kNormal, kUbyte4n, 0}, {kTexcoord, kFloat2, 12, 1}});
  PreviewMesh out;
  ASSERT_TRUE(BuildPreview(out, indexed.mesh, &indexed.layout));
  EXPECT_EQ(out.vertexCount, 4u);
  EXPECT_EQ(out.indices[5], 3u);
  EXPECT_EQ(out.vertices[0].normal[0], 1.0f);
  EXPECT_EQ(out.vertices[2].uv[0], 0.5f);

  // Corners (0,0,0), (2,0,0), (0,2,0): a face normal of (0, 0, 4). An index past the vertices and a
  // last corner short of a triangle stay zero.
  ModelMesh flat;
  MakeMesh(flat, 4, {{12, Bytes<f32>({0, 0, 0, 2, 0, 0, 0, 2, 0, 5, 5, 5})}});
  SetIndices(flat, 4, {0, 1, 2, 3, 9, 2, 1});
  InputLayout layout;
  MakeLayout(layout, {{kPosition, kFloat3, 0}, {kNormal, kFloat3, 4}});
  ASSERT_TRUE(BuildPreview(out, flat, &layout));
  ASSERT_EQ(out.vertexCount, 7u);
  for (u32 k = 0; k < 3; ++k) EXPECT_EQ(out.vertices[k].normal[2], 4.0f);
  EXPECT_EQ(out.vertices[4].position[0], 0.0f) << "index 9 is past the mesh";
  EXPECT_EQ(out.vertices[6].normal[2], 0.0f);
  for (u32 i = 0; i < 7; ++i) EXPECT_EQ(out.indices[i], i);
}

}  // namespace
