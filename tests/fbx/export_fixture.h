#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "app/convert_actor.h"
#include "game_writers/skinned_actor.h"
#include "support/temp_dir.h"

// A skinned actor read from the bytes the test writers make, and a conversion of it run the way
// the Convert command runs one.
namespace exporttest {

inline CByteBuffer Bytes(const std::string& bytes) {
  CByteBuffer buffer;
  EXPECT_TRUE(buffer.SetSize(u32(bytes.size())));
  if (!bytes.empty()) std::memcpy(buffer.Data(), bytes.data(), bytes.size());
  return buffer;
}

struct LoadedActor {
  gamewriters::SkinnedActor files;
  MaterialDefinitionSet definitions;
  ModelFile model;
  ModelMaterials materials;
  RigTable rigs;
  ActorDefinition actor;

  ~LoadedActor() { definitions.Destroy(); }

  // Reads the actor's catalogue and model, and puts its rig under "hero" as the set "Idle" (id 7).
  void Load(const gamewriters::SkinnedActorDesc& desc) {
    files = gamewriters::BuildSkinnedActor(desc);
    ASSERT_TRUE(definitions.Read(Bytes(files.catalogue)));
    ASSERT_TRUE(Read(model, Bytes(files.model), materials));
    AddNetwork("hero", gamewriters::NetworkWithSets({{7, files.rig}}, {{"Idle", 7}}));
    ASSERT_TRUE(actor.animationNetworkName.Assign("anims\\hero.mrn"));
    ASSERT_TRUE(actor.animSetName.Assign("IDLE"));
  }

  void AddNetwork(const char* key, const gamewriters::RigNetworkLayout& layout) {
    CStringA name;
    ASSERT_TRUE(name.Assign(key));
    RigNetwork* network = rigs.FindOrInsert(name);
    ASSERT_TRUE(network);
    ASSERT_TRUE(Read(*network, Bytes(gamewriters::BuildRigNetwork(layout))));
  }
};

struct SaveDialog : ISaveDialog {
  std::string path;  // empty: the user cancels
  int asked = 0;
  bool AskSavePath(CStringBufferA& out) override {
    ++asked;
    if (path.empty()) return false;
    (void)out.Format("%s", path.c_str());
    return true;
  }
};

struct RigDialog : IRigDialog {
  std::string pick;  // the name to select; empty: Cancel
  std::vector<std::string> shown;
  i32 Run(const RigCandidate* candidates, const RigSkeleton*& selected) override {
    for (const RigCandidate* c = candidates; c; c = c->next) {
      shown.push_back(c->name ? c->name : "");
      if (!pick.empty() && pick == shown.back()) selected = c->rig;
    }
    return selected ? 1 : 0;
  }
};

inline FbxCreationTime FixedTime() { return {2026, 11, 23, 12, 34, 56, 789}; }

// The actor converted as the Convert command converts one; false for a failure, true when the
// file was written or the save was cancelled.
inline bool Convert(LoadedActor& loaded, ISaveDialog& save, IRigDialog& rigDialog, ConvertOutcome* result = nullptr) {
  PackIndex noPacks;
  ConvertOutcome outcome;
  ExportActor(GameTables{noPacks, loaded.definitions, loaded.rigs}, "actors\\hero.adr", loaded.actor, loaded.model,
              loaded.materials, {save, rigDialog}, outcome, {.creationTime = FixedTime});
  const bool ok = outcome.result == ConvertResult::kWritten || outcome.result == ConvertResult::kCancelled;
  if (result) *result = std::move(outcome);
  return ok;
}

}  // namespace exporttest
