#include <gtest/gtest.h>

#include "mesh/trees.h"
#include "tests/mesh/tree_shapes.h"
#include "tests/support/allocations.h"
#include "tests/support/flat_polyline.h"
#include "tests/support/intensity.h"

using namespace undercut;
using reference::Random;
using shapes::Answers;
using undercut::tests::scale_Cases;
using undercut::tests::TFlatPolyline;

namespace {

TFlatPolyline make_Loop(const std::vector<T2DVEC>& points) {
  TFlatPolyline pol{points, {}};
  const auto count = static_cast<uint32_t>(points.size());
  for (uint32_t i = 0; i < count; ++i) pol.segments.push_back({i, (i + 1) % count});
  return pol;
}

// The outline of a square, of 4 sides of as many segments each.
TFlatPolyline make_Square(uint32_t side) {
  std::vector<T2DVEC> points;
  for (uint32_t i = 0; i < side; ++i) points.push_back({1.0 * i, 0});
  for (uint32_t i = 0; i < side; ++i) points.push_back({1.0 * side, 1.0 * i});
  for (uint32_t i = 0; i < side; ++i) points.push_back({1.0 * (side - i), 1.0 * side});
  for (uint32_t i = 0; i < side; ++i) points.push_back({0, 1.0 * (side - i)});
  return make_Loop(points);
}

TFlatPolyline make_Random(Random& random, uint32_t count) {
  TFlatPolyline pol;
  for (uint32_t i = 0; i < count; ++i) pol.points.push_back(random.pair(-5, 5));
  for (uint32_t i = 0; i < count; ++i)
    pol.segments.push_back({static_cast<uint32_t>(random.below(count)), i});
  return pol;
}

TFlatPolyline make_Coincident(uint32_t count) {
  TFlatPolyline pol{{{0, 0}, {1, 2}}, {}};
  for (uint32_t i = 0; i < count; ++i) pol.segments.push_back({i % 2, (i + 1) % 2});
  return pol;
}

std::vector<uint32_t> on_Circle(const C2DSgmAABBTree& tree, const C2DCIRC& circle) {
  Answers answers(tree.tree().items.size());
  tree.QueryCircle(circle, answers.list);
  return answers.ids();
}

double distance(TFlatPolyline& pol, uint32_t s, const T2DVEC& p) {
  return dst_Seg2(p, pol.points[pol.segments[s].a], pol.points[pol.segments[s].b]);
}

TEST(SegmentTree, Build_FailsAndLeavesItEmpty_WithoutArraysOrCounts) {
  for (int missing = 0; missing < 4; ++missing) {
    TFlatPolyline pol = make_Square(4);
    C2DSgmAABBTree tree;
    ASSERT_TRUE(tree.Build(pol.view()));
    T2DPOL view = pol.view();
    if (missing == 0) view.pnt = nullptr;
    if (missing == 1) view.sgm = nullptr;
    if (missing == 2) view.n_pnt = 0;
    if (missing == 3) view.n_sgm = 0;
    EXPECT_FALSE(tree.Build(view));
    EXPECT_TRUE(tree.tree().nodes.empty());
    EXPECT_TRUE(on_Circle(tree, {{0, 0}, 5}).empty());
  }
}

TEST(SegmentTree, Build_Fails_OnAPointIndexOutOfRange) {
  TFlatPolyline pol = make_Square(4);
  pol.segments[9].b = 16;
  C2DSgmAABBTree tree;
  EXPECT_FALSE(tree.Build(pol.view()));
  EXPECT_TRUE(tree.tree().items.empty());
}

TEST(SegmentTree, Build_FailsAndLeavesItEmpty_WhereverMemoryRunsOut) {
  TFlatPolyline pol = make_Square(10);
  const std::vector<int32_t> codes = tests::list_FailureCodes([&] {
    C2DSgmAABBTree tree;
    if (tree.Build(pol.view())) return 1;
    return tree.tree().nodes.empty() && tree.tree().items.empty() ? 0 : -1;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{0, 1}));
}

TEST(SegmentTree, SplitsASquareOnX) {
  TFlatPolyline pol = make_Square(4);
  C2DSgmAABBTree tree;
  ASSERT_TRUE(tree.Build(pol.view()));
  const auto& nodes = tree.tree().nodes;
  const C2DAABB& left = nodes[nodes[0].left].box;
  EXPECT_EQ(left.size().y, 4.0);
  EXPECT_LT(left.max.x, 4.0);
}

TEST(SegmentTree, EqualsThePlainBuild) {
  Random random(30);
  for (const uint32_t count : {1u, 10u, 11u, 40u, 300u, 1000u}) {
    for (TFlatPolyline pol :
         {make_Square(count), make_Random(random, count), make_Coincident(count)}) {
      C2DSgmAABBTree tree;
      ASSERT_TRUE(tree.Build(pol.view()));
      std::vector<C2DAABB> boxes(pol.segments.size());
      for (size_t s = 0; s < boxes.size(); ++s) {
        boxes[s].add(pol.points[pol.segments[s].a]);
        boxes[s].add(pol.points[pol.segments[s].b]);
      }
      shapes::expect_Sound(tree.tree().nodes, tree.tree().items);
      shapes::expect_Same(tree.tree().nodes, tree.tree().items,
                          reference::PlainTree<C2DAABB>(boxes));
    }
  }
}

TEST(SegmentTree, QueryCircle_FindsWhatALoopFinds_InItemOrder) {
  Random random(31);
  for (uint32_t round = 0; round < scale_Cases(100); ++round) {
    TFlatPolyline pol = round % 2 ? make_Square(30) : make_Random(random, 150);
    C2DSgmAABBTree tree;
    ASSERT_TRUE(tree.Build(pol.view()));
    for (int k = 0; k < 10; ++k) {
      const C2DCIRC circle = {random.pair(-8, 35), std::pow(10.0, random.real(-1, 2))};
      std::vector<uint32_t> expected;
      for (const auto& item : tree.tree().items)
        if (distance(pol, item.id, circle.centre) <= circle.radius) expected.push_back(item.id);
      EXPECT_EQ(on_Circle(tree, circle), expected);
    }
  }
}

TEST(SegmentTree, QueryCircle_CountsTouchingAsReaching) {
  TFlatPolyline pol = make_Loop({{0, 3}, {4, 3}});
  C2DSgmAABBTree tree;
  ASSERT_TRUE(tree.Build(pol.view()));
  EXPECT_EQ(on_Circle(tree, {{2, 0}, 3}).size(), 2u);
  EXPECT_TRUE(on_Circle(tree, {{2, 0}, 2.999}).empty());
}

TEST(SegmentTree, QueryCircle_TestsSegmentsOfABoxInsideAllTheSame) {
  // The circle's test of points knows no scale, so a box may pass as inside a circle without
  // radius; its segments, tested one by one, do not reach it.
  TFlatPolyline pol = make_Loop({{0, 0}, {4, 0}, {4, 4}});
  C2DSgmAABBTree tree;
  ASSERT_TRUE(tree.Build(pol.view()));
  const C2DCIRC circle = {{1, 3}, 0};
  EXPECT_TRUE(in_Circ(circle, tree.tree().nodes[0].box));
  EXPECT_TRUE(on_Circle(tree, circle).empty());
}

TEST(SegmentTree, Nearest_IsTheSmallestDistanceWithinTheCircle) {
  Random random(32);
  TFlatPolyline pol = make_Random(random, 100);
  C2DSgmAABBTree tree;
  ASSERT_TRUE(tree.Build(pol.view()));
  Answers scratch(100);
  for (uint32_t k = 0; k < scale_Cases(300); ++k) {
    const C2DCIRC circle = {random.pair(-9, 9), random.real(0, 3)};
    const double all = dst_Pol2(pol.view(), circle.centre);
    EXPECT_EQ(tree.Nearest(circle, scratch.list), all <= circle.radius ? all : kAbsent);
  }
}

TEST(SegmentTree, Nearest_IsAbsent_OnAnEmptyTree) {
  const C2DSgmAABBTree tree;
  Answers scratch(1);
  EXPECT_EQ(tree.Nearest({{0, 0}, 10}, scratch.list), kAbsent);
}

TEST(SegmentTree, HoldsPointsThatAreNotNumbers) {
  Random random(33);
  TFlatPolyline pol = make_Random(random, 100);
  for (T2DVEC& p : pol.points)
    if (random.chance(0.2)) p.x = random.special();
  C2DSgmAABBTree tree;
  ASSERT_TRUE(tree.Build(pol.view()));
  for (int k = 0; k < 200; ++k) {
    const C2DCIRC circle = {{random.special(), random.special()}, random.special()};
    EXPECT_LE(on_Circle(tree, circle).size(), 100u);
  }
}

}  // namespace
