#pragma once

#include "core/array.h"
#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"

struct ExportInfluence {
  i32 bone = -1;  // after Build, a bone of the model; -1 while the mesh has no skin
  f32 weight = 0;
};

// One vertex with everything the FBX side may want, whatever the game stored.
struct ExportVertex {
  f32 position[3] = {};
  f32 normal[3] = {};  // unit length, or zero where the mesh has no source for it
  f32 tangent[3] = {};
  f32 binormal[3] = {};
  f32 uv[8][2] = {};  // by usage index 0 to 7
  ExportInfluence influences[4];
  f32 color[4] = {};
};

// What Build decoded.
enum ExportMeshFlag : u32 {
  kHasPosition = 0x0001,
  kHasNormal = 0x0002,
  kHasTangentFrame = 0x0004,
  kHasUv0 = 0x0008,  // kHasUv0 << n for usage index n, up to 7
  kHasInfluences = 0x0800,
  kHasColor = 0x1000,
  kHasColorAlpha = 0x2000,
};
constexpr u32 HasUv(u32 channel) { return kHasUv0 << channel; }

// One mesh of a model decoded through one input layout: a record per stored vertex and the index
// list, both in their stored order; nothing is welded, split or re-indexed.
struct ExportMesh {
  TArray<ExportVertex> vertices;
  u32 vertexCount = 0;
  TArray<u32> indices;
  u32 indexCount = 0;
  u32 flags = 0;  // ExportMeshFlag bits
};

// Decodes `mesh` of `model`. `materialFlags` are the definition's flags, of which Skinned and
// RigidSkinned choose how the skin is read; influences come out as bones of the model. False
// (with an empty mesh) for index sizes other than 2 and 4, a layout without a Position that fits,
// or memory refused.
[[nodiscard]] bool Build(ExportMesh& exportMesh, const ModelFile& model, const ModelMesh& mesh,
                         const InputLayout* layout, u32 materialFlags);
