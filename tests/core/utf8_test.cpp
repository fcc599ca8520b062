#include "core/utf8.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string ToUtf8(const char16_t* wide) {
  std::string out(Utf16ToUtf8(wide, nullptr, 0), '\0');
  Utf16ToUtf8(wide, out.data(), static_cast<u32>(out.size()));
  out.pop_back();
  return out;
}

std::u16string ToUtf16(const char* narrow) {
  std::u16string out(Utf8ToUtf16(narrow, nullptr, 0), u'\0');
  Utf8ToUtf16(narrow, out.data(), static_cast<u32>(out.size()));
  out.pop_back();
  return out;
}

TEST(Utf8, WideToNarrow) {
  struct Case {
    const char16_t* wide;
    const char* narrow;
  };
  const Case cases[] = {
      {u"", ""},
      {u"plain", "plain"},
      {u"\u00E9\u20AC", "\xC3\xA9\xE2\x82\xAC"},
      {u"\U0001F600", "\xF0\x9F\x98\x80"},
      {u"a\xD800z", "a\xEF\xBF\xBDz"},  // lone high surrogate
      {u"\xDC00", "\xEF\xBF\xBD"},      // lone low surrogate
  };
  for (const Case& c : cases) EXPECT_EQ(ToUtf8(c.wide), c.narrow);
}

TEST(Utf8, NarrowToWide) {
  struct Case {
    const char* narrow;
    const char16_t* wide;
  };
  const Case cases[] = {
      {"", u""},
      {"\xC3\xA9\xE2\x82\xAC", u"\u00E9\u20AC"},
      {"\xF0\x9F\x98\x80", u"\U0001F600"},
      {"\xC3" "A", u"\xFFFD" "A"},          // missing continuation
      {"\xC0\xAF", u"\xFFFD\xFFFD"},        // overlong lead
      {"\xED\xA0\x80", u"\xFFFD"},          // encoded surrogate
      {"\xF4\x90\x80\x80", u"\xFFFD"},      // past U+10FFFF
  };
  for (const Case& c : cases) EXPECT_EQ(ToUtf16(c.narrow), c.wide) << c.narrow;
}

TEST(Utf8, WritesNoMoreThanTheCapacity) {
  char small[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(Utf16ToUtf8(u"abcdef", small, 3), 7u);
  EXPECT_EQ(std::string(small, 4), "abc#");
}

}  // namespace
