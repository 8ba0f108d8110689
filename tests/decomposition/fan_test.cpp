#include <gtest/gtest.h>

#include <cmath>

#include "decomposition/candidates.h"
#include "tests/support/maps.h"

namespace undercut {
namespace {

using namespace tests;
using List = std::vector<uint32_t>;

List fan_Of(const CMap& map) { return copy_Of(map.scratch_a); }

void expect_Marked(const CMap& map, const List& fan) {
  for (uint32_t t = 0; t < map.msh.n_tri; ++t)
    EXPECT_EQ(map.mark.test(t), std::count(fan.begin(), fan.end(), t) != 0) << t;
}

TEST(Fan, OfATriangleThatIsInTheRegionOrDoesNotTouchIt_Fails) {
  TWorld world(make_Strip(6));
  world.start();
  world.settle(1, {2});
  EXPECT_FALSE(walk_Fan(world.map, 2, 1));
  EXPECT_FALSE(walk_Fan(world.map, 5, 1));
  EXPECT_TRUE(walk_Fan(world.map, 3, 1));
}

TEST(Fan, GoesRoundBothEndsOfASingleEdgeUpToTheRegion) {
  // Round the hub from triangle 1 over all others back to the region.
  TWorld world(make_Wheel(7));
  world.start();
  world.settle(1, {0});
  ASSERT_TRUE(walk_Fan(world.map, 1, 1));
  EXPECT_EQ(fan_Of(world.map), (List{1, 2, 3, 4, 5, 6}));
  expect_Marked(world.map, {1, 2, 3, 4, 5, 6});
  double shared, other;
  ASSERT_TRUE(sum_Fan(world.map, 1, shared, other));
  EXPECT_NEAR(shared, 2, 1e-12) << "the two spokes of triangle 0";
  EXPECT_EQ(other, 0);
  EXPECT_EQ(q_Bnd(world.map, world.map.get_Uca(1), 1), 1.0);
}

TEST(Fan, GoesRoundTheFirstEndOfTheEdgeFirst) {
  // Triangle 20 touches the region by its second edge: first round the corner before that edge.
  TWorld world(make_Grid(4, 4));
  world.start();
  const int32_t across = world.map.slots[20][1];
  world.settle(1, {static_cast<uint32_t>(across)});
  ASSERT_TRUE(walk_Fan(world.map, 20, 1));
  const List fan = fan_Of(world.map);
  ASSERT_GT(fan.size(), 4u);
  EXPECT_EQ(fan[0], 20u);
  EXPECT_EQ(fan[1], static_cast<uint32_t>(world.map.slots[20][0]));
  const uint32_t pivot = corner(world.map.msh.tri[20], 1), then = corner(world.map.msh.tri[20], 2);
  size_t i = 1;
  while (i < fan.size() && has_Vtx(world.map.msh.tri[fan[i]], pivot)) ++i;
  EXPECT_EQ(i, 5u) << "six triangles meet at the pivot";
  while (i < fan.size() && has_Vtx(world.map.msh.tri[fan[i]], then)) ++i;
  EXPECT_EQ(i, fan.size());
}

TEST(Fan, StopsAtTheBorderOfTheMeshWithoutFailing) {
  TWorld world(make_Fan(5));
  world.start();
  world.settle(1, {1});
  ASSERT_TRUE(walk_Fan(world.map, 2, 1));
  EXPECT_EQ(fan_Of(world.map), (List{2, 3, 4}));
}

TEST(Fan, StopsAtATriangleOutsideTheRegionOfInterest) {
  TWorld world(make_Wheel(7));
  world.start({0, 1, 2, 3, 5, 6});
  world.settle(1, {0});
  ASSERT_TRUE(walk_Fan(world.map, 1, 1));
  EXPECT_EQ(fan_Of(world.map), (List{1, 2, 3}));
}

TEST(Fan, DoesNotStopAtAnotherRegion) {
  TWorld world(make_Wheel(7));
  world.start();
  world.settle(1, {0});
  world.settle(2, {3, 4});
  ASSERT_TRUE(walk_Fan(world.map, 1, 1));
  EXPECT_EQ(fan_Of(world.map), (List{1, 2, 3, 4, 5, 6}));
}

TEST(Fan, WithTwoEdgesOnTheRegion_IsTheTriangleAlone_WeighedByItsThreeEdges) {
  TWorld world(make_Grid(3, 3));
  world.start();
  const uint32_t t = 8;  // corners (1, 1), (2, 1), (2, 2), all sides inside the sheet
  const auto& slot = world.map.slots[t];
  CUcA* region = world.settle(1, {uint32_t(slot[0]), uint32_t(slot[1])});
  ASSERT_TRUE(walk_Fan(world.map, t, 1));
  EXPECT_EQ(fan_Of(world.map), List{t});
  expect_Marked(world.map, {t});
  double shared, other;
  ASSERT_TRUE(sum_Fan(world.map, 1, shared, other));
  EXPECT_EQ(shared, 2);
  EXPECT_EQ(other, std::sqrt(2.0));
  EXPECT_EQ(q_Bnd(world.map, region, t), 2 / (2 + std::sqrt(2.0)));
}

TEST(Fan, WithAllThreeEdgesOnTheRegion_GivesABorderMeasureOfOne) {
  TWorld world(make_Grid(3, 3));
  world.start();
  const auto& slot = world.map.slots[8];
  CUcA* region = world.settle(1, {uint32_t(slot[0]), uint32_t(slot[1]), uint32_t(slot[2])});
  EXPECT_EQ(q_Bnd(world.map, region, 8), 1.0);
}

TEST(Fan, EdgesAtTheBorderOfTheMeshCountForNeitherSide) {
  TWorld world(make_Strip(2));
  world.start();
  world.settle(1, {0});
  ASSERT_TRUE(walk_Fan(world.map, 1, 1));
  double shared, other;
  ASSERT_TRUE(sum_Fan(world.map, 1, shared, other));
  EXPECT_EQ(shared, dst(world.soup.vtx[1], world.soup.vtx[2]));
  EXPECT_EQ(other, 0);
}

TEST(Fan, UnmarksTheOneBefore_EvenIfItFails) {
  TWorld world(make_Wheel(7));
  world.start();
  world.settle(1, {0});
  ASSERT_TRUE(walk_Fan(world.map, 1, 1));
  EXPECT_FALSE(walk_Fan(world.map, 0, 1));
  expect_Marked(world.map, {});
  EXPECT_FALSE(walk_Fan(world.map, 3, 1));
  expect_Marked(world.map, {});
}

// A page on the spoke from 0 to 1 of a closed wheel, and a second page beside it. The slots of the
// wheel hold its own triangles, so a walk that comes in by the page never comes back.
TSoup make_Trap() {
  TSoup soup = make_Soup(9, {{0, 1, 7}, {7, 8, 0}});
  for (uint32_t k = 1; k <= 6; ++k) soup.tri.push_back({0, k, k % 6 + 1});
  return soup;
}

TEST(Fan, ThatNeverComesBack_FailsWhenScratchIsFull) {
  TWorld world(make_Trap());
  world.start();
  CUcA* region = world.settle(1, {1});
  EXPECT_FALSE(walk_Fan(world.map, 0, 1));
  EXPECT_EQ(world.map.scratch_a.count, 8u);
  EXPECT_EQ(q_Bnd(world.map, region, 0), -2.0);
}

TEST(Fan, EndsAtATriangleThatHasNoOtherEdgeAtThePivot) {
  TWorld world(make_Soup(5, {{0, 1, 2}, {0, 2, 3}, {0, 1, 1}}));
  world.start();
  world.settle(1, {1});
  ASSERT_EQ(world.map.slots[0][0], 2);
  ASSERT_TRUE(walk_Fan(world.map, 0, 1));
  EXPECT_EQ(fan_Of(world.map), (List{0, 2}));
}

TEST(Fan, OfEdgesWithoutLength_HasNoBorderMeasure) {
  TSoup soup = make_Strip(2);
  for (T3DVEC& v : soup.vtx) v = {0, 0, 0};
  TWorld world(soup);
  world.start();
  const CUcA* region = world.settle(1, {0});
  EXPECT_TRUE(std::isnan(q_Bnd(world.map, region, 1)));
}

}  // namespace
}  // namespace undercut
