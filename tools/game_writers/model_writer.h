#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/types.h"

namespace gamewriters {

// Plain descriptions of model files (DMOD) and of material chunks, which stand alone as palettes
// (DMAT), turned into little-endian bytes by BuildModel and BuildPalette. Each optional field
// overrides what is written for a checked number, so tests can make broken files; stream and index
// data are written as they stand, whatever the counts say.

struct ParameterDesc {
  u32 semanticHash = 0, parameterClass = 0, parameterType = 0;
  std::string data{};
  std::optional<u32> dataSize{};  // default data.size()
};

struct MaterialDesc {
  u32 materialKey = 0, reserved = 0, definitionHash = 0;
  std::vector<ParameterDesc> parameters{};
  std::optional<u32> parameterCount{};
};

struct PaletteDesc {
  std::vector<std::string> names{};        // each written with a NUL after it
  std::optional<std::string> nameTable{};  // raw table bytes instead of `names`
  std::vector<MaterialDesc> materials{};
  std::optional<u32> magic{}, version{}, nameTableSize{}, materialCount{};
};

struct StreamDesc {
  u32 stride = 0;
  std::string data{};  // stride * vertexCount bytes in a good file
};

struct MeshDesc {
  u32 firstDrawCall = 0, drawCallCount = 0, bonePaletteSize = 0, reserved = 0;
  u32 bytesPerIndex = 2, vertexCount = 0;
  std::vector<StreamDesc> streams{};
  std::string indexData{};
  std::optional<u32> streamCount{};
  std::optional<u32> indexCount{};  // default indexData.size() / bytesPerIndex
};

struct DrawCallDesc {
  u32 reserved0 = 0, firstBoneMapEntry = 0, boneMapEntryCount = 0, slotBase = 0, reserved1 = 0;
  u32 firstVertex = 0, vertexCount = 0, reserved2 = 0, reserved3 = 0;
};

struct BoneMapEntryDesc {
  u16 bone = 0, slot = 0;
};

struct BoneDesc {
  f32 matrix[4][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};  // rows of the bind matrix
  u32 bounds[6] = {};
  u32 nameHash = 0;
};

struct ModelDesc {
  std::optional<PaletteDesc> materials{};  // the material chunk, if any
  f32 bounds[6] = {};
  std::vector<MeshDesc> meshes{};
  std::vector<DrawCallDesc> drawCalls{};
  std::vector<BoneMapEntryDesc> boneMap{};
  std::vector<BoneDesc> bones{};
  std::string trailing{};  // bytes after the last block
  std::optional<u32> magic{}, version{}, materialChunkSize{};
  std::optional<u32> meshCount{}, drawCallCount{}, boneMapCount{}, boneCount{};
};

std::string BuildPalette(const PaletteDesc& palette);
std::string BuildModel(const ModelDesc& model);

// A texture reference parameter naming `textureName` by its HashNameWide.
ParameterDesc TextureParameter(u32 semanticHash, const std::string& textureName);
// `vertexCount` vertices in one stream per stride, of patterned bytes, and `indexCount` indices
// below the vertex count.
MeshDesc PatternMesh(u32 vertexCount, const std::vector<u32>& strides, u32 bytesPerIndex, u32 indexCount);

// Small complete files with every kind of block and the edges a reader must keep: a name table
// ending in an empty name, parameters of 0, 4 (a texture), 16 and 17 bytes, a material without
// parameters, a mesh without streams or indices, a bone map naming one bone twice and one past the
// last bone.
PaletteDesc SamplePalette();
ModelDesc SampleModel();

}  // namespace gamewriters
