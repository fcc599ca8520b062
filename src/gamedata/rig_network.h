#pragma once

#include "core/array.h"
#include "core/byte_buffer.h"
#include "core/types.h"
#include "core/value_string.h"

// One bone of a rig's bind pose, relative to its parent.
struct RigBone {
  f32 translation[4] = {};  // x, y, z and an unused fourth value, as stored
  f32 rotation[4] = {};     // quaternion x, y, z, w, as stored
  // -1 for a root; otherwise below the skeleton's bone count, and following parents from any bone
  // always ends at a root (Read rejects a file where it wouldn't).
  i32 parent = -1;
  CStringA name;
  u32 index = 0;  // the bone's own number: its place in `bones`
};

struct RigSkeleton {
  TArray<RigBone> bones;
  u32 id = 0;  // the id of the chunk the rig came from; animation sets name their rig by it
};

struct AnimSetName {
  CStringA name;
  u32 id = 0;  // rigId of the set: the `id` of the RigSkeleton it drives
};

// The parts of a rig network file that the export uses. All-empty after a failed Read.
struct RigNetwork {
  TArray<RigSkeleton> rigs;           // one per rig chunk, in file order
  TArray<AnimSetName> animSetNames;   // in set order
  TArray<CStringA> tableNames;        // kept, not used
  TArray<CStringA> flaggedNodeNames;  // kept, not used; an entry stays empty if fewer nodes are flagged
};

// The quick test before a file is read: 40 bytes at least and the first header's tags 24 and 6.
bool IsRigNetwork(const CByteBuffer& bytes);

// Fills `network` from the file's bytes, which it doesn't keep. False when memory is refused or
// the file doesn't add up; `network` is then empty.
[[nodiscard]] bool Read(RigNetwork& network, const CByteBuffer& bytes);
