// Files taken out of the packs: every name, however hostile, lands inside the chosen folder or is
// named as skipped, and images come out as the preview decodes them.
#include "app/extract_files.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <map>

#include "game_writers/image_writer.h"
#include "game_writers/pack_writer.h"
#include "image/image_decode.h"
#include "support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

// Every regular file below `folder`, by its path relative to it, with its bytes.
std::map<std::string, std::string> FilesBelow(const std::string& folder) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file() && !entry.is_symlink()) {
      files[fs::relative(entry.path(), folder).string()] = gamewriters::ReadFileBytes(entry.path().string());
    }
  }
  return files;
}

struct Extraction {
  std::vector<BatchActor> files;
  std::vector<BatchActorResult> results;
  BatchSummary summary;
};

// The packs of `entries` in `game`, extracted below `out`.
Extraction Extract(const std::string& game, const std::vector<gamewriters::PackFileEntry>& entries,
                   const std::string& out, bool imagesAsPng, PackIndex& packs) {
  EXPECT_TRUE(gamewriters::WriteFileBytes(game + "/assets_000.pack",
                                          gamewriters::BuildPack({{gamewriters::PackChunk{entries}}})));
  EXPECT_TRUE(packs.Open(game.c_str()));
  const ExtractSettings settings{.outDir = out, .jobs = 2, .imagesAsPng = imagesAsPng};
  std::vector<bool> asPng;
  Extraction run;
  run.files = ExtractBatch(PackFiles(packs), settings, asPng);
  const std::atomic<bool> stop{false};
  run.summary = RunExtract(run.files, asPng, settings, nullptr, stop, run.results);
  return run;
}

TEST(Extract, EveryHostileNameLandsInsideTheFolderOnceWithItsBytesOrIsSkipped) {
  testsupport::TempDir dir;
  const std::string out = dir.Join("out");
  const std::string outside = dir.Join("outside");
  fs::create_directories(out);
  fs::create_directories(outside);
  // Links that a name would write through: a folder and a file of the output lead outside it.
  fs::create_directory_symlink(outside, out + "/link");
  gamewriters::WriteFileBytes(outside + "/target", "untouched");
  fs::create_symlink(outside + "/target", out + "/linkfile");

  const std::string longPart(300, 'x');
  struct Case {
    std::string name;
    const char* lands;  // where its bytes go below `out`; null: skipped
  };
  const std::vector<Case> cases = {
      {"..\\..\\up1.txt", "up1.txt"},
      {"../../up2.txt", "up2.txt"},
      {"a\\..\\..\\b\\up3.txt", "a/b/up3.txt"},
      {"/abs/file4.txt", "abs/file4.txt"},
      {"C:\\drive\\file5.txt", "drive/file5.txt"},
      {"\\\\server\\share\\file6.txt", "server/share/file6.txt"},
      {".\\dot\\.\\file7.txt", "dot/file7.txt"},
      {"same", "same"},
      {"same\\inner.txt", "same~2/inner.txt"},  // a file already stands where the folder goes
      {"Case.txt", "Case.txt"},
      {"case.txt", "case.txt"},
      {"long\\" + longPart + ".txt", nullptr},  // checked below: cut to fit
      {"ctl\x01\x1f.txt", "ctl__.txt"},
      {"bad\xff\xfe.txt", "bad__.txt"},
      {"ctl\x02\x1e.txt", "ctl__~2.txt"},  // the same once cleaned
      {"\\/\\", nullptr},
      {"", nullptr},
      {"link\\through.txt", nullptr},  // the link is left alone
      {"linkfile", "linkfile"},        // the link itself is replaced, its target untouched
  };
  std::vector<gamewriters::PackFileEntry> entries;
  for (size_t i = 0; i < cases.size(); ++i) entries.push_back({cases[i].name, "bytes of " + std::to_string(i)});
  PackIndex packs;
  const Extraction run = Extract(dir.Join("game"), entries, out, false, packs);

  EXPECT_EQ(FilesBelow(outside), (std::map<std::string, std::string>{{"target", "untouched"}})) << "nothing outside";
  const std::map<std::string, std::string> written = FilesBelow(out);
  size_t placed = 0;
  for (size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE(testing::PrintToString(cases[i].name));
    const auto file =
        std::find_if(run.files.begin(), run.files.end(), [&](const BatchActor& f) { return f.name == cases[i].name; });
    if (file == run.files.end()) {
      EXPECT_TRUE(cases[i].name.empty()) << "only an empty name may be missing from the packs";
      continue;
    }
    const BatchActorResult& result = run.results[size_t(file - run.files.begin())];
    const std::string bytes = "bytes of " + std::to_string(i);
    if (cases[i].name.starts_with("long")) {
      ASSERT_EQ(result.state, BatchState::kWritten);
      EXPECT_LE(fs::path(file->output).filename().string().size(), 255u);
      EXPECT_EQ(written.at(file->output), bytes);
      ++placed;
    } else if (cases[i].lands) {
      ASSERT_EQ(result.state, BatchState::kWritten) << result.line;
      EXPECT_EQ(file->output, cases[i].lands);
      EXPECT_EQ(written.at(cases[i].lands), bytes);
      ++placed;
    } else {
      EXPECT_EQ(result.state, BatchState::kSkipped);
      EXPECT_FALSE(result.line.empty()) << "a skip says why";
    }
  }
  EXPECT_EQ(written.size(), placed) << "nothing else, and no temporary, is left";
  EXPECT_TRUE(fs::is_symlink(out + "/link")) << "a link in the way stays as it was";
}

TEST(Extract, ImagesComeOutAsThePreviewDecodesThemAndADamagedOneAsStored) {
  testsupport::TempDir dir;
  const std::vector<u8> rgba = {255, 0, 0, 255, 0, 255, 0, 128, 0, 0, 255, 0, 9, 8, 7, 6};
  const std::vector<gamewriters::PackFileEntry> entries = {
      {"tex\\a.dds", gamewriters::BuildDds(2, 2, rgba)},
      {"tex\\b.png", gamewriters::BuildPng(2, 2, rgba)},
      {"tex\\c.tga", gamewriters::BuildTga(2, 2, rgba)},
      {"tex\\broken.dds", "DDS but no more"},
      {"tex\\a.png", gamewriters::BuildPng(2, 2, rgba)},  // comes to the same name as a.dds
      {"notes.txt", "plain"},
  };
  PackIndex packs;
  const Extraction run = Extract(dir.Join("game"), entries, dir.Join("out"), true, packs);
  EXPECT_EQ(run.summary.written, entries.size());
  const std::map<std::string, std::string> written = FilesBelow(dir.Join("out"));
  EXPECT_EQ(written.at("notes.txt"), "plain");
  EXPECT_EQ(written.at("tex/broken.dds"), "DDS but no more") << "written as stored";
  for (const char* png : {"tex/a.png", "tex/a~2.png", "tex/b.png", "tex/c.png"}) {
    SCOPED_TRACE(png);
    const std::string bytes = written.at(png);
    DecodedImage image;
    ASSERT_TRUE(DecodeImage(reinterpret_cast<const u8*>(bytes.data()), bytes.size(), image));
    EXPECT_EQ(image.width, 2u);
    EXPECT_EQ(std::vector<u8>(image.pixels.begin(), image.pixels.end()), rgba) << "pixel for pixel";
  }
  const auto broken =
      std::find_if(run.files.begin(), run.files.end(), [](const BatchActor& f) { return f.name == "tex\\broken.dds"; });
  ASSERT_NE(broken, run.files.end());
  EXPECT_EQ(run.results[size_t(broken - run.files.begin())].notes,
            std::vector<std::string>{"can't be decoded; written as it is stored"});
}

TEST(Extract, FilesAreListedOnceEachInTheListsOrderWithTheServedCopy) {
  testsupport::TempDir dir;
  ASSERT_TRUE(gamewriters::WriteFileBytes(
      dir.Join("assets_000.pack"),
      gamewriters::BuildPack({{gamewriters::PackChunk{{{"b.txt", "old"}, {"A.txt", "1"}}},
                               gamewriters::PackChunk{{{"b.txt", "newer"}, {"a.txt", "2"}}}}})));
  PackIndex packs;
  ASSERT_TRUE(packs.Open(dir.Path().c_str()));
  std::vector<std::pair<std::string, u32>> listed;
  for (const ListedEntry& file : PackFiles(packs)) listed.emplace_back(file.name, file.entry->size);
  EXPECT_EQ(listed, (std::vector<std::pair<std::string, u32>>{{"A.txt", 1}, {"a.txt", 1}, {"b.txt", 5}}))
      << "case aside by name, the packs' order between equals, the copy the index serves";
  EXPECT_EQ(PackFiles(packs, "A*").size(), 2u) << "a pattern matches whole names as the search does, case aside";
}

}  // namespace
