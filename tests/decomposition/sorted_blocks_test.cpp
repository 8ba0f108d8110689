#include "decomposition/sorted_blocks.h"

#include <gtest/gtest.h>

#include <set>

#include "decomposition/region.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/intensity.h"

namespace undercut {
namespace {

using namespace tests;
using Blocks = CSortedBlocks<int>;

std::vector<int> list(const Blocks& blocks) {
  std::vector<int> all;
  for (const int value : blocks) all.push_back(value);
  return all;
}

TEST(SortedBlocks, OnesWithoutRecords_HaveNothingToFindToEraseOrToWalk) {
  Blocks blocks;
  for (int round = 0; round < 2; ++round) {
    EXPECT_TRUE(blocks.empty());
    EXPECT_EQ(blocks.find(3), nullptr);
    EXPECT_FALSE(blocks.erase(3));
    EXPECT_EQ(list(blocks), std::vector<int>{});
    blocks.insert(3);  // and again once they have had one
    blocks.erase(3);
  }
}

TEST(SortedBlocks, TakeEachRecordOnce) {
  Blocks blocks;
  EXPECT_TRUE(blocks.insert(5));
  EXPECT_FALSE(blocks.insert(5));
  EXPECT_TRUE(blocks.insert(4));
  EXPECT_EQ(blocks.size(), 2u);
  EXPECT_EQ(list(blocks), (std::vector<int>{4, 5}));
  EXPECT_EQ(blocks.front(), 4);
}

TEST(SortedBlocks, WhatWasPopped_IsNoLongerThere_AndMayComeAgain) {
  Blocks blocks;
  for (const int value : {1, 2, 3}) blocks.insert(value);
  blocks.pop_Front();
  EXPECT_EQ(blocks.find(1), nullptr);
  EXPECT_FALSE(blocks.erase(1));
  EXPECT_EQ(blocks.front(), 2);
  EXPECT_TRUE(blocks.insert(1));
  EXPECT_EQ(list(blocks), (std::vector<int>{1, 2, 3}));
}

TEST(SortedBlocks, ClearedOnes_AreEmptyAndTakeRecordsAgain) {
  Blocks blocks;
  for (int i = 0; i < 1000; ++i) blocks.insert(i * 37 % 1000);
  EXPECT_EQ(blocks.size(), 1000u);
  blocks.clear();
  EXPECT_TRUE(blocks.empty());
  EXPECT_EQ(list(blocks), std::vector<int>{});
  EXPECT_TRUE(blocks.insert(7));
  EXPECT_EQ(blocks.front(), 7);
}

// Sets of up to a few and of up to thousands of records, that grow, shrink, and lose their front.
TEST(SortedBlocks, EqualAStandardSet_WhateverIsDone) {
  const uint32_t seed = 6021;
  std::printf("seed %u\n", seed);
  reference::Random random(seed);
  size_t largest = 0;
  for (uint32_t round = 0; round < scale_Cases(60); ++round) {
    Blocks blocks;
    std::set<int> plain;
    const int range = round % 3 == 0 ? 20 : round % 3 == 1 ? 400 : 20000;
    double growth = 0.7;
    for (int step = 0; step < 4000; ++step) {
      if (step % 500 == 0) growth = random.real(0.2, 0.9);
      const int value = static_cast<int>(random.below(range));
      ASSERT_EQ(blocks.find(value) != nullptr, plain.count(value) != 0);
      if (random.chance(growth)) {
        ASSERT_EQ(blocks.insert(value), plain.insert(value).second);
      } else if (random.chance(0.5)) {
        ASSERT_EQ(blocks.erase(value), plain.erase(value) != 0);
      } else if (!plain.empty()) {
        ASSERT_EQ(blocks.front(), *plain.begin());
        blocks.pop_Front();
        plain.erase(plain.begin());
      }
      ASSERT_EQ(blocks.size(), plain.size());
    }
    largest = std::max(largest, plain.size());
    ASSERT_EQ(list(blocks), std::vector<int>(plain.begin(), plain.end()));
    while (!plain.empty()) {
      ASSERT_EQ(blocks.front(), *plain.begin());
      blocks.pop_Front();
      plain.erase(plain.begin());
    }
    ASSERT_TRUE(blocks.empty());
  }
  EXPECT_GT(largest, 500u);
}

TEST(Wishes, ComeCheapestFirst_AndOfEqualCostsTheLowerTriangle) {
  const TUcWish cheap = {-1, 9}, low = {-0.5, 3}, high = {-0.5, 4};
  EXPECT_TRUE(cheap < low && low < high && cheap < high);
  EXPECT_FALSE(low < cheap || high < low || low < low);
  const TUcWish zero = {0.0, 3}, minus = {-0.0, 3};
  EXPECT_FALSE(zero < minus || minus < zero) << "they are one cost";
}

}  // namespace
}  // namespace undercut
