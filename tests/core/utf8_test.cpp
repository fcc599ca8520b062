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
  EXPECT_EQ(ToWide("\xC3" "A"), u"\xFFFD" "A") << "missing continuation";
  EXPECT_EQ(ToWide("\xC0\xAF"), u"\xFFFD\xFFFD") << "overlong";
  EXPECT_EQ(ToWide("\xED\xA0\x80"), u"\xFFFD") << "encoded surrogate";
  EXPECT_EQ(ToWide("\xF4\x90\x80\x80"), u"\xFFFD") << "past U+10FFFF";

  char small[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(Utf16ToUtf8(u"abcdef", small, 3), 7u) << "measures all, writes what fits";
  EXPECT_EQ(std::string(small, 4), "abc#");
}

}  // namespace
