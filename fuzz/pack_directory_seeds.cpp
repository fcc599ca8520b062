#include "game_writers/pack_writer.h"
#include "seeds.h"

using gamewriters::BuildPack;
using gamewriters::PackLayout;
using gamewriters::SingleChunkPack;

Seeds PackDirectorySeeds() {
  Seeds seeds;
  seeds.push_back({"single", BuildPack(SingleChunkPack({{"materials_3.xml", "<x/>"}, {"a.adr", "a"}}))});

  PackLayout chunks;
  chunks.chunks.push_back({.entries = {{.name = "chars\\hero.adr", .data = "hero"}, {.name = "dup", .data = "1"}}});
  chunks.chunks.push_back({});
  chunks.chunks.push_back({.entries = {{.name = "dup", .data = "2"}, {.name = "rigs\\hero.mrn", .data = "rig"}}});
  chunks.placement = gamewriters::DataPlacement::AfterEachChunk;
  seeds.push_back({"chunks", BuildPack(chunks)});

  PackLayout loop = SingleChunkPack({{"a", "1"}});
  loop.chunks.push_back({.entries = {{.name = "b", .data = "2"}}, .nextChunk = 25});
  seeds.push_back({"loop", BuildPack(loop)});

  // The fuzz target splits its input into packs at this separator.
  const std::string second = BuildPack(SingleChunkPack({{"dup", "later"}, {"z", ""}}));
  seeds.push_back({"two_packs", BuildPack(chunks) + "@@PACK@@" + second});
  return seeds;
}
