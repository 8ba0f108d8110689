// get_5ay, called as a host calls it.
#include <limits>

#include "tests/boundary/axes_request.h"

namespace undercut::tests {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kNone = std::numeric_limits<double>::max();

using defaults::TBox;

// Facets with these normals, a region each.
void add_Facets(TAxesRequest& r, const std::vector<T2DVEC>& normals) {
  T3DVEC centre = {0, 0, 1};
  for (const T2DVEC& n : normals) {
    r.regions.push_back({r.add_Facet(centre, n.x, n.y)});
    centre = centre + T3DVEC{100, 30, 200};
  }
  r.fill();
}

// The middle of a window of 40 by 40 degrees, which is scanned at 10 by 10: the scan finds points
// farther than 5 degrees from the rim for the first two facets.
constexpr TBox kWindow = {{70, 100, 110, 140}};
void make_Plain(TAxesRequest& r) {
  defaults::set(nxn_Box, kWindow);
  defaults::set(nxn_Dxx, 10.0);
  defaults::set(nxn_Dyy, 10.0);
  add_Facets(r, {{88, 121}, {92.5, 118}});
}

class WindowedAxes : public AxisSearch {
 protected:
  // How far the axis of a region is from a direction.
  double gap(uint32_t k, double theta, double phi) const {
    return angle_Between(-r.z(k), direction_Of(theta, phi));
  }
  std::vector<TPrinted> lines() { return read_Lines(r.console_Of(get_5ay)); }

  TAxesRequest r;
};

TEST_F(WindowedAxes, GiveEachRegionItsNormal) {
  make_Plain(r);
  ASSERT_EQ(r.call(get_5ay), 0);
  ASSERT_EQ(r.res.n_lst, 2u);
  EXPECT_LT(gap(0, 88, 121), 0.5);
  EXPECT_LT(gap(1, 92.5, 118), 0.5);
  EXPECT_LT(dst(r.org(0), {0, 0, 1}), 1e-13);
  EXPECT_LT(dst(r.org(1), {100, 30, 201}), 1e-12);
}

TEST_F(WindowedAxes, LieInTheWindow_AlsoWhereABetterDirectionLiesBeyondIt) {
  make_Plain(r);
  r.regions = {{r.add_Facet({0, 0, 500}, 130, 120)}, {r.add_Facet({0, 0, 700}, 90, 50)}};
  r.fill();
  for (const TPrinted& line : lines()) {
    EXPECT_TRUE(line.theta >= 70 && line.theta <= 110) << line.theta;
    EXPECT_TRUE(line.phi >= 100 && line.phi <= 140) << line.phi;
    EXPECT_LT(line.rating, 1);
  }
}

TEST_F(WindowedAxes, LieInTheWindow_WhereTheSimplexStartsInsideIt) {
  // The scan's best is 104 and the rim 110: the simplex fits, and wants to go beyond.
  defaults::set(nxn_Box, TBox{{70, 100, 110, 140}});
  defaults::set(nxn_Dxx, 34.0);
  defaults::set(nxn_Dyy, 20.0);
  add_Facets(r, {{130, 120}});
  const std::vector<TPrinted> line = lines();
  EXPECT_GT(line[0].theta, 107);
  EXPECT_LE(line[0].theta, 110);
}

TEST_F(WindowedAxes, TakeTheWholeMeshAsAnObstacle) {
  make_Plain(r);
  r.vtx.clear();
  r.tri.clear();
  r.regions.clear();
  // A facet that looks along Y, and a shield between it and the middle of the window.
  add_Facets(r, {{90, 120}});
  const T3DVEC n = direction_Of(90, 120), u = direction_Of(90, 210);
  const T3DVEC mid = T3DVEC{0, 0, 1} + 20 * n, up = {0, 0, 5};
  r.add_Quad(mid + (-5.0 * u) - up, mid + 5 * u - up, mid + 5 * u + up, mid + (-5.0 * u) + up);
  r.fill();
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_GT(gap(0, 90, 120), 12);
}

TEST_F(WindowedAxes, RateARegionWithoutAnArray_AsTheWholeMesh_CentredOnTheVertices) {
  make_Plain(r);
  r.vtx.push_back({700, 0, 0});  // no triangle uses it
  r.regions = {{0, 1}, {}};
  r.fill();
  r.cav[1] = {nullptr, 7, 7};
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_TRUE(r.z(0) == r.z(1));
  EXPECT_LT(dst(r.org(0), {50, 15, 101}), 1e-12);
  EXPECT_LT(dst(r.org(1), {1000.0 / 7, 90.0 / 7, 606.0 / 7}), 1e-12);
}

TEST_F(WindowedAxes, OfAnEmptyRegion_IsTheFirstPointOfTheScan_AtZero) {
  make_Plain(r);
  r.regions = {{}};
  r.fill();
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_TRUE(r.org(0) == (T3DVEC{0, 0, 0}));
  EXPECT_LT(gap(0, 70, 100), 1e-12);
}

TEST_F(WindowedAxes, AreAsManyAsTheCapacityTells) {
  make_Plain(r);
  r.req.cav.count = 0;
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_EQ(r.res.n_lst, 2u);
  r.req.cav.count = 2;
  r.req.cav.capacity = 1;
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_EQ(r.res.n_lst, 1u);
}

TEST_F(WindowedAxes, InAWindowOfOnePoint_AreItsLowerCorner) {
  defaults::set(nxn_Box, TBox{{10, 30, 20, 40}});
  add_Facets(r, {{15, 35}});
  const std::vector<TPrinted> line = lines();
  EXPECT_EQ(line[0].theta, 10);
  EXPECT_EQ(line[0].phi, 30);
  EXPECT_EQ(line[0].ratings, 1 + 3);
  EXPECT_LT(gap(0, 10, 30), 1e-12);
}

TEST_F(WindowedAxes, NearTheRim_AreThePointOfTheScan) {
  make_Plain(r);
  r.regions = {{r.add_Facet({0, 0, 500}, 71, 121)}};
  r.fill();
  const std::vector<TPrinted> line = lines();
  EXPECT_EQ(line[0].theta, 70);
  EXPECT_EQ(line[0].phi, 120);
  EXPECT_EQ(line[0].ratings, 16 + 3);
}

// The radius of the start simplex is not restored where one has collapsed.
TEST_F(WindowedAxes, AfterARegionNearTheRim_ArePointsOfTheScanToo) {
  make_Plain(r);
  const uint32_t rim = r.add_Facet({0, 0, 500}, 71, 121);
  r.regions = {{0}, {rim}, {0}, {1}};
  r.fill();
  const std::vector<TPrinted> line = lines();
  EXPECT_GT(line[0].ratings, 16 + 3);
  for (const int k : {1, 2, 3}) EXPECT_EQ(line[k].ratings, 16 + 3) << k;
  EXPECT_LT(gap(0, 88, 121), 0.5);
  EXPECT_LT(gap(2, 90, 120), 1e-12);
  EXPECT_LT(gap(3, 90, 120), 1e-12);
}

TEST_F(WindowedAxes, StartTheNextCallWithTheFullRadius) {
  make_Plain(r);
  const uint32_t rim = r.add_Facet({0, 0, 500}, 71, 121);
  r.regions = {{rim}, {0}};
  r.fill();
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_GT(gap(1, 88, 121), 1);
  r.req.cav = {&r.cav[1], 1, 1};
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_LT(gap(0, 88, 121), 0.5);
}

TEST_F(WindowedAxes, AreThePointOfTheScan_WhereAVertexOfTheSimplexLiesOnAnUpperBound) {
  // The ring at 90 has points at phi 110 and 117.5, the third vertex is at 117.5 plus the radius.
  make_Plain(r);
  r.regions = {{0}};
  r.fill();
  defaults::set(nxn_Box, TBox{{70, 110, 110, 125}});
  defaults::set(amo_Dxy, 7.5);
  TPrinted line = lines()[0];
  EXPECT_EQ(line.theta, 90);
  EXPECT_EQ(line.phi, 117.5);
  EXPECT_EQ(line.ratings, 5 + 3);
  defaults::set(amo_Dxy, 7.499999);
  EXPECT_GT(lines()[0].ratings, 5 + 3);
}

TEST_F(WindowedAxes, AreThePointOfTheScan_WhereASideOfTheSimplexLiesOnAnUpperBound) {
  // The second vertex lies at theta 100 plus the radius over the root of 2; with a radius below 0
  // the first one does.
  make_Plain(r);
  r.regions = {{r.add_Facet({0, 0, 500}, 99, 121)}};
  r.fill();
  const double radius = 14.142135623730951;
  ASSERT_EQ(100 + radius * (1 / std::sqrt(2.0)), 110);
  for (const double sign : {1.0, -1.0}) {
    defaults::set(amo_Dxy, sign * radius);
    const TPrinted line = lines()[0];
    EXPECT_EQ(line.theta, 100);
    EXPECT_EQ(line.phi, 120);
    EXPECT_EQ(line.ratings, 16 + 3);
    defaults::set(amo_Dxy, sign * (radius - 1e-6));
    EXPECT_GT(lines()[0].ratings, 16 + 3);
  }
}

TEST_F(WindowedAxes, AreRefined_WhereAVertexOfTheSimplexLiesOnALowerBound) {
  // The first vertex lies at theta 80 less the radius over the root of 2.
  make_Plain(r);
  r.regions = {{r.add_Facet({0, 0, 500}, 81, 121)}};
  r.fill();
  const double radius = 14.142135623730951;
  ASSERT_EQ(80 + radius * (-1 / std::sqrt(2.0)), 70);
  defaults::set(amo_Dxy, radius);
  EXPECT_GT(lines()[0].ratings, 16 + 3);
  defaults::set(amo_Dxy, radius + 1e-6);
  const TPrinted line = lines()[0];
  EXPECT_EQ(line.ratings, 16 + 3);
  EXPECT_EQ(line.theta, 80);
  EXPECT_EQ(line.phi, 120);
}

TEST_F(WindowedAxes, AnswerForManyRegions_AsForEachAlone_WhereNoneIsNearTheRim) {
  make_Plain(r);
  r.regions = {{0}, {1}, {0, 1}, {1, 0, 0}};
  r.fill();
  ASSERT_EQ(r.call(get_5ay), 0);
  const std::vector<T3DFRM> together(r.res.lst, r.res.lst + 4);
  for (uint32_t k = 0; k < 4; ++k) {
    r.req.cav = {&r.cav[k], 1, 1};
    ASSERT_EQ(r.call(get_5ay), 0);
    EXPECT_EQ(std::memcmp(&together[k], r.res.lst, sizeof(T3DFRM)), 0) << k;
  }
}

TEST_F(WindowedAxes, WithARadiusThatIsNoNumber_ArePointsOfTheScan) {
  make_Plain(r);
  for (const double radius : {kNan, kInf, 1e300, -kInf}) {
    defaults::set(amo_Dxy, radius);
    for (const TPrinted& line : lines()) EXPECT_EQ(line.ratings, 16 + 3) << radius;
    EXPECT_LT(gap(0, 90, 120), 1e-12);
  }
}

TEST_F(WindowedAxes, EndTheirSearch_WithoutAnEps) {
  make_Plain(r);
  for (const double eps : {0.0, -1.0, kNan}) {
    defaults::set(amo_Eps, eps);
    for (const TPrinted& line : lines()) EXPECT_LT(line.ratings, 16 + 3 + 4 * 50) << eps;
    EXPECT_LT(gap(0, 88, 121), 0.1);
  }
}

TEST_F(WindowedAxes, PrintALineForEachRegion_WhereTold) {
  make_Plain(r);
  const std::vector<TPrinted> line = lines();
  ASSERT_EQ(line.size(), 2u);
  for (uint32_t k = 0; k < 2; ++k) {
    EXPECT_EQ(line[k].name, "get_5ay");
    EXPECT_LT(gap(k, line[k].theta, line[k].phi), 1e-12);
    EXPECT_GT(line[k].ratings, 16 + 3);
    EXPECT_LT(line[k].rating, 1e-3);
  }
  testing::internal::CaptureStdout();
  EXPECT_EQ(r.call(get_5ay), 0);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(WindowedAxes, WeighTheTiltAndLiftRays_AsTold) {
  make_Plain(r);
  defaults::set(err_Gew, 0.0);  // whatever sees the facets rates 0: the first point
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_LT(gap(0, 70, 100), 1e-12);
  defaults::set(err_Gew, 0.01);
  const T3DVEC n = direction_Of(90, 120), u = direction_Of(90, 210), up = {0, 0, 90};
  const T3DVEC mid = T3DVEC{0, 0, 1} + 5 * n;
  r.add_Quad(mid + (-90.0 * u) - up, mid + 90 * u - up, mid + 90 * u + up, mid + (-90.0 * u) + up);
  r.fill();
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_LT(gap(0, 70, 100), 1e-12);  // blocked everywhere
  defaults::set(ucs_Tol, 8.0);
  ASSERT_EQ(r.call(get_5ay), 0);
  EXPECT_LT(gap(0, 88, 121), 0.5);
}

const TFault kFaults[] = {
    {-4, [](TAxesRequest& r) { r.req.msh.vtx = nullptr; }},
    {-5, [](TAxesRequest& r) { r.req.msh.tri = nullptr; }},
    {-6, [](TAxesRequest& r) { r.req.msh.n_vtx = 0; }},
    {-7, [](TAxesRequest& r) { r.req.msh.n_tri = 0; }},
    {-8, [](TAxesRequest& r) { r.req.cav.data = nullptr; }},
    {-9, [](TAxesRequest& r) { r.req.cav.capacity = 0; }},
    {-10,
     [](TAxesRequest&) {
       defaults::set(nxn_Box, TBox{{70, 140, 70, 140}});
     }},
    {-11,
     [](TAxesRequest&) {
       defaults::set(nxn_Box, TBox{{70, 140, 110, 140}});
     }},
    {UNDERCUT_BAD_VERTEX, [](TAxesRequest& r) { r.tri[1].c = 6; }},
    {UNDERCUT_BAD_TRIANGLE, [](TAxesRequest& r) { r.regions[1][0] = 2; }},
};

TEST_F(WindowedAxes, TellEachFaultByItsCode_AndLeaveTheResultAsItWas) {
  expect_Codes(kFaults, get_5ay, make_Plain);
}

TEST_F(WindowedAxes, TellTheFirstOfTwoFaults) { expect_Order(kFaults, get_5ay, make_Plain); }

TEST_F(WindowedAxes, RefuseAWindowTheWrongWayRound_OrWithABoundThatIsNoNumber) {
  make_Plain(r);
  for (const TBox& box : {TBox{{110, 100, 70, 140}}, TBox{{kNan, 100, 110, 140}},
                          TBox{{70, 100, kNan, 140}}, TBox{{kInf, 100, kInf, 140}}}) {
    defaults::set(nxn_Box, box);
    EXPECT_EQ(r.call(get_5ay), -10);
  }
  for (const TBox& box : {TBox{{70, 140, 110, 100}}, TBox{{70, kNan, 110, 140}},
                          TBox{{70, 100, 110, kNan}}, TBox{{70, -kInf, 110, -kInf}}}) {
    defaults::set(nxn_Box, box);
    EXPECT_EQ(r.call(get_5ay), -11);
  }
}

TEST_F(WindowedAxes, GiveMinus14_WhereNothingHasARating) {
  make_Plain(r);
  // Without area the blocked share is not a number.
  r.tri = {{0, 1, 1}, {2, 2, 3}};
  const int64_t live = live_Allocations();
  EXPECT_EQ(r.call(get_5ay), -14);
  EXPECT_EQ(live_Allocations(), live);
  EXPECT_TRUE(r.res.lst == nullptr);
}

TEST_F(WindowedAxes, GiveMinus14_WhereAllThatIsScannedLiesOutsideTheWindow) {
  make_Plain(r);
  // On the pole phi 0 is rated alone.
  defaults::set(nxn_Box, TBox{{0, 100, 10, 140}});
  EXPECT_EQ(r.call(get_5ay), -14);
}

TEST_F(WindowedAxes, GiveMinus15_WhereTheScansPhiIsTheValueForNone) {
  make_Plain(r);
  defaults::set(nxn_Box, TBox{{70, kNone, 110, kInf}});
  EXPECT_EQ(r.call(get_5ay), -15);
}

TEST_F(WindowedAxes, WithoutMemory_GiveMinus12ForTheMesh_ThenMinus13ForTheFrames) {
  make_Plain(r);
  EXPECT_EQ(list_Codes(r, get_5ay), (std::vector<int32_t>{-12, -13, -1000, 0}));
}

TEST_F(WindowedAxes, WriteNothingOfTheResultButTheirFrames) {
  make_Plain(r);
  expect_Written(r, get_5ay, 192, 204);
}

TEST_F(WindowedAxes, TakeAMissingRecordAsOneWithoutAMesh) {
  make_Plain(r);
  EXPECT_EQ(get_5ay(nullptr, &r.res), -4);
  EXPECT_EQ(get_5ay(&r.req, nullptr), -4);
}

TEST_F(WindowedAxes, LeakNothingInAHundredCycles) {
  make_Plain(r);
  expect_NoLeak(r, get_5ay);
}

}  // namespace

}  // namespace undercut::tests
