#pragma once

#include "core/array.h"
#include "gamedata/rig_network.h"
#include "mesh/vertex_stream.h"

// A rig's bones where they rest in its bind pose, in the model's space: what the preview's skeleton
// view draws. The positions are those of the export's bone nodes, each bone's translation and
// rotation applied below its parent's.
struct BindSkeleton {
  TArray<Vec3> joints;  // one per bone, in the rig's bone order
  TArray<u32> lines;    // pairs of indices into `joints`: a bone, then its parent; roots have none
};

// A bone's global bind transform: column-major, the translation in 12 to 14, its rotation from the
// rig's quaternion made unit length (a quaternion of no length is no rotation).
struct BindMatrix {
  f64 m[16] = {};
};

// Each bone's global bind transform, in the rig's bone order: its translation and rotation applied
// after its parent's. Parents may follow their children; a bone whose parent lies outside the rig
// hangs at the root. False when memory is refused.
[[nodiscard]] bool BindMatrices(const RigSkeleton& rig, TArray<BindMatrix>& matrices);

// Fills `skeleton` from `rig`. False (with `skeleton` empty) when memory is refused or a parent
// index is outside the rig, which a read rig never has.
[[nodiscard]] bool BuildBindSkeleton(BindSkeleton& skeleton, const RigSkeleton& rig);
