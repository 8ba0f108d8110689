// det_Prj, called as a host calls it. Its checks of the library's own lists:
// tests/projection/projection_codes_test.cpp.
#include <gtest/gtest.h>
#include <undercut/exports.h>

#include <cmath>
#include <limits>

#include "foundation/values.h"
#include "tests/mesh/soups.h"
#include "tests/support/allocations.h"

using namespace undercut::tests;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// Squares of 4 by 4 in halves round the Z axis, at the given heights.
TSoup make_Shelves(const std::vector<double>& heights) {
  TSoup soup;
  for (const double z : heights) {
    const auto a = static_cast<uint32_t>(soup.vtx.size());
    soup.vtx.insert(soup.vtx.end(), {{-2, -2, z}, {2, -2, z}, {2, 2, z}, {-2, 2, z}});
    soup.tri.push_back({a, a + 1, a + 2});
    soup.tri.push_back({a, a + 2, a + 3});
  }
  return soup;
}

class LineProjection : public testing::Test {
 protected:
  LineProjection() { clr_Dll(); }
  ~LineProjection() override { clr_Dll(); }
  void add(TSoup soup) {
    clr_Dll();
    const T3DMSH msh = soup.msh();
    ASSERT_EQ(ini_Adt(&msh), 0);
  }
  int32_t call(const T3DRAY& ray) {
    point = {7, 7, 7};
    return det_Prj(&ray, &point);
  }
  void expect_Point(const T3DRAY& ray, const T3DVEC& expected) {
    EXPECT_EQ(call(ray), 0);
    EXPECT_LT(undercut::dst(point, expected), 1e-14) << point.x << " " << point.y << " " << point.z;
  }
  void expect_Miss(const T3DRAY& ray) {
    EXPECT_EQ(call(ray), -7);
    EXPECT_EQ(point.x, ray.org.x);
    EXPECT_EQ(point.y, ray.org.y);
    EXPECT_EQ(point.z, ray.org.z);
  }
  T3DVEC point;
};

TEST_F(LineProjection, IsTheCrossingNearestToOrg) {
  add(make_Shelves({9, 3, 5}));
  expect_Point({{0.5, 0.25, 0}, {0, 0, 1}}, {0.5, 0.25, 3});
  expect_Point({{0.5, 0.25, 4.5}, {0, 0, 1}}, {0.5, 0.25, 5});
  expect_Point({{0.5, 0.25, 20}, {0, 0, -1}}, {0.5, 0.25, 9});
}

TEST_F(LineProjection, ReadsADirectionOfAnyLength) {
  add(make_Shelves({3}));
  expect_Point({{0.5, 0.25, 0}, {0, 0, 1000}}, {0.5, 0.25, 3});
  expect_Point({{0.5, 0.25, 0}, {0, 0, 0.125}}, {0.5, 0.25, 3});
}

TEST_F(LineProjection, StoresOrgAndGivesMinus7_ForALineThatMisses) {
  add(make_Shelves({3}));
  expect_Miss({{9, 1, 2}, {0, 0, 1}});
  expect_Miss({{1, 1, 2}, {1, 0, 0}});
}

TEST_F(LineProjection, ReachesBehindOrg_OnATriangleWhoseBoxTheRayReaches) {
  add({{{-9, 0, -9}, {9, -9, 9}, {9, 9, 9}}, {{0, 1, 2}}});  // z = x
  expect_Point({{-1, 0, 0}, {0, 0, 1}}, {-1, 0, -1});
}

// The box is held against the ray, not against its reverse.
TEST_F(LineProjection, DoesNotReachATriangleThatLiesWhollyBehindOrg) {
  add(make_Shelves({-1}));
  expect_Miss({{0.5, 0.25, 0}, {0, 0, 1}});
}

TEST_F(LineProjection, TakesANearerCrossingBehind_BeforeOneAhead) {
  add({{{-9, 0, -9}, {9, -9, 9}, {9, 9, 9}, {-9, -9, 4}, {9, -9, 4}, {0, 9, 4}},
       {{3, 4, 5}, {0, 1, 2}}});
  expect_Point({{-1, 0, 0}, {0, 0, 1}}, {-1, 0, -1});
  expect_Point({{-6, 0, 0}, {0, 0, 1}}, {-6, 0, -6});
  expect_Point({{-5, -6, 0}, {0, 0, 1}}, {-5, -6, 4});
}

TEST_F(LineProjection, OfTwoEquallyNearCrossings_TakesTheFirstThatTheTreeLists) {
  const std::vector<T3DVEC> vtx = {{-9, 0, -8}, {9, -9, 10},  {9, 9, 10},
                                   {-9, 0, 8},  {9, -9, -10}, {9, 9, -10}};
  add({vtx, {{0, 1, 2}, {3, 4, 5}}});
  expect_Point({{0, 0, 0}, {0, 0, 1}}, {0, 0, 1});
  add({vtx, {{3, 4, 5}, {0, 1, 2}}});
  expect_Point({{0, 0, 0}, {0, 0, 1}}, {0, 0, -1});
}

TEST_F(LineProjection, DoesNotSlipThroughASharedEdgeOrCorner) {
  add(make_Shelves({3}));
  expect_Point({{1, 1, 0}, {0, 0, 1}}, {1, 1, 3});
  expect_Point({{2, 2, 0}, {0, 0, 1}}, {2, 2, 3});
}

// Both are held against the plane of the triangle, which such a line does not cross.
TEST_F(LineProjection, MissesWithALineInThePlane_AndWithoutADirection) {
  add(make_Shelves({3}));
  expect_Miss({{-5, 0.5, 3}, {1, 0, 0}});
  expect_Miss({{0.5, 0.25, 3}, {0, 0, 0}});
}

TEST_F(LineProjection, MayStoreThePointInTheRayItself) {
  add(make_Shelves({3}));
  T3DRAY ray = {{0.5, 0.25, 1}, {0, 0, 1}};
  EXPECT_EQ(det_Prj(&ray, &ray.org), 0);
  EXPECT_EQ(ray.org, (T3DVEC{0.5, 0.25, 3}));
  ray = {{9, 9, 1}, {0, 0, 1}};
  EXPECT_EQ(det_Prj(&ray, &ray.dir), -7);
  EXPECT_EQ(ray.dir, (T3DVEC{9, 9, 1}));
}

TEST_F(LineProjection, GivesMinus1_AndStoresNothing_WithoutARegisteredMesh) {
  EXPECT_EQ(call({{0, 0, 0}, {0, 0, 1}}), -1);
  EXPECT_EQ(point, (T3DVEC{7, 7, 7}));
}

TEST_F(LineProjection, GivesMinus1_AndStoresNothing_ForAMissingArgument) {
  add(make_Shelves({3}));
  const T3DRAY ray = {{0.5, 0.25, 0}, {0, 0, 1}};
  point = {7, 7, 7};
  EXPECT_EQ(det_Prj(nullptr, &point), -1);
  EXPECT_EQ(point, (T3DVEC{7, 7, 7}));
  EXPECT_EQ(det_Prj(&ray, nullptr), -1);
  EXPECT_EQ(det_Prj(nullptr, nullptr), -1);
}

TEST_F(LineProjection, OfARayThatIsNotFinite_IsAMiss) {
  add(make_Shelves({3, -1e308, 1e308}));
  for (const double bad : {kNan, kInf, -kInf, 1e308})
    for (int k = 0; k < 6; ++k) {
      double v[6] = {0.5, 0.25, 0, 0, 0, 1};
      v[k] = bad;
      const T3DRAY ray = {{v[0], v[1], v[2]}, {v[3], v[4], v[5]}};
      const int32_t code = call(ray);
      EXPECT_TRUE(code == 0 || code == -7) << bad << " at " << k;
    }
  EXPECT_EQ(call({{kNan, 0, 0}, {0, 0, 1}}), -7);
  EXPECT_TRUE(std::isnan(point.x));
  EXPECT_EQ(call({{0.5, 0.25, 0}, {0, 0, kNan}}), -7);
  EXPECT_EQ(point, (T3DVEC{0.5, 0.25, 0}));
}

TEST_F(LineProjection, KeepsItsAnswer_BesideTrianglesThatAreNotFinite) {
  TSoup soup = make_Shelves({3, 5});
  const auto a = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), {{kNan, kNan, kNan}, {kInf, 0, 0}, {0, -kInf, 1e308}});
  for (uint32_t i = 0; i < 3; ++i) soup.tri.push_back({a, a + i, 0});
  soup.tri.push_back({a + 1, a + 2, 1});
  add(soup);
  expect_Point({{0.5, 0.25, 0}, {0, 0, 1}}, {0.5, 0.25, 3});
}

TEST_F(LineProjection, AllocatesNothing) {
  add(make_Shelves({9, 3, 5, 1, 2, 4, 6, 7, 8}));
  const FailingAllocation failing(1);
  EXPECT_EQ(call({{0.5, 0.25, 0}, {0, 0, 1}}), 0);
  EXPECT_FALSE(failing.has_Failed());
}

}  // namespace
