#include "assets/normalize_path.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(NormalizePath, FoldsSeparatorRunsAndNothingElse) {
  struct Case {
    const char* in;
    const char* out;
  };
  constexpr Case kCases[] = {
      {"C:/Games//Foo/", "C:\\Games\\Foo"},
      {"//", ""},
      {"", ""},
      {"a/./b/../c", "a\\.\\b\\..\\c"},
      {"\\\\host\\share", "\\host\\share"},
      {"/home/user/Game Dir", "\\home\\user\\Game Dir"},
      {"MiXeD\\/Case\\", "MiXeD\\Case"},
  };
  for (const Case& c : kCases) {
    TStringBufferA<261> out;
    out.Assign("previous content");
    NormalizePath(c.in, out);
    EXPECT_STREQ(out.Text(), c.out) << c.in;
  }
}

TEST(NormalizePath, TextInsideTheOutputBuffer) {
  TStringBufferA<8> out;
  out.Assign("//a long//path/that/went/to/the/heap//");
  NormalizePath(out.Text(), out);
  EXPECT_STREQ(out.Text(), "\\a long\\path\\that\\went\\to\\the\\heap");
  out.Assign("x//y//");
  NormalizePath(out.Text() + 1, out);
  EXPECT_STREQ(out.Text(), "\\y");
}

TEST(NormalizePath, LongPathsHaveNoLimit) {
  std::string in;
  std::string expected;
  for (int i = 0; i < 200; ++i) {
    in += "//segment";
    expected += "\\segment";
  }
  TStringBufferA<261> out;
  NormalizePath(in.c_str(), out);
  EXPECT_EQ(out.Text(), expected);
}

}  // namespace
