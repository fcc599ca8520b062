#include "game_writers/stress_game.h"

#include <cstdio>
#include <vector>

#include "game_writers/file_bytes.h"
#include "game_writers/pack_writer.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/xml_writer.h"

namespace gamewriters {

namespace {

constexpr u32 kSmallModels = 8;
constexpr u32 kChunkEntries = 1000;

std::string Name(const char* format, u32 a, u32 b = 0) {
  char name[96];
  std::snprintf(name, sizeof(name), format, a, b);
  return name;
}

// Small model n: 1 + n % 2 meshes of (4 + n) squared vertices, 2 + n bones.
SkinnedActorDesc SmallModel(u32 n) { return {.meshCount = 1 + n % 2, .gridSize = 4 + n, .boneCount = 2 + n}; }

}  // namespace

SkinnedActorDesc LargeModel(const StressGameDesc& desc) {
  return {.meshCount = 4, .gridSize = desc.largeGrid, .boneCount = 128, .gridRows = desc.largeRows, .varied = true};
}

bool BuildStressGame(const std::string& dir, const StressGameDesc& desc, std::string* error) {
  std::vector<SkinnedActor> small;
  for (u32 n = 0; n < kSmallModels; ++n) small.push_back(BuildSkinnedActor(SmallModel(n)));
  const SkinnedActor large = BuildSkinnedActor(LargeModel(desc));
  std::vector<PackFileEntry> fixed = {
      {"materials_3.xml", large.catalogue},
      {"models\\giant.dmod", large.model},
      {"rigs\\giant.mrn", BuildRigNetwork(NetworkWithSets({{7, large.rig}}, {{"Idle", 7}}))}};
  for (u32 n = 0; n < kSmallModels; ++n) fixed.push_back({Name("models\\small_%u.dmod", n), small[n].model});

  std::vector<PackLayout> packs(desc.packs);
  u32 actors = 0, largeActors = 0, rigs = 0;
  for (u32 i = 0; i < desc.entries; ++i) {
    PackFileEntry entry;
    if (i < fixed.size()) {
      entry = fixed[i];
    } else if (largeActors < desc.largeActors && i % 997 == 3) {
      ActorXml actor{.fileName = "models\\giant.dmod",
                     .hasAnimationNetwork = true,
                     .networkFileName = "rigs\\giant.mrn",
                     .animSetName = "Idle"};
      entry = {Name("actors\\large\\giant_%02u.adr", largeActors++), BuildActor(actor)};
    } else if (actors < desc.actors && i % 9 == 0) {
      // The actor's rig network is the one that carries its model's rig.
      const u32 model = actors % kSmallModels;
      const u32 network = (actors % (desc.rigs ? desc.rigs : 1)) / kSmallModels * kSmallModels + model;
      ActorXml actor{.fileName = Name("models\\small_%u.dmod", model),
                     .hasAnimationNetwork = true,
                     .networkFileName = Name("rig_%06u.mrn", network),
                     .animSetName = "Idle"};
      entry = {Name("actors\\group_%u\\actor_%06u.adr", i % 97, i), BuildActor(actor)};
      ++actors;
    } else if (rigs < desc.rigs && i % 50 == 1) {
      entry = {Name("rig_%06u.mrn", rigs),
               BuildRigNetwork(NetworkWithSets({{7, small[rigs % kSmallModels].rig}}, {{"Idle", 7}}))};
      ++rigs;
    } else {
      entry = {Name("textures\\set_%u\\texture_%06u.dds", i % 131, i), "DDS "};
    }
    auto& chunks = packs[i % desc.packs].chunks;
    if (chunks.empty() || chunks.back().entries.size() == kChunkEntries) chunks.emplace_back();
    chunks.back().entries.push_back(std::move(entry));
  }
  for (u32 p = 0; p < desc.packs; ++p) {
    const std::string file = dir + "/game/Resources/Assets/" + PackFileName(p);
    if (!WriteFileBytes(file, BuildPack(packs[p]))) {
      if (error) *error = "cannot write " + file;
      return false;
    }
  }
  if (WriteFileBytes(dir + "/data/Marrowgate Studio/Digests/Aldermoor.loc", dir + "/game")) return true;
  if (error) *error = "cannot write the digest below " + dir;
  return false;
}

}  // namespace gamewriters
