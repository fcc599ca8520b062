#pragma once

#include "core/array.h"
#include "core/string_buffer.h"
#include "mesh/export_mesh.h"

// One actor as every output format sees it, built once per conversion from the game's files and
// read by each writer. It keeps the game's conventions: Y up, metres, triangles whose front faces
// run clockwise, V running downwards. A writer converts to its format's and never to another
// writer's.

constexpr i32 kSceneNoImage = -1;
constexpr u32 kSceneNoBone = 0xFFFFFFFF;

// A bone of the skeleton in its bind pose.
struct SceneBone {
  const char* name = nullptr;      // the rig's, which outlives every conversion
  i32 parent = -1;                 // a bone of the scene, or -1 for one right below the actor's root
  f32 translation[3] = {};         // relative to the parent, as the rig stores it
  f32 rotation[4] = {0, 0, 0, 1};  // quaternion x, y, z, w, as the rig stores it (maybe off unit length)
  f64 bind[16] = {};               // the global bind transform, column-major, from the unit quaternions
};

// One of a vertex's four influence slots, in the order the model stores them: a bone of the
// scene, or kSceneNoBone for a slot that binds nothing (weight 0, or a bone the rig lacks).
struct SceneInfluence {
  u32 bone = kSceneNoBone;
  f32 weight = 0;
};
struct SceneInfluences {
  SceneInfluence k[4];
};

// A UV set of a mesh: its channel in `ExportMesh::uvs` and the name the file gives it.
struct SceneUvSet {
  u32 channel = 0;
  char name[16] = {};  // "UVChannel_<channel + 1>"
};

struct SceneMesh {
  char name[16] = {};          // "Mesh_<index>"
  char materialName[16] = {};  // the name of its last UV set, or the mesh's without one
  ExportMesh geometry;         // positions, normals, UV sets; `indices` holds whole triangles only,
                               // each below `vertexCount`; `influences` is released once mapped
  TArray<SceneUvSet> uvSets;
  // With the actor's rig and influences of its own, each vertex's slots; empty otherwise.
  TArray<SceneInfluences> influences;
  bool skinned = false;              // the mesh follows the skeleton (it may still bind no bone)
  bool semiTransparent = false;      // its material definition says the surface is see-through
  f64 color[3] = {1, 1, 0};          // the material's diffuse colour
  i32 diffuseImage = kSceneNoImage;  // an entry of the scene's `images`

  u32 TriangleCount() const { return geometry.indexCount / 3; }
};

// A texture the meshes' materials name.
struct SceneImage {
  const char* name = nullptr;  // borrowed from the model's materials, which outlive the scene
  // The diffuse texture of some mesh whose material isn't see-through, and of no see-through one:
  // its alpha is no opacity, and is exported apart from its colour.
  bool opaque = false;
};

struct ExportScene {
  TStringBufferA<48> rootName;  // the actor's file name without folders and extension
  bool hasRig = false;          // a rig was taken; it may have no bones
  TArray<SceneBone> bones;      // in the rig's order
  // The bones that the model's own bones stand for, in the model's order, each once.
  TArray<u32> modelBones;
  TArray<SceneMesh> meshes;  // in the model's order
  // Every texture the meshes' materials name, each once, in the order the meshes name them.
  TArray<SceneImage> images;
};
