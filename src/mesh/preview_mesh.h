#pragma once

#include "core/array.h"
#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"

// The preview's one vertex format: position, normal and one texture coordinate, 32 bytes.
struct PreviewVertex {
  f32 position[3] = {};
  f32 normal[3] = {};
  f32 uv[2] = {};
};
static_assert(sizeof(PreviewVertex) == 32);

struct PreviewMesh {
  TArray<PreviewVertex> vertices;
  u32 vertexCount = 0;
  TArray<u32> indices;
  u32 indexCount = 0;  // always the mesh's index count
};

// Decodes `mesh` for drawing. With a normal source the stored vertices and indices are kept;
// without one every corner of every triangle becomes a vertex of its own with its triangle's
// (unnormalised) face normal, and the indices become 0, 1, 2... False (with an empty mesh) for
// index sizes other than 2 and 4, a layout without a Position that fits, or memory refused.
[[nodiscard]] bool BuildPreview(PreviewMesh& preview, const ModelMesh& mesh, const InputLayout* layout);
