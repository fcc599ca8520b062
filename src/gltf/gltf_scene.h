#pragma once

#include <memory>
#include <vector>

#include "export/export_scene.h"
#include "gltf/glb_container.h"
#include "image/texture_png.h"

// The images to embed with a scene's meshes: for each image of the scene, its PNG files, or null
// where it gave none. An image past the end has none.
struct GltfImages {
  std::vector<std::shared_ptr<const TexturePng>> png;
};

// The glTF 2.0 document of `scene`, the same content as its FBX file: a node named after the actor
// with one node per bone below it, each mesh with its UV sets, skin and material. Positions stay in
// the scene's units (metres) and axes (Y up, the same in both formats); triangles turn to the
// format's counter-clockwise front faces. Each vertex's weights are renormalised to sum to 1; a
// skinned vertex with no weight is bound wholly to the skeleton's first root bone. A mesh whose
// skin binds no bone stays a plain one, and where no mesh binds the skeleton, a skin of its own
// lists every bone, so that readers still take the bones as a skeleton. Normals come out at unit
// length, a zero one replaced by its triangles' normal. A mesh without triangles leaves its node
// without a mesh. Each mesh's diffuse image is embedded once however many meshes show it; the
// material of a see-through mesh blends by the image's alpha, the others are opaque. An alpha
// split off an image is embedded too, named after it, for no material.
void BuildGltf(const ExportScene& scene, const GltfImages& images, GltfDocument& document);
