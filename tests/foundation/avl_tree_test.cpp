#include "foundation/avl_tree.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "foundation/containers.h"
#include "foundation/values.h"
#include "tests/support/allocations.h"

namespace undercut {
namespace {

using tests::FailingAllocation;
using tests::live_Allocations;

using Pair = CPair<int32_t, int32_t>;
using Tree = AVLTree<Pair>;
using PointTree = AVLTree<CPair<T3DVECF, int32_t>>;

// Height of a subtree, with its search order and states checked on the way; -1 if one is wrong.
template <typename Node>
int check_At(const Node* at, const int32_t* low, const int32_t* high) {
  if (!at) return 0;
  const int32_t key = at->pair.key;
  if ((low && key <= *low) || (high && key >= *high)) return -1;
  const int left = check_At(at->left, low, &key), right = check_At(at->right, &key, high);
  if (left < 0 || right < 0) return -1;
  if (right - left != at->state - 1) return -1;
  return 1 + std::max(left, right);
}

void expect_Sound(const Tree& tree, const std::map<int32_t, int32_t>& plain) {
  ASSERT_GE(check_At(tree.root(), nullptr, nullptr), 0) << "order or balance is broken";
  ASSERT_EQ(tree.count(), plain.size());
  uint32_t seen = 0;
  tree.pre_Order([&](const Tree::Node& node) {
    ++seen;
    const auto at = plain.find(node.pair.key);
    ASSERT_TRUE(at != plain.end());
    ASSERT_EQ(node.pair.value, at->second);
  });
  ASSERT_EQ(seen, plain.size());
}

// The tree in words: "(left key right)", with "<" and ">" behind a key whose subtree leans.
std::string show_At(const Tree::Node* at) {
  if (!at) return "";
  const char* lean[] = {"<", "", ">"};
  const std::string key = std::to_string(at->pair.key) + lean[at->state];
  if (!at->left && !at->right) return key;
  return "(" + show_At(at->left) + " " + key + " " + show_At(at->right) + ")";
}

void insert_All(Tree& tree, const std::vector<int32_t>& keys) {
  for (int32_t key : keys) ASSERT_TRUE(tree.Insert({key, 10 * key}));
}

TEST(AVLTree, NodesArePacked) {
  EXPECT_EQ(sizeof(CPair<T3DVECF, int32_t>), 28u);
  EXPECT_EQ(sizeof(PointTree::Node), 48u);
  EXPECT_EQ(sizeof(AVLTree<CPair<uint32_t, uint32_t>>::Node), 32u);
  EXPECT_EQ(sizeof(AVLTree<CPair<int32_t, void*>>::Node), 32u);
  EXPECT_TRUE(std::has_virtual_destructor_v<Tree>);
}

TEST(AVLTree, AnEmptyTreeFindsAndRemovesNothing) {
  Tree tree;
  Pair io = {3, 4};
  EXPECT_FALSE(tree.Find(io));
  EXPECT_EQ(io.value, 4);
  EXPECT_FALSE(tree.Remove(3));
  EXPECT_EQ(tree.count(), 0u);
  EXPECT_EQ(tree.root(), nullptr);
  tree.pre_Order([](const Tree::Node&) { FAIL(); });
}

TEST(AVLTree, InsertingAPresentKey_IsFalseAndChangesNothing) {
  Tree tree;
  insert_All(tree, {2, 1, 3});
  for (int32_t key : {1, 2, 3}) EXPECT_FALSE(tree.Insert({key, 99}));
  EXPECT_EQ(tree.count(), 3u);
  Pair io = {1, 0};
  ASSERT_TRUE(tree.Find(io));
  EXPECT_EQ(io.value, 10);
  EXPECT_EQ(show_At(tree.root()), "(1 2 3)");
}

TEST(AVLTree, Insertion_RotatesInAllFourWays) {
  const std::vector<int32_t> orders[] = {{1, 2, 3}, {3, 2, 1}, {1, 3, 2}, {3, 1, 2}};
  for (const auto& order : orders) {
    Tree tree;
    insert_All(tree, order);
    EXPECT_EQ(show_At(tree.root()), "(1 2 3)");
  }
}

TEST(AVLTree, ADoubleRotation_TakesItsStatesFromTheGrandchild) {
  // The grandchild 4 leans left, then right, and its mirror image.
  Tree left, right, mirror_left, mirror_right;
  insert_All(left, {6, 2, 7, 1, 4, 3});
  EXPECT_EQ(show_At(left.root()), "((1 2 3) 4 ( 6> 7))");
  insert_All(right, {6, 2, 7, 1, 4, 5});
  EXPECT_EQ(show_At(right.root()), "((1 2< ) 4 (5 6 7))");
  insert_All(mirror_left, {2, 1, 6, 4, 7, 3});
  EXPECT_EQ(show_At(mirror_left.root()), "((1 2 3) 4 ( 6> 7))");
  insert_All(mirror_right, {2, 1, 6, 4, 7, 5});
  EXPECT_EQ(show_At(mirror_right.root()), "((1 2< ) 4 (5 6 7))");
}

TEST(AVLTree, PreOrder_GoesNodeLeftRight) {
  Tree tree;
  insert_All(tree, {4, 2, 6, 1, 3, 5, 7});
  std::vector<int32_t> keys;
  tree.pre_Order([&](const Tree::Node& node) { keys.push_back(node.pair.key); });
  EXPECT_EQ(keys, (std::vector<int32_t>{4, 2, 1, 3, 6, 5, 7}));
}

TEST(AVLTree, ARemovedNodeWithTwoChildren_IsReplacedByTheLargestOfItsLeftSubtree) {
  Tree tree;
  insert_All(tree, {4, 2, 6, 1, 3, 5, 7});
  ASSERT_TRUE(tree.Remove(4));
  EXPECT_EQ(show_At(tree.root()), "((1 2< ) 3 (5 6 7))");
  ASSERT_TRUE(tree.Remove(3));
  EXPECT_EQ(show_At(tree.root()), "(1 2> (5 6 7))");
}

TEST(AVLTree, Removal_KeepsTheHeightWhereTheChildIsEven) {
  Tree tree, mirror;
  insert_All(tree, {4, 2, 5, 1, 3});
  ASSERT_TRUE(tree.Remove(5));
  EXPECT_EQ(show_At(tree.root()), "(1 2> (3 4< ))");
  insert_All(mirror, {2, 1, 4, 3, 5});
  ASSERT_TRUE(mirror.Remove(1));
  EXPECT_EQ(show_At(mirror.root()), "(( 2> 3) 4< 5)");
}

TEST(AVLTree, Removal_RebalancesAllTheWayUp) {
  // The thinnest tree of height 5: taking its highest key makes every ancestor rotate.
  Tree tree;
  insert_All(tree, {8, 5, 11, 3, 7, 10, 12, 2, 4, 6, 9, 1});
  ASSERT_EQ(check_At(tree.root(), nullptr, nullptr), 5);
  ASSERT_TRUE(tree.Remove(12));
  EXPECT_EQ(check_At(tree.root(), nullptr, nullptr), 4);
  EXPECT_EQ(show_At(tree.root()), "(((1 2< ) 3< 4) 5 ((6 7< ) 8 (9 10 11)))");
}

TEST(AVLTree, BehavesLikeAMapAndStaysBalanced) {
  std::mt19937_64 random(41);
  SCOPED_TRACE("seed 41");
  for (int32_t range : {3, 10, 60, 400}) {
    Tree tree;
    std::map<int32_t, int32_t> plain;
    for (int step = 0; step < 4000; ++step) {
      const int32_t key = static_cast<int32_t>(random() % range) - range / 2;
      const bool inserts = random() % 100 < (step / 500 % 2 ? 35u : 65u);
      if (inserts) {
        ASSERT_EQ(tree.Insert({key, step}), plain.emplace(key, step).second);
      } else {
        ASSERT_EQ(tree.Remove(key), plain.erase(key) == 1);
      }
      expect_Sound(tree, plain);
      if (HasFatalFailure()) return;
      Pair io = {static_cast<int32_t>(random() % range) - range / 2, -1};
      const auto at = plain.find(io.key);
      ASSERT_EQ(tree.Find(io), at != plain.end());
      ASSERT_EQ(io.value, at == plain.end() ? -1 : at->second);
    }
  }
}

TEST(AVLTree, SortedInput_StaysFlat) {
  Tree tree;
  for (int32_t i = 0; i < 100000; ++i) ASSERT_TRUE(tree.Insert({i, i}));
  EXPECT_LE(check_At(tree.root(), nullptr, nullptr), 17);
  for (int32_t i = 0; i < 100000; ++i) ASSERT_TRUE(tree.Remove(i));
  EXPECT_EQ(tree.root(), nullptr);
  EXPECT_EQ(tree.count(), 0u);
}

TEST(AVLTree, APoolOfNNodes_TakesNKeysAndNoMore) {
  TNodePool<Tree::Node> pool;
  ASSERT_TRUE(pool.init(5));
  Tree tree;
  tree.SetPool(&pool);
  for (int32_t i = 0; i < 5; ++i) EXPECT_TRUE(tree.Insert({i, i}));
  EXPECT_FALSE(tree.Insert({5, 5}));
  EXPECT_EQ(tree.count(), 5u);
  EXPECT_GE(check_At(tree.root(), nullptr, nullptr), 0);
  EXPECT_TRUE(tree.Remove(0));
  EXPECT_EQ(pool.free(), 1);
  EXPECT_TRUE(tree.Insert({5, 5}));
}

TEST(AVLTree, APoolWalksTheNodesNewestFirst) {
  TNodePool<Tree::Node> pool;
  ASSERT_TRUE(pool.init(8));
  Tree tree;
  tree.SetPool(&pool);
  const std::vector<int32_t> keys = {4, 9, 1, 7, 7, 3};
  for (int32_t key : keys) tree.Insert({key, key});
  const std::vector<int32_t> newest = {3, 7, 1, 9, 4};
  for (int32_t i = 0; i < 5; ++i) EXPECT_EQ(pool.used(i)->pair.key, newest[i]);
  EXPECT_EQ(pool.used(5), nullptr);
}

TEST(AVLTree, Clear_GivesNodesBackAsNew) {
  TNodePool<Tree::Node> pool;
  ASSERT_TRUE(pool.init(20));
  {
    Tree tree;
    tree.SetPool(&pool);
    for (int32_t i = 0; i < 20; ++i) ASSERT_TRUE(tree.Insert({i, i}));
    tree.Clear();
    EXPECT_EQ(tree.count(), 0u);
    EXPECT_EQ(tree.root(), nullptr);
    EXPECT_EQ(pool.free(), 20);
    for (int32_t i = 0; i < 7; ++i) ASSERT_TRUE(tree.Insert({i, i}));
    EXPECT_TRUE(tree.Remove(3));
  }
  EXPECT_EQ(pool.free(), 20);
  for (Tree::Node* node; pool.take(node);) {
    EXPECT_EQ(node->state, 1);
    EXPECT_EQ(node->left, nullptr);
    EXPECT_EQ(node->right, nullptr);
  }
}

TEST(AVLTree, NodesFromTheHeapAreFreed) {
  const int64_t before = live_Allocations();
  {
    Tree tree;
    for (int32_t i = 0; i < 100; ++i) ASSERT_TRUE(tree.Insert({i * 7 % 101, i}));
    EXPECT_EQ(live_Allocations() - before, 100);
    for (int32_t i = 0; i < 50; ++i) ASSERT_TRUE(tree.Remove(i * 7 % 101));
    EXPECT_EQ(live_Allocations() - before, 50);
  }
  EXPECT_EQ(live_Allocations(), before);
}

TEST(AVLTree, FailingMemory_LeavesTheTreeUnchanged) {
  Tree tree;
  insert_All(tree, {2, 1});
  bool inserted;
  {
    FailingAllocation failing(1);
    inserted = tree.Insert({0, 0});
  }
  EXPECT_FALSE(inserted);
  EXPECT_EQ(show_At(tree.root()), "(1 2< )");
  EXPECT_EQ(tree.count(), 2u);
  EXPECT_TRUE(tree.Insert({0, 0}));
}

TEST(AVLTree, PointKeys_TellTheLastBitAndNotTheSignOfZero) {
  PointTree tree;
  EXPECT_TRUE(tree.Insert({{0.0, 1, 2}, 1}));
  EXPECT_FALSE(tree.Insert({{-0.0, 1, 2}, 2}));
  EXPECT_TRUE(tree.Insert({{0.0, 1, std::nextafter(2.0, 3.0)}, 3}));
  CPair<T3DVECF, int32_t> io = {{-0.0, 1, 2}, 0};
  ASSERT_TRUE(tree.Find(io));
  EXPECT_EQ(io.value, 1);
}

TEST(AVLTree, PointKeysThatAreNotNumbers_HideNoOthers) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  PointTree tree;
  EXPECT_TRUE(tree.Insert({{nan, nan, nan}, 0}));
  for (int32_t i = 1; i < 100; ++i) EXPECT_TRUE(tree.Insert({{i * 0.5, nan, 1}, i}));
  for (int32_t i = 1; i < 100; ++i) EXPECT_TRUE(tree.Insert({{i * 0.5, 1, 1}, 1000 + i}));
  for (int32_t i = 1; i < 100; ++i) {
    CPair<T3DVECF, int32_t> io = {{i * 0.5, 1, 1}, 0};
    ASSERT_TRUE(tree.Find(io));
    EXPECT_EQ(io.value, 1000 + i);
    EXPECT_TRUE(tree.Remove({i * 0.5, nan, 1}));
  }
  EXPECT_EQ(tree.count(), 100u);
}

}  // namespace
}  // namespace undercut
