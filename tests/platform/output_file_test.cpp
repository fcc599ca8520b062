#include "platform/output_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>

#include "support/temp_dir.h"

namespace {

// Each way a write can fail names its step, and leaves neither the target nor a temporary.
TEST(OutputFile, AFailureSaysWhatFailedAndLeavesNothing) {
  testsupport::TempDir dir;
  struct Case {
    const char* name;
    std::string path;
    std::function<void()> meanwhile;  // what happens between opening and committing
    const char* error;
  } cases[] = {
      {"no folder", dir.Join("missing/out.fbx"), [] {}, "No such file or directory"},
      {"a folder in the target's place", dir.Join("taken"),
       [&dir] { std::filesystem::create_directories(dir.Join("taken/inside")); }, "rename refused: Is a directory"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    OutputFile file;
    const char bytes[] = "data";
    bool written = file.Open(c.path.c_str()) && file.Write(bytes, sizeof(bytes));
    c.meanwhile();
    written = written && file.Commit(false);
    EXPECT_FALSE(written);
    EXPECT_STREQ(file.Error(), c.error);
  }
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1) << "only the folder made meanwhile";
}

}  // namespace
