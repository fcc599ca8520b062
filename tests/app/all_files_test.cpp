// "All files" in the application, on a headless window: every file of the packs in the list and
// the search, the panel's text for a file, and Convert taking the selected files out.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "app/batch_worker.h"
#include "app/file_list.h"
#include "app/file_preview.h"
#include "app_fixture.h"
#include "game_writers/image_writer.h"
#include "game_writers/rig_writer.h"
#include "game_writers/skinned_actor.h"

namespace {

using apptest::App;
using apptest::Installation;

const std::vector<u8> kPixels(2 * 2 * 4, 0x40);

// Two packs: the later copy of "textures\a.png" is the one the index serves.
std::vector<std::vector<gamewriters::PackFileEntry>> Files() {
  const gamewriters::SkinnedActor hero = gamewriters::BuildSkinnedActor({.meshCount = 1, .boneCount = 2});
  const std::string rig = gamewriters::BuildRigNetwork(gamewriters::NetworkWithSets({{7, hero.rig}}, {{"Idle", 7}}));
  return {{{"materials_3.xml", hero.catalogue},
           {"actors\\hero.adr", "<ActorRuntime/>"},
           {"textures\\a.png", "the copy that is not served"},
           {"Textures\\B.dds", "DDS not really"},
           {"hero.mrn", rig}},
          {{"textures\\a.png", gamewriters::BuildPng(2, 2, kPixels)},
           {"..\\..", "a name that leaves nothing"},
           {"actors\\Zed.ADR", "<ActorRuntime/>"}}};
}

class AllFiles : public testing::Test {
 protected:
  void SetUp() override {
    installation.Digest("Marrowgate Studio", "Aldermoor", installation.Game("game", Files()));
    app.Start(installation);
    ASSERT_TRUE(app.state.ready);
  }
  void Toggle(bool on) {
    ASSERT_TRUE(OnAllFilesCheck(app.state, on));
    WaitForWorker(app.state);
  }
  void Search(const char* text) {
    app.window.SetText(kSearchEdit, text);
    SearchRequest(app.state);
    WaitForWorker(app.state);
  }
  i32 Row(const std::string& name) {
    const std::vector<std::string> listed = app.Texts(kFileList);
    for (size_t i = 0; i < listed.size(); ++i) {
      if (listed[i] == name) return i32(i);
    }
    ADD_FAILURE() << name << " is not listed";
    return -1;
  }

  Installation installation;
  App app;
};

TEST_F(AllFiles, TheListAndTheSearchHoldEveryFileOnceWhileOnAndActorsAloneOtherwise) {
  const std::vector<std::string> actors{"actors\\hero.adr", "actors\\Zed.ADR"};
  const std::vector<std::string> everyFile{"..\\..",          "actors\\hero.adr", "actors\\Zed.ADR", "hero.mrn",
                                           "materials_3.xml", "textures\\a.png",  "Textures\\B.dds"};
  EXPECT_EQ(app.Texts(kFileList), actors);
  (void)app.NewLog();

  Toggle(true);
  EXPECT_EQ(app.Texts(kFileList), everyFile);
  Search("TEXTURES");
  EXPECT_EQ(app.Texts(kFileList), (std::vector<std::string>{"textures\\a.png", "Textures\\B.dds"}));
  EXPECT_EQ(app.NewLog(), std::vector<std::string>{"Search = TEXTURES"});
  Toggle(false);
  EXPECT_TRUE(app.Texts(kFileList).empty()) << "the search text still applies, to actors alone";
  EXPECT_TRUE(app.NewLog().empty()) << "the box logs nothing";
  Search("");
  EXPECT_EQ(app.Texts(kFileList), actors);

  // A game loaded with the box on lists every file, and still reads its rigs.
  Toggle(true);
  SelectGame(app.state, u32(app.state.currentGame.load()));
  WaitForWorker(app.state);
  EXPECT_EQ(app.Texts(kFileList), everyFile);
  EXPECT_EQ(app.state.rigs.Count(), 1u);

  // While a worker runs the box changes nothing.
  ASSERT_TRUE(StartWorker(app.state, WorkerKind::List, 0, ""));
  EXPECT_FALSE(OnAllFilesCheck(app.state, false));
  WaitForWorker(app.state);
  EXPECT_TRUE(app.state.allFiles);
}

TEST(DescribePackFile, NameAndSizeAndAnImagesFacts) {
  const std::string png = gamewriters::BuildPng(2, 2, kPixels);
  const std::string dds = gamewriters::BuildDdsWithFormat(8, 4, {0x4, gamewriters::DdsFourCC("DXT5"), 0, {}}, "");
  struct Case {
    const char* name;
    const std::string* image;  // null: not taken for an image
    const char* expected;
  };
  const std::string broken = "not an image";
  const Case cases[] = {
      {"materials_3.xml", nullptr, "Info for materials_3.xml\r\n\r\nFile size: 1234 bytes\r\n"},
      {"a.png", &png, "Info for a.png\r\n\r\nFormat: PNG\r\nSize: 2 x 2\r\nLevels: 1\r\nFile size: 1234 bytes\r\n"},
      {"b.dds", &dds,
       "Info for b.dds\r\n\r\nFormat: DDS, BC3\r\nSize: 8 x 4\r\nLevels: 1\r\nFile size: 1234 bytes\r\n"},
      {"c.tga", &broken, "Info for c.tga\r\n\r\nNot an image that can be read\r\nFile size: 1234 bytes\r\n"},
  };
  for (const Case& c : cases) {
    CByteBuffer bytes;
    if (c.image) {
      ASSERT_TRUE(bytes.SetSize(u32(c.image->size())));
      std::memcpy(bytes.Data(), c.image->data(), c.image->size());
    }
    TStringBufferA<256> text;
    EXPECT_EQ(DescribePackFile(c.name, 1234, c.image ? &bytes : nullptr, text), c.image && c.image != &broken)
        << c.name;
    EXPECT_STREQ(text.Text(), c.expected);
  }
}

struct FolderAnswer : IFolderDialog {
  bool AskFolder(CStringBufferA& path) override {
    ++asked;
    return !folder.empty() && path.Format("%s", folder.c_str()) > 0;
  }
  std::string folder;
  i32 asked = 0;
};

TEST_F(AllFiles, ConvertTakesTheSelectedFilesOutWithALineForEachThatWasntWritten) {
  Toggle(true);
  app.window.SelectItems(kFileList,
                         {Row("textures\\a.png"), Row("Textures\\B.dds"), Row("..\\.."), Row("actors\\hero.adr")});
  (void)app.NewLog();
  FolderAnswer answer;
  OnExtractButton(app.state, answer);  // cancelled: nothing written, nothing logged
  EXPECT_EQ(answer.asked, 1);
  EXPECT_TRUE(app.NewLog().empty());

  answer.folder = installation.dir.Join("out");
  OnExtractButton(app.state, answer);
  WaitForWorker(app.state);
  // The files end in any order on two jobs; the summary comes last.
  std::vector<std::string> log = app.NewLog();
  ASSERT_EQ(log.size(), 3u);
  EXPECT_EQ(log.back(), "Extracted 4 of 4 files to " + answer.folder + ": 3 written, 0 failed, 1 skipped.");
  log.pop_back();
  std::sort(log.begin(), log.end());
  EXPECT_EQ(log, (std::vector<std::string>{"Skipped ..\\..: its name leaves nothing to write",
                                           "Textures\\B.dds: can't be decoded; written as it is stored"}));
  EXPECT_EQ(gamewriters::ReadFileBytes(answer.folder + "/textures/a.png").substr(0, 8),
            std::string("\x89PNG\r\n\x1A\n", 8))
      << "as PNG";
  EXPECT_EQ(gamewriters::ReadFileBytes(answer.folder + "/Textures/B.dds"), "DDS not really");
  EXPECT_EQ(gamewriters::ReadFileBytes(answer.folder + "/actors/hero.adr"), "<ActorRuntime/>");
  const auto bar = app.window.Snapshot(kProgressBar);
  EXPECT_EQ(bar.progressDone, 4u);
  EXPECT_EQ(bar.progressTotal, 4u);
  EXPECT_FALSE(app.window.Snapshot(kCancelButton).visible);
}

}  // namespace
