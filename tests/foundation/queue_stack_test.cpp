#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <type_traits>

#include "foundation/queue.h"
#include "foundation/stack.h"
#include "tests/support/allocations.h"

namespace undercut {
namespace {

using tests::FailingAllocation;
using tests::live_Allocations;

template <typename Container>
class QueueStack : public testing::Test {};
using Containers = testing::Types<CQueue, CStack>;
TYPED_TEST_SUITE(QueueStack, Containers);

TYPED_TEST(QueueStack, StartsEmptyAndPopsNothing) {
  TypeParam links;
  uint32_t value = 7;
  EXPECT_TRUE(links.is_Empty());
  EXPECT_EQ(links.count(), 0u);
  EXPECT_FALSE(links.pop(value));
  EXPECT_EQ(value, 7u);
  EXPECT_TRUE(links.release());
  EXPECT_TRUE(std::has_virtual_destructor_v<TypeParam>);
  EXPECT_EQ(sizeof(typename TypeParam::Node), 16u);
}

TYPED_TEST(QueueStack, BehavesLikeADeque) {
  std::mt19937_64 random(31);
  SCOPED_TRACE("seed 31");
  TNodePool<TLinkNode> pool;
  ASSERT_TRUE(pool.init(50));
  for (bool pooled : {false, true}) {
    TypeParam links;
    if (pooled) links.SetPool(&pool);
    std::deque<uint32_t> plain;
    for (int step = 0; step < 20000; ++step) {
      const bool pushes = random() % 100 < (step / 1000 % 2 ? 60u : 40u);
      const bool full = pooled && plain.size() == 50;
      if (pushes) {
        const uint32_t value = static_cast<uint32_t>(random());
        ASSERT_EQ(links.push(value), !full);
        if (!full) plain.push_back(value);
      } else {
        uint32_t value = 0;
        ASSERT_EQ(links.pop(value), !plain.empty());
        if (plain.empty()) continue;
        const bool first = std::is_same_v<TypeParam, CQueue>;
        ASSERT_EQ(value, first ? plain.front() : plain.back());
        first ? plain.pop_front() : plain.pop_back();
      }
      ASSERT_EQ(links.count(), plain.size());
      ASSERT_EQ(links.is_Empty(), plain.empty());
      if (pooled) {
        ASSERT_EQ(pool.free(), 50 - static_cast<int>(plain.size()));
      }
    }
  }
  EXPECT_EQ(pool.free(), 50);
}

TYPED_TEST(QueueStack, PushFailsWhenThePoolIsEmpty) {
  TNodePool<TLinkNode> pool;
  ASSERT_TRUE(pool.init(2));
  TypeParam links;
  links.SetPool(&pool);
  EXPECT_TRUE(links.push(1));
  EXPECT_TRUE(links.push(2));
  EXPECT_FALSE(links.push(3));
  EXPECT_EQ(links.count(), 2u);
  uint32_t value;
  EXPECT_TRUE(links.pop(value));
  EXPECT_TRUE(links.push(3));
}

TYPED_TEST(QueueStack, ANewPushAfterEmptyingStartsAnew) {
  TypeParam links;
  uint32_t value = 0;
  for (uint32_t i = 0; i < 5; ++i) {
    ASSERT_TRUE(links.push(i));
    ASSERT_TRUE(links.pop(value));
    EXPECT_EQ(value, i);
    EXPECT_TRUE(links.is_Empty());
  }
}

TYPED_TEST(QueueStack, ReleaseAndDestructor_GiveAllNodesBack) {
  const int64_t before = live_Allocations();
  TNodePool<TLinkNode> pool;
  ASSERT_TRUE(pool.init(9));
  {
    TypeParam pooled, own;
    pooled.SetPool(&pool);
    for (uint32_t i = 0; i < 9; ++i) ASSERT_TRUE(pooled.push(i) && own.push(i));
    EXPECT_EQ(pool.free(), 0);
    EXPECT_TRUE(pooled.release());
    EXPECT_EQ(pool.free(), 9);
    EXPECT_EQ(pooled.count(), 0u);
    ASSERT_TRUE(pooled.push(1));
  }
  EXPECT_EQ(pool.free(), 9);
  pool.clear();
  EXPECT_EQ(live_Allocations(), before);
}

TYPED_TEST(QueueStack, Release_StopsWhereThePoolRefusesANode) {
  TNodePool<TLinkNode> pool;
  ASSERT_TRUE(pool.init(3));
  TypeParam links;
  links.SetPool(&pool);
  for (uint32_t i = 0; i < 3; ++i) ASSERT_TRUE(links.push(i));
  // A pool that was filled up behind the container's back takes nothing more.
  TLinkNode foreign[2];
  ASSERT_TRUE(pool.give(&foreign[0]) && pool.give(&foreign[1]));
  EXPECT_FALSE(links.release());
  EXPECT_EQ(links.count(), 1u);
}

TYPED_TEST(QueueStack, FailingMemory_LeavesItUnchanged) {
  TypeParam links;
  ASSERT_TRUE(links.push(1));
  bool pushed;
  {
    FailingAllocation failing(1);
    pushed = links.push(2);
  }
  EXPECT_FALSE(pushed);
  EXPECT_EQ(links.count(), 1u);
  uint32_t value = 0;
  EXPECT_TRUE(links.pop(value));
  EXPECT_EQ(value, 1u);
}

TEST(Queue, FirstInIsFirstOut) {
  CQueue queue;
  for (uint32_t i = 0; i < 4; ++i) ASSERT_TRUE(queue.push(i));
  uint32_t value;
  for (uint32_t i = 0; i < 4; ++i) {
    ASSERT_TRUE(queue.pop(value));
    EXPECT_EQ(value, i);
  }
}

TEST(Stack, LastInIsFirstOut) {
  CStack stack;
  for (uint32_t i = 0; i < 4; ++i) ASSERT_TRUE(stack.push(i));
  uint32_t value;
  for (uint32_t i = 4; i-- > 0;) {
    ASSERT_TRUE(stack.pop(value));
    EXPECT_EQ(value, i);
  }
}

}  // namespace
}  // namespace undercut
