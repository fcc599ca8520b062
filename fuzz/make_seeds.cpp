// Writes the seed corpus of one fuzz target: `make_seeds TARGET DIR`.
#include <cstdio>
#include <cstring>

#include "seeds.h"
#include "support/temp_dir.h"

namespace {

struct Target {
  const char* name;
  Seeds (*make)();
};

constexpr Target kTargets[] = {
    {"pack_directory", &PackDirectorySeeds},
    {"model", &ModelSeeds},
    {"mesh", &MeshSeeds},
    {"palette", &PaletteSeeds},
    {"rig_network", &RigNetworkSeeds},
    {"catalogue", &CatalogueSeeds},
    {"actor", &ActorSeeds},
    {"image", &ImageSeeds},
    {"library_folders", &LibraryFoldersSeeds},
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: make_seeds TARGET DIR\n");
    return 2;
  }
  for (const Target& target : kTargets) {
    if (std::strcmp(target.name, argv[1]) != 0) continue;
    for (const auto& [name, bytes] : target.make()) {
      if (!gamewriters::WriteFileBytes(std::string(argv[2]) + "/" + name, bytes)) return 1;
    }
    return 0;
  }
  std::fprintf(stderr, "make_seeds: no target %s\n", argv[1]);
  return 2;
}
