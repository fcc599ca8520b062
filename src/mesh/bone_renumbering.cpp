#include "mesh/bone_renumbering.h"

#include <algorithm>

#include "platform/debug_channel.h"

namespace {

// Draw calls of a real mesh split its vertices and the bone map between them; ranges that add up
// to far more mark a corrupt file, whose renumbering would cost draw calls times vertices.
constexpr u64 kRenumberWorkPerItem = 16;
constexpr u64 kRenumberWorkSlack = 0x10000;
// Real meshes have tens of draw calls over at most a few hundred slots. Past these, the slots kept
// per call would cost more than the cache they save: every block looks at every call.
constexpr u32 kMaxBlockCalls = 1024;
constexpr u64 kMaxKeptSlots = u64(1) << 20;

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

u64 LastDrawCall(const ModelFile& model, const ModelMesh& mesh) {
  return std::min<u64>(u64(mesh.firstDrawCall) + mesh.drawCallCount, model.drawCalls.Count());
}

// Writes the call's bone map entries into `slots`.
void WriteSlots(u32* slots, const ModelFile& model, const DrawCall& call, const CallRange& range, u32 paletteSize,
                bool rigid) {
  for (u64 e = range.firstEntry; e < range.lastEntry; ++e) {
    const BoneMapEntry& entry = model.boneMap[u32(e)];
    slots[u32((u64(entry.slot) + call.slotBase) % paletteSize)] = entry.bone;
    if (rigid) DebugPrintA("%u - %u\n", u32(entry.slot), u32(entry.bone));
  }
}

void RenumberVertices(ExportInfluences* records, u64 count, const u32* slots, u32 used, bool rigid) {
  const u32 influenceCount = rigid ? 1 : 4;
  for (u64 v = 0; v < count; ++v) {
    ExportInfluence* influences = records[v].k;
    for (u32 k = 0; k < influenceCount; ++k) {
      // Slots past the highest one written never were, and read as bone 0 like any unwritten one.
      const i32 slot = influences[k].bone;
      influences[k].bone = slot >= 0 && u32(slot) < used ? i32(slots[u32(slot)]) : 0;
    }
  }
}

}  // namespace

bool BoneRenumbering::Prepare(const ModelFile& fromModel, const ModelMesh& fromMesh, u32 vertices, bool isRigid) {
  model = &fromModel;
  mesh = &fromMesh;
  vertexCount = vertices;
  rigid = isRigid;
  const u32 paletteSize = mesh->bonePaletteSize;
  const u64 lastDrawCall = LastDrawCall(*model, *mesh);
  u64 work = 0;
  u64 highest = 0;
  u32 callsWithVertices = 0;
  for (u64 d = mesh->firstDrawCall; d < lastDrawCall; ++d) {
    const DrawCall& call = model->drawCalls[u32(d)];
    const CallRange range = RangeOf(call, *model, vertexCount, paletteSize);
    work += (range.lastEntry > range.firstEntry ? range.lastEntry - range.firstEntry : 0) +
            (range.lastVertex > range.firstVertex ? range.lastVertex - range.firstVertex : 0);
    if (range.lastVertex > range.firstVertex && callsWithVertices < kMaxBlockCalls + 1) ++callsWithVertices;
    for (u64 e = range.firstEntry; e < range.lastEntry; ++e) {
      highest = std::max<u64>(highest, (u64(model->boneMap[u32(e)].slot) + call.slotBase) % paletteSize + 1);
    }
  }
  if (work > kRenumberWorkPerItem * (u64(vertexCount) + model->boneMap.Count()) + kRenumberWorkSlack) return false;
  if (highest > kMaxPaletteSlots) return false;
  used = u32(highest);
  byBlock = callsWithVertices <= kMaxBlockCalls && u64(callsWithVertices + 1) * used <= kMaxKeptSlots;
  if (!byBlock) return true;

  // The running slots first, then a copy of them for each call with vertices.
  if (!calls.Reserve(callsWithVertices) || !callSlots.Reserve((callsWithVertices + 1) * used) ||
      !callSlots.SetSize(used)) {
    return false;
  }
  for (u64 d = mesh->firstDrawCall; d < lastDrawCall; ++d) {
    const DrawCall& call = model->drawCalls[u32(d)];
    const CallRange range = RangeOf(call, *model, vertexCount, paletteSize);
    WriteSlots(callSlots.Data(), *model, call, range, paletteSize, rigid);
    if (range.lastVertex <= range.firstVertex) continue;
    const u32 at = callSlots.Count();
    if (!callSlots.SetSizeForOverwrite(at + used)) return false;
    std::copy_n(callSlots.Data(), used, callSlots.Data() + at);
    *calls.Append() = {u32(range.firstVertex), u32(range.lastVertex), at};
  }
  return true;
}

void BoneRenumbering::RenumberBlock(ExportInfluences* block, u32 first, u32 count) const {
  const u32 last = first + count;
  for (const Call& call : calls) {
    const u32 from = std::max(call.firstVertex, first);
    const u32 to = std::min(call.lastVertex, last);
    if (from < to) RenumberVertices(block + (from - first), to - from, callSlots.Data() + call.slotsAt, used, rigid);
  }
}

bool BoneRenumbering::RenumberAll(ExportInfluences* vertices) const {
  const u32 paletteSize = mesh->bonePaletteSize;
  TArray<u32> slots;
  if (!slots.Reserve(used) || !slots.SetSize(used)) return false;
  const u64 lastDrawCall = LastDrawCall(*model, *mesh);
  for (u64 d = mesh->firstDrawCall; d < lastDrawCall; ++d) {
    const DrawCall& call = model->drawCalls[u32(d)];
    const CallRange range = RangeOf(call, *model, vertexCount, paletteSize);
    WriteSlots(slots.Data(), *model, call, range, paletteSize, rigid);
    if (range.lastVertex > range.firstVertex) {
      RenumberVertices(vertices + range.firstVertex, range.lastVertex - range.firstVertex, slots.Data(), used, rigid);
    }
  }
  return true;
}
