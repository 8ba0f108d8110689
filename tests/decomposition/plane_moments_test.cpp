#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "decomposition/measures.h"
#include "tests/support/meshes.h"

namespace undercut {
namespace {

using namespace tests;

// Of a convex polygon, by the triangles at its first corner.
TUcPlane sum_Polygon(const std::vector<T2DVEC>& corners) {
  TUcPlane plane;
  double area = 0;
  const T2DVEC o = corners[0];
  for (size_t i = 1; i + 1 < corners.size(); ++i) {
    const T2DVEC a = corners[i], b = corners[i + 1];
    fold_Plane(plane, area, {{o.x, o.y, 0}, {a.x, a.y, 0}, {b.x, b.y, 0}});
    area += 0.5 * ((a.x - o.x) * (b.y - o.y) - (b.x - o.x) * (a.y - o.y));
  }
  return plane;
}

// a > b, the angle of the long axis in radians.
std::vector<T2DVEC> list_Ellipse(double a, double b, double angle, int corners) {
  std::vector<T2DVEC> list;
  for (int i = 0; i < corners; ++i) {
    const double t = 6.283185307179586 * i / corners;
    const double x = a * std::cos(t), y = b * std::sin(t);
    list.push_back(
        {x * std::cos(angle) - y * std::sin(angle), x * std::sin(angle) + y * std::cos(angle)});
  }
  return list;
}

CUcA with_Central(double cxx, double cyy, double cxy) {
  CUcA region;
  region.measures.plane.cxx = cxx;
  region.measures.plane.cyy = cyy;
  region.measures.plane.cxy = cxy;
  return region;
}

// ---- Triangles ---------------------------------------------------------------------------------

TEST(TriangleMoments, OfAHalfSquare_AreTheKnownOnes) {
  TUcPlane plane;
  EXPECT_TRUE(mom_Tri({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, plane));
  EXPECT_EQ(plane.sxx, 1.0 / 12);
  EXPECT_EQ(plane.syy, 1.0 / 12);
  EXPECT_EQ(plane.sxy, 1.0 / 24);
  EXPECT_EQ(plane.centre.x, 1.0 / 3);
  EXPECT_EQ(plane.centre.y, 1.0 / 3);
  EXPECT_NEAR(plane.cxx, 1.0 / 36, 1e-16);
  EXPECT_NEAR(plane.cyy, 1.0 / 36, 1e-16);
  EXPECT_NEAR(plane.cxy, -1.0 / 72, 1e-16);
}

TEST(TriangleMoments, OfATriangleSeenFromBehind_AreNegative) {
  TUcPlane front, back;
  mom_Tri({{1, 2, 0}, {4, 1, 0}, {3, 5, 0}}, front);
  mom_Tri({{1, 2, 0}, {3, 5, 0}, {4, 1, 0}}, back);
  EXPECT_GT(front.cxx, 0);
  EXPECT_NEAR(back.sxx, -front.sxx, 1e-12);
  EXPECT_NEAR(back.syy, -front.syy, 1e-12);
  EXPECT_NEAR(back.sxy, -front.sxy, 1e-12);
  EXPECT_NEAR(back.cxx, -front.cxx, 1e-12);
}

TEST(TriangleMoments, DoNotReadTheHeight) {
  TUcPlane flat, high;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  mom_Tri({{1, 2, 0}, {4, 1, 0}, {3, 5, 0}}, flat);
  mom_Tri({{1, 2, nan}, {4, 1, 9}, {3, 5, -2}}, high);
  EXPECT_EQ(flat.sxx, high.sxx);
  EXPECT_EQ(flat.cxy, high.cxy);
}

TEST(TriangleMoments, CentralOnesDoNotDependOnThePlace) {
  TUcPlane here, there;
  mom_Tri({{0, 0, 0}, {2, 0.5, 0}, {0.25, 1, 0}}, here);
  mom_Tri({{8, -4, 0}, {10, -3.5, 0}, {8.25, -3, 0}}, there);
  EXPECT_NEAR(here.cxx, there.cxx, 1e-12);
  EXPECT_NEAR(here.cyy, there.cyy, 1e-12);
  EXPECT_NEAR(here.cxy, there.cxy, 1e-12);
}

TEST(TriangleMoments, SumUpToThoseOfTheWhole) {
  reference::Random random(630);
  for (int round = 0; round < 1000; ++round) {
    T3DVEC p[4];
    for (T3DVEC& v : p) v = random.triple(-3, 3);
    TUcPlane whole, parts[3];  // split at p[3], wherever that lies
    mom_Tri({p[0], p[1], p[2]}, whole);
    for (int k = 0; k < 3; ++k) mom_Tri({p[k], p[(k + 1) % 3], p[3]}, parts[k]);
    EXPECT_NEAR(parts[0].sxx + parts[1].sxx + parts[2].sxx, whole.sxx, 1e-11);
    EXPECT_NEAR(parts[0].syy + parts[1].syy + parts[2].syy, whole.syy, 1e-11);
    EXPECT_NEAR(parts[0].sxy + parts[1].sxy + parts[2].sxy, whole.sxy, 1e-11);
  }
}

// ---- Regions -----------------------------------------------------------------------------------

TEST(PlaneMoments, OfARectangle_AreTheKnownOnes) {
  const TUcPlane plane = sum_Polygon({{2, 1}, {8, 1}, {8, 3}, {2, 3}});
  EXPECT_NEAR(plane.centre.x, 5, 1e-12);
  EXPECT_NEAR(plane.centre.y, 2, 1e-12);
  EXPECT_NEAR(plane.cxx, 6 * 6 * 6 * 2 / 12.0, 1e-10);
  EXPECT_NEAR(plane.cyy, 6 * 2 * 2 * 2 / 12.0, 1e-10);
  EXPECT_NEAR(plane.cxy, 0, 1e-10);
  EXPECT_NEAR(plane.sxx, 36 + 12 * 25, 1e-10);
}

TEST(PlaneMoments, TakingATriangleOutAgain_RestoresThemWithinRounding) {
  const TUcPlane before = sum_Polygon({{0, 0}, {3, 0}, {3, 2}, {0, 2}});
  const T3DFAC extra = {{3, 0, 0}, {4, 1, 0}, {3, 2, 0}};
  TUcPlane plane = before;
  fold_Plane(plane, 6, extra);
  EXPECT_NEAR(plane.centre.x, (6 * 1.5 + 1 * 10.0 / 3) / 7, 1e-14);
  unfold_Plane(plane, 7, extra);
  EXPECT_NEAR(plane.centre.x, before.centre.x, 1e-14);
  EXPECT_NEAR(plane.centre.y, before.centre.y, 1e-14);
  EXPECT_NEAR(plane.sxx, before.sxx, 1e-13);
  EXPECT_NEAR(plane.cxx, before.cxx, 1e-13);
  EXPECT_NEAR(plane.cyy, before.cyy, 1e-13);
  EXPECT_NEAR(plane.cxy, before.cxy, 1e-13);
}

TEST(PlaneMoments, NothingIsTakenOutUnlessMoreAreaIsLeftThanTheTriangles) {
  const TUcPlane before = sum_Polygon({{0, 0}, {1, 0}, {1, 1}});
  const T3DFAC half = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
  for (const double area : {0.5, 0.25, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    TUcPlane plane = before;
    unfold_Plane(plane, area, half);
    EXPECT_EQ(plane.sxx, before.sxx);
    EXPECT_EQ(plane.cxy, before.cxy);
    EXPECT_EQ(plane.centre, before.centre);
  }
  TUcPlane plane = before;
  unfold_Plane(plane, 0.75, half);
  EXPECT_NE(plane.sxx, before.sxx);
}

// ---- Eigenvalues -------------------------------------------------------------------------------

TEST(Eigenvalues, ComeLargerFirst) {
  double l1, l2;
  ASSERT_TRUE(eig_Sym2(1, 0, 0, 5, l1, l2));
  EXPECT_EQ(l1, 5);
  EXPECT_EQ(l2, 1);
  ASSERT_TRUE(eig_Sym2(2, 3, 3, 2, l1, l2));
  EXPECT_EQ(l1, 5);
  EXPECT_EQ(l2, -1);
}

TEST(Eigenvalues, TakeTheirRootInSinglePrecision) {
  // The matrix (1, 1), (1, -1) has the eigenvalues of plus and minus the root of 2.
  double l1, l2;
  ASSERT_TRUE(eig_Sym2(1, 1, 1, -1, l1, l2));
  EXPECT_EQ(l1, 1.41421353816986083984375);  // the root of 2 in 24 bits
  EXPECT_EQ(l2, -1.41421353816986083984375);
  EXPECT_NE(l1, std::sqrt(2.0));
}

TEST(Eigenvalues, RoundTheDiscriminantBeforeTheRoot_NotTheRootAfterIt) {
  int differing = 0;
  for (int i = 1; i < 400; ++i) {
    const double half = 1 + i / 512.0 + 1.0 / (1 << 20);
    double l1, l2;
    ASSERT_TRUE(eig_Sym2(half, half, half, -half, l1, l2));
    const double d = 0.0 - (half * -half - half * half);
    EXPECT_EQ(l1, static_cast<double>(std::sqrt(static_cast<float>(d))));
    differing += l1 != static_cast<double>(static_cast<float>(std::sqrt(d)));
  }
  EXPECT_GT(differing, 0);
}

TEST(Eigenvalues, FailForANegativeDiscriminant) {
  double l1 = 7, l2 = 8;
  EXPECT_FALSE(eig_Sym2(0, 1, -1, 0, l1, l2));
  EXPECT_EQ(l1, 7);
  EXPECT_EQ(l2, 8);
}

TEST(Eigenvalues, ADiscriminantBeyondTheRangeOfSinglesGivesInfinities) {
  double l1, l2;
  ASSERT_TRUE(eig_Sym2(1e21, 0, 0, -1e21, l1, l2));
  EXPECT_EQ(l1, std::numeric_limits<double>::infinity());
  EXPECT_EQ(l2, -std::numeric_limits<double>::infinity());
}

TEST(Eigenvalues, ADiscriminantBelowTheRangeOfSinglesGivesADoubleValue) {
  double l1, l2;
  ASSERT_TRUE(eig_Sym2(1e-25, 0, 0, 3e-25, l1, l2));
  EXPECT_EQ(l1, (1e-25 + 3e-25) / 2);
  EXPECT_EQ(l2, l1);
}

// ---- Ellipses ----------------------------------------------------------------------------------

TEST(Ellipse, OfAnEllipseIsItself) {
  for (const double angle : {0.0, 0.3, 1.2, -0.7}) {
    CUcA region;
    region.measures.plane = sum_Polygon(list_Ellipse(5, 2, angle, 2000));
    TUcElp elp;
    ASSERT_TRUE(get_Elp(&region, elp));
    EXPECT_NEAR(elp.x, 0, 1e-9);
    EXPECT_NEAR(elp.y, 0, 1e-9);
    EXPECT_NEAR(elp.a, 5, 1e-4);
    EXPECT_NEAR(elp.b, 2, 1e-4);
    EXPECT_NEAR(elp.angle, angle, 1e-6);
  }
}

TEST(Ellipse, OfARectangleHasItsMoments) {
  CUcA region;
  region.measures.plane = sum_Polygon({{2, 1}, {8, 1}, {8, 3}, {2, 3}});
  TUcElp elp;
  ASSERT_TRUE(get_Elp(&region, elp));
  const double quarter = 3.141592653589793 / 4;
  EXPECT_NEAR(elp.x, 5, 1e-12);
  EXPECT_NEAR(elp.y, 2, 1e-12);
  EXPECT_NEAR(quarter * elp.a * elp.a * elp.a * elp.b, 36, 1e-4);
  EXPECT_NEAR(quarter * elp.a * elp.b * elp.b * elp.b, 4, 1e-4);
}

TEST(Ellipse, OfARegionThatStandsUpright_HasItsLongAxisAlongY) {
  CUcA region;
  region.measures.plane = sum_Polygon({{0, 0}, {2, 0}, {2, 6}, {0, 6}});
  TUcElp elp;
  ASSERT_TRUE(get_Elp(&region, elp));
  EXPECT_GT(elp.a, elp.b);
  EXPECT_NEAR(std::fabs(elp.angle), 1.5707963267948966, 1e-9);
}

TEST(Ellipse, SemiAxesMultiplyFromTheLeft) {
  const double q = 1.2732395447351628, l1 = 36.1234567, l2 = 4.7654321;
  double a, b;
  axes_Elp(l1, l2, a, b);
  EXPECT_EQ(a, std::pow((((q * q) * l1) * l1) * l1 / l2, 0.125));
  EXPECT_EQ(b, std::pow((((q * q) * l2) * l2) * l2 / l1, 0.125));
}

TEST(Ellipse, FailsForNoRegion) {
  TUcElp elp;
  EXPECT_FALSE(get_Elp(nullptr, elp));
}

// The discriminant is a square in exact arithmetic; rounding alone makes it negative.
TEST(Ellipse, FailsWhereTheMomentsGiveANegativeDiscriminant) {
  reference::Random random(631);
  int failed = 0;
  for (int round = 0; round < 2000; ++round) {
    const double x = random.real(1, 2), y = std::nextafter(x, 3);
    const double t = -(y + x);
    const bool negative = t * t / 4 - (y * x - 0.0 * 0.0) < 0;
    const CUcA region = with_Central(x, y, 0);
    TUcElp elp;
    EXPECT_EQ(get_Elp(&region, elp), !negative);
    failed += negative;
  }
  EXPECT_GT(failed, 0);
}

// The single-precision root may exceed the half trace, and the smaller moment is then negative.
TEST(Ellipse, OfANeedleMayHaveNoAxes) {
  reference::Random random(632);
  int negative = 0;
  for (int round = 0; round < 200; ++round) {
    const CUcA region = with_Central(random.real(1, 2), 1e-12, 1e-9);
    const TUcPlane& plane = region.measures.plane;
    double l1, l2;
    ASSERT_TRUE(eig_Sym2(plane.cyy, -1e-9, -1e-9, plane.cxx, l1, l2));
    TUcElp elp;
    ASSERT_TRUE(get_Elp(&region, elp));
    EXPECT_EQ(std::isnan(elp.a), l2 < 0);
    EXPECT_EQ(std::isnan(elp.b), l2 < 0);
    negative += l2 < 0;
  }
  EXPECT_GT(negative, 0);
}

}  // namespace
}  // namespace undercut
