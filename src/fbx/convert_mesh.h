#pragma once

#include "fbx/convert_state.h"
#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"

// Decodes `mesh` through the layout its material's definition chooses and adds it to the scene as
// "Mesh_<meshIndex>": control points with normals and UV sets by control point (V flipped), the
// triangles with their winding reversed, a skin when the conversion has a rig, and a yellow Phong
// material of its own. False when the material has no layout, the mesh can't be decoded, or
// memory is refused; the scene must not be written then.
[[nodiscard]] bool ConvertMesh(ConvertState& state, const ModelMaterial& material, const ModelMesh& mesh,
                               const ModelFile& model, u32 meshIndex, const MaterialDefinitionSet& definitions);
