#include "core/hash.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// Expected values come from a separate implementation of the hash (arithmetic shifts, each
// variant's widening), not from this code.
struct HashCase {
  const char* text;
  u32 name;
  u32 nameWide;
  u32 exact;
  u32 key;
};

constexpr HashCase kCases[] = {
    {"", 0, 0, 0, 0},
    {"abc", 0x178856E1, 0x178856E1, 0xED131F5B, 0xED131F5B},
    {"ABC", 0x178856E1, 0x178856E1, 0x178856E1, 0x178856E1},
    {"Bone_01", 0x412C5659, 0x412C5659, 0x49EC3938, 0x49EC3938},
    {"caf\xC3\xA9", 0xE04931C7, 0xF7484C1E, 0xFD683CBA, 0x1FB0E746},
    {"\xFF", 0xC7B20F1D, 0x3A5FAB87, 0xC7B20F1D, 0x124A2494},
    {"a\x80z", 0x50E10A5D, 0xF947D860, 0xA7BC70C7, 0xC070BE98},
};

TEST(Hash, VariantsMatchStoredValues) {
  for (const HashCase& c : kCases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(HashName(c.text), c.name);
    EXPECT_EQ(HashNameWide(c.text), c.nameWide);
    EXPECT_EQ(HashExact(c.text), c.exact);
    EXPECT_EQ(HashKey(c.text), c.key);
  }
}

TEST(Hash, NameOfNullIsZero) { EXPECT_EQ(HashName(nullptr), 0u); }

// The batched form must give HashKey's value for every text, whatever the lengths side by side and
// however many texts are left over after the groups of four.
TEST(Hash, BatchedKeysEqualSingleKeys) {
  std::vector<std::string> texts = {
      "", "a", "\xE9t\xE9", "actors\\group_1\\actor_000001.adr", "x", std::string(300, 'q')};
  for (int i = 0; i < 40; ++i)
    texts.push_back(std::string(size_t(i % 7) * 5, char('a' + i)) + "\xFF" + std::to_string(i));
  for (size_t count = 0; count <= texts.size(); ++count) {
    std::vector<const char*> pointers;
    for (size_t i = 0; i < count; ++i) pointers.push_back(texts[i].c_str());
    std::vector<u32> out(count + 1, 0xDEADBEEF);
    HashKeys(pointers.data(), u32(count), out.data());
    for (size_t i = 0; i < count; ++i) ASSERT_EQ(out[i], HashKey(texts[i].c_str())) << count << " " << i;
    EXPECT_EQ(out[count], 0xDEADBEEF) << "nothing past the count";
  }
}

}  // namespace
