#pragma once

#include <string>
#include <utility>
#include <vector>

// Seed files for one fuzz target: (file name, bytes), made with the writers of tests/support.
using Seeds = std::vector<std::pair<std::string, std::string>>;

Seeds PackDirectorySeeds();
Seeds ModelSeeds();
Seeds MeshSeeds();
Seeds PaletteSeeds();
Seeds RigNetworkSeeds();
Seeds CatalogueSeeds();
Seeds ActorSeeds();
Seeds ImageSeeds();
Seeds LibraryFoldersSeeds();
