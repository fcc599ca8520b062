// Writes the seed corpus of the fuzz targets from the test writers: `make_seeds DIR`.
#include <cstdio>
#include <string>
#include <vector>

#include "support/pack_writer.h"
#include "support/temp_dir.h"

using testsupport::PackLayout;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: make_seeds DIR\n");
    return 2;
  }
  const std::string dir = argv[1];
  std::vector<std::pair<std::string, std::string>> seeds;

  seeds.push_back({"single", testsupport::BuildPack(testsupport::SingleChunkPack({{"materials_3.xml", "<x/>"}, {"a.adr", "a"}}))});

  PackLayout chunks;
  chunks.chunks.push_back({.entries = {{.name = "chars\\hero.adr", .data = "hero"}, {.name = "dup", .data = "1"}}});
  chunks.chunks.push_back({});
  chunks.chunks.push_back({.entries = {{.name = "dup", .data = "2"}, {.name = "rigs\\hero.mrn", .data = "rig"}}});
  chunks.placement = testsupport::DataPlacement::AfterEachChunk;
  seeds.push_back({"chunks", testsupport::BuildPack(chunks)});

  PackLayout loop = testsupport::SingleChunkPack({{"a", "1"}});
  loop.chunks.push_back({.entries = {{.name = "b", .data = "2"}}, .nextChunk = 25});
  seeds.push_back({"loop", testsupport::BuildPack(loop)});

  const std::string second = testsupport::BuildPack(testsupport::SingleChunkPack({{"dup", "later"}, {"z", ""}}));
  seeds.push_back({"two_packs", testsupport::BuildPack(chunks) + "@@PACK@@" + second});

  for (const auto& [name, bytes] : seeds) {
    if (!testsupport::WriteFileBytes(dir + "/" + name, bytes)) return 1;
  }
  return 0;
}
