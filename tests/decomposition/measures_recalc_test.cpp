#include <gtest/gtest.h>

#include "decomposition/measures.h"
#include "tests/reference/plain_measures.h"
#include "tests/support/intensity.h"
#include "tests/support/maps.h"
#include "tests/support/measures.h"

namespace undercut {
namespace {

using namespace tests;

TEST(RcalcUca, EqualsTheWrittenOutStepsToTheLastBit) {
  reference::Random random(650);
  for (uint32_t round = 0; round < scale_Cases(150); ++round) {
    TWorld world(round % 3 == 0   ? tilt(make_Bumpy(5, 5))
                 : round % 3 == 1 ? make_Sphere(5, 6, 4)
                                  : make_Tangle(random, 12, 40));
    world.start();
    world.map.b_ini = random.chance(0.4);
    world.map.b_5ax = random.chance(0.6);
    world.map.w_4ax = random.real(-360, 360);
    std::vector<uint32_t> own;
    for (uint32_t t = 0; t < world.map.msh.n_tri; ++t)
      if (random.chance(0.5)) own.push_back(t);
    if (own.empty()) continue;
    CUcA* region = world.settle(1, own);
    region->polar0 = random.real(0, 180);
    region->azimuth0 = random.real(0, 360);
    region->measures.polar_low = 5;
    region->measures.polar_high = random.real(5, 180);
    region->measures.axis = random.triple(-1, 1);
    region->measures.axis_ratio = 0.25;
    const TUcMeasures expected = reference::plain_Measures(world.map, *region);
    const double polar0 = region->polar0, azimuth0 = region->azimuth0;
    rcalc_Uca(world.map, *region);
    ASSERT_EQ(region->polar0, polar0);
    ASSERT_EQ(region->azimuth0, azimuth0);
    ASSERT_EQ(region->measures.polar_high, expected.polar_high);
    // The area of the plain form goes through a projection along nothing, which changes no bit.
    expect_Same(region->measures, expected);
    ASSERT_FALSE(HasFatalFailure()) << "round " << round;
  }
}

TEST(RcalcUca, TheBorderOfTheMeshDoesNotCount) {
  TWorld world(make_Grid(3, 3));
  world.start();
  CUcA* all = world.settle(1, list_All(world.soup));
  rcalc_Uca(world.map, *all);
  EXPECT_NEAR(all->measures.area, 9, 1e-13);
  EXPECT_EQ(all->measures.perimeter, 0);
  EXPECT_EQ(all->measures.axis_perimeter, 0);
  EXPECT_EQ(all->measures.normal_perimeter, 0);
}

TEST(RcalcUca, OfASquareInASheet_GivesItsRimAreaAndMoments) {
  TWorld world(make_Grid(3, 3));
  world.start();
  CUcA* middle = world.settle(1, {8, 9});
  middle->measures.axis = {0, 0, 7};
  rcalc_Uca(world.map, *middle);
  const TUcMeasures& m = middle->measures;
  EXPECT_NEAR(m.perimeter, 4, 1e-14);
  EXPECT_NEAR(m.axis_area, 1, 1e-14);
  EXPECT_NEAR(m.axis_perimeter, 4, 1e-14);
  EXPECT_NEAR(m.normal_area, 1, 1e-14);
  EXPECT_NEAR(m.normal_perimeter, 4, 1e-14);
  expect_Near(m.centroid, {1.5, 1.5, 0}, 1e-14);
  EXPECT_NEAR(m.plane.centre.x, 0, 1e-14);
  EXPECT_NEAR(m.plane.cxx, 1.0 / 12, 1e-14);
  EXPECT_NEAR(m.plane.cyy, 1.0 / 12, 1e-14);
  EXPECT_NEAR(m.plane.cxy, 0, 1e-14);
}

TEST(RcalcUca, TheAxisFrameStandsAtTheRegionOfInterest_TheNormalFrameAtTheRegion) {
  TWorld world(make_Bumpy(4, 4));
  world.start();
  CUcA* region = world.settle(1, {0, 1, 2});
  region->measures.polar_high = 90;
  rcalc_Uca(world.map, *region);
  EXPECT_EQ(region->measures.axis_frame.org, world.map.roi_centroid);
  EXPECT_EQ(region->measures.normal_frame.org, region->measures.centroid);
  EXPECT_NE(world.map.roi_centroid, region->measures.centroid);
}

TEST(RcalcUca, ProjectsAlongTheAxisAsItWas) {
  TWorld world(make_Grid(3, 3));
  world.start();
  CUcA* region = world.settle(1, {8, 9});
  region->measures.polar_low = 0;
  region->measures.polar_high = 180;
  region->measures.axis = 3.0 * sph_ToCar(60, 0);
  rcalc_Uca(world.map, *region);
  EXPECT_NEAR(region->measures.axis_area, 0.5, 1e-14);
  expect_Near(region->measures.axis, {0, 0, 1}, 1e-14);
}

TEST(RcalcUca, ADegenerateTriangleAddsNothing_ButCountsInTheMeans) {
  TSoup soup = make_Grid(1, 1);
  soup.vtx.push_back(soup.vtx[0]);
  soup.tri.push_back({0, 4, 3});
  TWorld world(soup);
  world.start();
  CUcA* region = world.settle(1, {0, 1, 2});
  rcalc_Uca(world.map, *region);
  EXPECT_NEAR(region->measures.area, 1, 1e-14);
  expect_Near(region->measures.centroid, {1.0 / 3, 1.0 / 3, 0}, 1e-14);
  expect_Near(region->measures.normal, {0, 0, 2.0 / 3}, 1e-14);
}

TEST(RcalcUca, WhereSignedAreasCancel_TheCentreKeepsItsOldValue) {
  TSoup soup = make_Grid(1, 1);
  soup.tri = {{0, 1, 3}, {0, 3, 1}};  // a triangle and its back
  TWorld world(soup);
  world.start();
  CUcA* region = world.settle(1, {0, 1});
  region->measures.plane.centre = {3, 4};
  rcalc_Uca(world.map, *region);
  EXPECT_EQ(region->measures.plane.centre, (T2DVEC{3, 4}));
  EXPECT_EQ(region->measures.normal, (T3DVEC{0, 0, 0}));
  EXPECT_EQ(region->measures.normal_frame.org, (T3DVEC{0, 0, 0}));  // the identity
}

TEST(RcalcUca, OnAnEdgeOfManyTriangles_CountsTheEdgeForEachNeighbourOutside) {
  TWorld world(make_Book(4));
  world.start();
  CUcA* page = world.settle(1, {0});
  rcalc_Uca(world.map, *page);
  EXPECT_NEAR(page->measures.perimeter, 3, 1e-14);
}

}  // namespace
}  // namespace undercut
