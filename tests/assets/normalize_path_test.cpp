#include "assets/normalize_path.h"

#include <gtest/gtest.h>

namespace {

TEST(NormalizePath, FoldsSeparatorRunsAndNothingElse) {
  constexpr const char* kCases[][2] = {
      {"C:/Games//Foo/", "C:\\Games\\Foo"},
      {"//", ""},
      {"", ""},
      {"a/./b/../c", "a\\.\\b\\..\\c"},
      {"\\\\host\\share", "\\host\\share"},
      {"MiXeD\\/Case\\", "MiXeD\\Case"},
  };
  for (const auto& [in, out] : kCases) {
    TStringBufferA<261> buffer;
    buffer.Assign("previous content");
    NormalizePath(in, buffer);
    EXPECT_STREQ(buffer.Text(), out) << in;
  }
}

TEST(NormalizePath, TextInsideTheOutputBuffer) {
  TStringBufferA<8> out;
  out.Assign("//a long//path/that/went/to/the/heap//");
  NormalizePath(out.Text(), out);
  EXPECT_STREQ(out.Text(), "\\a long\\path\\that\\went\\to\\the\\heap");
  NormalizePath(out.Text() + 3, out);
  EXPECT_STREQ(out.Text(), "long\\path\\that\\went\\to\\the\\heap");
}

}  // namespace
