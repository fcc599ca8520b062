#include "game_writers/sample_game.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "app/rig_choice.h"
#include "assets/pack_index.h"
#include "core/hash.h"
#include "fbx/convert_state.h"
#include "fbx/export_fixture.h"
#include "support/fbx_reader.h"
#include "support/temp_dir.h"

namespace {

struct ActorCase {
  const char* adr;
  const char* palette;  // null: the model's own materials apply
  const char* network;  // the rig that the conversion settles on, by network and set; null for none
  const char* set;
  bool asks;  // the rig dialog comes up; it is answered with ChildIdle
};

const ActorCase kActors[] = {
    {"actors\\knight.adr", nullptr, "humanoid", "Idle", false},
    {"actors\\knight_red.adr", "materials\\knight_red.dmat", "humanoid", "Idle", false},
    {"actors\\guard.adr", nullptr, "humanoid", "Walk", false},
    {"actors\\wolf.adr", nullptr, "beast", "Prowl", false},
    {"actors\\golem.adr", nullptr, "humanoid", "Idle", false},
    {"actors\\scarecrow.adr", nullptr, "humanoid", "ChildIdle", true},
    {"actors\\wyrm.adr", nullptr, "beast", "Prowl", false},
    {"actors\\wisp.adr", nullptr, nullptr, nullptr, false},
    {"actors\\barrel.adr", nullptr, nullptr, nullptr, false},
    {"actors\\crate.adr", nullptr, nullptr, nullptr, false},  // the later pack's version
};

class SampleGame : public testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    ASSERT_TRUE(gamewriters::BuildSampleGame(dir.Join("sample"), &error)) << error;
    paths = gamewriters::SampleGameLayout(dir.Join("sample"));
    ASSERT_TRUE(index.Open(paths.assets.c_str()));
    ASSERT_EQ(index.PackCount(), 3u);
    CByteBuffer catalogue;
    ASSERT_TRUE(index.FetchByName("materials_3.xml", catalogue));
    ASSERT_TRUE(definitions.Read(catalogue));
  }
  void TearDown() override { definitions.Destroy(); }

  // One actor's files, read the way a conversion reads them.
  void ReadActor(const char* name, ActorFiles& out) {
    CByteBuffer bytes;
    ASSERT_TRUE(index.FetchByName(name, bytes));
    ASSERT_EQ(ReadActorFiles(out, bytes, index, modelBytes, paletteBytes), ActorFilesFailure::kNone);
  }

  // The rig networks as loading the game reads them: under their pack name without ".mrn".
  void ReadRigs(RigTable& rigs) {
    index.Walk([&](const char* name, const PackEntry* entry) {
      if (!std::string_view(name).ends_with(".mrn")) return true;
      CByteBuffer bytes;
      CStringA key;
      EXPECT_TRUE(PackIndex::FetchEntry(entry, bytes) && IsRigNetwork(bytes)) << name;
      EXPECT_TRUE(key.Assign(std::string(name, std::strlen(name) - 4).c_str()));
      RigNetwork* network = rigs.FindOrInsert(key);
      EXPECT_TRUE(network && Read(*network, bytes)) << name;
      return true;
    });
  }

  const RigSkeleton* RigOf(const RigTable& rigs, const ActorCase& row) {
    if (!row.network) return nullptr;
    CStringA key;
    EXPECT_TRUE(key.Assign(row.network));
    const u32 at = rigs.Find(key);
    return at < rigs.Count() ? FindRig(rigs.ValueAt(at), row.set) : nullptr;
  }

  testsupport::TempDir dir;
  gamewriters::SampleGamePaths paths;
  PackIndex index;
  MaterialDefinitionSet definitions;
  CByteBuffer modelBytes, paletteBytes;
};

// The diffuse texture of a material, as the preview looks for it, or "".
std::string DiffuseTexture(const ModelMaterial& material) {
  for (const char* semantic : {"baseDiffuse", "BaseDiffuse"}) {
    for (const MaterialParameter& p : material.parameters) {
      const bool reference = p.parameterClass == 4 && p.parameterType == 5 && p.dataSize == 4;
      if (p.semanticHash != HashKey(semantic) || !reference) continue;
      for (const MaterialName& name : material.owner->names) {
        if (name.hash == LoadU32LE(p.Data())) return name.text.Text();
      }
    }
  }
  return "";
}

TEST_F(SampleGame, TheDigestLeadsToPacksWhoseEveryFileReads) {
  EXPECT_EQ(gamewriters::ReadFileBytes(paths.digest), paths.game) << "the bare path, no line end";

  std::vector<std::string> actors, networks;
  index.Walk([&](const char* name, const PackEntry*) {
    if (std::string_view(name).ends_with(".adr")) actors.push_back(name);
    if (std::string_view(name).ends_with(".mrn")) networks.push_back(name);
    return true;
  });
  std::vector<std::string> expected;
  for (const ActorCase& row : kActors) expected.push_back(row.adr);
  std::sort(actors.begin(), actors.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(actors, expected);
  RigTable rigs;
  ReadRigs(rigs);
  EXPECT_EQ(rigs.Count(), 2u);

  for (const ActorCase& row : kActors) {
    SCOPED_TRACE(row.adr);
    ActorFiles files;
    ASSERT_NO_FATAL_FAILURE(ReadActor(row.adr, files));
    EXPECT_STREQ(files.actor.paletteName.Text(), row.palette ? row.palette : "");
    ASSERT_EQ(files.Applied().materials.Count(), files.model.meshes.Count()) << "a material for every mesh";
    for (const ModelMaterial& material : files.Applied().materials) {
      const u32 definition = material.definitionHash;
      EXPECT_TRUE(definitions.FindDefinition(definition) && definitions.ChooseInputLayout(definition));
      const std::string texture = DiffuseTexture(material);
      CByteBuffer image;
      ASSERT_TRUE(index.FetchByName(texture.c_str(), image)) << "texture \"" << texture << "\"";
      const std::string magic(reinterpret_cast<const char*>(image.Data()), std::min<u32>(image.Size(), 4));
      EXPECT_EQ(magic, texture.ends_with(".png") ? "\x89PNG" : "DDS ") << texture;
    }
  }
}

TEST_F(SampleGame, EveryActorConvertsWithTheRigItIsMeantToFind) {
  RigTable rigs;
  ReadRigs(rigs);
  for (const ActorCase& row : kActors) {
    SCOPED_TRACE(row.adr);
    ActorFiles files;
    ASSERT_NO_FATAL_FAILURE(ReadActor(row.adr, files));
    exporttest::RigDialog rigDialog;
    rigDialog.pick = "ChildIdle";
    ExportScene scene;
    ConvertOutcome outcome;
    PackIndex noPacks;
    ASSERT_TRUE(BuildActorScene(scene, GameTables{noPacks, definitions, rigs}, row.adr, files.actor, files.model,
                                files.Applied(), rigDialog, outcome));
    const RigSkeleton* rig = RigOf(rigs, row);
    ASSERT_EQ(scene.hasRig, rig != nullptr);
    EXPECT_EQ(rigDialog.shown.size(), row.asks ? 2u : 0u);
    if (rig) {
      EXPECT_EQ(scene.bones[0].name, rig->bones[0].name.Text()) << "the bones are the rig's";
      EXPECT_EQ(scene.modelBones.Count(), files.model.bones.Count()) << "every bone in the rig";
    }
    ConvertState state;
    ASSERT_TRUE(::Setup(state));
    ASSERT_EQ(BuildFbxScene(state, scene), SceneBuildResult::kBuilt);
    const std::string path = dir.Join("actor.fbx");
    ASSERT_TRUE(WriteScene(state.fbxManager.get(), state.fbxScene, path.c_str()));
    testsupport::FbxReadFile fbx;
    std::string error;
    EXPECT_TRUE(testsupport::ReadFbxBinary(gamewriters::ReadFileBytes(path), fbx, error)) << error;
  }
}

}  // namespace
