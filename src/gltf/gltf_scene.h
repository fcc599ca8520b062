#pragma once

#include <vector>

#include "fbx/convert_state.h"
#include "gltf/glb_container.h"

// The diffuse images to embed with a scene's meshes: each image once as PNG bytes, and for each
// mesh, by its place among the state's mesh nodes, the index of its image or -1. A mesh past the
// end of `meshImage` has none.
struct GltfImages {
  std::vector<std::vector<u8>> png;
  std::vector<i32> meshImage;
};

// The glTF 2.0 document of the scene in `state`, the same content as its FBX file: a node named
// after the actor with one node per bone below it, each mesh with its UV sets, skin and material.
// Positions stay in the scene's units (metres) and axes (Y up, the same in both formats); UVs take
// the top-left origin again and triangles keep the scene's counter-clockwise front faces. Each
// vertex's weights are renormalised to sum to 1; a skinned vertex with no weight is bound wholly to
// the rig's first root bone, and a skin that binds no bone is left out. Normals come out at unit
// length, a zero one replaced by its triangles' normal. A mesh without triangles leaves its node
// without a mesh. False when a mesh holds something no scene of ours
// does (a polygon that isn't a triangle, an element that doesn't cover every vertex).
[[nodiscard]] bool BuildGltf(const ConvertState& state, const GltfImages& images, GltfDocument& document);
