#pragma once

#include "fbx/convert_state.h"
#include "mesh/export_mesh.h"

// Adds the decoded mesh to the scene as "Mesh_<meshIndex>": control points with normals and UV
// sets by control point (V flipped), the triangles with their winding reversed, a skin when the
// conversion has a rig (influences name bones of a model with `modelBoneCount` bones), and a yellow
// Phong material of its own. False when memory is refused or an index is out of range; the scene
// must not be written then.
[[nodiscard]] bool ConvertMesh(ConvertState& state, const ExportMesh& exportMesh, u32 modelBoneCount, u32 meshIndex);
