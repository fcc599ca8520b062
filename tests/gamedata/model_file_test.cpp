#include "gamedata/model_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "core/hash.h"
#include "core/memory_hooks.h"
#include "support/allocation_failure.h"
#include "support/model_writer.h"

namespace {

using testsupport::BuildModel;
using testsupport::BuildPalette;
using testsupport::ModelDesc;
using testsupport::PaletteDesc;

// A buffer of exactly the file's length, so the sanitizer sees a read one byte past it.
void Fill(CByteBuffer& buffer, const std::string& bytes) {
  ASSERT_TRUE(buffer.SetSize(static_cast<u32>(bytes.size())));
  if (!bytes.empty()) std::memcpy(buffer.Data(), bytes.data(), bytes.size());
}

std::string Bytes(const u8* data, u32 size) { return size ? std::string(reinterpret_cast<const char*>(data), size) : ""; }

bool ReadPalette(ModelMaterials& materials, const std::string& bytes) {
  CByteBuffer buffer(1);
  Fill(buffer, bytes);
  ByteReader reader(buffer);
  return ReadMaterials(materials, reader);
}

// What must hold after any successful read, whatever the file said.
void CheckInvariants(const ModelMaterials& materials) {
  for (const MaterialName& name : materials.names) EXPECT_EQ(name.hash, HashNameWide(name.text.Text()));
  for (const ModelMaterial& material : materials.materials) {
    EXPECT_EQ(material.owner, &materials);
    for (const MaterialParameter& parameter : material.parameters) {
      const u8* data = parameter.Data();
      const auto* record = reinterpret_cast<const u8*>(&parameter);
      const bool inRecord = data >= record && data < record + sizeof(parameter);
      EXPECT_EQ(data == nullptr, parameter.dataSize == 0);
      if (data) {
        EXPECT_EQ(inRecord, parameter.dataSize <= MaterialParameter::kInlineDataSize) << parameter.dataSize;
      }
    }
  }
}

void CheckInvariants(const ModelFile& model) {
  for (u32 i = 0; i < model.meshes.Count(); ++i) {
    const ModelMesh& mesh = model.meshes[i];
    EXPECT_EQ(mesh.index, i);
    EXPECT_EQ(0, std::memcmp(mesh.bounds, model.bounds, sizeof(model.bounds)));
    for (u32 s = 0; s < mesh.streams.Count(); ++s) {
      const MeshStream& stream = mesh.streams[s];
      EXPECT_EQ(stream.index, s);
      EXPECT_EQ(u64(stream.dataSize), u64(stream.stride) * mesh.vertexCount);
      EXPECT_EQ(stream.data.Size(), stream.dataSize);
    }
    EXPECT_EQ(u64(mesh.indexDataSize), u64(mesh.bytesPerIndex) * mesh.indexCount);
    EXPECT_EQ(mesh.indexData.Size(), mesh.indexDataSize);
  }
  for (u32 b = 0; b < model.bones.Count(); ++b) {
    const ModelBone& bone = model.bones[b];
    for (u32 row = 0; row < 4; ++row) EXPECT_EQ(bone.bindMatrix[row][3], row == 3 ? 1.0f : 0.0f);
    const bool named = std::any_of(model.boneMap.begin(), model.boneMap.end(), [&](auto& e) { return e.bone == b; });
    EXPECT_EQ(bone.used, named) << b;
  }
}

void ExpectMatches(const PaletteDesc& desc, const ModelMaterials& materials) {
  CheckInvariants(materials);
  ASSERT_EQ(materials.names.Count(), desc.names.size());
  for (u32 i = 0; i < materials.names.Count(); ++i) EXPECT_EQ(materials.names[i].text.Text(), desc.names[i]);
  ASSERT_EQ(materials.materials.Count(), desc.materials.size());
  for (u32 m = 0; m < materials.materials.Count(); ++m) {
    const ModelMaterial& material = materials.materials[m];
    const testsupport::MaterialDesc& expected = desc.materials[m];
    EXPECT_EQ(material.materialKey, expected.materialKey);
    EXPECT_EQ(material.definitionHash, expected.definitionHash);
    ASSERT_EQ(material.parameters.Count(), expected.parameters.size());
    for (u32 p = 0; p < material.parameters.Count(); ++p) {
      const MaterialParameter& parameter = material.parameters[p];
      EXPECT_EQ(parameter.semanticHash, expected.parameters[p].semanticHash);
      EXPECT_EQ(parameter.parameterClass, expected.parameters[p].parameterClass);
      EXPECT_EQ(parameter.parameterType, expected.parameters[p].parameterType);
      EXPECT_EQ(Bytes(parameter.Data(), parameter.dataSize), expected.parameters[p].data);
    }
  }
}

std::array<u32, 9> Fields(const DrawCall& c) {
  return {c.reserved0, c.firstBoneMapEntry, c.boneMapEntryCount, c.slotBase, c.reserved1, c.firstVertex, c.vertexCount,
          c.reserved2, c.reserved3};
}
std::array<u32, 9> Fields(const testsupport::DrawCallDesc& c) {
  return {c.reserved0, c.firstBoneMapEntry, c.boneMapEntryCount, c.slotBase, c.reserved1, c.firstVertex, c.vertexCount,
          c.reserved2, c.reserved3};
}

void ExpectMatches(const ModelDesc& desc, const ModelFile& model) {
  CheckInvariants(model);
  for (u32 i = 0; i < 6; ++i) EXPECT_EQ(model.bounds[i], desc.bounds[i]);
  ASSERT_EQ(model.meshes.Count(), desc.meshes.size());
  for (u32 i = 0; i < model.meshes.Count(); ++i) {
    const ModelMesh& mesh = model.meshes[i];
    const testsupport::MeshDesc& expected = desc.meshes[i];
    EXPECT_EQ(mesh.firstDrawCall, expected.firstDrawCall);
    EXPECT_EQ(mesh.drawCallCount, expected.drawCallCount);
    EXPECT_EQ(mesh.bonePaletteSize, expected.bonePaletteSize);
    EXPECT_EQ(mesh.reserved, expected.reserved);
    EXPECT_EQ(mesh.bytesPerIndex, expected.bytesPerIndex);
    EXPECT_EQ(mesh.vertexCount, expected.vertexCount);
    EXPECT_EQ(Bytes(mesh.indexData.Data(), mesh.indexDataSize), expected.indexData);
    ASSERT_EQ(mesh.streams.Count(), expected.streams.size());
    for (u32 s = 0; s < mesh.streams.Count(); ++s) {
      EXPECT_EQ(mesh.streams[s].stride, expected.streams[s].stride);
      EXPECT_EQ(Bytes(mesh.streams[s].data.Data(), mesh.streams[s].dataSize), expected.streams[s].data);
    }
  }
  ASSERT_EQ(model.drawCalls.Count(), desc.drawCalls.size());
  for (u32 i = 0; i < model.drawCalls.Count(); ++i) EXPECT_EQ(Fields(model.drawCalls[i]), Fields(desc.drawCalls[i]));
  ASSERT_EQ(model.boneMap.Count(), desc.boneMap.size());
  for (u32 i = 0; i < model.boneMap.Count(); ++i) {
    EXPECT_EQ(model.boneMap[i].bone, desc.boneMap[i].bone);
    EXPECT_EQ(model.boneMap[i].slot, desc.boneMap[i].slot);
  }
  ASSERT_EQ(model.bones.Count(), desc.bones.size());
  for (u32 b = 0; b < model.bones.Count(); ++b) {
    const ModelBone& bone = model.bones[b];
    for (u32 r = 0; r < 4; ++r) {
      for (u32 c = 0; c < 3; ++c) EXPECT_EQ(bone.bindMatrix[r][c], desc.bones[b].matrix[r][c]);
    }
    for (u32 w = 0; w < 6; ++w) EXPECT_EQ(bone.bounds[w], desc.bones[b].bounds[w]);
    EXPECT_EQ(bone.nameHash, desc.bones[b].nameHash);
  }
}

// The largest single block asked for while alive.
class LargestAllocation {
 public:
  LargestAllocation() : saved(gMemoryHooks) {
    largest = 0;
    outer = saved;
    gMemoryHooks.Allocate = [](size_t n) { return outer.Allocate(Note(n)); };
    gMemoryHooks.AlignedAllocate = [](size_t n, size_t alignment) { return outer.AlignedAllocate(Note(n), alignment); };
  }
  ~LargestAllocation() { gMemoryHooks = saved; }
  size_t Bytes() const { return largest; }

 private:
  static size_t Note(size_t n) {
    largest = std::max(largest, n);
    return n;
  }
  static inline MemoryHooks outer;
  static inline size_t largest = 0;
  MemoryHooks saved;
};

TEST(ByteReader, AFailedReadMovesNothingAndGivesZeros) {
  CByteBuffer buffer(1);
  Fill(buffer, std::string("\x01\x02\x03\x04\x05\x06", 6));
  ByteReader reader(buffer);
  u32 value = 7;
  ASSERT_TRUE(reader.ReadU32(value));
  EXPECT_EQ(value, 0x04030201u);
  EXPECT_FALSE(reader.ReadU32(value));
  EXPECT_EQ(value, 0u);
  u8 out[3] = {9, 9, 9};
  EXPECT_FALSE(reader.ReadBytes(out, 3));
  EXPECT_EQ(out[0] | out[1] | out[2], 0);
  EXPECT_FALSE(reader.Skip(0xFFFFFFFF)) << "a size that would wrap the position";
  EXPECT_EQ(reader.Position(), 4u);
  EXPECT_TRUE(reader.Skip(2));
  EXPECT_TRUE(reader.Skip(0));
  EXPECT_EQ(reader.Remaining(), 0u);
}

TEST(ModelFile, WellFormedFilesReadAsWritten) {
  // What `materials` holds before each read; a model without a chunk must leave it so.
  const PaletteDesc before{.names = {"earlier"}, .materials = {{.materialKey = 99}}};
  auto variant = [](auto change) {
    ModelDesc desc = testsupport::SampleModel();
    change(desc);
    return desc;
  };
  const std::pair<const char*, ModelDesc> cases[] = {
      {"every kind of block", testsupport::SampleModel()},
      {"no material chunk", variant([](ModelDesc& d) { d.materials.reset(); })},
      {"bone count 0 ends the file whatever the map says", variant([](ModelDesc& d) { d.bones.clear(); })},
      {"bytes after the last block", variant([](ModelDesc& d) { d.trailing = "ignored"; })},
      {"empty chunk", variant([](ModelDesc& d) { d.materials = PaletteDesc{}; })},
      {"nothing at all", ModelDesc{}},
      {"four-byte indices, three streams", variant([](ModelDesc& d) {
         d.meshes = {testsupport::PatternMesh(300, {4, 40, 1}, 4, 900)};
       })},
  };
  for (const auto& [what, desc] : cases) {
    SCOPED_TRACE(what);
    ModelMaterials materials;
    ASSERT_TRUE(ReadPalette(materials, BuildPalette(before)));
    CByteBuffer bytes(1);
    Fill(bytes, BuildModel(desc));
    ModelFile model;
    ASSERT_TRUE(Read(model, bytes, materials));
    ExpectMatches(desc, model);
    ExpectMatches(desc.materials.value_or(before), materials);
  }
}

TEST(ModelFile, PalettesReadAsWritten) {
  const std::pair<const char*, PaletteDesc> cases[] = {
      {"sample", testsupport::SamplePalette()},
      {"table ending in two NULs", {.names = {"a", ""}}},
      {"one empty name", {.names = {""}}},
      {"no names", {}},
  };
  for (const auto& [what, desc] : cases) {
    SCOPED_TRACE(what);
    const std::string bytes = BuildPalette(desc) + "after";
    CByteBuffer buffer(1);
    Fill(buffer, bytes);
    ByteReader reader(buffer);
    ModelMaterials materials;
    ASSERT_TRUE(ReadMaterials(materials, reader));
    ExpectMatches(desc, materials);
    EXPECT_EQ(reader.Remaining(), 5u) << "stops at the chunk's end";
  }
  ModelMaterials materials;
  ASSERT_TRUE(ReadPalette(materials, BuildPalette(testsupport::SamplePalette())));
  EXPECT_EQ(materials.materials[0].parameters[0].TextureHash(), materials.names[0].hash);
  EXPECT_EQ(materials.materials[0].parameters[2].TextureHash(), 0u) << "16 bytes of data are no texture reference";
}

TEST(ModelFile, EveryTruncationFails) {
  const std::string model = BuildModel(testsupport::SampleModel());
  const std::string palette = BuildPalette(testsupport::SamplePalette());
  for (size_t cut = 0; cut < model.size(); ++cut) {
    SCOPED_TRACE(cut);
    CByteBuffer bytes(1);
    Fill(bytes, model.substr(0, cut));
    ModelFile read;
    ModelMaterials materials;
    EXPECT_FALSE(Read(read, bytes, materials));
    if (cut < palette.size()) {
      ModelMaterials alone;
      EXPECT_FALSE(ReadPalette(alone, palette.substr(0, cut)));
    }
  }
}

TEST(ModelFile, MalformedFilesFailWithoutLargeAllocations) {
  const u32 chunkSize = static_cast<u32>(BuildPalette(testsupport::SamplePalette()).size());
  const u32 boneCount = static_cast<u32>(testsupport::SampleModel().bones.size());
  // A palette case breaks the sample palette, alone and as the sample model's chunk. Counts are
  // chosen so that count times the record size wraps to 0 in 32 bits where they can.
  struct Case {
    const char* what;
    std::function<void(ModelDesc&)> model;
    std::function<void(PaletteDesc&)> palette;
  };
  const Case cases[] = {
      {"model magic", [](ModelDesc& d) { d.magic = 0x444F4D45; }, {}},
      {"version 3", [](ModelDesc& d) { d.version = 3; }, {}},
      {"version 5", [](ModelDesc& d) { d.version = 5; }, {}},
      {"chunk longer than declared", [&](ModelDesc& d) { d.materialChunkSize = chunkSize - 4; }, {}},
      {"chunk shorter than declared", [&](ModelDesc& d) { d.materialChunkSize = chunkSize + 4; }, {}},
      {"chunk size past the end", [](ModelDesc& d) { d.materialChunkSize = 0xFFFFFFF0; }, {}},
      {"mesh count", [](ModelDesc& d) { d.meshCount = 0x08000000; }, {}},
      {"stream count", [](ModelDesc& d) { d.meshes[0].streamCount = 0x40000000; }, {}},
      {"stride times vertices",
       [](ModelDesc& d) { d.meshes[0] = {.vertexCount = 0x10000, .streams = {{.stride = 0x10000}}}; }, {}},
      {"bytes per index times indices", [](ModelDesc& d) { d.meshes[1].indexCount = 0x40000000; }, {}},
      {"draw call count", [](ModelDesc& d) { d.drawCallCount = 0x40000000; }, {}},
      {"bone map count", [](ModelDesc& d) { d.boneMapCount = 0x40000000; }, {}},
      {"bone count", [](ModelDesc& d) { d.boneCount = 0x40000000; }, {}},
      {"bone count one too many", [&](ModelDesc& d) { d.boneCount = boneCount + 1; }, {}},
      {"palette magic", {}, [](PaletteDesc& d) { d.magic = 0x54414D45; }},
      {"palette version 2", {}, [](PaletteDesc& d) { d.version = 2; }},
      {"last name without a NUL", {}, [](PaletteDesc& d) { d.nameTable = std::string("a\0bc", 4); }},
      {"name table past the end", {}, [](PaletteDesc& d) { d.nameTableSize = 0xFFFFFFFF; }},
      {"material count", {}, [](PaletteDesc& d) { d.materialCount = 0x10000000; }},
      {"parameter count", {}, [](PaletteDesc& d) { d.materials[1].parameterCount = 0x10000000; }},
      {"parameter data size", {}, [](PaletteDesc& d) { d.materials[0].parameters[3].dataSize = 0xFFFFFFFF; }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    ModelDesc desc = testsupport::SampleModel();
    if (c.model) c.model(desc);
    if (c.palette) c.palette(*desc.materials);
    LargestAllocation largest;
    {
      CByteBuffer bytes(1);
      Fill(bytes, BuildModel(desc));
      ModelFile model;
      ModelMaterials materials;
      EXPECT_FALSE(Read(model, bytes, materials));
      if (c.palette) {
        EXPECT_FALSE(ReadPalette(materials, BuildPalette(*desc.materials)));
      }
    }
    EXPECT_LT(largest.Bytes(), 64u * 1024) << "nothing sized by a count the file can't hold";
  }
}

TEST(ModelFile, RefusedMemoryAtEveryStepFailsCleanly) {
  const ModelDesc desc = testsupport::SampleModel();
  CByteBuffer buffer(1);
  Fill(buffer, BuildModel(desc));
  for (u64 failAt = 1; failAt < 1000; ++failAt) {
    SCOPED_TRACE(failAt);
    testsupport::ScopedAllocationFailure refuse(failAt);
    {
      ModelFile model;
      ModelMaterials materials;
      const bool read = Read(model, buffer, materials);
      if (!refuse.Failed()) {
        ASSERT_TRUE(read);
        ExpectMatches(desc, model);
        ExpectMatches(*desc.materials, materials);
        return;
      }
      EXPECT_FALSE(read);
    }
    EXPECT_EQ(refuse.Live(), 0) << "nothing leaks";
  }
  FAIL() << "never succeeded";
}

}  // namespace
