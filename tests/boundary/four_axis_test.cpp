// get_4ay, called as a host calls it.
#include <limits>

#include "tests/boundary/axes_request.h"

namespace undercut::tests {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::numeric_limits<double>::quiet_NaN();

// Facets that tilt by these angles in the plane of azimuth 90, a region each.
void add_Facets(TAxesRequest& r, const std::vector<double>& tilts) {
  T3DVEC centre = {0, 0, 1};
  for (const double tilt : tilts) {
    r.regions.push_back({r.add_Facet(centre, tilt, 90)});
    centre = centre + T3DVEC{100, 3, 0};
  }
  r.fill();
}

void make_Plain(TAxesRequest& r) { add_Facets(r, {-20, 3.3, 17}); }

class FourAxis : public AxisSearch {
 protected:
  // The tilt of the frame of a region in the plane of azimuth 90.
  double tilt_Of(uint32_t k) const {
    const T3DVEC z = r.z(k);
    EXPECT_NEAR(z.x, 0, 1e-15);
    return std::atan2(-z.y, -z.z) * kDegrees;
  }
  double tilt_OfOne(double facet) {
    r.vtx.clear();
    r.tri.clear();
    r.regions.clear();
    add_Facets(r, {facet});
    EXPECT_EQ(r.call(get_4ay), 0);
    return tilt_Of(0);
  }
  double ratings() { return read_Lines(r.console_Of(get_4ay))[0].ratings; }

  TAxesRequest r;
};

TEST_F(FourAxis, GivesEachRegionTheTiltOfItsNormal) {
  make_Plain(r);
  ASSERT_EQ(r.call(get_4ay), 0);
  ASSERT_EQ(r.res.n_lst, 3u);
  EXPECT_NEAR(tilt_Of(0), -20, 0.1);
  EXPECT_NEAR(tilt_Of(1), 3.3, 0.1);
  EXPECT_NEAR(tilt_Of(2), 17, 0.1);
  for (uint32_t k = 0; k < 3; ++k) {
    EXPECT_LT(dst(r.org(k), {100.0 * k, 3.0 * k, 1}), 1e-13);
    EXPECT_NEAR(len(r.z(k)), 1, 1e-15);
  }
}

TEST_F(FourAxis, TiltsInThePlaneOfTheAzimuth) {
  defaults::set(gcu_Phi, 30.0);
  r.regions = {{r.add_Facet({0, 0, 0}, 10, 30)}, {r.add_Facet({50, 0, 0}, 10, 210)}};
  r.fill();
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_LT(angle_Between(-r.z(0), direction_Of(10, 30)), 0.1);
  EXPECT_LT(angle_Between(-r.z(1), direction_Of(10, 210)), 0.1);
}

TEST_F(FourAxis, TakesTheWholeMeshAsAnObstacle) {
  add_Facets(r, {0});
  // A roof that leaves the facet free from 13.5 degrees on.
  r.add_Quad({-50, -50, 5}, {50, -50, 5}, {50, 1.2, 5}, {-50, 1.2, 5});
  r.fill();
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_GT(tilt_Of(0), 13);
}

TEST_F(FourAxis, RatesARegionWithoutAnArray_AsTheWholeMesh_CentredOnTheVertices) {
  const uint32_t a = r.add_Facet({0, 0, 0}, 12, 90), b = r.add_Facet({90, 0, 0}, 12, 90);
  r.vtx.push_back({0, 600, 0});  // no triangle uses it
  r.regions = {{a, b}, {}};
  r.fill();
  r.cav[1] = {nullptr, 7, 7};
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_TRUE(r.z(0) == r.z(1));
  EXPECT_LT(dst(r.org(0), {45, 0, 0}), 1e-12);
  EXPECT_LT(dst(r.org(1), {270.0 / 7, 600.0 / 7, 0}), 1e-12);
}

TEST_F(FourAxis, GivesAnEmptyRegionAFrameAtZero) {
  add_Facets(r, {10});
  r.regions.push_back({});
  r.fill();
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_TRUE(r.org(1) == (T3DVEC{0, 0, 0}));
  // Every tilt rates the same: the first of the scan, then upwards in its bracket of 2.5 degrees.
  EXPECT_NEAR(tilt_Of(1), -22.5, 0.1);
}

TEST_F(FourAxis, CountsATriangleTwice_ThatIsListedTwice) {
  r.add_Facet({0, 0, 0}, -10, 90);
  r.add_Facet({90, 0, 0}, 20, 90);
  r.regions = {{0, 1}, {0, 1, 1}};
  r.fill();
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_NEAR(tilt_Of(0), 5, 0.2);
  EXPECT_GT(tilt_Of(1), 9);
  EXPECT_LT(dst(r.org(1), {60, 0, 0}), 1e-12);
}

TEST_F(FourAxis, TakesTheNumberOfRegionsFromTheCapacity) {
  make_Plain(r);
  r.req.cav.count = 0;
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_EQ(r.res.n_lst, 3u);
  r.req.cav.count = 3;
  r.req.cav.capacity = 2;
  r.cav[2] = {nullptr, 0, 0};
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_EQ(r.res.n_lst, 2u);
}

TEST_F(FourAxis, With5Intervals_RatesSixTilts_BeforeTheGoldenSection) {
  add_Facets(r, {10});
  defaults::set(gcu_Max, 0u);  // leaves the golden section its two first points
  defaults::set(gcu_Dim, 5u);
  EXPECT_EQ(ratings(), 6 + 2);
  defaults::set(gcu_Dim, 20u);
  EXPECT_EQ(ratings(), 21 + 2);
}

TEST_F(FourAxis, GivesMinus17_ForFewerThan5Intervals) {
  make_Plain(r);
  for (const uint32_t dim : {0u, 1u, 4u}) {
    defaults::set(gcu_Dim, dim);
    EXPECT_EQ(r.call(get_4ay), -17) << dim;
  }
  defaults::set(gcu_Dim, 5u);
  EXPECT_EQ(r.call(get_4ay), 0);
}

TEST_F(FourAxis, GivesMinus17_ForARangeOfFewerThanFiveWindows) {
  add_Facets(r, {10});
  defaults::set(gcu_Flg, 1);
  defaults::set(gcu_Dim, 20u);
  for (const double win : {12.5, 50.0, 1e300, kInf}) {
    defaults::set(gcu_Win, win);
    EXPECT_EQ(r.call(get_4ay), -17) << win;
  }
}

TEST_F(FourAxis, RoundsTheIntervalsUp_ThatAWindowGives) {
  add_Facets(r, {10});
  defaults::set(gcu_Flg, 1);
  defaults::set(gcu_Dim, 0u);  // not read
  defaults::set(gcu_Max, 0u);
  defaults::set(gcu_Win, 12.4);
  EXPECT_EQ(ratings(), 6 + 2);
  defaults::set(gcu_Win, 10.0);
  EXPECT_EQ(ratings(), 6 + 2);
  defaults::set(gcu_Win, 9.9);
  EXPECT_EQ(ratings(), 7 + 2);
}

TEST_F(FourAxis, GivesMinus16_ForAWindowThatIsNotAbove0_WhereItIsRead) {
  add_Facets(r, {10});
  for (const double win : {0.0, -0.0, -5.0, -kInf, kNan}) {
    defaults::set(gcu_Win, win);
    defaults::set(gcu_Flg, 1);
    EXPECT_EQ(r.call(get_4ay), -16) << win;
    defaults::set(gcu_Flg, 0);
    EXPECT_EQ(r.call(get_4ay), 0) << win;
  }
}

TEST_F(FourAxis, ScansNoMoreThan100000Intervals) {
  r.add_Facet({0, 0, 0}, 0, 0);
  r.regions = {{}};  // casts no rays
  r.fill();
  defaults::set(gcu_Max, 0u);
  for (const uint32_t dim : {100000u, 100001u, 0xFFFFFFFFu}) {
    defaults::set(gcu_Dim, dim);
    EXPECT_EQ(ratings(), 100001 + 2) << dim;
  }
  defaults::set(gcu_Flg, 1);
  for (const double win : {1e-9, 1e-300, 5e-324}) {
    defaults::set(gcu_Win, win);
    EXPECT_EQ(ratings(), 100001 + 2) << win;
  }
}

TEST_F(FourAxis, StaysInTheRange_WhereItsEndIsBest) {
  // Two-sided brackets would find these tilts, which lie less than a step beyond the range.
  EXPECT_NEAR(tilt_OfOne(26), 25, 0.1);
  EXPECT_LE(tilt_Of(0), 25);
  EXPECT_NEAR(tilt_OfOne(-26), -25, 0.1);
  EXPECT_GE(tilt_Of(0), -25);
}

TEST_F(FourAxis, LooksOneStepToEitherSideOfTheBestTilt) {
  // Just beside the tilts 2.5 and 22.5 of the scan, on either side.
  for (const double tilt : {1.3, 2.4, 2.6, 3.7, 21.3, 23.7, -23.7}) {
    EXPECT_NEAR(tilt_OfOne(tilt), tilt, 0.1);
  }
}

TEST_F(FourAxis, HandsOutTheGoldenSectionsPoint_AlsoWhereTheScanHadABetterOne) {
  // A facet at the bottom of a slot, seen within a third of a degree of the tilt 0 alone.
  r.regions = {{r.add_Facet({0, 0, 0}, 0, 90, 0.05)}};
  r.add_Quad({-50, 0.1, 0}, {50, 0.1, 0}, {50, 0.1, 20}, {-50, 0.1, 20});
  r.add_Quad({-50, -0.1, 0}, {-50, -0.1, 20}, {50, -0.1, 20}, {50, -0.1, 0});
  r.fill();
  const std::vector<TPrinted> line = read_Lines(r.console_Of(get_4ay));
  EXPECT_GT(tilt_Of(0), 2.4);
  EXPECT_GT(line[0].rating, 0.01);
}

TEST_F(FourAxis, FoldsATiltOfExactlyMinus180_To180OnTheOtherSide) {
  r.regions = {{r.add_Facet({0, 0, 0}, 180, 0)}};
  r.fill();
  defaults::set(gcu_Th0, -180.0);
  defaults::set(gcu_Th1, -80.0);
  defaults::set(gcu_Eps, 1e-12);
  const std::vector<TPrinted> line = read_Lines(r.console_Of(get_4ay));
  EXPECT_NEAR(line[0].theta, 180, 1e-6);
  EXPECT_LE(line[0].theta, 180);
  EXPECT_EQ(line[0].phi, 270);
  EXPECT_LT(angle_Between(r.z(0), {0, 0, 1}), 1e-6);
}

TEST_F(FourAxis, TakesARangeOfTwoTurns) {
  defaults::set(gcu_Th0, -360.0);
  defaults::set(gcu_Th1, 360.0);
  for (const double phi : {0.0, 180.0}) {
    defaults::set(gcu_Phi, phi);
    TAxesRequest turned;
    turned.regions = {{turned.add_Facet({0, 0, 0}, 150, phi)}};
    turned.fill();
    ASSERT_EQ(turned.call(get_4ay), 0);
    EXPECT_LT(angle_Between(-turned.z(0), direction_Of(150, phi)), 0.1);
  }
}

TEST_F(FourAxis, EndsItsSearch_WithoutAnEps) {
  add_Facets(r, {10});
  defaults::set(gcu_Max, 4000000000u);
  for (const double eps : {0.0, -1.0, kNan}) {
    defaults::set(gcu_Eps, eps);
    EXPECT_LT(ratings(), 300) << eps;
    EXPECT_NEAR(tilt_Of(0), 10, 1e-6);
  }
}

TEST_F(FourAxis, ScansARangeOfAFewLastDigits) {
  add_Facets(r, {10});
  defaults::set(gcu_Th0, 25.0);
  defaults::set(gcu_Th1, std::nextafter(25.0, 30.0));
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_NEAR(tilt_Of(0), 25, 1e-12);
  defaults::set(gcu_Th0, 0.0);
  defaults::set(gcu_Th1, 5e-324);
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_EQ(tilt_Of(0), 0);
}

TEST_F(FourAxis, WeighsTheTiltAgainstTheBlockedArea) {
  // From 13.5 degrees on both facets are seen, below them one, and that straight on.
  r.add_Facet({0, 0, 0}, 0, 90);
  r.add_Facet({200, 0, 0}, 0, 90);
  r.regions = {{0, 1}};
  r.add_Quad({-50, -50, 5}, {50, -50, 5}, {50, 1.2, 5}, {-50, 1.2, 5});
  r.fill();
  defaults::set(err_Gew, 1.0);
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_NEAR(tilt_Of(0), 0, 0.1);
  defaults::set(err_Gew, 1e-6);
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_GT(tilt_Of(0), 13);
}

TEST_F(FourAxis, LiftsTheStartOfRaysByTheTolerance) {
  add_Facets(r, {10});
  r.add_Quad({-90, -90, 5}, {90, -90, 5}, {90, 90, 5}, {-90, 90, 5});
  r.fill();
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_NEAR(tilt_Of(0), -22.5, 0.1);  // blocked everywhere
  defaults::set(ucs_Tol, 8.0);
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_NEAR(tilt_Of(0), 10, 0.1);
}

TEST_F(FourAxis, AnswersForManyRegions_AsForEachAlone) {
  make_Plain(r);
  r.regions.push_back({0, 2});
  r.regions.push_back({});
  r.fill();
  const TLstU32 whole = {nullptr, 0, 0};
  r.cav.push_back(whole);
  r.req.cav = {r.cav.data(), 6, 6};
  ASSERT_EQ(r.call(get_4ay), 0);
  const std::vector<T3DFRM> together(r.res.lst, r.res.lst + 6);
  for (uint32_t k = 0; k < 6; ++k) {
    r.req.cav = {&r.cav[k], 1, 1};
    ASSERT_EQ(r.call(get_4ay), 0);
    EXPECT_EQ(std::memcmp(&together[k], r.res.lst, sizeof(T3DFRM)), 0) << k;
  }
}

TEST_F(FourAxis, PrintsALineForEachRegion_WhereTold) {
  make_Plain(r);
  const std::vector<TPrinted> lines = read_Lines(r.console_Of(get_4ay));
  ASSERT_EQ(lines.size(), 3u);
  for (uint32_t k = 0; k < 3; ++k) {
    EXPECT_EQ(lines[k].name, "get_4ay");
    EXPECT_LT(angle_Between(-r.z(k), direction_Of(lines[k].theta, lines[k].phi)), 1e-12);
    EXPECT_LT(lines[k].rating, 1e-4);
    EXPECT_GT(lines[k].ratings, 23);
    EXPECT_GE(lines[k].theta, 0);
  }
  EXPECT_EQ(lines[0].phi, 270);
  EXPECT_EQ(lines[1].phi, 90);
  testing::internal::CaptureStdout();
  EXPECT_EQ(r.call(get_4ay), 0);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

const TFault kFaults[] = {
    {-4, [](TAxesRequest& r) { r.req.msh.vtx = nullptr; }},
    {-5, [](TAxesRequest& r) { r.req.msh.tri = nullptr; }},
    {-6, [](TAxesRequest& r) { r.req.msh.n_vtx = 0; }},
    {-7, [](TAxesRequest& r) { r.req.msh.n_tri = 0; }},
    {-8, [](TAxesRequest& r) { r.req.cav.data = nullptr; }},
    {-9, [](TAxesRequest& r) { r.req.cav.capacity = 0; }},
    {-10, [](TAxesRequest&) { defaults::set(gcu_Th1, -400.0); }},
    {-11, [](TAxesRequest&) { defaults::set(gcu_Th0, std::nextafter(-360.0, -400.0)); }},
    {-12, [](TAxesRequest&) { defaults::set(gcu_Th1, std::nextafter(360.0, 400.0)); }},
    {-13, [](TAxesRequest&) { defaults::set(gcu_Phi, -5e-324); }},
    {-14, [](TAxesRequest&) { defaults::set(gcu_Phi, std::nextafter(180.0, 200.0)); }},
    {UNDERCUT_BAD_VERTEX, [](TAxesRequest& r) { r.tri[2].c = 9; }},
    {UNDERCUT_BAD_TRIANGLE, [](TAxesRequest& r) { r.regions[2][0] = 3; }},
    {-16,
     [](TAxesRequest&) {
       defaults::set(gcu_Flg, 1);
       defaults::set(gcu_Win, 0.0);
     }},
    {-17, [](TAxesRequest&) { defaults::set(gcu_Dim, 4u); }},
};

TEST_F(FourAxis, TellsEachFaultByItsCode_AndLeavesTheResultAsItWas) {
  expect_Codes(kFaults, get_4ay, make_Plain);
}

TEST_F(FourAxis, TellsTheFirstOfTwoFaults) { expect_Order(kFaults, get_4ay, make_Plain); }

TEST_F(FourAxis, RefusesARangeWithoutLength) {
  make_Plain(r);
  defaults::set(gcu_Th0, 25.0);
  EXPECT_EQ(r.call(get_4ay), -10);
}

TEST_F(FourAxis, RefusesLimitsThatAreNoNumber) {
  make_Plain(r);
  defaults::set(gcu_Th0, kNan);
  EXPECT_EQ(r.call(get_4ay), -10);
  defaults::restore();
  defaults::set(gcu_Th1, kNan);
  EXPECT_EQ(r.call(get_4ay), -10);
  defaults::restore();
  defaults::set(gcu_Phi, kNan);
  EXPECT_EQ(r.call(get_4ay), -13);
}

TEST_F(FourAxis, ChecksTheIndicesOfAllRegionsThatItReads) {
  make_Plain(r);
  r.regions[2][0] = 0xFFFFFFFFu;
  r.req.cav.count = 0;
  EXPECT_EQ(r.call(get_4ay), UNDERCUT_BAD_TRIANGLE);
  r.req.cav.capacity = 2;
  EXPECT_EQ(r.call(get_4ay), 0);
}

TEST_F(FourAxis, GivesMinus19_WhereNoTiltHasARating) {
  // Without area the blocked share is not a number.
  r.add_Tri({0, 0, 0}, {1, 0, 0}, {1, 0, 0});
  r.regions = {{0}};
  r.fill();
  const int64_t live = live_Allocations();
  EXPECT_EQ(r.call(get_4ay), -19);
  EXPECT_EQ(live_Allocations(), live);
  EXPECT_TRUE(r.res.lst == nullptr);
}

TEST_F(FourAxis, WithoutMemory_GivesMinus15ForTheMesh_ThenMinus18ForTheFrames) {
  make_Plain(r);
  EXPECT_EQ(list_Codes(r, get_4ay), (std::vector<int32_t>{-15, -18, -1000, 0}));
}

TEST_F(FourAxis, ReadsTheWindow_AfterTheMeshIsPrepared) {
  make_Plain(r);
  defaults::set(gcu_Dim, 4u);
  EXPECT_EQ(list_Codes(r, get_4ay), (std::vector<int32_t>{-15, -17}));
}

TEST_F(FourAxis, WritesNothingOfTheResultButItsFrames) {
  make_Plain(r);
  expect_Written(r, get_4ay, 192, 204);
}

TEST_F(FourAxis, TakesAMissingRecordAsOneWithoutAMesh) {
  make_Plain(r);
  EXPECT_EQ(get_4ay(nullptr, &r.res), -4);
  EXPECT_EQ(get_4ay(&r.req, nullptr), -4);
}

TEST_F(FourAxis, LeavesTheParametersAsTheyWere) {
  make_Plain(r);
  ASSERT_EQ(r.call(get_4ay), 0);
  const std::vector<T3DFRM> first(r.res.lst, r.res.lst + 3);
  ASSERT_EQ(r.call(get_4ay), 0);
  EXPECT_EQ(std::memcmp(first.data(), r.res.lst, 3 * sizeof(T3DFRM)), 0);
}

TEST_F(FourAxis, LeaksNothingInAHundredCycles) {
  make_Plain(r);
  expect_NoLeak(r, get_4ay);
}

}  // namespace

}  // namespace undercut::tests
