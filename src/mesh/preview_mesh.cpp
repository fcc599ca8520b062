#include "mesh/preview_mesh.h"

#include "mesh/mesh_indices.h"
#include "mesh/unit_vector.h"

namespace {

void Clear(PreviewMesh& out) {
  out.vertices.Release();
  out.indices.Release();
  out.vertexCount = out.indexCount = 0;
}

Vec3 Load(const f32 (&from)[3]) { return {from[0], from[1], from[2]}; }

// The stored vertices, with stored or derived normals.
void BuildIndexed(PreviewMesh& out, const ModelMesh& mesh, const InputLayout* layout, const LayoutEntry& position) {
  ForEachVertex(out.vertices, mesh, position,
                [](PreviewVertex& v, const u8* b, auto t) { StoreVec3(v.position, ReadVec3(b, t)); });
  if (const LayoutEntry* normal = FindFittingElement(mesh, layout, kNormal)) {
    ForEachVertex(out.vertices, mesh, *normal, [](PreviewVertex& v, const u8* b, auto t) {
      Vec3 n = UnpackUnit(ReadVec3(b, t));
      NormalizeVector(n);
      StoreVec3(v.normal, n);
    });
  } else {
    // The binormal goes through the normal field on its way to the cross product.
    ForEachVertex(out.vertices, mesh, *FindFittingElement(mesh, layout, kBinormal),
                  [](PreviewVertex& v, const u8* b, auto t) {
                    Vec3 n = UnpackUnit(ReadVec3(b, t));
                    NormalizeByLength(n);
                    StoreVec3(v.normal, n);
                  });
    ForEachVertex(out.vertices, mesh, *FindFittingElement(mesh, layout, kTangent),
                  [](PreviewVertex& v, const u8* b, auto t) {
                    Vec3 tangent = UnpackUnit(ReadVec3(b, t));
                    NormalizeByLength(tangent);
                    StoreVec3(v.normal, DeriveNormal(tangent, Load(v.normal), ReadVec4(b, t).w));
                  });
  }
  if (const LayoutEntry* uv = FindFittingElement(mesh, layout, kTexcoord)) {
    ForEachVertex(out.vertices, mesh, *uv, [](PreviewVertex& v, const u8* b, auto t) {
      const Vec2 read = ReadVec2(b, t);
      v.uv[0] = read.x;
      v.uv[1] = read.y;
    });
  }
}

// A record for every index, read through the stored index list. An index past the mesh's
// vertices leaves its record at zero rather than read outside the stream.
template <class Apply>
void ForEachCorner(PreviewMesh& out, const ModelMesh& mesh, const LayoutEntry& entry, Apply apply) {
  StreamCursor cursor(mesh, entry);
  for (u32 i = 0; i < out.vertexCount; ++i) {
    const u32 vertex = out.indices[i];
    if (vertex >= mesh.vertexCount) continue;
    cursor.Seek(vertex);
    apply(out.vertices[i], cursor.data, cursor.type);
  }
}

// Face normals on an unindexed copy, for meshes that carry no normal data. Only whole triangles
// get a normal; a last one or two indices keep a zero one.
void BuildFlat(PreviewMesh& out, const ModelMesh& mesh, const InputLayout* layout, const LayoutEntry& position) {
  ForEachCorner(out, mesh, position,
                [](PreviewVertex& v, const u8* b, auto t) { StoreVec3(v.position, ReadVec3(b, t)); });
  for (u32 i = 0; i + 2 < out.vertexCount; i += 3) {
    const Vec3 a = Load(out.vertices[i].position);
    const Vec3 b = Load(out.vertices[i + 1].position);
    const Vec3 c = Load(out.vertices[i + 2].position);
    const Vec3 e1{b.x - a.x, b.y - a.y, b.z - a.z};
    const Vec3 e2{c.x - a.x, c.y - a.y, c.z - a.z};
    const Vec3 normal{e1.y * e2.z - e1.z * e2.y, e1.z * e2.x - e1.x * e2.z, e1.x * e2.y - e1.y * e2.x};
    for (u32 k = 0; k < 3; ++k) StoreVec3(out.vertices[i + k].normal, normal);
  }
  if (const LayoutEntry* uv = FindFittingElement(mesh, layout, kTexcoord)) {
    ForEachCorner(out, mesh, *uv, [](PreviewVertex& v, const u8* b, auto t) {
      const Vec2 read = ReadVec2(b, t);
      v.uv[0] = read.x;
      v.uv[1] = read.y;
    });
  }
  // Last: the reads above went through the stored list.
  for (u32 i = 0; i < out.indexCount; ++i) out.indices[i] = i;
}

}  // namespace

bool BuildPreview(PreviewMesh& out, const ModelMesh& mesh, const InputLayout* layout) {
  Clear(out);
  const LayoutEntry* position = FindPositionElement(mesh, layout);
  if (!ReadIndices(mesh, out.indices) || !position) {
    Clear(out);
    return false;
  }
  out.indexCount = mesh.indexCount;
  const bool indexed = HasNormalSource(mesh, layout);
  const u32 vertexCount = indexed ? mesh.vertexCount : mesh.indexCount;
  if (!out.vertices.Reserve(vertexCount) || !out.vertices.SetSize(vertexCount)) {
    Clear(out);
    return false;
  }
  out.vertexCount = vertexCount;
  if (indexed) {
    BuildIndexed(out, mesh, layout, *position);
  } else {
    BuildFlat(out, mesh, layout, *position);
  }
  return true;
}
