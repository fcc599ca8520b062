#include "support/model_writer.h"

#include <bit>

#include "core/hash.h"

namespace testsupport {

namespace {

constexpr u32 kModelMagic = 0x444F4D44;  // "DMOD"
constexpr u32 kModelVersion = 4;
constexpr u32 kPaletteMagic = 0x54414D44;  // "DMAT"
constexpr u32 kPaletteVersion = 1;

void PutU32(std::string& out, u32 value) {
  for (int shift = 0; shift < 32; shift += 8) out.push_back(static_cast<char>(value >> shift));
}

void PutU16(std::string& out, u16 value) {
  out.push_back(static_cast<char>(value));
  out.push_back(static_cast<char>(value >> 8));
}

void PutF32(std::string& out, f32 value) { PutU32(out, std::bit_cast<u32>(value)); }

u32 Size(size_t n) { return static_cast<u32>(n); }

void PutMesh(std::string& out, const MeshDesc& mesh) {
  PutU32(out, mesh.firstDrawCall);
  PutU32(out, mesh.drawCallCount);
  PutU32(out, mesh.bonePaletteSize);
  PutU32(out, mesh.reserved);
  PutU32(out, mesh.streamCount.value_or(Size(mesh.streams.size())));
  PutU32(out, mesh.bytesPerIndex);
  const u32 indexCount = mesh.bytesPerIndex ? Size(mesh.indexData.size() / mesh.bytesPerIndex) : 0;
  PutU32(out, mesh.indexCount.value_or(indexCount));
  PutU32(out, mesh.vertexCount);
  for (const StreamDesc& stream : mesh.streams) {
    PutU32(out, stream.stride);
    out += stream.data;
  }
  out += mesh.indexData;
}

}  // namespace

std::string BuildPalette(const PaletteDesc& palette) {
  std::string table;
  if (palette.nameTable) {
    table = *palette.nameTable;
  } else {
    for (const std::string& name : palette.names) table.append(name).push_back('\0');
  }
  std::string out;
  PutU32(out, palette.magic.value_or(kPaletteMagic));
  PutU32(out, palette.version.value_or(kPaletteVersion));
  PutU32(out, palette.nameTableSize.value_or(Size(table.size())));
  out += table;
  PutU32(out, palette.materialCount.value_or(Size(palette.materials.size())));
  for (const MaterialDesc& material : palette.materials) {
    PutU32(out, material.materialKey);
    PutU32(out, material.reserved);
    PutU32(out, material.definitionHash);
    PutU32(out, material.parameterCount.value_or(Size(material.parameters.size())));
    for (const ParameterDesc& parameter : material.parameters) {
      PutU32(out, parameter.semanticHash);
      PutU32(out, parameter.parameterClass);
      PutU32(out, parameter.parameterType);
      PutU32(out, parameter.dataSize.value_or(Size(parameter.data.size())));
      out += parameter.data;
    }
  }
  return out;
}

std::string BuildModel(const ModelDesc& model) {
  const std::string chunk = model.materials ? BuildPalette(*model.materials) : std::string();
  std::string out;
  PutU32(out, model.magic.value_or(kModelMagic));
  PutU32(out, model.version.value_or(kModelVersion));
  PutU32(out, model.materialChunkSize.value_or(Size(chunk.size())));
  out += chunk;
  for (f32 bound : model.bounds) PutF32(out, bound);
  PutU32(out, model.meshCount.value_or(Size(model.meshes.size())));
  for (const MeshDesc& mesh : model.meshes) PutMesh(out, mesh);

  PutU32(out, model.drawCallCount.value_or(Size(model.drawCalls.size())));
  for (const DrawCallDesc& call : model.drawCalls) {
    for (u32 field : {call.reserved0, call.firstBoneMapEntry, call.boneMapEntryCount, call.slotBase, call.reserved1,
                      call.firstVertex, call.vertexCount, call.reserved2, call.reserved3}) {
      PutU32(out, field);
    }
  }
  PutU32(out, model.boneMapCount.value_or(Size(model.boneMap.size())));
  for (const BoneMapEntryDesc& entry : model.boneMap) {
    PutU16(out, entry.bone);
    PutU16(out, entry.slot);
  }

  // All matrices, then all bounds, then all name hashes.
  PutU32(out, model.boneCount.value_or(Size(model.bones.size())));
  for (const BoneDesc& bone : model.bones) {
    for (const auto& row : bone.matrix) {
      for (f32 value : row) PutF32(out, value);
    }
  }
  for (const BoneDesc& bone : model.bones) {
    for (u32 word : bone.bounds) PutU32(out, word);
  }
  for (const BoneDesc& bone : model.bones) PutU32(out, bone.nameHash);
  return out + model.trailing;
}

ParameterDesc TextureParameter(u32 semanticHash, const std::string& textureName) {
  ParameterDesc parameter{.semanticHash = semanticHash, .parameterClass = 4, .parameterType = 5};
  PutU32(parameter.data, HashNameWide(textureName.c_str()));
  return parameter;
}

std::string PatternBytes(size_t n, u32 seed) {
  std::string out(n, '\0');
  u32 state = seed * 2654435761u + 1;
  for (char& c : out) {
    state = state * 1664525u + 1013904223u;
    c = static_cast<char>(state >> 24);
  }
  return out;
}

MeshDesc PatternMesh(u32 vertexCount, const std::vector<u32>& strides, u32 bytesPerIndex, u32 indexCount) {
  MeshDesc mesh{.bytesPerIndex = bytesPerIndex, .vertexCount = vertexCount};
  for (u32 stride : strides) {
    mesh.streams.push_back({.stride = stride, .data = PatternBytes(size_t(stride) * vertexCount, stride)});
  }
  for (u32 i = 0; i < indexCount; ++i) {
    const u32 index = vertexCount ? (i * 7) % vertexCount : 0;
    for (u32 b = 0; b < bytesPerIndex; ++b) mesh.indexData.push_back(static_cast<char>(b < 4 ? index >> (8 * b) : 0));
  }
  return mesh;
}

PaletteDesc SamplePalette() {
  PaletteDesc palette;
  palette.names = {"textures\\hero_diffuse.dds", "textures\\hero_normal.dds", ""};
  MaterialDesc skin{.materialKey = 0x1001, .reserved = 0xDEADBEEF, .definitionHash = HashExact("skinned_opaque")};
  skin.parameters.push_back(TextureParameter(HashKey("baseDiffuse"), palette.names[0]));
  skin.parameters.push_back(TextureParameter(HashKey("baseNormal"), palette.names[1]));
  skin.parameters.push_back({.semanticHash = HashKey("tint"), .parameterClass = 1, .parameterType = 3,
                             .data = PatternBytes(16, 1)});
  skin.parameters.push_back({.semanticHash = HashKey("curve"), .parameterClass = 1, .parameterType = 3,
                             .data = PatternBytes(17, 2)});
  skin.parameters.push_back({.semanticHash = HashKey("flag"), .parameterClass = 0, .parameterType = 1});
  palette.materials.push_back(skin);
  palette.materials.push_back({.materialKey = 0x1002, .definitionHash = HashExact("static_opaque")});
  return palette;
}

ModelDesc SampleModel() {
  ModelDesc model{.materials = SamplePalette(), .bounds = {-1.5f, 0.0f, -0.25f, 1.5f, 2.0f, 0.25f}};
  model.meshes.push_back(PatternMesh(5, {32, 12}, 2, 9));
  model.meshes.back().drawCallCount = 2;
  model.meshes.back().bonePaletteSize = 4;
  model.meshes.back().reserved = 7;
  model.meshes.push_back({.firstDrawCall = 2, .bytesPerIndex = 4, .vertexCount = 3});
  model.drawCalls = {{.reserved0 = 1, .firstBoneMapEntry = 0, .boneMapEntryCount = 2, .slotBase = 0, .firstVertex = 0,
                      .vertexCount = 3, .reserved3 = 9},
                     {.firstBoneMapEntry = 2, .boneMapEntryCount = 2, .slotBase = 2, .firstVertex = 3, .vertexCount = 2}};
  model.boneMap = {{.bone = 0, .slot = 0}, {.bone = 2, .slot = 1}, {.bone = 2, .slot = 0}, {.bone = 40, .slot = 1}};
  for (u32 i = 0; i < 3; ++i) {
    BoneDesc bone;
    for (u32 r = 0; r < 4; ++r) {
      for (u32 c = 0; c < 3; ++c) bone.matrix[r][c] = f32(i) + 0.5f * f32(r * 3 + c);
    }
    for (u32 w = 0; w < 6; ++w) bone.bounds[w] = 0x01010101u * (i + 1) + w;
    bone.nameHash = HashNameWide(i == 0 ? "root" : i == 1 ? "spine" : "head");
    model.bones.push_back(bone);
  }
  return model;
}

}  // namespace testsupport
