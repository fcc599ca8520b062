#pragma once

#include "core/types.h"
#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"

// The one place that turns vertex bytes into numbers: an input layout entry names a stream, an
// element type and an offset, and a cursor walks that element from vertex to vertex.

struct Vec2 {
  f32 x = 0, y = 0;
};
struct Vec3 {
  f32 x = 0, y = 0, z = 0;
};
struct Vec4 {
  f32 x = 0, y = 0, z = 0, w = 0;
};
struct Int4 {
  i32 v[4] = {};
};

// Bytes that one element of `type` takes in a stream; the packed and unknown types take none.
inline u32 ElementSize(u32 type) { return LayoutTypeSize(type); }

// The first entry with this usage and usage index, in list order; null for a missing layout.
const LayoutEntry* FindElement(const InputLayout* layout, u32 usage, u32 usageIndex);
// The entry's stream exists and one vertex of it holds the whole element.
bool ElementFits(const ModelMesh& mesh, const LayoutEntry& entry);
// The element of `usage` with usage index 0 when there is one that fits its stream, else null.
const LayoutEntry* FindFittingElement(const ModelMesh& mesh, const InputLayout* layout, u32 usage);
// The Position element when it fits and takes bytes, else null. Every vertex record is made from
// it, so its bytes in the file must vouch for the vertex count: a Position of no size would let a
// corrupt count ask for any amount of memory.
const LayoutEntry* FindPositionElement(const ModelMesh& mesh, const InputLayout* layout);

inline void StoreVec3(f32 (&to)[3], const Vec3& v) {
  to[0] = v.x;
  to[1] = v.y;
  to[2] = v.z;
}

// One element of one stream at the current vertex. `data` is null when the element can't be read;
// every read of a null `data` gives zeros.
struct StreamCursor {
  StreamCursor(const ModelMesh& mesh, const LayoutEntry& entry);

  void Step() {
    if (data) data += stride;
  }
  // Vertex numbers outside the stream give a null `data`; the cursor stays usable for other ones.
  void Seek(u32 vertex);

  const MeshStream* stream = nullptr;
  u32 type = 0;
  u32 offset = 0;
  u32 stride = 0;
  const u8* data = nullptr;
};

// The reads touch only the element's own bytes; components the type lacks are 0. Normalised
// types are scaled (bytes by 255, signed shorts by 32767, unsigned by 65535) except in ReadInt4,
// which gives the stored integers, and truncates floats toward zero.
Vec2 ReadVec2(const u8* bytes, u32 type);
Vec3 ReadVec3(const u8* bytes, u32 type);
Vec4 ReadVec4(const u8* bytes, u32 type);
Int4 ReadInt4(const u8* bytes, u32 type);

// One pass of one element over every record of a converter's vertex array, in vertex order:
// `apply(record, element bytes, type)`.
template <class Vertices, class Apply>
void ForEachVertex(Vertices& vertices, const ModelMesh& mesh, const LayoutEntry& entry, Apply apply) {
  StreamCursor cursor(mesh, entry);
  for (auto& vertex : vertices) {
    apply(vertex, cursor.data, cursor.type);
    cursor.Step();
  }
}
