#pragma once

#include "fbx/convert_state.h"

// Adds mesh `meshIndex` of `scene` to the FBX scene under its name: control points with normals
// and UV sets by control point (V flipped), the triangles with their winding reversed, a skin when
// the mesh is skinned, and a yellow Phong material of its own. False when memory is refused; the
// scene must not be written then.
[[nodiscard]] bool ConvertMesh(ConvertState& state, const ExportScene& scene, u32 meshIndex);
