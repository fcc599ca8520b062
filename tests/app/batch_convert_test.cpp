// Many actors at once over the shared game tables: the files are the single conversion's, whatever
// the number of jobs, and each failure stays with its actor.
#include "app/batch_convert.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "app/batch_worker.h"
#include "app/output_names.h"
#include "app_fixture.h"
#include "export/build_export_scene.h"
#include "game_writers/sample_game.h"

namespace {

using apptest::App;

constexpr u32 kCopies = 24;  // of the ten sample actors and six that fail: 384 actors

FbxCreationTime FixedTime() { return {2026, 11, 24, 8, 0, 0, 0}; }

// Every file below `dir`, by its path relative to it.
std::map<std::string, std::string> Files(const std::string& dir) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(dir)) {
    if (entry.is_regular_file())
      files[std::filesystem::relative(entry.path(), dir).string()] = gamewriters::ReadFileBytes(entry.path());
  }
  return files;
}

struct SaveTo : ISaveDialog {
  std::string path;
  bool AskSavePath(CStringBufferA& out) override { return out.Format("%s", path.c_str()) > 0; }
};

struct ChildIdle : IRigDialog {
  i32 Run(const RigCandidate* candidates, const RigSkeleton*& selected) override {
    for (const RigCandidate* c = candidates; c; c = c->next) {
      if (c->name && std::string(c->name) == "ChildIdle") selected = c->rig;
    }
    return selected ? 1 : 0;
  }
};

// Stops the batch once `after` actors have ended.
struct StopAfter : IBatchObserver {
  explicit StopAfter(u32 count, std::atomic<bool>& flag) : after(count), stop(flag) {}
  void ActorDone(const BatchActor&, const BatchActorResult&, const BatchSummary& sofar) override {
    if (sofar.written + sofar.failed + sofar.skipped >= after) stop = true;
  }
  u32 after;
  std::atomic<bool>& stop;
};

class BatchConvert : public testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    ASSERT_TRUE(gamewriters::BuildBatchGame(dir.Join("game"), kCopies, &error)) << error;
    app.state.createThread = pthread_create;
    InitMainDialog(app.state, app.window, gamewriters::SampleGameLayout(dir.Join("game")).userData.c_str());
    WaitForWorker(app.state);
    ASSERT_TRUE(app.state.ready);
    std::vector<std::string> names;
    for (const ListEntry& item : app.window.Snapshot(kFileList).items) {
      actors.push_back({reinterpret_cast<const PackEntry*>(item.data), item.text, {}});
      names.push_back(item.text);
    }
    const std::vector<std::string> outputs = OutputNames(names, ".fbx");
    for (size_t i = 0; i < actors.size(); ++i) actors[i].output = outputs[i];
  }

  GameTables Tables() { return {app.state.packIndex, app.state.materials, app.state.rigs}; }

  BatchSummary Run(const std::string& out, u32 jobs, const std::string& rig, IBatchObserver* observer = nullptr) {
    BatchSettings settings{
        .outDir = dir.Join(out), .jobs = jobs, .rig = rig, .convert = {.creationTime = FixedTime, .batch = true}};
    return RunBatch(Tables(), actors, settings, observer, stop, results);
  }

  testsupport::TempDir dir;
  App app;
  std::vector<BatchActor> actors;
  std::vector<BatchActorResult> results;
  std::atomic<bool> stop{false};
};

TEST_F(BatchConvert, WritesTheSingleConversionsFilesWhateverTheJobsAndKeepsEachFailure) {
  ASSERT_EQ(actors.size(), 10u + kCopies * 16u);
  const BatchSummary two = Run("two", 2, "ChildIdle");
  EXPECT_EQ(two.written, 10u + kCopies * 12u);
  EXPECT_EQ(two.failed, kCopies * 4u);
  EXPECT_EQ(two.skipped, 0u);

  const std::map<std::string, std::string> files = Files(dir.Join("two"));
  EXPECT_EQ(files.size(), two.written) << "one file per written actor, and nothing else";
  for (size_t i = 0; i < actors.size(); ++i) {
    const BatchActor& actor = actors[i];
    SCOPED_TRACE(actor.name);
    const std::string leaf = actor.name.substr(actor.name.find_last_of("\\/") + 1);
    const std::map<std::string, std::string> failures = {
        {"unreadable.adr", "Error reading \"" + actor.name + "\"."},
        {"broken.adr", "Error parsing \"" + actor.name + "\"."},
        {"no_model.adr", "Error reading \"models\\none.dmod\"."},
        {"no_palette.adr", "Error reading \"none.dmat\"."},
    };
    if (const auto failure = failures.find(leaf); failure != failures.end()) {
      EXPECT_EQ(results[i].state, BatchState::kFailed);
      EXPECT_EQ(results[i].line, failure->second);
      continue;
    }
    ASSERT_EQ(results[i].state, BatchState::kWritten) << results[i].line;
    SaveTo single;
    single.path = dir.Join("single.fbx");
    ChildIdle rig;
    ConvertOutcome outcome;
    ConvertActor(Tables(), *actor.entry, actor.name.c_str(), {single, rig}, outcome,
                 {.creationTime = FixedTime, .batch = true});
    ASSERT_TRUE(outcome.Written());
    const auto file = files.find(actor.output);
    ASSERT_NE(file, files.end()) << actor.output;
    EXPECT_TRUE(file->second == gamewriters::ReadFileBytes(single.path))
        << "the batch's file differs from the single conversion's";
  }

  Run("one", 1, "ChildIdle");
  EXPECT_TRUE(Files(dir.Join("one")) == files) << "--jobs 1 and --jobs 2 write the same files";
}

TEST_F(BatchConvert, EachTextureIsDecodedOncePerBatchWhateverTheFormatAndEveryActorGetsItsOwnCopy) {
  for (const ExportFormat format : {ExportFormat::kFbx, ExportFormat::kGlb}) {
    const bool glb = format == ExportFormat::kGlb;
    SCOPED_TRACE(glb ? "glb" : "fbx");
    TextureStore store(false);
    const std::string out = glb ? "textured_glb" : "textured";
    BatchSettings settings{
        .outDir = dir.Join(out),
        .jobs = 2,
        .rig = "ChildIdle",
        .convert = {
            .creationTime = FixedTime, .batch = true, .textures = true, .textureStore = &store, .format = format}};
    const BatchSummary summary = RunBatch(Tables(), actors, settings, nullptr, stop, results);
    EXPECT_EQ(summary.written, 10u + kCopies * 12u);
    // The sample game's actors name 13 images between them, each the diffuse texture of some mesh;
    // the copies name the same ones.
    EXPECT_EQ(store.DecodeCount(), 13u);
    for (size_t i = 0; i < actors.size(); ++i) {
      if (results[i].state != BatchState::kWritten) continue;
      EXPECT_TRUE(results[i].notes.empty()) << actors[i].name;
      const std::string stem = dir.Join(out + "/" + actors[i].output.substr(0, actors[i].output.size() - 4));
      EXPECT_EQ(std::filesystem::is_directory(stem + ".fbm"), !glb) << stem;
    }
  }
}

TEST_F(BatchConvert, AnUnansweredRigQuestionSkipsTheActorWithItsChoicesBeforeDecodingAnything) {
  const u64 decoded = DecodedMeshCount();
  std::erase_if(actors, [](const BatchActor& actor) { return !actor.name.ends_with("scarecrow.adr"); });
  results.clear();
  const BatchSummary summary = Run("out", 2, "");
  EXPECT_EQ(summary.skipped, kCopies + 1) << "every scarecrow";
  EXPECT_EQ(DecodedMeshCount(), decoded) << "a skipped actor costs no decoding";
  for (size_t i = 0; i < actors.size(); ++i) {
    if (!actors[i].name.ends_with("scarecrow.adr")) continue;
    EXPECT_EQ(results[i].state, BatchState::kSkipped);
    EXPECT_EQ(results[i].line, "several rigs fit (Idle, ChildIdle)");
    EXPECT_FALSE(std::filesystem::exists(dir.Join("out/" + actors[i].output)));
  }
}

TEST_F(BatchConvert, AStopLetsTheConversionsUnderWayEndWholeAndStartsNoOther) {
  StopAfter observer(20, stop);
  const BatchSummary summary = Run("out", 2, "ChildIdle", &observer);
  const u32 ended = summary.written + summary.failed + summary.skipped;
  EXPECT_GE(ended, 20u);
  EXPECT_LE(ended, 21u) << "at most the other job's conversion ends after the stop";
  EXPECT_EQ(summary.notStarted, actors.size() - ended);
  for (const auto& [path, bytes] : Files(dir.Join("out"))) {
    EXPECT_EQ(path.find(".tmp"), std::string::npos) << "no temporary is left";
    EXPECT_EQ(bytes.substr(0, 18), "Kaydara FBX Binary") << path;
  }
}

struct Answers : ISaveDialog, IRigDialog, IFolderDialog {
  bool AskSavePath(CStringBufferA&) override { return ++saves, false; }
  i32 Run(const RigCandidate*, const RigSkeleton*&) override { return 0; }
  bool AskFolder(CStringBufferA& path) override { return ++folders, path.Format("%s", folder.c_str()) > 0; }
  std::string folder;
  int saves = 0, folders = 0;
};

TEST_F(BatchConvert, TheWindowConvertsSeveralSelectedActorsOnAWorkerAndOneAsBefore) {
  std::vector<i32> rows;
  const std::vector<ListEntry> items = app.window.Snapshot(kFileList).items;
  for (const char* name : {"actors\\crate.adr", "batch\\0\\broken.adr", "actors\\barrel.adr"}) {
    for (size_t i = 0; i < items.size(); ++i) {
      if (items[i].text == name) rows.push_back(i32(i));
    }
  }
  ASSERT_EQ(rows.size(), 3u);
  app.window.SelectItems(kFileList, rows);
  (void)app.NewLog();
  Answers answers;
  answers.folder = dir.Join("window");
  OnConvertButton(app.state, answers, answers, answers);
  WaitForWorker(app.state);
  EXPECT_EQ(answers.folders, 1);
  EXPECT_EQ(answers.saves, 0);
  EXPECT_EQ(app.NewLog(), (std::vector<std::string>{
                              "Failed batch\\0\\broken.adr: Error parsing \"batch\\0\\broken.adr\".",
                              "Converted 3 of 3 actors to " + answers.folder + ": 2 written, 1 failed, 0 skipped.",
                          }));
  EXPECT_TRUE(std::filesystem::exists(answers.folder + "/actors/barrel.fbx"));
  EXPECT_TRUE(std::filesystem::exists(answers.folder + "/actors/crate.fbx"));
  const auto bar = app.window.Snapshot(kProgressBar);
  EXPECT_EQ(bar.progressDone, 3u);
  EXPECT_EQ(bar.progressTotal, 3u);
  EXPECT_FALSE(app.window.Snapshot(kCancelButton).visible) << "Cancel shows only while a batch runs";

  app.window.SelectItems(kFileList, {rows[0]});
  OnConvertButton(app.state, answers, answers, answers);
  EXPECT_EQ(answers.saves, 1) << "one actor: the save dialog, as Convert always asked";
  EXPECT_EQ(answers.folders, 1);
}

TEST(OutputNames, FoldersFromTheNameSafeComponentsAndNoSharedFile) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"actors\\knight.adr", "actors/knight.fbx"},
      {"actors/knight.ADR", "actors/knight~2.fbx"},  // the same file as the one before
      {"\\\\lead\\\\doubled//slashes.adr", "lead/doubled/slashes.fbx"},
      {"..\\up\\.\\..x.adr", "_../up/_./_..x.fbx"},
      {"tab\there.adr", "tab_here.fbx"},
      {"no_extension", "no_extension.fbx"},
      {".adr", "_.adr.fbx"},
      {"actors\\knight~2.adr", "actors/knight~2~2.fbx"},
      {std::string(300, 'a') + ".adr", std::string(200, 'a') + ".fbx"},
      {"\xC3\xA9" + std::string(199, 'b') + ".adr", "\xC3\xA9" + std::string(198, 'b') + ".fbx"},
  };
  std::vector<std::string> names;
  for (const auto& c : cases) names.push_back(c.first);
  const std::vector<std::string> paths = OutputNames(names, ".fbx");
  ASSERT_EQ(paths.size(), cases.size());
  for (size_t i = 0; i < cases.size(); ++i) EXPECT_EQ(paths[i], cases[i].second) << cases[i].first;
}

}  // namespace
