#include "foundation/values.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace undercut {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

T3DVEC rnd_Vec(std::mt19937_64& random) {
  std::uniform_real_distribution<double> d(-2, 2);
  const double x = d(random), y = d(random), z = d(random);
  return {x, y, z};
}

void expect_Near(const T3DVEC& a, const T3DVEC& b, double tolerance) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

void expect_Same(const T3DFRM& a, const T3DFRM& b) {
  EXPECT_EQ(a.x, b.x);
  EXPECT_EQ(a.y, b.y);
  EXPECT_EQ(a.z, b.z);
  EXPECT_EQ(a.org, b.org);
}

TEST(Records, PlainRecordsHaveTheirSizes) {
  EXPECT_EQ(sizeof(T2DVEC), 16u);
  EXPECT_EQ(sizeof(T3DVEC), 24u);
  EXPECT_EQ(sizeof(T3DVECF), 24u);
  EXPECT_EQ(sizeof(T3DTRI), 12u);
  EXPECT_EQ(sizeof(T3DSGM), 8u);
  EXPECT_EQ(sizeof(T3DFAC), 72u);
  EXPECT_EQ(sizeof(T3DRAY), 48u);
  EXPECT_EQ(sizeof(T3DSPH), 32u);
  EXPECT_EQ(sizeof(T3DFRM), 96u);
  EXPECT_EQ(sizeof(T3DMAT), 128u);
  EXPECT_EQ(offsetof(T3DRAY, dir), 24u);
  EXPECT_EQ(offsetof(T3DSPH, radius), 24u);
  EXPECT_EQ(offsetof(T3DFRM, y), 24u);
  EXPECT_EQ(offsetof(T3DFRM, z), 48u);
  EXPECT_EQ(offsetof(T3DFRM, org), 72u);
}

TEST(Records, AMeshViewHasItsSecondPointerAtByte12) {
  EXPECT_EQ(sizeof(T3DMSH), 24u);
  EXPECT_EQ(alignof(T3DMSH), 4u);
  EXPECT_EQ(offsetof(T3DMSH, vtx), 0u);
  EXPECT_EQ(offsetof(T3DMSH, n_vtx), 8u);
  EXPECT_EQ(offsetof(T3DMSH, tri), 12u);
  EXPECT_EQ(offsetof(T3DMSH, n_tri), 20u);
}

TEST(Records, PolylineViewsHaveTheShapeOfAMesh) {
  EXPECT_EQ(sizeof(T3DPOL), 24u);
  EXPECT_EQ(offsetof(T3DPOL, pnt), 0u);
  EXPECT_EQ(offsetof(T3DPOL, n_pnt), 8u);
  EXPECT_EQ(offsetof(T3DPOL, sgm), 12u);
  EXPECT_EQ(offsetof(T3DPOL, n_sgm), 20u);
  EXPECT_EQ(sizeof(T2DPOL), 24u);
  EXPECT_EQ(offsetof(T2DPOL, pnt), 0u);
  EXPECT_EQ(offsetof(T2DPOL, n_pnt), 8u);
  EXPECT_EQ(offsetof(T2DPOL, sgm), 12u);
  EXPECT_EQ(offsetof(T2DPOL, n_sgm), 20u);
}

template <typename T>
void check_Layout() {
  EXPECT_EQ(sizeof(TArr<T>), 12u);
  EXPECT_EQ(alignof(TArr<T>), 4u);
  EXPECT_EQ(offsetof(TArr<T>, data), 0u);
  EXPECT_EQ(offsetof(TArr<T>, count), 8u);
  EXPECT_EQ(sizeof(TLst<T>), 16u);
  EXPECT_EQ(alignof(TLst<T>), 4u);
  EXPECT_EQ(offsetof(TLst<T>, data), 0u);
  EXPECT_EQ(offsetof(TLst<T>, count), 8u);
  EXPECT_EQ(offsetof(TLst<T>, capacity), 12u);
}

TEST(Records, ArraysAndListsArePackedForEveryElement) {
  check_Layout<T3DTRI>();
  check_Layout<uint32_t>();
  check_Layout<T3DVEC>();
  check_Layout<TArrVec>();
  check_Layout<T3DMSH>();
  check_Layout<T3DRAY>();
  check_Layout<T3DSGM>();
  check_Layout<TLstU32>();
  check_Layout<TArrU32>();
  check_Layout<T3DFRM>();
  check_Layout<double>();
}

TEST(Vectors, Arithmetic_WorksByComponents) {
  const T3DVEC a = {1, -2, 3}, b = {0.5, 4, -8};
  EXPECT_EQ(a + b, (T3DVEC{1.5, 2, -5}));
  EXPECT_EQ(a - b, (T3DVEC{0.5, -6, 11}));
  EXPECT_EQ(-a, (T3DVEC{-1, 2, -3}));
  EXPECT_EQ(+a, a);
  EXPECT_EQ(2.0 * a, (T3DVEC{2, -4, 6}));
  EXPECT_EQ(a / 2.0, (T3DVEC{0.5, -1, 1.5}));
  EXPECT_EQ(dot(a, b), 0.5 - 8 - 24);
  EXPECT_EQ(cross(a, b), (T3DVEC{4, 9.5, 5}));
  EXPECT_EQ(dst_Sqr(a, b), 0.25 + 36 + 121);
  EXPECT_EQ(dst(a, b), std::sqrt(157.25));
  EXPECT_EQ(len(T3DVEC{2, 3, 6}), 7);
  T3DVEC c = a;
  c += b;
  c *= 2.0;
  c /= 4.0;
  EXPECT_EQ(c, (T3DVEC{0.75, 1, -2.5}));
}

TEST(Vectors, PlaneArithmetic_WorksByComponents) {
  const T2DVEC a = {3, -4}, b = {1, 2};
  EXPECT_EQ(a + b, (T2DVEC{4, -2}));
  EXPECT_EQ(a - b, (T2DVEC{2, -6}));
  EXPECT_EQ(2.0 * a, (T2DVEC{6, -8}));
  EXPECT_EQ(a / 2.0, (T2DVEC{1.5, -2}));
  EXPECT_EQ(dot(a, b), -5);
  EXPECT_EQ(len(a), 5);
  EXPECT_EQ(unit(a), (T2DVEC{0.6, -0.8}));
  EXPECT_EQ(dst_Sqr(a, b), 40);
  EXPECT_EQ(dst(a, b), std::sqrt(40.0));
  EXPECT_TRUE(a != b);
  EXPECT_FALSE(a != a);
}

TEST(Vectors, Dot_SumsInTheOrderOfComponents) {
  // Any other order gives 1 or 0 here.
  EXPECT_EQ(dot(T3DVEC{1, 1e17, -1e17}, T3DVEC{1, 1, 1}), 0);
  EXPECT_EQ(dot(T3DVEC{1e17, -1e17, 1}, T3DVEC{1, 1, 1}), 1);
}

TEST(Vectors, Unit_LeavesTheZeroVector) {
  EXPECT_EQ(unit(T3DVEC{0, 0, 0}), (T3DVEC{0, 0, 0}));
  EXPECT_EQ(unit(T2DVEC{0, 0}), (T2DVEC{0, 0}));
}

TEST(Vectors, DivisionByZero_ChangesNothing) {
  const T3DVEC a = {1, -2, 3};
  EXPECT_EQ(a / 0.0, a);
  EXPECT_EQ(a / -0.0, a);
  EXPECT_EQ((T2DVEC{1, 2} / 0.0), (T2DVEC{1, 2}));
  T3DVEC b = a;
  b /= 0.0;
  EXPECT_EQ(b, a);
  T2DVEC c = {5, 6};
  c /= 0.0;
  EXPECT_EQ(c, (T2DVEC{5, 6}));
}

TEST(Vectors, DivisionByANearZero_IsNotTreatedSpecially) {
  EXPECT_EQ((T3DVEC{1, 0, -1} / 1e-310), (T3DVEC{kInf, 0, -kInf}));
}

TEST(Vectors, Comparison_IsExact) {
  const T3DVEC a = {1, 2, 3};
  EXPECT_TRUE(a != (T3DVEC{1, 2, std::nextafter(3.0, 4.0)}));
  EXPECT_TRUE(a != (T3DVEC{std::nextafter(1.0, 0.0), 2, 3}));
  EXPECT_TRUE((T3DVEC{0.0, 0, 0}) == (T3DVEC{-0.0, 0, 0}));
}

TEST(VectorKeys, ADifferenceInTheLastBitMakesAnotherKey) {
  const T3DVECF a = {1, 2, 3}, b = {1, 2, std::nextafter(3.0, 4.0)};
  EXPECT_TRUE(a < b);
  EXPECT_FALSE(b < a);
}

TEST(VectorKeys, ZeroAndNegativeZeroAreOneKey) {
  const T3DVECF a = {0.0, 1, -0.0}, b = {-0.0, 1, 0.0};
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);
}

TEST(VectorKeys, XCountsBeforeYBeforeZ) {
  EXPECT_TRUE((T3DVECF{1, 9, 9}) < (T3DVECF{2, 0, 0}));
  EXPECT_TRUE((T3DVECF{1, 1, 9}) < (T3DVECF{1, 2, 0}));
  EXPECT_TRUE((T3DVECF{1, 1, 1}) < (T3DVECF{1, 1, 2}));
  EXPECT_FALSE((T3DVECF{2, 0, 0}) < (T3DVECF{1, 9, 9}));
  EXPECT_FALSE((T3DVECF{1, 2, 0}) < (T3DVECF{1, 1, 9}));
}

TEST(VectorKeys, OrderStaysStrictWithValuesThatAreNotNumbers) {
  const double values[] = {kNan, -kInf, -1, 0, 1, kInf};
  std::vector<T3DVECF> keys;
  for (double x : values)
    for (double y : values)
      for (double z : {kNan, 0.0, 1.0}) keys.push_back({x, y, z});
  const auto same = [](const T3DVECF& a, const T3DVECF& b) { return !(a < b) && !(b < a); };
  for (const T3DVECF& a : keys) {
    EXPECT_FALSE(a < a);
    for (const T3DVECF& b : keys) {
      EXPECT_EQ(same(a, b), &a == &b);
      for (const T3DVECF& c : keys) {
        if (a < b && b < c) {
          EXPECT_TRUE(a < c);
        }
      }
    }
  }
}

TEST(Angle, AZeroVectorGivesItsSentinel) {
  const T3DVEC zero = {0, 0, 0}, a = {1, 2, 3};
  EXPECT_EQ(ang_Vec(zero, a), -1.0);
  EXPECT_EQ(ang_Vec(zero, zero), -1.0);
  EXPECT_EQ(ang_Vec(a, zero), -2.0);
  // A length that rounds to zero counts as zero.
  EXPECT_EQ(ang_Vec({1e-200, 0, 0}, a), -1.0);
}

TEST(Angle, ParallelVectorsGiveZero_WhereTheCosineRoundsAboveOne) {
  std::mt19937_64 random(1);
  SCOPED_TRACE("seed 1");
  int above = 0;
  for (int i = 0; i < 10000; ++i) {
    const T3DVEC a = rnd_Vec(random), b = 3.0 * a;
    if (!(dot(a, b) / (len(a) * len(b)) > 1.0)) continue;
    ++above;
    EXPECT_EQ(ang_Vec(a, b), 0.0);
    EXPECT_EQ(ang_Vec(a, -b), 57.29577951308232 * std::acos(-1.0));
  }
  EXPECT_GT(above, 100);
}

TEST(Angle, IsInDegrees) {
  EXPECT_DOUBLE_EQ(ang_Vec({1, 0, 0}, {0, 5, 0}), 90);
  EXPECT_DOUBLE_EQ(ang_Vec({1, 0, 0}, {-2, 0, 0}), 180);
  EXPECT_NEAR(ang_Vec({1, 0, 0}, {1, 1, 0}), 45, 1e-12);
  EXPECT_NEAR(ang_Vec({1, 0, 0}, {1, std::sqrt(3.0), 0}), 60, 1e-12);
}

TEST(Angle, WhatIsNotANumberStaysSo) {
  EXPECT_TRUE(std::isnan(ang_Vec({kNan, 0, 0}, {1, 0, 0})));
  EXPECT_TRUE(std::isnan(ang_Vec({1, 0, 0}, {0, kInf, 0})));
}

TEST(Spherical, AnglesRunFromZAndFromX) {
  expect_Near(sph_ToCar(0, 77), {0, 0, 1}, 1e-15);
  expect_Near(sph_ToCar(90, 0), {1, 0, 0}, 1e-15);
  expect_Near(sph_ToCar(90, 90), {0, 1, 0}, 1e-15);
  expect_Near(sph_ToCar(90, 180), {-1, 0, 0}, 1e-15);
  expect_Near(sph_ToCar(180, 0), {0, 0, -1}, 1e-15);
  const double p = 30 * 0.017453292519943295, a = 200 * 0.017453292519943295;
  EXPECT_EQ(sph_ToCar(30, 200),
            (T3DVEC{std::sin(p) * std::cos(a), std::sin(p) * std::sin(a), std::cos(p)}));
}

TEST(Spherical, RoundTripKeepsTheAngles) {
  for (int polar = 5; polar < 180; polar += 7)
    for (int azimuth = 0; azimuth < 360; azimuth += 11)
      expect_Near(car_ToSph(sph_ToCar(polar, azimuth)), {double(polar), double(azimuth), 1}, 1e-9);
}

TEST(Spherical, AzimuthIsNeverNegative) {
  EXPECT_DOUBLE_EQ(car_ToSph({0, -1, 0}).y, 270);
  EXPECT_EQ(car_ToSph({1, 0, 0}).y, 0);
  // Just below 0 rounds up to the whole turn.
  EXPECT_DOUBLE_EQ(car_ToSph({1, -1e-300, 0}).y, 360);
}

TEST(Spherical, ZIsTakenAsItStands) {
  // Not divided by the length: meant for unit vectors, with the length told beside the angles.
  const T3DVEC s = car_ToSph({3, 0, 0.5});
  EXPECT_DOUBLE_EQ(s.x, 60);
  EXPECT_EQ(s.z, std::sqrt(9.25));
  EXPECT_TRUE(std::isnan(car_ToSph({0, 0, 2}).x));
  EXPECT_EQ(car_ToSph({0, 0, 2}).z, 2);
}

struct Fold {
  double polar, azimuth, polar_out, azimuth_out;
};

TEST(Fold, BringsThePolarAngleIntoTheHalfTurn) {
  const Fold folds[] = {
      {-360, 10, 0, 10},    {-270, 10, 90, 10},   {-180, 10, 180, 190}, {-181, 10, 179, 10},
      {-90, 10, 90, 190},   {0, 10, 0, 10},       {90, 10, 90, 10},     {179, 10, 179, 10},
      {180, 10, 180, 190},  {270, 10, 90, 190},   {360, 10, 0, 190},    {361, 10, 361, 10},
      {-361, 10, -361, 10}, {kInf, 10, kInf, 10},
  };
  for (const Fold& f : folds) {
    double polar = -7, azimuth = -7;
    fold_Ang(f.polar, f.azimuth, polar, azimuth);
    EXPECT_EQ(polar, f.polar_out) << f.polar;
    EXPECT_EQ(azimuth, f.azimuth_out) << f.polar;
  }
}

TEST(Fold, KeepsTheDirection) {
  for (int polar = -360; polar <= 360; polar += 9) {
    double p = 0, a = 0;
    fold_Ang(polar, 33, p, a);
    expect_Near(sph_ToCar(p, a), sph_ToCar(polar, 33), 1e-12);
  }
}

TEST(Fold, LeavesWhatIsNotANumber) {
  double p = 0, a = 0;
  fold_Ang(kNan, 33, p, a);
  EXPECT_TRUE(std::isnan(p));
  EXPECT_EQ(a, 33);
}

TEST(Matrices, AFrameFillsTheColumns) {
  const T3DFRM frm = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}};
  T3DMAT mat;
  frm_ToMat(mat, frm);
  const double expected[16] = {1, 4, 7, 10, 2, 5, 8, 11, 3, 6, 9, 12, 0, 0, 0, 1};
  for (int i = 0; i < 16; ++i) EXPECT_EQ(mat.m[i], expected[i]) << i;
  mat.m[12] = mat.m[15] = 77;  // the last row is not read
  T3DFRM back;
  mat_ToFrm(mat, back);
  expect_Same(back, frm);
}

TEST(Matrices, TheIdentityHasAUnitDiagonal) {
  T3DMAT mat;
  std::memset(&mat, 0x55, sizeof mat);
  idn_Mat(mat);
  for (int i = 0; i < 16; ++i) EXPECT_EQ(mat.m[i], i % 5 == 0 ? 1.0 : 0.0) << i;
}

TEST(Matrices, RigidInverse_UndoesAnOrthonormalFrame) {
  std::mt19937_64 random(2);
  SCOPED_TRACE("seed 2");
  for (int n = 0; n < 100; ++n) {
    const T3DVEC origin = rnd_Vec(random), direction = rnd_Vec(random);
    T3DMAT mat, inverse;
    frm_ToMat(mat, frm_Ray({origin, direction}));
    inverse = mat;
    inv_Rigid(inverse);
    for (int r = 0; r < 4; ++r) {
      for (int c = 0; c < 4; ++c) {
        double sum = 0;
        for (int k = 0; k < 4; ++k) sum += mat.m[4 * r + k] * inverse.m[4 * k + c];
        EXPECT_NEAR(sum, r == c, 1e-14);
      }
    }
  }
}

TEST(Matrices, RigidInverse_TransposesWhateverItGets) {
  T3DMAT mat = {{1, 2, 3, 10, 4, 5, 6, 20, 7, 8, 9, 30, 9, 9, 9, 9}};
  inv_Rigid(mat);
  const double expected[16] = {1, 4, 7, -300, 2, 5, 8, -360, 3, 6, 9, -420, 0, 0, 0, 1};
  for (int i = 0; i < 16; ++i) EXPECT_EQ(mat.m[i], expected[i]) << i;
}

TEST(Frames, LocalAndWorldUndoEachOther) {
  std::mt19937_64 random(3);
  SCOPED_TRACE("seed 3");
  for (int n = 0; n < 100; ++n) {
    const T3DVEC origin = rnd_Vec(random), direction = rnd_Vec(random), p = rnd_Vec(random);
    const T3DFRM frm = frm_Ray({origin, direction});
    expect_Near(to_World(frm, to_Local(frm, p)), p, 1e-14);
  }
}

TEST(Frames, World_AccumulatesZAndYThenXAndOrigin) {
  // Any other grouping of the four terms gives another sum.
  const T3DFRM frm = {{1e17, 0, 0}, {-1, 0, 0}, {1, 0, 0}, {-1e17, 0, 0}};
  EXPECT_EQ(to_World(frm, {1, 3, 10}).x, 7);
}

TEST(Frames, ArraysAndCornersFollowThePointRule) {
  const T3DFRM frm = frm_Ray({{1, 2, 3}, {0.3, -0.7, 0.2}});
  const T3DVEC p[3] = {{1, 0, 0}, {0, 2, 5}, {-4, 4, 9}};
  T3DVEC local[3] = {p[0], p[1], p[2]}, world[3] = {p[0], p[1], p[2]};
  to_Local(frm, local, 3);
  to_World(frm, world, 3);
  const T3DFAC f = to_Local(frm, T3DFAC{p[0], p[1], p[2]});
  EXPECT_EQ(f.a, local[0]);
  EXPECT_EQ(f.b, local[1]);
  EXPECT_EQ(f.c, local[2]);
  T3DVEC first[2] = {p[0], p[1]}, second[1] = {p[2]};
  TArrVec inner[3] = {{first, 2}, {nullptr, 5}, {second, 1}};
  TArrArrVec lines = {inner, 3};
  to_Local(frm, lines);
  EXPECT_EQ(first[0], local[0]);
  EXPECT_EQ(first[1], local[1]);
  EXPECT_EQ(second[0], local[2]);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(local[i], to_Local(frm, p[i]));
    EXPECT_EQ(world[i], to_World(frm, p[i]));
  }
}

TEST(Frames, ANullArrayIsPassedOver) {
  to_Local(kIdentity, static_cast<T3DVEC*>(nullptr), 5);
  to_World(kIdentity, static_cast<T3DVEC*>(nullptr), 5);
  TArrArrVec none = {nullptr, 5};
  to_Local(kIdentity, none);
  EXPECT_EQ(none.count, 5u);
}

TEST(Planes, ATriangleGivesItsFirstCornerAndUnitNormal) {
  const T3DRAY plane = pln_Tri({{1, 1, 5}, {3, 1, 5}, {1, 4, 5}});
  EXPECT_EQ(plane.org, (T3DVEC{1, 1, 5}));
  EXPECT_EQ(plane.dir, (T3DVEC{0, 0, 1}));
  EXPECT_EQ(pln_Tri({{1, 1, 1}, {1, 1, 1}, {2, 2, 2}}).dir, (T3DVEC{0, 0, 0}));
}

TEST(Planes, TheNormalisingCopyKeepsTheOrigin) {
  const T3DRAY ray = unit_Ray({{7, 8, 9}, {0, -4, 3}});
  EXPECT_EQ(ray.org, (T3DVEC{7, 8, 9}));
  EXPECT_EQ(ray.dir, (T3DVEC{0, -0.8, 0.6}));
}

TEST(FrameOfARay, AZeroDirectionGivesTheIdentityWithItsOriginAtZero) {
  expect_Same(frm_Ray({{7, 8, 9}, {0, 0, 0}}), kIdentity);
}

TEST(FrameOfARay, ATieSelectsTheLowerComponent) {
  const T3DFRM frm = frm_Ray({{7, 8, 9}, {1, 1, 1}});
  // x is dominant: X axis along (-2, 1, 1).
  const double s = std::sqrt(6.0);
  expect_Near(frm.x, {-2 / s, 1 / s, 1 / s}, 1e-15);
  EXPECT_EQ(frm.org, (T3DVEC{7, 8, 9}));
  expect_Near(frm_Ray({{}, {0, -1, 1}}).x, unit(T3DVEC{1, 1, 1}), 1e-15);
}

TEST(FrameOfARay, HasTheDirectionAsItsZAxis) {
  const T3DFRM frm = frm_Ray({{}, {0, 0, -2}});
  EXPECT_EQ(frm.z, (T3DVEC{0, 0, -1}));
  expect_Near(frm.x, unit(T3DVEC{1, 1, 0}), 1e-15);
  expect_Near(frm.y, cross(frm.z, frm.x), 0);
}

TEST(FrameOfARay, IsOrthonormalAndRightHanded) {
  std::mt19937_64 random(4);
  SCOPED_TRACE("seed 4");
  for (int n = 0; n < 1000; ++n) {
    const T3DVEC d = rnd_Vec(random);
    const T3DFRM frm = frm_Ray({{}, d});
    expect_Near(frm.z, unit(d), 1e-15);
    for (const T3DVEC& axis : {frm.x, frm.y, frm.z}) EXPECT_NEAR(len(axis), 1, 1e-14);
    EXPECT_NEAR(dot(frm.x, frm.y), 0, 1e-14);
    EXPECT_NEAR(dot(frm.y, frm.z), 0, 1e-14);
    EXPECT_NEAR(dot(frm.z, frm.x), 0, 1e-14);
    EXPECT_GT(dot(cross(frm.x, frm.y), frm.z), 0.99);
  }
}

TEST(FrameOfARay, ADirectionThatIsNotANumberGivesTheIdentity) {
  expect_Same(frm_Ray({{7, 8, 9}, {kNan, 1, 0}}), kIdentity);
  expect_Same(frm_Ray({{7, 8, 9}, {kInf, 1, 0}}), kIdentity);
}

TEST(Triangles, CornersWrapAndCoincidenceIsByCoordinatesOrByIndex) {
  const T3DTRI t = {4, 5, 6};
  for (uint32_t k = 0; k < 6; ++k) EXPECT_EQ(corner(t, k), 4 + k % 3);
  EXPECT_TRUE(has_Vtx(t, 6));
  EXPECT_FALSE(has_Vtx(t, 7));
  EXPECT_FALSE(is_Flat(t));
  EXPECT_TRUE(is_Flat(T3DTRI{1, 2, 1}));
  EXPECT_TRUE(is_Flat(T3DFAC{{0, 0, 0}, {1, 0, 0}, {-0.0, 0, 0}}));
  EXPECT_FALSE(is_Flat(T3DFAC{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
}

TEST(Triangles, AreaAndCentroid) {
  const T3DFAC f = {{0, 0, 1}, {4, 0, 1}, {0, 3, 1}};
  EXPECT_EQ(area_Tri(f), 6);
  EXPECT_EQ(area_Tri(T2DVEC{0, 0}, T2DVEC{0, 3}, T2DVEC{4, 0}), 6);
  EXPECT_EQ(cen_Tri(f), (T3DVEC{4.0 / 3.0, 1, 1}));
}

}  // namespace
}  // namespace undercut
