#pragma once

#include <string>

#include "core/types.h"

namespace gamewriters {

// Where BuildSampleGame puts things below `dir`, as absolute paths.
struct SampleGamePaths {
  std::string game;      // the installation folder that the digest names
  std::string assets;    // game/Resources/Assets, holding the packs
  std::string userData;  // stands in for the per-user data folder ($XDG_DATA_HOME)
  std::string digest;    // userData/Marrowgate Studio/Digests/Aldermoor.loc
};

SampleGamePaths SampleGameLayout(const std::string& dir);

// Writes the game "Aldermoor" below `dir`: three packs holding materials_3.xml, two rig networks
// and ten actors with their models, a palette and PNG and DDS textures, and the digest that leads
// to it. Every actor converts; between them they take each way of finding a rig, each kind of
// skin and a static mesh. False, with the reason in `error` if given, when a file can't be written.
bool BuildSampleGame(const std::string& dir, std::string* error);

// The sample game with a fourth pack that holds `copies` copies of each of its actor definitions,
// "batch\\<n>\\<name>.adr", and, per copy, actors that fail: one whose definition can't be read
// from the pack, one that doesn't parse, one whose model is missing, one whose palette is missing,
// and two names that map to one output file ("batch\\<n>\\Twin.adr" and "batch/<n>/Twin.ADR").
bool BuildBatchGame(const std::string& dir, u32 copies, std::string* error);

}  // namespace gamewriters
