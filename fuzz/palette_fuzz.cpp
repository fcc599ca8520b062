// Any bytes as a palette file: ReadMaterials must give true or false without a crash or a read
// outside the buffer, and what it gives on true must hold together.
#include <cstdint>
#include <cstring>

#include "core/hash.h"
#include "gamedata/model_file.h"

namespace {

void Check(bool holds) {
  if (!holds) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > UINT32_MAX) return 0;
  // Exactly the input's length, so a read past it lands outside the block.
  CByteBuffer bytes(1);
  if (!bytes.SetSize(static_cast<u32>(size))) return 0;
  if (size) std::memcpy(bytes.Data(), data, size);
  ByteReader reader(bytes);
  ModelMaterials materials;
  const bool read = ReadMaterials(materials, reader);
  Check(reader.Position() <= bytes.Size());
  if (!read) return 0;
  u64 nameBytes = 0;
  for (const MaterialName& name : materials.names) {
    Check(name.hash == HashNameWide(name.text.Text()));
    nameBytes += std::strlen(name.text.Text()) + 1;
  }
  Check(nameBytes <= size);
  for (const ModelMaterial& material : materials.materials) {
    Check(material.owner == &materials);
    for (const MaterialParameter& parameter : material.parameters) {
      const u8* p = parameter.Data();
      Check((p == nullptr) == (parameter.dataSize == 0));
      // Touch every byte, so a block shorter than its size shows up.
      u8 sum = 0;
      for (u32 i = 0; i < parameter.dataSize; ++i) sum = static_cast<u8>(sum + p[i]);
      (void)sum;
    }
  }
  return 0;
}
