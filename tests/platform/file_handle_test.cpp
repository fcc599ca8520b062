#include "platform/file_handle.h"

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

#include "support/temp_dir.h"

namespace {

using testsupport::TempDir;

TEST(FileHandle, OpensOnlyExistingRegularFiles) {
  TempDir dir;
  ASSERT_TRUE(testsupport::WriteFileBytes(dir.Join("data.bin"), "0123456789"));
  FileHandle file;
  EXPECT_FALSE(file.Open(dir.Join("missing.bin").c_str()));
  EXPECT_FALSE(file.Open(dir.Path().c_str())) << "a folder";
  EXPECT_FALSE(file.Open(nullptr));
  ASSERT_TRUE(file.Open(dir.Join("data.bin").c_str()));
  EXPECT_EQ(file.Size(), 10u);
}

TEST(FileHandle, BackslashesAreSeparators) {
  TempDir dir;
  ASSERT_TRUE(testsupport::WriteFileBytes(dir.Join("sub/data.bin"), "x"));
  std::string path = dir.Join("sub\\data.bin");
  for (char& c : path) {
    if (c == '/') c = '\\';
  }
  FileHandle file;
  EXPECT_TRUE(file.Open(path.c_str())) << path;
}

TEST(FileHandle, RefusedPermissionIsAPlainFailure) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads every file";
  TempDir dir;
  const std::string path = dir.Join("locked.bin");
  ASSERT_TRUE(testsupport::WriteFileBytes(path, "x"));
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  FileHandle file;
  EXPECT_FALSE(file.Open(path.c_str()));
}

TEST(FileHandle, ReadsAreExactOrShortAtTheEnd) {
  TempDir dir;
  ASSERT_TRUE(testsupport::WriteFileBytes(dir.Join("data.bin"), "0123456789"));
  FileHandle file;
  ASSERT_TRUE(file.Open(dir.Join("data.bin").c_str()));
  char buffer[16] = {};
  EXPECT_TRUE(file.ReadExact(2, buffer, 3));
  EXPECT_EQ(std::string(buffer, 3), "234");
  EXPECT_EQ(file.ReadAt(8, buffer, 5), 2u);
  EXPECT_FALSE(file.ReadExact(8, buffer, 5));
  EXPECT_EQ(file.ReadAt(100, buffer, 1), 0u);
  EXPECT_TRUE(file.ReadExact(10, buffer, 0));
}

}  // namespace
