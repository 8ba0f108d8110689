// Which end of an axis is the top.
#include "undercut/axis_sign.h"

#include <gtest/gtest.h>

#include "tests/support/meshes.h"

namespace undercut::tests {

namespace {

CBitVector see(const TSoup& soup, std::vector<uint32_t> seen) {
  CBitVector bits;
  EXPECT_TRUE(bits.init(soup.tri.size()));
  for (const uint32_t t : seen) bits.set(t);
  return bits;
}

bool is_Turned(TSoup& soup, std::vector<uint32_t> seen, const T3DFRM& frm = kIdentity) {
  return is_Reversed(soup.msh(), frm, see(soup, std::move(seen)));
}

// Level triangles of the given heights, each of area 2, between two points at z = 0 and z = 10.
TSoup make_Levels(const std::vector<double>& heights) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {0, 0, 10}};
  for (const double z : heights) {
    const auto first = static_cast<uint32_t>(soup.vtx.size());
    soup.vtx.insert(soup.vtx.end(), {{0, 0, z}, {2, 0, z}, {0, 2, z}});
    soup.tri.push_back({first, first + 1, first + 2});
  }
  return soup;
}

}  // namespace

TEST(AxisSign, StaysWhereTheSeenSurfaceLiesHigh_AndTurnsWhereItLiesLow) {
  TSoup soup = make_Levels({9, 1});
  EXPECT_FALSE(is_Turned(soup, {0}));
  EXPECT_TRUE(is_Turned(soup, {1}));
}

TEST(AxisSign, StaysOnATie) {
  TSoup soup = make_Levels({9, 1, 5});
  EXPECT_FALSE(is_Turned(soup, {0, 1}));
  EXPECT_FALSE(is_Turned(soup, {2}));
  EXPECT_FALSE(is_Turned(soup, {}));
}

TEST(AxisSign, OfAFlatPart_Stays) {
  TSoup soup = make_Grid(1, 1);
  EXPECT_FALSE(is_Turned(soup, {0}));
  EXPECT_FALSE(is_Turned(soup, {0, 1}));
}

TEST(AxisSign, WeighsByArea_WhateverTheTurnOfTheCorners) {
  TSoup soup = make_Levels({8, 1});
  EXPECT_TRUE(is_Turned(soup, {0, 1}));
  soup.vtx[3] = {4, 0, 8};  // twice the area
  EXPECT_FALSE(is_Turned(soup, {0, 1}));
  std::swap(soup.tri[0].b, soup.tri[0].c);
  EXPECT_FALSE(is_Turned(soup, {0, 1}));
}

TEST(AxisSign, TakesTheBoxOfAllVertices_UnusedOnesToo) {
  TSoup soup = make_Levels({6});
  EXPECT_FALSE(is_Turned(soup, {0}));
  soup.vtx[1].z = 13;
  EXPECT_TRUE(is_Turned(soup, {0}));
  soup.vtx[0].z = -2;
  EXPECT_FALSE(is_Turned(soup, {0}));
}

TEST(AxisSign, CountsOnlyThePrismUnderTheLowestCorner) {
  TSoup soup = make_Levels({0});
  for (int lowest = 0; lowest < 3; ++lowest) {
    // Two corners at the top, so the centroid is at 8 of 10.
    for (int k = 0; k < 3; ++k) soup.vtx[static_cast<size_t>(2 + k)].z = k == lowest ? 4 : 10;
    EXPECT_TRUE(is_Turned(soup, {0})) << lowest;
    soup.vtx[static_cast<size_t>(2 + lowest)].z = 5;
    EXPECT_FALSE(is_Turned(soup, {0})) << lowest;
  }
}

TEST(AxisSign, OfAWall_IsThatOfNothing) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {1, 0, 0}, {0, 0, 10}};
  soup.tri = {{0, 1, 2}};
  EXPECT_FALSE(is_Turned(soup, {0}));
}

TEST(AxisSign, IsToldInTheCoordinatesOfTheFrame) {
  TSoup soup = make_Levels({9, 1});
  const T3DFRM down = frm_Ray({{5, 6, 7}, {0, 0, -1}});
  EXPECT_TRUE(is_Turned(soup, {0}, down));
  EXPECT_FALSE(is_Turned(soup, {1}, down));
  const T3DFRM tilted = frm_Ray({{3, -7, 2}, {0.3, -0.5, 0.8}});
  for (T3DVEC& v : soup.vtx) v = to_World(tilted, v);
  EXPECT_FALSE(is_Turned(soup, {0}, tilted));
  EXPECT_TRUE(is_Turned(soup, {1}, tilted));
}

TEST(AxisSign, PassesOverTrianglesWithTwoEqualCorners) {
  TSoup soup = make_Levels({9});
  soup.tri.push_back({2, 2, 4});
  soup.vtx.push_back({NAN, 0, 3});
  const auto last = static_cast<uint32_t>(soup.vtx.size() - 1);
  soup.tri.push_back({last, 2, 2});
  soup.tri.push_back({0, 1, 2});
  EXPECT_FALSE(is_Turned(soup, {0, 1, 2}));
  soup = make_Levels({1});
  soup.vtx.push_back({NAN, 0, 3});
  soup.tri.push_back({5, 2, 2});
  EXPECT_TRUE(is_Turned(soup, {0, 1}));
}

TEST(AxisSign, StaysWhereCoordinatesAreNoNumbers) {
  TSoup soup = make_Levels({1});
  soup.vtx[3].x = NAN;
  EXPECT_FALSE(is_Turned(soup, {0}));
}

}  // namespace undercut::tests
