#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/support/regions.h"

namespace undercut {
namespace {

using namespace tests;
using List = std::vector<uint32_t>;

struct TRanked {
  CMap map;
  CUcA region{1};
  TUcRank context{&region, &map, 1.0, 0.0};
  TRanked(double area, double perimeter, double roi_area) {
    region.measures.area = area;
    region.measures.perimeter = perimeter;
    map.roi_area = roi_area;
  }
  double rank() {
    double value = 77;
    EXPECT_TRUE(cost_Uca(context, value));
    return value;
  }
};

TEST(CostUca, FailsWithoutRegionOrMap) {
  TRanked ranked(1, 1, 1);
  double rank;
  ranked.context.region = nullptr;
  EXPECT_FALSE(cost_Uca(ranked.context, rank));
  ranked.context = {&ranked.region, nullptr, 1, 0};
  EXPECT_FALSE(cost_Uca(ranked.context, rank));
}

TEST(CostUca, ByDefaultIsPureSize_SmallFirst) {
  EXPECT_EQ(TRanked(1, 9, 4).rank(), -0.75);
  EXPECT_LT(TRanked(1, 9, 4).rank(), TRanked(2, 1, 4).rank());
}

TEST(CostUca, OfARegionThatIsTheWholeRegionOfInterest_HasNoSizeTerm) {
  EXPECT_EQ(TRanked(4, 9, 4).rank(), 0.0);
}

TEST(CostUca, TheShapeTermIsZeroForACircleAndGrowsWithTheBorder) {
  const double pi = 3.141592653589793;
  TRanked circle(pi, 2 * pi, 10);
  circle.context.area_weight = 0;
  circle.context.shape_weight = 2;
  EXPECT_EQ(circle.rank(), 0.0);
  circle.region.measures.perimeter = 4 * pi;
  EXPECT_EQ(circle.rank(), -1.0);
}

TEST(CostUca, WithoutABorder_IsNoNumber_EvenWithAShapeWeightOfZero) {
  TRanked closed(4, 0, 8);
  EXPECT_TRUE(std::isnan(closed.rank()));
  closed.context.shape_weight = 1;
  EXPECT_EQ(closed.rank(), std::numeric_limits<double>::infinity());
}

// ---- Stage -------------------------------------------------------------------------------------

TEST(Ranking, CandidatesAreTheWholeFrontier_WhoeverHoldsIt) {
  // 0 is free, 1 and 2 the region, 3 another's and locked; 5 lies outside.
  TRig rig(make_Strip(6), open_Par(), {0, 1, 2, 3, 4});
  CUcA* one = settle_Open(rig, 1, {1, 2});
  CUcA* two = settle_Open(rig, 2, {3, 4});
  rig.map().set_Lck(3);
  ASSERT_TRUE(rank_Regions(rig.stage));
  EXPECT_EQ(list_Cnd(*one), (List{0, 3}));
  EXPECT_EQ(list_Cnd(*two), (List{2, 5})) << "one outside the region of interest comes in";
  EXPECT_EQ(two->boundary, (std::set<uint32_t>{2, 5}));
  for (const CUcA* region : {one, two})
    for (const TUcWish& wish : region->queue)
      EXPECT_EQ(cost_Cnd(*region, static_cast<uint32_t>(wish.triangle)), wish.cost);
  EXPECT_LT(cost_Cnd(*one, 0), cost_Cnd(*one, 3)) << "what is free is wanted more";
}

TEST(Ranking, LeavesOutWhatIsNotAcceptable_AndKeepsItInTheBoundary) {
  TRig rig(make_Pyramid(), open_Par());
  CUcA* region = settle_Open(rig, 1, {0});
  ASSERT_TRUE(rank_Regions(rig.stage));
  EXPECT_TRUE(region->candidates.empty());
  EXPECT_EQ(region->boundary, (std::set<uint32_t>{1, 2, 3}));
}

TEST(Ranking, EveryOpenRegionStandsOnceInMapAndQueueUnderItsRank) {
  TRig rig(make_Strip(9), open_Par());
  settle_Open(rig, 1, {0, 1, 2});
  settle_Open(rig, 2, {4});
  settle_Open(rig, 3, {6, 7})->fixed = true;
  rig.map().add_Rnk(77, 1);  // of an earlier pass
  rig.map().add_Rnq(1, 77, nullptr);
  ASSERT_TRUE(rank_Regions(rig.stage));
  ASSERT_EQ(rig.map().turns.size(), 2u);
  ASSERT_EQ(rig.map().ranks.size(), 2u);
  EXPECT_EQ(rig.map().turns.begin()->id, 2) << "the smaller first";
  for (const TUcTurn& turn : rig.map().turns) {
    EXPECT_EQ(turn.region, rig.map().get_Uca(turn.id));
    EXPECT_EQ(turn.rank, turn.region->rank);
    EXPECT_EQ(turn.rank, rig.map().ranks.at(turn.id));
  }
}

TEST(Ranking, EmptiesRegion0AndFixedRegionsAndRanksThemNot) {
  TRig rig(make_Strip(9), open_Par());
  CUcA* fixed = settle_Open(rig, 3, {6, 7});
  fixed->fixed = true;
  CUcA* free_region = rig.map().get_Uca(0);
  for (CUcA* region : {fixed, free_region}) {
    region->add_Wish(1, -1);
    region->boundary.insert(2);
  }
  ASSERT_TRUE(rank_Regions(rig.stage));
  for (const CUcA* region : {fixed, free_region})
    EXPECT_TRUE(region->candidates.empty() && region->queue.empty() && region->boundary.empty());
  EXPECT_TRUE(rig.map().ranks.empty() && rig.map().turns.empty());
}

TEST(Ranking, BuildsTheSetsOfARegionFromScratch) {
  TRig rig(make_Strip(9), open_Par());
  CUcA* region = settle_Open(rig, 1, {3, 4});
  region->add_Wish(8, -100);
  region->add_Wish(5, -100);
  region->boundary.insert(7);
  ASSERT_TRUE(rank_Regions(rig.stage));
  EXPECT_EQ(list_Cnd(*region), (List{2, 5}));
  EXPECT_GT(cost_Cnd(*region, 5), -100);
  EXPECT_EQ(region->boundary, (std::set<uint32_t>{2, 5}));
}

TEST(Ranking, ARegionThatCoversAClosedMeshHasNoCandidates_AndARank) {
  TRig rig(make_Sphere(5, 8, 2), open_Par());
  CUcA* region = settle_Open(rig, 1, list_All(rig.world.soup));
  region->measures.perimeter = 1e-9;  // as sums of lengths leave it
  ASSERT_TRUE(rank_Regions(rig.stage));
  EXPECT_TRUE(region->candidates.empty());
  EXPECT_TRUE(region->boundary.empty());
  EXPECT_EQ(rig.map().ranks.count(1), 1u);
  EXPECT_TRUE(balance_Regions(rig.stage));
}

TEST(Ranking, ARankThatIsNoNumberFailsTheRunInTheEnd) {
  TRig alone(make_Sphere(5, 8, 2), open_Par());
  settle_Open(alone, 1, list_All(alone.world.soup))->measures.perimeter = 0;
  ASSERT_TRUE(rank_Regions(alone.stage));
  EXPECT_FALSE(balance_Regions(alone.stage));

  for (const int32_t id : {1, 2}) {
    TRig both(make_Strip(6), open_Par());
    settle_Open(both, 1, {0, 1});
    settle_Open(both, 2, {4, 5});
    both.map().get_Uca(id)->measures.perimeter = 0;
    EXPECT_FALSE(rank_Regions(both.stage) && balance_Regions(both.stage));
  }
}

TEST(Ranking, ACostOutOfRangeFailsTheStage) {
  CDcmPar par = open_Par();
  par.T_win = 180;
  TRig rig(make_Strip(5), par);
  settle_Open(rig, 1, {2});
  EXPECT_FALSE(rank_Regions(rig.stage));
}

TEST(Ranking, ANeighbourThatNoSlotJoinsToTheRegionFailsTheStage) {
  // Of the pages of a book the slot keeps the last; the frontier holds them all.
  TSoup soup = make_Strip(2);
  soup.vtx.push_back({0.1, -3, 0});
  soup.tri.push_back({1, 2, 4});
  soup.tri[0] = {0, 2, 1};
  TRig rig(soup, open_Par());
  ASSERT_EQ(rig.map().slots[1][0], 2);
  settle_Open(rig, 1, {0});
  rig.cnd.aperture = 179;
  EXPECT_FALSE(rank_Regions(rig.stage));
}

}  // namespace
}  // namespace undercut
