#include "foundation/predicates.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "foundation/primitives.h"
#include "tests/reference/adaptive_predicates.h"
#include "tests/reference/random_geometry.h"

namespace undercut {
namespace {

using reference::AdaptiveStage;
using reference::Random;

__extension__ typedef __int128 Wide;

int sgn_Wide(Wide v) { return v < 0 ? -1 : v > 0 ? 1 : 0; }

// The determinants of integer differences, exactly.
Wide det_2(const Wide a[2], const Wide b[2]) { return a[0] * b[1] - a[1] * b[0]; }
Wide det_3(const Wide a[3], const Wide b[3], const Wide c[3]) {
  return a[2] * det_2(b, c) + b[2] * det_2(c, a) + c[2] * det_2(a, b);
}
Wide square(const Wide* v, int n) {
  Wide total = 0;
  for (int k = 0; k < n; ++k) total += v[k] * v[k];
  return total;
}

// Five random points on an integer grid, as doubles, and their differences to the last one in use.
struct TGrid {
  double at[5][3];
  Wide diff[5][3];

  TGrid(Random& random, int64_t reach, int used) {
    for (auto& p : at) {
      for (double& v : p) v = static_cast<double>(random.integer(-reach, reach));
    }
    for (int i = 0; i < 5; ++i) {
      for (int k = 0; k < 3; ++k)
        diff[i][k] = static_cast<Wide>(at[i][k]) - static_cast<Wide>(at[used - 1][k]);
    }
  }
  int exact_Orient2d() const { return sgn_Wide(det_2(diff[0], diff[1])); }
  int exact_Orient3d() const { return sgn_Wide(det_3(diff[0], diff[1], diff[2])); }
  int exact_Incircle() const {
    Wide lifted[3][3];
    for (int i = 0; i < 3; ++i) {
      lifted[i][0] = diff[i][0];
      lifted[i][1] = diff[i][1];
      lifted[i][2] = square(diff[i], 2);
    }
    return sgn_Wide(det_3(lifted[0], lifted[1], lifted[2]));
  }
  int exact_Insphere() const {
    const auto& d = diff;
    const Wide a = square(d[0], 3) * det_3(d[1], d[2], d[3]);
    const Wide b = square(d[1], 3) * det_3(d[2], d[3], d[0]);
    const Wide c = square(d[2], 3) * det_3(d[3], d[0], d[1]);
    const Wide e = square(d[3], 3) * det_3(d[0], d[1], d[2]);
    return sgn_Wide(e - c + b - a);
  }
};

// The plain determinants, spelled out.
double plain_Orient3d(const double (*p)[3]) {
  const double adx = p[0][0] - p[3][0], ady = p[0][1] - p[3][1], adz = p[0][2] - p[3][2];
  const double bdx = p[1][0] - p[3][0], bdy = p[1][1] - p[3][1], bdz = p[1][2] - p[3][2];
  const double cdx = p[2][0] - p[3][0], cdy = p[2][1] - p[3][1], cdz = p[2][2] - p[3][2];
  const double bdxcdy = bdx * cdy, cdxbdy = cdx * bdy;
  const double cdxady = cdx * ady, adxcdy = adx * cdy;
  const double adxbdy = adx * bdy, bdxady = bdx * ady;
  return adz * (bdxcdy - cdxbdy) + bdz * (cdxady - adxcdy) + cdz * (adxbdy - bdxady);
}
double plain_Incircle(const double (*p)[3]) {
  const double adx = p[0][0] - p[3][0], ady = p[0][1] - p[3][1];
  const double bdx = p[1][0] - p[3][0], bdy = p[1][1] - p[3][1];
  const double cdx = p[2][0] - p[3][0], cdy = p[2][1] - p[3][1];
  const double alift = adx * adx + ady * ady;
  const double blift = bdx * bdx + bdy * bdy;
  const double clift = cdx * cdx + cdy * cdy;
  return alift * (bdx * cdy - cdx * bdy) + blift * (cdx * ady - adx * cdy) +
         clift * (adx * bdy - bdx * ady);
}
double plain_Insphere(const double (*p)[3]) {
  double x[4], y[4], z[4], lift[4];
  for (int i = 0; i < 4; ++i) {
    x[i] = p[i][0] - p[4][0];
    y[i] = p[i][1] - p[4][1];
    z[i] = p[i][2] - p[4][2];
    lift[i] = x[i] * x[i] + y[i] * y[i] + z[i] * z[i];
  }
  const double ab = x[0] * y[1] - x[1] * y[0], bc = x[1] * y[2] - x[2] * y[1];
  const double cd = x[2] * y[3] - x[3] * y[2], da = x[3] * y[0] - x[0] * y[3];
  const double ac = x[0] * y[2] - x[2] * y[0], bd = x[1] * y[3] - x[3] * y[1];
  const double abc = z[0] * bc - z[1] * ac + z[2] * ab;
  const double bcd = z[1] * cd - z[2] * bd + z[3] * bc;
  const double cda = z[2] * da + z[3] * ac + z[0] * cd;
  const double dab = z[3] * ab + z[0] * bd + z[1] * da;
  return (lift[3] * abc - lift[2] * dab) + (lift[1] * cda - lift[0] * bcd);
}

// Five points on a coarse grid of tenths, whose determinants are often zero.
void fill_Tenths(Random& random, double (*p)[3]) {
  for (int i = 0; i < 5; ++i) {
    for (int k = 0; k < 3; ++k) p[i][k] = 0.1 * static_cast<double>(random.integer(-4, 4));
  }
}

TEST(Predicates, Orient2d_IsPositive_ForALeftTurnAndNegativeForARightTurn) {
  const double o[2] = {0, 0}, x[2] = {1, 0}, y[2] = {0, 1};
  EXPECT_GT(orient2d(o, x, y), 0);
  EXPECT_LT(orient2d(o, y, x), 0);
  const double beyond[2] = {2, 0};
  EXPECT_EQ(orient2d(o, x, beyond), 0);
}

TEST(Predicates, Orient3d_IsPositive_ForAPointBelow) {
  const double o[3] = {0, 0, 0}, x[3] = {1, 0, 0}, y[3] = {0, 1, 0};
  const double below[3] = {0, 0, -1}, above[3] = {0, 0, 1}, within[3] = {0.25, 3, 0};
  EXPECT_GT(orient3d(o, x, y, below), 0);
  EXPECT_LT(orient3d(o, x, y, above), 0);
  EXPECT_EQ(orient3d(o, x, y, within), 0);
}

TEST(Predicates, Incircle_IsPositive_InsideACounterClockwiseCircle) {
  const double a[2] = {1, 0}, b[2] = {0, 1}, c[2] = {-1, 0};
  const double inside[2] = {0.5, -0.5}, outside[2] = {1, -1}, on[2] = {0, -1};
  EXPECT_GT(incircle(a, b, c, inside), 0);
  EXPECT_LT(incircle(a, b, c, outside), 0);
  EXPECT_EQ(incircle(a, b, c, on), 0);
  EXPECT_LT(incircle(c, b, a, inside), 0);
}

TEST(Predicates, Insphere_IsPositive_InsideGivenAPositiveOrient3d) {
  const double a[3] = {1, 0, 0}, b[3] = {0, 1, 0}, c[3] = {-1, 0, 0}, d[3] = {0, 0, -1};
  ASSERT_GT(orient3d(a, b, c, d), 0);
  const double inside[3] = {0.1, -0.2, 0.9}, outside[3] = {0, 0, 1.5}, on[3] = {0, -1, 0};
  EXPECT_GT(insphere(a, b, c, d, inside), 0);
  EXPECT_LT(insphere(a, b, c, d, outside), 0);
  EXPECT_EQ(insphere(a, b, c, d, on), 0);
}

// Points a few units in the last place round (0.5, 0.5), against the diagonal through (12, 12) and
// (24, 24): scaled by 2^53 all are integers.
TEST(Predicates, Orient2d_KeepsTheRoundedSign_OfNearlyCollinearPoints) {
  const double q[2] = {12, 12}, r[2] = {24, 24};
  int otherwise = 0;
  for (int i = 0; i < 64; ++i) {
    for (int k = 0; k < 64; ++k) {
      const double p[2] = {0.5 + i * 0x1p-53, 0.5 + k * 0x1p-53};
      const double left = (p[0] - r[0]) * (q[1] - r[1]);
      const double right = (p[1] - r[1]) * (q[0] - r[0]);
      EXPECT_EQ(orient2d(p, q, r), left - right);
      const Wide unit = static_cast<Wide>(1) << 53;
      const Wide a[2] = {static_cast<Wide>(p[0] * 0x1p53) - 24 * unit,
                         static_cast<Wide>(p[1] * 0x1p53) - 24 * unit};
      const Wide b[2] = {-12 * unit, -12 * unit};
      otherwise += sgn_Wide(det_2(a, b)) != sgn(orient2d(p, q, r));
    }
  }
  EXPECT_GT(otherwise, 1000);  // nearly all lie so close that rounding decides
}

TEST(Predicates, AllFour_HaveTheExactSign_InGeneralPosition) {
  const uint64_t seed = 2301;
  SCOPED_TRACE(seed);
  Random random(seed);
  for (int i = 0; i < 50000; ++i) {
    const TGrid flat(random, 1 << 19, 3), space(random, 1 << 19, 4), sphere(random, 1 << 19, 5);
    const auto& p = flat.at;
    ASSERT_EQ(sgn(orient2d(p[0], p[1], p[2])), flat.exact_Orient2d());
    const auto& q = space.at;
    ASSERT_EQ(sgn(orient3d(q[0], q[1], q[2], q[3])), space.exact_Orient3d());
    ASSERT_EQ(sgn(incircle(q[0], q[1], q[2], q[3])), space.exact_Incircle());
    const auto& r = sphere.at;
    ASSERT_EQ(sgn(insphere(r[0], r[1], r[2], r[3], r[4])), sphere.exact_Insphere());
  }
}

// On small integers nothing rounds, so coplanar and cospherical points give exactly zero.
TEST(Predicates, AllFour_AreExact_OnSmallIntegers) {
  const uint64_t seed = 2302;
  SCOPED_TRACE(seed);
  Random random(seed);
  int zeros = 0;
  for (int i = 0; i < 50000; ++i) {
    const TGrid flat(random, 3, 3), space(random, 3, 4), sphere(random, 3, 5);
    const auto& p = flat.at;
    ASSERT_EQ(sgn(orient2d(p[0], p[1], p[2])), flat.exact_Orient2d());
    const auto& q = space.at;
    ASSERT_EQ(sgn(orient3d(q[0], q[1], q[2], q[3])), space.exact_Orient3d());
    ASSERT_EQ(sgn(incircle(q[0], q[1], q[2], q[3])), space.exact_Incircle());
    const auto& r = sphere.at;
    ASSERT_EQ(sgn(insphere(r[0], r[1], r[2], r[3], r[4])), sphere.exact_Insphere());
    zeros += sphere.exact_Insphere() == 0;
  }
  EXPECT_GT(zeros, 500);
}

// The published stage with its own splitter, on differences that are exact: what the reference
// computes is the determinant.
TEST(Predicates, ReferenceStage_HasTheExactSign_WithTheIntendedSplitter) {
  const uint64_t seed = 2303;
  SCOPED_TRACE(seed);
  Random random(seed);
  const AdaptiveStage stage(134217729.0);
  for (int i = 0; i < 5000; ++i) {
    const TGrid space(random, i % 2 ? 4 : 1 << 19, 4), sphere(random, i % 2 ? 4 : 1 << 19, 5);
    const auto& q = space.at;
    ASSERT_EQ(sgn(stage.orient3d(q[0], q[1], q[2], q[3])), space.exact_Orient3d());
    ASSERT_EQ(sgn(stage.incircle(q[0], q[1], q[2], q[3])), space.exact_Incircle());
    const auto& r = sphere.at;
    ASSERT_EQ(sgn(stage.insphere(r[0], r[1], r[2], r[3], r[4])), sphere.exact_Insphere());
  }
}

TEST(Predicates, PlainDeterminant_IsTheAnswer_WhereItIsNotZero) {
  const uint64_t seed = 2304;
  SCOPED_TRACE(seed);
  Random random(seed);
  for (int i = 0; i < 100000; ++i) {
    double p[5][3];
    fill_Tenths(random, p);
    const double plane = plain_Orient3d(p), circle = plain_Incircle(p), ball = plain_Insphere(p);
    if (plane != 0) {
      ASSERT_EQ(orient3d(p[0], p[1], p[2], p[3]), plane);
    }
    if (circle != 0) {
      ASSERT_EQ(incircle(p[0], p[1], p[2], p[3]), circle);
    }
    if (ball != 0) {
      ASSERT_EQ(insphere(p[0], p[1], p[2], p[3], p[4]), ball);
    }
  }
}

TEST(Predicates, ZeroDeterminant_IsSummedAnew_WithoutProductTails) {
  const uint64_t seed = 2305;
  SCOPED_TRACE(seed);
  Random random(seed);
  const AdaptiveStage stage(0.0);
  int zeros[3] = {0, 0, 0}, changed[3] = {0, 0, 0};
  for (int i = 0; i < 300000; ++i) {
    double p[5][3];
    fill_Tenths(random, p);
    if (plain_Orient3d(p) == 0) {
      const double sum = orient3d(p[0], p[1], p[2], p[3]);
      ASSERT_EQ(sum, stage.orient3d(p[0], p[1], p[2], p[3]));
      ++zeros[0];
      changed[0] += sum != 0;
    }
    if (plain_Incircle(p) == 0) {
      const double sum = incircle(p[0], p[1], p[2], p[3]);
      ASSERT_EQ(sum, stage.incircle(p[0], p[1], p[2], p[3]));
      ++zeros[1];
      changed[1] += sum != 0;
    }
    if (plain_Insphere(p) == 0) {
      const double sum = insphere(p[0], p[1], p[2], p[3], p[4]);
      ASSERT_EQ(sum, stage.insphere(p[0], p[1], p[2], p[3], p[4]));
      ++zeros[2];
      changed[2] += sum != 0;
    }
  }
  for (int k = 0; k < 3; ++k) {
    EXPECT_GT(zeros[k], 1000) << k;
    EXPECT_GT(changed[k], 0) << k;  // else the sum would not show
    RecordProperty("zeros" + std::to_string(k), zeros[k]);
    RecordProperty("changed" + std::to_string(k), changed[k]);
  }
}

TEST(Predicates, EveryValueOfADouble_IsAnswered) {
  const uint64_t seed = 2306;
  SCOPED_TRACE(seed);
  Random random(seed);
  int numbers = 0;
  for (int i = 0; i < 100000; ++i) {
    double p[5][3];
    for (auto& point : p) {
      for (double& v : point) v = random.chance(0.5) ? random.special() : random.real(-1, 1);
    }
    const double plane = plain_Orient3d(p), circle = plain_Incircle(p), ball = plain_Insphere(p);
    const double plane_is = orient3d(p[0], p[1], p[2], p[3]);
    const double circle_is = incircle(p[0], p[1], p[2], p[3]);
    const double ball_is = insphere(p[0], p[1], p[2], p[3], p[4]);
    ASSERT_EQ(std::isnan(plane), std::isnan(plane_is));
    if (plane != 0 && !std::isnan(plane)) {
      ASSERT_EQ(plane_is, plane);
    }
    if (circle != 0 && !std::isnan(circle)) {
      ASSERT_EQ(circle_is, circle);
    }
    if (ball != 0 && !std::isnan(ball)) {
      ASSERT_EQ(ball_is, ball);
    }
    numbers += !std::isnan(plane) + !std::isnan(circle) + !std::isnan(ball);
  }
  EXPECT_GT(numbers, 1000);
}

}  // namespace
}  // namespace undercut
