#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/types.h"

namespace testsupport {

// Plain descriptions of model files (DMOD) and material chunks or palettes (DMAT), turned into
// bytes by BuildModel and BuildPalette. Numbers are written little-endian. Every field that the
// reader checks can be overridden, so tests can make broken files; an override is written in place
// of what the description implies and nothing else changes.

struct ParameterDesc {
  u32 semanticHash = 0;
  u32 parameterClass = 0;
  u32 parameterType = 0;
  std::string data{};
  std::optional<u32> dataSize{};  // default data.size()
};

struct MaterialDesc {
  u32 materialKey = 0;
  u32 reserved = 0;
  u32 definitionHash = 0;
  std::vector<ParameterDesc> parameters{};
  std::optional<u32> parameterCount{};
};

struct PaletteDesc {
  std::vector<std::string> names{};    // each written with a NUL after it
  std::optional<std::string> nameTable{};  // raw table bytes instead of `names`
  std::vector<MaterialDesc> materials{};
  std::optional<u32> magic{};
  std::optional<u32> version{};
  std::optional<u32> nameTableSize{};  // default: the table's length
  std::optional<u32> materialCount{};
};

struct StreamDesc {
  u32 stride = 0;
  std::string data{};  // written as it stands; stride * the mesh's vertexCount bytes for a good file
};

struct MeshDesc {
  u32 firstDrawCall = 0;
  u32 drawCallCount = 0;
  u32 bonePaletteSize = 0;
  u32 reserved = 0;
  u32 bytesPerIndex = 2;
  u32 vertexCount = 0;
  std::vector<StreamDesc> streams{};
  std::string indexData{};
  std::optional<u32> streamCount{};
  std::optional<u32> indexCount{};  // default indexData.size() / bytesPerIndex (0 for 0 bytes per index)
};

struct DrawCallDesc {
  u32 reserved0 = 0;
  u32 firstBoneMapEntry = 0;
  u32 boneMapEntryCount = 0;
  u32 slotBase = 0;
  u32 reserved1 = 0;
  u32 firstVertex = 0;
  u32 vertexCount = 0;
  u32 reserved2 = 0;
  u32 reserved3 = 0;
};

struct BoneMapEntryDesc {
  u16 bone = 0;
  u16 slot = 0;
};

struct BoneDesc {
  f32 matrix[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};  // four rows of three
  u32 bounds[6] = {};
  u32 nameHash = 0;
};

struct ModelDesc {
  std::optional<PaletteDesc> materials{};  // the material chunk; none when empty
  f32 bounds[6] = {};
  std::vector<MeshDesc> meshes{};
  std::vector<DrawCallDesc> drawCalls{};
  std::vector<BoneMapEntryDesc> boneMap{};
  std::vector<BoneDesc> bones{};
  std::string trailing{};  // bytes after the last block
  std::optional<u32> magic{};
  std::optional<u32> version{};
  std::optional<u32> materialChunkSize{};  // default: the chunk's length
  std::optional<u32> meshCount{};
  std::optional<u32> drawCallCount{};
  std::optional<u32> boneMapCount{};
  std::optional<u32> boneCount{};
};

std::string BuildPalette(const PaletteDesc& palette);
std::string BuildModel(const ModelDesc& model);

// A texture reference parameter naming `textureName` by its HashNameWide.
ParameterDesc TextureParameter(u32 semanticHash, const std::string& textureName);
// `n` bytes of a pattern that depends on `seed`, for vertex and index data.
std::string PatternBytes(size_t n, u32 seed);
// A mesh of `vertexCount` vertices with one stream per entry of `strides`, and `indexCount` indices
// of `bytesPerIndex` bytes that stay below the vertex count.
MeshDesc PatternMesh(u32 vertexCount, const std::vector<u32>& strides, u32 bytesPerIndex, u32 indexCount);

// Small complete files with every kind of block and the edges a reader must keep: a name table ending
// in an empty name, parameters of 0, 4 (a texture), 16 and 17 bytes, a material without parameters,
// a mesh without streams or indices, a bone map naming one bone twice and one bone past the end.
PaletteDesc SamplePalette();
ModelDesc SampleModel();

}  // namespace testsupport
