#pragma once

#include <string>
#include <vector>

#include "app/texture_store.h"
#include "gltf/gltf_scene.h"

// The diffuse image of each mesh of `scene` as PNG bytes to embed in a .glb, each image once
// however many meshes show it, through `store`. A texture that is missing or can't be decoded is
// left out with a note, in the words of the texture files beside an FBX file.
void CollectGlbTextures(const ExportScene& scene, const PackIndex& packs, TextureStore& store, GltfImages& images,
                        std::vector<std::string>& notes);
