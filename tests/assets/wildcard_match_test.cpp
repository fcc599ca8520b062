#include "assets/wildcard_match.h"

#include <gtest/gtest.h>

namespace {

TEST(WildcardMatch, Patterns) {
  struct Case {
    const char* text;
    const char* pattern;
    bool match;
  };
  constexpr Case kCases[] = {
      {"XABCY.adr", "*abc*", true},
      {"abc", "abc", true},
      {"abcd", "abc", false},
      {"ac", "a?c", false},
      {"abc", "a?c", true},
      {"a1c", "a#c", true},
      {"abc", "a#c", false},
      {"", "*", true},
      {"", "**", false},
      {"", "", true},
      {"a", "a*", true},
      {"a", "a**", false},  // a star that is not last needs a character
      {"abXbc", "a*bc", true},
      {"chars\\Sword_01.adr", "*sword*", true},
      {"Char\\sWORD.ADR", "*SwOrD*", true},
      {"\xC3\xA9t\xC3\xA9", "?t?", true},                 // one character, two bytes
      {"\xC3\x89T\xC3\x89", "\xC3\xA9t\xC3\xA9", false},  // only ASCII letters fold
      {"a\xFF"
       "b",
       "a?b", true},  // a bad byte is one U+FFFD
      {"a\xFF"
       "b",
       "a\xFE"
       "b",
       true},  // and equals any other bad sequence
      {"12", "##", true},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(WildcardMatch(c.text, c.pattern), c.match) << '"' << c.text << "\" ~ \"" << c.pattern << '"';
  }
}

}  // namespace
