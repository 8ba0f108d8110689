// The folding of a signed tilt and the golden section over it.
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "tests/reference/plain_region_axes.h"
#include "tests/support/intensity.h"
#include "tests/support/landscape.h"
#include "undercut/search.h"

namespace undercut::tests {

namespace {

const double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr uint32_t kNoLimit = 4000000000u;

struct TFolded {
  double theta, phi;
};

TFolded fold(double tilt, double phi) {
  TFolded out = {-1, -1};
  fold_Tilt(tilt, phi, out.theta, out.phi);
  return out;
}

TGcuPar make_Par(double low, double high, double eps = 0.1, uint32_t limit = 50) {
  TGcuPar par;
  par.f_th0_s = low;
  par.f_th1_s = high;
  par.f_eps = eps;
  par.n_max = limit;
  return par;
}

// A rating of the tilt itself: the azimuth tells on which side of the pole the angles lie.
CLandscape make_Tilted(double phi, std::function<double(double tilt)> height) {
  return CLandscape(
      [=](double theta, double azimuth) { return height(azimuth == phi ? theta : -theta); });
}

}  // namespace

TEST(FoldTilt, LeavesHalfATurnUpwardsAsItIs) {
  for (const double tilt : {0.0, 1e-300, 25.0, 90.0, 179.99}) {
    EXPECT_EQ(fold(tilt, 30).theta, tilt);
    EXPECT_EQ(fold(tilt, 30).phi, 30);
  }
}

TEST(FoldTilt, TurnsHalfATurnDownwardsToTheOtherSide) {
  for (const double tilt : {-1e-300, -25.0, -90.0, -179.99}) {
    EXPECT_EQ(fold(tilt, 30).theta, -tilt);
    EXPECT_EQ(fold(tilt, 30).phi, 210);
  }
}

TEST(FoldTilt, OfExactlyMinus180_Is180OnTheOtherSide) {
  EXPECT_EQ(fold(-180, 90).theta, 180);
  EXPECT_EQ(fold(-180, 90).phi, 270);
}

TEST(FoldTilt, OfExactly180_Is180OnTheOtherSide) {
  EXPECT_EQ(fold(180, 90).theta, 180);
  EXPECT_EQ(fold(180, 90).phi, 270);
}

TEST(FoldTilt, BringsMoreThanHalfATurnBack) {
  EXPECT_EQ(fold(200, 90).theta, 160);
  EXPECT_EQ(fold(200, 90).phi, 270);
  EXPECT_EQ(fold(360, 90).theta, 0);
  EXPECT_EQ(fold(360, 90).phi, 270);
  EXPECT_EQ(fold(-200, 90).theta, 160);
  EXPECT_EQ(fold(-200, 90).phi, 90);
  EXPECT_EQ(fold(-360, 90).theta, 0);
  EXPECT_EQ(fold(-360, 90).phi, 90);
}

TEST(FoldTilt, LeavesWhatLiesBeyondATurnAsItIs) {
  for (const double tilt : {360.0001, -360.0001, 1e300, -kInf, kInf}) {
    EXPECT_EQ(fold(tilt, 30).theta, tilt);
    EXPECT_EQ(fold(tilt, 30).phi, 30);
  }
  EXPECT_TRUE(std::isnan(fold(kNan, 30).theta));
  EXPECT_EQ(fold(kNan, 30).phi, 30);
}

TEST(FoldTilt, DoesNotReduceTheAzimuth) {
  EXPECT_EQ(fold(-10, 350).phi, 530);
  EXPECT_EQ(fold(10, 750).phi, 750);
}

TEST(FoldTilt, KeepsTheDirection) {
  for (int tilt = -360; tilt <= 360; ++tilt) {
    const T3DVEC d = sph_ToCar(tilt, 37);
    const TFolded folded = fold(tilt, 37);
    EXPECT_LT(dst(sph_ToCar(folded.theta, folded.phi), d), 1e-14) << tilt;
    EXPECT_TRUE(folded.theta >= 0 && folded.theta <= 180) << tilt;
  }
}

TEST(RateTilt, AsksForTheFoldedAngles) {
  CLandscape landscape([](double theta, double phi) { return 1000 * theta + phi; });
  EXPECT_EQ(rate_Tilt(landscape, -20, 90), 20270);
  EXPECT_EQ(rate_Tilt(landscape, 20, 90), 20090);
}

TEST(GoldenSection, FindsTheOnlyMinimumOfItsBracket) {
  for (const double minimum : {-24.9, -3.0, 0.0, 7.25, 24.9}) {
    CLandscape valley = make_Tilted(90, [=](double x) { return (x - minimum) * (x - minimum); });
    TGcuPar par = make_Par(-25, 25, 1e-4);
    uint32_t n_itr = 0;
    const TGldRes best = run_Gld(valley, par, n_itr);
    EXPECT_NEAR(best.tilt, minimum, 1e-4);
    EXPECT_EQ(best.rating, (best.tilt - minimum) * (best.tilt - minimum));
    EXPECT_LT(par.f_th1_s - par.f_th0_s, 1e-4);
    EXPECT_TRUE(par.f_th0_s <= minimum && minimum <= par.f_th1_s);
  }
}

TEST(GoldenSection, RatesTwoPointsFirst_AndOneInEachIteration) {
  CLandscape slope = make_Tilted(90, [](double x) { return x; });
  TGcuPar par = make_Par(10, 20, 0, 3);
  uint32_t n_itr = 0;
  run_Gld(slope, par, n_itr);
  EXPECT_EQ(n_itr, 3u);
  ASSERT_EQ(slope.asked.size(), 5u);
  EXPECT_DOUBLE_EQ(slope.asked[0].x, 10 + 10 * 0.3819660112501051);
  EXPECT_DOUBLE_EQ(slope.asked[1].x, 10 + 10 * 0.6180339887498949);
  for (const T2DVEC& p : slope.asked) EXPECT_EQ(p.y, 90);
}

TEST(GoldenSection, WorksInThePlaneOfTheAzimuth_OnBothSidesOfThePole) {
  CLandscape flat([](double, double) { return 0.0; });
  TGcuPar par = make_Par(-30, -10, 0, 0);
  par.f_phi = 20;
  uint32_t n_itr = 7;
  run_Gld(flat, par, n_itr);
  ASSERT_EQ(flat.asked.size(), 2u);
  for (const T2DVEC& p : flat.asked) {
    EXPECT_EQ(p.y, 200);
    EXPECT_TRUE(10 < p.x && p.x < 30);
  }
}

TEST(GoldenSection, WithALimitOf0_TakesTheBetterOfItsFirstTwoPoints) {
  for (const int sign : {-1, 1}) {
    CLandscape slope = make_Tilted(90, [=](double x) { return sign * x; });
    TGcuPar par = make_Par(10, 20, 0.1, 0);
    uint32_t n_itr = 7;
    const TGldRes best = run_Gld(slope, par, n_itr);
    EXPECT_EQ(n_itr, 0u);
    EXPECT_EQ(slope.asked.size(), 2u);
    EXPECT_EQ(best.tilt, slope.asked[sign > 0 ? 0 : 1].x);
    EXPECT_EQ(par.f_th0_s, 10);
    EXPECT_EQ(par.f_th1_s, 20);
  }
}

TEST(GoldenSection, StopsBelowItsEps_AndDoesNotCountThatIteration) {
  CLandscape slope = make_Tilted(90, [](double x) { return x; });
  TGcuPar par = make_Par(10, 20, 7);
  uint32_t n_itr = 7;
  run_Gld(slope, par, n_itr);
  EXPECT_EQ(n_itr, 0u);
  EXPECT_EQ(slope.asked.size(), 3u);
  EXPECT_LT(par.f_th1_s - par.f_th0_s, 7);
}

TEST(GoldenSection, GoesOn_WhereTheBracketIsExactlyItsEps) {
  CLandscape slope = make_Tilted(90, [](double x) { return x; });
  TGcuPar once = make_Par(10, 20, 0, 1);
  uint32_t n_itr = 0;
  run_Gld(slope, once, n_itr);
  TGcuPar par = make_Par(10, 20, once.f_th1_s - once.f_th0_s);
  run_Gld(slope, par, n_itr);
  EXPECT_EQ(n_itr, 1u);
}

TEST(GoldenSection, OnEqualRatings_MovesUp_AndTakesTheHigherPoint) {
  CLandscape flat([](double, double) { return 5.0; });
  TGcuPar par = make_Par(10, 20, 0.01);
  uint32_t n_itr = 0;
  const TGldRes best = run_Gld(flat, par, n_itr);
  EXPECT_EQ(par.f_th1_s, 20);
  EXPECT_GT(best.tilt, 19.99);
}

TEST(GoldenSection, OnRatingsThatAreNoNumber_MovesDown) {
  CLandscape torn([](double, double) { return kNan; });
  TGcuPar par = make_Par(10, 20, 0.01);
  uint32_t n_itr = 0;
  const TGldRes best = run_Gld(torn, par, n_itr);
  EXPECT_EQ(par.f_th0_s, 10);
  EXPECT_LT(best.tilt, 10.01);
  EXPECT_TRUE(std::isnan(best.rating));
}

TEST(GoldenSection, EndsWhereItsPointsLoseTheirOrder_WithoutAnEps) {
  for (const double eps : {0.0, -1.0, kNan}) {
    for (const double minimum : {-25.0, -1.0 / 3, 0.0, 11.0, 25.0}) {
      CLandscape valley = make_Tilted(90, [=](double x) { return std::fabs(x - minimum); });
      TGcuPar par = make_Par(-25, 25, eps, kNoLimit);
      uint32_t n_itr = 0;
      run_Gld(valley, par, n_itr);
      EXPECT_LT(valley.asked.size(), 300u);
    }
  }
}

TEST(GoldenSection, EndsAtOnce_InABracketWithoutLengthOrSense) {
  const double brackets[][2] = {{5, 5}, {20, 10}, {kNan, 10}, {10, kNan}, {-kInf, kInf}, {0, kInf}};
  for (const auto& bracket : brackets) {
    CLandscape slope = make_Tilted(90, [](double x) { return x; });
    TGcuPar par = make_Par(bracket[0], bracket[1], 0, kNoLimit);
    uint32_t n_itr = 7;
    run_Gld(slope, par, n_itr);
    EXPECT_EQ(n_itr, 0u) << bracket[0];
    EXPECT_EQ(slope.asked.size(), 3u) << bracket[0];
  }
  CLandscape slope = make_Tilted(90, [](double x) { return x; });
  TGcuPar par = make_Par(5, 5);
  uint32_t n_itr = 0;
  EXPECT_EQ(run_Gld(slope, par, n_itr).tilt, 5);
}

TEST(GoldenSection, ReadsTheBracket_AndLeavesTheLimitsOfTheRangeAlone) {
  CLandscape slope = make_Tilted(90, [](double x) { return x; });
  TGcuPar par = make_Par(10, 20);
  par.f_th0 = -77;
  par.f_th1 = 77;
  uint32_t n_itr = 0;
  EXPECT_NEAR(run_Gld(slope, par, n_itr).tilt, 10, 0.1);
  EXPECT_EQ(par.f_th0, -77);
  EXPECT_EQ(par.f_th1, 77);
}

TEST(GoldenSection, EqualsItsSteps_OnRandomRatings) {
  constexpr uint64_t seed = 20261121;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  const uint32_t rounds = scale_Cases(3000);
  for (uint32_t round = 0; round < rounds; ++round) {
    const bool tiny = random.chance(0.5);
    CLandscape::Height height = make_Waves(random);
    if (tiny) height = [](double theta, double phi) { return std::sin(1e17 * theta + phi); };
    CLandscape one(height), other(height);
    const double low = random.real(-400, 350);
    TGcuPar par = make_Par(low, low + random.real(-1, 60));
    if (random.chance(0.1)) par.f_th1_s = random.special();
    par.f_phi = random.real(0, 180);
    par.f_eps = random.chance(0.2) ? random.special() : random.real(0, 1);
    par.n_max = random.chance(0.5) ? kNoLimit : static_cast<uint32_t>(random.below(30));
    if (tiny) {  // a few last digits wide, across a change of their weight
      const double power = random.chance(0.5) ? 16 : -16;
      par.f_th0_s = power - 0x1p-49 * static_cast<double>(random.below(20));
      par.f_th1_s = power + 0x1p-49 * static_cast<double>(random.below(20));
      par.f_eps = 0;
    }
    const reference::TGolden plain =
        reference::search_Golden(par.f_th0_s, par.f_th1_s, par.f_phi, par.f_eps, par.n_max,
                                 [&](double theta, double phi) { return other.Err(theta, phi); });
    uint32_t n_itr = 0;
    const TGldRes best = run_Gld(one, par, n_itr);
    ASSERT_TRUE(is_Alike(best.tilt, plain.tilt)) << round;
    ASSERT_TRUE(is_Alike(best.rating, plain.rating)) << round;
    ASSERT_EQ(n_itr, plain.iterations) << round;
    ASSERT_TRUE(is_Alike(par.f_th0_s, plain.low) && is_Alike(par.f_th1_s, plain.high)) << round;
    ASSERT_EQ(one.asked.size(), other.asked.size());
    for (size_t i = 0; i < one.asked.size(); ++i)
      ASSERT_TRUE(is_Alike(one.asked[i].x, other.asked[i].x) &&
                  is_Alike(one.asked[i].y, other.asked[i].y));
  }
}

TEST(GoldenSection, KeepsTheBestPointThatItHasRated) {
  constexpr uint64_t seed = 20261122;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(500); ++round) {
    const double a = random.real(0.1, 3), b = random.real(0, 6);
    double least = kInf;
    CLandscape waves = make_Tilted(90, [&](double x) {
      const double rating = std::sin(a * x + b);
      least = std::min(least, rating);
      return rating;
    });
    TGcuPar par = make_Par(-5, 5);
    uint32_t n_itr = 0;
    ASSERT_EQ(run_Gld(waves, par, n_itr).rating, least) << round;
  }
}

}  // namespace undercut::tests
