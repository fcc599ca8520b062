#pragma once

#include "core/array.h"
#include "gamedata/model_file.h"

// The mesh's index list as 32-bit values, in its own order: 16-bit indices widened, 32-bit ones
// copied. False for any other index size, index data shorter than it says, or memory refused.
[[nodiscard]] bool ReadIndices(const ModelMesh& mesh, TArray<u32>& indices);
