// get_Stc, called as a host calls it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <random>

#include "square.h"
#include "tests/boundary/refusal.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut::tests;

namespace {

constexpr double kNoValue = -1.7976931348623157e+308;

TEST(RegionSums, GiveAreaAndLargestValueOfEachRegion) {
  TSquareRequest r;
  ASSERT_EQ(r.fill_AndCall(), 0);
  EXPECT_EQ(r.res.sta[0].area, 1.0);
  EXPECT_EQ(r.res.sta[0].value, 1.5);
  EXPECT_EQ(r.res.sta[1].area, 0.5);
  EXPECT_EQ(r.res.sta[1].value, -2.0);
}

TEST(RegionSums, FindTheLargest_AmongNegativeValuesOnly) {
  TSquareRequest r;
  r.add = {-1e300, -3.0, 0.0, 0.0};
  ASSERT_EQ(r.fill_AndCall(), 0);
  EXPECT_EQ(r.res.sta[0].value, -3.0);
  r.add = {-1e300, -1.7e308, 0.0, 0.0};
  ASSERT_EQ(r.fill_AndCall(), 0);
  EXPECT_EQ(r.res.sta[0].value, -1e300);
  EXPECT_EQ(r.res.sta[1].value, -1.7e308);
}

TEST(RegionSums, OfAnEmptyList_AreZeroAndNoValue) {
  TSquareRequest r;
  r.regions = {{}, {0}, {}};
  ASSERT_EQ(r.fill_AndCall(), 0);
  for (const int k : {0, 2}) {
    EXPECT_EQ(r.res.sta[k].area, 0.0);
    EXPECT_EQ(r.res.sta[k].value, kNoValue);
  }
  EXPECT_EQ(r.res.sta[1].area, 0.5);
}

TEST(RegionSums, OfAListWithoutArray_AreThoseOfAnEmptyOne) {
  TSquareRequest r;
  r.fill();
  r.cav[0] = {nullptr, 5, 5};
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(r.res.sta[0].area, 0.0);
  EXPECT_EQ(r.res.sta[0].value, kNoValue);
  EXPECT_EQ(r.res.sta[1].area, 0.5);
}

TEST(RegionSums, PassOverTrianglesWithTwoEqualCorners_ByIndexAndByPlace) {
  TSquareRequest r;
  r.regions = {{2}, {3}, {2, 3}, {2, 0, 3}};
  ASSERT_EQ(r.fill_AndCall(), 0);
  for (int k = 0; k < 3; ++k) {
    EXPECT_EQ(r.res.sta[k].area, 0.0) << k;
    EXPECT_EQ(r.res.sta[k].value, kNoValue) << k;
  }
  EXPECT_EQ(r.res.sta[3].area, 0.5);
  EXPECT_EQ(r.res.sta[3].value, 1.5);
}

TEST(RegionSums, CountATriangleOnALine_WithItsAreaOfZero) {
  TSquareRequest r;
  r.vtx.push_back({2, 0, 0});
  r.tri.push_back({0, 1, 5});
  r.add.push_back(9.0);
  r.regions = {{4}};
  ASSERT_EQ(r.fill_AndCall(), 0);
  EXPECT_EQ(r.res.sta[0].area, 0.0);
  EXPECT_EQ(r.res.sta[0].value, 9.0);
}

TEST(RegionSums, CountATriangleTwice_ThatIsListedTwice) {
  TSquareRequest r;
  r.regions = {{1, 1, 1}};
  ASSERT_EQ(r.fill_AndCall(), 0);
  EXPECT_EQ(r.res.sta[0].area, 1.5);
  EXPECT_EQ(r.res.sta[0].value, -2.0);
}

TEST(RegionSums, TakeTheNumberOfRegionsFromTheCapacity) {
  TSquareRequest r;
  r.fill();
  r.req.cav.count = 0;
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(r.res.sta[1].area, 0.5);
  r.cav[1].data = nullptr;
  r.req.cav.capacity = 1;
  r.req.cav.count = 2;
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(r.res.sta[0].area, 1.0);
}

TEST(RegionSums, PassOverAValueThatIsNoNumber) {
  TSquareRequest r;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  r.add = {nan, -2.0, 0.0, 0.0};
  r.regions = {{0, 1}, {0}, {1, 0}};
  ASSERT_EQ(r.fill_AndCall(), 0);
  EXPECT_EQ(r.res.sta[0].value, -2.0);
  EXPECT_EQ(r.res.sta[1].value, kNoValue);
  EXPECT_EQ(r.res.sta[2].value, -2.0);
  EXPECT_EQ(r.res.sta[0].area, 1.0);
}

TEST(RegionSums, KeepTheFiguresOfRegionsAwayFromCoordinatesThatAreNotFinite) {
  TSquareRequest r;
  r.vtx[3] = {std::numeric_limits<double>::infinity(), std::nan(""), 0};
  r.regions = {{0}, {1}, {2}};
  ASSERT_EQ(r.fill_AndCall(), 0);
  EXPECT_EQ(r.res.sta[0].area, 0.5);
  EXPECT_EQ(r.res.sta[0].value, 1.5);
  EXPECT_EQ(r.res.sta[1].value, -2.0);
}

TEST(RegionSums, LeaveEveryUnusedByteOfTheirRecordsZero) {
  TSquareRequest r;
  ASSERT_EQ(r.fill_AndCall(), 0);
  for (int k = 0; k < 2; ++k) {
    TUcStat expected;
    std::memset(&expected, 0, sizeof expected);
    expected.area = k == 0 ? 1.0 : 0.5;
    expected.value = k == 0 ? 1.5 : -2.0;
    EXPECT_EQ(std::memcmp(&r.res.sta[k], &expected, sizeof expected), 0) << k;
  }
}

TEST(RegionSums, WriteNothingOfTheResultButSta) {
  TSquareRequest r;
  r.fill();
  TUcRes res, before;
  std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
  std::memcpy(&before, &res, sizeof res);
  ASSERT_EQ(get_Stc(&r.req, &res), 0);
  EXPECT_TRUE(res.sta != before.sta);
  r.res.sta = res.sta;
  before.sta = res.sta;
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
}

TEST(RegionSums, LeaveTheRequestAsItWas) {
  TSquareRequest r;
  r.fill();
  const auto vtx = r.vtx;
  const auto add = r.add;
  const auto regions = r.regions;
  TUcReq before;
  std::memcpy(&before, &r.req, sizeof before);
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
  EXPECT_EQ(std::memcmp(vtx.data(), r.vtx.data(), vtx.size() * sizeof(T3DVEC)), 0);
  EXPECT_EQ(add, r.add);
  EXPECT_EQ(regions, r.regions);
}

TEST(RegionSums, WorkOnRecordsAtAMultipleOf4Bytes) {
  TSquareRequest r;
  r.fill();
  alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
  auto* req = reinterpret_cast<TUcReq*>(memory + 4);
  auto* res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
  ini_Req(req);
  ini_Res(res);
  req->msh = r.req.msh;
  req->cav = r.req.cav;
  req->add = r.req.add;
  ASSERT_EQ(get_Stc(req, res), 0);
  EXPECT_EQ(res->sta[0].area, 1.0);
  EXPECT_EQ(clr_Res(res), 0);
}

TEST(RegionSums, CheckTheIndicesOfAllRegionsThatTheyRead) {
  TSquareRequest r;
  r.regions = {{0}, {4}};
  r.fill();
  r.req.cav.count = 0;
  EXPECT_EQ(r.call(), UNDERCUT_BAD_TRIANGLE);
  r.req.cav.capacity = 1;
  EXPECT_EQ(r.call(), 0);
}

// One fault for each code, in the order of the checks. The last two are told before -8 and after
// -7.
struct TFault {
  int32_t code;
  void (*make)(TSquareRequest&);
};
const TFault kFaults[] = {
    {-1, [](TSquareRequest& r) { r.req.msh.vtx = nullptr; }},
    {-2, [](TSquareRequest& r) { r.req.msh.tri = nullptr; }},
    {-3, [](TSquareRequest& r) { r.req.msh.n_vtx = 0; }},
    {-4, [](TSquareRequest& r) { r.req.msh.n_tri = 0; }},
    {-5, [](TSquareRequest& r) { r.req.cav.data = nullptr; }},
    {-6, [](TSquareRequest& r) { r.req.cav.capacity = 0; }},
    {-7, [](TSquareRequest& r) { r.req.add = nullptr; }},
    {UNDERCUT_BAD_VERTEX, [](TSquareRequest& r) { r.tri[3].b = 5; }},
    {UNDERCUT_BAD_TRIANGLE, [](TSquareRequest& r) { r.regions[1][0] = 4; }},
};

TEST(RegionSums, TellEachFaultByItsCode_AndLeaveTheResultAsItWas) {
  for (const TFault& fault : kFaults) {
    TSquareRequest r;
    r.fill();
    fault.make(r);
    expect_Refusal(get_Stc, r.req, fault.code);
  }
}

TEST(RegionSums, TellTheFirstOfTwoFaults) {
  const size_t count = std::size(kFaults);
  for (size_t i = 0; i < count; ++i) {
    for (size_t k = i + 1; k < count; ++k) {
      TSquareRequest r;
      r.fill();
      kFaults[k].make(r);
      kFaults[i].make(r);
      EXPECT_EQ(r.call(), kFaults[i].code) << "beside " << kFaults[k].code;
    }
  }
}

TEST(RegionSums, RefuseIndicesFarOutOfRange_BeforeReadingThroughThem) {
  TSquareRequest r;
  r.regions[0][0] = 0xFFFFFFFFu;
  EXPECT_EQ(r.fill_AndCall(), UNDERCUT_BAD_TRIANGLE);
  r.tri[0].a = 0xFFFFFFFFu;
  EXPECT_EQ(r.fill_AndCall(), UNDERCUT_BAD_VERTEX);
}

TEST(RegionSums, GiveMinus8_WithoutMemoryForTheRecords) {
  TSquareRequest r;
  r.fill();
  {
    const FailingAllocation failing(1);
    EXPECT_EQ(r.call(), -8);
    EXPECT_TRUE(failing.has_Failed());
  }
  EXPECT_TRUE(r.res.sta == nullptr);
  EXPECT_EQ(r.call(), 0);
}

TEST(RegionSums, TakeAMissingRecordAsOneWithoutAMesh) {
  TSquareRequest r;
  r.fill();
  EXPECT_EQ(get_Stc(nullptr, &r.res), -1);
  EXPECT_EQ(get_Stc(&r.req, nullptr), -1);
  EXPECT_EQ(get_Stc(nullptr, nullptr), -1);
}

TEST(RegionSums, LeakNothingInAThousandCycles) {
  TSquareRequest r;
  r.regions.resize(50, {0, 1, 2, 3});
  r.fill();
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 1000; ++cycle) {
    ASSERT_EQ(ini_Res(&r.res), 0);
    ASSERT_EQ(get_Stc(&r.req, &r.res), 0);
    ASSERT_EQ(live_Allocations(), live + 1);
    ASSERT_EQ(clr_Res(&r.res), 0);
  }
  EXPECT_EQ(live_Allocations(), live);
}

// The plain form: half the length of the cross product of two edges, summed in the order of the
// list.
double plain_Area(const T3DVEC& a, const T3DVEC& b, const T3DVEC& c) {
  const double u[3] = {b.x - a.x, b.y - a.y, b.z - a.z};
  const double v[3] = {c.x - a.x, c.y - a.y, c.z - a.z};
  const double n[3] = {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2],
                       u[0] * v[1] - u[1] * v[0]};
  return 0.5 * std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
}

TEST(RegionSums, EqualThePlainSums_OnRandomMeshes) {
  constexpr unsigned seed = 20240607;
  std::printf("seed %u\n", seed);
  std::mt19937 random(seed);
  const auto below = [&random](uint32_t end) { return static_cast<uint32_t>(random() % end); };
  const uint32_t rounds = scale_Cases(200);
  for (uint32_t round = 0; round < rounds; ++round) {
    TSquareRequest r;
    const uint32_t n_vtx = 1 + below(30), n_tri = 1 + below(60);
    r.vtx.resize(n_vtx);
    r.tri.resize(n_tri);
    r.add.resize(n_tri);
    r.regions.assign(1 + below(5), {});
    // A coarse grid, so that corners often coincide.
    for (T3DVEC& v : r.vtx) v = {below(4) * 0.3, below(4) * 0.7, below(3) * 1.1};
    for (T3DTRI& t : r.tri) t = {below(n_vtx), below(n_vtx), below(n_vtx)};
    for (double& value : r.add) value = -5.0 + below(100) * 0.1;
    for (auto& region : r.regions) {
      region.resize(below(40));
      for (uint32_t& t : region) t = below(n_tri);
    }
    ASSERT_EQ(r.fill_AndCall(), 0);
    for (size_t k = 0; k < r.regions.size(); ++k) {
      double area = 0.0, value = kNoValue;
      for (const uint32_t t : r.regions[k]) {
        const T3DVEC &a = r.vtx[r.tri[t].a], &b = r.vtx[r.tri[t].b], &c = r.vtx[r.tri[t].c];
        const auto same = [](const T3DVEC& p, const T3DVEC& q) {
          return p.x == q.x && p.y == q.y && p.z == q.z;
        };
        if (same(a, b) || same(b, c) || same(a, c)) continue;
        area += plain_Area(a, b, c);
        value = std::max(value, r.add[t]);
      }
      ASSERT_EQ(r.res.sta[k].area, area) << "round " << round;
      ASSERT_EQ(r.res.sta[k].value, value) << "round " << round;
    }
  }
}

}  // namespace
