#include "game_writers/model_writer.h"

#include <bit>

#include "core/hash.h"

namespace gamewriters {

namespace {

constexpr u32 kModelMagic = 0x444F4D44;  // "DMOD"
constexpr u32 kModelVersion = 4;
constexpr u32 kPaletteMagic = 0x54414D44;  // "DMAT"
constexpr u32 kPaletteVersion = 1;
constexpr u32 kTextureClass = 4;
constexpr u32 kTextureType = 5;

void Put(std::string& out, u32 value, int bytes = 4) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>(i < 4 ? value >> (8 * i) : 0));
}
void Put(std::string& out, f32 value) { Put(out, std::bit_cast<u32>(value)); }
u32 Count(size_t n) { return static_cast<u32>(n); }

std::string Pattern(size_t n, u32 seed) {
  std::string out(n, '\0');
  u32 state = seed * 2654435761u + 1;
  for (char& c : out) c = static_cast<char>((state = state * 1664525u + 1013904223u) >> 24);
  return out;
}

}  // namespace

std::string BuildPalette(const PaletteDesc& palette) {
  std::string table = palette.nameTable.value_or("");
  if (!palette.nameTable) {
    for (const std::string& name : palette.names) table.append(name).push_back('\0');
  }
  std::string out;
  Put(out, palette.magic.value_or(kPaletteMagic));
  Put(out, palette.version.value_or(kPaletteVersion));
  Put(out, palette.nameTableSize.value_or(Count(table.size())));
  out += table;
  Put(out, palette.materialCount.value_or(Count(palette.materials.size())));
  for (const MaterialDesc& material : palette.materials) {
    for (u32 word : {material.materialKey, material.reserved, material.definitionHash,
                     material.parameterCount.value_or(Count(material.parameters.size()))}) {
      Put(out, word);
    }
    for (const ParameterDesc& p : material.parameters) {
      for (u32 word : {p.semanticHash, p.parameterClass, p.parameterType, p.dataSize.value_or(Count(p.data.size()))}) {
        Put(out, word);
      }
      out += p.data;
    }
  }
  return out;
}

std::string BuildModel(const ModelDesc& model) {
  const std::string chunk = model.materials ? BuildPalette(*model.materials) : "";
  std::string out;
  Put(out, model.magic.value_or(kModelMagic));
  Put(out, model.version.value_or(kModelVersion));
  Put(out, model.materialChunkSize.value_or(Count(chunk.size())));
  out += chunk;
  for (f32 bound : model.bounds) Put(out, bound);
  Put(out, model.meshCount.value_or(Count(model.meshes.size())));
  for (const MeshDesc& m : model.meshes) {
    const u32 indexCount = m.bytesPerIndex ? Count(m.indexData.size() / m.bytesPerIndex) : 0;
    for (u32 word : {m.firstDrawCall, m.drawCallCount, m.bonePaletteSize, m.reserved,
                     m.streamCount.value_or(Count(m.streams.size())), m.bytesPerIndex,
                     m.indexCount.value_or(indexCount), m.vertexCount}) {
      Put(out, word);
    }
    for (const StreamDesc& stream : m.streams) {
      Put(out, stream.stride);
      out += stream.data;
    }
    out += m.indexData;
  }
  Put(out, model.drawCallCount.value_or(Count(model.drawCalls.size())));
  for (const DrawCallDesc& c : model.drawCalls) {
    for (u32 word : {c.reserved0, c.firstBoneMapEntry, c.boneMapEntryCount, c.slotBase, c.reserved1, c.firstVertex,
                     c.vertexCount, c.reserved2, c.reserved3}) {
      Put(out, word);
    }
  }
  Put(out, model.boneMapCount.value_or(Count(model.boneMap.size())));
  for (const BoneMapEntryDesc& entry : model.boneMap) {
    Put(out, entry.bone, 2);
    Put(out, entry.slot, 2);
  }
  // All matrices, then all bounds, then all name hashes.
  Put(out, model.boneCount.value_or(Count(model.bones.size())));
  for (const BoneDesc& bone : model.bones) {
    for (const auto& row : bone.matrix) {
      for (f32 value : row) Put(out, value);
    }
  }
  for (const BoneDesc& bone : model.bones) {
    for (u32 word : bone.bounds) Put(out, word);
  }
  for (const BoneDesc& bone : model.bones) Put(out, bone.nameHash);
  return out + model.trailing;
}

ParameterDesc TextureParameter(u32 semanticHash, const std::string& textureName) {
  ParameterDesc parameter{.semanticHash = semanticHash, .parameterClass = kTextureClass, .parameterType = kTextureType};
  Put(parameter.data, HashNameWide(textureName.c_str()));
  return parameter;
}

MeshDesc PatternMesh(u32 vertexCount, const std::vector<u32>& strides, u32 bytesPerIndex, u32 indexCount) {
  MeshDesc mesh{.bytesPerIndex = bytesPerIndex, .vertexCount = vertexCount};
  for (u32 stride : strides) mesh.streams.push_back({stride, Pattern(size_t(stride) * vertexCount, stride)});
  for (u32 i = 0; i < indexCount; ++i) Put(mesh.indexData, vertexCount ? i * 7 % vertexCount : 0, int(bytesPerIndex));
  return mesh;
}

PaletteDesc SamplePalette() {
  PaletteDesc palette{.names = {"textures\\hero_diffuse.dds", "textures\\hero_normal.dds", ""}};
  MaterialDesc skin{.materialKey = 0x1001, .definitionHash = HashExact("skinned_opaque")};
  skin.parameters = {
      TextureParameter(HashKey("baseDiffuse"), palette.names[0]),
      TextureParameter(HashKey("baseNormal"), palette.names[1]),
      {.semanticHash = HashKey("tint"), .parameterClass = 1, .parameterType = 3, .data = Pattern(16, 1)},
      {.semanticHash = HashKey("curve"), .parameterClass = 1, .parameterType = 3, .data = Pattern(17, 2)},
      {.semanticHash = HashKey("flag"), .parameterType = 1}};
  palette.materials = {skin, {.materialKey = 0x1002, .definitionHash = HashExact("static_opaque")}};
  return palette;
}

ModelDesc SampleModel() {
  ModelDesc model{.materials = SamplePalette(), .bounds = {-1.5f, 0.0f, -0.25f, 1.5f, 2.0f, 0.25f}};
  model.meshes = {PatternMesh(5, {32, 12}, 2, 9), {.firstDrawCall = 2, .bytesPerIndex = 4, .vertexCount = 3}};
  model.meshes[0].drawCallCount = 2;
  model.meshes[0].bonePaletteSize = 4;
  model.meshes[0].reserved = 7;
  model.drawCalls = {
      {.reserved0 = 1, .boneMapEntryCount = 2, .vertexCount = 3, .reserved3 = 9},
      {.firstBoneMapEntry = 2, .boneMapEntryCount = 2, .slotBase = 2, .firstVertex = 3, .vertexCount = 2}};
  model.boneMap = {{0, 0}, {2, 1}, {2, 0}, {40, 1}};
  for (const char* name : {"root", "spine", "head"}) {
    BoneDesc bone{.nameHash = HashNameWide(name)};
    const u32 n = Count(model.bones.size());
    for (u32 i = 0; i < 12; ++i) bone.matrix[i / 3][i % 3] = f32(n) + 0.5f * f32(i);
    for (u32 w = 0; w < 6; ++w) bone.bounds[w] = 0x01010101u * (n + 1) + w;
    model.bones.push_back(bone);
  }
  return model;
}

}  // namespace gamewriters
