#include "mesh/line_hits.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/reference/plain_projection.h"
#include "tests/support/intensity.h"
#include "tests/support/random_bodies.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

bool any(uint32_t) { return true; }

// Where the plane is oblique, its normal has rounded.
void expect_Near(const T3DVEC& p, const T3DVEC& expected) { EXPECT_LT(dst(p, expected), 1e-14); }

// A mesh with its tree and room for all of its triangles.
struct TTarget {
  TSoup soup;
  C3DTriAABBTree tree;
  Scoped<TLst<uint32_t>> hits;
  T3DVEC point = {7, 7, 7};
  double distance = -1;

  explicit TTarget(TSoup from) : soup(std::move(from)) {
    EXPECT_TRUE(tree.Build(soup.msh()));
    EXPECT_TRUE(alloc(*hits, uint32_t(soup.tri.size())));
  }
  template <typename Wanted>
  bool cross(const T3DRAY& ray, Wanted wanted) {
    return near_Hit(tree, ray, *hits, wanted, point, distance);
  }
};

// Squares of the given heights, one over the other, each in halves.
TSoup make_Shelves(const std::vector<double>& heights) {
  TSoup soup;
  for (const double z : heights) {
    TSoup shelf = make_Grid(1, 1);
    for (T3DVEC& v : shelf.vtx) v = {4 * v.x - 2, 4 * v.y - 2, z};
    join(soup, shelf);
  }
  return soup;
}

TEST(NearHit, IsTheCrossingNearestToOrg_AndItsDistance) {
  TTarget target(make_Shelves({5, 3, 9}));
  ASSERT_TRUE(target.cross({{0.5, 0.25, 0}, {0, 0, 2}}, any));
  EXPECT_EQ(target.point, (T3DVEC{0.5, 0.25, 3}));
  EXPECT_EQ(target.distance, 3.0);
}

TEST(NearHit, OfAMiss_StoresNoPoint_AndTheLargestDistance) {
  TTarget target(make_Shelves({1}));
  EXPECT_FALSE(target.cross({{9, 0, 0}, {0, 0, 1}}, any));
  EXPECT_EQ(target.point, (T3DVEC{7, 7, 7}));
  EXPECT_EQ(target.distance, kAbsent);
}

TEST(NearHit, PassesOverTrianglesThatAreNotWanted) {
  TTarget target(make_Shelves({1, 2, 3}));
  const T3DRAY up = {{0.5, 0.25, 0}, {0, 0, 1}};
  ASSERT_TRUE(target.cross(up, [](uint32_t t) { return t >= 2; }));
  EXPECT_EQ(target.distance, 2.0);
  EXPECT_FALSE(target.cross(up, [](uint32_t) { return false; }));
}

// A triangle behind org is none, one whose box goes round org is one.
TEST(NearHit, LiesBehindOrg_OnlyOnATriangleWhoseBoxTheRayReaches) {
  TTarget flat(make_Shelves({-1}));
  EXPECT_FALSE(flat.cross({{0.5, 0.25, 0}, {0, 0, 1}}, any));
  TTarget steep({{{-9, 0, -9}, {9, -9, 9}, {9, 9, 9}}, {{0, 1, 2}}});  // z = x
  ASSERT_TRUE(steep.cross({{-1, 0, 0}, {0, 0, 1}}, any));
  expect_Near(steep.point, {-1, 0, -1});
  EXPECT_NEAR(steep.distance, 1.0, 1e-14);
}

TEST(NearHit, OfEquallyNearCrossings_IsTheFirstListed) {
  // Two sheets across each other, equally far before and behind, in both orders of the list.
  const std::vector<T3DVEC> vtx = {{-9, 0, -8}, {9, -9, 10},  {9, 9, 10},
                                   {-9, 0, 8},  {9, -9, -10}, {9, 9, -10}};
  TTarget up({vtx, {{0, 1, 2}, {3, 4, 5}}});  // z = x + 1, then z = -x - 1
  TTarget down({vtx, {{3, 4, 5}, {0, 1, 2}}});
  const T3DRAY ray = {{0, 0, 0}, {0, 0, 1}};
  ASSERT_TRUE(up.cross(ray, any));
  expect_Near(up.point, {0, 0, 1});
  ASSERT_TRUE(down.cross(ray, any));
  expect_Near(down.point, {0, 0, -1});
}

TEST(NearHit, ForgetsWhatTheListHeld) {
  TTarget target(make_Shelves({1}));
  target.hits->count = 2;
  EXPECT_FALSE(target.cross({{9, 0, 0}, {0, 0, 1}}, any));
  EXPECT_EQ(target.hits->count, 0u);
}

TEST(NearHit, IsNone_WhereTheDistanceIsNoNumberOrNotBelowTheLargest) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  TSoup bad = make_Shelves({1});
  for (T3DVEC& v : bad.vtx) v.z = nan;
  EXPECT_FALSE(TTarget(bad).cross({{0.5, 0.25, 0}, {0, 0, 1}}, any));
  EXPECT_FALSE(TTarget(make_Shelves({1e200})).cross({{0.5, 0.25, -1e200}, {0, 0, 1}}, any));
}

TEST(NearHit, EqualsALoopOverAllTriangles) {
  uint32_t crossed = 0;
  for (uint32_t seed = 0; seed < scale_Cases(200); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    reference::Random random(seed);
    TTarget target(any_Mesh(random));
    const T3DMSH msh = target.soup.msh();
    for (int i = 0; i < 30; ++i) {
      const T3DVEC org = random.triple(-8, 8);
      const T3DRAY ray = {org, random.triple(-1, 1)};
      const reference::TCross plain = reference::cross_Line(msh, ray);
      const bool met = target.cross(ray, any);
      ASSERT_EQ(met, plain.distance < kAbsent);
      ASSERT_EQ(target.distance, plain.distance);
      if (met) {
        ASSERT_EQ(target.point, plain.point);
      }
      crossed += met;
    }
  }
  EXPECT_GT(crossed, 500u);
}

}  // namespace
