#pragma once

#include <string>
#include <vector>

#include "assets/pack_index.h"
#include "gamedata/model_file.h"
#include "gltf/gltf_scene.h"

// The diffuse texture of each of the first `meshCount` meshes as PNG bytes to embed in a .glb,
// each texture once however many meshes show it. A texture that is missing or can't be decoded is
// left out with a note, in the words of the texture files beside an FBX file.
void CollectGlbTextures(const ModelMaterials& materials, u32 meshCount, const PackIndex& packs, GltfImages& images,
                        std::vector<std::string>& notes);
