#include "mesh/mesh_indices.h"

#include <cstring>

bool ReadIndices(const ModelMesh& mesh, TArray<u32>& indices) {
  const u32 size = mesh.bytesPerIndex;
  if (size != 2 && size != 4) return false;
  if (u64(mesh.indexCount) * size > mesh.indexData.Size()) return false;
  if (!indices.Reserve(mesh.indexCount) || !indices.SetSize(mesh.indexCount)) return false;
  const u8* data = mesh.indexData.Data();
  for (u32 i = 0; i < mesh.indexCount; ++i) {
    if (size == 2) {
      u16 value;
      std::memcpy(&value, data + 2 * size_t(i), 2);
      indices[i] = value;
    } else {
      std::memcpy(&indices[i], data + 4 * size_t(i), 4);
    }
  }
  return true;
}
