#include "mesh/export_mesh.h"

#include <algorithm>
#include <type_traits>

#include "mesh/bone_renumbering.h"
#include "mesh/mesh_indices.h"
#include "mesh/unit_vector.h"

namespace {

constexpr u32 kUvChannels = 8;
// 80 KiB of records: the passes of one block meet its records in the second-level cache.
constexpr u32 kBlockVertices = 512;

void Clear(ExportMesh& out) {
  out.vertices.Release();
  out.indices.Release();
  out.vertexCount = out.indexCount = out.flags = 0;
}

template <class Type>
Vec3 ReadUnit(const u8* bytes, Type type) {
  return UnpackUnit(ReadVec3(bytes, type));
}

// The elements a mesh's layout gives, found once and then read block by block.
struct Elements {
  const LayoutEntry* position = nullptr;
  const LayoutEntry* normal = nullptr;
  const LayoutEntry* tangent = nullptr;
  const LayoutEntry* binormal = nullptr;
  const LayoutEntry* uv[kUvChannels] = {};
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
  for (u32 channel = 0; channel < kUvChannels; ++channel) {
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

template <class Normalize>
void ReadFrame(ExportVertex* block, u32 first, u32 count, const ModelMesh& mesh, const Elements& e,
               Normalize normalize) {
  ForEachVertexIn(block, first, count, mesh, *e.binormal, [&](ExportVertex& v, const u8* b, auto t) {
    Vec3 n = ReadUnit(b, t);
    normalize(n);
    StoreVec3(v.binormal, n);
  });
  ForEachVertexIn(block, first, count, mesh, *e.tangent, [&](ExportVertex& v, const u8* b, auto t) {
    Vec3 n = ReadUnit(b, t);
    normalize(n);
    StoreVec3(v.tangent, n);
  });
}

void ReadNormalsAndFrame(ExportVertex* block, u32 first, u32 count, const ModelMesh& mesh, const Elements& e) {
  if (e.normal) {
    ForEachVertexIn(block, first, count, mesh, *e.normal, [](ExportVertex& v, const u8* b, auto t) {
      Vec3 n = ReadUnit(b, t);
      NormalizeVector(n);
      StoreVec3(v.normal, n);
    });
  }
  if (!e.tangent) return;
  // Beside a stored normal the frame is kept with the axis shortcut; without one it only derives
  // the normal, and then the shortcut doesn't apply.
  if (e.normal) {
    ReadFrame(block, first, count, mesh, e, [](Vec3& n) { NormalizeVector(n); });
    return;
  }
  ReadFrame(block, first, count, mesh, e, [](Vec3& n) { NormalizeByLength(n); });
  ForEachVertexIn(block, first, count, mesh, *e.tangent, [](ExportVertex& v, const u8* b, auto t) {
    const Vec3 tangentVector{v.tangent[0], v.tangent[1], v.tangent[2]};
    const Vec3 binormalVector{v.binormal[0], v.binormal[1], v.binormal[2]};
    StoreVec3(v.normal, DeriveNormal(tangentVector, binormalVector, ReadVec4(b, t).w));
  });
}

void ReadInfluences(ExportVertex* block, u32 first, u32 count, const ModelMesh& mesh, const Elements& e) {
  if (e.blendIndices) {
    ForEachVertexIn(block, first, count, mesh, *e.blendIndices, [](ExportVertex& v, const u8* b, auto t) {
      const Int4 bones = ReadInt4(b, t);
      for (u32 k = 0; k < 4; ++k) v.influences[k].bone = bones.v[k];
    });
    ForEachVertexIn(block, first, count, mesh, *e.blendWeight, [](ExportVertex& v, const u8* b, auto t) {
      const Vec4 w = ReadVec4(b, t);
      const f32 values[4] = {w.x, w.y, w.z, w.w};
      for (u32 k = 0; k < 4; ++k) v.influences[k].weight = values[k];
    });
  } else if (e.rigidBone) {
    // A rigid vertex follows one bone, kept in the binormal's fourth value.
    ForEachVertexIn(block, first, count, mesh, *e.rigidBone, [](ExportVertex& v, const u8* b, auto t) {
      v.influences[0] = {ReadInt4(b, t).v[3], 1.0f};
      for (u32 k = 1; k < 4; ++k) v.influences[k] = {0, 0};
    });
  }
}

// Every element of vertices first to first + count - 1, one element after the other over a block
// small enough that its records stay in cache from the first element to the last.
void DecodeBlock(ExportVertex* block, u32 first, u32 count, const ModelMesh& mesh, const Elements& e,
                 const BoneRenumbering& renumbering) {
  // Of a new record only the bone numbers differ from zero.
  static constexpr ExportVertex kNewVertex{};
  std::fill_n(block, count, kNewVertex);
  ForEachVertexIn(block, first, count, mesh, *e.position,
                  [](ExportVertex& v, const u8* b, auto t) { StoreVec3(v.position, ReadVec3(b, t)); });
  ReadNormalsAndFrame(block, first, count, mesh, e);
  for (u32 channel = 0; channel < kUvChannels; ++channel) {
    if (!e.uv[channel]) continue;
    ForEachVertexIn(block, first, count, mesh, *e.uv[channel], [channel](ExportVertex& v, const u8* b, auto t) {
      const Vec2 read = ReadVec2(b, t);
      v.uv[channel][0] = read.x;
      v.uv[channel][1] = read.y;
    });
  }
  if (e.color) {
    const bool alpha = e.colorAlpha;
    ForEachVertexIn(block, first, count, mesh, *e.color, [alpha](ExportVertex& v, const u8* b, auto t) {
      const Vec4 c = alpha ? ReadVec4(b, t) : Vec4{};
      const Vec3 rgb = alpha ? Vec3{c.x, c.y, c.z} : ReadVec3(b, t);
      v.color[0] = rgb.x;
      v.color[1] = rgb.y;
      v.color[2] = rgb.z;
      v.color[3] = c.w;
    });
  }
  ReadInfluences(block, first, count, mesh, e);
  if ((e.blendIndices || e.rigidBone) && renumbering.ByBlock()) renumbering.RenumberBlock(block, first, count);
}

}  // namespace

bool Build(ExportMesh& out, const ModelFile& model, const ModelMesh& mesh, const InputLayout* layout,
           u32 materialFlags) {
  Clear(out);
  const Elements elements = FindElements(out, mesh, layout, materialFlags);
  // A Position that doesn't fit its stream fails the mesh, rather than reading outside it.
  const u32 vertexCount = mesh.vertexCount;
  static_assert(std::is_trivially_copyable_v<ExportVertex>);
  if (!ReadIndices(mesh, out.indices) || !elements.position || !out.vertices.Reserve(vertexCount) ||
      !out.vertices.SetSizeForOverwrite(vertexCount)) {
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
  for (u32 first = 0; first < vertexCount; first += kBlockVertices) {
    const u32 count = std::min(kBlockVertices, vertexCount - first);
    DecodeBlock(out.vertices.Data() + first, first, count, mesh, elements, renumbering);
  }
  if (influences && !renumbering.ByBlock() && !renumbering.RenumberAll(out.vertices.Data())) {
    Clear(out);
    return false;
  }
  return true;
}
