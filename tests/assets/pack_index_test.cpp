#include "assets/pack_index.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "support/allocation_failure.h"
#include "support/pack_writer.h"
#include "support/temp_dir.h"

namespace {

using testsupport::BuildPack;
using testsupport::PackChunk;
using testsupport::PackFileEntry;
using testsupport::PackLayout;
using testsupport::SingleChunkPack;
using testsupport::TempDir;

std::string Fetch(const PackIndex& index, const char* name) {
  CByteBuffer bytes;
  if (!index.FetchByName(name, bytes)) return "<failed>";
  return std::string(reinterpret_cast<const char*>(bytes.Data()), bytes.Size());
}

std::vector<std::string> WalkNames(const PackIndex& index) {
  std::vector<std::string> names;
  index.Walk([&](const char* name, const PackEntry*) {
    names.push_back(name);
    return true;
  });
  return names;
}

// Every successful Open leaves entries that point into open packs, in range of the index.
void CheckIndex(const PackIndex& index) {
  for (u32 i = 0; i < index.EntryCount(); ++i) {
    ASSERT_NE(index.EntryAt(i)->file, nullptr);
    EXPECT_TRUE(index.EntryAt(i)->file->IsOpen());
    EXPECT_EQ(index.Find(index.NameAt(i)), index.EntryAt(i));
  }
}

void ExpectEmptyAndClosed(const PackIndex& index) {
  EXPECT_EQ(index.EntryCount(), 0u);
  EXPECT_EQ(index.PackCount(), 0u);
}

class PackIndexTest : public testing::Test {
 protected:
  bool Write(const std::vector<PackLayout>& packs) { return testsupport::WritePacks(dir.Path(), packs); }
  bool WriteRaw(u32 number, const std::string& bytes) {
    return testsupport::WriteFileBytes(dir.Join(testsupport::PackFileName(number)), bytes);
  }
  bool Open(PackIndex& index) { return index.Open(dir.Path().c_str()); }

  TempDir dir;
};

TEST_F(PackIndexTest, FirstOccurrencePlacesLastOccurrenceDecides) {
  PackLayout first;
  first.chunks.push_back({.entries = {{.name = "a.adr", .data = "a0"}, {.name = "dup", .data = "chunk0"}}});
  first.chunks.push_back({.entries = {{.name = "dup", .data = "chunk1"}, {.name = "b.mrn", .data = "b0"}}});
  first.placement = testsupport::DataPlacement::AfterEachChunk;
  const PackLayout second = SingleChunkPack({{"c.adr", "c1"}, {"a.adr", "a1"}, {"a.adr", "a1 again"}});
  ASSERT_TRUE(Write({first, second}));

  PackIndex index;
  ASSERT_TRUE(Open(index));
  CheckIndex(index);
  EXPECT_EQ(index.PackCount(), 2u);
  EXPECT_EQ(WalkNames(index), (std::vector<std::string>{"a.adr", "dup", "b.mrn", "c.adr"}));
  EXPECT_EQ(Fetch(index, "a.adr"), "a1 again");
  EXPECT_EQ(Fetch(index, "dup"), "chunk1");
  EXPECT_EQ(Fetch(index, "b.mrn"), "b0");
}

TEST_F(PackIndexTest, AMissingNumberEndsTheSeries) {
  ASSERT_TRUE(Write({SingleChunkPack({{"zero", "0"}})}));
  ASSERT_TRUE(WriteRaw(2, BuildPack(SingleChunkPack({{"two", "2"}}))));
  PackIndex index;
  ASSERT_TRUE(Open(index));
  EXPECT_EQ(index.PackCount(), 1u);
  EXPECT_EQ(Fetch(index, "zero"), "0");
  EXPECT_EQ(index.Find("two"), nullptr);
}

TEST_F(PackIndexTest, AFolderWithoutPacksOpensEmpty) {
  PackIndex index;
  ASSERT_TRUE(Open(index));
  ExpectEmptyAndClosed(index);
  EXPECT_EQ(index.Find("materials_3.xml"), nullptr);
  EXPECT_EQ(Fetch(index, "materials_3.xml"), "<failed>");
}

TEST_F(PackIndexTest, EmptyChunksAreFollowedAndALastEmptyChunkEnds) {
  PackLayout layout;
  layout.chunks.push_back({});
  layout.chunks.push_back({.entries = {{.name = "after empty", .data = "x"}}});
  layout.chunks.push_back({});
  ASSERT_TRUE(Write({layout}));
  PackIndex index;
  ASSERT_TRUE(Open(index));
  EXPECT_EQ(WalkNames(index), (std::vector<std::string>{"after empty"}));
}

TEST_F(PackIndexTest, LookupIsExact) {
  ASSERT_TRUE(Write({SingleChunkPack({{"Chars\\Hero.adr", "hero"}, {"empty.bin", ""}})}));
  PackIndex index;
  ASSERT_TRUE(Open(index));
  EXPECT_EQ(index.Find("chars\\hero.adr"), nullptr);
  EXPECT_EQ(index.Find("Chars/Hero.adr"), nullptr);
  EXPECT_EQ(Fetch(index, "Chars\\Hero.adr"), "hero");
  EXPECT_EQ(Fetch(index, "empty.bin"), "");
}

TEST_F(PackIndexTest, FetchFailuresLeaveTheIndexUsable) {
  PackLayout layout = SingleChunkPack({{"past end", "data"}, {"high offset", "x"}, {"good", "ok"}});
  layout.chunks[0].entries[0].dataSize = 1000;
  layout.chunks[0].entries[1].dataOffset = 0x80000000;
  ASSERT_TRUE(Write({layout}));
  PackIndex index;
  ASSERT_TRUE(Open(index)) << "bad data locations fail at the fetch, not at Open";
  EXPECT_EQ(Fetch(index, "past end"), "<failed>");
  EXPECT_EQ(Fetch(index, "high offset"), "<failed>");
  EXPECT_EQ(Fetch(index, "good"), "ok");

  CByteBuffer untouched;
  ASSERT_TRUE(untouched.SetSize(3));
  EXPECT_FALSE(PackIndex::FetchEntry(nullptr, untouched));
  EXPECT_EQ(untouched.Size(), 3u);
}

TEST_F(PackIndexTest, ReservedWordIsNeverRead) {
  PackLayout layout = SingleChunkPack({{"a", "1"}, {"b", "2"}});
  layout.chunks[0].entries[0].reserved = 0xFFFFFFFF;
  layout.chunks[0].entries[1].reserved = 0x12345678;
  ASSERT_TRUE(Write({layout}));
  PackIndex index;
  ASSERT_TRUE(Open(index));
  EXPECT_EQ(Fetch(index, "a"), "1");
  EXPECT_EQ(Fetch(index, "b"), "2");
}

TEST_F(PackIndexTest, BrokenDirectoriesEmptyTheWholeIndex) {
  struct Case {
    const char* what;
    PackLayout layout;
  };
  std::vector<Case> cases;
  {
    PackLayout loop;
    loop.chunks.push_back({.entries = {{.name = "a", .data = "1"}}});
    loop.chunks.push_back({.entries = {{.name = "b", .data = "2"}}});
    loop.chunks.push_back({.entries = {{.name = "c", .data = "3"}}});
    loop.chunks[2].nextChunk = 25;  // back to the second chunk: each chunk here is 8 + 16 + 1 bytes
    cases.push_back({"chain leads back to a chunk already read", loop});
  }
  {
    PackLayout self;
    self.chunks.push_back({.entries = {{.name = "a", .data = "1"}}});
    self.chunks.push_back({});
    self.chunks[1].nextChunk = 25;  // itself
    cases.push_back({"chunk names itself as next", self});
  }
  {
    PackLayout high = SingleChunkPack({{"a", "1"}});
    high.chunks[0].nextChunk = 0x80000000;
    cases.push_back({"next chunk at 2 GiB", high});
  }
  {
    PackLayout huge = SingleChunkPack({{"a", "1"}});
    huge.chunks[0].entries[0].nameLength = 0xFFFFFFF0;
    cases.push_back({"name length past the file", huge});
  }
  {
    PackLayout maxName = SingleChunkPack({{"a", "1"}});
    maxName.chunks[0].entries[0].nameLength = 0xFFFFFFFF;
    cases.push_back({"name length with no room for a terminator", maxName});
  }
  {
    PackLayout many = SingleChunkPack({{"a", "1"}});
    many.chunks[0].entryCount = 1000;
    cases.push_back({"more entries than the directory holds", many});
  }
  {
    PackLayout farChunk = SingleChunkPack({{"a", "1"}});
    farChunk.chunks[0].nextChunk = 100000;
    cases.push_back({"next chunk past the end of the file", farChunk});
  }
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    // A good pack first: the bad one behind it must take it down too.
    ASSERT_TRUE(Write({SingleChunkPack({{"good", "g"}}), c.layout}));
    PackIndex index;
    EXPECT_FALSE(Open(index));
    ExpectEmptyAndClosed(index);
  }
}

TEST_F(PackIndexTest, EveryTruncatedDirectoryFails) {
  PackLayout layout;
  layout.chunks.push_back({.entries = {{.name = "first.adr", .data = "1"}, {.name = "second", .data = "22"}}});
  layout.chunks.push_back({.entries = {{.name = "third.mrn", .data = "333"}}});
  const std::string bytes = BuildPack(layout);
  const size_t directoryEnd = bytes.size() - 6;  // the data of three files follows the directory
  for (size_t cut = 0; cut < directoryEnd; ++cut) {
    SCOPED_TRACE(cut);
    ASSERT_TRUE(WriteRaw(0, bytes.substr(0, cut)));
    PackIndex index;
    EXPECT_FALSE(Open(index));
    ExpectEmptyAndClosed(index);
  }
  ASSERT_TRUE(WriteRaw(0, bytes.substr(0, directoryEnd)));
  PackIndex index;
  ASSERT_TRUE(Open(index)) << "the directory alone is whole";
  EXPECT_EQ(index.EntryCount(), 3u);
  EXPECT_EQ(Fetch(index, "first.adr"), "<failed>") << "its data is cut off";
}

TEST_F(PackIndexTest, RandomCorruptionNeverCrashes) {
  PackLayout layout;
  for (int c = 0; c < 3; ++c) {
    PackChunk chunk;
    for (int e = 0; e < 5; ++e) chunk.entries.push_back({.name = "file_" + std::to_string(c * 5 + e), .data = "d"});
    layout.chunks.push_back(chunk);
  }
  const std::string original = BuildPack(layout);
  std::mt19937 random(1234);
  PackIndex index;
  for (int round = 0; round < 300; ++round) {
    std::string bytes = original;
    const int flips = 1 + round % 4;
    for (int i = 0; i < flips; ++i) bytes[random() % bytes.size()] = static_cast<char>(random());
    ASSERT_TRUE(WriteRaw(0, bytes));
    if (index.Open(dir.Path().c_str())) {
      CheckIndex(index);
      index.Walk([](const char*, const PackEntry* entry) {
        CByteBuffer data;
        (void)PackIndex::FetchEntry(entry, data);
        return true;
      });
    } else {
      ExpectEmptyAndClosed(index);
    }
  }
}

TEST_F(PackIndexTest, RefusedMemoryAtEveryStepFailsCleanly) {
  std::vector<std::pair<std::string, std::string>> files;
  for (int i = 0; i < 20; ++i) files.push_back({"a name long enough for a block " + std::to_string(i), "x"});
  ASSERT_TRUE(Write({SingleChunkPack(files), SingleChunkPack({{"short", "y"}})}));
  for (u64 failAt = 1;; ++failAt) {
    SCOPED_TRACE(failAt);
    testsupport::ScopedAllocationFailure refuse(failAt);
    {
      PackIndex index;
      const bool opened = Open(index);
      if (!refuse.Failed()) {
        ASSERT_TRUE(opened);
        EXPECT_EQ(index.EntryCount(), 21u);
        break;
      }
      EXPECT_FALSE(opened);
      ExpectEmptyAndClosed(index);
    }
    EXPECT_EQ(refuse.Live(), 0) << "nothing leaks";
    ASSERT_LT(failAt, 1000u);
  }
}

TEST_F(PackIndexTest, ClearAndReopenReusesTheTable) {
  ASSERT_TRUE(Write({SingleChunkPack({{"one", "1"}, {"two", "2"}, {"three", "3"}, {"four", "4"}})}));
  PackIndex index;
  ASSERT_TRUE(Open(index));
  const u32 capacity = index.TableCapacity();
  index.Clear();
  ExpectEmptyAndClosed(index);
  EXPECT_EQ(index.TableCapacity(), capacity);

  TempDir other;
  ASSERT_TRUE(testsupport::WritePacks(other.Path(), {SingleChunkPack({{"other", "o"}})}));
  ASSERT_TRUE(index.Open((other.Path() + "//").c_str())) << "separators are normalised";
  EXPECT_EQ(index.TableCapacity(), capacity);
  EXPECT_EQ(WalkNames(index), (std::vector<std::string>{"other"}));
  EXPECT_EQ(Fetch(index, "other"), "o");
}

TEST_F(PackIndexTest, LargeDirectoriesCrossReadBlocks) {
  // Enough entries, and one name longer than a read block, that the directory spans many blocks.
  std::vector<std::pair<std::string, std::string>> files;
  for (int i = 0; i < 30000; ++i) files.push_back({"folder\\file_" + std::to_string(i) + ".bin", std::to_string(i)});
  files.push_back({std::string(300000, 'n'), "long name"});
  ASSERT_TRUE(Write({SingleChunkPack(files)}));
  PackIndex index;
  ASSERT_TRUE(Open(index));
  ASSERT_EQ(index.EntryCount(), files.size());
  for (size_t i = 0; i < files.size(); i += 997) EXPECT_EQ(Fetch(index, files[i].first.c_str()), files[i].second);
  EXPECT_EQ(Fetch(index, files.back().first.c_str()), "long name");
}

}  // namespace
