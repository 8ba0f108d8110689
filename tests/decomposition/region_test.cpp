#include "decomposition/region.h"

#include <gtest/gtest.h>

#include "tests/reference/random_geometry.h"

namespace undercut {
namespace {

bool is_Zero(const T3DVEC& v) { return v == T3DVEC{0, 0, 0}; }
bool is_Identity(const T3DFRM& f) {
  return f.x == T3DVEC{1, 0, 0} && f.y == T3DVEC{0, 1, 0} && f.z == T3DVEC{0, 0, 1} &&
         is_Zero(f.org);
}

TEST(Region, AFreshOne_HasNoIdNoBandAndNoTriangles) {
  const CUcA region;
  EXPECT_EQ(region.id, -1);
  EXPECT_EQ(region.band, 0xFFFFFFFFu);
  EXPECT_FALSE(region.fixed);
  EXPECT_EQ(region.head, -1);
  EXPECT_EQ(region.count, 0u);
  EXPECT_TRUE(region.boundary.empty());
  EXPECT_EQ(region.rank, 0);
  EXPECT_TRUE(region.candidates.empty());
  EXPECT_TRUE(region.queue.empty());
  EXPECT_EQ(region.polar0, -180.0);
  EXPECT_EQ(region.azimuth0, -360.0);
}

TEST(Region, FreshMeasures_AreZero_WithIdentityFramesAndNoBand) {
  const TUcMeasures m;
  EXPECT_EQ(m.polar_low, 1.0);
  EXPECT_EQ(m.polar_high, -1.0);
  for (const double value :
       {m.area, m.perimeter, m.axis_area, m.axis_perimeter, m.axis_ratio, m.normal_area,
        m.normal_perimeter, m.plane.centre.x, m.plane.centre.y, m.plane.sxx, m.plane.syy,
        m.plane.sxy, m.plane.cxx, m.plane.cyy, m.plane.cxy})
    EXPECT_EQ(value, 0);
  for (const T3DVEC& v : {m.centroid, m.axis, m.normal}) EXPECT_TRUE(is_Zero(v));
  EXPECT_TRUE(is_Identity(m.axis_frame));
  EXPECT_TRUE(is_Identity(m.normal_frame));
}

TEST(Region, AddCnd_RefusesATriangleThatIsPresent_AndKeepsItsCost) {
  CUcA region;
  EXPECT_TRUE(region.add_Cnd(7, -0.5));
  EXPECT_FALSE(region.add_Cnd(7, -0.9));
  EXPECT_TRUE(region.has_Cnd(7));
  EXPECT_FALSE(region.has_Cnd(8));
  double cost = 0;
  EXPECT_TRUE(region.pop_Cnd(7, cost));
  EXPECT_EQ(cost, -0.5);
  EXPECT_FALSE(region.pop_Cnd(7, cost));
}

TEST(Region, AddQue_RefusesAPairThatIsPresent_ButTakesAnotherCost) {
  CUcA region;
  EXPECT_TRUE(region.add_Que(-0.5, 7));
  EXPECT_FALSE(region.add_Que(-0.5, 7));
  EXPECT_TRUE(region.add_Que(-0.6, 7));
  EXPECT_EQ(region.queue.size(), 2u);
}

TEST(Region, PopQue_GivesTheLowestCostFirst_AndTakesItOut) {
  CUcA region;
  region.add_Que(-0.25, 1);
  region.add_Que(-0.75, 2);
  region.add_Que(0.5, 3);
  double cost = 0;
  uint32_t triangle = 0;
  std::vector<uint32_t> order;
  while (region.pop_Que(cost, triangle)) order.push_back(triangle);
  EXPECT_EQ(order, (std::vector<uint32_t>{2, 1, 3}));
  EXPECT_EQ(cost, 0.5);
}

TEST(Region, PopQue_BreaksTiesByTheTriangleAsASignedNumber) {
  CUcA region;
  for (const uint32_t t : {5u, 0u, 0xFFFFFFFFu, 3u}) region.add_Que(-0.5, t);
  double cost = 0;
  uint32_t triangle = 0;
  std::vector<uint32_t> order;
  while (region.pop_Que(cost, triangle)) order.push_back(triangle);
  EXPECT_EQ(order, (std::vector<uint32_t>{0xFFFFFFFFu, 0, 3, 5}));
}

TEST(Region, Queue_TakesZeroAndNegativeZeroForOneCost) {
  CUcA region;
  EXPECT_TRUE(region.add_Que(0.0, 4));
  EXPECT_FALSE(region.add_Que(-0.0, 4));
  EXPECT_TRUE(region.del_Que(-0.0, 4));
}

TEST(Region, PopQue_OfAnEmptyQueueIsFalse_AndWritesNothing) {
  CUcA region;
  double cost = 3;
  uint32_t triangle = 4;
  EXPECT_FALSE(region.pop_Que(cost, triangle));
  EXPECT_FALSE(region.pop_Cnd(4, cost));
  EXPECT_EQ(cost, 3);
  EXPECT_EQ(triangle, 4u);
}

TEST(Region, DelQue_AsksForTheExactPair) {
  CUcA region;
  region.add_Que(-0.5, 7);
  EXPECT_FALSE(region.del_Que(-0.5, 8));
  EXPECT_FALSE(region.del_Que(std::nextafter(-0.5, 0.0), 7));
  EXPECT_TRUE(region.del_Que(-0.5, 7));
  EXPECT_TRUE(region.queue.empty());
}

TEST(Region, DropWish_FailsWhereMapAndQueueDisagree) {
  CUcA region;
  region.add_Cnd(7, -0.5);
  EXPECT_FALSE(region.drop_Wish(7));
  region.add_Cnd(8, -0.5);
  region.add_Que(-0.4, 8);
  EXPECT_FALSE(region.drop_Wish(8));
}

TEST(Region, WishesKeepMapAndQueueAlike) {
  reference::Random random(601);
  CUcA region;
  for (int step = 0; step < 20000; ++step) {
    const auto triangle = static_cast<uint32_t>(random.below(60));
    const bool had = region.has_Cnd(triangle);
    if (random.chance(0.6))
      ASSERT_EQ(region.add_Wish(triangle, -double(random.below(9)) / 8), !had);
    else
      ASSERT_EQ(region.drop_Wish(triangle), had);
    ASSERT_EQ(region.candidates.size(), region.queue.size());
    for (const TUcWish& wish : region.queue)
      ASSERT_EQ(region.candidates.find({uint32_t(wish.triangle), 0})->cost, wish.cost);
  }
}

TEST(Region, ClrSets_EmptiesBoundaryAndCandidatesAlone) {
  CUcA region(5);
  region.add_Wish(1, -1);
  region.boundary.insert(2);
  region.count = 3;
  region.clr_Sets();
  EXPECT_TRUE(region.boundary.empty() && region.candidates.empty() && region.queue.empty());
  EXPECT_EQ(region.id, 5);
  EXPECT_EQ(region.count, 3u);
}

}  // namespace
}  // namespace undercut
