#include "platform/file_handle.h"

#include <gtest/gtest.h>

#include <string>

#include "support/temp_dir.h"

namespace {

TEST(FileHandle, OpensExistingFilesByEitherSeparatorAndReadsExactly) {
  testsupport::TempDir dir;
  ASSERT_TRUE(gamewriters::WriteFileBytes(dir.Join("sub/data.bin"), "0123456789"));
  FileHandle file;
  EXPECT_FALSE(file.Open(dir.Join("missing.bin").c_str()));
  EXPECT_FALSE(file.Open(dir.Join("sub").c_str())) << "a folder";
  EXPECT_FALSE(file.Open(nullptr));
  std::string path = dir.Join("sub\\data.bin");
  for (char& c : path) c = c == '/' ? '\\' : c;
  ASSERT_TRUE(file.Open(path.c_str())) << path;
  EXPECT_EQ(file.Size(), 10u);

  char buffer[16] = {};
  EXPECT_TRUE(file.ReadExact(2, buffer, 3));
  EXPECT_EQ(std::string(buffer, 3), "234");
  EXPECT_EQ(file.ReadAt(8, buffer, 5), 2u);
  EXPECT_FALSE(file.ReadExact(8, buffer, 5));
  EXPECT_EQ(file.ReadAt(100, buffer, 1), 0u);
  EXPECT_TRUE(file.ReadExact(10, buffer, 0));
}

}  // namespace
