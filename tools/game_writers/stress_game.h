#pragma once

#include <string>

#include "core/types.h"
#include "game_writers/skinned_actor.h"

namespace gamewriters {

// A game of the size the benchmarks measure: `entries` pack entries over `packs` packs, of which
// `actors` small actor definitions (one or two meshes of a few dozen vertices, skinned to one of
// eight rigs through a rig network of their own) and `largeActors` large ones (four meshes of
// `largeGrid` x `largeRows` vertices with data off the grid and one to four influences a vertex,
// skinned to 128 bones), `rigs` rig networks, the
// catalogue, and texture stubs for the rest, with the digest that leads to it.
struct StressGameDesc {
  u32 packs = 4;
  u32 entries = 200000;
  u32 actors = 20000;
  u32 largeActors = 21;
  u32 largeGrid = 256;
  u32 largeRows = 236;  // 4 x 256 x 236 = 241,664 vertices an actor
  u32 rigs = 2000;
};

// The model of the large actors.
SkinnedActorDesc LargeModel(const StressGameDesc& desc);

// Where it goes below `dir`: the installation in "game", the per-user folder in "data".
bool BuildStressGame(const std::string& dir, const StressGameDesc& desc, std::string* error);

}  // namespace gamewriters
