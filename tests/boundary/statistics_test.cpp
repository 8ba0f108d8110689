// get_Sta, called as a host calls it.
#include <gtest/gtest.h>
#include <omp.h>

#include "bench/bodies.h"
#include "tests/boundary/statistics_request.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

class SurfaceStatistics : public StatisticsTest {
 protected:
  // Calls for one region and compares all bytes of its record.
  void expect(const std::vector<uint32_t>& region, uint8_t seen, double share, double area_seen,
              double area, const T3DRAY& axis = kLooksUp) {
    r.set_Regions({region}, axis);
    ASSERT_EQ(r.call(get_Sta), 0);
    expect_Bytes(r.sta(0), seen, share, area_seen, area, 0, 0);
  }
  TStatRequest r;
};

TEST_F(SurfaceStatistics, TellWhatPartOfARegionItsAxisSees_AndLeaveEveryUnusedByteZero) {
  expect({0}, 1, 1.0, 0.5, 0.5);
  expect({0, 1}, 0, 0.5, 0.5, 1.0);
  expect({1}, 0, 0.0, 0.0, 0.5);
  expect({0, 1, 2}, 0, 8.5 / 9.0, 8.5, 9.0);
  expect({2, 6, 0}, 1, 1.0, 9.0, 9.0);
}

TEST_F(SurfaceStatistics, OfAnEmptyList_AreFlagOneAndNoArea) {
  r.set_Regions({{}, {0}, {}});
  ASSERT_EQ(r.call(get_Sta), 0);
  expect_Bytes(r.sta(0), 1, kNoShare, 0.0, 0.0, 0, 0);
  expect_Bytes(r.sta(1), 1, 1.0, 0.5, 0.5, 0, 0);
  expect_Bytes(r.sta(2), 1, kNoShare, 0.0, 0.0, 0, 0);
}

TEST_F(SurfaceStatistics, OfEmptyListsOnly_NeedNoScratch) {
  r.set_Regions({{}, {}});
  EXPECT_EQ(list_Codes(r, get_Sta), (Codes{-10, -12, -14, 0}));
}

TEST_F(SurfaceStatistics, OfAListWithoutArray_AreThoseOfAnEmptyOne) {
  r.cav[0] = {nullptr, 5, 5};
  ASSERT_EQ(r.call(get_Sta), 0);
  expect_Bytes(r.sta(0), 1, kNoShare, 0.0, 0.0, 0, 0);
  expect_Bytes(r.sta(1), 1, 1.0, 8.0, 8.0, 0, 0);
}

TEST_F(SurfaceStatistics, OfTrianglesWithTwoEqualCornersOnly_AreFlagOneAndNoArea) {
  expect({4}, 1, kNoShare, 0.0, 0.0);
  expect({5}, 1, kNoShare, 0.0, 0.0);
  expect({4, 5}, 1, kNoShare, 0.0, 0.0);
}

TEST_F(SurfaceStatistics, PassOverTwoEqualCorners_WithoutTouchingTheFlag) {
  expect({4, 0, 5}, 1, 1.0, 0.5, 0.5);
  expect({4, 1, 5, 0}, 0, 0.5, 0.5, 1.0);
}

// It has no normal, so its ray starts on it, and it stops every ray that meets its box.
TEST_F(SurfaceStatistics, TestATriangleOnALine_WhichClearsTheFlagAtNoArea) {
  r.vtx.insert(r.vtx.end(), {{30, 0, 0}, {31, 0, 1}, {32.5, 0, 2.5}});
  r.tri.push_back({16, 17, 18});
  expect({7}, 0, kNoShare, 0.0, 0.0);
  expect({0, 7}, 0, 1.0, 0.5, 0.5);
}

TEST_F(SurfaceStatistics, CountATriangleTwice_ThatIsListedTwice) {
  expect({0, 0}, 1, 1.0, 1.0, 1.0);
  expect({0, 1, 0}, 0, 1.0 / 1.5, 1.0, 1.5);
}

TEST_F(SurfaceStatistics, TakeTheWholeMeshForTheObstacle) {
  expect({1}, 0, 0.0, 0.0, 0.5);  // the roof is in no region
  r.tri[2] = r.tri[0];
  r.fill();
  expect({1}, 1, 1.0, 0.5, 0.5);
}

TEST_F(SurfaceStatistics, FindATriangleBlockedByItself_ThatFacesAway) {
  expect({3}, 0, 0.0, 0.0, 0.5);
  expect({3}, 1, 1.0, 0.5, 0.5, kLooksDown);
  expect({0, 1, 2}, 0, 0.0, 0.0, 9.0, kLooksDown);
}

TEST_F(SurfaceStatistics, RateEachRegionByItsOwnAxis) {
  r.set_Regions({{0, 3}, {0, 3}, {1}});
  r.axi = {kLooksUp, kLooksDown, {{0, 0, 0}, {-1, 0, -0.1}}};  // the last looks out sideways
  r.fill();
  ASSERT_EQ(r.call(get_Sta), 0);
  expect_Bytes(r.sta(0), 0, 0.5, 0.5, 1.0, 0, 0);
  expect_Bytes(r.sta(1), 0, 0.5, 0.5, 1.0, 0, 0);
  expect_Bytes(r.sta(2), 1, 1.0, 0.5, 0.5, 0, 0);
}

TEST_F(SurfaceStatistics, ReadTheDirectionOfAnAxisAlone) {
  expect({0, 1}, 0, 0.5, 0.5, 1.0, {{4, 0, 0.5}, {0, 0, -1e-3}});
  expect({3}, 1, 1.0, 0.5, 0.5, {{-9, kNoNumber, 50}, {0, 0, 4e5}});
}

TEST_F(SurfaceStatistics, CastRaysAlongMinusZ_ForAnAxisWithoutDirection) {
  expect({0, 3}, 0, 0.5, 0.5, 1.0, {{4, 5, 6}, {0, 0, 0}});
  expect({3}, 1, 1.0, 0.5, 0.5, {{4, 5, 6}, {0, 0, 0}});
}

TEST_F(SurfaceStatistics, LiftTheStartOfRaysByTol_AlongTheNormal) {
  defaults::set(ucs_Tol, 1.5);  // beyond the roof
  expect({1}, 1, 1.0, 0.5, 0.5);
  defaults::set(ucs_Tol, -0.5);  // under the floor, and above what faces down
  expect({0}, 0, 0.0, 0.0, 0.5);
  expect({3}, 1, 1.0, 0.5, 0.5);
}

TEST_F(SurfaceStatistics, TakeTheNumberOfRegionsFromTheCapacity) { expect_Capacity(get_Sta); }

TEST_F(SurfaceStatistics, TellEachFaultByItsCode_AndLeaveTheResultAsItWas) {
  expect_Codes(get_Sta);
}

TEST_F(SurfaceStatistics, TellTheFirstOfTwoFaults) { expect_Order(get_Sta); }

TEST_F(SurfaceStatistics, GiveMinus9_ForFewerOrMoreAxesThanRegions) {
  expect_AnAxisForEachRegion(get_Sta);
}

TEST_F(SurfaceStatistics, RefuseIndicesFarOutOfRange_BeforeReadingThroughThem) {
  expect_NoReadBeyond(get_Sta);
}

TEST_F(SurfaceStatistics, GiveMinus11_ForAnAxisWhoseDirectionIsNotFinite) {
  expect_NoFrame(get_Sta);
}

TEST_F(SurfaceStatistics, GiveTheCodeOfEachStepThatHasNoMemory) {
  EXPECT_EQ(list_Codes(r, get_Sta), (Codes{-10, -12, -13, -14, -13, 0}));
}

// A ray through a tree as deep as this one needs memory of its own.
TEST_F(SurfaceStatistics, GiveMinus13_WithoutMemoryForARay) {
  TStatRequest uneven(make_Uneven());
  uneven.set_Regions({{0}});
  EXPECT_EQ(list_Codes(uneven, get_Sta), (Codes{-10, -12, -13, -14, -13, 0}));
}

TEST_F(SurfaceStatistics, TakeAMissingRecordAsOneWithoutAMesh) { expect_MissingRecords(get_Sta); }

TEST_F(SurfaceStatistics, WriteNothingOfTheResultButSta) { expect_OnlySta(get_Sta); }

TEST_F(SurfaceStatistics, LeaveTheRequestAsItWas) { expect_RequestAsItWas(get_Sta); }

TEST_F(SurfaceStatistics, WorkOnRecordsAtAMultipleOf4Bytes) { expect_PackedRecords(get_Sta); }

TEST_F(SurfaceStatistics, LeakNothingInAThousandCycles) { expect_NoLeak(get_Sta); }

TEST_F(SurfaceStatistics, KeepTheFiguresOfRegionsAwayFromCoordinatesThatAreNotFinite) {
  for (const T3DVEC& bad : {T3DVEC{kNoNumber, 0, 0}, {kInfinite, 1e308, -kInfinite}}) {
    r.vtx[12] = bad;
    r.set_Regions({{0, 1}, {4, 5}});
    ASSERT_EQ(r.call(get_Sta), 0);
    expect_Bytes(r.sta(0), 0, 0.5, 0.5, 1.0, 0, 0);
  }
}

// Infinite corners at one place have no area of their own, though their cross product is no number.
TEST_F(SurfaceStatistics, AddNothingForEqualCorners_WhereverTheyAre) {
  r.vtx[13] = r.vtx[14] = {kInfinite, 0, -kInfinite};
  expect({0, 5}, 1, 1.0, 0.5, 0.5);
}

TEST_F(SurfaceStatistics, RateEveryTriangleAsARegionOfItsOwn) {
  TStatRequest sheet(make_Bumpy(200, 200));
  std::vector<std::vector<uint32_t>> singles;
  for (uint32_t t = 0; t < sheet.tri.size(); ++t) singles.push_back({t});
  sheet.set_Regions(singles);
  ASSERT_EQ(sheet.call(get_Sta), 0);
  ASSERT_TRUE(sheet.res.sta != nullptr);
  for (uint32_t k = 0; k < singles.size(); ++k) ASSERT_GT(sheet.sta(k).area, 0.0);
}

TEST_F(SurfaceStatistics, HaveTheSameBits_ForAnyNumberOfThreads) {
  const bodies::TBody ball = bodies::make_Ball(6000);
  TStatRequest request({ball.points, ball.triangles});
  std::vector<std::vector<uint32_t>> lists(3);
  for (uint32_t t = 0; t < request.tri.size(); ++t) lists[t % 3].push_back(t);
  request.set_Regions(lists);
  request.axi = {{{0, 0, 0}, {0.2, 0.3, -1}}, {{0, 0, 0}, {1, 0, 0.1}}, {{0, 0, 0}, {0, -1, 0}}};
  request.fill();
  const int threads_before = omp_get_max_threads();
  omp_set_num_threads(1);
  ASSERT_EQ(request.call(get_Sta), 0);
  const std::vector<TUcStat> one(request.res.sta, request.res.sta + 3);
  for (const int threads : {16, 8, 4, 3, 2}) {
    omp_set_num_threads(threads);
    ASSERT_EQ(request.call(get_Sta), 0);
    EXPECT_EQ(std::memcmp(request.res.sta, one.data(), 3 * sizeof(TUcStat)), 0) << threads;
  }
  omp_set_num_threads(threads_before);
}

// The direction of a region is that of the tool, towards the part: rays against it leave the part.
TEST_F(SurfaceStatistics, FindTheRegionsOfARealPartSeen_AlongTheAxesThatComeWithThem) {
  TPartRequest part;
  ASSERT_GT(part.regions.size(), 3u);
  ASSERT_EQ(part.call(get_Sta), 0);
  for (uint32_t k = 0; k < part.regions.size(); ++k) EXPECT_GT(part.sta(k).share, 0.95) << k;
  for (T3DRAY& axis : part.axi) axis.dir = -axis.dir;
  part.fill();
  ASSERT_EQ(part.call(get_Sta), 0);
  for (uint32_t k = 0; k < part.regions.size(); ++k) EXPECT_LT(part.sta(k).share, 0.05) << k;
}

}  // namespace
