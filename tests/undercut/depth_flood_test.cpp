// The flood of distances through a patch.
#include "undercut/depth_flood.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "mesh/boundary.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

constexpr double kUntouched = -7.0;

// A flat sheet with its border for a rim.
class DepthFlood : public testing::Test {
 protected:
  void set_Sheet(TSoup sheet) {
    soup = std::move(sheet);
    adj_Free(*tri_tri);
    adj_Free(*vtx_tri);
    release(*border);
    ASSERT_EQ(adj_VtxTri(soup.msh(), *vtx_tri), 0);
    ASSERT_EQ(adj_TriTri(soup.msh(), *vtx_tri, *tri_tri), 0);
    ASSERT_EQ(bnd_All(soup.msh(), *vtx_tri, *border), 0);
    ASSERT_TRUE(pool.init(static_cast<int32_t>(soup.tri.size())));
    queue.SetPool(&pool);
    rho.assign(soup.tri.size(), kUntouched);
  }
  int32_t flood(std::vector<uint32_t> set, std::vector<uint32_t> list) {
    CRim rim;
    EXPECT_EQ(rim.Build(soup.msh(), *border, frm), 0);
    EXPECT_TRUE(rim.build_Tree());
    waiting.from_Lst(view_Lst(set), soup.tri.size());
    return flood_Depth({soup.msh(), *tri_tri, frm, slack, waiting, queue, rho.data()}, rim,
                       view_Lst(list));
  }
  double plain(uint32_t t) {
    const T3DVEC p = to_Local(frm, cen_Tri(get_Fac(soup.msh(), t)));
    double best = kAbsent;
    for (uint32_t i = 0; i < border->count; ++i) {
      const T3DVEC a = to_Local(frm, soup.vtx[border->data[i].a]);
      const T3DVEC b = to_Local(frm, soup.vtx[border->data[i].b]);
      best = std::min(best, dst_Seg2({p.x, p.y}, {a.x, a.y}, {b.x, b.y}));
    }
    return best;
  }

  TSoup soup;
  T3DFRM frm = kIdentity;
  double slack = 0.05;
  Scoped<TAdj> vtx_tri, tri_tri;
  Scoped<TArr<T3DSGM>> border;
  CBitVector waiting;
  TNodePool<CQueue::Node> pool;
  CQueue queue;
  std::vector<double> rho;
};

TEST_F(DepthFlood, GivesEveryTriangleItsDistance) {
  set_Sheet(make_Grid(9, 7));
  EXPECT_EQ(flood(list_All(soup), list_All(soup)), 0);
  for (uint32_t t = 0; t < soup.tri.size(); ++t) EXPECT_EQ(rho[t], plain(t)) << t;
  EXPECT_TRUE(waiting.is_Empty());
  EXPECT_TRUE(queue.is_Empty());
  EXPECT_EQ(pool.free(), pool.capacity());
}

TEST_F(DepthFlood, EqualsAWalkAlongTheWholeRim_OnSheetsInGeneralPosition) {
  for (uint32_t seed = 0; seed < scale_Cases(60); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    reference::Random random(seed);
    TSoup sheet = make_Grid(2 + static_cast<uint32_t>(random.below(12)),
                            2 + static_cast<uint32_t>(random.below(12)));
    for (T3DVEC& v : sheet.vtx) v += random.triple(-0.4, 0.4);
    set_Sheet(sheet);
    frm = frm_Ray({random.triple(-5, 5), random.triple(-1, 1)});
    slack = random.real(1e-9, 0.1);
    ASSERT_EQ(flood(list_All(soup), list_All(soup)), 0);
    for (uint32_t t = 0; t < soup.tri.size(); ++t) ASSERT_EQ(rho[t], plain(t)) << t;
  }
}

TEST_F(DepthFlood, SpreadsOverWaitingTrianglesAlone) {
  set_Sheet(make_Strip(10));
  EXPECT_EQ(flood({2, 3, 4, 6, 7}, {3}), 0);
  for (uint32_t t = 0; t < 10; ++t)
    EXPECT_EQ(rho[t], t >= 2 && t <= 4 ? plain(t) : kUntouched) << t;
  EXPECT_TRUE(waiting.test(6) && waiting.test(7));
  EXPECT_EQ(waiting.count(), 2u);
}

TEST_F(DepthFlood, StartsFromEachListedTriangleThatStillWaits) {
  set_Sheet(make_Strip(12));
  EXPECT_EQ(flood({1, 2, 5, 6, 9}, {6, 0, 2, 5, 1}), 0);
  for (uint32_t t = 0; t < 12; ++t)
    EXPECT_EQ(rho[t], t == 1 || t == 2 || t == 5 || t == 6 ? plain(t) : kUntouched) << t;
  EXPECT_TRUE(waiting.test(9));
}

// Only what is not a seed has a circle that can miss the rim: so it shows which triangle was one.
TEST_F(DepthFlood, TakesSeedsInTheOrderOfTheList) {
  set_Sheet(make_Strip(8));
  slack = -100;
  for (const uint32_t seed : {2u, 5u, 3u}) {
    rho.assign(8, kUntouched);
    testing::internal::CaptureStderr();
    EXPECT_EQ(flood({2, 3, 4, 5}, {seed, 4, 2, 3, 5}), 0);
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(rho[seed], plain(seed));
    for (const uint32_t beside : {seed - 1, seed + 1}) {
      if (beside < 2 || beside > 5) continue;
      EXPECT_EQ(rho[beside], kAbsent);
    }
  }
}

TEST_F(DepthFlood, SaysSo_WhereACircleMisses_AndGoesOnWithoutADistance) {
  set_Sheet(make_Strip(4));
  slack = -100;
  testing::internal::CaptureStderr();
  EXPECT_EQ(flood({0, 1, 2, 3}, {0, 1, 2, 3}), 0);
  // The circle round triangle 2 is endless, since that round triangle 1 found nothing.
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "rho==+DBL_MAX\nrho==+DBL_MAX\n");
  EXPECT_EQ(rho, (std::vector<double>{plain(0), kAbsent, plain(2), kAbsent}));
}

TEST_F(DepthFlood, TakesTheSlackIntoItsRadius) {
  // The farthest of two triangles lies rho + |p - q| from the rim, along a line.
  soup = {};
  set_Sheet({{{0, 0, 0}, {3, 0, 0}, {0, 3, 0}, {6, 3, 0}}, {{0, 1, 2}, {1, 3, 2}}});
  release(*border);
  ASSERT_TRUE(alloc(*border, 1));
  soup.vtx.push_back({-4, 1, 0});
  soup.vtx.push_back({-4, 0.5, 0});
  border->data[0] = {4, 5};
  slack = 0.0;
  EXPECT_EQ(flood({0, 1}, {0, 1}), 0);
  EXPECT_EQ(rho[0], 5.0);
  EXPECT_NEAR(rho[1], std::hypot(7, 1), 1e-12);
  testing::internal::CaptureStderr();
  slack = -1.5;
  EXPECT_EQ(flood({0, 1}, {0, 1}), 0);
  EXPECT_EQ(rho[1], kAbsent);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "rho==+DBL_MAX\n");
}

TEST_F(DepthFlood, AllocatesNothing) {
  set_Sheet(make_Grid(20, 20));
  CRim rim;
  ASSERT_EQ(rim.Build(soup.msh(), *border, frm), 0);
  ASSERT_TRUE(rim.build_Tree());
  std::vector<uint32_t> all = list_All(soup);
  waiting.from_Lst(view_Lst(all), soup.tri.size());
  const FailingAllocation failing(1);
  EXPECT_EQ(flood_Depth({soup.msh(), *tri_tri, frm, slack, waiting, queue, rho.data()}, rim,
                        view_Lst(all)),
            0);
  EXPECT_FALSE(failing.has_Failed());
}

TEST_F(DepthFlood, TellsThatANodeIsMissing) {
  set_Sheet(make_Strip(6));
  ASSERT_TRUE(pool.init(1));
  queue.SetPool(&pool);
  uint32_t value = 0;
  ASSERT_TRUE(queue.push(0));
  EXPECT_EQ(flood({3}, {3}), -2);
  ASSERT_TRUE(queue.pop(value));
  EXPECT_EQ(flood({2, 3, 4}, {3}), -5);
  queue.release();
}

TEST_F(DepthFlood, EndsOnCoordinatesThatAreNotFinite) {
  testing::internal::CaptureStderr();
  for (const double value :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e308}) {
    TSoup sheet = make_Grid(4, 4);
    sheet.vtx[12].x = sheet.vtx[3].y = value;
    set_Sheet(sheet);
    EXPECT_EQ(flood(list_All(soup), list_All(soup)), 0);
    EXPECT_TRUE(waiting.is_Empty());
  }
  testing::internal::GetCapturedStderr();
}

}  // namespace
