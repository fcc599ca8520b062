#pragma once

#include "fbx/convert_state.h"

// Puts the image file at `absolute` (also reachable as `relative`, from the folder of the file
// being written) on the diffuse colour of mesh `meshIndex`'s material, laid on the mesh's first UV
// set: a texture named `name` with its video. The material keeps its colour. A `transparent`
// material takes the texture's alpha as its opacity: the texture goes on its transparent colour
// too, at full transparency factor, as readers of the format expect. False when the mesh doesn't
// exist or memory is refused.
[[nodiscard]] bool AddDiffuseTexture(ConvertState& state, u32 meshIndex, const char* name, const char* absolute,
                                     const char* relative, bool transparent = false);
