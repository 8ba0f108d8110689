#include "decomposition/candidates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/reference/random_geometry.h"
#include "tests/support/measures.h"
#include "tests/support/regions.h"

namespace undercut {
namespace {

using namespace tests;
using List = std::vector<uint32_t>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// Triangle 1 is region 1, flat, with the axis +Z. Triangle 0 is the candidate beside it, tilted by
// `tilt` degrees towards +X round its centroid at (1, 1, 0). A roof of the given height covers all
// up to x = `reach`.
TSoup make_Roofed(double tilt, double height, double reach) {
  TSoup soup;
  for (const T3DVEC& v : {T3DVEC{0, 0, 0}, {3, 0, 0}, {0, 3, 0}})
    soup.vtx.push_back(
        {1 + (v.x - 1) * std::cos(tilt * kRadians), v.y, -(v.x - 1) * std::sin(tilt * kRadians)});
  soup.vtx.push_back({6, 6, 0});
  soup.tri = {{0, 1, 2}, {1, 3, 2}};
  for (const T3DVEC& v : {T3DVEC{reach, -50, height}, {reach, 50, height}, {-50, 0, height}})
    soup.vtx.push_back(v);
  soup.tri.push_back({4, 5, 6});
  return soup;
}

struct TScene {
  TRig rig;
  CUcA* region;
  TScene(double tilt, double height, double reach, const CDcmPar& par = open_Par())
      : rig(make_Roofed(tilt, height, reach), par) {
    region = settle_Open(rig, 1, {1});
    region->measures.normal = {0, 0, 1};
    rig.cnd.region = region;
    rig.cnd.triangle = 0;
  }
  bool test() { return test_Cand(rig.cnd); }
};

// ---- test_Cand ---------------------------------------------------------------------------------

TEST(TestCand, IsTrue_WhereNothingStandsOverTheTriangle) {
  TScene scene(0, 1, -40);
  EXPECT_TRUE(scene.test());
  EXPECT_FALSE(TScene(0, 1, 40).test());
}

TEST(TestCand, IsFalse_WithoutRegionMapOrTree_AndForAnIndexOutOfRange) {
  for (int part = 0; part < 4; ++part) {
    TScene scene(0, 1, -40);
    if (part == 0) scene.rig.cnd.region = nullptr;
    if (part == 1) scene.rig.cnd.map = nullptr;
    if (part == 2) scene.rig.cnd.tree = nullptr;
    if (part == 3) scene.rig.cnd.triangle = 3;
    EXPECT_FALSE(scene.test()) << part;
    double cost;
    EXPECT_FALSE(cost_Cand(scene.rig.cnd, cost)) << part;
  }
}

TEST(TestCand, IsFalse_ForATriangleWithTwoEqualCorners) {
  TSoup soup = make_Strip(3);
  soup.vtx.push_back(soup.vtx[1]);
  soup.tri[0] = {5, 2, 1};  // differ by index, coincide by coordinates
  TRig rig(soup, open_Par());
  rig.cnd.region = settle_Open(rig, 1, {1});
  rig.cnd.triangle = 0;
  EXPECT_FALSE(test_Cand(rig.cnd));
}

TEST(TestCand, AtExactlyTheAperture_Accepts_AndTheNormalMeasureIsZero) {
  TScene scene(30, 1, -40);
  const T3DFAC f = get_Fac(scene.rig.map().msh, 0);
  const double angle = ang_Vec(nml_Tri(f), unit(scene.region->measures.normal));
  scene.rig.cnd.aperture = angle;
  EXPECT_TRUE(scene.test());
  EXPECT_EQ(q_Nml(scene.rig.map(), scene.region, f, angle), 0.0);
  scene.rig.cnd.aperture = std::nextafter(angle, 0);
  EXPECT_FALSE(scene.test());
}

// Apertures from far off down to the last digit of the angle, normals of any length, and apertures
// that are no angle.
TEST(TestCand, ByCosines_TakesAndRefusesAsTheAngleDoes) {
  reference::Random random(4417);
  TScene scene(30, 1, -40);
  uint32_t taken = 0, near = 0;
  for (uint32_t round = 0; round < 20000; ++round) {
    scene.region->measures.normal = random.real(0.01, 1) * random.triple(-1, 1);
    if (random.chance(0.02)) scene.region->measures.normal = {0, 0, 0};
    if (random.chance(0.02)) scene.region->measures.normal = {kNan, 0, 1};
    if (random.chance(0.02)) scene.region->measures.normal = {0, 0, 1e-120};
    if (random.chance(0.02)) scene.region->measures.normal = {1e200, 0, 1e200};
    const T3DVEC n = nml_Tri(get_Fac(scene.rig.map().msh, 0));
    const double angle = ang_Vec(n, unit(scene.region->measures.normal));
    const double steps[] = {0, 1e-15, 1e-12, 1e-9, 5e-8, 6e-8, 1e-7, 1e-3, 10};
    double aperture = angle + (random.chance(0.5) ? 1 : -1) * steps[random.below(9)];
    if (random.chance(0.2)) aperture = std::nextafter(angle, random.chance(0.5) ? 0 : 180);
    if (random.chance(0.05)) aperture = random.chance(0.5) ? random.real(-10, 0) : 190;
    if (random.chance(0.02)) aperture = kNan;
    scene.rig.cnd.aperture = aperture;
    const bool expected = !(angle > aperture);
    ASSERT_EQ(scene.test(), expected) << angle << " against " << aperture;
    taken += expected;
    near += std::fabs(angle - aperture) < 1e-9;
  }
  EXPECT_GT(taken, 5000u);
  EXPECT_LT(taken, 15000u);
  EXPECT_GT(near, 5000u);
}

TEST(TestCand, LiftsTheTestPointAlongTheNormal) {
  // Through the roof at 0.01 with a lift of 0.02.
  TScene scene(0, 0.01, 40);
  scene.rig.cnd.fuzz = 0;
  EXPECT_FALSE(scene.test());
  scene.rig.cnd.lift = 0.02;
  EXPECT_TRUE(scene.test());
  scene.rig.cnd.lift = -0.02;  // not above 0: no lift
  EXPECT_FALSE(scene.test());
}

TEST(TestCand, WithoutFuzz_RefusesWhatTheFirstRayDoesNotSee) {
  TScene scene(0, 0.1, 40);
  EXPECT_TRUE(scene.test()) << "from 0.15 above, through the roof";
  scene.rig.cnd.fuzz = 0;
  EXPECT_FALSE(scene.test());
  scene.rig.cnd.fuzz = -5;
  EXPECT_FALSE(scene.test());
}

TEST(TestCand, ShiftsATiltedTriangleSideways) {
  TScene scene(30, 1, 1.1);
  EXPECT_TRUE(scene.test()) << "0.15 towards +X is beyond the roof";
  scene.rig.cnd.fuzz = 0.05;
  EXPECT_FALSE(scene.test());
}

TEST(TestCand, KeepsTheLiftInTheShiftedPoint) {
  // The lift of 0.2 takes the point 0.1 to the side, the fuzz another 0.15.
  TScene scene(30, 1, 1.2);
  EXPECT_FALSE(scene.test());
  scene.rig.cnd.lift = 0.2;
  EXPECT_TRUE(scene.test());
}

TEST(TestCand, WithinTheNullAngle_ShiftsAlongTheNormal) {
  // Along the normal 0.15 gets only 0.075 to the side, which is not enough.
  TScene scene(30, 1, 1.1);
  scene.rig.cnd.null_angle = 40;
  EXPECT_FALSE(scene.test());
  TScene flat(0, 0.1, 40);
  EXPECT_TRUE(flat.test()) << "sideways there is no way out";
}

TEST(TestCand, WithinTheNullAngleOfTheOppositeAxis_ShiftsAlongTheNormalToo) {
  // Under itself: only a way to the side leads out.
  TScene scene(177, 1, -40);
  scene.region->measures.normal = {0, 0, -1};
  scene.rig.cnd.fuzz = 10;
  scene.rig.cnd.null_angle = 1;
  EXPECT_TRUE(scene.test());
  scene.rig.cnd.null_angle = 5;
  EXPECT_FALSE(scene.test());
}

TEST(TestCand, LooksAlongTheAxisThatTheRegionWouldHaveWithTheTriangle) {
  // The axis asked for leans 45 degrees to +X; half of it and half of +Z leans 22.5, which passes
  // 0.41 beside the point above at height 1.
  for (const double reach : {1.35, 1.5}) {
    TScene scene(0, 1, reach);
    scene.region->polar0 = 45;
    scene.rig.cnd.fuzz = 0;
    EXPECT_EQ(scene.test(), reach < 1.41) << reach;
  }
}

// ---- Measures of the score ---------------------------------------------------------------------

TEST(NormalMeasure, FallsFromOneToZeroAcrossTheAperture) {
  TScene scene(30, 1, -40);
  const T3DFAC f = get_Fac(scene.rig.map().msh, 0);
  EXPECT_NEAR(q_Nml(scene.rig.map(), scene.region, f, 60), 0.5, 1e-12);
  EXPECT_EQ(q_Nml(scene.rig.map(), scene.region, f, 20), 0.0);
  scene.region->measures.normal = {0, 0, 0};  // no angle: counts as none
  EXPECT_EQ(q_Nml(scene.rig.map(), scene.region, f, 60), 1.0);
}

TEST(NormalMeasure, CodesWhatItCanNotJudge) {
  TScene scene(30, 1, -40);
  const CMap& map = scene.rig.map();
  const T3DFAC f = get_Fac(map.msh, 0);
  EXPECT_EQ(q_Nml(map, nullptr, f, 60), -1.0);
  EXPECT_EQ(q_Nml(map, scene.region, {f.a, f.a, f.c}, 60), -2.0);
  for (const double aperture : {0.0, 180.0, -3.0, kNan})
    EXPECT_EQ(q_Nml(map, scene.region, f, aperture), -3.0);
}

TEST(AxisMeasure, IsTheShareOfAreaSeenAlongTheAxis) {
  TScene scene(30, 1, -40);
  const CMap& map = scene.rig.map();
  const T3DFAC f = get_Fac(map.msh, 0);
  EXPECT_NEAR(q_Prj(map, scene.region, f), std::cos(30 * kRadians), 1e-12);
  EXPECT_EQ(q_Prj(map, nullptr, f), -1.0);
  EXPECT_EQ(q_Prj(map, scene.region, {f.a, f.b, f.b}), -2.0);
}

TEST(FreeMeasure, IsOneForAFreeTriangleAlone) {
  TRig rig(make_Strip(5), open_Par(), {0, 1, 2, 3});
  const CUcA* region = settle_Open(rig, 1, {1});
  settle_Open(rig, 2, {2});
  EXPECT_EQ(q_Fre(rig.map(), region, 0), 1.0);
  EXPECT_EQ(q_Fre(rig.map(), region, 2), 0.0);
  EXPECT_EQ(q_Fre(rig.map(), region, 4), 0.0);
  EXPECT_EQ(q_Fre(rig.map(), nullptr, 0), -1.0);
}

TEST(BorderMeasure, CodesAMissingRegionAndAFanThatFails) {
  TRig rig(make_Strip(5), open_Par());
  const CUcA* region = settle_Open(rig, 1, {1});
  EXPECT_EQ(q_Bnd(rig.map(), nullptr, 0), -1.0);
  EXPECT_EQ(q_Bnd(rig.map(), region, 4), -2.0) << "does not touch the region";
  EXPECT_EQ(q_Bnd(rig.map(), region, 1), -2.0) << "is in the region";
}

// A region of given moments, so great that a triangle folded in does not change them.
struct TShape {
  TRig rig{make_Strip(3), open_Par()};
  CUcA* region = settle_Open(rig, 1, {1});
  double measure(double sxx, double syy) {
    region->measures.plane = {};
    region->measures.plane.sxx = sxx;
    region->measures.plane.syy = syy;
    return q_Elp(rig.map(), region, get_Fac(rig.map().msh, 0));
  }
};

TEST(ShapeMeasure, IsTheRatioOfTheAxesWithTheTriangle_AndChangesNothing) {
  TShape shape;
  const TUcMeasures before = shape.region->measures;
  const T3DFAC f = get_Fac(shape.rig.map().msh, 0);
  const double measure = q_Elp(shape.rig.map(), shape.region, f);
  expect_Same(shape.region->measures, before);
  CUcA with = *shape.region;
  fold_Plane(with.measures.plane, before.normal_area, to_Local(before.normal_frame, f));
  TUcElp ellipse;
  ASSERT_TRUE(get_Elp(&with, ellipse));
  EXPECT_EQ(measure, std::min(ellipse.a, ellipse.b) / std::max(ellipse.a, ellipse.b));
  EXPECT_GT(measure, 0.2);
  EXPECT_LT(measure, 1);
}

TEST(ShapeMeasure, CodesMomentsThatAreNoEllipse) {
  TShape shape;
  EXPECT_EQ(q_Elp(shape.rig.map(), nullptr, get_Fac(shape.rig.map().msh, 0)), -1.0);
  EXPECT_EQ(shape.measure(-1e17, -1e17), -3.0);
  EXPECT_EQ(shape.measure(1e17, -1e17), -3.5);
  EXPECT_EQ(shape.measure(kNan, 1e17), -4.0);
  EXPECT_EQ(shape.measure(0x1p57, 0), -4.5) << "the lesser moment rounds to 0";
}

TEST(ShapeMeasure, CodesADiscriminantThatRoundsBelowZero) {
  TShape shape;
  int below = 0;
  reference::Random random(3);
  for (int i = 0; i < 200; ++i) {
    const double x = random.real(1e17, 9e17), y = std::nextafter(x, 2e18);
    const bool negative = (x + y) * (x + y) / 4 - x * y < 0;
    below += negative;
    EXPECT_EQ(shape.measure(x, y) == -2.0, negative);
  }
  EXPECT_GT(below, 5);
}

// ---- cost_Cand ---------------------------------------------------------------------------------

TEST(CostCand, IsTheNegatedWeightedSum_FirstMeasureFirst) {
  TRig rig(tilt(make_Bumpy(4, 4)), CDcmPar());
  rig.cnd.region = settle_Open(rig, 1, {12, 13});
  rig.cnd.region->measures.axis = rig.cnd.region->measures.normal;
  const double weights[] = {0.31, 0.17, 0.71, 0.13, 0.57};
  std::copy(weights, weights + 5, rig.cnd.weights);
  int judged = 0;
  for (const uint32_t t : {3u, 10u, 11u, 14u, 20u}) {
    if (!rig.map().is_Out(t, 1)) continue;
    rig.cnd.triangle = t;
    const T3DFAC f = get_Fac(rig.map().msh, t);
    const CUcA* region = rig.cnd.region;
    double cost;
    if (!cost_Cand(rig.cnd, cost)) continue;
    ++judged;
    EXPECT_EQ(cost, -(0.31 * q_Nml(rig.map(), region, f, rig.cnd.aperture) +
                      0.17 * q_Prj(rig.map(), region, f) + 0.71 * q_Bnd(rig.map(), region, t) +
                      0.13 * q_Elp(rig.map(), region, f) + 0.57 * q_Fre(rig.map(), region, t)));
  }
  EXPECT_GE(judged, 2);
}

TEST(CostCand, FailsWhenAMeasureIsOutOfRangeOrNoNumber) {
  TRig rig(make_Strip(4), open_Par());
  rig.cnd.region = settle_Open(rig, 1, {1});
  rig.cnd.triangle = 2;
  double cost;
  ASSERT_TRUE(cost_Cand(rig.cnd, cost));
  const TUcMeasures good = rig.cnd.region->measures;
  const double aperture = rig.cnd.aperture;

  rig.cnd.aperture = 180;
  EXPECT_FALSE(cost_Cand(rig.cnd, cost)) << "normal";
  rig.cnd.aperture = aperture;
  rig.cnd.region->measures.axis = {0, 0, kNan};
  EXPECT_FALSE(cost_Cand(rig.cnd, cost)) << "axis";
  rig.cnd.region->measures = good;
  rig.cnd.region->measures.plane.sxx = kNan;
  EXPECT_FALSE(cost_Cand(rig.cnd, cost)) << "shape";
  rig.cnd.region->measures = good;
  rig.cnd.triangle = 3;
  EXPECT_FALSE(cost_Cand(rig.cnd, cost)) << "border: it does not touch";
  rig.cnd.triangle = 2;
  EXPECT_TRUE(cost_Cand(rig.cnd, cost));
}

TEST(CostCand, AWeightOfZeroDoesNotHideAMeasureOutOfRange) {
  TRig rig(make_Strip(4), open_Par());
  rig.cnd.region = settle_Open(rig, 1, {1});
  rig.cnd.triangle = 2;
  rig.cnd.weights[0] = 0;
  rig.cnd.aperture = 0;
  double cost;
  EXPECT_FALSE(cost_Cand(rig.cnd, cost));
}

TEST(CostCand, ACostThatIsNoNumberFails) {
  TRig rig(make_Strip(4), open_Par());
  rig.cnd.region = settle_Open(rig, 1, {1});
  rig.cnd.triangle = 2;
  rig.cnd.weights[2] = kNan;
  double cost;
  EXPECT_FALSE(cost_Cand(rig.cnd, cost));
}

// ---- Candidates and flags ----------------------------------------------------------------------

struct TFlagged {
  TRig rig{make_Strip(4), open_Par()};
  CUcA* region = settle_Open(rig, 1, {1});
  bool heed(char flag, bool open = true) { return heed_Flag(rig.cnd, region, 2, flag, open); }
  double cost() {
    rig.cnd.region = region;
    rig.cnd.triangle = 2;
    double value = kNan;
    EXPECT_TRUE(cost_Cand(rig.cnd, value));
    return value;
  }
  void expect_Cost(double value) {
    ASSERT_EQ(list_Cnd(*region), List{2});
    EXPECT_EQ(cost_Cnd(*region, 2), value);
    ASSERT_EQ(region->queue.size(), 1u);
    EXPECT_EQ(region->queue.begin()->cost, value);
  }
  void expect_None() { EXPECT_TRUE(region->candidates.empty() && region->queue.empty()); }
};

TEST(HeedFlag, Plus_AddsAnOpenTriangle_AndKeepsTheCostOfACandidate) {
  TFlagged flagged;
  EXPECT_TRUE(flagged.heed('+', false));
  flagged.expect_None();
  EXPECT_TRUE(flagged.heed('+'));
  flagged.expect_Cost(flagged.cost());
  flagged.region->clr_Sets();
  ASSERT_TRUE(flagged.region->add_Wish(2, -7));
  EXPECT_TRUE(flagged.heed('+'));
  flagged.expect_Cost(-7);
}

TEST(HeedFlag, Minus_WithdrawsACandidate_AndMindsNoOther) {
  TFlagged flagged;
  EXPECT_TRUE(flagged.heed('-'));
  ASSERT_TRUE(flagged.region->add_Wish(2, -7));
  EXPECT_TRUE(flagged.heed('-'));
  flagged.expect_None();
}

TEST(HeedFlag, Anew_RenewsTheCost) {
  TFlagged flagged;
  ASSERT_TRUE(flagged.region->add_Wish(2, -7));
  EXPECT_TRUE(flagged.heed('u'));
  flagged.expect_Cost(flagged.cost());
}

TEST(HeedFlag, Anew_AddsATriangleThatWasNoCandidate) {
  TFlagged flagged;
  EXPECT_TRUE(flagged.heed('u'));
  flagged.expect_Cost(flagged.cost());
}

TEST(HeedFlag, Anew_LosesACandidateThatIsClosedOrRefused) {
  TFlagged flagged;
  ASSERT_TRUE(flagged.region->add_Wish(2, -7));
  EXPECT_TRUE(flagged.heed('u', false));
  flagged.expect_None();
  ASSERT_TRUE(flagged.region->add_Wish(2, -7));
  flagged.region->measures.normal = {0, 0, -1};  // now it faces away
  EXPECT_TRUE(flagged.heed('u'));
  flagged.expect_None();
}

TEST(HeedFlag, QuestionMark_DoesNothing) {
  TFlagged flagged;
  EXPECT_TRUE(flagged.heed('?'));
  flagged.expect_None();
  ASSERT_TRUE(flagged.region->add_Wish(2, -7));
  EXPECT_TRUE(flagged.heed('?'));
  flagged.expect_Cost(-7);
}

TEST(HeedFlag, FailsWhereTheCostFails_OrTheContainersDisagree) {
  TFlagged flagged;
  flagged.rig.cnd.aperture = 180;
  EXPECT_FALSE(flagged.heed('+'));
  EXPECT_FALSE(flagged.heed('u'));
  ASSERT_TRUE(flagged.region->add_Cnd(2, -7));
  ASSERT_TRUE(flagged.region->add_Que(-8, 2));
  EXPECT_FALSE(flagged.heed('-'));
}

TEST(WantTri, RefusalIsNoFailure_AWishThatExistsIs) {
  TFlagged flagged;
  EXPECT_TRUE(want_Tri(flagged.rig.cnd, flagged.region, 2));
  EXPECT_FALSE(want_Tri(flagged.rig.cnd, flagged.region, 2));
  flagged.region->clr_Sets();
  flagged.region->measures.normal = {0, 0, -1};
  EXPECT_TRUE(want_Tri(flagged.rig.cnd, flagged.region, 2));
  flagged.expect_None();
}

}  // namespace
}  // namespace undercut
