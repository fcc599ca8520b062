#pragma once

#include <string>

namespace testsupport {

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

}  // namespace testsupport
