#include "foundation/node_pool.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/allocations.h"

namespace undercut {
namespace {

using tests::FailingAllocation;
using tests::live_Allocations;

struct Item {
  int value = 5;
};

TEST(NodePool, InitWithNoNodesFails) {
  TNodePool<Item> pool;
  EXPECT_FALSE(pool.init(0));
  EXPECT_FALSE(pool.init(-1));
  EXPECT_EQ(pool.capacity(), 0);
  Item* node = nullptr;
  EXPECT_FALSE(pool.take(node));
  Item own;
  EXPECT_FALSE(pool.give(&own));
  EXPECT_EQ(pool.used(0), nullptr);
}

TEST(NodePool, NodesAreConstructedAndFree) {
  TNodePool<Item> pool;
  ASSERT_TRUE(pool.init(3));
  EXPECT_EQ(pool.capacity(), 3);
  EXPECT_EQ(pool.free(), 3);
  for (int i = 0; i < 3; ++i) {
    Item* node = nullptr;
    ASSERT_TRUE(pool.take(node));
    EXPECT_EQ(node->value, 5);
  }
  EXPECT_EQ(pool.free(), 0);
  Item* node = nullptr;
  EXPECT_FALSE(pool.take(node));
}

TEST(NodePool, TakePopsFromTheTop) {
  TNodePool<Item> pool;
  ASSERT_TRUE(pool.init(3));
  Item *a, *b;
  ASSERT_TRUE(pool.take(a));
  ASSERT_TRUE(pool.take(b));
  EXPECT_EQ(a, b + 1);  // addresses of one block, the last handed out first
  ASSERT_TRUE(pool.give(a));
  Item* again;
  ASSERT_TRUE(pool.take(again));
  EXPECT_EQ(again, a);
}

TEST(NodePool, GiveFailsWhenAllAreFree) {
  TNodePool<Item> pool;
  ASSERT_TRUE(pool.init(2));
  Item* node;
  ASSERT_TRUE(pool.take(node));
  EXPECT_TRUE(pool.give(node));
  EXPECT_FALSE(pool.give(node));
  EXPECT_EQ(pool.free(), 2);
}

TEST(NodePool, Used_WalksFromTheNewest) {
  TNodePool<Item> pool;
  ASSERT_TRUE(pool.init(4));
  std::vector<Item*> taken(3);
  for (Item*& node : taken) ASSERT_TRUE(pool.take(node));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(pool.used(i), taken[2 - i]);
  EXPECT_EQ(pool.used(3), nullptr);
  EXPECT_EQ(pool.used(-1), nullptr);
  EXPECT_EQ(pool.used(INT32_MAX), nullptr);
}

TEST(NodePool, Clear_FreesAndInitStartsAnew) {
  const int64_t before = live_Allocations();
  TNodePool<Item> pool;
  ASSERT_TRUE(pool.init(4));
  ASSERT_TRUE(pool.init(2));
  EXPECT_EQ(pool.capacity(), 2);
  pool.clear();
  EXPECT_EQ(pool.capacity(), 0);
  EXPECT_EQ(pool.free(), 0);
  EXPECT_EQ(live_Allocations(), before);
}

TEST(NodePool, FailingMemory_LeavesItEmpty) {
  const int64_t before = live_Allocations();
  for (uint64_t n = 1; n < 3; ++n) {
    TNodePool<Item> pool;
    bool made;
    {
      FailingAllocation failing(n);
      made = pool.init(4);
    }
    EXPECT_FALSE(made);
    EXPECT_EQ(pool.capacity(), 0);
    EXPECT_EQ(live_Allocations(), before);
  }
}

}  // namespace
}  // namespace undercut
