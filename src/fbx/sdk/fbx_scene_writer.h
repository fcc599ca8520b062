#pragma once

#include "fbx/sdk/fbx_record.h"
#include "fbx/sdk/fbx_scene.h"

// The records of a whole file for `scene`: the document sections, Definitions with a count and a
// template for each type of object, Objects with everything under the root node (attributes,
// meshes, skins and clusters, materials) and the poses, and Connections in the order that keeps each
// node's children, materials and each skin's clusters as they were added. False when memory is
// refused.
[[nodiscard]] bool BuildSceneDocument(const FbxScene& scene, const FbxCreationTime& time, FbxRecord& document);
