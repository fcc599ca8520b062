#include "mesh/export_mesh.h"

#include <algorithm>
#include <type_traits>

#include "mesh/mesh_indices.h"
#include "mesh/unit_vector.h"
#include "platform/debug_channel.h"

namespace {

constexpr u32 kUvChannels = 8;

void Clear(ExportMesh& out) {
  out.vertices.Release();
  out.indices.Release();
  out.vertexCount = out.indexCount = out.flags = 0;
}

Vec3 ReadUnit(const u8* bytes, u32 type) { return UnpackUnit(ReadVec3(bytes, type)); }

void ReadNormalsAndFrame(ExportMesh& out, const ModelMesh& mesh, const InputLayout* layout) {
  const LayoutEntry* normal = FindFittingElement(mesh, layout, kNormal);
  const LayoutEntry* tangent = FindFittingElement(mesh, layout, kTangent);
  const LayoutEntry* binormal = FindFittingElement(mesh, layout, kBinormal);
  const bool frame = tangent && binormal;
  if (normal) {
    out.flags |= kHasNormal;
    ForEachVertex(out.vertices, mesh, *normal, [](ExportVertex& v, const u8* b, u32 t) {
      Vec3 n = ReadUnit(b, t);
      NormalizeVector(n);
      StoreVec3(v.normal, n);
    });
  }
  if (!frame) return;
  out.flags |= kHasTangentFrame;
  // Beside a stored normal the frame is kept with the axis shortcut; without one it only derives
  // the normal, and then the shortcut doesn't apply.
  const auto normalize = normal ? &NormalizeVector : &NormalizeByLength;
  ForEachVertex(out.vertices, mesh, *binormal, [&](ExportVertex& v, const u8* b, u32 t) {
    Vec3 n = ReadUnit(b, t);
    normalize(n);
    StoreVec3(v.binormal, n);
  });
  ForEachVertex(out.vertices, mesh, *tangent, [&](ExportVertex& v, const u8* b, u32 t) {
    Vec3 n = ReadUnit(b, t);
    normalize(n);
    StoreVec3(v.tangent, n);
  });
  if (normal) return;
  out.flags |= kHasNormal;
  ForEachVertex(out.vertices, mesh, *tangent, [](ExportVertex& v, const u8* b, u32 t) {
    const Vec3 tangentVector{v.tangent[0], v.tangent[1], v.tangent[2]};
    const Vec3 binormalVector{v.binormal[0], v.binormal[1], v.binormal[2]};
    StoreVec3(v.normal, DeriveNormal(tangentVector, binormalVector, ReadVec4(b, t).w));
  });
}

bool HasAlpha(u32 type) {
  switch (type) {
    case kFloat4: case kD3dcolor: case kUbyte4: case kShort4: case kUbyte4n: case kShort4n: case kUshort4n:
    case kFloat16_4: return true;
    default: return false;
  }
}

constexpr u32 kMaxPaletteSlots = 0x10000;
// Draw calls of a real mesh split its vertices and the bone map between them; ranges that add up
// to far more mark a corrupt file, whose renumbering would cost draw calls times vertices.
constexpr u64 kRenumberWorkPerItem = 16;
constexpr u64 kRenumberWorkSlack = 0x10000;

// The entries and vertices a draw call renumbers, clamped to the bone map and the mesh.
struct CallRange {
  u64 firstEntry, lastEntry, firstVertex, lastVertex;
};

CallRange RangeOf(const DrawCall& call, const ModelFile& model, u32 vertexCount, u32 paletteSize) {
  // Without a palette no slot can be named, so the map entries are passed over.
  const u64 lastEntry = paletteSize ? u64(call.firstBoneMapEntry) + call.boneMapEntryCount : 0;
  const u64 lastVertex = u64(call.firstVertex) + call.vertexCount;
  return {call.firstBoneMapEntry, lastEntry < model.boneMap.Count() ? lastEntry : model.boneMap.Count(),
          call.firstVertex, lastVertex < vertexCount ? lastVertex : vertexCount};
}

// Stored bone numbers are slots of a palette that changes from draw call to draw call. Slots keep
// the bone of an earlier draw call until a later one writes them; a slot never written, or a
// number outside the palette, gives bone 0. Only the slots up to the highest one written are kept.
bool Renumber(ExportMesh& out, const ModelFile& model, const ModelMesh& mesh, bool rigid) {
  const u32 paletteSize = mesh.bonePaletteSize;
  const u32 influenceCount = rigid ? 1 : 4;
  const u64 lastDrawCall = std::min<u64>(u64(mesh.firstDrawCall) + mesh.drawCallCount, model.drawCalls.Count());
  u64 work = 0;
  u64 used = 0;
  for (u64 d = mesh.firstDrawCall; d < lastDrawCall; ++d) {
    const DrawCall& call = model.drawCalls[u32(d)];
    const CallRange range = RangeOf(call, model, out.vertexCount, paletteSize);
    work += (range.lastEntry > range.firstEntry ? range.lastEntry - range.firstEntry : 0) +
            (range.lastVertex > range.firstVertex ? range.lastVertex - range.firstVertex : 0);
    for (u64 e = range.firstEntry; e < range.lastEntry; ++e) {
      used = std::max<u64>(used, (u64(model.boneMap[u32(e)].slot) + call.slotBase) % paletteSize + 1);
    }
  }
  if (work > kRenumberWorkPerItem * (u64(out.vertexCount) + model.boneMap.Count()) + kRenumberWorkSlack) return false;
  if (used > kMaxPaletteSlots) return false;
  TArray<u32> slots;
  if (!slots.Reserve(u32(used)) || !slots.SetSize(u32(used))) return false;

  for (u64 d = mesh.firstDrawCall; d < lastDrawCall; ++d) {
    const DrawCall& call = model.drawCalls[u32(d)];
    const CallRange range = RangeOf(call, model, out.vertexCount, paletteSize);
    for (u64 e = range.firstEntry; e < range.lastEntry; ++e) {
      const BoneMapEntry& entry = model.boneMap[u32(e)];
      slots[u32((u64(entry.slot) + call.slotBase) % paletteSize)] = entry.bone;
      if (rigid) DebugPrintA("%u - %u\n", u32(entry.slot), u32(entry.bone));
    }
    for (u64 v = range.firstVertex; v < range.lastVertex; ++v) {
      ExportInfluence* influences = out.vertices[u32(v)].influences;
      for (u32 k = 0; k < influenceCount; ++k) {
        // Slots past the highest one written never were, and read as bone 0 like any unwritten one.
        const i32 slot = influences[k].bone;
        influences[k].bone = slot >= 0 && u32(slot) < used ? i32(slots[u32(slot)]) : 0;
      }
    }
  }
  return true;
}

bool ReadInfluences(ExportMesh& out, const ModelFile& model, const ModelMesh& mesh, const InputLayout* layout,
                    u32 materialFlags) {
  const bool skinned = materialFlags & kSkinned;
  if (!skinned && !(materialFlags & kRigidSkinned)) return true;
  if (skinned) {
    const LayoutEntry* weights = FindFittingElement(mesh, layout, kBlendWeight);
    const LayoutEntry* indices = FindFittingElement(mesh, layout, kBlendIndices);
    if (!weights || !indices) return true;
    ForEachVertex(out.vertices, mesh, *indices, [](ExportVertex& v, const u8* b, u32 t) {
      const Int4 bones = ReadInt4(b, t);
      for (u32 k = 0; k < 4; ++k) v.influences[k].bone = bones.v[k];
    });
    ForEachVertex(out.vertices, mesh, *weights, [](ExportVertex& v, const u8* b, u32 t) {
      const Vec4 w = ReadVec4(b, t);
      const f32 values[4] = {w.x, w.y, w.z, w.w};
      for (u32 k = 0; k < 4; ++k) v.influences[k].weight = values[k];
    });
  } else {
    const LayoutEntry* binormal = FindFittingElement(mesh, layout, kBinormal);
    if (!binormal) return true;
    // A rigid vertex follows one bone, kept in the binormal's fourth value.
    ForEachVertex(out.vertices, mesh, *binormal, [](ExportVertex& v, const u8* b, u32 t) {
      v.influences[0] = {ReadInt4(b, t).v[3], 1.0f};
      for (u32 k = 1; k < 4; ++k) v.influences[k] = {0, 0};
    });
  }
  out.flags |= kHasInfluences;
  return Renumber(out, model, mesh, !skinned);
}

}  // namespace

bool Build(ExportMesh& out, const ModelFile& model, const ModelMesh& mesh, const InputLayout* layout,
           u32 materialFlags) {
  Clear(out);
  // A Position that doesn't fit its stream fails the mesh, rather than reading outside it.
  const LayoutEntry* position = FindPositionElement(mesh, layout);
  const u32 vertexCount = mesh.vertexCount;
  if (!ReadIndices(mesh, out.indices) || !position || !out.vertices.Reserve(vertexCount) ||
      !out.vertices.SetSize(vertexCount)) {
    Clear(out);
    return false;
  }
  out.indexCount = mesh.indexCount;
  // The array comes zero-filled; of a new record only the bone numbers differ from zero.
  static_assert(std::is_trivially_copyable_v<ExportVertex>);
  for (ExportVertex& vertex : out.vertices) {
    for (ExportInfluence& influence : vertex.influences) influence.bone = -1;
  }
  out.vertexCount = vertexCount;
  out.flags = kHasPosition;
  ForEachVertex(out.vertices, mesh, *position, [](ExportVertex& v, const u8* b, u32 t) { StoreVec3(v.position, ReadVec3(b, t)); });

  ReadNormalsAndFrame(out, mesh, layout);
  for (u32 channel = 0; channel < kUvChannels; ++channel) {
    const LayoutEntry* uv = FindElement(layout, kTexcoord, channel);
    if (!uv || !ElementFits(mesh, *uv)) continue;
    out.flags |= HasUv(channel);
    ForEachVertex(out.vertices, mesh, *uv, [channel](ExportVertex& v, const u8* b, u32 t) {
      const Vec2 read = ReadVec2(b, t);
      v.uv[channel][0] = read.x;
      v.uv[channel][1] = read.y;
    });
  }
  // A Color that doesn't fit is passed over like any other optional element.
  if (const LayoutEntry* color = FindFittingElement(mesh, layout, kColor)) {
    out.flags |= kHasColor;
    const bool alpha = HasAlpha(color->type);
    if (alpha) out.flags |= kHasColorAlpha;
    ForEachVertex(out.vertices, mesh, *color, [alpha](ExportVertex& v, const u8* b, u32 t) {
      const Vec4 c = alpha ? ReadVec4(b, t) : Vec4{};
      const Vec3 rgb = alpha ? Vec3{c.x, c.y, c.z} : ReadVec3(b, t);
      v.color[0] = rgb.x;
      v.color[1] = rgb.y;
      v.color[2] = rgb.z;
      v.color[3] = c.w;
    });
  }
  if (!ReadInfluences(out, model, mesh, layout, materialFlags)) {
    Clear(out);
    return false;
  }
  return true;
}
