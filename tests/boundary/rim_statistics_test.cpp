// get_Stb, called as a host calls it.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cmath>

#include "bench/bodies.h"
#include "tests/boundary/statistics_request.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

class RimStatistics : public StatisticsTest {
 protected:
  // Calls for one region and compares all bytes of its record.
  void expect(const std::vector<uint32_t>& region, uint8_t seen, double share, uint32_t rim_seen,
              uint32_t rim, const T3DRAY& axis = kLooksUp) {
    r.set_Regions({region}, axis);
    ASSERT_EQ(r.call(get_Stb), 0);
    expect_Bytes(r.sta(0), seen, share, 0.0, 0.0, rim_seen, rim);
  }
  // A request of the whole of a mesh as one region.
  static void rate_Whole(TStatRequest& request) {
    std::vector<uint32_t> all(request.tri.size());
    for (uint32_t t = 0; t < all.size(); ++t) all[t] = t;
    request.set_Regions({all});
    ASSERT_EQ(request.call(get_Stb), 0);
  }
  TStatRequest r;
};

TEST_F(RimStatistics, TellWhatPartOfARimItsAxisSees_AndLeaveEveryUnusedByteZero) {
  expect({0}, 1, 1.0, 3, 3);
  expect({1}, 0, 0.0, 0, 3);
  expect({0, 1}, 0, 0.5, 3, 6);
  expect({2, 0}, 1, 1.0, 6, 6);
}

TEST_F(RimStatistics, WeighEdgesByTheirLength) {
  const double floor = 1.0 + std::sqrt(2.0) + 1.0;  // of triangle 1, and 4 times that of the roof
  r.set_Regions({{1, 2}});
  ASSERT_EQ(r.call(get_Stb), 0);
  EXPECT_EQ(r.sta(0).rim_seen, 3u);
  EXPECT_EQ(r.sta(0).rim, 6u);
  EXPECT_NEAR(r.sta(0).share, 4 * floor / (5 * floor), 1e-15);
}

TEST_F(RimStatistics, LookAtTheRegionsOwnBorder_NotAtThatOfTheMesh) {
  expect({0, 6}, 1, 1.0, 4, 4);
  expect({6}, 1, 1.0, 3, 3);
  expect({0}, 1, 1.0, 3, 3);
}

TEST_F(RimStatistics, OfAClosedSurface_AreFlagOneAndNoEdges) {
  for (const TSoup& soup : {make_Box(2, 3, 1), make_Pyramid()}) {
    TStatRequest closed(soup);
    rate_Whole(closed);
    expect_Bytes(closed.sta(0), 1, kNoShare, 0.0, 0.0, 0, 0);
  }
}

TEST_F(RimStatistics, OfAnEmptyList_AreFlagOneAndNoEdges) {
  r.set_Regions({{}, {0}, {}});
  ASSERT_EQ(r.call(get_Stb), 0);
  expect_Bytes(r.sta(0), 1, kNoShare, 0.0, 0.0, 0, 0);
  expect_Bytes(r.sta(1), 1, 1.0, 0.0, 0.0, 3, 3);
  expect_Bytes(r.sta(2), 1, kNoShare, 0.0, 0.0, 0, 0);
}

TEST_F(RimStatistics, OfEmptyListsOnly_NeedNoMoreThanTheScratchOfTheMesh) {
  r.set_Regions({{}, {}});
  EXPECT_EQ(list_Codes(r, get_Stb), (Codes{-10, -12, -14, -15, -16, -17, 0}));
}

TEST_F(RimStatistics, OfAListWithoutArray_AreThoseOfAnEmptyOne) {
  r.cav[0] = {nullptr, 5, 5};
  ASSERT_EQ(r.call(get_Stb), 0);
  expect_Bytes(r.sta(0), 1, kNoShare, 0.0, 0.0, 0, 0);
  expect_Bytes(r.sta(1), 1, 1.0, 0.0, 0.0, 3, 3);
}

// A triangle on an index twice has its edge in both directions and one from a corner to itself.
TEST_F(RimStatistics, CountTheEdgesOfTwoEqualCorners_ButDoNotTestThem) {
  expect({4}, 1, 0.0, 0, 3);
  expect({5}, 1, 0.0, 0, 3);
  r.set_Regions({{0, 5}});
  ASSERT_EQ(r.call(get_Stb), 0);
  EXPECT_EQ(r.sta(0).seen, 1);
  EXPECT_EQ(r.sta(0).rim_seen, 3u);
  EXPECT_EQ(r.sta(0).rim, 6u);
  const double edges = 2.0 + std::sqrt(2.0);
  EXPECT_NEAR(r.sta(0).share, edges / (edges + 2.0), 1e-15);
}

TEST_F(RimStatistics, HaveNoShare_WhereTheRimHasNoLength) {
  r.vtx[12] = r.vtx[13];
  expect({5}, 1, kNoShare, 0, 3);
}

TEST_F(RimStatistics, CountATriangleOnce_ThatIsListedTwice) {
  expect({0, 0, 0}, 1, 1.0, 3, 3);
  expect({6, 0, 6}, 1, 1.0, 4, 4);
}

TEST_F(RimStatistics, ForgetARegion_BeforeTheNext) {
  r.set_Regions({{0}, {6}, {0, 6}, {6, 6}});
  ASSERT_EQ(r.call(get_Stb), 0);
  EXPECT_EQ(r.sta(0).rim, 3u);
  EXPECT_EQ(r.sta(1).rim, 3u);
  EXPECT_EQ(r.sta(2).rim, 4u);
  EXPECT_EQ(r.sta(3).rim, 3u);
}

TEST_F(RimStatistics, JoinNoVerticesAtOnePlace) {
  TStatRequest apart(TSoup{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
                           {{0, 1, 2}, {3, 4, 5}}});
  rate_Whole(apart);
  expect_Bytes(apart.sta(0), 1, 1.0, 0.0, 0.0, 6, 6);
}

TEST_F(RimStatistics, LeaveOutAnEdgeOfThreeTriangles) {
  TStatRequest book(make_Book(3));
  rate_Whole(book);
  EXPECT_EQ(book.sta(0).rim, 6u);
  book.set_Regions({{0, 2}, {1}});
  ASSERT_EQ(book.call(get_Stb), 0);
  EXPECT_EQ(book.sta(0).rim, 4u);
  EXPECT_EQ(book.sta(1).rim, 3u);
}

// A floor and a wall under it meet at x = 1. Rays go down: from above the floor they meet the edge,
// from in front of the wall they pass.
TEST_F(RimStatistics, LiftAlongTheNormalOfTheRegionsOwnTriangle) {
  TStatRequest step(TSoup{{{1, 0, 0}, {1, 4, 0}, {-3, 1, 0}, {1, 1, -4}}, {{0, 1, 2}, {1, 0, 3}}});
  step.set_Regions({{0}, {1}}, kLooksDown);
  ASSERT_EQ(step.call(get_Stb), 0);
  EXPECT_EQ(step.sta(0).rim_seen, 0u);
  EXPECT_EQ(step.sta(1).rim_seen, 3u);
}

TEST_F(RimStatistics, RateEachRegionByItsOwnAxis) {
  r.set_Regions({{0}, {3}, {1}});
  r.axi = {kLooksUp, kLooksDown, {{0, 0, 0}, {-1, 0, -0.1}}};  // the last looks out sideways
  r.fill();
  ASSERT_EQ(r.call(get_Stb), 0);
  for (const uint32_t k : {0u, 1u, 2u}) expect_Bytes(r.sta(k), 1, 1.0, 0.0, 0.0, 3, 3);
  expect({3}, 1, 1.0, 3, 3, {{4, 5, 6}, {0, 0, 0}});  // no direction: rays along -Z
}

TEST_F(RimStatistics, LiftTheStartOfRaysByTol) {
  defaults::set(ucs_Tol, 1.5);  // beyond the roof
  expect({1}, 1, 1.0, 3, 3);
}

// The middle of an edge decides: here the roof ends between it and one end.
TEST_F(RimStatistics, LookFromTheMiddleOfAnEdge) {
  r.vtx[3] = {2, -0.5, 0};
  r.vtx[4] = {3.5, -0.5, 0};  // middle at x = 2.75, short of the roof
  r.vtx[5] = {2, 1, 0};
  expect({1}, 1, 1.0, 3, 3);
  r.vtx[4] = {4.5, -0.5, 0};  // at 3.25, below it, and so is that of the edge from here
  r.set_Regions({{1}});
  ASSERT_EQ(r.call(get_Stb), 0);
  EXPECT_EQ(r.sta(0).seen, 0);
  EXPECT_EQ(r.sta(0).rim_seen, 1u);
}

TEST_F(RimStatistics, TakeTheNumberOfRegionsFromTheCapacity) { expect_Capacity(get_Stb); }

TEST_F(RimStatistics, TellEachFaultByItsCode_AndLeaveTheResultAsItWas) { expect_Codes(get_Stb); }

TEST_F(RimStatistics, TellTheFirstOfTwoFaults) { expect_Order(get_Stb); }

TEST_F(RimStatistics, GiveMinus9_ForFewerOrMoreAxesThanRegions) {
  expect_AnAxisForEachRegion(get_Stb);
}

TEST_F(RimStatistics, RefuseIndicesFarOutOfRange_BeforeReadingThroughThem) {
  expect_NoReadBeyond(get_Stb);
}

TEST_F(RimStatistics, GiveMinus11_ForAnAxisWhoseDirectionIsNotFinite) { expect_NoFrame(get_Stb); }

TEST_F(RimStatistics, GiveTheCodeOfEachStepThatHasNoMemory) {
  EXPECT_EQ(list_Codes(r, get_Stb), (Codes{-10, -12, -14, -15, -16, -17, 0}));
}

// A ray through a tree as deep as this one needs memory of its own.
TEST_F(RimStatistics, GiveTheGeneralCode_WithoutMemoryForARay) {
  TStatRequest uneven(make_Uneven());
  uneven.set_Regions({{0}});
  EXPECT_EQ(list_Codes(uneven, get_Stb),
            (Codes{-10, -12, -14, -15, -16, -17, UNDERCUT_NO_MEMORY, 0}));
}

TEST_F(RimStatistics, TakeAMissingRecordAsOneWithoutAMesh) { expect_MissingRecords(get_Stb); }

TEST_F(RimStatistics, WriteNothingOfTheResultButSta) { expect_OnlySta(get_Stb); }

TEST_F(RimStatistics, LeaveTheRequestAsItWas) { expect_RequestAsItWas(get_Stb); }

TEST_F(RimStatistics, WorkOnRecordsAtAMultipleOf4Bytes) { expect_PackedRecords(get_Stb); }

TEST_F(RimStatistics, LeakNothingInAThousandCycles) { expect_NoLeak(get_Stb); }

TEST_F(RimStatistics, KeepTheFiguresOfRegionsAwayFromCoordinatesThatAreNotFinite) {
  for (const T3DVEC& bad : {T3DVEC{kNoNumber, 0, 0}, {kInfinite, 1e308, -kInfinite}}) {
    r.vtx[12] = bad;
    r.set_Regions({{0, 1}, {4, 5}});
    ASSERT_EQ(r.call(get_Stb), 0);
    expect_Bytes(r.sta(0), 0, 0.5, 0.0, 0.0, 3, 6);
    EXPECT_EQ(r.sta(1).rim, 2u);
  }
}

TEST_F(RimStatistics, RateEveryTriangleAsARegionOfItsOwn) {
  TStatRequest sheet(make_Bumpy(200, 200));
  std::vector<std::vector<uint32_t>> singles;
  for (uint32_t t = 0; t < sheet.tri.size(); ++t) singles.push_back({t});
  sheet.set_Regions(singles);
  ASSERT_EQ(sheet.call(get_Stb), 0);
  ASSERT_TRUE(sheet.res.sta != nullptr);
  for (uint32_t k = 0; k < singles.size(); ++k) ASSERT_EQ(sheet.sta(k).rim, 3u);
}

TEST_F(RimStatistics, HaveTheSameBits_ForAnyNumberOfThreadsAndAnyOrderOfTheLists) {
  const bodies::TBody ball = bodies::make_Ball(6000);
  TStatRequest request({ball.points, ball.triangles});
  std::vector<std::vector<uint32_t>> lists(3);
  for (uint32_t t = 0; t < request.tri.size(); ++t) lists[t / 4 % 3].push_back(t);
  const std::vector<T3DRAY> axes = {
      {{0, 0, 0}, {0.2, 0.3, -1}}, {{0, 0, 0}, {1, 0, 0.1}}, {{0, 0, 0}, {0, -1, 0}}};
  const auto rate = [&] {
    request.set_Regions(lists);
    request.axi = axes;
    request.fill();
    ASSERT_EQ(request.call(get_Stb), 0);
  };
  const int threads_before = omp_get_max_threads();
  omp_set_num_threads(1);
  rate();
  const std::vector<TUcStat> one(request.res.sta, request.res.sta + 3);
  EXPECT_GT(one[0].rim, 1000u);
  for (const int threads : {16, 8, 4, 3, 2}) {
    omp_set_num_threads(threads);
    for (auto& list : lists) std::rotate(list.begin(), list.begin() + 177, list.end());
    rate();
    EXPECT_EQ(std::memcmp(request.res.sta, one.data(), 3 * sizeof(TUcStat)), 0) << threads;
  }
  omp_set_num_threads(threads_before);
}

// The direction of a region is that of the tool, towards the part: rays against it leave the part.
TEST_F(RimStatistics, FindTheRimsOfARealPartSeen_AlongTheAxesThatComeWithThem) {
  TPartRequest part;
  ASSERT_GT(part.regions.size(), 3u);
  ASSERT_EQ(part.call(get_Stb), 0);
  for (uint32_t k = 0; k < part.regions.size(); ++k) {
    EXPECT_GT(part.sta(k).rim, 2u) << k;
    EXPECT_GT(part.sta(k).share, 0.8) << k;
  }
  for (T3DRAY& axis : part.axi) axis.dir = -axis.dir;
  part.fill();
  ASSERT_EQ(part.call(get_Stb), 0);
  for (uint32_t k = 0; k < part.regions.size(); ++k) EXPECT_LT(part.sta(k).share, 0.5) << k;
}

}  // namespace
