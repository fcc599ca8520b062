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
      {"\xC3\xA9t\xC3\xA9", "?t?", true},        // one character, two bytes
      {"\xC3\x89T\xC3\x89", "\xC3\xA9t\xC3\xA9", false},  // only ASCII letters fold
      {"a\xFF" "b", "a?b", true},                // a bad byte is one U+FFFD
      {"a\xFF" "b", "a\xFE" "b", true},          // and equals any other bad sequence
      {"12", "##", true},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(WildcardMatch(c.text, c.pattern), c.match) << '"' << c.text << "\" ~ \"" << c.pattern << '"';
  }
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
      {"\xC3" "A", 0xFFFD, 1},
      {"\xED\xA0\x80", 0xFFFD, 3},             // a surrogate
      {"\xF0\x9F\x98\x80", 0x1F600, 4},
      {"\xF8\x88\x80\x80\x80", 0x200000, 5},   // five bytes are taken
      {"\xFC\x84\x80\x80\x80\x80", 0x4000000, 6},
      {"\xC0\x80", 0xFFFD, 2},                 // overlong
      {"\xE0\x80\xAF", 0xFFFD, 3},             // overlong
      {"\x80", 0xFFFD, 1},
      {"\xFE", 0xFFFD, 1},
      {"\xE2\x82", 0xFFFD, 2},                 // ends at the NUL
  };
  for (const Case& c : kCases) {
    u32 size = 99;
    EXPECT_EQ(DecodeUtf8(c.bytes, size), c.code) << c.bytes;
    EXPECT_EQ(size, c.size) << c.bytes;
  }
}

}  // namespace
