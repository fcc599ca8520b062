// A fuzzed input layout and model file, decoded as the export and the preview decode each mesh:
// Build and BuildPreview give true or false without a crash or a read outside a buffer, and on true
// the counts match the arrays. Indices and bone numbers may name what the model lacks, as stored,
// so their users check them.
//
// Input: a count byte n (taken modulo 9), n entries of five bytes (stream, type, usage, usage index,
// offset), a byte of material flags, then the model file.
#include <cstdint>
#include <cstring>

#include "fuzz_input.h"
#include "mesh/export_mesh.h"
#include "mesh/preview_mesh.h"

namespace {

constexpr size_t kEntryBytes = 5;
constexpr u32 kMaxEntries = 8;

bool ReadLayout(const uint8_t*& data, size_t& size, InputLayout& layout, u32& flags) {
  if (size < 1) return false;
  const u32 count = data[0] % (kMaxEntries + 1);
  if (size < 2 + count * kEntryBytes) return false;
  if (!layout.entries.SetSize(count)) return false;
  for (u32 i = 0; i < count; ++i) {
    const uint8_t* e = data + 1 + i * kEntryBytes;
    layout.entries[i] = {e[0], e[1], e[2], e[3], e[4]};
  }
  layout.entryCount = count;
  flags = data[1 + count * kEntryBytes];
  const size_t used = 2 + count * kEntryBytes;
  data += used;
  size -= used;
  return true;
}

void CheckCounts(const PreviewMesh& mesh) {
  if (mesh.vertices.Count() != mesh.vertexCount || mesh.indices.Count() != mesh.indexCount) __builtin_trap();
}

// Each element has an entry per vertex exactly when the flags name it.
void CheckCounts(const ExportMesh& mesh) {
  const auto wrong = [&mesh](u32 count, u32 flag) { return count != ((mesh.flags & flag) ? mesh.vertexCount : 0); };
  bool any = mesh.indices.Count() != mesh.indexCount || wrong(mesh.positions.Count(), kHasPosition) ||
             wrong(mesh.normals.Count(), kHasNormal) || wrong(mesh.tangents.Count(), kHasTangentFrame) ||
             wrong(mesh.binormals.Count(), kHasTangentFrame) || wrong(mesh.colors.Count(), kHasColor) ||
             wrong(mesh.influences.Count(), kHasInfluences);
  for (u32 channel = 0; channel < kExportUvChannels; ++channel)
    any = any || wrong(mesh.uvs[channel].Count(), HasUv(channel));
  if (any) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  InputLayout layout;
  u32 flags = 0;
  if (!ReadLayout(data, size, layout, flags)) return 0;
  CByteBuffer bytes(1);
  if (!CopyInput(data, size, bytes)) return 0;
  ModelFile model;
  ModelMaterials materials;
  if (!Read(model, bytes, materials)) return 0;
  for (const ModelMesh& mesh : model.meshes) {
    ExportMesh exported;
    if (Build(exported, model, mesh, &layout, flags)) CheckCounts(exported);
    PreviewMesh preview;
    if (BuildPreview(preview, mesh, &layout)) CheckCounts(preview);
  }
  return 0;
}
