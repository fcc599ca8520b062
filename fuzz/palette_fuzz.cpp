// Any bytes as a palette file: ReadMaterials gives true or false without a crash or a read outside
// the buffer, and on true every parameter's data is there to be read in full.
#include <cstdint>
#include <cstring>

#include "core/hash.h"
#include "fuzz_input.h"
#include "gamedata/model_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CByteBuffer bytes(1);
  if (!CopyInput(data, size, bytes)) return 0;
  ByteReader reader(bytes);
  ModelMaterials materials;
  if (!ReadMaterials(materials, reader)) return 0;
  for (const MaterialName& name : materials.names) {
    if (name.hash != HashNameWide(name.text.Text())) __builtin_trap();
  }
  for (const ModelMaterial& material : materials.materials) {
    if (material.owner != &materials) __builtin_trap();
    for (const MaterialParameter& parameter : material.parameters) {
      const u8* p = parameter.Data();
      if ((p == nullptr) != (parameter.dataSize == 0)) __builtin_trap();
      // Reads the last byte, so a block shorter than its size shows up.
      if (p) static_cast<void>(*static_cast<const volatile u8*>(p + parameter.dataSize - 1));
    }
  }
  return 0;
}
