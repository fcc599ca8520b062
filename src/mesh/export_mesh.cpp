#include "mesh/export_mesh.h"

#include <algorithm>
#include <type_traits>

#include "mesh/bone_renumbering.h"
#include "mesh/mesh_indices.h"
#include "mesh/normalize_vectors.h"
#include "mesh/unit_vector.h"

namespace {

// Elements are decoded a span of vertices at a time, one element after the other: the span's
// stream bytes stay in the second-level cache from the first element to the last, and each pass
// writes its array in runs long enough for the prefetchers to follow. Passes over 512 vertices
// were short bursts that cost a sixth of the time.
constexpr u32 kSpanVertices = 4096;
// Within a span, influences are read and renumbered a block at a time (16 KiB), so that the
// renumbering finds them in the first-level cache; unit vectors are normalised in blocks as large.
constexpr u32 kBlockVertices = 512;

void Clear(ExportMesh& out) {
  out.positions.Release();
  out.normals.Release();
  out.tangents.Release();
  out.binormals.Release();
  for (TArray<Vec2>& uvs : out.uvs) uvs.Release();
  out.colors.Release();
  out.influences.Release();
  out.indices.Release();
  out.vertexCount = out.indexCount = out.flags = 0;
}

template <class Type>
Vec3 ReadUnit(const u8* bytes, Type type) {
  return UnpackUnit(ReadVec3(bytes, type));
}

// The elements a mesh's layout gives, found once and then read span by span.
struct Elements {
  const LayoutEntry* position = nullptr;
  const LayoutEntry* normal = nullptr;
  const LayoutEntry* tangent = nullptr;
  const LayoutEntry* binormal = nullptr;
  const LayoutEntry* uv[kExportUvChannels] = {};
  const LayoutEntry* color = nullptr;
  bool colorAlpha = false;
  const LayoutEntry* blendWeight = nullptr;  // with blendIndices, both or neither
  const LayoutEntry* blendIndices = nullptr;
  const LayoutEntry* rigidBone = nullptr;  // the binormal of a rigid mesh, whose fourth value is its bone
};

bool HasAlpha(u32 type) {
  switch (type) {
    case kFloat4:
    case kD3dcolor:
    case kUbyte4:
    case kShort4:
    case kUbyte4n:
    case kShort4n:
    case kUshort4n:
    case kFloat16_4: return true;
    default: return false;
  }
}

// Which elements are read, and the flags that say so.
Elements FindElements(ExportMesh& out, const ModelMesh& mesh, const InputLayout* layout, u32 materialFlags) {
  Elements e;
  e.position = FindPositionElement(mesh, layout);
  e.normal = FindFittingElement(mesh, layout, kNormal);
  e.tangent = FindFittingElement(mesh, layout, kTangent);
  e.binormal = FindFittingElement(mesh, layout, kBinormal);
  if (!(e.tangent && e.binormal)) e.tangent = e.binormal = nullptr;
  if (e.normal || e.tangent) out.flags |= kHasNormal;
  if (e.tangent) out.flags |= kHasTangentFrame;
  for (u32 channel = 0; channel < kExportUvChannels; ++channel) {
    const LayoutEntry* uv = FindElement(layout, kTexcoord, channel);
    if (!uv || !ElementFits(mesh, *uv)) continue;
    out.flags |= HasUv(channel);
    e.uv[channel] = uv;
  }
  // A Color that doesn't fit is passed over like any other optional element.
  if ((e.color = FindFittingElement(mesh, layout, kColor))) {
    out.flags |= kHasColor;
    e.colorAlpha = HasAlpha(e.color->type);
    if (e.colorAlpha) out.flags |= kHasColorAlpha;
  }
  if (materialFlags & kSkinned) {
    e.blendWeight = FindFittingElement(mesh, layout, kBlendWeight);
    e.blendIndices = FindFittingElement(mesh, layout, kBlendIndices);
    if (!(e.blendWeight && e.blendIndices)) e.blendWeight = e.blendIndices = nullptr;
  } else if (materialFlags & kRigidSkinned) {
    e.rigidBone = FindFittingElement(mesh, layout, kBinormal);
  }
  if (e.blendWeight || e.rigidBone) out.flags |= kHasInfluences;
  return e;
}

// One element's vectors of a block as planes, the shape the normaliser takes.
struct BlockVectors {
  f32 x[kBlockVertices], y[kBlockVertices], z[kBlockVertices];
};

// Unit vectors of the element for vertices first to first + count - 1 into `to`, normalised with
// or without the axis shortcut.
void ReadNormalized(Vec3* to, u32 first, u32 count, const ModelMesh& mesh, const LayoutEntry& entry,
                    bool axisShortcut) {
  BlockVectors v;
  for (u32 at = 0; at < count; at += kBlockVertices) {
    const u32 n = std::min(kBlockVertices, count - at);
    ForEachVertexIndexIn(first + at, n, mesh, entry, [&v](u32 i, const u8* b, auto t) {
      const Vec3 unit = ReadUnit(b, t);
      v.x[i] = unit.x;
      v.y[i] = unit.y;
      v.z[i] = unit.z;
    });
    NormalizeVectors(v.x, v.y, v.z, n, axisShortcut);
    for (u32 i = 0; i < n; ++i) to[at + i] = {v.x[i], v.y[i], v.z[i]};
  }
}

void ReadNormalsAndFrame(ExportMesh& out, u32 first, u32 count, const ModelMesh& mesh, const Elements& e) {
  if (e.normal) ReadNormalized(out.normals.Data() + first, first, count, mesh, *e.normal, true);
  if (!e.tangent) return;
  // Beside a stored normal the frame is kept with the axis shortcut; without one it only derives
  // the normal, and then the shortcut doesn't apply.
  Vec3* binormals = out.binormals.Data() + first;
  Vec3* tangents = out.tangents.Data() + first;
  ReadNormalized(binormals, first, count, mesh, *e.binormal, e.normal != nullptr);
  ReadNormalized(tangents, first, count, mesh, *e.tangent, e.normal != nullptr);
  if (e.normal) return;
  Vec3* normals = out.normals.Data() + first;
  ForEachVertexIndexIn(first, count, mesh, *e.tangent, [=](u32 i, const u8* b, auto t) {
    normals[i] = DeriveNormal(tangents[i], binormals[i], ReadVec4(b, t).w);
  });
}

void ReadInfluences(ExportInfluences* block, u32 first, u32 count, const ModelMesh& mesh, const Elements& e) {
  if (e.blendIndices) {
    ForEachVertexIn(block, first, count, mesh, *e.blendIndices, [](ExportInfluences& v, const u8* b, auto t) {
      const Int4 bones = ReadInt4(b, t);
      for (u32 k = 0; k < 4; ++k) v.k[k].bone = bones.v[k];
    });
    ForEachVertexIn(block, first, count, mesh, *e.blendWeight, [](ExportInfluences& v, const u8* b, auto t) {
      const Vec4 w = ReadVec4(b, t);
      const f32 values[4] = {w.x, w.y, w.z, w.w};
      for (u32 k = 0; k < 4; ++k) v.k[k].weight = values[k];
    });
  } else if (e.rigidBone) {
    // A rigid vertex follows one bone, kept in the binormal's fourth value.
    ForEachVertexIn(block, first, count, mesh, *e.rigidBone, [](ExportInfluences& v, const u8* b, auto t) {
      v.k[0] = {ReadInt4(b, t).v[3], 1.0f};
      for (u32 k = 1; k < 4; ++k) v.k[k] = {0, 0};
    });
  }
}

// Every element of vertices first to first + count - 1, a span. Each pass writes every vertex of
// the span, so nothing is filled beforehand.
void DecodeSpan(ExportMesh& out, u32 first, u32 count, const ModelMesh& mesh, const Elements& e,
                const BoneRenumbering& renumbering) {
  ForEachVertexIn(out.positions.Data() + first, first, count, mesh, *e.position,
                  [](Vec3& v, const u8* b, auto t) { v = ReadVec3(b, t); });
  ReadNormalsAndFrame(out, first, count, mesh, e);
  for (u32 channel = 0; channel < kExportUvChannels; ++channel) {
    if (!e.uv[channel]) continue;
    ForEachVertexIn(out.uvs[channel].Data() + first, first, count, mesh, *e.uv[channel],
                    [](Vec2& v, const u8* b, auto t) { v = ReadVec2(b, t); });
  }
  if (e.color) {
    const bool alpha = e.colorAlpha;
    ForEachVertexIn(out.colors.Data() + first, first, count, mesh, *e.color, [alpha](Vec4& v, const u8* b, auto t) {
      const Vec4 c = alpha ? ReadVec4(b, t) : Vec4{};
      const Vec3 rgb = alpha ? Vec3{c.x, c.y, c.z} : ReadVec3(b, t);
      v = {rgb.x, rgb.y, rgb.z, c.w};
    });
  }
  if (!(e.blendIndices || e.rigidBone)) return;
  for (u32 at = first; at < first + count; at += kBlockVertices) {
    const u32 n = std::min(kBlockVertices, first + count - at);
    ExportInfluences* influences = out.influences.Data() + at;
    ReadInfluences(influences, at, n, mesh, e);
    if (renumbering.ByBlock()) renumbering.RenumberBlock(influences, at, n);
  }
}

// Room for `count` entries of each element the flags name, left unfilled.
template <class T>
bool SizeFor(TArray<T>& array, u32 count, bool present) {
  static_assert(std::is_trivially_copyable_v<T>);
  return !present || (array.Reserve(count) && array.SetSizeForOverwrite(count));
}

bool SizeArrays(ExportMesh& out, u32 count) {
  const u32 f = out.flags;
  bool sized = SizeFor(out.positions, count, true) && SizeFor(out.normals, count, f & kHasNormal) &&
               SizeFor(out.tangents, count, f & kHasTangentFrame) &&
               SizeFor(out.binormals, count, f & kHasTangentFrame) && SizeFor(out.colors, count, f & kHasColor) &&
               SizeFor(out.influences, count, f & kHasInfluences);
  for (u32 channel = 0; channel < kExportUvChannels; ++channel) {
    sized = sized && SizeFor(out.uvs[channel], count, f & HasUv(channel));
  }
  return sized;
}

}  // namespace

bool Build(ExportMesh& out, const ModelFile& model, const ModelMesh& mesh, const InputLayout* layout,
           u32 materialFlags) {
  Clear(out);
  const Elements elements = FindElements(out, mesh, layout, materialFlags);
  // A Position that doesn't fit its stream fails the mesh, rather than reading outside it.
  const u32 vertexCount = mesh.vertexCount;
  if (!ReadIndices(mesh, out.indices) || !elements.position || !SizeArrays(out, vertexCount)) {
    Clear(out);
    return false;
  }
  out.indexCount = mesh.indexCount;
  out.vertexCount = vertexCount;
  out.flags |= kHasPosition;
  const bool influences = out.flags & kHasInfluences;
  BoneRenumbering renumbering;
  if (influences && !renumbering.Prepare(model, mesh, vertexCount, elements.rigidBone != nullptr)) {
    Clear(out);
    return false;
  }
  for (u32 first = 0; first < vertexCount; first += kSpanVertices) {
    DecodeSpan(out, first, std::min(kSpanVertices, vertexCount - first), mesh, elements, renumbering);
  }
  if (influences && !renumbering.ByBlock() && !renumbering.RenumberAll(out.influences.Data())) {
    Clear(out);
    return false;
  }
  return true;
}
