#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "foundation/primitives.h"
#include "tests/reference/random_geometry.h"

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

// ---- Ray against quadrilateral and against the faces of a box -----------------------------------

constexpr T3DVEC kSquare[4] = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}};

TEST(HitQuadX, LooksForward_AtAnyDistanceFromEitherSide) {
  for (const double distance : {1e-9, 0.5, 2.0, 1e9}) {
    for (const double up : {distance, -distance}) {
      EXPECT_TRUE(hit_QuadX({{3, 3, up}, {0, 0, -up}}, kSquare)) << up;
      EXPECT_FALSE(hit_QuadX({{3, 3, up}, {0, 0, up}}, kSquare)) << up;
      EXPECT_FALSE(hit_QuadX({{5, 3, up}, {0, 0, -up}}, kSquare)) << up;
    }
  }
  EXPECT_TRUE(hit_QuadX({{3, 3, 1e9}, {0, 0, -1}}, kSquare));
}

TEST(HitQuadX, EdgesAndCorners_Count) {
  EXPECT_TRUE(hit_QuadX({{4, 2, 1}, {0, 0, -1}}, kSquare));
  EXPECT_TRUE(hit_QuadX({{4, 4, -1}, {0, 0, 1}}, kSquare));
}

TEST(HitQuadX, RayThatStartsInThePlane_HitsFromInsideOrWithinItsOwnLength) {
  EXPECT_TRUE(hit_QuadX({{1, 1, 0}, {0, 0, 1}}, kSquare));
  EXPECT_TRUE(hit_QuadX({{4, 1, 0}, {1, 0, 0}}, kSquare));
  EXPECT_FALSE(hit_QuadX({{-1, 1, 0}, {1, 0, 1}}, kSquare));
  EXPECT_TRUE(hit_QuadX({{-1, 1, 0}, {2, 0, 0}}, kSquare));
  EXPECT_FALSE(hit_QuadX({{-1, 1, 0}, {-2, 0, 0}}, kSquare));
  EXPECT_FALSE(hit_QuadX({{-1, 1, 0}, {0.5, 0, 0}}, kSquare));
}

TEST(HitQuadX, DegenerateQuadrilateral_IsHitByEveryRay) {
  const T3DVEC line[4] = {{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {0, 0, 0}};
  EXPECT_TRUE(hit_QuadX({{5, 6, 7}, {1, 1, 1}}, line));
}

TEST(HitQuadX, AgreesWithItsTwoTriangles_InGeneralPosition) {
  const uint64_t seed = 2415;
  SCOPED_TRACE(seed);
  Random random(seed);
  int hits = 0;
  for (int i = 0; i < 100000; ++i) {
    const T3DVEC org = random.triple(-1, 1), u = random.triple(-1, 1), v = random.triple(-1, 1);
    // A kite: convex, since its diagonals cross.
    const T3DVEC q[4] = {org - random.real(0.1, 1) * u, org - random.real(0.1, 1) * v,
                         org + random.real(0.1, 1) * u, org + random.real(0.1, 1) * v};
    const T3DVEC start = random.triple(-2, 2);
    const T3DRAY ray = {start, random.real(-1, 3) * (org + random.triple(-0.5, 0.5) - start)};
    const bool hit = hit_Tri(ray, {q[0], q[1], q[2]}) || hit_Tri(ray, {q[2], q[3], q[0]});
    ASSERT_EQ(hit_QuadX(ray, q), hit) << i;
    hits += hit;
  }
  EXPECT_GT(hits, 10000);
}

TEST(HitBoxX, OrgInsideOrOnTheBoundary_IsAHitInAnyDirection) {
  const C3DAABB box = make_Box({1, 1, 1}, {2, 2, 2});
  EXPECT_TRUE(hit_BoxX({{1.5, 1.5, 1.5}, {0, 0, 1}}, box));
  EXPECT_TRUE(hit_BoxX({{1.5, 1.5, 2}, {0, 0, 1}}, box));
  EXPECT_TRUE(hit_BoxX({{1.5, 1.5, 1.5}, {0, 0, 0}}, box));
}

TEST(HitBoxX, EachFaceAloneIsHit_FromOutside) {
  const C3DAABB box = make_Box({1, 1, 1}, {2, 2, 2});
  const T3DVEC middle = {1.5, 1.5, 1.5};
  for (const T3DVEC& out :
       {T3DVEC{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}}) {
    EXPECT_TRUE(hit_BoxX({middle + 5.0 * out, -out}, box));
    EXPECT_FALSE(hit_BoxX({middle + 5.0 * out, out}, box));
    EXPECT_TRUE(hit_BoxX({middle + 5.0 * out, -1e-3 * out}, box));
  }
}

TEST(HitBoxX, FlatBox_IsHitByEveryRay) {
  EXPECT_TRUE(hit_BoxX({{9, 9, 9}, {1, 2, 3}}, make_Box({0, 0, 1}, {1, 1, 1})));
}

TEST(HitBoxX, AgreesWithHitBox_InGeneralPosition) {
  const uint64_t seed = 2416;
  SCOPED_TRACE(seed);
  Random random(seed);
  int hits = 0;
  for (int i = 0; i < 100000; ++i) {
    const C3DAABB box = make_Box(random.triple(-1, 1), random.triple(-1, 1));
    const T3DVEC start = random.triple(-2, 2);
    const T3DRAY ray = {start, random.real(-1, 3) * (box.centre() + random.triple(-1, 1) - start)};
    const bool hit = hit_Box(ray, box);
    ASSERT_EQ(hit_BoxX(ray, box), hit) << i;
    hits += hit;
  }
  EXPECT_GT(hits, 10000);
}

// ---- Segments ----------------------------------------------------------------------------------

using SegmentTest = bool (*)(const T2DVEC&, const T2DVEC&, const T2DVEC&, const T2DVEC&);

class SegmentAgainstSegment : public testing::TestWithParam<SegmentTest> {
 protected:
  // The answer, which must not depend on the direction of either segment.
  int hits(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c, const T2DVEC& d) {
    const bool hit = GetParam()(a, b, c, d);
    EXPECT_EQ(GetParam()(b, a, c, d), hit);
    EXPECT_EQ(GetParam()(a, b, d, c), hit);
    EXPECT_EQ(GetParam()(c, d, a, b), hit);
    return hit;
  }
};

TEST_P(SegmentAgainstSegment, CrossingAndTouching_AreHits) {
  EXPECT_TRUE(hits({0, 0}, {2, 2}, {0, 2}, {2, 0}));
  EXPECT_TRUE(hits({0, 0}, {2, 0}, {1, 0}, {1, 5}));
  EXPECT_TRUE(hits({0, 0}, {2, 0}, {2, 0}, {3, 5}));
  EXPECT_TRUE(hits({0, 0}, {2, 0}, {0, 0}, {2, 0}));
}

TEST_P(SegmentAgainstSegment, CollinearSegments_AreHitsWhereTheyMeet) {
  EXPECT_TRUE(hits({0, 0}, {2, 0}, {1, 0}, {5, 0}));
  EXPECT_TRUE(hits({0, 0}, {9, 0}, {1, 0}, {5, 0}));
  EXPECT_TRUE(hits({0, 0}, {2, 0}, {2, 0}, {5, 0}));
  EXPECT_FALSE(hits({0, 0}, {2, 0}, {3, 0}, {5, 0}));
  EXPECT_FALSE(hits({1, 0}, {1, 2}, {1, 3}, {1, 5}));
}

TEST_P(SegmentAgainstSegment, SegmentsApart_AreNoHits) {
  EXPECT_FALSE(hits({0, 0}, {2, 0}, {0, 1}, {2, 1}));
  EXPECT_FALSE(hits({0, 0}, {2, 0}, {1, 1}, {1, 5}));
  EXPECT_FALSE(hits({0, 0}, {2, 0}, {3, -1}, {3, 1}));
  EXPECT_FALSE(hits({0, 0}, {2, 0}, {3, 0}, {4, 1}));
}

TEST_P(SegmentAgainstSegment, RandomSegments_CrossWhereTheirParametersSaySo) {
  const uint64_t seed = 2417;
  SCOPED_TRACE(seed);
  Random random(seed);
  int crossings = 0;
  for (int i = 0; i < 20000; ++i) {
    const T2DVEC a = random.pair(-1, 1), b = random.pair(-1, 1);
    const T2DVEC c = random.pair(-1, 1), d = random.pair(-1, 1);
    double s, t;
    ASSERT_TRUE(lin_Solve2(b.x - a.x, c.x - d.x, b.y - a.y, c.y - d.y, c.x - a.x, c.y - a.y, s, t));
    const double off = std::fmin(std::fmin(std::fabs(s), std::fabs(1 - s)),
                                 std::fmin(std::fabs(t), std::fabs(1 - t)));
    if (off < 1e-9) continue;
    const bool crosses = s > 0 && s < 1 && t > 0 && t < 1;
    ASSERT_EQ(hits(a, b, c, d), crosses);
    crossings += crosses;
  }
  EXPECT_GT(crossings, 1000);
}

std::string name_Form(const testing::TestParamInfo<SegmentTest>& info) {
  return info.index == 0 ? "plain" : "predicate";
}
INSTANTIATE_TEST_SUITE_P(Hits, SegmentAgainstSegment, testing::Values(&hit_Seg2, &hit_Seg2X),
                         name_Form);

// ---- Planes ------------------------------------------------------------------------------------

TEST(HitZ, LiftsAPointOntoThePlane) {
  T3DVEC out;
  EXPECT_EQ(hit_Z({{0, 0, 5}, {0, 0, 1}}, {1, 2}, out), '-');
  EXPECT_EQ(out, (T3DVEC{1, 2, 5}));
  EXPECT_EQ(hit_Z({{0, 0, -5}, {0, 0, -2}}, {1, 2}, out), '+');
  EXPECT_EQ(out, (T3DVEC{1, 2, -5}));
  EXPECT_EQ(hit_Z({{0, 0, 0}, {1, 0, -1}}, {3, 7}, out), '-');
  EXPECT_EQ(out, (T3DVEC{3, 7, 3}));
  EXPECT_EQ(hit_Z({{0, 0, 0}, {1, 0, 1}}, {0, 7}, out), 'x');
  EXPECT_EQ(out, (T3DVEC{0, 7, 0}));
}

TEST(HitZ, PlaneAlongZ_TellsWhetherThePointLiesInIt) {
  T3DVEC out;
  EXPECT_EQ(hit_Z({{3, 0, 9}, {1, 0, 0}}, {3, 7}, out), 'l');
  EXPECT_EQ(out, (T3DVEC{3, 7, 0}));
  EXPECT_EQ(hit_Z({{3, 0, 9}, {1, 0, -0.0}}, {4, 7}, out), '0');
  EXPECT_EQ(out, (T3DVEC{4, 7, 0}));
}

TEST(HitZ, PlaneWithoutNormal_HoldsNoPoint) {
  T3DVEC out;
  EXPECT_EQ(hit_Z({{3, 7, 0}, {0, 0, 0}}, {3, 7}, out), '0');
}

TEST(HitZ, WithoutANumber_IsAQuestion) {
  T3DVEC out;
  EXPECT_EQ(hit_Z({{3, kNan, 0}, {0, 1, 1}}, {3, 7}, out), '?');
}

TEST(CutTri, FindsThePointOnThePlane_InsideTheTriangleOrNotAheadOrBehind) {
  T3DVEC out;
  EXPECT_TRUE(cut_Tri({{1, 1, 8}, {0, 0, -2}}, kFlat, out));
  EXPECT_EQ(out, (T3DVEC{1, 1, 0}));
  EXPECT_TRUE(cut_Tri({{50, 1, 8}, {0, 0, 2}}, kFlat, out));
  EXPECT_EQ(out, (T3DVEC{50, 1, 0}));
}

TEST(CutTri, LineAlongThePlaneOrTriangleWithoutArea_GivesNone) {
  T3DVEC out = {7, 7, 7};
  EXPECT_FALSE(cut_Tri({{1, 1, 8}, {1, 1, 0}}, kFlat, out));
  EXPECT_FALSE(cut_Tri({{1, 1, 0}, {1, 1, 0}}, kFlat, out));
  EXPECT_FALSE(cut_Tri({{1, 1, 8}, {0, 0, 1}}, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, out));
  EXPECT_EQ(out, (T3DVEC{7, 7, 7}));
}

TEST(LinSolve2, SolvesByCramersRule) {
  double x = 0, y = 0;
  EXPECT_TRUE(lin_Solve2(2, 1, 1, 3, 5, 10, x, y));
  EXPECT_EQ(x, 1);
  EXPECT_EQ(y, 3);
  EXPECT_TRUE(lin_Solve2(0, 2, 4, 0, 6, 8, x, y));
  EXPECT_EQ(x, 2);
  EXPECT_EQ(y, 3);
}

TEST(LinSolve2, DeterminantOfExactlyZero_HasNoSolution) {
  double x = 7, y = 8;
  EXPECT_FALSE(lin_Solve2(1, 2, 2, 4, 1, 1, x, y));
  EXPECT_EQ(x, 7);
  EXPECT_EQ(y, 8);
  EXPECT_TRUE(lin_Solve2(1e-200, 0, 0, 1e-100, 1e-200, 1e-100, x, y));
}

// ---- Any value at all --------------------------------------------------------------------------

TEST(Hits, EveryValueOfADouble_IsAnswered) {
  const uint64_t seed = 2418;
  SCOPED_TRACE(seed);
  Random random(seed);
  const auto pair = [&] { return T2DVEC{random.special(), random.special()}; };
  const auto triple = [&] { return T3DVEC{random.special(), random.special(), random.special()}; };
  int answers = 0;
  for (int i = 0; i < 100000; ++i) {
    const T3DRAY ray = {triple(), triple()};
    const T3DVEC quad[4] = {triple(), triple(), triple(), triple()};
    T3DVEC out;
    answers += hit_QuadX(ray, quad) + hit_BoxX(ray, make_Box(quad[0], quad[1]));
    answers += hit_Seg2(pair(), pair(), pair(), pair()) + hit_Seg2X(pair(), pair(), pair(), pair());
    answers += cut_Tri(ray, {quad[0], quad[1], quad[2]}, out) + (hit_Z(ray, pair(), out) != '?');
  }
  EXPECT_GT(answers, 0);
}

}  // namespace
}  // namespace undercut
