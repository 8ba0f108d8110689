#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/measures.h"
#include "tests/support/regions.h"

namespace undercut {
namespace {

using namespace tests;
using List = std::vector<uint32_t>;

// A rig whose seeds are given: triangles in order, all of score 1.
struct TGrowth : TRig {
  TGrowth(TSoup soup, const List& seed_list, const CDcmPar& parameters = open_Par(), List list = {})
      : TRig(std::move(soup), parameters, std::move(list)) {
    cnd.fuzz = 0;
    seeds.clear();
    for (const uint32_t t : seed_list)
      for (uint32_t i = 0; i < triangles.size(); ++i)
        if (triangles[i] == t) seeds.push_back({-1.0, i, 0});
    EXPECT_EQ(seeds.size(), seed_list.size());
  }
  bool grow() { return grow_Regions(stage); }
  List list(int32_t id) {
    const CUcA* region = map().get_Uca(id);
    return region ? list_Tri(map(), *region) : List{};
  }
};

TEST(Growth, FailsWithoutRegions) {
  TGrowth rig(make_Strip(3), {0});
  rig.map().reset_Map();
  EXPECT_FALSE(rig.grow());
}

TEST(Growth, FailsWithoutRegion0) {
  TGrowth rig(make_Strip(3), {0});
  settle_Open(rig, 5, {0});
  ASSERT_TRUE(rig.map().kill_Uca(rig.map().get_Uca(0)));
  EXPECT_FALSE(rig.grow());
}

TEST(Growth, FloodsAllThatIsOpen) {
  TGrowth rig(make_Bumpy(4, 3), {7});
  ASSERT_TRUE(rig.grow());
  EXPECT_EQ(rig.list(1).size(), 24u);
  EXPECT_EQ(rig.map().get_Uca(0)->count, 0u);
  EXPECT_EQ(rig.stage.step, 23u) << "the seed is no step";
  EXPECT_TRUE(rig.map().get_Uca(1)->queue.empty());
  EXPECT_TRUE(rig.map().get_Uca(1)->candidates.empty());
}

TEST(Growth, EndsAtASeedWithoutScore) {
  for (const double key : {0.0, -0.0}) {
    TGrowth rig(make_Strip(9), {0, 4, 8});
    rig.cnd.aperture = 1e-3;
    rig.seeds[1].key = key;
    rig.world.soup.vtx[5].z = 3;  // hinders the first seed's region
    ASSERT_TRUE(rig.grow());
    EXPECT_NE(rig.map().get_Uca(1), nullptr);
    EXPECT_EQ(rig.map().get_Uca(2), nullptr);
    EXPECT_EQ(rig.map().region_of[8], 0);
  }
}

TEST(Growth, PassesOverSeedsThatAreNoLongerFree_AndGivesIdsWithoutGaps) {
  // A wall between two halves of a strip.
  TGrowth rig(make_Strip(9), {0, 1, 4, 8});
  settle_Open(rig, 7, {4});
  ASSERT_TRUE(rig.grow());
  EXPECT_EQ(list_Ids(rig.map()).size(), 4u);
  EXPECT_EQ(rig.list(8), (List{3, 2, 1, 0})) << "ids begin above the largest there is";
  EXPECT_EQ(rig.list(9), (List{5, 6, 7, 8}));
  EXPECT_EQ(rig.list(7), List{4});
}

TEST(Growth, TakesNothingFromOutsideTheRegionOfInterest) {
  TGrowth rig(make_Strip(5), {0}, open_Par(), {0, 1, 3, 4});
  ASSERT_TRUE(rig.grow());
  EXPECT_EQ(rig.list(1), (List{1, 0}));
  EXPECT_EQ(rig.map().region_of[2], -1);
}

TEST(Growth, LeavesASeedThatCanHaveNoNeighbourAsARegionOfOneTriangle) {
  TGrowth rig(make_Pyramid(), {3, 1});
  ASSERT_TRUE(rig.grow());
  EXPECT_EQ(rig.list(1), List{3});
  EXPECT_EQ(rig.list(2), List{1});
  EXPECT_EQ(rig.map().get_Uca(0)->count, 2u);
}

TEST(Growth, OfEqualCostsTakesTheLowerTriangle) {
  TGrowth rig(make_Strip(5), {2});
  std::fill(rig.cnd.weights, rig.cnd.weights + 5, 0.0);
  ASSERT_TRUE(rig.grow());
  EXPECT_EQ(rig.list(1), (List{4, 3, 0, 1, 2}));
}

TEST(Growth, TakesTheCheapestFirst) {
  // Only the normal counts, and on the lower side triangles lean.
  TSoup soup = make_Strip(5);
  soup.vtx[1].z = 0.1;
  TGrowth rig(soup, {2});
  std::fill(rig.cnd.weights, rig.cnd.weights + 5, 0.0);
  rig.cnd.weights[0] = 1;
  ASSERT_TRUE(rig.grow());
  EXPECT_EQ(rig.list(1), (List{0, 1, 4, 3, 2}));
}

TEST(Growth, ASeedWithTheLastFreeTriangleEndsTheStage) {
  // With this aperture every cost fails, so the neighbour outside has not been asked.
  CDcmPar par = open_Par();
  par.T_win = 180;
  TGrowth last(make_Strip(3), {0}, par, {0});
  EXPECT_TRUE(last.grow());
  EXPECT_EQ(last.list(1), List{0});
}

TEST(Growth, ASeedAsksNeighboursThatAreNotFreeToo) {
  CDcmPar par = open_Par();
  par.T_win = 180;
  TGrowth rig(make_Strip(3), {0}, par, {0, 2});
  EXPECT_FALSE(rig.grow()) << "the cost of a triangle outside was computed";
}

TEST(Growth, OnlyASeedAsksNeighboursThatAreNotFree) {
  // A triangle outside whose moments overflow, so that it can have no cost, beside the second
  // triangle.
  TSoup soup = make_Strip(4);
  TGrowth rig(soup, {0}, open_Par(), {0, 1, 3});
  rig.world.soup.vtx[4] = {1e160, 0, 0};
  EXPECT_TRUE(rig.grow());
  EXPECT_EQ(rig.list(1), (List{1, 0}));
}

TEST(Growth, ACostOutOfRangeFailsTheStage) {
  CDcmPar par = open_Par();
  par.T_win = 180;
  TGrowth rig(make_Strip(4), {0}, par);
  EXPECT_FALSE(rig.grow());
}

TEST(Growth, ANeighbourInTwoSlotsOfTheSeedFailsTheStage_UnlessItIsRefused) {
  TSoup soup = make_Strip(3);
  soup.tri = {soup.tri[0], soup.tri[0], soup.tri[2]};
  TGrowth twice(soup, {0});
  EXPECT_FALSE(twice.grow());
  std::swap(soup.tri[1].b, soup.tri[1].c);
  TGrowth refused(soup, {0});
  EXPECT_TRUE(refused.grow()) << "the other faces down";
}

TEST(Growth, AskedAgainWhenItsTurnComes_ATriangleMayBeRefused) {
  // A bend of 30 degrees at each square: the mean normal turns away from those that are left.
  TSoup soup = make_Sheet(12, 1, [](double x, double) { return -0.08 * x * x; });
  CDcmPar par = open_Par();
  par.T_win = 25;
  par.b_ini = 0;
  TGrowth rig(soup, {0}, par);
  ASSERT_TRUE(rig.grow());
  const uint32_t count = rig.map().get_Uca(1)->count;
  EXPECT_GT(count, 2u);
  EXPECT_LT(count, 24u);
}

// ---- The seed's measures -----------------------------------------------------------------------

// One triangle whose normal leans 45 degrees to +X.
struct TSeeded {
  TGrowth rig;
  CUcA* region = nullptr;
  explicit TSeeded(const CDcmPar& par)
      : rig({{{0, 0, 1}, {1, 0, 0}, {0, 1, 1}}, {{0, 1, 2}}}, {0}, par) {
    EXPECT_TRUE(rig.grow());
    region = rig.map().get_Uca(1);
  }
};

TEST(Growth, TheAxisOfASeedIsItsNormal_ClampedToTheBand) {
  CDcmPar par = open_Par();
  par.n_con = 1;
  for (const TUcBand band : {TUcBand{0, 20}, TUcBand{70, 90}, TUcBand{0, 90}}) {
    par.a_th0 = band.low;
    par.b_th0 = band.high;
    const TSeeded seeded(par);
    const double polar = band.high == 20 ? 20 : band.low == 70 ? 70 : 45;
    EXPECT_NEAR(seeded.region->polar0, polar, 1e-12);
    EXPECT_NEAR(seeded.region->azimuth0, 0, 1e-12);
    EXPECT_EQ(seeded.region->band, 0u);
    const TUcMeasures& m = seeded.region->measures;
    EXPECT_EQ(m.polar_low, band.low);
    EXPECT_EQ(m.polar_high, band.high);
    EXPECT_EQ(m.axis, sph_ToCar(seeded.region->polar0, seeded.region->azimuth0));
    EXPECT_NEAR(m.axis_ratio, std::cos((polar - 45) * kRadians), 1e-12);
    EXPECT_EQ(m.axis_ratio, m.axis_area / m.area);
    expect_Near(m.axis_frame.z, m.axis, 1e-15);
    EXPECT_EQ(m.axis_frame.org, m.centroid);
  }
}

TEST(Growth, WithFourAxes_TheAzimuthOfASeedIsOneOfTwo) {
  CDcmPar par = open_Par();
  par.b_5ax = 0;
  par.w_4ax = 180;
  EXPECT_EQ(TSeeded(par).region->azimuth0, 90.0) << "of 90 and 270 the nearer to 0";
}

TEST(Growth, ASeedHasTheSizesOfItsTriangle) {
  const TSeeded seeded(open_Par());
  const T3DFAC f = get_Fac(seeded.rig.world.map.msh, 0);
  const TUcMeasures& m = seeded.region->measures;
  EXPECT_EQ(m.area, area_Tri(f));
  EXPECT_EQ(m.normal_area, m.area);
  EXPECT_EQ(m.perimeter, rim_Tri(f));
  EXPECT_EQ(m.normal_perimeter, m.perimeter);
  EXPECT_EQ(m.centroid, cen_Tri(f));
  EXPECT_EQ(m.normal, nml_Tri(f));
  EXPECT_NEAR(m.plane.centre.x, 0, 1e-15);
  EXPECT_NEAR(m.plane.centre.y, 0, 1e-15);
  EXPECT_NEAR(m.plane.sxx, m.plane.cxx, 1e-15);
  EXPECT_GT(m.plane.sxx, 0);
}

}  // namespace
}  // namespace undercut
