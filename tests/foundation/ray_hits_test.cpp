#include "foundation/ray_hits.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "foundation/primitives.h"
#include "tests/reference/random_geometry.h"
#include "tests/reference/ray_hits.h"

namespace undercut {
namespace {

using reference::Random;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr T3DFAC kFlat = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}};

C3DAABB make_Box(const T3DVEC& p, const T3DVEC& q) {
  C3DAABB box;
  box.add(p);
  box.add(q);
  return box;
}

// ---- Ray against box ---------------------------------------------------------------------------

TEST(HitBox, TakesABoxInFrontOrRoundTheOrigin_NotOneBehind) {
  const C3DAABB box = make_Box({1, 1, 1}, {2, 2, 2});
  EXPECT_TRUE(hit_Box({{0, 0, 0}, {1, 1, 1}}, box));
  EXPECT_TRUE(hit_Box({{1.5, 1.5, 1.5}, {0.3, -2, 1}}, box));
  EXPECT_FALSE(hit_Box({{0, 0, 0}, {-1, -1, -1}}, box));
  EXPECT_FALSE(hit_Box({{0, 0, 0}, {1, 1, -1}}, box));
  EXPECT_FALSE(hit_Box({{3, 3, 3}, {1, 1, 1}}, box));
}

TEST(HitBox, ReachesAnyDistance) {
  const C3DAABB box = make_Box({1, 1, 1}, {2, 2, 2});
  EXPECT_TRUE(hit_Box({{1.5, 1.5, -1e12}, {0, 0, 1e-6}}, box));
  EXPECT_TRUE(hit_Box({{1.5, 1.5, 1 - 1e-12}, {0, 0, 1e6}}, box));
}

TEST(HitBox, ZeroComponentPasses_WithOrgExactlyOnEitherBound) {
  const C3DAABB box = make_Box({1, 1, 1}, {2, 2, 2});
  for (const double at : {1.0, 2.0}) {
    EXPECT_TRUE(hit_Box({{at, 1.5, 0}, {0, 0, 1}}, box)) << at;
    EXPECT_TRUE(hit_Box({{1.5, at, 0}, {0, -0.0, 1}}, box)) << at;
    EXPECT_TRUE(hit_Box({{0, at, at}, {1, 0, 0}}, box)) << at;
  }
  EXPECT_FALSE(hit_Box({{std::nextafter(1.0, 0.0), 1.5, 0}, {0, 0, 1}}, box));
  EXPECT_FALSE(hit_Box({{std::nextafter(2.0, 3.0), 1.5, 0}, {0, 0, 1}}, box));
}

TEST(HitBox, FaceThatTheRayLeavesAtOrg_IsNotHit) {
  const C3DAABB box = make_Box({1, 1, 1}, {2, 2, 2});
  EXPECT_FALSE(hit_Box({{1.5, 1.5, 2}, {0, 0, 1}}, box));
  EXPECT_TRUE(hit_Box({{1.5, 1.5, 2}, {0, 0, -1}}, box));
}

TEST(HitBox, FlatBox_IsHitLikeAnyOther) {
  const C3DAABB flat = make_Box({0, 0, 1}, {1, 1, 1});
  EXPECT_TRUE(hit_Box({{0.5, 0.5, 0}, {0, 0, 1}}, flat));
  EXPECT_TRUE(hit_Box({{-1, 0.5, 1}, {1, 0, 0}}, flat));
  EXPECT_FALSE(hit_Box({{-1, 0.5, 0.9}, {1, 0, 0}}, flat));
}

TEST(HitBox, WithoutADirection_TakesTheBoxesRoundOrg) {
  const C3DAABB box = make_Box({1, 1, 1}, {2, 2, 2});
  EXPECT_TRUE(hit_Box({{1, 2, 1.5}, {0, 0, 0}}, box));
  EXPECT_FALSE(hit_Box({{1, 2, 2.5}, {0, 0, 0}}, box));
}

// A coordinate that is on one of the few values where something may go wrong, or an ordinary one.
double draw_Coordinate(Random& random, double ordinary, double odd) {
  if (random.chance(odd)) return random.special();
  return random.chance(ordinary) ? random.real(-1, 1)
                                 : 0.5 * static_cast<double>(random.integer(-2, 2));
}

TEST(HitBox, AgreesWithItsStepsInFull) {
  const uint64_t seed = 2411;
  SCOPED_TRACE(seed);
  Random random(seed);
  int hits = 0;
  for (int i = 0; i < 1000000; ++i) {
    const double ordinary = 0.25 * (i % 5), odd = i % 3 == 0 ? 0.15 : 0.0;
    const auto draw = [&] { return draw_Coordinate(random, ordinary, odd); };
    const T3DRAY ray = {{draw(), draw(), draw()}, {draw(), draw(), draw()}};
    C3DAABB box;
    box.min = {draw(), draw(), draw()};
    box.max = {draw(), draw(), draw()};
    if (i % 7 != 0) {
      const C3DAABB given = box;
      box.reset();
      box.add(given.min);
      box.add(given.max);
    }
    const bool hit = reference::hit_Box(ray, box);
    ASSERT_EQ(hit_Box(ray, box), hit) << i;
    hits += hit;
  }
  EXPECT_GT(hits, 50000);
  EXPECT_LT(hits, 900000);
}

// ---- Ray against triangle ----------------------------------------------------------------------

TEST(HitTri, TakesATriangleInFront_FromEitherSide) {
  EXPECT_TRUE(hit_Tri({{1, 1, 1}, {0, 0, -1}}, kFlat));
  EXPECT_TRUE(hit_Tri({{1, 1, -1}, {0, 0, 1}}, kFlat));
  EXPECT_FALSE(hit_Tri({{1, 1, 1}, {0, 0, 1}}, kFlat));
  EXPECT_FALSE(hit_Tri({{1, 1, -1}, {0, 0, -1}}, kFlat));
  EXPECT_FALSE(hit_Tri({{3, 3, 1}, {0, 0, -1}}, kFlat));
}

TEST(HitTri, LooksForward_AtAnyDistance) {
  for (const double distance : {1e-9, 1e-3, 0.999, 1.0, 1.001, 1e3, 1e9}) {
    EXPECT_TRUE(hit_Tri({{1, 1, distance}, {0, 0, -1}}, kFlat)) << distance;
    EXPECT_FALSE(hit_Tri({{1, 1, distance}, {0, 0, 1}}, kFlat)) << distance;
    EXPECT_FALSE(hit_Tri({{3, 3, distance}, {0, 0, -1}}, kFlat)) << distance;
  }
}

TEST(HitTri, TriangleThatFacesAway_BlocksItself) {
  const T3DVEC lifted = cen_Tri(kFlat) + 0.05 * nml_Tri(kFlat);
  EXPECT_TRUE(hit_Tri({lifted, {0.1, 0, -1}}, kFlat));
  EXPECT_FALSE(hit_Tri({lifted, {0.1, 0, 1}}, kFlat));
}

TEST(HitTri, RayThroughASharedEdgeOrCorner_HitsAllTrianglesAtIt) {
  const T3DFAC next = {{4, 0, 0}, {4, 4, 0}, {0, 4, 0}};
  for (const double up : {1.0, -1.0}) {
    EXPECT_TRUE(hit_Tri({{2, 2, up}, {0, 0, -up}}, kFlat));
    EXPECT_TRUE(hit_Tri({{2, 2, up}, {0, 0, -up}}, next));
    EXPECT_TRUE(hit_Tri({{4, 0, up}, {0, 0, -up}}, kFlat));
    EXPECT_TRUE(hit_Tri({{4, 0, up}, {0, 0, -up}}, next));
  }
}

TEST(HitTri, DegenerateTriangle_IsHitByEveryRay) {
  const uint64_t seed = 2412;
  SCOPED_TRACE(seed);
  Random random(seed);
  const T3DVEC a = {1, 2, 3}, b = {2, 4, 6};
  for (int i = 0; i < 1000; ++i) {
    const T3DRAY ray = {random.triple(-100, 100), random.triple(-1, 1)};
    ASSERT_TRUE(hit_Tri(ray, {a, a, a}));
    ASSERT_TRUE(hit_Tri(ray, {a, b, b}));
    ASSERT_TRUE(hit_Tri(ray, {a, b, {3, 6, 9}}));
  }
}

TEST(HitTri, RayThatStartsOnTheTriangle_HitsIt) {
  for (const T3DVEC& org : {T3DVEC{1, 1, 0}, {2, 2, 0}, {2, 0, 0}, {4, 0, 0}}) {
    EXPECT_TRUE(hit_Tri({org, {0, 0, 1}}, kFlat));
    EXPECT_TRUE(hit_Tri({org, {0, 0, -1}}, kFlat));
    EXPECT_TRUE(hit_Tri({org, {1, 1, 0}}, kFlat));
  }
}

TEST(HitTri, RayThatLeavesThePlaneBesideTheTriangle_Misses) {
  EXPECT_FALSE(hit_Tri({{-1, 1, 0}, {1, 0, 0.001}}, kFlat));
  EXPECT_FALSE(hit_Tri({{-1, 1, 0}, {1, 0, -1}}, kFlat));
}

TEST(HitTri, RayInThePlane_HitsForwardAtAnyDistance) {
  for (const double distance : {0.001, 1.0, 5.0, 1e6}) {
    const T3DVEC org = {-distance, 1, 0};
    EXPECT_TRUE(hit_Tri({org, {1, 0, 0}}, kFlat)) << distance;
    EXPECT_TRUE(hit_Tri({org, {1e-3, 0, 0}}, kFlat)) << distance;
    EXPECT_FALSE(hit_Tri({org, {-1, 0, 0}}, kFlat)) << distance;
    EXPECT_FALSE(hit_Tri({org, {0, 1, 0}}, kFlat)) << distance;
  }
  EXPECT_TRUE(hit_Tri({{-7, 4, 0}, {1, 0, 0}}, kFlat));  // through the corner alone
  EXPECT_TRUE(hit_Tri({{-7, 0, 0}, {1, 0, 0}}, kFlat));  // along an edge
  EXPECT_FALSE(hit_Tri({{-7, 4.001, 0}, {1, 0, 0}}, kFlat));
}

TEST(HitTri, RayInThePlane_IsJudgedOnEachDominantAxis) {
  const auto turn = [](const T3DVEC& p) { return T3DVEC{p.y, p.z, p.x}; };
  T3DFAC f = kFlat;
  T3DRAY in = {{-7, 1, 0}, {1, 0, 0}}, out = {{-7, 1, 0}, {-1, 0, 0}};
  for (int k = 0; k < 3; ++k) {
    EXPECT_TRUE(hit_Tri(in, f)) << k;
    EXPECT_FALSE(hit_Tri(out, f)) << k;
    f = {turn(f.a), turn(f.b), turn(f.c)};
    in = {turn(in.org), turn(in.dir)};
    out = {turn(out.org), turn(out.dir)};
  }
}

TEST(HitTri, TriangleWithoutNumbers_IsHitByEveryRay) {
  EXPECT_TRUE(hit_Tri({{1, 1, 1}, {0, 0, 1}}, {{kNan, 0, 0}, {1, 0, 0}, {0, 1, 0}}));
  EXPECT_TRUE(hit_Tri({{1, 1, 1}, {0, 0, 1}}, {{0, 0, 0}, {1, 0, kNan}, {0, 1, 0}}));
}

TEST(HitTri, AgreesWithItsStepsInFull) {
  const uint64_t seed = 2413;
  SCOPED_TRACE(seed);
  Random random(seed);
  int hits = 0;
  for (int i = 0; i < 1000000; ++i) {
    const double ordinary = 0.25 * (i % 5), odd = i % 3 == 0 ? 0.1 : 0.0;
    const auto draw = [&] { return draw_Coordinate(random, ordinary, odd); };
    const T3DRAY ray = {{draw(), draw(), draw()}, {draw(), draw(), draw()}};
    const T3DFAC f = {{draw(), draw(), draw()}, {draw(), draw(), draw()}, {draw(), draw(), draw()}};
    const bool hit = reference::hit_Tri(ray, f);
    ASSERT_EQ(hit_Tri(ray, f), hit) << i;
    hits += hit;
  }
  EXPECT_GT(hits, 100000);
  EXPECT_LT(hits, 900000);
}

// T. Moeller, B. Trumbore, Fast, Minimum Storage Ray/Triangle Intersection, 1997. `margin` tells
// how far the answer is from the other one.
bool hit_Barycentric(const T3DRAY& ray, const T3DFAC& f, double& margin) {
  const T3DVEC edge_1 = f.b - f.a, edge_2 = f.c - f.a;
  const T3DVEC p = cross(ray.dir, edge_2);
  const double det = dot(edge_1, p);
  const T3DVEC s = ray.org - f.a;
  const double u = dot(s, p) / det;
  const T3DVEC q = cross(s, edge_1);
  const double v = dot(ray.dir, q) / det;
  const double t = dot(edge_2, q) / det;
  margin = std::fmin(std::fmin(std::fabs(u), std::fabs(v)), std::fabs(1 - u - v));
  margin = std::fmin(margin, std::fmin(std::fabs(t), std::fabs(det)));
  return u >= 0 && v >= 0 && u + v <= 1 && t > 0;
}

TEST(HitTri, AgreesWithAnIndependentForm_InGeneralPosition) {
  const uint64_t seed = 2414;
  SCOPED_TRACE(seed);
  Random random(seed);
  int compared = 0, hits = 0, near = 0, far = 0, from_above = 0;
  for (int i = 0; i < 100000; ++i) {
    const T3DFAC f = {random.triple(-1, 1), random.triple(-1, 1), random.triple(-1, 1)};
    // Towards a point near the triangle, from a thousandth to a thousand units away.
    const T3DVEC target = cen_Tri(f) + random.triple(-0.5, 0.5);
    const T3DVEC dir = random.real(0.1, 10) * unit(random.triple(-1, 1));
    const double distance = std::pow(10, random.real(-3, 3));
    const T3DRAY ray = {target - distance * unit(dir), random.chance(0.8) ? dir : -dir};
    double margin;
    const bool hit = hit_Barycentric(ray, f, margin);
    if (margin < 1e-9) continue;
    ASSERT_EQ(hit_Tri(ray, f), hit) << i;
    ++compared;
    hits += hit;
    near += hit && distance < 0.1;
    far += hit && distance > 10;
    from_above += hit && sgn_Tri3(f, ray.org) > 0;
  }
  EXPECT_GT(compared, 99000);
  EXPECT_GT(near, 1000);
  EXPECT_GT(far, 1000);
  EXPECT_GT(from_above, hits / 3);
  EXPECT_LT(from_above, 2 * hits / 3);
}

}  // namespace
}  // namespace undercut
