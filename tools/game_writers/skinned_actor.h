#pragma once

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "game_writers/rig_writer.h"

namespace gamewriters {

// A whole skinned actor for export tests and benchmarks: a catalogue with the definition
// "SkinnedMaterial" (draw style "normal", flag Skinned), a model of `meshCount` grids of
// `gridSize` columns and as many rows (or `gridRows`) with normals, UVs and two influences each,
// and its rig.
struct SkinnedActorDesc {
  u32 meshCount = 1;
  u32 gridSize = 3;
  u32 boneCount = 4;      // at most 256: palette slots are bytes
  bool secondUv = false;  // a second UV set at usage index 2, every vertex (0.25, 1.5)
  bool chain = false;     // each bone under the one before; otherwise bone i under (i - 1) / 2
  // Per mesh, its material's texture parameters as (parameter name, texture name); the texture
  // names join the chunk's name table.
  std::vector<std::vector<std::pair<std::string, std::string>>> textures{};
  std::array<f32, 6> bounds{};  // the model's box, minimum then maximum
  u32 gridRows = 0;             // rows of each grid; 0 for gridSize
  // Data as a game stores it rather than a regular grid: positions, normals and UVs moved off the
  // grid by a fixed pseudo-random amount, and one to four influences a vertex over nearby bones
  // (SkinnedActorVertex doesn't describe such a mesh).
  bool varied = false;
  bool semiTransparent = false;  // the definition has the flag SemiTransparent too
};

struct SkinnedActor {
  std::string catalogue;  // materials_3.xml
  std::string model;      // DMOD
  RigLayout rig;          // bones "bone_<i>", the model's bones in the same order
};

SkinnedActor BuildSkinnedActor(const SkinnedActorDesc& desc);

// Vertex v of a mesh lies at grid column v % gridSize and row v / gridSize. Its two bones are
// v % boneCount and (v + 1) % boneCount, with weights 1 and 0 for even v, 128/255 and 127/255 for odd.
struct GridVertex {
  float position[3];
  float uv[2];
  u32 bones[2];
  float weights[2];
};
GridVertex SkinnedActorVertex(const SkinnedActorDesc& desc, u32 mesh, u32 vertex);

// A network holding `rigs` in order, each animation set naming a rig by its id.
RigNetworkLayout NetworkWithSets(std::vector<RigNetworkLayout::Rig> rigs,
                                 const std::vector<std::pair<std::string, u32>>& sets);

}  // namespace gamewriters
