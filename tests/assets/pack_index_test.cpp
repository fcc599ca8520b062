#include "assets/pack_index.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "game_writers/pack_writer.h"
#include "support/allocation_failure.h"
#include "support/temp_dir.h"

namespace {

using gamewriters::BuildPack;
using gamewriters::PackLayout;
using gamewriters::SingleChunkPack;

std::string Fetch(const PackIndex& index, const char* name) {
  CByteBuffer bytes;
  if (!index.FetchByName(name, bytes)) return "<failed>";
  return std::string(reinterpret_cast<const char*>(bytes.Data()), bytes.Size());
}

// Walk order, with each entry checked: it lies in an open pack and Find gives it back.
std::vector<std::string> WalkNames(const PackIndex& index) {
  std::vector<std::string> names;
  index.Walk([&](const char* name, const PackEntry* entry) {
    EXPECT_TRUE(entry->file && entry->file->IsOpen());
    EXPECT_EQ(index.Find(name), entry);
    names.push_back(name);
    return true;
  });
  return names;
}

class PackIndexTest : public testing::Test {
 protected:
  bool Write(const std::vector<PackLayout>& packs) { return gamewriters::WritePacks(dir.Path(), packs); }
  bool WriteRaw(u32 number, const std::string& bytes) {
    return gamewriters::WriteFileBytes(dir.Join(gamewriters::PackFileName(number)), bytes);
  }
  bool Open(PackIndex& index) { return index.Open(dir.Path().c_str()); }
  void ExpectFailsEmpty() {
    PackIndex index;
    EXPECT_FALSE(Open(index));
    EXPECT_EQ(index.EntryCount(), 0u);
    EXPECT_EQ(index.PackCount(), 0u) << "every pack closed";
  }

  testsupport::TempDir dir;
};

TEST_F(PackIndexTest, FirstOccurrencePlacesLastOccurrenceDecides) {
  PackLayout first;
  first.chunks.push_back({.entries = {{.name = "a.adr", .data = "a0"}, {.name = "dup", .data = "chunk0"}}});
  first.chunks.push_back({});  // empty chunks are followed
  first.chunks.push_back({.entries = {{.name = "dup", .data = "chunk2"}, {.name = "b.mrn", .data = "b0"}}});
  first.placement = gamewriters::DataPlacement::AfterEachChunk;
  PackLayout second = SingleChunkPack({{"c.adr", "c1"}, {"a.adr", "a1"}, {"a.adr", "a1 again"}});
  second.chunks.push_back({});  // and a last empty one ends the pack
  ASSERT_TRUE(Write({first, second}));
  ASSERT_TRUE(WriteRaw(3, BuildPack(SingleChunkPack({{"past a gap", "3"}}))));

  PackIndex index;
  ASSERT_TRUE(Open(index));
  EXPECT_EQ(index.PackCount(), 2u) << "the missing number 2 ends the series";
  EXPECT_EQ(WalkNames(index), (std::vector<std::string>{"a.adr", "dup", "b.mrn", "c.adr"}));
  EXPECT_EQ(Fetch(index, "a.adr"), "a1 again");
  EXPECT_EQ(Fetch(index, "dup"), "chunk2");
  EXPECT_EQ(Fetch(index, "b.mrn"), "b0");
}

TEST_F(PackIndexTest, FetchAndLookup) {
  PackLayout layout = SingleChunkPack({{"Chars\\Hero.adr", "hero"},
                                       {"empty.bin", ""},
                                       {"past end", "data"},
                                       {"high offset", "x"},
                                       {"odd reserved", "r"}});
  layout.chunks[0].entries[2].dataSize = 1000;
  layout.chunks[0].entries[3].dataOffset = 0x80000000;
  layout.chunks[0].entries[4].reserved = 0xFFFFFFFF;
  ASSERT_TRUE(Write({layout}));
  PackIndex index;
  ASSERT_TRUE(Open(index)) << "bad data locations fail at the fetch, not at Open";
  struct Case {
    const char* name;
    const char* bytes;
  };
  const Case cases[] = {
      {"Chars\\Hero.adr", "hero"}, {"chars\\hero.adr", "<failed>"}, {"Chars/Hero.adr", "<failed>"}, {"empty.bin", ""},
      {"past end", "<failed>"},    {"high offset", "<failed>"},     {"odd reserved", "r"},
  };
  for (const Case& c : cases) EXPECT_EQ(Fetch(index, c.name), c.bytes) << c.name;

  CByteBuffer untouched;
  ASSERT_TRUE(untouched.SetSize(3));
  EXPECT_FALSE(PackIndex::FetchEntry(nullptr, untouched));
  EXPECT_EQ(untouched.Size(), 3u);
}

TEST_F(PackIndexTest, AFolderWithoutPacksOpensEmpty) {
  PackIndex index;
  ASSERT_TRUE(Open(index));
  EXPECT_EQ(index.PackCount(), 0u);
  EXPECT_EQ(Fetch(index, "materials_3.xml"), "<failed>");
}

TEST_F(PackIndexTest, BrokenDirectoriesEmptyTheWholeIndex) {
  // Chunks of one one-byte name take 8 + 16 + 1 = 25 bytes each.
  auto withChunks = [](u32 count, u32 lastNext) {
    PackLayout layout;
    for (u32 i = 0; i < count; ++i) layout.chunks.push_back({.entries = {{.name = std::string(1, char('a' + i))}}});
    layout.chunks.back().nextChunk = lastNext;
    return layout;
  };
  auto withEntry = [](auto change) {
    PackLayout layout = SingleChunkPack({{"a", "1"}});
    change(layout.chunks[0]);
    return layout;
  };
  // Chunks 16 bytes apart whose entries are read from the chunks after them: every chunk is new and
  // every read lies in the file (a last, unchained chunk pads it), yet the directory would be read
  // over and over, for a time that grows with the square of the file's size.
  PackLayout overlapping;
  const u32 records = 4096;
  for (u32 j = 0; j < records; ++j) {
    overlapping.chunks.push_back(
        {.at = 16 * j, .nextChunk = j + 1 < records ? 16 * (j + 1) : 0, .entryCount = records / 2});
  }
  overlapping.chunks.push_back({.at = 16 * records * 2});
  const std::pair<const char*, PackLayout> cases[] = {
      {"chunks whose entries overlap", overlapping},
      {"chain back to a chunk already read", withChunks(3, 25)},
      {"chunk names itself as next", withChunks(2, 25)},
      {"next chunk at 2 GiB", withChunks(1, 0x80000000)},
      {"next chunk past the end", withChunks(1, 100000)},
      {"name longer than the file", withEntry([](auto& c) { c.entries[0].nameLength = 0xFFFFFFF0; })},
      {"name with no room for a NUL", withEntry([](auto& c) { c.entries[0].nameLength = 0xFFFFFFFF; })},
      {"more entries than written", withEntry([](auto& c) { c.entryCount = 1000; })},
  };
  for (const auto& [what, layout] : cases) {
    SCOPED_TRACE(what);
    // A good pack first: the bad one behind it takes it down too.
    ASSERT_TRUE(Write({SingleChunkPack({{"good", "g"}}), layout}));
    ExpectFailsEmpty();
  }
}

TEST_F(PackIndexTest, EveryTruncatedDirectoryFails) {
  PackLayout layout = SingleChunkPack({{"first.adr", "1"}, {"second", "22"}});
  layout.chunks.push_back({.entries = {{.name = "third.mrn", .data = "333"}}});
  const std::string bytes = BuildPack(layout);
  const size_t directoryEnd = bytes.size() - 6;  // the data of the three files follows
  for (size_t cut = 0; cut < directoryEnd; ++cut) {
    SCOPED_TRACE(cut);
    ASSERT_TRUE(WriteRaw(0, bytes.substr(0, cut)));
    ExpectFailsEmpty();
  }
  ASSERT_TRUE(WriteRaw(0, bytes.substr(0, directoryEnd)));
  PackIndex index;
  ASSERT_TRUE(Open(index)) << "the directory alone is whole";
  EXPECT_EQ(index.EntryCount(), 3u);
}

TEST_F(PackIndexTest, RefusedMemoryAtEveryStepFailsCleanly) {
  std::vector<std::pair<std::string, std::string>> files;
  for (int i = 0; i < 20; ++i) files.push_back({"a name long enough for a block " + std::to_string(i), "x"});
  ASSERT_TRUE(Write({SingleChunkPack(files), SingleChunkPack({{"short", "y"}})}));
  for (u64 failAt = 1; failAt < 1000; ++failAt) {
    SCOPED_TRACE(failAt);
    testsupport::ScopedAllocationFailure refuse(failAt);
    {
      PackIndex index;
      const bool opened = Open(index);
      if (!refuse.Failed()) {
        ASSERT_TRUE(opened);
        EXPECT_EQ(index.EntryCount(), 21u);
        return;
      }
      EXPECT_FALSE(opened);
      EXPECT_EQ(index.PackCount(), 0u);
    }
    EXPECT_EQ(refuse.Live(), 0) << "nothing leaks";
  }
  FAIL() << "never succeeded";
}

TEST_F(PackIndexTest, ReopenReusesTheTableAndLargeDirectoriesCrossReadBlocks) {
  ASSERT_TRUE(Write({SingleChunkPack({{"one", "1"}, {"two", "2"}, {"three", "3"}, {"four", "4"}})}));
  PackIndex index;
  ASSERT_TRUE(Open(index));
  const u32 capacity = index.TableCapacity();
  index.Clear();
  EXPECT_EQ(index.PackCount(), 0u);
  EXPECT_EQ(index.TableCapacity(), capacity);

  // Enough entries, and one name longer than a read block, that the directory spans many blocks.
  std::vector<std::pair<std::string, std::string>> files;
  for (int i = 0; i < 30000; ++i) files.push_back({"folder\\file_" + std::to_string(i), std::to_string(i)});
  files.push_back({std::string(300000, 'n'), "long name"});
  testsupport::TempDir other;
  ASSERT_TRUE(gamewriters::WritePacks(other.Path(), {SingleChunkPack(files)}));
  ASSERT_TRUE(index.Open((other.Path() + "//").c_str())) << "separators are normalised";
  ASSERT_EQ(index.EntryCount(), files.size());
  for (size_t i = 0; i < files.size(); i += 997) EXPECT_EQ(Fetch(index, files[i].first.c_str()), files[i].second);
  EXPECT_EQ(Fetch(index, files.back().first.c_str()), "long name");
}

}  // namespace
