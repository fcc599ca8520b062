#pragma once

#include "export/export_scene.h"

// Makes `geometry` mesh `index` of `scene`: its name and UV sets, its triangles checked, and with
// the scene's rig its influences as bones of the scene through `modelToRig` (each bone of the
// model as a scene bone or kSceneNoBone). The model's own influences are released once mapped.
// False when memory is refused or a triangle names a vertex the mesh lacks.
[[nodiscard]] bool AddSceneMesh(ExportScene& scene, u32 index, ExportMesh&& geometry, const TArray<u32>& modelToRig);
