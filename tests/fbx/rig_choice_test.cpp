#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/rig_choice.h"
#include "core/hash.h"
#include "export/scene_skeleton.h"
#include "export_fixture.h"
#include "fbx/sdk/fbx_skeleton.h"
#include "fbx/setup_rig.h"

namespace {

using exporttest::LoadedActor;
using gamewriters::NetworkWithSets;
using gamewriters::RigLayout;

RigLayout Rig(const std::vector<std::string>& names) {
  RigLayout rig;
  for (const std::string& name : names) rig.bones.push_back({.name = name});
  return rig;
}

// The model of the skinned actor has the bones bone_0 and bone_1.
struct RigChoice : testing::Test {
  LoadedActor loaded;
  exporttest::RigDialog dialog;

  void SetUp() override {
    loaded.files = gamewriters::BuildSkinnedActor({.boneCount = 2});
    ASSERT_TRUE(Read(loaded.model, exporttest::Bytes(loaded.files.model), loaded.materials));
  }
  // The rig that the scene settles on: its first bone's name, or "" for none.
  std::string Chosen() {
    ExportScene scene;
    TArray<u32> modelToRig;
    EXPECT_TRUE(
        BuildSceneSkeleton(scene, loaded.model, PickRig(loaded.actor, loaded.model, loaded.rigs, dialog), modelToRig));
    ConvertState state;
    EXPECT_TRUE(::Setup(state));
    EXPECT_TRUE(SetupRig(state, scene));
    EXPECT_EQ(state.fbxScene->GetPoseCount(), scene.hasRig ? 1u : 0u) << "no pose without a rig";
    return scene.hasRig ? scene.bones[0].name : "";
  }
};

TEST_F(RigChoice, BorrowedSkeletonsAskOnlyWhenSeveralFit) {
  loaded.actor.borrowSkeleton = true;
  loaded.AddNetwork("short", NetworkWithSets({{1, Rig({"lacks", "bone_0"})}}, {{"Short", 1}}));
  EXPECT_EQ(Chosen(), "") << "a rig that lacks a model bone doesn't fit";
  loaded.AddNetwork("wide", NetworkWithSets({{2, Rig({"wide", "bone_1", "bone_0", "extra"})}}, {{"Wide", 2}}));
  EXPECT_EQ(Chosen(), "wide") << "one rig with more bones fits, without a question";
  EXPECT_TRUE(dialog.shown.empty());
  loaded.AddNetwork(
      "pair", NetworkWithSets({{3, Rig({"unnamed", "bone_0", "bone_1"})}, {4, Rig({"named", "bone_1", "bone_0"})}},
                              {{"Walk", 4}}));
  dialog.pick = "Walk";
  EXPECT_EQ(Chosen(), "named");
  EXPECT_EQ(dialog.shown, (std::vector<std::string>{"Wide", "", "Walk"})) << "table order, a rig without a set unnamed";
  dialog.pick.clear();
  EXPECT_EQ(Chosen(), "") << "cancel: no rig, no failure";
}

TEST_F(RigChoice, TheActorsNetworkWinsWithoutAQuestion) {
  loaded.actor.borrowSkeleton = true;
  loaded.AddNetwork("other", NetworkWithSets({{1, Rig({"other", "bone_0", "bone_1"})}}, {}));
  loaded.AddNetwork("mine", NetworkWithSets({{5, Rig({"lacks"})}, {6, Rig({"mine", "bone_0", "bone_1"})}},
                                            {{"run", 5}, {"Idle", 6}}));
  ASSERT_TRUE(loaded.actor.animationNetworkName.Assign("anims/mine.mrn"));
  ASSERT_TRUE(loaded.actor.animSetName.Assign("IDLE"));
  EXPECT_EQ(Chosen(), "mine");
  ASSERT_TRUE(loaded.actor.animSetName.Assign("run"));
  EXPECT_EQ(Chosen(), "lacks") << "a named rig is taken even if it lacks bones";
  ASSERT_TRUE(loaded.actor.animSetName.Assign("swim"));
  EXPECT_EQ(Chosen(), "") << "an unknown set: no rig, and no borrowing either";
  ASSERT_TRUE(loaded.actor.animationNetworkName.Assign("anims/missing.mrn"));
  ASSERT_TRUE(loaded.actor.animSetName.Assign("Idle"));
  EXPECT_EQ(Chosen(), "");
  EXPECT_TRUE(dialog.shown.empty());
}

TEST_F(RigChoice, BonesHangAsTheRigSaysAndTwoClaimsOnOneBoneFail) {
  loaded.AddNetwork("hero", NetworkWithSets({{7, Rig({"bone_1", "top", "bone_0"})}}, {{"Idle", 7}}));
  RigNetwork& network = loaded.rigs.ValueAt(0);
  network.rigs[0].bones[0].parent = 2;  // a parent after its child
  ExportScene scene;
  TArray<u32> modelToRig;
  ASSERT_TRUE(BuildSceneSkeleton(scene, loaded.model, &network.rigs[0], modelToRig));
  ConvertState state;
  ASSERT_TRUE(::Setup(state));
  ASSERT_TRUE(SetupRig(state, scene));
  ASSERT_EQ(state.rootNode->GetChildCount(), 2u) << "two top-level bones under the root";
  EXPECT_STREQ(state.rootNode->GetChild(0)->GetName(), "top");
  EXPECT_EQ(state.boneNodes[0]->GetParent(), state.boneNodes[2]);
  EXPECT_EQ(std::vector<u32>(modelToRig.begin(), modelToRig.end()), (std::vector<u32>{2, 0}));
  EXPECT_EQ(std::vector<u32>(scene.modelBones.begin(), scene.modelBones.end()), (std::vector<u32>{2, 0}));

  // A bone whose name hashes as bone_0's in any case claims it a second time.
  network.rigs[0].bones[1].name = network.rigs[0].bones[2].name;
  ASSERT_TRUE(network.rigs[0].bones[1].name.Assign("BONE_0"));
  ASSERT_EQ(HashNameWide("BONE_0"), HashNameWide("bone_0"));
  ExportScene clash;
  EXPECT_FALSE(BuildSceneSkeleton(clash, loaded.model, &network.rigs[0], modelToRig));
}

TEST(RigMatches, AModelWithoutBones) {
  ModelFile none;
  RigSkeleton empty;
  EXPECT_TRUE(RigMatches(none, empty)) << "no bones on either side";
  RigNetwork network;
  ASSERT_TRUE(Read(network, exporttest::Bytes(gamewriters::BuildRigNetwork(NetworkWithSets({{1, Rig({"a"})}}, {})))));
  EXPECT_TRUE(RigMatches(none, network.rigs[0])) << "nothing of the model is missing";
  EXPECT_EQ(FindRig(network, "a"), nullptr) << "no sets";
}

}  // namespace
