// Any bytes as a model file: Read gives true or false without a crash or a read outside the
// buffer, and on true every size that users index by matches the data it describes.
#include <cstdint>
#include <cstring>

#include "fuzz_input.h"
#include "gamedata/model_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CByteBuffer bytes(1);
  if (!CopyInput(data, size, bytes)) return 0;
  ModelFile model;
  ModelMaterials materials;
  if (!Read(model, bytes, materials)) return 0;
  for (const ModelMesh& mesh : model.meshes) {
    for (const MeshStream& stream : mesh.streams) {
      if (stream.data.Size() != stream.dataSize || u64(stream.stride) * mesh.vertexCount != stream.dataSize) {
        __builtin_trap();
      }
    }
    if (mesh.indexData.Size() != mesh.indexDataSize ||
        u64(mesh.bytesPerIndex) * mesh.indexCount != mesh.indexDataSize) {
      __builtin_trap();
    }
  }
  for (const ModelMaterial& material : materials.materials) {
    if (material.owner != &materials) __builtin_trap();
  }
  return 0;
}
