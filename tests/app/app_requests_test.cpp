// Requests that must be refused whole, and start-up paths that end early: each leaves the program
// usable with nothing half done.
#include <gtest/gtest.h>

#include <cerrno>

#include "app/convert.h"
#include "app/file_list.h"
#include "app_fixture.h"

namespace {

using apptest::App;
using apptest::Installation;

struct NoQuestions : ISaveDialog, IRigDialog {
  bool AskSavePath(CStringBufferA&) override {
    ++asked;
    return false;
  }
  i32 Run(const RigCandidate*, const RigSkeleton*&) override {
    ++asked;
    return 0;
  }
  int asked = 0;
};

int RefuseThread(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*) { return EAGAIN; }

std::vector<std::vector<gamewriters::PackFileEntry>> SmallGame() {
  return {{{"materials_3.xml", "<Object class=\"MaterialDefinitionCollection\"/>"},
           {"actors\\a.adr", ""},
           {"actors\\b.adr", ""}}};
}

TEST(AppRequests, WithoutABoundWindowEveryRequestDoesNothing) {
  // What discovery leaves when the per-user folder can't be found: the window never bound.
  App app;
  NoQuestions questions;
  SearchRequest(app.state);
  OnGameButton(app.state);
  OnFileSelected(app.state);
  Convert(app.state, questions, questions);
  SelectGame(app.state, 0);
  EXPECT_FALSE(app.state.workerBusy);
  EXPECT_EQ(questions.asked, 0);
  EXPECT_TRUE(app.Texts(kLogList).empty());
}

TEST(AppRequests, ARefusedThreadLeavesTheControlsEnabledAndTheNextRequestWorks) {
  Installation installation;
  installation.Digest("Marrowgate Studio", "Aldermoor", installation.Game("game", SmallGame()));
  App app;
  app.state.createThread = RefuseThread;
  app.Start(installation);
  EXPECT_EQ(app.NewLog(), std::vector<std::string>{"Found game \"Aldermoor\" at " + installation.dir.Join("game")});
  EXPECT_FALSE(app.state.workerBusy);
  for (i32 id : {kFileList, kRenderControl, kSearchEdit, kGameCombo, kConvertButton, kSearchButton, kGameButton}) {
    EXPECT_TRUE(app.window.Snapshot(id).enabled) << id;
  }
  app.state.createThread = pthread_create;
  OnGameButton(app.state);
  WaitForWorker(app.state);
  EXPECT_TRUE(app.state.ready);
  EXPECT_EQ(app.Texts(kFileList).size(), 2u);
}

TEST(AppRequests, ARequestWhileAWorkerEnablesTheControlsIsRefusedWhole) {
  Installation installation;
  installation.Digest("Marrowgate Studio", "Aldermoor", installation.Game("game", SmallGame()));
  App app;
  app.Start(installation);
  (void)app.NewLog();
  app.window.SetText(kSearchEdit, "a.adr");
  SearchRequest(app.state);
  (void)app.NewLog();
  // Serve the worker's calls one at a time until it has enabled the search edit again, and stop
  // there: the worker still runs, waiting on the next control.
  bool disabled = false;
  for (int wait = 0; !(disabled && app.window.Snapshot(kSearchEdit).enabled); ++wait) {
    ASSERT_LT(wait, 1000) << "the worker never enabled the search edit";
    app.window.ProcessPending(50);  // one call at a time: the worker waits on each
    disabled = disabled || !app.window.Snapshot(kSearchEdit).enabled;
  }
  ASSERT_TRUE(app.state.workerBusy);
  app.window.SetText(kSearchEdit, "b");
  const std::vector<std::string> listed = app.Texts(kFileList);
  SearchRequest(app.state);
  app.window.SetText(kSearchEdit, "");
  SearchRequest(app.state);
  OnGameButton(app.state);
  EXPECT_TRUE(app.NewLog().empty());
  EXPECT_EQ(app.Texts(kFileList), listed);
  WaitForWorker(app.state);
  EXPECT_EQ(app.Texts(kFileList), std::vector<std::string>{"actors\\a.adr"});
}

TEST(AppRequests, AFullGameSelectorEndsDiscoveryWithoutOpeningAGame) {
  Installation installation;
  installation.Digest("Marrowgate Studio", "Aldermoor", installation.Game("game", SmallGame()));
  installation.Digest("Marrowgate Studio", "Dunmarrow", installation.Game("other", SmallGame()));
  App app;
  app.window.SetListLimit(1);
  app.Start(installation);  // the log holds one line too, so the load's lines would not show
  EXPECT_EQ(app.window.Snapshot(kGameCombo).items.size(), 1u);
  EXPECT_EQ(app.window.Snapshot(kGameCombo).selection, kListError);
  EXPECT_EQ(app.state.currentGame, -1);
  EXPECT_FALSE(app.state.workerBusy);
  EXPECT_STREQ(app.window.Snapshot(kStatusText).text.c_str(), "") << "no worker was started";
}

}  // namespace
