#include "gamedata/model_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>

#include "core/hash.h"
#include "game_writers/model_writer.h"
#include "support/allocation_failure.h"

namespace {

using gamewriters::BuildModel;
using gamewriters::BuildPalette;
using gamewriters::ModelDesc;
using gamewriters::PaletteDesc;

// Granule 1: exactly the file's length, so the sanitizer sees a read one byte past it.
struct ExactBytes {
  explicit ExactBytes(const std::string& bytes) {
    if (!buffer.SetSize(static_cast<u32>(bytes.size()))) std::abort();
    if (!bytes.empty()) std::memcpy(buffer.Data(), bytes.data(), bytes.size());
  }
  CByteBuffer buffer{1};
};

std::string Text(const u8* data, u32 size) {
  return size ? std::string(reinterpret_cast<const char*>(data), size) : "";
}

bool ReadPalette(ModelMaterials& materials, const std::string& bytes) {
  ExactBytes file(bytes);
  ByteReader reader(file.buffer);
  return ReadMaterials(materials, reader) && reader.Remaining() == 0;
}

// What must hold after any successful read, whatever the file said; then the records described
// for the writer, so that comparing written bytes compares every field.
PaletteDesc Describe(const ModelMaterials& materials) {
  PaletteDesc desc;
  for (const MaterialName& name : materials.names) {
    EXPECT_EQ(name.hash, HashNameWide(name.text.Text()));
    desc.names.push_back(name.text.Text());
  }
  for (const ModelMaterial& material : materials.materials) {
    EXPECT_EQ(material.owner, &materials);
    desc.materials.push_back({.materialKey = material.materialKey, .definitionHash = material.definitionHash});
    for (const MaterialParameter& p : material.parameters) {
      const auto* record = reinterpret_cast<const u8*>(&p);
      const bool inRecord = p.Data() >= record && p.Data() < record + sizeof(p);
      EXPECT_EQ(p.Data() == nullptr, p.dataSize == 0);
      EXPECT_EQ(inRecord, p.dataSize > 0 && p.dataSize <= MaterialParameter::kInlineDataSize) << p.dataSize;
      desc.materials.back().parameters.push_back(
          {p.semanticHash, p.parameterClass, p.parameterType, Text(p.Data(), p.dataSize)});
    }
  }
  return desc;
}

ModelDesc Describe(const ModelFile& model) {
  ModelDesc desc;
  std::copy(model.bounds, model.bounds + 6, desc.bounds);
  for (u32 i = 0; i < model.meshes.Count(); ++i) {
    const ModelMesh& m = model.meshes[i];
    EXPECT_EQ(m.index, i);
    EXPECT_TRUE(std::equal(m.bounds, m.bounds + 6, model.bounds));
    EXPECT_EQ(u64(m.indexDataSize), u64(m.bytesPerIndex) * m.indexCount);
    EXPECT_EQ(m.indexData.Size(), m.indexDataSize);
    desc.meshes.push_back({m.firstDrawCall,
                           m.drawCallCount,
                           m.bonePaletteSize,
                           m.reserved,
                           m.bytesPerIndex,
                           m.vertexCount,
                           {},
                           Text(m.indexData.Data(), m.indexDataSize)});
    for (u32 s = 0; s < m.streams.Count(); ++s) {
      const MeshStream& stream = m.streams[s];
      EXPECT_EQ(stream.index, s);
      EXPECT_EQ(u64(stream.dataSize), u64(stream.stride) * m.vertexCount);
      EXPECT_EQ(stream.data.Size(), stream.dataSize);
      desc.meshes.back().streams.push_back({stream.stride, Text(stream.data.Data(), stream.dataSize)});
    }
  }
  for (const DrawCall& c : model.drawCalls) {
    desc.drawCalls.push_back({c.reserved0, c.firstBoneMapEntry, c.boneMapEntryCount, c.slotBase, c.reserved1,
                              c.firstVertex, c.vertexCount, c.reserved2, c.reserved3});
  }
  for (const BoneMapEntry& entry : model.boneMap) desc.boneMap.push_back({entry.bone, entry.slot});
  for (u32 b = 0; b < model.bones.Count(); ++b) {
    const ModelBone& bone = model.bones[b];
    const bool named = std::any_of(model.boneMap.begin(), model.boneMap.end(), [&](auto& e) { return e.bone == b; });
    EXPECT_EQ(bone.used, named) << b;
    desc.bones.push_back({.nameHash = bone.nameHash});
    for (u32 row = 0; row < 4; ++row) {
      EXPECT_EQ(bone.bindMatrix[row][3], row == 3 ? 1.0f : 0.0f);
      std::copy(bone.bindMatrix[row], bone.bindMatrix[row] + 3, desc.bones.back().matrix[row]);
    }
    std::copy(bone.bounds, bone.bounds + 6, desc.bones.back().bounds);
  }
  return desc;
}

TEST(ModelFile, WellFormedFilesReadAsWritten) {
  // What `materials` holds before each read; a model without a chunk must leave it so.
  const PaletteDesc before{.names = {"earlier"}, .materials = {{.materialKey = 99}}};
  auto variant = [](auto change) {
    ModelDesc desc = gamewriters::SampleModel();
    change(desc);
    return desc;
  };
  const std::pair<const char*, ModelDesc> cases[] = {
      {"every kind of block", gamewriters::SampleModel()},
      {"no material chunk", variant([](ModelDesc& d) { d.materials.reset(); })},
      {"bone count 0 ends the file whatever the map says", variant([](ModelDesc& d) { d.bones.clear(); })},
      {"bytes after the last block", variant([](ModelDesc& d) { d.trailing = "ignored"; })},
      {"names ending in two NULs", variant([](ModelDesc& d) {
         d.materials = PaletteDesc{.names = {"a", ""}};
       })},
      {"one empty name, no materials", variant([](ModelDesc& d) { d.materials = PaletteDesc{.names = {""}}; })},
      {"empty chunk", variant([](ModelDesc& d) { d.materials = PaletteDesc{}; })},
      {"nothing at all", ModelDesc{}},
      {"four-byte indices, three streams", variant([](ModelDesc& d) {
         d.meshes = {gamewriters::PatternMesh(300, {4, 40, 1}, 4, 900)};
       })},
  };
  for (const auto& [what, desc] : cases) {
    SCOPED_TRACE(what);
    ModelMaterials materials;
    ASSERT_TRUE(ReadPalette(materials, BuildPalette(before)));
    ExactBytes file(BuildModel(desc));
    ModelFile model;
    ASSERT_TRUE(Read(model, file.buffer, materials));
    ModelDesc expected = desc;
    expected.materials.reset();
    expected.trailing.clear();
    EXPECT_EQ(BuildModel(Describe(model)), BuildModel(expected));
    const PaletteDesc chunk = desc.materials.value_or(before);
    EXPECT_EQ(BuildPalette(Describe(materials)), BuildPalette(chunk));
    ModelMaterials alone;
    ASSERT_TRUE(ReadPalette(alone, BuildPalette(chunk))) << "the chunk is a palette by itself";
    EXPECT_EQ(BuildPalette(Describe(alone)), BuildPalette(chunk));
  }
}

TEST(ModelFile, EveryTruncationFails) {
  const std::string model = BuildModel(gamewriters::SampleModel());
  const std::string palette = BuildPalette(gamewriters::SamplePalette());
  for (size_t cut = 0; cut < model.size(); ++cut) {
    SCOPED_TRACE(cut);
    ExactBytes file(model.substr(0, cut));
    ModelFile read;
    ModelMaterials materials;
    EXPECT_FALSE(Read(read, file.buffer, materials));
    if (cut < palette.size()) {
      EXPECT_FALSE(ReadPalette(materials, palette.substr(0, cut)));
    }
  }
}

// Counts are chosen so that count times record size wraps to 0 in 32 bits where they can: a reader
// that sizes an array by them asks for more memory than the sanitizer build gives, and stops.
TEST(ModelFile, MalformedFilesFail) {
  const u32 chunkSize = static_cast<u32>(BuildPalette(gamewriters::SamplePalette()).size());
  // A palette case breaks the sample palette, both alone and as the sample model's chunk.
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
       [](ModelDesc& d) { d.meshes[0] = {.vertexCount = 0x10000, .streams = {{.stride = 0x10000}}}; },
       {}},
      {"bytes per index times indices", [](ModelDesc& d) { d.meshes[1].indexCount = 0x40000000; }, {}},
      {"draw call count", [](ModelDesc& d) { d.drawCallCount = 0x40000000; }, {}},
      {"bone map count", [](ModelDesc& d) { d.boneMapCount = 0x40000000; }, {}},
      {"bone count", [](ModelDesc& d) { d.boneCount = 0x40000000; }, {}},
      {"bone count one too many", [](ModelDesc& d) { d.boneCount = u32(d.bones.size() + 1); }, {}},
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
    ModelDesc desc = gamewriters::SampleModel();
    if (c.model) c.model(desc);
    if (c.palette) c.palette(*desc.materials);
    ExactBytes file(BuildModel(desc));
    ModelFile model;
    ModelMaterials materials;
    EXPECT_FALSE(Read(model, file.buffer, materials));
    EXPECT_NE(ReadPalette(materials, BuildPalette(*desc.materials)), bool(c.palette));
  }
}

TEST(ModelFile, RefusedMemoryAtEveryStepFailsCleanly) {
  const ModelDesc desc = gamewriters::SampleModel();
  // The palette alone too: there its last allocation is a parameter's block.
  for (const bool whole : {true, false}) {
    ExactBytes file(whole ? BuildModel(desc) : BuildPalette(*desc.materials));
    u64 failAt = 1;
    for (; failAt < 1000; ++failAt) {
      SCOPED_TRACE(failAt);
      testsupport::ScopedAllocationFailure refuse(failAt);
      {
        ModelFile model;
        ModelMaterials materials;
        ByteReader reader(file.buffer);
        const bool read = whole ? Read(model, file.buffer, materials) : ReadMaterials(materials, reader);
        if (!refuse.Failed()) {
          ASSERT_TRUE(read);
          EXPECT_EQ(BuildPalette(Describe(materials)), BuildPalette(*desc.materials));
          break;
        }
        EXPECT_FALSE(read);
      }
      EXPECT_EQ(refuse.Live(), 0) << "nothing leaks";
    }
    EXPECT_TRUE(failAt > 5 && failAt < 1000) << "several steps, then success";
  }
}

}  // namespace
