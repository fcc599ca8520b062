// Any bytes as a material catalogue: true or false without a fault, and a catalogue that reads
// holds only layouts whose entries lie in their streams.
#include <cstdint>
#include <cstring>

#include "gamedata/material_definitions.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  CByteBuffer bytes;
  if (!bytes.SetSize(static_cast<u32>(size))) return 0;
  if (size) std::memcpy(bytes.Data(), data, size);
  MaterialDefinitionSet set;
  if (set.Read(bytes)) {
    for (u32 i = 0; i < set.InputLayouts().Count(); ++i) {
      const InputLayout& layout = set.InputLayouts().ValueAt(i);
      for (const LayoutEntry& entry : layout.entries) {
        if (entry.stream >= layout.streamSizes.Count()) __builtin_trap();
      }
    }
    for (u32 i = 0; i < set.Definitions().Count(); ++i) (void)set.ChooseInputLayout(set.Definitions().KeyAt(i));
  }
  set.Destroy();
  return 0;
}
