#pragma once

#include "core/types.h"
#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"
#include "mesh/element_decode.h"

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
  // The stream holds the element for each of vertices first to first + count - 1 (count > 0).
  bool Holds(u32 first, u32 count) const {
    return stream && (u64(first) + count - 1) * stride + offset + ElementSize(type) <= stream->data.Size();
  }

  const MeshStream* stream = nullptr;
  u32 type = 0;
  u32 offset = 0;
  u32 stride = 0;
  const u8* data = nullptr;
};

// The reads touch only the element's own bytes; components the type lacks are 0. Normalised
// types are scaled (bytes by 255, signed shorts by 32767, unsigned by 65535) except in ReadInt4,
// which gives the stored integers, and truncates floats toward zero. A null `bytes` gives zeros.
Vec2 ReadVec2(const u8* bytes, u32 type);
Vec3 ReadVec3(const u8* bytes, u32 type);
Vec4 ReadVec4(const u8* bytes, u32 type);
Int4 ReadInt4(const u8* bytes, u32 type);

// The same reads with the type fixed at compile time, for the loops of ForEachVertex; `bytes`
// is never null here.
template <u32 kType>
Vec2 ReadVec2(const u8* bytes, ElementTypeTag<kType>) {
  const ElementValues values = DecodeElement<kType, true>(bytes);
  return {values.v[0], values.v[1]};
}
template <u32 kType>
Vec3 ReadVec3(const u8* bytes, ElementTypeTag<kType>) {
  const ElementValues values = DecodeElement<kType, true>(bytes);
  return {values.v[0], values.v[1], values.v[2]};
}
template <u32 kType>
Vec4 ReadVec4(const u8* bytes, ElementTypeTag<kType>) {
  const ElementValues values = DecodeElement<kType, true>(bytes);
  return {values.v[0], values.v[1], values.v[2], values.v[3]};
}
template <u32 kType>
Int4 ReadInt4(const u8* bytes, ElementTypeTag<kType>) {
  const ElementValues values = DecodeElement<kType, false>(bytes);
  Int4 out;
  // Floats truncate toward zero; integers come back as stored, sign- or zero-extended. Every
  // stored integer type fits a float exactly, so going through one loses nothing.
  for (u32 i = 0; i < values.count; ++i) {
    const f32 v = values.v[i];
    if (IsFloatElementType(kType) && v != v) {
      out.v[i] = 0;  // a NaN names no bone
    } else if (v >= 2147483648.0f) {
      out.v[i] = INT32_MAX;  // beyond 32 bits: saturate rather than leave it undefined
    } else if (v < -2147483648.0f) {
      out.v[i] = INT32_MIN;
    } else {
      out.v[i] = i32(v);
    }
  }
  return out;
}

// One pass of one element over vertices first to first + count - 1, in vertex order:
// `apply(i, element bytes, type)` for the i-th of them, where the type is an ElementTypeTag wherever
// it can be, so `apply` should take it as `auto`. The stream is checked once for the whole range; a
// range it doesn't hold is read vertex by vertex, and the vertices past its end read as zeros.
template <class Apply>
void ForEachVertexIndexIn(u32 first, u32 count, const ModelMesh& mesh, const LayoutEntry& entry, Apply&& apply) {
  if (count == 0) return;
  StreamCursor cursor(mesh, entry);
  if (cursor.data && cursor.Holds(first, count)) {
    const u8* bytes = cursor.stream->data.Data() + u64(first) * cursor.stride + cursor.offset;
    const u32 stride = cursor.stride;
    const bool typed = WithElementType(cursor.type, [&](auto type) {
      for (u32 i = 0; i < count; ++i, bytes += stride) apply(i, bytes, type);
    });
    if (typed) return;
  }
  for (u32 i = 0; i < count; ++i) {
    cursor.Seek(first + i);
    apply(i, cursor.data, cursor.type);
  }
}

// The same pass over a converter's vertex records, whose first is that of vertex `first`:
// `apply(record, element bytes, type)`.
template <class Vertex, class Apply>
void ForEachVertexIn(Vertex* records, u32 first, u32 count, const ModelMesh& mesh, const LayoutEntry& entry,
                     Apply&& apply) {
  ForEachVertexIndexIn(first, count, mesh, entry,
                       [records, &apply](u32 i, const u8* bytes, auto type) { apply(records[i], bytes, type); });
}

// ForEachVertexIn over every record of the array.
template <class Vertices, class Apply>
void ForEachVertex(Vertices& vertices, const ModelMesh& mesh, const LayoutEntry& entry, Apply&& apply) {
  ForEachVertexIn(vertices.Data(), 0, vertices.Count(), mesh, entry, apply);
}
