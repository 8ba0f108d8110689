// Where get_Prj moves points, called as a host calls it. Against loops over all triangles:
// tests/projection/plain_projection_test.cpp.
#include <cmath>
#include <utility>

#include "tests/boundary/prj_request.h"

using namespace undercut::tests;

namespace {

class PointProjection : public PrjTest {
 protected:
  static void set_Radii(double off, double inc, double lim) {
    defaults::set(prj_off, off);
    defaults::set(prj_inc, inc);
    defaults::set(prj_lim, lim);
  }
};

// ---- Where points go ----------------------------------------------------------------------------

TEST_F(PointProjection, GoesToTheHeightOfTheArea_AndThenOntoTheMesh) {
  expect_Near(r.moved({1, 0.5, 9}), {1, 0.5, 0.5});
  expect_Near(r.moved({1, 1.25, -50}), {1, 1.25, 1.25});
}

TEST_F(PointProjection, MovesFarInTheFirstPhase_AndByTolAtMostInTheSecond) {
  defaults::set(prj_tol, 0.49);
  EXPECT_EQ(r.moved({1, 0.5, 1e6}), (T3DVEC{1, 0.5, 1}));
  EXPECT_EQ(r.moved({1, 0.5, -1e6}), (T3DVEC{1, 0.5, 1}));
  defaults::set(prj_tol, 0.51);
  expect_Near(r.moved({1, 0.5, 1e6}), {1, 0.5, 0.5});
}

TEST_F(PointProjection, MovesByExactlyTol) {
  r.add_Quad({0, 0, 1.25}, {3, 0, 1.25}, {3, 3, 1.25}, {0, 3, 1.25});
  defaults::set(prj_tol, 0.25);
  EXPECT_EQ(r.moved({0.5, 0.5, 9}), (T3DVEC{0.5, 0.5, 1.25}));
  defaults::set(prj_tol, std::nextafter(0.25, 0.0));
  EXPECT_EQ(r.moved({0.5, 0.5, 9}), (T3DVEC{0.5, 0.5, 1}));
}

TEST_F(PointProjection, WithATolOfZero_StaysAtItsPlaceOfTheFirstPhase_UnlessItLiesOnTheMesh) {
  defaults::set(prj_tol, 0.0);
  EXPECT_EQ(r.moved({1, 0.5, 9}), (T3DVEC{1, 0.5, 1}));
  EXPECT_EQ(r.moved({1, 1, 9}), (T3DVEC{1, 1, 1}));
  r.areas[0] = {1};
  EXPECT_EQ(r.moved({100.5, 0.5, 40}), (T3DVEC{100.5, 0.5, 2}));
}

TEST_F(PointProjection, WithATolBelowZero_NeverMovesInTheSecondPhase) {
  defaults::set(prj_tol, -1.0);
  EXPECT_EQ(r.moved({1, 0.5, 9}), (T3DVEC{1, 0.5, 1}));
}

TEST_F(PointProjection, FollowsTheZAxisOfItsFrame) {
  // Along Y the plane z = y is reached from the height of the centroid, y = 1.
  expect_Near(r.moved({1, 7, 0.75}, {0, 1, 0}), {1, 0.75, 0.75});
  expect_Near(r.moved({1, -7, 0.75}, {0, -1, 0}), {1, 0.75, 0.75});
}

TEST_F(PointProjection, MakesTheAxisAUnitVector) {
  for (const double length : {1e-8, 0.125, 7.0, 1e9}) {
    SCOPED_TRACE(length);
    expect_Near(r.moved({1, 0.5, 9}, {0, 0, length}), {1, 0.5, 0.5});
    expect_Near(r.moved({1, 0.5, 9}, {0, 0, -length}), {1, 0.5, 0.5});
  }
}

TEST_F(PointProjection, ReadsNothingOfTheFrameButItsZAxis) {
  for (T3DVEC* part : {&r.frames[0].x, &r.frames[0].y, &r.frames[0].org}) *part = {kNan, 4, kInf};
  expect_Near(r.moved({1, 0.5, 9}), {1, 0.5, 0.5});
}

TEST_F(PointProjection, StaysWhereTheFrameHasNoZAxis) {
  EXPECT_EQ(r.moved({1, 0.5, 0.7}, {0, 0, 0}), (T3DVEC{1, 0.5, 0.7}));
}

// ---- The first phase ----------------------------------------------------------------------------

// Beside triangle 0, whose nearest edge is 0.3 from the line, and whose centroid 1.3: a small
// triangle 0.6 from it, its centroid 0.7.
TEST_F(PointProjection, TakesTheAreaByTheFirstRadiusThatFindsAny) {
  r.vtx.insert(r.vtx.end(), {{-0.9, 0.9, 5}, {-0.9, 1.1, 5}, {-1.2, 1, 5}});
  r.tri.push_back({6, 7, 8});
  r.areas[0] = {0, 3};
  EXPECT_EQ(r.moved({-0.3, 1, 9}), (T3DVEC{-0.3, 1, 1}));
  set_Radii(0.65, 0.05, 2.5);
  EXPECT_EQ(r.moved({-0.3, 1, 9}), (T3DVEC{-0.3, 1, 5}));
  set_Radii(0.1, 0.55, 2.5);
  EXPECT_EQ(r.moved({-0.3, 1, 9}), (T3DVEC{-0.3, 1, 5}));
  set_Radii(0.1, 0.3, 2.5);
  EXPECT_EQ(r.moved({-0.3, 1, 9}), (T3DVEC{-0.3, 1, 1}));
}

TEST_F(PointProjection, OfEquallyNearCentroids_TakesTheFirstThatTheTreeLists) {
  const uint32_t upper = r.add_Quad({50, 0, 8}, {52, 0, 8}, {52, 2, 8}, {50, 2, 8});
  const uint32_t lower = r.add_Quad({50, 0, 6}, {52, 0, 6}, {52, 2, 6}, {50, 2, 6});
  r.areas[0] = {upper, lower};
  EXPECT_EQ(r.moved({51, 0.5, 0}), (T3DVEC{51, 0.5, 8}));
  r.areas[0] = {lower, upper};
  EXPECT_EQ(r.moved({51, 0.5, 0}), (T3DVEC{51, 0.5, 6}));
}

TEST_F(PointProjection, StaysInTheFirstPhase_WithNoTriangleWithinLim) {
  defaults::set(prj_tol, 100.0);
  EXPECT_EQ(r.moved({-3, 1, 9}), (T3DVEC{-3, 1, 9}));
  // The second phase takes it on from there.
  r.add_Quad({-4, 0, 11}, {-2, 0, 11}, {-2, 2, 11}, {-4, 2, 11});
  EXPECT_EQ(r.moved({-3, 1, 9}), (T3DVEC{-3, 1, 11}));
}

// The nearest edge is 2.5 from the line; the radii go 0.5, 1, 1.5, 2 and, where below, 2.5.
TEST_F(PointProjection, TriesNoRadiusAtLimOrAbove) {
  r.areas[0] = {1};
  set_Radii(0.5, 0.5, 2.5);
  EXPECT_EQ(r.moved({97.5, 1, 9}), (T3DVEC{97.5, 1, 9}));
  set_Radii(0.5, 0.5, std::nextafter(2.5, 3.0));
  EXPECT_EQ(r.moved({97.5, 1, 9}), (T3DVEC{97.5, 1, 2}));
  set_Radii(2.5, 0.5, 3.0);
  EXPECT_EQ(r.moved({97.5, 1, 9}), (T3DVEC{97.5, 1, 2}));
}

// No radius is tried for any point of a call, so none finds what another one left behind.
TEST_F(PointProjection, KeepsPlaces_WhereOffIsNotBelowLim) {
  r.points[0] = {{1, 0.5, 9}, {1, 1, 7}};
  for (const auto& [off, lim] : std::vector<std::pair<double, double>>{
           {2.5, 2.5}, {3, 2.5}, {0.1, -1}, {kNan, 2.5}, {0.1, kNan}, {kInf, kInf}}) {
    set_Radii(off, 0.05, lim);
    EXPECT_EQ(r.moved(), r.points) << off << " " << lim;
  }
  // The second phase runs all the same.
  expect_Near(r.moved({1, 0.5, 1}), {1, 0.5, 0.5});
}

TEST_F(PointProjection, TriesOneRadius_WhereTheIncrementDoesNotRaiseIt) {
  r.areas[0] = {1};
  for (const double inc : {0.0, -0.5, kNan, -kInf, 1e-300}) {
    SCOPED_TRACE(inc);
    set_Radii(0.4, inc, 2.5);
    EXPECT_EQ(r.moved({99.5, 1, 9}), (T3DVEC{99.5, 1, 9}));
    EXPECT_EQ(r.moved({99.625, 1, 9}), (T3DVEC{99.625, 1, 2}));
  }
}

TEST_F(PointProjection, TriesAMillionRadiiAtTheMost) {
  r.areas[0] = {1};
  set_Radii(0.0, 0x1p-21, 1e300);  // a million steps reach 0.4768, 2^20 of them 0.5
  EXPECT_EQ(r.moved({99.53, 1, 9}), (T3DVEC{99.53, 1, 2}));
  EXPECT_EQ(r.moved({99.52, 1, 9}), (T3DVEC{99.52, 1, 9}));
  r.points[0].assign(2000, {99.52, 1, 9});
  EXPECT_EQ(r.moved()[0], r.points[0]);
}

TEST_F(PointProjection, FindsByARadiusBelowZero_WhatTheLineGoesThrough) {
  set_Radii(-2.0, 0.5, -1.0);
  expect_Near(r.moved({1, 0.5, 9}), {1, 0.5, 0.5});
  EXPECT_EQ(r.moved({-0.01, 0.5, 9}), (T3DVEC{-0.01, 0.5, 9}));
}

TEST_F(PointProjection, SeesInTheFirstPhaseItsOwnAreaAlone) {
  r.add_Quad({0, 0, 8}, {3, 0, 8}, {3, 3, 8}, {0, 3, 8});
  r.areas[0] = {3, 4};
  EXPECT_EQ(r.moved({1, 0.5, 9}), (T3DVEC{1, 0.5, 8}));
  r.areas[0] = {0};
  expect_Near(r.moved({1, 0.5, 9}), {1, 0.5, 0.5});
}

TEST_F(PointProjection, LeavesTrianglesWithTwoEqualCornerIndicesOutOfTheArea) {
  r.areas[0] = {2, 0};
  defaults::set(prj_tol, 0.0);
  EXPECT_EQ(r.moved({1, 0.5, 9}), (T3DVEC{1, 0.5, 1}));
}

// ---- The second phase ---------------------------------------------------------------------------

TEST_F(PointProjection, GoesOntoTheNearerSurface_BehindOrAhead) {
  r.add_Quad({0, 0, 0.75}, {3, 0, 0.75}, {3, 3, 0.75}, {0, 3, 0.75});
  r.add_Quad({0, 0, 1.5}, {3, 0, 1.5}, {3, 3, 1.5}, {0, 3, 1.5});
  r.areas[0] = {0};
  EXPECT_EQ(r.moved({2, 2, 9}), (T3DVEC{2, 2, 0.75}));
  EXPECT_EQ(r.moved({2, 2, 9}, {0, 0, -1}), (T3DVEC{2, 2, 0.75}));
  for (size_t v = 6; v < 10; ++v) r.vtx[v].z = 0.25;
  EXPECT_EQ(r.moved({2, 2, 9}), (T3DVEC{2, 2, 1.5}));
  EXPECT_EQ(r.moved({2, 2, 9}, {0, 0, -1}), (T3DVEC{2, 2, 1.5}));
}

TEST_F(PointProjection, OfEquallyNearSurfaces_TakesThatOnTheSideOfMinusZ) {
  r.add_Quad({0, 0, 0.75}, {3, 0, 0.75}, {3, 3, 0.75}, {0, 3, 0.75});
  r.add_Quad({0, 0, 1.25}, {3, 0, 1.25}, {3, 3, 1.25}, {0, 3, 1.25});
  EXPECT_EQ(r.moved({2, 2, 9}), (T3DVEC{2, 2, 0.75}));
  EXPECT_EQ(r.moved({2, 2, 9}, {0, 0, -1}), (T3DVEC{2, 2, 1.25}));
}

// Its box goes round the point, so both rays find it, and the one back finds a crossing ahead.
TEST_F(PointProjection, GoesOntoATriangleRoundIt_ToEitherSide) {
  expect_Near(r.moved({1, 0.5, 9}), {1, 0.5, 0.5});
  expect_Near(r.moved({0.5, 1.5, 9}), {0.5, 1.5, 1.5});
  expect_Near(r.moved({0.5, 1.5, 9}, {0, 0, -1}), {0.5, 1.5, 1.5});
}

TEST_F(PointProjection, StaysAtItsHeight_WhereItsLineMissesTheMesh) {
  EXPECT_EQ(r.moved({-0.25, 1, 9}), (T3DVEC{-0.25, 1, 1}));
}

TEST_F(PointProjection, OfALineAlongTheSurface_Stays) {
  r.areas[0] = {1};
  EXPECT_EQ(r.moved({90, 1, 2}, {1, 0, 0}), (T3DVEC{101, 1, 2}));
}

}  // namespace
