// Smoothing and curvature of closed curves.
#include "mesh/curve_smooth.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/reference/plain_smooth.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

// A record for n points with these right-hand sides and parameter.
void fill(TSpl& spl, const std::vector<double>& x, const std::vector<double>& y, double p) {
  ASSERT_TRUE(alloc(spl, static_cast<uint32_t>(x.size())));
  spl.p = p;
  std::copy(x.begin(), x.end(), spl.arrays[kSplRightX]);
  std::copy(y.begin(), y.end(), spl.arrays[kSplRightY]);
}

std::vector<double> pick_Values(reference::Random& random, size_t count) {
  std::vector<double> values(count);
  for (double& value : values) value = random.real(-3, 3);
  return values;
}

void expect_Solution(const double* found, const std::vector<double>& right, double p) {
  const size_t n = right.size();
  const plain::Matrix matrix =
      plain::make_Cyclic(n, 6.0 / p + 2.0 / 3.0, -4.0 / p + 1.0 / 6.0, 1.0 / p);
  const std::vector<long double> expected = plain::solve(matrix, {right.begin(), right.end()});
  double scale = 0.0;
  for (const long double value : expected) scale = std::max(scale, double(std::fabs(value)));
  for (size_t i = 0; i < n; ++i) EXPECT_NEAR(found[i], double(expected[i]), 1e-11 * scale) << i;
}

void solve_Random(reference::Random& random, size_t n, double p) {
  const std::vector<double> x = pick_Values(random, n), y = pick_Values(random, n);
  Scoped<TSpl> spl;
  Scoped<TBand> band;
  fill(*spl, x, y, p);
  ASSERT_EQ(pol_Smooth(*spl, *band), 0);
  expect_Solution(spl->arrays[kSplSecondX], x, p);
  expect_Solution(spl->arrays[kSplSecondY], y, p);
}

}  // namespace

TEST(Smooth, EqualsADenseSolution) {
  const uint64_t seed = 50;
  reference::Random random(seed);
  for (size_t n = 7; n < 40; ++n)
    for (const double p : {0.01, 0.5, 1.0, 6.0, 30.0, 1000.0}) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", n " << n << ", p " << p);
      solve_Random(random, n, p);
    }
}

TEST(Smooth, OfEqualRightHandSidesIsTheirValue) {
  // All of a row adds up to 1, whatever the parameter.
  Scoped<TSpl> spl;
  Scoped<TBand> band;
  fill(*spl, std::vector<double>(12, 3.0), std::vector<double>(12, -2.0), 0.7);
  ASSERT_EQ(pol_Smooth(*spl, *band), 0);
  for (uint32_t i = 0; i < 12; ++i) {
    EXPECT_NEAR(spl->arrays[kSplSecondX][i], 3.0, 1e-13);
    EXPECT_NEAR(spl->arrays[kSplSecondY][i], -2.0, 1e-13);
  }
}

TEST(Smooth, TurnsWithTheStartOfTheCurve) {
  const uint64_t seed = 51;
  reference::Random random(seed);
  const std::vector<double> x = pick_Values(random, 15);
  std::vector<double> turned(x.begin() + 4, x.end());
  turned.insert(turned.end(), x.begin(), x.begin() + 4);
  Scoped<TSpl> spl;
  Scoped<TBand> band;
  fill(*spl, x, turned, 2.0);
  ASSERT_EQ(pol_Smooth(*spl, *band), 0);
  for (uint32_t i = 0; i < 15; ++i)
    EXPECT_NEAR(spl->arrays[kSplSecondX][(i + 4) % 15], spl->arrays[kSplSecondY][i], 1e-12);
}

TEST(Smooth, WritesTheSecondDerivativesAlone) {
  const uint64_t seed = 52;
  reference::Random random(seed);
  Scoped<TSpl> spl;
  Scoped<TBand> band;
  ASSERT_TRUE(alloc(*spl, 9));
  spl->p = 1.5;
  for (double* array : spl->arrays)
    for (uint32_t i = 0; i < 9; ++i) array[i] = random.real(-1, 1);
  std::vector<std::vector<double>> before;
  for (const double* array : spl->arrays) before.emplace_back(array, array + 9);
  ASSERT_EQ(pol_Smooth(*spl, *band), 0);
  for (uint32_t k = 0; k < kSplArrays; ++k) {
    const std::vector<double> after(spl->arrays[k], spl->arrays[k] + 9);
    EXPECT_EQ(after != before[k], k == kSplSecondX || k == kSplSecondY) << k;
  }
}

TEST(Smooth, OfFewerThanSevenPointsFails) {
  for (uint32_t n = 1; n < 7; ++n) {
    Scoped<TSpl> spl;
    TBand band;
    ASSERT_TRUE(alloc(*spl, n));
    spl->p = 1.0;
    EXPECT_EQ(pol_Smooth(*spl, band), -6) << n;
    EXPECT_EQ(band.diagonal, nullptr);
  }
}

TEST(Smooth, FailsForAParameterThatLeavesNothingOnTheDiagonal) {
  Scoped<TSpl> spl;
  TBand band;
  ASSERT_TRUE(alloc(*spl, 9));
  spl->p = -9.0;
  EXPECT_EQ(pol_Smooth(*spl, band), -6);
}

TEST(Smooth, TakesAParameterOfZeroOrOneThatIsNotANumber) {
  for (const double p : {0.0, std::numeric_limits<double>::quiet_NaN()}) {
    Scoped<TSpl> spl;
    Scoped<TBand> band;
    fill(*spl, std::vector<double>(8, 1.0), std::vector<double>(8, 1.0), p);
    EXPECT_EQ(pol_Smooth(*spl, *band), 0);
    EXPECT_TRUE(std::isnan(spl->arrays[kSplSecondX][0]));
  }
}

TEST(Smooth, WithoutAnArrayFailsWithItsCode) {
  const TSplArray needed[] = {kSplRightX, kSplRightY, kSplSecondX, kSplSecondY};
  for (int32_t k = 0; k < 4; ++k) {
    Scoped<TSpl> spl;
    TBand band;
    ASSERT_TRUE(alloc(*spl, 9));
    spl->p = 1.0;
    free_Array(spl->arrays[needed[k]]);
    spl->arrays[needed[k]] = nullptr;
    EXPECT_EQ(pol_Smooth(*spl, band), -1 - k);
  }
}

TEST(Smooth, OfNoPointsFails) {
  Scoped<TSpl> spl;
  TBand band;
  ASSERT_TRUE(alloc(*spl, 9));
  spl->count = 0;
  EXPECT_EQ(pol_Smooth(*spl, band), -5);
}

TEST(Smooth, WithoutMemoryFails) {
  Scoped<TSpl> spl;
  fill(*spl, std::vector<double>(9, 1.0), std::vector<double>(9, 1.0), 1.0);
  const auto run = [&] {
    Scoped<TBand> band;
    return pol_Smooth(*spl, *band);
  };
  EXPECT_EQ(list_FailureCodes(run), (std::vector<int32_t>{-6, 0}));
}

TEST(Factors, FailWithTheirCodes) {
  TBand band;
  EXPECT_EQ(fac_Band(band, 6, 4.0, 1.0, 0.5), -1);
  EXPECT_EQ(fac_Band(band, 9, 0.0, 1.0, 0.5), -2);
  const auto run = [&] {
    Scoped<TBand> factors;
    return fac_Band(*factors, 9, 4.0, 1.0, 0.5);
  };
  EXPECT_EQ(list_FailureCodes(run), (std::vector<int32_t>{-3, 0}));
}

TEST(Factors, FailWhereverTheDiagonalGetsAZero) {
  TBand band;
  EXPECT_EQ(fac_Band(band, 9, 1.0, 1.0, 0.0), -2);  // in the second row
  EXPECT_EQ(band.diagonal, nullptr);
  EXPECT_EQ(fac_Band(band, 8, 2.0, 0.0, -1.0), -2);  // in the last but one
  // The cyclic second difference takes what is constant to 0: the last is 0.
  EXPECT_EQ(fac_Band(band, 8, 2.0, -1.0, 0.0), -2);
}

TEST(Factors, MultiplyToTheMatrix) {
  const uint32_t n = 11;
  Scoped<TBand> band;
  ASSERT_EQ(fac_Band(*band, n, 4.0, 1.25, -0.5), 0);
  std::vector<std::vector<double>> lower(n, std::vector<double>(n));
  for (uint32_t i = 0; i < n; ++i) lower[i][i] = 1.0;
  for (uint32_t j = 0; j + 1 < n; ++j) lower[j + 1][j] = band->first[j];
  for (uint32_t j = 0; j + 2 < n; ++j) lower[j + 2][j] = band->second[j];
  for (uint32_t j = 0; j + 4 < n; ++j) lower[n - 2][j] = band->last_but_one[j];
  for (uint32_t j = 0; j + 3 < n; ++j) lower[n - 1][j] = band->last[j];
  const plain::Matrix matrix = plain::make_Cyclic(n, 4.0, 1.25, -0.5);
  for (uint32_t i = 0; i < n; ++i)
    for (uint32_t j = 0; j < n; ++j) {
      double sum = 0.0;
      for (uint32_t k = 0; k < n; ++k) sum += lower[i][k] * band->diagonal[k] * lower[j][k];
      EXPECT_NEAR(sum, double(matrix[i][j]), 1e-14) << i << ", " << j;
    }
}

TEST(Records, AreMadeWholeOrNotAtAll) {
  const auto run_Spl = [] {
    Scoped<TSpl> spl;
    const bool made = alloc(*spl, 5);
    for (const double* array : spl->arrays) EXPECT_EQ(made, array != nullptr);
    EXPECT_EQ(spl->count, made ? 5u : 0u);
    return made ? 0 : -1;
  };
  EXPECT_EQ(list_FailureCodes(run_Spl), (std::vector<int32_t>{-1, 0}));
  const auto run_Band = [] {
    Scoped<TBand> band;
    const bool made = alloc(*band, 5);
    EXPECT_EQ(made, band->last != nullptr);
    EXPECT_EQ(band->size, made ? 5u : 0u);
    return made ? 0 : -1;
  };
  EXPECT_EQ(list_FailureCodes(run_Band), (std::vector<int32_t>{-1, 0}));
}

TEST(Records, AreNotMadeForTooFewPoints) {
  TSpl spl;
  EXPECT_FALSE(alloc(spl, 0));
  TBand band;
  EXPECT_FALSE(alloc(band, 4));
  EXPECT_EQ(band.size, 0u);
}

TEST(Records, HaveTheirLayout) {
  EXPECT_EQ(sizeof(TSpl), 108u);
  EXPECT_EQ(kSplCurvature, 11u);
  EXPECT_EQ(kSplArrays, 12u);
}

TEST(Curvature, OfACircleIsTheInverseOfItsRadius) {
  Scoped<TSpl> spl;
  ASSERT_TRUE(alloc(*spl, 16));
  const double radius = 4.0, rate = 0.3;
  for (uint32_t i = 0; i < 16; ++i) {
    const double c = radius * std::cos(rate * i), s = radius * std::sin(rate * i);
    spl->arrays[kSplFirstX][i] = -rate * s;
    spl->arrays[kSplFirstY][i] = rate * c;
    spl->arrays[kSplSecondX][i] = -rate * rate * c;
    spl->arrays[kSplSecondY][i] = -rate * rate * s;
  }
  ASSERT_EQ(pol_Curv(*spl), 0);
  for (uint32_t i = 0; i < 16; ++i) EXPECT_NEAR(spl->arrays[kSplCurvature][i], 0.25, 1e-14);
}

TEST(Curvature, IsNegativeForATurnToTheRightAndNotANumberWhereNothingMoves) {
  Scoped<TSpl> spl;
  ASSERT_TRUE(alloc(*spl, 2));
  spl->arrays[kSplFirstX][0] = 2.0;
  spl->arrays[kSplSecondY][0] = -1.0;
  ASSERT_EQ(pol_Curv(*spl), 0);
  EXPECT_EQ(spl->arrays[kSplCurvature][0], -0.25);
  EXPECT_TRUE(std::isnan(spl->arrays[kSplCurvature][1]));
}

TEST(Curvature, WithoutAnArrayOrPointsFailsWithItsCode) {
  const TSplArray needed[] = {kSplFirstX, kSplFirstY, kSplSecondX, kSplSecondY, kSplCurvature};
  for (int32_t k = 0; k < 5; ++k) {
    Scoped<TSpl> spl;
    ASSERT_TRUE(alloc(*spl, 9));
    free_Array(spl->arrays[needed[k]]);
    spl->arrays[needed[k]] = nullptr;
    EXPECT_EQ(pol_Curv(*spl), -1 - k);
  }
  Scoped<TSpl> spl;
  ASSERT_TRUE(alloc(*spl, 9));
  spl->count = 0;
  EXPECT_EQ(pol_Curv(*spl), -6);
}
