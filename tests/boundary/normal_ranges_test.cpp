// err_Nml, called as a host calls it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "foundation/values.h"
#include "tests/boundary/defaults.h"
#include "tests/boundary/refusal.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using Rays = std::vector<std::vector<T3DRAY>>;
using Codes = std::vector<int32_t>;

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

struct TRange {
  double low, high;
};

void set_Ranges(const std::vector<TRange>& ranges) {
  int32_t (*const set_Low[])(const double*) = {dcm_aT0, dcm_aT1, dcm_aT2};
  int32_t (*const set_High[])(const double*) = {dcm_bT0, dcm_bT1, dcm_bT2};
  for (size_t k = 0; k < ranges.size() && k < 3; ++k) {
    set_Low[k](&ranges[k].low);
    set_High[k](&ranges[k].high);
  }
  defaults::set(dcm_Con, static_cast<uint32_t>(ranges.size()));
}

class NormalRanges : public testing::Test {
 protected:
  NormalRanges() {
    defaults::restore();
    ini_Req(&req);
    ini_Res(&res);
  }
  ~NormalRanges() override {
    clr_Res(&res);
    defaults::restore();
  }
  int32_t call() {
    clr_Res(&res);
    req.axi = {rays.data(), static_cast<uint32_t>(rays.size())};
    return err_Nml(&req, &res);
  }
  Rays results() {
    EXPECT_EQ(call(), 0);
    Rays copy;
    EXPECT_EQ(res.nml.count, res.nml.capacity);
    for (uint32_t i = 0; i < res.nml.count; ++i) {
      const TLstRay inner = res.nml.data[i];
      EXPECT_EQ(inner.count, inner.capacity);
      copy.emplace_back(inner.data, inner.data + inner.count);
    }
    return copy;
  }
  // The directions for a single ray.
  std::vector<T3DVEC> directions_Of(const T3DVEC& dir) {
    rays = {{{1, 2, 3}, dir}};
    std::vector<T3DVEC> directions;
    const Rays found = results();
    for (const T3DRAY& ray : found.at(0)) directions.push_back(ray.dir);
    return directions;
  }

  std::vector<T3DRAY> rays = {{{1, 2, 3}, {0.5, 0.25, -0.5}}, {{0, 0, 0}, {0, 3, 4}}};
  TUcReq req;
  TUcRes res;
};

// The direction whose negative has these angles, in degrees.
T3DVEC against(double polar, double azimuth) {
  const double p = polar * 0.017453292519943295, a = azimuth * 0.017453292519943295;
  return {-(std::sin(p) * std::cos(a)), -(std::sin(p) * std::sin(a)), -std::cos(p)};
}
void expect_Near(const T3DVEC& a, const T3DVEC& b) {
  EXPECT_NEAR(a.x, b.x, 1e-12);
  EXPECT_NEAR(a.y, b.y, 1e-12);
  EXPECT_NEAR(a.z, b.z, 1e-12);
}

TEST_F(NormalRanges, GiveTheSameDirectionForEachRange_WhereItLiesInsideAll) {
  set_Ranges({{0, 180}, {40, 60}, {50, 50}});
  for (const double azimuth : {0.0, 33.0, 90.0, 179.0, 181.0, 300.0}) {
    const std::vector<T3DVEC> found = directions_Of(against(50, azimuth));
    ASSERT_EQ(found.size(), 3u);
    for (const T3DVEC& d : found) expect_Near(d, against(50, azimuth));
  }
}

TEST_F(NormalRanges, HoldThePolarAngleOfMinusTheDirection) {
  set_Ranges({{30, 60}});
  expect_Near(directions_Of(against(10, 70))[0], against(30, 70));
  expect_Near(directions_Of(against(80, 70))[0], against(60, 70));
  expect_Near(directions_Of(against(45, 70))[0], against(45, 70));
}

TEST_F(NormalRanges, StartEachRangeFromWhereTheOneBeforeLeftIt) {
  // From 90 degrees straight to the third range it would stay at 90.
  set_Ranges({{0, 20}, {30, 60}, {25, 100}});
  const std::vector<T3DVEC> found = directions_Of(against(90, 10));
  ASSERT_EQ(found.size(), 3u);
  expect_Near(found[0], against(20, 10));
  expect_Near(found[1], against(30, 10));
  expect_Near(found[2], against(30, 10));
}

TEST_F(NormalRanges, StartEachRayAnew) {
  set_Ranges({{0, 20}});
  rays = {{{0, 0, 0}, against(90, 10)}, {{0, 0, 0}, against(5, 10)}};
  const Rays found = results();
  expect_Near(found[0][0].dir, against(20, 10));
  expect_Near(found[1][0].dir, against(5, 10));
}

TEST_F(NormalRanges, TakeTheRangesOfTheDefaults) {
  const std::vector<T3DVEC> found = directions_Of(against(90, 45));
  ASSERT_EQ(found.size(), 2u);
  expect_Near(found[0], against(20, 45));
  expect_Near(found[1], against(160, 45));
}

TEST_F(NormalRanges, LowerToTheUpperLimitLast_WhereARangeIsReversed) {
  set_Ranges({{60, 30}});
  for (const double polar : {10.0, 45.0, 80.0})
    expect_Near(directions_Of(against(polar, 5))[0], against(30, 5));
}

TEST_F(NormalRanges, IgnoreALimitThatIsNoNumber) {
  set_Ranges({{kNoNumber, 30}, {10, kNoNumber}});
  expect_Near(directions_Of(against(50, 5))[0], against(30, 5));
  expect_Near(directions_Of(against(5, 5))[1], against(10, 5));
}

TEST_F(NormalRanges, KeepOrgAsItIs) {
  rays = {{{1, 2, 3}, {0, 0, 1}}, {{-0.0, kInfinite, 1e-320}, {0, 1, 0}}};
  const Rays found = results();
  ASSERT_EQ(found.size(), 2u);
  for (size_t i = 0; i < 2; ++i)
    for (const T3DRAY& ray : found[i])
      EXPECT_EQ(std::memcmp(&ray.org, &rays[i].org, sizeof(T3DVEC)), 0) << i;
}

TEST_F(NormalRanges, ReadADirectionOfAnyLength) {
  set_Ranges({{30, 60}});
  const T3DVEC d = against(40, 200);
  for (const double length : {1e-100, 0.5, 7.0, 1e100})
    expect_Near(directions_Of({length * d.x, length * d.y, length * d.z})[0], d);
}

TEST_F(NormalRanges, TakeTheAzimuth180_ForADirectionAlongZ) {
  // Minus (0, 0, 1) is (-0.0, -0.0, -1), whose azimuth is not 0.
  set_Ranges({{90, 90}});
  for (const double z : {1.0, -1.0}) {
    const T3DVEC d = directions_Of({0.0, 0.0, z})[0];
    expect_Near(d, {1, 0, 0});
    expect_Near(directions_Of({-0.0, -0.0, z})[0], {-1, 0, 0});
    expect_Near(directions_Of({-0.0, 0.0, z})[0], {-1, 0, 0});
  }
}

TEST_F(NormalRanges, TakeADirectionOfZeroForOneInThePlane) {
  set_Ranges({{0, 180}, {30, 60}});
  const std::vector<T3DVEC> found = directions_Of({0, 0, 0});
  expect_Near(found[0], {1, 0, 0});
  expect_Near(found[1], against(60, 180));
}

TEST_F(NormalRanges, StandDirectionsThatAreNotFinite) {
  set_Ranges({{0, 20}, {160, 180}, {80, 100}});
  const double values[] = {0.0, 1.0, -1.0, kNoNumber, kInfinite, -kInfinite, 1e308, 5e-324};
  rays.clear();
  for (const double x : values)
    for (const double y : values)
      for (const double z : values) rays.push_back({{x, y, z}, {x, y, z}});
  rays.push_back({{0, 0, 0}, {0, 3, 4}});
  const Rays found = results();
  ASSERT_EQ(found.size(), 513u);
  for (const auto& inner : found) EXPECT_EQ(inner.size(), 3u);
  expect_Near(found.back()[1].dir, against(160, 270));
}

TEST_F(NormalRanges, GiveMinus1And2_WithoutRays) {
  req.axi = {nullptr, 2};
  expect_Refusal(err_Nml, req, -1);
  req.axi = {rays.data(), 0};
  expect_Refusal(err_Nml, req, -2);
  req.axi = {nullptr, 0};
  expect_Refusal(err_Nml, req, -1);
}

TEST_F(NormalRanges, GiveMinus3_WithoutRanges) {
  req.axi = {rays.data(), 2};
  defaults::set(dcm_Con, 0);
  expect_Refusal(err_Nml, req, -3);
  req.axi.count = 0;
  expect_Refusal(err_Nml, req, -2);
}

TEST_F(NormalRanges, GiveMinus5_ForMoreThanThree_BehindTheirMemory) {
  req.axi = {rays.data(), 2};
  for (const uint32_t count : {4u, 1000000u, 0xFFFFFFFFu}) {
    defaults::set(dcm_Con, count);
    expect_Refusal(err_Nml, req, -5);
    const FailingAllocation failing(1);
    EXPECT_EQ(err_Nml(&req, &res), -4);
  }
}

TEST_F(NormalRanges, TellTheStepThatHasNoMemory) {
  req.axi = {rays.data(), 2};
  const Codes codes = list_FailureCodes([this] {
    const int32_t code = err_Nml(&req, &res);
    clr_Res(&res);
    return code;
  });
  EXPECT_EQ(codes, (Codes{-4, -6, -7, 0}));
}

TEST_F(NormalRanges, TakeAMissingRecordAsOneWithoutRays) {
  req.axi = {rays.data(), 2};
  EXPECT_EQ(err_Nml(nullptr, &res), -1);
  EXPECT_EQ(err_Nml(&req, nullptr), -1);
  EXPECT_EQ(err_Nml(nullptr, nullptr), -1);
}

TEST_F(NormalRanges, WriteNothingOfTheResultButNml) {
  req.axi = {rays.data(), 2};
  TUcRes out, before;
  std::memset(static_cast<void*>(&out), 0xAB, sizeof out);
  std::memcpy(static_cast<void*>(&before), &out, sizeof out);
  ASSERT_EQ(err_Nml(&req, &out), 0);
  res.nml = out.nml;
  before.nml = out.nml;
  EXPECT_EQ(std::memcmp(&out, &before, sizeof out), 0);
}

TEST_F(NormalRanges, LeaveTheRequestAsItWas) {
  req.axi = {rays.data(), 2};
  const std::vector<T3DRAY> copy = rays;
  TUcReq before;
  std::memcpy(static_cast<void*>(&before), &req, sizeof req);
  ASSERT_EQ(call(), 0);
  EXPECT_EQ(std::memcmp(&before, &req, sizeof req), 0);
  EXPECT_EQ(std::memcmp(copy.data(), rays.data(), copy.size() * sizeof(T3DRAY)), 0);
}

TEST_F(NormalRanges, WorkOnRecordsAtAMultipleOf4Bytes) {
  const Rays expected = results();
  alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
  auto* low_Req = reinterpret_cast<TUcReq*>(memory + 4);
  auto* low_Res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
  std::memcpy(static_cast<void*>(low_Req), &req, sizeof req);
  ini_Res(low_Res);
  ASSERT_EQ(err_Nml(low_Req, low_Res), 0);
  EXPECT_EQ(low_Res->nml.data[1].data[1].dir.z, expected[1][1].dir.z);
  clr_Res(low_Res);
}

TEST_F(NormalRanges, LeakNothingInAHundredCycles) {
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 100; ++cycle) {
    ASSERT_EQ(call(), 0);
    ASSERT_EQ(live_Allocations(), live + 3);
  }
  clr_Res(&res);
  EXPECT_EQ(live_Allocations(), live);
}

// The plain form: the azimuth stays, the polar angle goes from range to range.
TEST_F(NormalRanges, EqualPlainAngles_OnRandomDirections) {
  const uint64_t seed = 744;
  reference::Random random(seed);
  for (uint32_t i = 0; i < scale_Cases(1000); ++i) {
    std::vector<TRange> ranges(1 + random.below(3));
    for (TRange& range : ranges) {
      range.low = random.real(0, 150);
      range.high = range.low + random.real(0, 30);
    }
    set_Ranges(ranges);
    double polar = random.real(1, 179);
    const double azimuth = random.real(0, 360), length = random.real(0.1, 10);
    const T3DVEC d = against(polar, azimuth);
    const std::vector<T3DVEC> found = directions_Of({length * d.x, length * d.y, length * d.z});
    ASSERT_EQ(found.size(), ranges.size()) << "seed " << seed << ", case " << i;
    for (size_t k = 0; k < ranges.size(); ++k) {
      polar = std::min(std::max(polar, ranges[k].low), ranges[k].high);
      expect_Near(found[k], against(polar, azimuth));
    }
  }
}

}  // namespace
