// Any bytes as a rig network: Read must give true or false without a crash or a read outside the
// buffer, and a network it gives true for must hold what the export relies on.
#include <cstdint>
#include <cstring>

#include "fuzz_input.h"
#include "gamedata/rig_network.h"

namespace {

void Check(bool holds) {
  if (!holds) __builtin_trap();
}

// Every parent a bone of the same rig, no chain of parents longer than the rig, every text ending.
void CheckSound(const RigNetwork& network) {
  for (const RigSkeleton& rig : network.rigs) {
    const u32 count = rig.bones.Count();
    for (u32 i = 0; i < count; ++i) {
      const RigBone& bone = rig.bones[i];
      Check(bone.index == i);
      Check(bone.parent == -1 || (bone.parent >= 0 && u32(bone.parent) < count));
      u32 steps = 0;
      for (i32 p = bone.parent; p >= 0; p = rig.bones[u32(p)].parent) Check(++steps <= count);
      (void)std::strlen(bone.name.Text());
    }
  }
  for (const AnimSetName& set : network.animSetNames) (void)std::strlen(set.name.Text());
  for (const CStringA& name : network.tableNames) (void)std::strlen(name.Text());
  for (const CStringA& name : network.flaggedNodeNames) (void)std::strlen(name.Text());
}

bool IsEmpty(const RigNetwork& network) {
  return network.rigs.Count() == 0 && network.animSetNames.Count() == 0 && network.tableNames.Count() == 0 &&
         network.flaggedNodeNames.Count() == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size > UINT32_MAX) return 0;
  CByteBuffer bytes(1);
  if (!CopyInput(data, size, bytes)) return 0;

  Check(IsRigNetwork(bytes) == (size >= 40 && std::memcmp(data, "\x18\0\0\0\x06\0\0\0", 8) == 0));
  static RigNetwork network;  // reused, as a table's record would be after a failed read
  if (Read(network, bytes)) {
    CheckSound(network);
  } else {
    Check(IsEmpty(network));
  }
  return 0;
}
