// Smoothing, resampling and thinning of rim curves.
#include "projection/rim_curve.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>

#include "tests/reference/plain_rim_curve.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/curves.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

Points pick_Points(reference::Random& random, size_t count) {
  Points points(count);
  for (T3DVEC& p : points) p = random.triple(-5, 5);
  return points;
}

// The code, and the points if it is 0.
struct TFitted {
  int32_t code;
  Points points;
};
TFitted fit(Points line, double p, double step) {
  Scoped<TArr<T3DVEC>> out;
  const int32_t code = fit_Rim(view_Arr(line), p, step, *out);
  return {code, copy_Of(*out)};
}

// Owns a list of curves as the library allocates it.
struct TLines {
  Scoped<TArr<TArr<T3DVEC>>> lines;

  explicit TLines(const std::vector<Points>& curves) {
    EXPECT_TRUE(alloc(*lines, static_cast<uint32_t>(curves.size())));
    for (uint32_t i = 0; i < lines->count; ++i) {
      EXPECT_TRUE(alloc(lines->data[i], static_cast<uint32_t>(curves[i].size())));
      std::copy(curves[i].begin(), curves[i].end(), lines->data[i].data);
    }
  }
  int32_t fit(const TRimCurve& how) { return fit_Rims(how, *lines); }
  std::vector<Points> copies() { return copy_Nested(*lines); }
};

void expect_Near(const Points& found, const Points& expected, double tolerance) {
  ASSERT_EQ(found.size(), expected.size());
  for (size_t i = 0; i < found.size(); ++i) {
    EXPECT_NEAR(found[i].x, expected[i].x, tolerance) << i;
    EXPECT_NEAR(found[i].y, expected[i].y, tolerance) << i;
    EXPECT_EQ(found[i].z, 0.0) << i;
  }
}

// A circle of seven points; the smallest that can be fitted.
const Points kSeven = make_Circle({0, 0, 5}, 10, 7);

}  // namespace

TEST(RimCurve, EqualsADenseSolveAndPlainCubics_OnRandomCurves) {
  const uint64_t seed = 720;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(300); ++round) {
    const Points line = pick_Points(random, 7 + random.below(30));
    const double p = std::pow(10.0, random.real(-2, 3)), step = random.real(0.02, 3);
    SCOPED_TRACE(testing::Message() << "round " << round << ", p " << p << ", step " << step);
    const TFitted fitted = fit(line, p, step);
    ASSERT_EQ(fitted.code, 0);
    expect_Near(fitted.points, plain::fit_Rim(line, p, step), 1e-8);
  }
}

TEST(RimCurve, PassesThroughItsPoints_WithoutSmoothing) {
  reference::Random random(721);
  for (size_t n = 7; n < 30; ++n) {
    const Points line = pick_Points(random, n);
    const TFitted fitted = fit(line, kInfinite, 1.0);
    ASSERT_EQ(fitted.code, 0);
    ASSERT_EQ(fitted.points.size(), n);
    for (size_t i = 0; i < n; ++i)
      EXPECT_EQ(fitted.points[i], (T3DVEC{line[i].x, line[i].y, 0})) << i;
  }
}

TEST(RimCurve, ComesNearerToItsPoints_WithALargerParameter) {
  reference::Random random(722);
  const Points line = pick_Points(random, 20);
  double before = kInfinite;
  for (const double p : {0.1, 1.0, 10.0, 100.0, 1000.0}) {
    const TFitted fitted = fit(line, p, 1.0);
    double farthest = 0.0;
    for (size_t i = 0; i < line.size(); ++i)
      farthest = std::max(
          farthest, std::hypot(fitted.points[i].x - line[i].x, fitted.points[i].y - line[i].y));
    EXPECT_LT(farthest, before) << p;
    before = farthest;
  }
}

// On a regular polygon all intervals are alike, but those of the slope at point 1.
TEST(RimCurve, HasItsFirstTwoIntervalsShapedByADifferenceOverTwo) {
  const uint32_t n = 12;
  const TFitted fitted = fit(make_Circle({0, 0, 0}, 10, n), kInfinite, 0.5);
  ASSERT_EQ(fitted.points.size(), 2 * n);
  const auto radius = [&](uint32_t i) {
    return std::hypot(fitted.points[2 * i + 1].x, fitted.points[2 * i + 1].y);
  };
  for (uint32_t i = 3; i < n; ++i) EXPECT_NEAR(radius(i), radius(2), 1e-12) << i;
  EXPECT_GT(std::fabs(radius(0) - radius(2)), 0.1);
  EXPECT_GT(std::fabs(radius(1) - radius(2)), 0.1);
}

TEST(RimCurve, IsSampledBySumsOfTheStep) {
  // 0.1 added up 70 times stays below 7, so that there is a point more than 7 / 0.1.
  const TFitted tenths = fit(kSeven, 1.0, 0.1);
  ASSERT_EQ(tenths.points.size(), 71u);
  EXPECT_NEAR(len(tenths.points[70] - tenths.points[0]), 0.0, 1e-12);
  EXPECT_NE(tenths.points[70], tenths.points[0]);
  EXPECT_EQ(fit(kSeven, 1.0, 0.125).points.size(), 56u);
}

TEST(RimCurve, PassesOverIntervals_WithAStepAbove1) {
  const Points line = make_Circle({0, 0, 0}, 10, 11);
  const Points all = fit(line, 3.0, 0.5).points;
  const Points few = fit(line, 3.0, 2.5).points;
  ASSERT_EQ(few.size(), 5u);
  for (size_t i = 0; i < few.size(); ++i) EXPECT_EQ(few[i], all[5 * i]) << i;
  const Points one = fit(line, 3.0, 11.0).points;
  ASSERT_EQ(one.size(), 1u);
  EXPECT_EQ(one[0], all[0]);
  EXPECT_EQ(fit(line, 3.0, kInfinite).points.size(), 1u);
  EXPECT_EQ(fit(line, 3.0, 10.999).points.size(), 2u);
}

TEST(RimCurve, OfNoPointsGivesMinus37) { EXPECT_EQ(fit({}, 1.0, 1.0).code, -37); }

TEST(RimCurve, WithoutItsPointsGivesMinus38) {
  Scoped<TArr<T3DVEC>> out;
  EXPECT_EQ(fit_Rim({nullptr, 9}, 1.0, 1.0, *out), -38);
}

TEST(RimCurve, OfFewerThanSevenPointsGivesMinus40) {
  reference::Random random(723);
  for (size_t n = 1; n < 7; ++n) EXPECT_EQ(fit(pick_Points(random, n), 1.0, 1.0).code, -40) << n;
  EXPECT_EQ(fit(pick_Points(random, 7), 1.0, 1.0).code, 0);
}

TEST(RimCurve, WithAZeroOnTheDiagonalGivesMinus40) {
  // 6 / p + 2 / 3 is 0.
  EXPECT_EQ(fit(kSeven, -9.0, 1.0).code, -40);
  EXPECT_EQ(fit(kSeven, -8.0, 1.0).code, 0);
}

TEST(RimCurve, WithAStepThatIsNotAbove0GivesMinus44) {
  for (const double step : {0.0, -0.0, -1.0, -kInfinite, kNoNumber})
    EXPECT_EQ(fit(kSeven, 1.0, step).code, -44) << step;
}

TEST(RimCurve, WithTooManyPointsGivesMinus44_AtOnce) {
  const auto start = std::chrono::steady_clock::now();
  for (const double step : {7.0 / 4.3e9, 1e-9, 1e-15, 1e-17, 1e-300, 5e-324})
    EXPECT_EQ(fit(kSeven, 1.0, step).code, -44) << step;
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}

TEST(RimCurve, TellsFewPointsBeforeAWrongStep) {
  EXPECT_EQ(fit({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, 1.0, 0.0).code, -40);
}

TEST(RimCurve, GivesTheCodeOfTheStepWithoutMemory) {
  Points line = make_Circle({0, 0, 0}, 3, 9);
  const std::vector<int32_t> codes = list_FailureCodes([&] {
    Scoped<TArr<T3DVEC>> out;
    const int32_t code = fit_Rim(view_Arr(line), 2.0, 0.5, *out);
    EXPECT_TRUE(code == 0 || (!out->data && out->count == 0));
    return code;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-37, -40, -44, 0}));
}

TEST(RimCurve, StaysHarmless_WithoutNumbers) {
  reference::Random random(724);
  for (uint32_t round = 0; round < scale_Cases(2000); ++round) {
    Points line = pick_Points(random, 7 + random.below(5));
    for (T3DVEC& p : line)
      if (random.chance(0.3)) p = {random.special(), random.special(), random.special()};
    const double p = random.chance(0.5) ? random.special() : 0.5;
    const TFitted fitted = fit(line, p, random.chance(0.1) ? 1e-3 : 0.7);
    EXPECT_TRUE(fitted.code == 0 || fitted.code == -40) << fitted.code;
    for (const T3DVEC& point : fitted.points) EXPECT_EQ(point.z, 0.0);
  }
  EXPECT_EQ(fit(kSeven, 0.0, 1.0).code, 0);
  EXPECT_EQ(fit(kSeven, kNoNumber, 1.0).code, 0);
}

TEST(RimCurves, AreThinnedOutLikeThePlainForm) {
  const uint64_t seed = 725;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(100); ++round) {
    std::vector<Points> curves(1 + random.below(3));
    for (Points& curve : curves) curve = pick_Points(random, 7 + random.below(10));
    const double p = random.real(0.2, 20), step = random.real(0.05, 1.2);
    const double limit = random.real(0, 0.5);
    TLines lines(curves);
    ASSERT_EQ(lines.fit({p, step, limit}), 0);
    const std::vector<Points> found = lines.copies();
    for (size_t k = 0; k < curves.size(); ++k)
      EXPECT_EQ(found[k], plain::simplify(fit(curves[k], p, step).points, limit))
          << "round " << round << ", curve " << k;
  }
}

TEST(RimCurves, KeepEveryPoint_WithALimitBelow0OrWithoutANumber) {
  const Points line = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {3, 1, 0},
                       {3, 2, 0}, {2, 2, 0}, {1, 2, 0}, {0, 2, 0}};
  for (const double limit : {-1.0, kNoNumber, 0.0}) {
    TLines lines({line});
    ASSERT_EQ(lines.fit({kInfinite, 1.0, limit}), 0);
    EXPECT_EQ(lines.copies()[0].size(), limit == 0.0 ? 4u : 9u) << limit;
  }
}

TEST(RimCurves, KeepThreePoints_WithoutALimit) {
  TLines lines({make_Circle({0, 0, 0}, 10, 40)});
  ASSERT_EQ(lines.fit({1.0, 0.3, kInfinite}), 0);
  EXPECT_EQ(lines.copies()[0].size(), 3u);
}

TEST(RimCurves, LoseALastPointThatRepeatsTheFirst_Once) {
  Points line = make_Circle({0, 0, 0}, 10, 8);
  line.push_back(line[0]);
  TLines lines({line});
  ASSERT_EQ(lines.fit({kInfinite, 1.0, -1.0}), 0);
  EXPECT_EQ(lines.copies()[0].size(), 8u);
  // With another repetition before it the ends are still equal, which can't be thinned out.
  line.push_back(line[0]);
  TLines twice({line});
  EXPECT_EQ(twice.fit({kInfinite, 1.0, -1.0}), -46);
}

TEST(RimCurves, OfThreePointsLoseALastOneToo) {
  Points line = kSeven;
  line[6] = line[0];
  TLines lines({line});
  ASSERT_EQ(lines.fit({kInfinite, 3.0, -1.0}), 0);
  const std::vector<Points> expected = {{{line[0].x, line[0].y, 0}, {line[3].x, line[3].y, 0}}};
  EXPECT_EQ(lines.copies(), expected);
}

TEST(RimCurves, OfOnePointOrTwoEqualOnesGiveMinus46) {
  TLines one({kSeven});
  EXPECT_EQ(one.fit({1.0, 7.0, -1.0}), -46);
  Points line = kSeven;
  line[4] = line[0];
  TLines equal({line});
  EXPECT_EQ(equal.fit({kInfinite, 4.0, -1.0}), -46);
  TLines two({kSeven});
  ASSERT_EQ(two.fit({kInfinite, 4.0, kInfinite}), 0);
  EXPECT_EQ(two.copies()[0].size(), 2u);
}

TEST(RimCurves, ThatAllLieAtOnePointGiveMinus46) {
  TLines lines({Points(9, T3DVEC{1, 2, 3})});
  EXPECT_EQ(lines.fit({1.0, 0.5, 0.1}), -46);
}

TEST(RimCurves, AreAllFittedBeforeOneIsThinnedOut) {
  TLines lines({Points(9, T3DVEC{1, 2, 3}), {{0, 0, 0}, {1, 0, 0}}});
  EXPECT_EQ(lines.fit({1.0, 0.5, 0.1}), -40);
}

TEST(RimCurves, OfAnEmptyListAreNone) {
  TLines lines({});
  EXPECT_EQ(lines.fit({1.0, 0.5, 0.1}), 0);
}

TEST(RimCurves, GiveTheCodeOfTheStepWithoutMemory_AndLeakNothing) {
  const std::vector<Points> curves = {make_Circle({0, 0, 0}, 3, 9), make_Circle({9, 0, 0}, 3, 12)};
  const std::vector<int32_t> codes = list_FailureCodes([&] {
    Scoped<TArr<TArr<T3DVEC>>> lines;
    if (!alloc(*lines, 2)) return 0;
    for (uint32_t i = 0; i < 2; ++i) {
      if (!alloc(lines->data[i], static_cast<uint32_t>(curves[i].size()))) return 0;
      std::copy(curves[i].begin(), curves[i].end(), lines->data[i].data);
    }
    return fit_Rims({2.0, 0.5, 0.01}, *lines);
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{0, -37, -40, -44, -37, -40, -44, -46, 0}));
}
