#include "core/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::u16string ToWide(const char* narrow) {
  std::u16string out(Utf8ToUtf16(narrow, nullptr, 0), u'\0');
  Utf8ToUtf16(narrow, out.data(), static_cast<u32>(out.size()));
  return out.substr(0, out.size() - 1);
}

std::string ToNarrow(const char16_t* wide) {
  std::string out(Utf16ToUtf8(wide, nullptr, 0), '\0');
  Utf16ToUtf8(wide, out.data(), static_cast<u32>(out.size()));
  return out.substr(0, out.size() - 1);
}

TEST(Utf8, BothDirectionsReplaceIllFormedText) {
  // Well-formed text goes both ways unchanged.
  for (const auto& [wide, narrow] : {std::pair<const char16_t*, const char*>{u"", ""},
                                     {u"\u00E9\u20AC", "\xC3\xA9\xE2\x82\xAC"},
                                     {u"\U0001F600", "\xF0\x9F\x98\x80"}}) {
    EXPECT_EQ(ToNarrow(wide), narrow);
    EXPECT_EQ(ToWide(narrow), wide);
  }
  EXPECT_EQ(ToNarrow(u"a\xD800z"), "a\xEF\xBF\xBDz") << "lone surrogate";
  EXPECT_EQ(ToWide("\xC3"
                   "A"),
            u"\xFFFD"
            "A")
      << "missing continuation";
  EXPECT_EQ(ToWide("\xC0\xAF"), u"\xFFFD\xFFFD") << "overlong";
  EXPECT_EQ(ToWide("\xED\xA0\x80"), u"\xFFFD") << "encoded surrogate";
  EXPECT_EQ(ToWide("\xF4\x90\x80\x80"), u"\xFFFD") << "past U+10FFFF";
  EXPECT_EQ(ToWide("\xF8\x88\x80\x80\x80"), u"\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD") << "five-byte forms are not taken";

  char small[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(Utf16ToUtf8(u"abcdef", small, 3), 7u) << "measures all, writes what fits";
  EXPECT_EQ(std::string(small, 4), "abc#");
}

TEST(DecodeUtf8, Sequences) {
  struct Case {
    const char* bytes;
    u32 code;
    u32 size;
  };
  constexpr Case kCases[] = {
      {"A", 'A', 1},
      {"", 0, 1},
      {"\xC3\xA9", 0xE9, 2},
      {"\xC3"
       "A",
       0xFFFD, 1},
      {"\xED\xA0\x80", 0xFFFD, 3},  // a surrogate
      {"\xF0\x9F\x98\x80", 0x1F600, 4},
      {"\xF8\x88\x80\x80\x80", 0x200000, 5},  // five bytes are taken
      {"\xFC\x84\x80\x80\x80\x80", 0x4000000, 6},
      {"\xC0\x80", 0xFFFD, 2},      // overlong
      {"\xE0\x80\xAF", 0xFFFD, 3},  // overlong
      {"\x80", 0xFFFD, 1},
      {"\xFE", 0xFFFD, 1},
      {"\xE2\x82", 0xFFFD, 2},  // ends at the NUL
  };
  for (const Case& c : kCases) {
    u32 size = 99;
    EXPECT_EQ(DecodeUtf8(c.bytes, size), c.code) << c.bytes;
    EXPECT_EQ(size, c.size) << c.bytes;
  }
}

}  // namespace
