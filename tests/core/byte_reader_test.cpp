#include "core/byte_reader.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

const std::vector<u8> kBytes = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 'a', 'b', 0, 'c'};

TEST(ByteReader, ReadsBothOrdersInPlaceAndFromPositions) {
  ByteReader reader(kBytes.data(), u32(kBytes.size()));
  u32 le = 0, be = 0;
  ASSERT_TRUE(reader.ReadU32(le));
  EXPECT_EQ(le, 0x04030201u);
  ASSERT_TRUE(reader.Seek(0) && reader.ReadU32BE(be));
  EXPECT_EQ(be, 0x01020304u);
  EXPECT_EQ(reader.U32At(2), 0x06050403u);
  EXPECT_STREQ(reader.TextAt(6), "ab");
  EXPECT_TRUE(reader.Fits(8, 2, 1));
  EXPECT_EQ(reader.Remaining(), 6u);
  EXPECT_FALSE(reader.Failed());
}

// The first read that doesn't fit fails the reader for good: nothing moves, every later read gives
// zeros, even one that would have fitted.
TEST(ByteReader, TheFirstFailureIsKept) {
  struct Case {
    const char* what;
    bool (*fail)(ByteReader&);
  };
  const Case cases[] = {
      {"a word past the end",
       [](ByteReader& r) {
         u32 v;
         return r.Skip(8) && r.ReadU32(v);
       }},
      {"a size that would wrap the position", [](ByteReader& r) { return r.Skip(0xFFFFFFFF); }},
      {"copied bytes past the end",
       [](ByteReader& r) {
         u8 out[11];
         return r.ReadBytes(out, 11);
       }},
      {"a seek past the end", [](ByteReader& r) { return r.Seek(11); }},
      {"records past the end", [](ByteReader& r) { return r.Fits(4, 4, 2); }},
      {"a count that would wrap", [](ByteReader& r) { return r.Fits(0, 0x8000000000000000ull, 2); }},
      {"a text without its NUL", [](ByteReader& r) { return *r.TextAt(9) != 0; }},
      {"a record past the end", [](ByteReader& r) { return r.U32At(7) != 0; }},
  };
  for (const Case& c : cases) {
    ByteReader reader(kBytes.data(), u32(kBytes.size()));
    u32 before = 0;
    ASSERT_TRUE(reader.ReadU32(before)) << c.what;
    EXPECT_FALSE(c.fail(reader)) << c.what;
    EXPECT_TRUE(reader.Failed()) << c.what;
    const u32 position = reader.Position();
    u32 value = 7;
    u8 out[2] = {9, 9};
    EXPECT_FALSE(reader.ReadU32(value)) << c.what;
    EXPECT_EQ(value, 0u) << c.what;
    EXPECT_FALSE(reader.ReadBytes(out, 2)) << c.what;
    EXPECT_EQ(out[0] | out[1], 0) << c.what;
    EXPECT_EQ(reader.U32At(0), 0u) << c.what;
    EXPECT_STREQ(reader.TextAt(6), "") << c.what;
    EXPECT_EQ(reader.Position(), position) << c.what;
  }
}

TEST(ByteReader, AnEmptyBufferReadsNothing) {
  ByteReader reader(nullptr, 0);
  const u8* p = nullptr;
  EXPECT_TRUE(reader.Take(0, p));
  EXPECT_TRUE(reader.Fits(0, 5, 0));
  EXPECT_FALSE(reader.Take(1, p));
  EXPECT_EQ(p, nullptr);
}

}  // namespace
