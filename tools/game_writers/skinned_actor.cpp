#include "game_writers/skinned_actor.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/hash.h"
#include "game_writers/model_writer.h"
#include "game_writers/xml_writer.h"

namespace gamewriters {

namespace {

void PutBytes(std::string& out, const void* data, size_t size) { out.append(static_cast<const char*>(data), size); }

std::string Catalogue(bool secondUv, bool semiTransparent) {
  CatalogueXml c;
  InputLayoutXml layout{"Skinned",
                        {{"Float3", "Position", "0", "0"},
                         {"Float3", "Normal", "0", "0"},
                         {"Float2", "Texcoord", "0", "0"},
                         {"Ubyte4", "BlendIndices", "0", "0"},
                         {"Ubyte4n", "BlendWeight", "0", "0"}}};
  if (secondUv) layout.entries.push_back({"Float2", "Texcoord", "0", "2"});
  c.layouts.push_back(layout);
  std::vector<std::string> flags = {"Skinned"};
  if (semiTransparent) flags.push_back("SemiTransparent");
  c.definitions.push_back({"SkinnedMaterial", {}, std::vector<DrawStyleXml>{{"normal", "Skinned"}}, flags});
  return BuildCatalogue(c);
}

// A fixed pseudo-random value in [0, 1) for `key`.
float Noise(u32 key) {
  key ^= key >> 16;
  key *= 0x7FEB352Du;
  key ^= key >> 15;
  key *= 0x846CA68Bu;
  key ^= key >> 16;
  return float(key >> 8) / float(1 << 24);
}

// One vertex of a varied mesh in the stream's form (position, stored normal, uv, four slots and
// four weight bytes that sum to 255).
struct VariedVertex {
  float position[3];
  float normal[3];
  float uv[2];
  u8 slots[4];
  u8 weights[4];
};

VariedVertex MakeVariedVertex(const SkinnedActorDesc& desc, u32 rows, u32 mesh, u32 vertex) {
  const u32 key = (mesh << 24) ^ vertex * 4;
  const float column = float(vertex % desc.gridSize), row = float(vertex / desc.gridSize);
  const float jitter[3] = {Noise(key) - 0.5f, Noise(key + 1) - 0.5f, Noise(key + 2) - 0.5f};
  VariedVertex out{};
  out.position[0] = (column + 0.4f * jitter[0]) * 0.01f;
  out.position[1] = float(mesh) + 0.2f * std::sin(column * 0.05f) * std::cos(row * 0.07f) + 0.002f * jitter[1];
  out.position[2] = (row + 0.4f * jitter[2]) * 0.01f;
  float normal[3] = {0.3f * std::cos(column * 0.05f) + 0.1f * jitter[0], 1.0f,
                     0.3f * std::sin(row * 0.07f) + 0.1f * jitter[2]};
  const float length = std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
  for (u32 k = 0; k < 3; ++k) out.normal[k] = 0.5f + normal[k] / length / 2;
  const float columnSpan = float(desc.gridSize > 1 ? desc.gridSize - 1 : 1), rowSpan = float(rows > 1 ? rows - 1 : 1);
  out.uv[0] = (column + 0.3f * jitter[1]) / columnSpan;
  out.uv[1] = (row + 0.3f * jitter[0]) / rowSpan;
  // Bones follow the region of the grid; the weights of 1 to 4 of them add up to 255.
  const u32 influences = 1 + u32(Noise(key + 3) * 4);
  const u32 region = (vertex % desc.gridSize) / 16 + (vertex / desc.gridSize) / 16 * 7;
  u32 left = 255;
  for (u32 k = 0; k < influences; ++k) {
    out.slots[k] = u8((region + k * 5) % desc.boneCount);
    const u32 share =
        k + 1 == influences ? left : 1 + u32(Noise(key + 4 + k) * float(left - (influences - k - 1)) * 0.6f);
    out.weights[k] = u8(share);
    left -= share;
  }
  return out;
}

}  // namespace

GridVertex SkinnedActorVertex(const SkinnedActorDesc& desc, u32 mesh, u32 vertex) {
  const float column = float(vertex % desc.gridSize), row = float(vertex / desc.gridSize);
  const float span = float(desc.gridSize > 1 ? desc.gridSize - 1 : 1);
  const bool even = vertex % 2 == 0;
  return {{column * 0.1f, float(mesh), row * 0.1f},
          {column / span, row / span},
          {vertex % desc.boneCount, (vertex + 1) % desc.boneCount},
          {even ? 1.0f : 128 / 255.0f, even ? 0.0f : 127 / 255.0f}};
}

SkinnedActor BuildSkinnedActor(const SkinnedActorDesc& desc) {
  SkinnedActor actor;
  actor.catalogue = Catalogue(desc.secondUv, desc.semiTransparent);
  const u32 rows = desc.gridRows ? desc.gridRows : desc.gridSize;
  const u32 vertexCount = desc.gridSize * rows;
  const u32 bytesPerIndex = vertexCount > 0x10000 ? 4 : 2;
  ModelDesc model;
  PaletteDesc palette;
  for (u32 m = 0; m < desc.meshCount; ++m) {
    palette.materials.push_back({.materialKey = m, .definitionHash = HashExact("SkinnedMaterial")});
    static const std::vector<std::pair<std::string, std::string>> kNoTextures;
    for (const auto& [parameter, texture] : m < desc.textures.size() ? desc.textures[m] : kNoTextures) {
      palette.materials.back().parameters.push_back(TextureParameter(HashKey(parameter.c_str()), texture));
      if (std::find(palette.names.begin(), palette.names.end(), texture) == palette.names.end()) {
        palette.names.push_back(texture);
      }
    }
    MeshDesc mesh{.firstDrawCall = m,
                  .drawCallCount = 1,
                  .bonePaletteSize = desc.boneCount,
                  .bytesPerIndex = bytesPerIndex,
                  .vertexCount = vertexCount};
    StreamDesc stream{.stride = desc.secondUv ? 48u : 40u};
    for (u32 v = 0; v < vertexCount && desc.varied; ++v) {
      const VariedVertex g = MakeVariedVertex(desc, rows, m, v);
      PutBytes(stream.data, g.position, 12);
      PutBytes(stream.data, g.normal, 12);
      PutBytes(stream.data, g.uv, 8);
      PutBytes(stream.data, g.slots, 4);
      PutBytes(stream.data, g.weights, 4);
      if (desc.secondUv) PutBytes(stream.data, g.uv, 8);
    }
    for (u32 v = 0; v < vertexCount && !desc.varied; ++v) {
      const GridVertex g = SkinnedActorVertex(desc, m, v);
      const float normal[3] = {0.5f, 1, 0.5f};  // stored as 0.5 + n / 2: the normal (0, 1, 0)
      const u8 slots[4] = {u8(g.bones[0]), u8(g.bones[1]), 0, 0};
      const u8 weights[4] = {u8(std::lround(g.weights[0] * 255)), u8(std::lround(g.weights[1] * 255)), 0, 0};
      const float second[2] = {0.25f, 1.5f};
      PutBytes(stream.data, g.position, 12);
      PutBytes(stream.data, normal, 12);
      PutBytes(stream.data, g.uv, 8);
      PutBytes(stream.data, slots, 4);
      PutBytes(stream.data, weights, 4);
      if (desc.secondUv) PutBytes(stream.data, second, 8);
    }
    mesh.streams.push_back(stream);
    for (u32 row = 0; row + 1 < rows; ++row) {
      for (u32 column = 0; column + 1 < desc.gridSize; ++column) {
        const u32 a = row * desc.gridSize + column, b = a + 1, c = a + desc.gridSize, d = c + 1;
        for (u32 index : {a, b, c, c, b, d}) PutBytes(mesh.indexData, &index, bytesPerIndex);
      }
    }
    model.meshes.push_back(mesh);
    model.drawCalls.push_back({.boneMapEntryCount = desc.boneCount, .vertexCount = vertexCount});
  }
  model.materials = palette;
  std::copy(desc.bounds.begin(), desc.bounds.end(), model.bounds);
  for (u32 b = 0; b < desc.boneCount; ++b) {
    const std::string name = "bone_" + std::to_string(b);
    model.boneMap.push_back({u16(b), u16(b)});
    model.bones.push_back({.nameHash = HashNameWide(name.c_str())});
    // Rotations about every axis, far from unit length at times: the export normalises them.
    const float f = float(b);
    actor.rig.bones.push_back(
        {.name = name,
         .parent = b == 0 ? -1 : i32(desc.chain ? b - 1 : (b - 1) / 2),
         .translation = {0.1f * f, 0.5f, -0.05f * f, 1},
         .rotation = {std::sin(1.3f * f), std::cos(0.7f * f), 0.5f * std::sin(2.1f * f), 1.5f + std::cos(f)}});
  }
  actor.model = BuildModel(model);
  return actor;
}

RigNetworkLayout NetworkWithSets(std::vector<RigNetworkLayout::Rig> rigs,
                                 const std::vector<std::pair<std::string, u32>>& sets) {
  RigNetworkLayout layout;
  layout.rigs = std::move(rigs);
  if (sets.empty()) return layout;
  // One node whose own lookup gives set k the rig id in attribute k.
  NetworkNodeLayout node{.typeId = 40, .nameIndex = 0, .lookups = {{.typeId = 40, .setStride = 1, .slot = 0}}};
  std::vector<std::string> names;
  for (const auto& [name, id] : sets) {
    names.push_back(name);
    node.attributeWords.push_back(id);
  }
  layout.animSets = names;
  layout.network = NetworkLayout{.nodes = {node}, .nodeNames = {"root"}};
  return layout;
}

}  // namespace gamewriters
