#include "decomposition/measures.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/reference/plain_measures.h"
#include "tests/support/intensity.h"
#include "tests/support/maps.h"
#include "tests/support/measures.h"

namespace undercut {
namespace {

using namespace tests;

// A region that grows from one triangle of a world, as forward growth sets it up.
struct TGrown {
  TWorld& world;
  CUcA* region = nullptr;
  TUcRank context;

  TGrown(TWorld& where, int32_t id, uint32_t seed, TUcBand band = {0, 180}) : world(where) {
    TUcMoved moved;
    EXPECT_TRUE(world.map.apply_Move(seed, id, moved));
    region = world.map.get_Uca(id);
    context.region = region;
    context.map = &world.map;
    TUcMeasures& m = region->measures;
    const T3DFAC f = get_Fac(world.map.msh, seed);
    m.area = m.normal_area = area_Tri(f);
    m.perimeter = m.normal_perimeter = rim_Tri(f);
    m.centroid = cen_Tri(f);
    m.normal = nml_Tri(f);
    m.normal_frame = frm_Ray({m.centroid, m.normal});
    m.polar_low = band.low;
    m.polar_high = band.high;
    const T3DVEC s = car_ToSph(m.normal);
    region->polar0 = std::min(std::max(s.x, band.low), band.high);
    region->azimuth0 = s.y;
    m.axis = sph_ToCar(region->polar0, region->azimuth0);
    m.axis_frame = frm_Ray({m.centroid, m.axis});
    const T3DFAC along = prj_Tri(f, m.axis, m.centroid);
    m.axis_area = area_Tri(along);
    m.axis_perimeter = rim_Tri(along);
    m.axis_ratio = m.axis_area / m.area;
    mom_Tri(to_Local(m.normal_frame, f), m.plane);
  }
  const TUcMeasures& measures() const { return region->measures; }
  void take(uint32_t triangle) {
    TUcMoved moved;
    ASSERT_TRUE(world.map.apply_Move(triangle, region->id, moved));
    ASSERT_TRUE(upd_Add(context, triangle));
  }
  void give(uint32_t triangle) {
    TUcMoved moved;
    ASSERT_TRUE(world.map.apply_Move(triangle, 0, moved));
    ASSERT_TRUE(upd_Del(context, triangle));
  }
  // Takes `count` free neighbours, chosen at random; all taken, the seed not among them.
  std::vector<uint32_t> grow(reference::Random& random, uint32_t count) {
    std::vector<uint32_t> taken;
    for (uint32_t tries = 0; tries < 100 * count && taken.size() < count; ++tries) {
      const auto t = static_cast<uint32_t>(random.below(world.soup.tri.size()));
      if (world.map.region_of[t] != 0 || !world.map.is_Out(t, region->id)) continue;
      if (is_Flat(get_Fac(world.map.msh, t))) continue;
      take(t);
      taken.push_back(t);
    }
    return taken;
  }
};

// Length of the edges across which the region does not go on, the border of the mesh included.
double sum_Border(const CMap& map, const CUcA& region, const T3DVEC& along) {
  double sum = 0;
  for (const uint32_t t : list_Tri(map, region)) {
    const T3DFAC f = get_Fac(map.msh, t);
    const T3DVEC v[] = {f.a, f.b, f.c, f.a};
    for (int k = 0; k < 3; ++k) {
      const int32_t nb = map.slots[t][k];
      if (nb >= 0 && map.region_of[nb] == region.id) continue;
      const T3DVEC e = v[k + 1] - v[k];
      sum += len(e - dot(e, along) * along);
    }
  }
  return sum;
}

// A ribbon of squares that bends by `step` degrees from each to the next.
TSoup make_Bend(uint32_t squares, double step) {
  TSoup soup;
  T3DVEC at = {0, 0, 0};
  for (uint32_t i = 0; i <= squares; ++i) {
    soup.vtx.push_back(at);
    soup.vtx.push_back(at + T3DVEC{0, 1, 0});
    at += T3DVEC{std::cos(i * step * kRadians), 0, std::sin(i * step * kRadians)};
    if (i == 0) continue;
    const uint32_t v = 2 * i;
    soup.tri.push_back({v - 2, v, v + 1});
    soup.tri.push_back({v - 2, v + 1, v - 1});
  }
  return soup;
}

// ---- axis_Tri ----------------------------------------------------------------------------------

CUcA with_Band(double low, double high) {
  CUcA region(1);
  region.measures.polar_low = low;
  region.measures.polar_high = high;
  return region;
}

TEST(AxisTri, WithFreeAzimuth_IsTheNormalItself_ClampedToTheBand) {
  CMap map;
  const T3DVEC n = sph_ToCar(50, 200);
  expect_Near(axis_Tri(map, with_Band(0, 90), n), n, 1e-15);
  expect_Near(axis_Tri(map, with_Band(0, 20), n), sph_ToCar(20, 200), 1e-15);
  expect_Near(axis_Tri(map, with_Band(70, 90), n), sph_ToCar(70, 200), 1e-15);
}

TEST(AxisTri, WithAFrozenAxis_IsThatOfTheSeed_WhateverTheNormal) {
  CMap map;
  map.b_ini = true;
  CUcA region = with_Band(0, 90);
  region.polar0 = 33;
  region.azimuth0 = 123;
  EXPECT_EQ(axis_Tri(map, region, {1, 0, 0}), sph_ToCar(33, 123));
  EXPECT_EQ(axis_Tri(map, region, {0, 0, -1}), sph_ToCar(33, 123));
}

TEST(AxisTri, WithAFrozenAxis_TheFourAxisRuleIsNotApplied) {
  CMap map;
  map.b_ini = true;
  map.b_5ax = false;
  map.w_4ax = 180;
  CUcA region = with_Band(0, 90);
  region.polar0 = 33;
  region.azimuth0 = 10;
  EXPECT_EQ(axis_Tri(map, region, {1, 0, 0}), sph_ToCar(33, 10));
}

TEST(AxisTri, TheFourAxisRule_TakesTheNearerOfTwoAzimuths) {
  CMap map;
  map.b_5ax = false;
  map.w_4ax = 100;  // 10, and -170 raised to 190
  EXPECT_EQ(axis_Tri(map, with_Band(0, 180), sph_ToCar(50, 30)).z, sph_ToCar(50, 10).z);
  expect_Near(axis_Tri(map, with_Band(0, 180), sph_ToCar(50, 30)), sph_ToCar(50, 10), 1e-14);
  expect_Near(axis_Tri(map, with_Band(0, 180), sph_ToCar(50, 250)), sph_ToCar(50, 190), 1e-14);
}

TEST(AxisTri, TheFourAxisRule_RaisesBothAzimuthsByOneTurnAtMost) {
  CMap map;
  map.w_4ax = 45;
  EXPECT_EQ(snap_Azimuth(map, 0), 135);    // -225 raised
  EXPECT_EQ(snap_Azimuth(map, 359), 315);  // -45 raised
  map.w_4ax = -360;
  EXPECT_EQ(snap_Azimuth(map, 0), -90);  // -450 raised once
  EXPECT_EQ(snap_Azimuth(map, -300), -270);
}

TEST(AxisTri, TheFourAxisRule_GivesTheFirstAzimuthOnATie) {
  CMap map;
  map.w_4ax = 100;
  EXPECT_EQ(snap_Azimuth(map, 100), 10);
  EXPECT_EQ(snap_Azimuth(map, std::nextafter(100.0, 200.0)), 190);
}

TEST(AxisTri, TheFourAxisRule_ComparesPlainDifferences_NotRoundTheCircle) {
  CMap map;
  map.w_4ax = 100;
  // 355 is 15 degrees from 10 round the circle, but 190 is nearer as a number.
  EXPECT_EQ(snap_Azimuth(map, 355), 190);
}

TEST(AxisTri, WithTheRangeOfAFreshRegion_ClampsThePolarAngleToMinusOne) {
  CMap map;
  for (const double polar : {0.0, 0.5, 60.0, 180.0})
    expect_Near(axis_Tri(map, CUcA(), sph_ToCar(polar, 0)), sph_ToCar(-1, 0), 1e-14);
}

TEST(AxisTri, WithAReversedRange_TheUpperBoundHasTheLastWord) {
  CMap map;
  expect_Near(axis_Tri(map, with_Band(60, 20), sph_ToCar(40, 0)), sph_ToCar(20, 0), 1e-15);
}

TEST(Projection, AlongADirection_LandsInThePlaneThroughThePoint) {
  const T3DVEC d = unit({1, 2, -2}), m = {4, 0, 1};
  const T3DVEC q = prj_Pnt({-3, 5, 9}, d, m);
  EXPECT_NEAR(dot(q - m, d), 0, 1e-14);
  EXPECT_NEAR(len(cross(q - T3DVEC{-3, 5, 9}, d)), 0, 1e-14);
}

// ---- upd_Add and upd_Del, in small --------------------------------------------------------------

TEST(UpdAdd, AndUpdDel_FailWithoutRegionMapOrTriangle) {
  TWorld world(make_Strip(3));
  world.start();
  TGrown grown(world, 1, 0);
  const TUcMeasures before = grown.measures();
  TUcRank context = grown.context;
  context.region = nullptr;
  EXPECT_FALSE(upd_Add(context, 1));
  EXPECT_FALSE(upd_Del(context, 1));
  context = grown.context;
  context.map = nullptr;
  EXPECT_FALSE(upd_Add(context, 1));
  EXPECT_FALSE(upd_Del(context, 1));
  EXPECT_FALSE(upd_Add(grown.context, 3));
  EXPECT_FALSE(upd_Del(grown.context, 0xFFFFFFFFu));
  expect_Same(grown.measures(), before);
}

TEST(UpdAdd, AndUpdDel_FailForATriangleWithTwoEqualCorners_AndChangeNothing) {
  TSoup soup = make_Strip(3);
  soup.vtx.push_back(soup.vtx[1]);
  soup.tri.push_back({0, 1, 5});
  TWorld world(soup);
  world.start();
  TGrown grown(world, 1, 0);
  const TUcMeasures before = grown.measures();
  EXPECT_FALSE(upd_Add(grown.context, 3));
  EXPECT_FALSE(upd_Del(grown.context, 3));
  expect_Same(grown.measures(), before);
}

TEST(UpdAdd, OfTheSecondTriangle_WeighsTwoThirdsToOneThird) {
  TWorld world(make_Bend(1, 0));
  world.soup.vtx[1].z = 0.5;
  world.start();
  TGrown grown(world, 1, 0);
  const T3DFAC f0 = get_Fac(world.map.msh, 0), f1 = get_Fac(world.map.msh, 1);
  grown.take(1);
  const double w0 = 2.0 / 3, w1 = 1.0 / 3;
  EXPECT_EQ(grown.measures().centroid, w1 * cen_Tri(f1) + w0 * cen_Tri(f0));
  EXPECT_EQ(grown.measures().normal, w1 * nml_Tri(f1) + w0 * nml_Tri(f0));
  EXPECT_LT(len(grown.measures().normal), 1);  // not normalised
}

TEST(UpdAdd, OfAUnitSquare_GivesItsAreaRimAndMoments) {
  TWorld world(tilt(make_Grid(1, 1)));
  world.start();
  TGrown grown(world, 1, 0);
  grown.take(1);
  const TUcMeasures& m = grown.measures();
  EXPECT_NEAR(m.area, 1, 1e-14);
  EXPECT_NEAR(m.perimeter, 4, 1e-14);  // the border of the mesh counts
  EXPECT_NEAR(m.normal_area, 1, 1e-14);
  EXPECT_NEAR(m.normal_perimeter, 4, 1e-14);
  EXPECT_NEAR(m.plane.cxx, 1.0 / 12, 1e-14);
  EXPECT_NEAR(m.plane.cyy, 1.0 / 12, 1e-14);
  EXPECT_NEAR(m.plane.cxy, 0, 1e-14);
}

TEST(UpdAdd, LeavesTheRatioOfTheSeed_AndTheOriginsOfBothFrames) {
  TWorld world(make_Bend(4, 10));
  world.start();
  TGrown grown(world, 1, 0);
  const TUcMeasures before = grown.measures();
  for (uint32_t t = 1; t < 8; ++t) grown.take(t);
  EXPECT_EQ(grown.measures().axis_ratio, before.axis_ratio);
  EXPECT_EQ(grown.measures().axis_frame.org, before.axis_frame.org);
  EXPECT_EQ(grown.measures().normal_frame.org, before.normal_frame.org);
  EXPECT_NE(grown.measures().axis_frame.z, before.axis_frame.z);
}

TEST(UpdAdd, TheAxisFrameFollowsTheAxis_WhichIsNotNormalised) {
  TWorld world(make_Bend(6, 12));
  world.start();
  TGrown grown(world, 1, 0);
  for (uint32_t t = 1; t < 12; ++t) grown.take(t);
  EXPECT_LT(len(grown.measures().axis), 0.999);
  EXPECT_EQ(grown.measures().axis_frame.z,
            frm_Ray({grown.measures().centroid, grown.measures().axis}).z);
}

TEST(UpdAdd, TheNormalFrameStays_WhileEachStepTurnsTheNormalByLessThanHalfADegree) {
  TWorld world(make_Bend(200, 0.8));
  world.start();
  TGrown grown(world, 1, 0);
  const TUcMeasures before = grown.measures();
  for (uint32_t t = 1; t < 400; ++t) {
    const T3DVEC normal = grown.measures().normal;
    grown.take(t);
    ASSERT_LT(ang_Vec(normal, grown.measures().normal), 0.5);
  }
  EXPECT_GT(ang_Vec(before.normal, grown.measures().normal), 60);
  EXPECT_EQ(grown.measures().normal_frame.x, before.normal_frame.x);
  EXPECT_EQ(grown.measures().normal_frame.y, before.normal_frame.y);
  EXPECT_EQ(grown.measures().normal_frame.z, before.normal_frame.z);
}

TEST(UpdAdd, AStepOfMoreThanHalfADegree_TurnsTheFrameWithTheNormal) {
  TWorld world(tilt(make_Bend(2, 40)));
  world.start();
  TGrown grown(world, 1, 0);
  grown.take(1);
  grown.take(2);
  const T3DFRM& f = grown.measures().normal_frame;
  expect_Near(f.z, unit(grown.measures().normal), 1e-14);
  EXPECT_GT(ang_Vec(f.z, nml_Tri(get_Fac(world.map.msh, 0))), 5);
  EXPECT_NEAR(len(f.x), 1, 1e-14);
  EXPECT_NEAR(dot(f.x, f.y), 0, 1e-14);
  expect_Near(cross(f.x, f.y), f.z, 1e-14);
}

TEST(UpdAdd, ATriangleOnEndInTheNormalFrame_LeavesThePlaneAsItIs) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  soup.tri = {{0, 1, 2}, {1, 0, 3}};  // the second stands upright on the edge, one side vertical
  TWorld world(soup);
  world.start();
  TGrown grown(world, 1, 0);
  grown.region->measures.normal_frame = kIdentity;
  grown.region->measures.plane.centre = {3, 4};  // central moments formed anew would differ
  const TUcMeasures before = grown.measures();
  grown.take(1);
  const TUcPlane &a = before.plane, &b = grown.measures().plane;
  EXPECT_EQ(a.centre, b.centre);
  for (const auto& [x, y] : {std::pair{a.sxx, b.sxx},
                             {a.syy, b.syy},
                             {a.sxy, b.sxy},
                             {a.cxx, b.cxx},
                             {a.cyy, b.cyy},
                             {a.cxy, b.cxy}})
    EXPECT_EQ(x, y);
  EXPECT_GT(grown.measures().area, before.area);  // the other steps are done
  EXPECT_GT(grown.measures().normal_perimeter, before.normal_perimeter - 1e-12);
  EXPECT_NE(grown.measures().normal, before.normal);
}

TEST(UpdAdd, ProjectsAlongTheAxisAsItWasBeforeTheTriangle) {
  TWorld world(make_Bend(2, 60));
  world.start();
  TGrown grown(world, 1, 1);
  grown.take(0);
  const double before = grown.measures().axis_area;
  const T3DVEC axis = unit(grown.measures().axis);
  grown.take(2);
  EXPECT_NEAR(grown.measures().axis_area - before,
              0.5 * dot(axis, nml_Tri(get_Fac(world.map.msh, 2))), 1e-14);
}

TEST(UpdDel, OfTheLastButOneTriangle_KeepsCentroidAxisAndNormalWithTheirFrames) {
  TWorld world(make_Bend(1, 0));
  world.soup.vtx[1].z = 0.5;
  world.start();
  TGrown grown(world, 1, 0);
  grown.take(1);
  const TUcMeasures before = grown.measures();
  grown.give(1);
  const TUcMeasures& m = grown.measures();
  EXPECT_EQ(m.centroid, before.centroid);
  EXPECT_EQ(m.axis, before.axis);
  EXPECT_EQ(m.normal, before.normal);
  EXPECT_EQ(m.axis_frame.z, before.axis_frame.z);
  EXPECT_EQ(m.normal_frame.z, before.normal_frame.z);
  EXPECT_NEAR(m.area, area_Tri(get_Fac(world.map.msh, 0)), 1e-14);
  EXPECT_NEAR(m.perimeter, rim_Tri(get_Fac(world.map.msh, 0)), 1e-14);
  EXPECT_LT(m.axis_area, before.axis_area);
  EXPECT_LT(m.normal_area, before.normal_area);
}

// Three triangles: weights 3/4 and 1/4 on the way in, 2 and 1 on the way out.
TEST(UpdDel, DoesNotRestoreTheMeansOfBefore_ButTheSums) {
  TWorld world(make_Bend(2, 25));
  world.start();
  TGrown grown(world, 1, 0);
  grown.take(1);
  const TUcMeasures before = grown.measures();
  const T3DFAC f = get_Fac(world.map.msh, 3);
  grown.take(2);
  grown.give(2);
  const TUcMeasures& m = grown.measures();
  const T3DVEC c = cen_Tri(get_Fac(world.map.msh, 2)), n = nml_Tri(get_Fac(world.map.msh, 2));
  expect_Near(m.centroid, 1.5 * before.centroid - 0.5 * c, 1e-14);
  expect_Near(m.normal, 1.5 * before.normal - 0.5 * n, 1e-14);
  EXPECT_GT(dst(m.centroid, before.centroid), 0.1);
  EXPECT_NEAR(m.area, before.area, 1e-14);
  EXPECT_NEAR(m.perimeter, before.perimeter, 1e-14);
  EXPECT_NE(m.axis_area, before.axis_area);  // the axis is not what it was on the way in
  EXPECT_GT(area_Tri(f), 0);
}

TEST(UpdDel, TakesNothingFromThePlane_UnlessMoreAreaIsLeft) {
  TWorld world(make_Grid(1, 1));
  world.start();
  TGrown grown(world, 1, 0);
  grown.take(1);
  grown.region->measures.normal_area = 0.25;  // less than the triangle's own
  const TUcPlane before = grown.measures().plane;
  grown.give(1);
  EXPECT_EQ(grown.measures().plane.sxx, before.sxx);
  EXPECT_EQ(grown.measures().plane.cxx, before.cxx);
  EXPECT_EQ(grown.measures().plane.centre, before.centre);
  EXPECT_NEAR(grown.measures().normal_area, -0.25, 1e-14);
}

// ---- Against plain forms ------------------------------------------------------------------------

TEST(Measures, EqualTheWrittenOutStepsToTheLastBit_OverRandomGrowthAndShrinking) {
  reference::Random random(640);
  for (uint32_t round = 0; round < scale_Cases(60); ++round) {
    TWorld world(round % 3 == 0   ? tilt(make_Bumpy(6, 6))
                 : round % 3 == 1 ? make_Sphere(6, 8, 4)
                                  : make_Tangle(random, 12, 40));
    world.start();
    world.map.b_ini = random.chance(0.4);
    world.map.b_5ax = random.chance(0.6);
    world.map.w_4ax = random.real(-360, 360);
    auto seed = static_cast<uint32_t>(random.below(world.soup.tri.size()));
    while (is_Flat(get_Fac(world.map.msh, seed))) seed = (seed + 1) % world.map.msh.n_tri;
    TGrown grown(world, 1, seed, random.chance(0.5) ? TUcBand{0, 90} : TUcBand{10, 60});
    for (uint32_t step = 0; step < 150; ++step) {
      const auto t = static_cast<uint32_t>(random.below(world.soup.tri.size()));
      if (is_Flat(get_Fac(world.map.msh, t))) continue;
      const bool add = world.map.region_of[t] == 0;
      if (!add && (grown.region->count == 1 || random.chance(0.5))) continue;
      TUcMoved moved;
      ASSERT_TRUE(world.map.apply_Move(t, add ? 1 : 0, moved));
      const TUcMeasures expected =
          reference::plain_Update(world.map, *grown.region, t, add ? 1 : -1);
      ASSERT_TRUE(add ? upd_Add(grown.context, t) : upd_Del(grown.context, t));
      expect_Same(grown.measures(), expected);
      ASSERT_FALSE(HasFatalFailure()) << "round " << round << ", step " << step;
    }
  }
}

TEST(Measures, AfterGrowthAlone_AreaAndRimAreThoseOfTheRegion) {
  reference::Random random(641);
  for (uint32_t round = 0; round < scale_Cases(20); ++round) {
    TWorld world(round % 2 ? tilt(make_Bumpy(8, 8)) : make_Sphere(8, 10, 5));
    world.start();
    TGrown grown(world, 1, static_cast<uint32_t>(random.below(world.soup.tri.size())));
    grown.grow(random, 60);
    double area = 0;
    for (const uint32_t t : list_Tri(world.map, *grown.region))
      area += area_Tri(get_Fac(world.map.msh, t));
    EXPECT_NEAR(grown.measures().area, area, 1e-12 * area);
    EXPECT_NEAR(grown.measures().perimeter, sum_Border(world.map, *grown.region, {0, 0, 0}), 1e-11);
  }
}

TEST(Measures, AfterGrowthWithAFrozenAxis_TheProjectedOnesAreThoseAlongTheSeedsAxis) {
  reference::Random random(642);
  for (uint32_t round = 0; round < scale_Cases(20); ++round) {
    TWorld world(tilt(make_Bumpy(8, 8)));
    world.start();
    world.map.b_ini = true;
    TGrown grown(world, 1, static_cast<uint32_t>(random.below(world.soup.tri.size())), {0, 60});
    const T3DVEC axis = grown.measures().axis;
    grown.grow(random, 60);
    double area = 0;
    for (const uint32_t t : list_Tri(world.map, *grown.region)) {
      const T3DFAC f = get_Fac(world.map.msh, t);
      area += area_Tri(f) * std::fabs(dot(nml_Tri(f), axis));
    }
    expect_Near(grown.measures().axis, axis, 1e-13);
    EXPECT_NEAR(grown.measures().axis_area, area, 1e-11);
    EXPECT_NEAR(grown.measures().axis_perimeter, sum_Border(world.map, *grown.region, axis), 1e-11);
  }
}

// The first weights of 2/3 and 1/3 make the seed count twice in every mean, for good.
TEST(Measures, AfterGrowthAlone_TheSeedCountsTwiceInTheMeans) {
  reference::Random random(643);
  for (uint32_t round = 0; round < scale_Cases(20); ++round) {
    TWorld world(tilt(make_Bumpy(8, 8)));
    world.start();
    const auto seed = static_cast<uint32_t>(random.below(world.soup.tri.size()));
    TGrown grown(world, 1, seed, {0, 90});
    std::vector<uint32_t> counted = grown.grow(random, 50);
    counted.insert(counted.end(), {seed, seed});
    T3DVEC centroid = {0, 0, 0}, normal = {0, 0, 0}, axis = {0, 0, 0};
    for (const uint32_t t : counted) {
      const T3DFAC f = get_Fac(world.map.msh, t);
      centroid += cen_Tri(f);
      normal += nml_Tri(f);
      axis += axis_Tri(world.map, *grown.region, nml_Tri(f));
    }
    const auto n = static_cast<double>(counted.size());
    expect_Near(grown.measures().centroid, centroid / n, 1e-12);
    expect_Near(grown.measures().normal, normal / n, 1e-12);
    expect_Near(grown.measures().axis, axis / n, 1e-12);
  }
}

TEST(Measures, AfterGrowthOnAPlane_TheMomentsAreThoseOfTheRegion) {
  reference::Random random(644);
  for (uint32_t round = 0; round < scale_Cases(20); ++round) {
    TWorld world(tilt(make_Grid(8, 8)));
    world.start();
    TGrown grown(world, 1, static_cast<uint32_t>(random.below(world.soup.tri.size())));
    grown.grow(random, 60);
    const TUcMeasures& m = grown.measures();
    TUcPlane sums;
    double area = 0;
    for (const uint32_t t : list_Tri(world.map, *grown.region)) {
      const T3DFAC l = to_Local(m.normal_frame, get_Fac(world.map.msh, t));
      TUcPlane own;
      mom_Tri(l, own);
      sums.sxx += own.sxx;
      sums.syy += own.syy;
      sums.sxy += own.sxy;
      sums.centre = sums.centre + area_Tri(l) * own.centre;
      area += area_Tri(l);
    }
    sums.centre /= area;
    EXPECT_NEAR(m.normal_area, area, 1e-11);
    EXPECT_NEAR(m.plane.centre.x, sums.centre.x, 1e-11);
    EXPECT_NEAR(m.plane.centre.y, sums.centre.y, 1e-11);
    EXPECT_NEAR(m.plane.sxx, sums.sxx, 1e-9);
    EXPECT_NEAR(m.plane.cxx, sums.sxx - area * sums.centre.x * sums.centre.x, 1e-9);
    EXPECT_NEAR(m.plane.cyy, sums.syy - area * sums.centre.y * sums.centre.y, 1e-9);
    EXPECT_NEAR(m.plane.cxy, sums.sxy - area * sums.centre.x * sums.centre.y, 1e-9);
  }
}

// On a curved surface each triangle is projected along the mean normal of its moment: the sum lags
// behind the area along the last one, by less than the waves of the surface allow.
TEST(Measures, AfterGrowthOnACurvedSurface_TheNormalAreaDriftsByAFewPerCentAtMost) {
  reference::Random random(645);
  for (uint32_t round = 0; round < scale_Cases(20); ++round) {
    TWorld world(make_Bumpy(10, 10));
    world.start();
    TGrown grown(world, 1, static_cast<uint32_t>(random.below(world.soup.tri.size())));
    grown.grow(random, 100);
    const T3DVEC normal = unit(grown.measures().normal);
    double area = 0;
    for (const uint32_t t : list_Tri(world.map, *grown.region)) {
      const T3DFAC f = get_Fac(world.map.msh, t);
      area += area_Tri(f) * std::fabs(dot(nml_Tri(f), normal));
    }
    EXPECT_NEAR(grown.measures().normal_area, area, 0.06 * area);
  }
}

}  // namespace
}  // namespace undercut
