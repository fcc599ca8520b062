#pragma once

#include "core/array.h"
#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"
#include "mesh/vertex_stream.h"

struct ExportInfluence {
  i32 bone = -1;
  f32 weight = 0;
};

// The bones one vertex follows, as stored: after Build, bones of the model.
struct ExportInfluences {
  ExportInfluence k[4];
};

constexpr u32 kExportUvChannels = 8;

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

// One mesh of a model decoded through one input layout, in its stored order; nothing is welded,
// split or re-indexed. Each element the flags name has an entry per vertex, and only those take
// memory: an element the mesh lacks is an empty array.
struct ExportMesh {
  TArray<Vec3> positions;
  TArray<Vec3> normals;  // unit length, or derived from the tangent frame without normalising
  TArray<Vec3> tangents;
  TArray<Vec3> binormals;
  TArray<Vec2> uvs[kExportUvChannels];  // by usage index
  TArray<Vec4> colors;                  // alpha 0 where the type has none
  TArray<ExportInfluences> influences;
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
