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

// ---- Sides -------------------------------------------------------------------------------------

TEST(Classifiers, Turn_IsOne_ToTheLeft) {
  EXPECT_EQ(sgn_Turn({0, 0}, {1, 0}, {0, 1}), 1);
  EXPECT_EQ(sgn_Turn({0, 0}, {0, 1}, {1, 0}), -1);
  EXPECT_EQ(sgn_Turn({0, 0}, {1, 1}, {3, 3}), 0);
  EXPECT_EQ(cmp_Seg2X({0, 0}, {1, 0}, {0, 1}), 1);
  EXPECT_EQ(cmp_Seg2X({0, 0}, {0, 1}, {1, 0}), -1);
  EXPECT_EQ(cmp_Seg2X({0, 0}, {1, 1}, {3, 3}), 0);
}

TEST(Classifiers, Turn_ComparesThePlainSums) {
  const uint64_t seed = 2401;
  SCOPED_TRACE(seed);
  Random random(seed);
  int straight = 0;
  for (int i = 0; i < 100000; ++i) {
    const T2DVEC a = random.pair(-1, 1), b = random.pair(-1, 1);
    const T2DVEC c = i % 2 ? a + random.real(-2, 2) * (b - a) : random.pair(-1, 1);
    double left = a.x * b.y;
    left += b.x * c.y;
    left += c.x * a.y;
    double right = a.x * c.y;
    right += b.x * a.y;
    right += c.x * b.y;
    ASSERT_EQ(sgn_Turn(a, b, c), left > right ? 1 : right > left ? -1 : 0);
    straight += left == right;
  }
  EXPECT_GT(straight, 100);
}

TEST(Classifiers, SideOfATriangle_IsOne_Above) {
  const T3DFAC f = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  EXPECT_EQ(sgn_Tri3(f, {5, 5, 1}), 1);
  EXPECT_EQ(sgn_Tri3(f, {5, 5, -1}), -1);
  EXPECT_EQ(sgn_Tri3(f, {5, 5, 0}), 0);
}

TEST(Classifiers, SideByThePredicate_IsTheOpposite) {
  const uint64_t seed = 2402;
  SCOPED_TRACE(seed);
  Random random(seed);
  for (int i = 0; i < 10000; ++i) {
    const T3DFAC f = {random.triple(-1, 1), random.triple(-1, 1), random.triple(-1, 1)};
    const T3DVEC p = random.triple(-1, 1);
    ASSERT_EQ(sgn_Tri3X(f, p), -sgn_Tri3(f, p));
  }
}

TEST(Classifiers, SideOfAPlane_IsOne_InFrontOfIt) {
  const T3DRAY plane = {{0, 0, 2}, {0, 0, 3}};
  EXPECT_EQ(sgn_Pln(plane, {9, 9, 2.5}), 1);
  EXPECT_EQ(sgn_Pln(plane, {9, 9, 1.5}), -1);
  EXPECT_EQ(sgn_Pln(plane, {9, 9, 2}), 0);
}

// ---- Points against segments -------------------------------------------------------------------

class PointAgainstSegment
    : public testing::TestWithParam<char (*)(const T2DVEC&, const T2DVEC&, const T2DVEC&)> {
 protected:
  char classify(const T2DVEC& p, const T2DVEC& e, const T2DVEC& f) { return GetParam()(p, e, f); }
};

TEST_P(PointAgainstSegment, LeftIsPlus_RightIsMinus) {
  EXPECT_EQ(classify({1, 1}, {0, 0}, {2, 0}), '+');
  EXPECT_EQ(classify({1, -1}, {0, 0}, {2, 0}), '-');
  EXPECT_EQ(classify({1, 1}, {2, 0}, {0, 0}), '-');
}

TEST_P(PointAgainstSegment, EndPoints_AreAAndB) {
  EXPECT_EQ(classify({0, 0}, {0, 0}, {2, 1}), 'a');
  EXPECT_EQ(classify({2, 1}, {0, 0}, {2, 1}), 'b');
}

TEST_P(PointAgainstSegment, CollinearPoints_AreOrderedAlongX) {
  EXPECT_EQ(classify({-2, -1}, {0, 0}, {4, 2}), '<');
  EXPECT_EQ(classify({2, 1}, {0, 0}, {4, 2}), '1');
  EXPECT_EQ(classify({6, 3}, {0, 0}, {4, 2}), '>');
  EXPECT_EQ(classify({-2, -1}, {4, 2}, {0, 0}), '>');
  EXPECT_EQ(classify({2, 1}, {4, 2}, {0, 0}), '1');
  EXPECT_EQ(classify({6, 3}, {4, 2}, {0, 0}), '<');
}

TEST_P(PointAgainstSegment, CollinearPoints_AreOrderedAlongY_WhereTheSegmentIsVertical) {
  EXPECT_EQ(classify({1, -1}, {1, 0}, {1, 2}), '<');
  EXPECT_EQ(classify({1, 1}, {1, 0}, {1, 2}), '1');
  EXPECT_EQ(classify({1, -1}, {1, 2}, {1, 0}), '>');
  EXPECT_EQ(classify({1, 3}, {1, 2}, {1, 0}), '<');
}

TEST_P(PointAgainstSegment, BeyondTheSecondEndOfAVerticalSegment_IsGreater) {
  EXPECT_EQ(classify({1, 3}, {1, 0}, {1, 2}), '>');
}

TEST_P(PointAgainstSegment, SegmentWithoutLength_HasEverythingBeforeOrBeyond) {
  EXPECT_EQ(classify({1, 1}, {1, 1}, {1, 1}), 'a');
  EXPECT_EQ(classify({5, 0}, {1, 1}, {1, 1}), '<');
  EXPECT_EQ(classify({5, 2}, {1, 1}, {1, 1}), '>');
}

std::string name_Form(const testing::TestParamInfo<PointAgainstSegment::ParamType>& info) {
  return info.index == 0 ? "plain" : "predicate";
}
INSTANTIATE_TEST_SUITE_P(Classifiers, PointAgainstSegment, testing::Values(&cls_Seg2, &cls_Seg2X),
                         name_Form);

// ---- Boxes -------------------------------------------------------------------------------------

TEST(Classifiers, BoxInThePlane_CountsOnlyItsMaximumAsBoundary) {
  C2DAABB box;
  box.add({0, 0});
  box.add({2, 1});
  EXPECT_EQ(cls_Box2(box, {2, 0.5}), 'r');
  EXPECT_EQ(cls_Box2(box, {1, 1}), 'r');
  EXPECT_EQ(cls_Box2(box, {0, 0.5}), '1');
  EXPECT_EQ(cls_Box2(box, {1, 0}), '1');
  EXPECT_EQ(cls_Box2(box, {0, 0}), '1');
  EXPECT_EQ(cls_Box2(box, {2, 0}), 'r');
  EXPECT_EQ(cls_Box2(box, {1, 0.5}), '1');
  for (const T2DVEC& p : {T2DVEC{-0.1, 0.5}, {2.1, 0.5}, {1, -0.1}, {1, 1.1}}) {
    EXPECT_EQ(cls_Box2(box, p), '0');
  }
}

TEST(Classifiers, BoxInSpace_CountsAllSixFacesAsBoundary) {
  C3DAABB box;
  box.add({0, 0, 0});
  box.add({2, 4, 6});
  const T3DVEC middle = {1, 2, 3};
  EXPECT_EQ(cls_Box3(box, middle), '1');
  for (int axis = 0; axis < 3; ++axis) {
    const double half = axis + 1;
    for (const double side : {-1.0, 1.0}) {
      T3DVEC on = middle, beyond = middle;
      double& at = axis == 0 ? on.x : axis == 1 ? on.y : on.z;
      double& far = axis == 0 ? beyond.x : axis == 1 ? beyond.y : beyond.z;
      at += side * half;
      far += side * (half + 0.25);
      EXPECT_EQ(cls_Box3(box, on), 'r') << axis << side;
      EXPECT_EQ(cls_Box3(box, beyond), '0') << axis << side;
    }
  }
  EXPECT_EQ(cls_Box3(box, {0, 4, 7}), '0');  // on two faces' planes and beyond the third
}

// ---- Triangles and quadrilaterals --------------------------------------------------------------

TEST(Classifiers, Triangle_TellsInsideBoundaryAndOutside_InEitherTurn) {
  const T2DVEC a = {0, 0}, b = {4, 0}, c = {0, 4};
  EXPECT_EQ(cls_Tri2(a, b, c, {1, 1}), '1');
  EXPECT_EQ(cls_Tri2(a, c, b, {1, 1}), '1');
  EXPECT_EQ(cls_Tri2(a, b, c, {2, 2}), 'r');
  EXPECT_EQ(cls_Tri2(a, c, b, {2, 0}), 'r');
  EXPECT_EQ(cls_Tri2(a, b, c, {3, 3}), '0');
  EXPECT_EQ(cls_Tri2(a, c, b, {3, 3}), '0');
  EXPECT_EQ(cls_Tri2(a, b, c, {5, 0}), '0');  // on the line of an edge, beyond it
}

// On integers, where no product rounds; elsewhere rounding may put a corner just outside.
TEST(Classifiers, CornerOfATriangle_IsOnItsBoundary) {
  const uint64_t seed = 2403;
  SCOPED_TRACE(seed);
  Random random(seed);
  const auto draw = [&] {
    const auto x = static_cast<double>(random.integer(-1000, 1000));
    return T2DVEC{x, static_cast<double>(random.integer(-1000, 1000))};
  };
  for (int i = 0; i < 1000; ++i) {
    const T2DVEC a = draw(), b = draw(), c = draw();
    if (sgn_Turn(a, b, c) == 0) continue;
    ASSERT_EQ(cls_Tri2(a, b, c, a), 'r');
    ASSERT_EQ(cls_Tri2(a, b, c, b), 'r');
    ASSERT_EQ(cls_Tri2(a, b, c, c), 'r');
  }
}

TEST(Classifiers, DegenerateTriangle_IsAQuestionWhateverThePoint) {
  const T2DVEC a = {0, 0}, b = {1, 1}, c = {3, 3};
  for (const T2DVEC& p : {a, b, c, T2DVEC{2, 2}, {9, 9}, {1, -4}}) {
    EXPECT_EQ(cls_Tri2(a, b, c, p), '?');
    EXPECT_EQ(cls_Tri2(a, a, c, p), '?');
    EXPECT_EQ(cls_Tri2(b, b, b, p), '?');
  }
  EXPECT_EQ(cls_Tri2({kNan, 0}, b, {0, 1}, a), '?');
}

TEST(Classifiers, Quadrilateral_TellsInsideBoundaryAndOutside_InEitherTurn) {
  const T2DVEC left[4] = {{0, 0}, {4, 0}, {4, 2}, {0, 2}};
  const T2DVEC right[4] = {{0, 0}, {0, 2}, {4, 2}, {4, 0}};
  for (const auto& q : {left, right}) {
    EXPECT_EQ(cls_Quad2X(q, {1, 1}), '1');
    EXPECT_EQ(cls_Quad2X(q, {4, 1}), 'r');
    EXPECT_EQ(cls_Quad2X(q, {4, 2}), 'r');
    EXPECT_EQ(cls_Quad2X(q, {0, 0}), 'r');
    EXPECT_EQ(cls_Quad2X(q, {5, 1}), '0');
    EXPECT_EQ(cls_Quad2X(q, {5, 2}), '0');
  }
}

TEST(Classifiers, QuadrilateralWithoutAreaOrCrossingItself_IsAQuestion) {
  const T2DVEC line[4] = {{0, 0}, {1, 0}, {2, 0}, {3, 0}};
  const T2DVEC half[4] = {{0, 0}, {1, 0}, {1, 1}, {0.5, 0.5}};
  const T2DVEC bow[4] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}};
  for (const auto& q : {line, half, bow}) {
    EXPECT_EQ(cls_Quad2X(q, {0, 0}), '?');
    EXPECT_EQ(cls_Quad2X(q, {0.7, 0.2}), '?');
    EXPECT_EQ(cls_Quad2X(q, {9, 9}), '?');
  }
}

// ---- Circle, spheres, slab ---------------------------------------------------------------------

TEST(Classifiers, Circle_TellsInsideBoundaryAndOutside) {
  C2DCIRC circle;
  EXPECT_EQ(circle.centre, (T2DVEC{0, 0}));
  EXPECT_EQ(circle.radius, 0);
  circle.centre = {1, 2};
  circle.radius = 2;
  EXPECT_EQ(cls_Circ(circle, {1, 2}), '1');
  EXPECT_EQ(cls_Circ(circle, {2, 3}), '1');
  EXPECT_EQ(cls_Circ(circle, {1, 0}), 'r');
  EXPECT_EQ(cls_Circ(circle, {3, 2}), 'r');
  EXPECT_EQ(cls_Circ(circle, {3, 3}), '0');
}

TEST(Classifiers, Circle_AgreesWithTheDistance_AwayFromItsBoundary) {
  const uint64_t seed = 2404;
  SCOPED_TRACE(seed);
  Random random(seed);
  for (int i = 0; i < 10000; ++i) {
    const C2DCIRC circle = {random.pair(-1, 1), random.real(0.1, 2)};
    const T2DVEC p = random.pair(-2, 2);
    const double gap = dst(p, circle.centre) - circle.radius;
    if (std::fabs(gap) < 1e-9) continue;
    ASSERT_EQ(cls_Circ(circle, p), gap < 0 ? '1' : '0');
  }
}

TEST(Classifiers, Sphere_TellsByTheSquaredDistance) {
  const T3DSPH sphere = {{1, 1, 1}, 2};
  EXPECT_EQ(cls_Sphere(sphere, {1, 1, 1}), '1');
  EXPECT_EQ(cls_Sphere(sphere, {1, 1, 2.9}), '1');
  EXPECT_EQ(cls_Sphere(sphere, {1, 3, 1}), 'r');
  EXPECT_EQ(cls_Sphere(sphere, {1, 3, 1.1}), '0');
  EXPECT_EQ(cls_Sphere({{1, 1, 1}, 0}, {1, 1, 1}), 'r');
}

TEST(Classifiers, WideSphere_TakesAPointThatTheSphereLeavesOut) {
  const T3DSPH sphere = {{3, 4, 5}, 2};
  const T3DVEC p = {3, 4 - 1.2 * 2, 5};
  EXPECT_EQ(cls_Sph(sphere, p), '1');
  EXPECT_EQ(cls_Sphere(sphere, p), '0');
}

TEST(Classifiers, WideSphere_IsTheOneThroughItsFourPoints) {
  const uint64_t seed = 2405;
  SCOPED_TRACE(seed);
  Random random(seed);
  int inside = 0;
  for (int i = 0; i < 20000; ++i) {
    const T3DSPH sphere = {random.triple(-1, 1), random.real(0.1, 2)};
    const double r = sphere.radius;
    const T3DVEC centre = sphere.centre + T3DVEC{0, -r / 4, r / 4};
    const T3DVEC p = centre + random.triple(-1.5 * r, 1.5 * r);
    const double gap = dst(p, centre) - r * std::sqrt(26.0) / 4;
    if (std::fabs(gap) < 1e-9) continue;
    ASSERT_EQ(cls_Sph(sphere, p), gap < 0 ? '1' : '0');
    inside += gap < 0;
  }
  EXPECT_GT(inside, 1000);
}

TEST(Classifiers, FourPointsOfTheWideSphere_AreOnItsBoundary) {
  const T3DSPH sphere = {{0, 0, 0}, 1};
  for (const T3DVEC& p : {T3DVEC{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}, {0, 0, -1}}) {
    EXPECT_EQ(cls_Sph(sphere, p), 'r');
  }
}

TEST(Classifiers, SpheresAndCircle_LeaveOutWhatIsNotANumber) {
  EXPECT_EQ(cls_Sphere({{0, 0, 0}, 1}, {kNan, 0, 0}), '0');
  EXPECT_EQ(cls_Sph({{0, 0, 0}, 1}, {kNan, 0, 0}), '0');
  EXPECT_EQ(cls_Sph({{0, kNan, 0}, 1}, {0, 0, 0}), '0');
  EXPECT_EQ(cls_Circ({{0, 0}, kNan}, {0, 0}), '0');
}

TEST(Classifiers, Slab_TakesItsPlanesAlongTheXAxisOfItsFrame) {
  T3DSLB slab = {kIdentity, 1, 3};
  slab.frm.org = {10, 0, 0};
  EXPECT_EQ(cls_Slab(slab, {10.9, 5, 5}), '0');
  EXPECT_EQ(cls_Slab(slab, {11, 5, 5}), 'r');
  EXPECT_EQ(cls_Slab(slab, {12, -5, 5}), '1');
  EXPECT_EQ(cls_Slab(slab, {13, -5, 5}), 'r');
  EXPECT_EQ(cls_Slab(slab, {13.1, 5, 5}), '0');
}

TEST(Classifiers, Slab_UsesItsXAxisAsItIsGiven) {
  T3DSLB slab = {kIdentity, 1, 3};
  slab.frm.x = {2, 0, 0};
  EXPECT_EQ(cls_Slab(slab, {1.5, 0, 0}), '0');
  EXPECT_EQ(cls_Slab(slab, {2, 0, 0}), 'r');
  EXPECT_EQ(cls_Slab(slab, {5, 0, 0}), '1');
  EXPECT_EQ(cls_Slab(slab, {6, 0, 0}), 'r');
  slab.frm.x = {0, 0, 0};
  EXPECT_NE(cls_Slab(slab, {100, 0, 0}), '0');
}

// ---- Axes --------------------------------------------------------------------------------------

TEST(Classifiers, DominantAxis_GoesToTheEarlierOfEquals) {
  EXPECT_EQ(axis_Vec({-3, 1, 2}), 'x');
  EXPECT_EQ(axis_Vec({1, -3, 2}), 'y');
  EXPECT_EQ(axis_Vec({1, 2, -3}), 'z');
  EXPECT_EQ(axis_Vec({1, -1, 1}), 'x');
  EXPECT_EQ(axis_Vec({0, -1, 1}), 'y');
  EXPECT_EQ(axis_Vec({0, 0, 0}), 'x');
  EXPECT_EQ(axis_Vec({kNan, 1, 2}), '?');
}

TEST(Classifiers, DominantAxisOfATriangle_IsThatOfItsNormal) {
  EXPECT_EQ(axis_Tri3({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}), 'z');
  EXPECT_EQ(axis_Tri3({{0, 0, 0}, {1, 0, 0}, {0, 0, 1}}), 'y');
  EXPECT_EQ(axis_Tri3({{0, 0, 0}, {0, 1, 0}, {0, 0, 1}}), 'x');
  EXPECT_EQ(axis_Tri3({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}), 'x');
}

TEST(Classifiers, DroppingAnAxis_KeepsTheOthersInTurn) {
  const T3DVEC p = {1, 2, 3};
  EXPECT_EQ(drop_Axis('z', p), (T2DVEC{1, 2}));
  EXPECT_EQ(drop_Axis('y', p), (T2DVEC{3, 1}));
  EXPECT_EQ(drop_Axis('x', p), (T2DVEC{2, 3}));
  EXPECT_EQ(drop_Axis('?', p), (T2DVEC{2, 3}));
}

// ---- Any value at all --------------------------------------------------------------------------

TEST(Classifiers, EveryValueOfADouble_IsAnsweredInTheVocabulary) {
  const uint64_t seed = 2406;
  SCOPED_TRACE(seed);
  Random random(seed);
  const auto is_One = [](char c, const char* of) {
    return std::string(of).find(c) != std::string::npos;
  };
  const auto pair = [&] { return T2DVEC{random.special(), random.special()}; };
  const auto triple = [&] { return T3DVEC{random.special(), random.special(), random.special()}; };
  for (int i = 0; i < 100000; ++i) {
    const T2DVEC quad[4] = {pair(), pair(), pair(), pair()};
    ASSERT_TRUE(is_One(cls_Seg2(quad[0], quad[1], quad[2]), "+-ab<>1"));
    ASSERT_TRUE(is_One(cls_Seg2X(quad[0], quad[1], quad[2]), "+-ab<>1"));
    ASSERT_TRUE(is_One(cls_Tri2(quad[0], quad[1], quad[2], quad[3]), "0r1?"));
    ASSERT_TRUE(is_One(cls_Quad2X(quad, pair()), "0r1?"));
    ASSERT_TRUE(is_One(cls_Circ({pair(), random.special()}, quad[0]), "0r1"));
    ASSERT_TRUE(is_One(cls_Sph({triple(), random.special()}, triple()), "0r1"));
    ASSERT_TRUE(is_One(cls_Sphere({triple(), random.special()}, triple()), "0r1"));
    const T3DFRM frm = {triple(), triple(), triple(), triple()};
    ASSERT_TRUE(is_One(cls_Slab({frm, random.special(), random.special()}, triple()), "0r1"));
    ASSERT_TRUE(is_One(axis_Tri3({triple(), triple(), triple()}), "xyz?"));
  }
}

}  // namespace
}  // namespace undercut
