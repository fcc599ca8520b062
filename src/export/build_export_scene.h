#pragma once

#include "export/export_scene.h"
#include "gamedata/material_definitions.h"
#include "gamedata/model_file.h"
#include "gamedata/rig_network.h"

// The step at which building a scene stopped.
enum class SceneBuildResult { kBuilt, kSetupFailed, kRigFailed, kMeshFailed };

// The scene of the actor `actorName` whose files are read: `materials` is the list that applies
// (the palette's, or the model's own), `rig` the one the conversion takes (null for none). Each mesh
// is decoded through the layout its material's definition chooses; a material list shorter than
// the meshes fails the mesh that has none.
[[nodiscard]] SceneBuildResult BuildExportScene(ExportScene& scene, const char* actorName, const ModelFile& model,
                                                const ModelMaterials& materials,
                                                const MaterialDefinitionSet& definitions, const RigSkeleton* rig);

// How many meshes this process has decoded for export scenes, for the checks that a conversion
// stopped early decodes none.
u64 DecodedMeshCount();

// The file name of `text` without folders (`/` or `\`) and without what follows its last `.`.
// False, with `out` empty, when memory is refused.
bool FileStem(const char* text, CStringBufferA& out);
