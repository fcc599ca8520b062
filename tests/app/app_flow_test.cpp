#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>

#include "app/convert.h"
#include "app/file_list.h"
#include "app/log.h"
#include "app/read_text_file.h"
#include "app/tick_timer.h"
#include "app_fixture.h"
#include "core/hash.h"
#include "game_writers/model_writer.h"
#include "game_writers/skinned_actor.h"
#include "game_writers/xml_writer.h"
#include "support/fbx_reader.h"

namespace {

using apptest::App;
using apptest::Installation;
using gamewriters::PackFileEntry;

std::string Actor(const std::string& model, const std::string& palette, const std::string& network,
                  const std::string& set, bool borrow) {
  gamewriters::ActorXml actor{.fileName = model};
  if (!palette.empty()) actor.paletteName = palette;
  if (!network.empty()) {
    actor.hasAnimationNetwork = true;
    actor.networkFileName = network;
    actor.animSetName = set;
  }
  if (borrow) {
    actor.hasUsage = true;
    actor.borrowSkeleton = "true";
  }
  return gamewriters::BuildActor(actor);
}

// A game of a skinned hero and its variants, two rigs that fit it, a sword and a shield.
std::vector<std::vector<PackFileEntry>> GameFiles() {
  const gamewriters::SkinnedActor hero = gamewriters::BuildSkinnedActor({.meshCount = 2, .boneCount = 3});
  gamewriters::RigLayout spare = hero.rig;
  spare.bones.push_back({.name = "spare"});
  const std::string rig = gamewriters::BuildRigNetwork(gamewriters::NetworkWithSets({{7, hero.rig}}, {{"Idle", 7}}));
  const std::string spareRig = gamewriters::BuildRigNetwork(gamewriters::NetworkWithSets({{8, spare}}, {{"Spare", 8}}));
  gamewriters::PaletteDesc palette;
  palette.materials = {{.definitionHash = HashExact("SkinnedMaterial")},
                       {.definitionHash = HashExact("SkinnedMaterial")}};
  gamewriters::PaletteDesc unknown = palette;
  unknown.materials[1].definitionHash = 1;
  return {{{"materials_3.xml", hero.catalogue},
           {"models\\hero.dmod", hero.model},
           {"actors\\hero.adr", Actor("models\\hero.dmod", "", "rigs\\hero.mrn", "idle", false)},
           {"actors\\A_Sword.adr", Actor("models\\hero.dmod", "palettes\\hero.dmat", "", "", false)},
           {"actors\\Shield.ADR", Actor("models\\hero.dmod", "", "", "", true)}},
          {{"hero.mrn", rig},
           {"palettes\\hero.dmat", gamewriters::BuildPalette(palette)},
           {"palettes\\bad.dmat", gamewriters::BuildPalette(unknown)},
           {"actors\\borrow_one.adr", Actor("models\\hero.dmod", "", "", "", true)},
           {"actors\\no_model.adr", Actor("models\\missing.dmod", "", "", "", false)},
           {"actors\\bad_model.adr", Actor("actors\\hero.adr", "", "", "", false)},
           {"actors\\no_palette.adr", Actor("models\\hero.dmod", "palettes\\none.dmat", "", "", false)},
           {"actors\\bad_palette.adr", Actor("models\\hero.dmod", "actors\\hero.adr", "", "", false)},
           {"actors\\bad_mesh.adr", Actor("models\\hero.dmod", "palettes\\bad.dmat", "", "", false)},
           {"actors\\broken.adr", "<ActorRuntime"},
           {"a.adr.bak", "x"},
           {"X.MRN", "not a rig"}},
          {{"spare.mrn", spareRig}}};
}

struct RigChooser : IRigDialog {
  std::vector<std::string> shown;
  i32 Run(const RigCandidate* candidates, const RigSkeleton*& selected) override {
    for (const RigCandidate* c = candidates; c; c = c->next) shown.push_back(c->name ? c->name : "");
    selected = candidates->next->rig;
    return 1;
  }
};

struct SaveTo : ISaveDialog {
  std::string path;
  bool AskSavePath(CStringBufferA& out) override { return out.Format("%s", path.c_str()) > 0; }
};

TEST(AppFlow, DiscoversLoadsListsSearchesAndConverts) {
  Installation installation;
  installation.Digest("Marrowgate Studio", "Brackenfell Beta", installation.dir.Join("nowhere") + "\n");
  installation.Digest("Quillon Interactive", "Dunmarrow Test", installation.dir.Join("elsewhere"));
  installation.Digest("Marrowgate Studio", "Dunmarrow Test", installation.Game("game", GameFiles()));
  App app;
  app.Start(installation);

  // Folders are shown in the platform's form, with the line break that the digest held.
  EXPECT_EQ(app.NewLog(), (std::vector<std::string>{
                              "Found game \"Brackenfell Beta\" at " + installation.dir.Join("nowhere") + "\n",
                              "Found game \"Dunmarrow Test\" at " + installation.dir.Join("game"),
                              "Initializing game data for Brackenfell Beta",
                              "Loaded assets for Brackenfell Beta",
                              "Failed to read materials_3.xml.",
                          }))
      << "the line break stays in the folder, so no pack is found";
  const auto combo = app.window.Snapshot(kGameCombo);
  ASSERT_EQ(combo.items.size(), 2u);
  EXPECT_EQ(combo.items[0].data, 2);
  EXPECT_EQ(combo.items[1].data, 5);
  EXPECT_EQ(combo.selection, 0);
  EXPECT_FALSE(app.state.ready);

  app.window.SetCurSel(kGameCombo, 1);
  OnGameButton(app.state);
  WaitForWorker(app.state);
  EXPECT_EQ(app.NewLog(), (std::vector<std::string>{"Initializing game data for Dunmarrow Test",
                                                    "Loaded assets for Dunmarrow Test", "Loaded materials_3.xml."}));
  EXPECT_TRUE(app.state.ready);
  EXPECT_EQ(app.state.currentGame, 5);
  EXPECT_EQ(app.Texts(kFileList),
            (std::vector<std::string>{"actors\\A_Sword.adr", "actors\\bad_mesh.adr", "actors\\bad_model.adr",
                                      "actors\\bad_palette.adr", "actors\\borrow_one.adr", "actors\\broken.adr",
                                      "actors\\hero.adr", "actors\\no_model.adr", "actors\\no_palette.adr",
                                      "actors\\Shield.ADR"}));
  EXPECT_EQ(app.state.rigs.Count(), 2u) << "X.MRN is no rig network";
  CStringA key;
  key.Borrow("spare");
  EXPECT_LT(app.state.rigs.Find(key), app.state.rigs.Count());
  for (i32 id : {kFileList, kGameCombo, kConvertButton}) EXPECT_TRUE(app.window.Snapshot(id).enabled);
  EXPECT_FALSE(app.window.Snapshot(kProgressBar).visible);

  app.window.SetText(kSearchEdit, "sWord");
  SearchRequest(app.state);
  WaitForWorker(app.state);
  EXPECT_EQ(app.NewLog(), std::vector<std::string>{"Search = sWord"});
  EXPECT_EQ(app.Texts(kFileList), std::vector<std::string>{"actors\\A_Sword.adr"});
  app.window.SetText(kSearchEdit, "");
  SearchRequest(app.state);
  WaitForWorker(app.state);
  EXPECT_TRUE(app.NewLog().empty());
  EXPECT_EQ(app.Texts(kFileList).size(), 10u);

  // Each actor by name: its log lines, and whether a file was written.
  struct Case {
    const char* actor;
    std::vector<std::string> log;
    bool written;
    std::vector<std::string> asked;  // the rig dialog's names
    u32 bones = 0;
  };
  const Case cases[] = {
      {"actors\\hero.adr", {}, true, {}, 3},
      {"actors\\A_Sword.adr", {}, true, {}, 0},
      {"actors\\borrow_one.adr", {}, true, {"Idle", "Spare"}, 4},
      {"actors\\broken.adr", {"Error parsing \"actors\\broken.adr\"."}, false, {}},
      {"actors\\no_model.adr", {"Error reading \"models\\missing.dmod\"."}, false, {}},
      {"actors\\bad_model.adr", {"Error parsing \"actors\\bad_model.adr\"."}, false, {}},
      {"actors\\no_palette.adr", {"Error reading \"palettes\\none.dmat\"."}, false, {}},
      {"actors\\bad_palette.adr", {"Error parsing \"actors\\hero.adr\"."}, false, {}},
      {"actors\\bad_mesh.adr", {"Failed to convert mesh.\n"}, false, {}},
  };
  const std::vector<std::string> list = app.Texts(kFileList);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.actor);
    app.window.SetCurSel(kFileList, i32(std::find(list.begin(), list.end(), c.actor) - list.begin()));
    SaveTo save;
    save.path = installation.dir.Join("out.fbx");
    std::filesystem::remove(save.path);
    RigChooser rigs;
    Convert(app.state, save, rigs);
    EXPECT_EQ(app.NewLog(), c.log);
    EXPECT_EQ(std::filesystem::exists(save.path), c.written);
    EXPECT_EQ(rigs.shown, c.asked);
    if (!c.written) continue;
    testsupport::FbxReadFile file;
    std::string error;
    ASSERT_TRUE(testsupport::ReadFbxBinary(gamewriters::ReadFileBytes(save.path), file, error)) << error;
    u32 bones = 0;
    for (const auto& object : file.Record("Objects")->children)
      bones += object.name == "Model" && object.properties[2].bytes == "LimbNode";
    EXPECT_EQ(bones, c.bones);
  }
}

}  // namespace

namespace {

TEST(AppFlow, RequestsDuringALoadAreRefusedAndQuittingWaits) {
  Installation installation;
  installation.Digest("Marrowgate Studio", "Aldermoor", installation.Game("game", GameFiles()));
  installation.Digest("Marrowgate Studio", "Dunmarrow", installation.Game("other", {{{"x.adr", ""}}}));
  for (int round = 0; round < 3; ++round) {
    App app;
    InitMainDialog(app.state, app.window, installation.UserFolder().c_str());
    // The load worker runs now; every request that would touch the tables is turned away.
    SelectGame(app.state, 4);
    app.window.SetText(kSearchEdit, "hero");
    EXPECT_FALSE(StartWorker(app.state, WorkerKind::Search, 0, "*hero*"));
    if (round == 2) continue;  // quit during the load: the destructor waits, serving the worker
    WaitForWorker(app.state);
    EXPECT_EQ(app.state.currentGame, 0);
    EXPECT_EQ(app.Texts(kFileList).size(), 10u);
  }
}

TEST(ReadTextFile, WholeFileOrNothing) {
  testsupport::TempDir dir;
  ASSERT_TRUE(gamewriters::WriteFileBytes(dir.Join("empty"), ""));
  ASSERT_TRUE(gamewriters::WriteFileBytes(dir.Join("text"), std::string("a\\b\n\0c", 7)));
  TStringBufferA<8> out;
  EXPECT_TRUE(ReadTextFile(dir.Join("empty").c_str(), out));
  EXPECT_STREQ(out.Text(), "");
  EXPECT_TRUE(ReadTextFile(dir.Join("text").c_str(), out));
  EXPECT_STREQ(out.Text(), "a\\b\n") << "a NUL ends the text";
  EXPECT_FALSE(ReadTextFile(dir.Join("missing").c_str(), out));
  EXPECT_STREQ(out.Text(), "");
}

}  // namespace

namespace {

TEST(AppFlow, LoadFailuresLeaveOneLineAndTheGameSelectableAgain) {
  struct Case {
    const char* game;
    std::vector<std::vector<PackFileEntry>> packs;
    std::string corruptPack;  // raw bytes for assets_000.pack instead
    const char* line;
  };
  const Case cases[] = {
      {"Aldermoor", {}, std::string(40, '\xff'), "Failed to load assets for Aldermoor"},
      {"Aldermoor", {{{"materials_3.xml", "<Object"}, {"a.adr", ""}}}, "", "Failed to parse materials_3.xml."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    Installation installation;
    std::string folder = installation.Game("game", c.packs);
    if (!c.corruptPack.empty()) {
      ASSERT_TRUE(gamewriters::WriteFileBytes(folder + "/Resources/Assets/assets_000.pack", c.corruptPack));
    }
    installation.Digest("Marrowgate Studio", c.game, folder);
    App app;
    app.Start(installation);
    const std::vector<std::string> log = app.NewLog();
    EXPECT_EQ(log.back(), c.line);
    EXPECT_FALSE(app.state.ready);
    OnGameButton(app.state);  // the failed game is not the current one: it loads again
    WaitForWorker(app.state);
    EXPECT_EQ(app.NewLog().back(), c.line);
  }
}

TEST(TickTimer, AtMost120TicksASecondAcrossAWrap) {
  TickTimer timer(UINT32_MAX - 5);
  EXPECT_TRUE(timer.Pass(UINT32_MAX - 5)) << "the first pass ticks";
  EXPECT_FALSE(timer.Pass(UINT32_MAX - 1));
  EXPECT_FALSE(timer.Pass(2)) << "4 + 3 ms across the wrap: still short of 8.33";
  EXPECT_FALSE(timer.Pass(5));
  EXPECT_TRUE(timer.Pass(6)) << "10 ms gathered";
  EXPECT_EQ(timer.WaitMilliseconds(), 8u) << "a tick starts the count again, with that pass's 1 ms in it";
}

}  // namespace
