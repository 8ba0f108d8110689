// get_5ax, called as a host calls it.
#include <filesystem>
#include <limits>

#include "tests/boundary/axes_request.h"
#include "tests/files/support.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::numeric_limits<double>::quiet_NaN();

using defaults::TBox;
using Curve = std::vector<T3DVEC>;
using Indices = std::vector<uint32_t>;

// A request with a region and curves of its own.
struct TSphereRequest : TAxesRequest {
  Indices roi;
  std::vector<Curve> curves;
  std::vector<TArrVec> arg;

  void set_Roi(const Indices& list) {
    roi = list;
    roi.reserve(1);
    const auto count = static_cast<uint32_t>(roi.size());
    req.roi = {roi.data(), count, count};
  }
  void set_Curves(const std::vector<Curve>& list) {
    curves = list;
    arg.clear();
    arg.reserve(1);
    for (Curve& curve : curves) arg.push_back({curve.data(), static_cast<uint32_t>(curve.size())});
    req.arg = {arg.data(), static_cast<uint32_t>(arg.size())};
  }
  int32_t call() { return TAxesRequest::call(get_5ax); }
  T3DFRM frame() const { return res.frm_b; }
  double gap(double theta, double phi) const {
    return angle_Between(-frame().z, direction_Of(theta, phi));
  }
};

bool is_Same(const T3DFRM& a, const T3DFRM& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

// Two facets far apart; the second has a roof that blocks all directions about its normal.
void add_Plain(TAxesRequest& r) {
  r.add_Facet({0, 0, 1}, 50, 110);
  r.add_Facet({300, 0, 0}, 20, 200, 0.5);
  r.add_Quad({290, -10, 2}, {310, -10, 2}, {310, 10, 2}, {290, 10, 2});
  r.fill();
}

// A sheet of 6 by 6 squares with waves.
void add_Sheet(TAxesRequest& r) {
  const TSoup sheet = make_Bumpy(6, 6);
  r.vtx = sheet.vtx;
  r.tri = sheet.tri;
  r.fill();
}
// Round the four squares in the middle of the sheet, counterclockwise, and what lies inside.
Curve list_Round(const TAxesRequest& r) {
  Curve curve;
  for (const uint32_t v : {16u, 17u, 18u, 25u, 32u, 31u, 30u, 23u}) curve.push_back(r.vtx[v]);
  return curve;
}
const Indices kMiddle = {28, 29, 30, 31, 40, 41, 42, 43};

class FiveAxis : public AxisSearch {
 protected:
  TPrinted line() {
    const std::vector<TPrinted> lines = read_Lines(r.console_Of(get_5ax));
    EXPECT_EQ(lines.size(), 1u);
    return lines.at(0);
  }
  T3DFRM frame_Of(TSphereRequest& request) {
    EXPECT_EQ(request.call(), 0);
    return request.frame();
  }
  TSphereRequest r;
};

TEST_F(FiveAxis, OfAFacet_IsItsNormal) {
  for (const T2DVEC& n : {T2DVEC{50, 110}, T2DVEC{0, 0}, T2DVEC{131, 260}, T2DVEC{90, 359}}) {
    TSphereRequest one;
    one.add_Facet({10, 20, 30}, n.x, n.y);
    one.fill();
    ASSERT_EQ(one.call(), 0);
    EXPECT_LT(one.gap(n.x, n.y), 1) << n.x;
    EXPECT_LT(dst(one.frame().org, {10, 20, 30}), 1e-13);
    EXPECT_NEAR(len(one.frame().z), 1, 1e-15);
  }
}

TEST_F(FiveAxis, OfTheWholeMesh_IsCentredOnItsVertices) {
  r.add_Facet({0, 0, 0}, 30, 40);
  r.vtx.push_back({0, 400, 0});  // no triangle uses it
  r.fill();
  ASSERT_EQ(r.call(), 0);
  EXPECT_LT(dst(r.frame().org, {0, 100, 0}), 1e-13);
}

TEST_F(FiveAxis, OfARegion_IsCentredOnItsCentroids) {
  add_Plain(r);
  r.set_Roi({1, 0, 0});
  ASSERT_EQ(r.call(), 0);
  EXPECT_LT(dst(r.frame().org, {100, 0, 2.0 / 3}), 1e-12);
}

TEST_F(FiveAxis, OfARegion_TakesTheRestOfTheMeshForNoObstacle) {
  add_Plain(r);
  r.set_Roi({1});
  ASSERT_EQ(r.call(), 0);
  EXPECT_LT(r.gap(20, 200), 1);
  // As a mesh of its own it has the same axis.
  TSphereRequest alone;
  alone.add_Facet({300, 0, 0}, 20, 200, 0.5);
  alone.fill();
  ASSERT_EQ(alone.call(), 0);
  EXPECT_TRUE(alone.frame().z == r.frame().z);
  // With its roof it has another.
  r.set_Roi({1, 2, 3});
  ASSERT_EQ(r.call(), 0);
  EXPECT_GT(r.gap(20, 200), 1);
}

TEST_F(FiveAxis, OfARegionOfAllTriangles_IsThatOfTheWholeMesh_ButForTheCentre) {
  add_Plain(r);
  ASSERT_EQ(r.call(), 0);
  const T3DFRM whole = r.frame();
  r.set_Roi({0, 1, 2, 3});
  ASSERT_EQ(r.call(), 0);
  EXPECT_TRUE(r.frame().z == whole.z);
  EXPECT_FALSE(r.frame().org == whole.org);
}

TEST_F(FiveAxis, OfAnEmptyRegion_IsThatOfTheWholeMesh) {
  add_Plain(r);
  const T3DFRM whole = frame_Of(r);
  r.set_Roi({});
  EXPECT_TRUE(is_Same(frame_Of(r), whole));
  r.req.roi = {nullptr, 3, 3};
  EXPECT_TRUE(is_Same(frame_Of(r), whole));
}

TEST_F(FiveAxis, OfCurves_IsThatOfTheTrianglesInside) {
  add_Sheet(r);
  r.set_Roi(kMiddle);
  const T3DFRM middle = frame_Of(r);
  r.req.roi = {nullptr, 0, 0};
  r.set_Curves({list_Round(r)});
  EXPECT_TRUE(is_Same(frame_Of(r), middle));
}

TEST_F(FiveAxis, OfCurves_PassesOverTheRegion) {
  add_Sheet(r);
  r.set_Roi(kMiddle);
  const T3DFRM middle = frame_Of(r);
  r.set_Curves({list_Round(r)});
  r.set_Roi({0, 1, 5, 28});
  EXPECT_TRUE(is_Same(frame_Of(r), middle));
  EXPECT_EQ(r.roi, (Indices{0, 1, 5, 28}));
  EXPECT_TRUE(r.req.roi.data == r.roi.data());
}

TEST_F(FiveAxis, OfNoCurves_IsThatOfTheRegion) {
  add_Sheet(r);
  r.set_Roi(kMiddle);
  const T3DFRM middle = frame_Of(r);
  r.set_Curves({});
  EXPECT_TRUE(is_Same(frame_Of(r), middle));
  r.req.arg = {nullptr, 4};
  EXPECT_TRUE(is_Same(frame_Of(r), middle));
}

TEST_F(FiveAxis, GivesMinus9_ForCurvesThatCutOutNothing) {
  add_Sheet(r);
  r.set_Curves({{{0, 0, 0}, {6, 0, 0}}});
  const int64_t live = live_Allocations();
  EXPECT_EQ(r.call(), -9);
  r.set_Curves({{}});
  EXPECT_EQ(r.call(), -9);
  EXPECT_EQ(live_Allocations(), live);
}

TEST_F(FiveAxis, ScansItsWindow_AndRefinesBeyondIt) {
  defaults::set(nxn_Box, TBox{{60, 100, 70, 130}});
  r.add_Facet({0, 0, 0}, 80, 150);
  r.fill();
  const TPrinted found = line();
  EXPECT_GT(found.theta, 70);
  EXPECT_GT(found.phi, 130);
  EXPECT_LT(r.gap(80, 150), 1);
}

TEST_F(FiveAxis, StartsAtTheBestPointOfTheScan_WithTheRadiusOfTheSimplex) {
  defaults::set(nxn_Box, TBox{{60, 100, 70, 130}});
  defaults::set(amo_Max, 0u);  // leaves the simplex its first vertex
  r.add_Facet({0, 0, 0}, 80, 150);
  r.fill();
  defaults::set(amo_Dxy, 8.0);
  const TPrinted found = line();
  EXPECT_EQ(found.ratings, 1 + 3);
  EXPECT_DOUBLE_EQ(found.theta, 60 - 8 / std::sqrt(2.0));
  EXPECT_DOUBLE_EQ(found.phi, 100 - 8 / std::sqrt(2.0));
}

TEST_F(FiveAxis, RatesTheWholeSphere_ByDefault) {
  r.add_Facet({0, 0, 0}, 80, 150);
  r.fill();
  defaults::set(amo_Eps, 100.0);
  EXPECT_EQ(line().ratings, 27 + 3);
}

TEST_F(FiveAxis, AnswersAlso_WhereNothingHasARating) {
  // A window that is empty, and a mesh without area: the simplex starts at the value for none.
  add_Plain(r);
  defaults::set(nxn_Box, TBox{{70, 100, 60, 130}});
  ASSERT_EQ(r.call(), 0);
  EXPECT_NEAR(len(r.frame().z), 1, 1e-14);
  const T3DVEC z = r.frame().z;
  defaults::restore();
  r.tri = {{0, 1, 1}};
  r.fill();
  ASSERT_EQ(r.call(), 0);
  EXPECT_TRUE(r.frame().z == z);
}

TEST_F(FiveAxis, WithoutAFiniteDirection_IsTheIdentity) {
  add_Plain(r);
  for (const double radius : {kNan, kInf, -kInf}) {
    defaults::set(amo_Dxy, radius);
    ASSERT_EQ(r.call(), 0);
    EXPECT_TRUE(is_Same(r.frame(), {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}})) << radius;
  }
}

TEST_F(FiveAxis, WeighsTheTilt) {
  r.add_Facet({0, 0, 0}, 50, 110);
  r.fill();
  defaults::set(err_Gew, 0.0);  // whatever sees the facet rates 0: the first point of the scan
  EXPECT_EQ(line().rating, 0);
  EXPECT_GT(r.gap(50, 110), 5);
}

TEST_F(FiveAxis, LiftsTheStartOfRaysByTheTolerance) {
  r.add_Facet({0, 0, 0}, 50, 110);
  const T3DVEC mid = direction_Of(50, 110);
  const T3DVEC a = 3 * direction_Of(140, 110), b = 3 * direction_Of(90, 200);
  r.add_Quad(mid - a - b, mid + a - b, mid + a + b, mid - a + b);
  r.fill();
  defaults::set(err_Gew, 1.0);  // so that no other direction than the normal is worth a look
  EXPECT_GT(line().rating, 1.2 / 38);
  defaults::set(ucs_Tol, 1.5);
  EXPECT_LT(line().rating, 0.02);
  EXPECT_LT(r.gap(50, 110), 1);
}

TEST_F(FiveAxis, PrintsOneLine_WhereTold) {
  add_Plain(r);
  const TPrinted found = line();
  EXPECT_EQ(found.name, "get_5ax");
  EXPECT_GT(found.ratings, 27 + 3);
  EXPECT_LT(r.gap(found.theta, found.phi), 1e-12);
  testing::internal::CaptureStdout();
  EXPECT_EQ(r.call(), 0);
  std::fflush(stdout);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

const TFault kFaults[] = {
    {-4, [](TAxesRequest& f) { f.req.msh.vtx = nullptr; }},
    {-5, [](TAxesRequest& f) { f.req.msh.tri = nullptr; }},
    {-6, [](TAxesRequest& f) { f.req.msh.n_vtx = 0; }},
    {-7, [](TAxesRequest& f) { f.req.msh.n_tri = 0; }},
    {UNDERCUT_BAD_VERTEX, [](TAxesRequest& f) { f.tri[1].c = 12; }},
    {UNDERCUT_BAD_TRIANGLE,
     [](TAxesRequest& f) {
       static uint32_t list[] = {0, 4};
       f.req.roi = {list, 2, 2};
     }},
    {-9,
     [](TAxesRequest& f) {
       static TArrVec nothing[] = {{nullptr, 0}};
       f.req.arg = {nothing, 1};
     }},
    {-11,
     [](TAxesRequest& f) {
       static uint32_t list[] = {3, 3};
       f.tri[3].c = f.tri[3].b;
       f.req.roi = {list, 2, 2};
     }},
};

TEST_F(FiveAxis, TellsEachFaultByItsCode_AndLeavesTheResultAsItWas) {
  expect_Codes(kFaults, get_5ax, add_Plain);
}

TEST_F(FiveAxis, TellsTheFirstOfTwoFaults) { expect_Order(kFaults, get_5ax, add_Plain); }

TEST_F(FiveAxis, ChecksTheRegion_AlsoWhereCurvesTakeItsPlace) {
  add_Sheet(r);
  r.set_Curves({list_Round(r)});
  r.set_Roi({72});
  EXPECT_EQ(r.call(), UNDERCUT_BAD_TRIANGLE);
}

TEST_F(FiveAxis, WithoutMemory_TellsTheStepThatNeededIt) {
  add_Sheet(r);
  EXPECT_EQ(list_Codes(r, get_5ax), (std::vector<int32_t>{-13, -1000, 0}));
  r.set_Roi(kMiddle);
  EXPECT_EQ(list_Codes(r, get_5ax), (std::vector<int32_t>{-11, -12, -1000, 0}));
  r.set_Curves({list_Round(r)});
  EXPECT_EQ(list_Codes(r, get_5ax), (std::vector<int32_t>{-9, -11, -12, -1000, 0}));
}

TEST_F(FiveAxis, WritesNothingOfTheResultButItsFrame) {
  add_Plain(r);
  expect_Written(r, get_5ax, 96, 192);
}

TEST_F(FiveAxis, TakesAMissingRecordAsOneWithoutAMesh) {
  add_Plain(r);
  EXPECT_EQ(get_5ax(nullptr, &r.res), -4);
  EXPECT_EQ(get_5ax(&r.req, nullptr), -4);
}

TEST_F(FiveAxis, LeaksNothing) {
  add_Sheet(r);
  r.set_Curves({list_Round(r)});
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 20; ++cycle) ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(live_Allocations(), live);
}

class FiveAxisFiles : public InFolder {};

TEST_F(FiveAxisFiles, AreNone) {
  TSphereRequest r;
  add_Sheet(r);
  r.set_Curves({list_Round(r)});
  defaults::set(ucs_Dbg, 1);
  EXPECT_EQ(r.call(), 0);
  defaults::restore();
  EXPECT_TRUE(std::filesystem::is_empty("."));
}

}  // namespace

}  // namespace undercut::tests
