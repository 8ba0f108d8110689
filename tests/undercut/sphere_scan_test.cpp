// The scan of the sphere.
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "tests/reference/plain_search.h"
#include "tests/support/intensity.h"
#include "tests/support/landscape.h"
#include "undercut/search.h"

namespace undercut::tests {

namespace {

const double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::numeric_limits<double>::quiet_NaN();

TNxnPar make_Par(double th0, double ph0, double th1, double ph1, double dxx, double dyy) {
  TNxnPar par;
  const double box[4] = {th0, ph0, th1, ph1};
  std::copy_n(box, 4, par.box);
  par.f_dxx = dxx;
  par.f_dyy = dyy;
  return par;
}

std::vector<T2DVEC> list_Asked(const TNxnPar& par) {
  CLandscape flat([](double, double) { return 0.0; });
  scan_Nxn(flat, par);
  return flat.asked;
}

// The azimuths asked for on the only ring.
std::vector<double> list_Ring(double theta, double ph0, double ph1, double dyy) {
  std::vector<double> ring;
  for (const T2DVEC& p : list_Asked(make_Par(theta, ph0, theta + 1, ph1, 10, dyy))) {
    EXPECT_EQ(p.x, theta);
    ring.push_back(p.y);
  }
  return ring;
}

using Ring = std::vector<double>;

}  // namespace

TEST(SphereScan, OfTheDefaults_HasFiveRings_AndThePole) {
  std::vector<std::pair<double, int>> rings;
  for (const T2DVEC& p : list_Asked(TNxnPar())) {
    if (rings.empty() || rings.back().first != p.x) rings.push_back({p.x, 0});
    ++rings.back().second;
  }
  // 360 sin(theta) / 40 is 0, 5.8, 8.9, 7.8, 3.1.
  EXPECT_EQ(rings,
            (std::vector<std::pair<double, int>>{{0, 1}, {40, 6}, {80, 9}, {120, 8}, {160, 3}}));
}

TEST(SphereScan, OnExactly0And180_RatesPhi0Alone) {
  std::vector<T2DVEC> asked = list_Asked(make_Par(-90, 10, 181, 350, 90, 400));
  ASSERT_EQ(asked.size(), 4u);
  EXPECT_TRUE(asked[1] == (T2DVEC{0, 0}));
  EXPECT_TRUE(asked[2] == (T2DVEC{90, 10}));
  EXPECT_TRUE(asked[3] == (T2DVEC{180, 0}));
  // Beside the pole there is a ring like any other.
  EXPECT_EQ(list_Ring(1e-12, 7, 350, 40), Ring{7});
}

TEST(SphereScan, OnAPole_RatesPhi0_WithoutARangeOfPhiToo) {
  EXPECT_EQ(list_Asked(make_Par(0, 90, 1, 90, 40, 40)).size(), 1u);
  EXPECT_EQ(list_Asked(make_Par(90, 90, 91, 90, 40, 40)).size(), 0u);
}

TEST(SphereScan, VisitsNeitherEnd) {
  EXPECT_EQ(list_Ring(90, 0, 360, 90), (Ring{0, 90, 180, 270}));
  std::vector<T2DVEC> asked = list_Asked(make_Par(90, 0, 170, 360, 40, 400));
  ASSERT_EQ(asked.size(), 2u);
  EXPECT_EQ(asked[1].x, 130);
}

TEST(SphereScan, TakesTheCountThatFitsBetter_TheHigherOnATie) {
  // sin(90 degrees) is 1, so the arc is the step itself.
  EXPECT_EQ(list_Ring(90, 0, 100, 30), (Ring{0, 100.0 / 3, 100.0 / 3 + 100.0 / 3}));  // 3.33
  EXPECT_EQ(list_Ring(90, 0, 110, 30).size(), 4u);                                    // 3.67
  EXPECT_EQ(list_Ring(90, 0, 105, 30).size(), 4u);                                    // 3.5
}

TEST(SphereScan, OfARingBelowHalfAStep_RatesItsStartAlone) {
  EXPECT_EQ(list_Ring(90, 20, 120, 201), Ring{20});
  EXPECT_EQ(list_Ring(90, 20, 120, 199), Ring{20});  // 0.503: one step of the whole range
  EXPECT_EQ(list_Ring(5, 0, 360, 40), (Ring{0}));    // 360 sin(5) / 40 = 0.78
  EXPECT_EQ(list_Ring(3, 0, 360, 40), (Ring{0}));    // 0.47
}

TEST(SphereScan, KeepsTheFirstOfEqualRatings) {
  CLandscape flat([](double theta, double) { return theta < 100 ? 1.0 : 0.5; });
  const TAmoRes best = scan_Nxn(flat, TNxnPar());
  EXPECT_EQ(best.theta, 120);
  EXPECT_EQ(best.phi, 0);
  EXPECT_EQ(best.rating, 0.5);
}

TEST(SphereScan, WithoutAnyRating_HasNoAngles) {
  for (const double rating : {kAbsent, kNan, kInf}) {
    CLandscape flat([=](double, double) { return rating; });
    const TAmoRes best = scan_Nxn(flat, TNxnPar());
    EXPECT_GT(flat.asked.size(), 20u);
    EXPECT_EQ(best.theta, kAbsent);
    EXPECT_EQ(best.phi, kAbsent);
    EXPECT_EQ(best.rating, kAbsent);
  }
}

TEST(SphereScan, PassesOverRatingsThatAreNoNumber) {
  CLandscape torn([](double theta, double) { return theta == 80 ? 3.0 : kNan; });
  EXPECT_EQ(scan_Nxn(torn, TNxnPar()).theta, 80);
}

TEST(SphereScan, EndsALoopWhoseStepLeadsNowhere_AfterItsFirstAngle) {
  for (const double step : {0.0, -0.0, -5.0, kInf, -kInf, kNan, 5e-324}) {
    EXPECT_EQ(list_Asked(make_Par(90, 0, 120, 360, step, 90)).size(), 4u) << step;
    EXPECT_EQ(list_Ring(90, 30, 360, step), Ring{30}) << step;
  }
  // Lost in rounding.
  EXPECT_EQ(list_Asked(make_Par(1e17, 0, 2e17, 1, 1, 1e9)).size(), 1u);
  EXPECT_EQ(list_Ring(90, 1e17, 1e17 + 64, 4), Ring{1e17});
}

TEST(SphereScan, EndsALoopOfTooManySteps_AfterItsFirstAngle) {
  EXPECT_EQ(list_Ring(90, 0, 360, 1e-300), Ring{0});
  EXPECT_EQ(list_Ring(90, 0, 360, 1e-8), Ring{0});  // 3.6e10
  EXPECT_EQ(list_Asked(make_Par(0, 0, 180, 360, 1e-300, 40)).size(), 1u);
  EXPECT_EQ(list_Asked(make_Par(90, 0, kInf, 360, 40, 90)).size(), 4u);
  EXPECT_EQ(list_Ring(90, 0, kInf, 40), Ring{0});
  EXPECT_EQ(list_Ring(90, -kAbsent, kAbsent, 40), Ring{-kAbsent});
}

TEST(SphereScan, WhereTheSineIsBelow0_RatesTheStartOfARingAlone) {
  EXPECT_EQ(list_Ring(-30, 5, 360, 40), Ring{5});
  EXPECT_EQ(list_Ring(200, 5, 360, 40), Ring{5});
}

TEST(SphereScan, OfAWindowWithoutExtent_RatesNothing) {
  const TNxnPar windows[] = {
      make_Par(90, 0, 90, 360, 40, 40),   make_Par(90, 0, 80, 360, 40, 40),
      make_Par(90, 50, 120, 50, 40, 40),  make_Par(90, 50, 120, 40, 40, 40),
      make_Par(kNan, 0, 90, 360, 40, 40), make_Par(0.5, 0, kNan, 360, 40, 40),
      make_Par(90, kNan, 91, 4, 40, 40),  make_Par(90, 0, 91, kNan, 40, 40),
      make_Par(kInf, 0, kInf, 9, 40, 40)};
  for (const TNxnPar& par : windows) EXPECT_TRUE(list_Asked(par).empty());
}

TEST(SphereScan, AddsItsStepsUp) {
  // 0.1 added up is 0.30000000000000004 after three steps, and stays below 1 after ten.
  const std::vector<T2DVEC> asked = list_Asked(make_Par(0.1, 0, 1, 1, 0.1, 1e9));
  ASSERT_EQ(asked.size(), 10u);
  EXPECT_EQ(asked[2].x, 0.1 + 0.1 + 0.1);
  EXPECT_LT(asked[9].x, 1.0);
}

TEST(SphereScan, EqualsThePlainForm_InEveryRating) {
  constexpr uint64_t seed = 4711;
  std::printf("seed %d\n", int(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(3000); ++round) {
    double box[4] = {random.real(-200, 200), random.real(-400, 400), random.real(-200, 400),
                     random.real(-400, 800)};
    double steps[2] = {random.real(3, 60), random.real(3, 60)};
    if (random.chance(0.5))
      for (double& bound : box) bound = 45.0 * double(random.integer(-4, 8));
    if (random.chance(0.3))
      for (double& step : steps) step = 22.5 * double(random.integer(1, 8));
    if (random.chance(0.05)) box[random.below(4)] = random.integer(0, 1) ? kNan : 0.0;
    if (random.chance(0.05)) steps[random.below(2)] = random.integer(0, 1) ? kInf : -3.0;
    const CLandscape::Height height = make_Waves(random);
    CLandscape ours(height), theirs(height);
    const TAmoRes best =
        scan_Nxn(ours, make_Par(box[0], box[1], box[2], box[3], steps[0], steps[1]));
    const reference::TFound plain = reference::scan_Sphere(
        box, steps[0], steps[1], [&](double theta, double phi) { return theirs.Err(theta, phi); });
    ASSERT_EQ(ours.asked.size(), theirs.asked.size()) << "round " << round;
    for (size_t i = 0; i < ours.asked.size(); ++i)
      ASSERT_TRUE(ours.asked[i] == theirs.asked[i]) << "round " << round;
    ASSERT_EQ(best.theta, plain.theta) << "round " << round;
    ASSERT_EQ(best.phi, plain.phi) << "round " << round;
    ASSERT_EQ(best.rating, plain.rating) << "round " << round;
  }
}

}  // namespace undercut::tests
