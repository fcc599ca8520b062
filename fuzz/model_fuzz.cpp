// Any bytes as a model file: Read must give true or false without a crash or a read outside the
// buffer, and what it gives on true must hold together.
#include <cstdint>
#include <cstring>

#include "gamedata/model_file.h"

namespace {

void Check(bool holds) {
  if (!holds) __builtin_trap();
}

void CheckModel(const ModelFile& model) {
  for (u32 i = 0; i < model.meshes.Count(); ++i) {
    const ModelMesh& mesh = model.meshes[i];
    Check(mesh.index == i);
    for (u32 s = 0; s < mesh.streams.Count(); ++s) {
      const MeshStream& stream = mesh.streams[s];
      Check(stream.index == s && stream.data.Size() == stream.dataSize);
      Check(u64(stream.stride) * mesh.vertexCount == stream.dataSize);
    }
    Check(mesh.indexData.Size() == mesh.indexDataSize);
    Check(u64(mesh.bytesPerIndex) * mesh.indexCount == mesh.indexDataSize);
  }
  for (const ModelBone& bone : model.bones) Check(bone.bindMatrix[3][3] == 1.0f && bone.bindMatrix[0][3] == 0.0f);
}

void CheckMaterials(const ModelMaterials& materials) {
  for (const ModelMaterial& material : materials.materials) {
    Check(material.owner == &materials);
    for (const MaterialParameter& parameter : material.parameters) {
      Check((parameter.Data() == nullptr) == (parameter.dataSize == 0));
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > UINT32_MAX) return 0;
  // Exactly the input's length, so a read past it lands outside the block.
  CByteBuffer bytes(1);
  if (!bytes.SetSize(static_cast<u32>(size))) return 0;
  if (size) std::memcpy(bytes.Data(), data, size);
  ModelFile model;
  ModelMaterials materials;
  if (Read(model, bytes, materials)) {
    CheckModel(model);
    CheckMaterials(materials);
  }
  return 0;
}
