#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "core/memory_hooks.h"
#include "support/temp_dir.h"
#include "xml/file_stream.h"
#include "xml/memory_stream.h"

namespace {

CByteBuffer Bytes(const std::string& text) {
  CByteBuffer bytes;
  EXPECT_TRUE(bytes.SetSize(static_cast<u32>(text.size())));
  if (!text.empty()) std::memcpy(bytes.Data(), text.data(), text.size());
  return bytes;
}

std::u16string Wide(const std::string& narrow) { return std::u16string(narrow.begin(), narrow.end()); }

// Both streams over the same ten bytes must answer reads and seeks alike; their refusals differ.
TEST(Streams, ReadsAndSeeksOverTheSameBytes) {
  testsupport::TempDir dir;
  const std::string path = dir.Join("made/on/open/data.bin");
  const CByteBuffer bytes = Bytes("0123456789");
  CMemoryStream memory(bytes);
  CFileStream* file = MemNew<CFileStream>();
  ASSERT_FALSE(file->Open(Wide(path).c_str())) << "missing file";
  EXPECT_TRUE(gamewriters::WriteFileBytes(path, "0123456789"));
  ASSERT_TRUE(file->Open(Wide(path).c_str()));
  for (IStream* stream : {static_cast<IStream*>(&memory), static_cast<IStream*>(file)}) {
    char buffer[16] = {};
    u32 got = 99;
    u64 at = 0;
    EXPECT_EQ(stream->Seek(6, STREAM_SEEK_SET, &at), S_OK);
    EXPECT_EQ(stream->Read(buffer, 10, &got), S_OK);
    EXPECT_EQ(got, 4u) << "a short read is S_OK";
    EXPECT_EQ(stream->Read(buffer, 10, &got), S_FALSE);
    EXPECT_EQ(got, 0u);
    EXPECT_EQ(stream->Read(buffer, 0, nullptr), E_INVALIDARG);
    EXPECT_EQ(stream->Seek(5, STREAM_SEEK_END, &at), S_OK);
    EXPECT_EQ(at, 15u);
    EXPECT_EQ(stream->Read(buffer, 1, nullptr), S_FALSE) << "past the end";
    StreamStat stat;
    EXPECT_EQ(stream->Stat(&stat, STATFLAG_NONAME), S_OK);
    EXPECT_EQ(stat.size, 10u);
    EXPECT_EQ(stat.name, nullptr);
    void* object = nullptr;
    EXPECT_EQ(stream->QueryInterface(InterfaceId::SequentialStream, &object), E_NOINTERFACE);
    EXPECT_EQ(object, nullptr);
  }
  EXPECT_EQ(memory.Seek(-1, STREAM_SEEK_SET, nullptr), STG_E_INVALIDPARAMETER);
  EXPECT_EQ(file->Seek(-1, STREAM_SEEK_SET, nullptr), STG_E_INVALIDFUNCTION);
  EXPECT_EQ(memory.Write("x", 1, nullptr), E_NOTIMPL);
  EXPECT_EQ(file->Write("x", 1, nullptr), STG_E_ACCESSDENIED);
  StreamStat named;
  ASSERT_EQ(file->Stat(&named, STATFLAG_DEFAULT), S_OK);
  ASSERT_NE(named.name, nullptr);
  EXPECT_EQ(std::u16string(named.name), Wide(path));
  MemFree(named.name);
  EXPECT_EQ(file->Release(), 0u);

  const CByteBuffer none;
  CMemoryStream empty(none);
  char c;
  EXPECT_EQ(empty.Read(&c, 1, nullptr), STG_E_INVALIDPOINTER) << "no data is not the end of data";
}

TEST(Streams, MakeFoldersForPathMakesEveryFolderButTheLast) {
  testsupport::TempDir dir;
  const std::string base = dir.Path();
  ASSERT_TRUE(MakeFoldersForPath(Wide(base + "\\a\\\\b/file.txt").c_str()));
  EXPECT_TRUE(std::filesystem::is_directory(base + "/a/b"));
  EXPECT_FALSE(std::filesystem::exists(base + "/a/b/file.txt"));
  EXPECT_TRUE(MakeFoldersForPath(u"no-separator"));
}

}  // namespace
