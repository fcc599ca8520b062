#include "core/block_arena.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kReserve = size_t(64) << 20;

// The request that takes exactly `pages` pages, header included.
size_t Pages(size_t pages) { return pages * kPage - CBlockArena::kAlignment; }

// Where each request of a case must land: in the space of one of the first blocks, `page` pages
// in, or above every block (`block` -1).
struct Landing {
  int block;
  size_t page;
};

TEST(BlockArena, ReusesFreedSpaceJoinedWithItsNeighbours) {
  struct Case {
    const char* what;
    std::vector<size_t> blocks;  // pages of each, made in order
    std::vector<int> freed;      // in this order
    std::vector<size_t> requests;
    std::vector<Landing> landings;
  };
  const Case cases[] = {
      {"a freed block", {32, 32, 32}, {1}, {32}, {{1, 0}}},
      {"joined with the block before", {32, 32, 32, 32}, {1, 2}, {64}, {{1, 0}}},
      {"joined with the block after", {32, 32, 32, 32}, {2, 1}, {64}, {{1, 0}}},
      {"joined on both sides", {32, 32, 32, 32}, {0, 2, 1}, {96}, {{0, 0}}},
      {"apart, too small for it", {32, 32, 32, 32}, {0, 2}, {64}, {{-1, 0}}},
      {"the smallest hole that fits", {64, 16, 32, 16}, {2, 0}, {32}, {{2, 0}}},
      {"cut in two", {64, 16}, {0}, {32, 32}, {{0, 0}, {0, 32}}},
      {"a remainder too small to cut stays", {40, 16}, {0}, {32, 8}, {{0, 0}, {-1, 0}}},
      {"the highest block gives back its space", {32, 32}, {1}, {64}, {{1, 0}}},
      {"and the free ones below it", {32, 32, 32}, {1, 2}, {96}, {{1, 0}}},
  };
  for (const Case& c : cases) {
    CBlockArena arena(kReserve);
    std::vector<u8*> blocks;
    for (size_t pages : c.blocks) blocks.push_back(static_cast<u8*>(arena.Allocate(Pages(pages))));
    ASSERT_NE(blocks.back(), nullptr) << c.what;
    u8* const end = blocks.back() + c.blocks.back() * kPage;
    for (int i : c.freed) arena.Free(blocks[size_t(i)]);
    for (size_t r = 0; r < c.requests.size(); ++r) {
      u8* block = static_cast<u8*>(arena.Allocate(Pages(c.requests[r])));
      const Landing& landing = c.landings[r];
      if (landing.block < 0) {
        EXPECT_GE(block, end) << c.what;
      } else {
        EXPECT_EQ(block, blocks[size_t(landing.block)] + landing.page * kPage) << c.what;
      }
    }
  }
}

// Whatever the order of frees, nothing is left taken and the space above the blocks is whole.
TEST(BlockArena, FreeingEveryBlockEmptiesIt) {
  const std::vector<std::vector<int>> orders = {{0, 1, 2, 3}, {3, 2, 1, 0}, {1, 3, 0, 2}, {2, 0, 3, 1}};
  for (const std::vector<int>& order : orders) {
    CBlockArena arena(kReserve);
    void* blocks[4];
    for (void*& block : blocks) block = arena.Allocate(Pages(20));
    EXPECT_EQ(arena.Taken(), 80 * kPage);
    for (int i : order) arena.Free(blocks[i]);
    EXPECT_EQ(arena.Taken(), 0u);
    EXPECT_EQ(arena.Used(), 0u);
  }
}

TEST(BlockArena, RefusesWhatTheReservationCannotHold) {
  CBlockArena arena(kReserve);
  EXPECT_EQ(arena.Allocate(SIZE_MAX), nullptr);
  EXPECT_EQ(arena.Allocate(kReserve), nullptr);  // its header would not fit
  void* most = arena.Allocate(kReserve - kPage);
  ASSERT_NE(most, nullptr);
  EXPECT_EQ(arena.Allocate(kPage), nullptr);
  EXPECT_TRUE(arena.Owns(most));
  arena.Free(most);
  EXPECT_NE(arena.Allocate(kPage), nullptr);

  CBlockArena unaligned(kReserve + kPage);  // a reservation must be whole huge pages
  EXPECT_EQ(unaligned.Allocate(kPage), nullptr);
  EXPECT_FALSE(unaligned.Owns(&most));
}

// Random sizes made and freed in random order: each block keeps its own bytes, aligned, and the
// arena's count of taken bytes follows.
TEST(BlockArena, KeepsEveryBlocksBytesThroughRandomUse) {
  CBlockArena arena(kReserve);
  std::mt19937 random(7);
  struct Live {
    u8* block;
    size_t size;
    u8 fill;
  };
  std::vector<Live> live;
  size_t expected = 0;
  const auto rounded = [](size_t size) { return (size + CBlockArena::kAlignment + kPage - 1) / kPage * kPage; };
  for (int step = 0; step < 3000; ++step) {
    if (live.empty() || random() % 2 != 0) {
      const size_t size = 1 + random() % (random() % 4 == 0 ? 600000 : 70000);
      u8* block = static_cast<u8*>(arena.Allocate(size));
      ASSERT_NE(block, nullptr);
      ASSERT_EQ(reinterpret_cast<uintptr_t>(block) % CBlockArena::kAlignment, 0u);
      const u8 fill = u8(step);
      std::memset(block, fill, size);
      live.push_back({block, size, fill});
      expected += rounded(size);
    } else {
      const size_t at = random() % live.size();
      const Live gone = live[at];
      for (size_t i = 0; i < gone.size; i += 997) ASSERT_EQ(gone.block[i], gone.fill) << step;
      ASSERT_EQ(gone.block[gone.size - 1], gone.fill) << step;
      arena.Free(gone.block);
      live[at] = live.back();
      live.pop_back();
      expected -= rounded(gone.size);
    }
    // A block cut from a larger hole may keep a remainder too small to cut off.
    ASSERT_GE(arena.Taken(), expected);
    ASSERT_LE(arena.Taken(), expected + live.size() * 16 * kPage);
  }
  for (const Live& block : live) arena.Free(block.block);
  EXPECT_EQ(arena.Taken(), 0u);
  EXPECT_EQ(arena.Used(), 0u);
}

}  // namespace
