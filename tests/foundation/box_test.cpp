#include "foundation/box.h"

#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <vector>

namespace undercut {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

C3DAABB make_Box(const T3DVEC& size) {
  const T3DVEC points[2] = {{1, 2, 3}, T3DVEC{1, 2, 3} + size};
  C3DAABB box;
  box.from_Points(points, 2);
  return box;
}

TEST(Box, StartsInverted_SoThatMergingGivesTheOther) {
  C3DAABB box;
  EXPECT_EQ(box.min, (T3DVEC{kAbsent, kAbsent, kAbsent}));
  EXPECT_EQ(box.max, (T3DVEC{-kAbsent, -kAbsent, -kAbsent}));
  box.merge(make_Box({1, 1, 1}));
  EXPECT_EQ(box.min, (T3DVEC{1, 2, 3}));
  EXPECT_EQ(box.max, (T3DVEC{2, 3, 4}));
  box.reset();
  EXPECT_EQ(box.min.x, 1.7976931348623157e308);
  EXPECT_EQ(box.max.z, -1.7976931348623157e308);
}

TEST(Box, FromPoints_IsTight) {
  const T3DVEC points[] = {{1, 5, -3}, {-2, 0, 9}, {0, 7, 1}};
  C3DAABB box = make_Box({50, 50, 50});
  box.from_Points(points, 3);
  EXPECT_EQ(box.min, (T3DVEC{-2, 0, -3}));
  EXPECT_EQ(box.max, (T3DVEC{1, 7, 9}));
  C3DAABB tri;
  tri.from_Tri({points[0], points[1], points[2]});
  EXPECT_EQ(tri.min, box.min);
  EXPECT_EQ(tri.max, box.max);
}

TEST(Box, FromNoPoints_IsInverted) {
  C3DAABB box;
  box.from_Points(nullptr, 7);
  EXPECT_EQ(box.min.x, kAbsent);
  box.from_Points(nullptr, 7, kIdentity);
  EXPECT_EQ(box.max.x, -kAbsent);
}

TEST(Box, FromPointsInAFrame_IsTightInItsCoordinates) {
  const T3DVEC points[] = {{1, 5, -3}, {-2, 0, 9}, {0, 7, 1}};
  const T3DFRM frm = frm_Ray({{1, 2, 3}, {0.2, -0.5, 0.9}});
  C3DAABB box, plain;
  box.from_Points(points, 3, frm);
  std::vector<T3DVEC> local(points, points + 3);
  to_Local(frm, local.data(), 3);
  plain.from_Points(local.data(), 3);
  EXPECT_EQ(box.min, plain.min);
  EXPECT_EQ(box.max, plain.max);
}

TEST(Box, CentreAndSize) {
  const C3DAABB box = make_Box({2, 4, 8});
  EXPECT_EQ(box.centre(), (T3DVEC{2, 4, 7}));
  EXPECT_EQ(box.size(), (T3DVEC{2, 4, 8}));
}

TEST(Box, Longest_GivesATieToTheLaterAxis) {
  EXPECT_EQ(make_Box({3, 1, 2}).longest(), 'x');
  EXPECT_EQ(make_Box({1, 3, 2}).longest(), 'y');
  EXPECT_EQ(make_Box({1, 2, 3}).longest(), 'z');
  EXPECT_EQ(make_Box({3, 3, 2}).longest(), 'y');
  EXPECT_EQ(make_Box({3, 2, 3}).longest(), 'z');
  EXPECT_EQ(make_Box({2, 3, 3}).longest(), 'z');
  EXPECT_EQ(make_Box({2, 2, 2}).longest(), 'z');
}

TEST(Box, Longest_TakesAbsoluteExtents) {
  C3DAABB box;
  box.min = {9, 1, 1};
  box.max = {0, 2, 3};
  EXPECT_EQ(box.longest(), 'x');
  EXPECT_EQ(C3DAABB().longest(), 'z');
}

TEST(Box, Longest_IsXWhereExtentsAreNotNumbers) {
  C3DAABB box = make_Box({1, 2, 3});
  box.max.y = kNan;
  EXPECT_EQ(box.longest(), 'x');
}

TEST(Box, Corners_RunRoundTheBottomThenTheTop) {
  C3DAABB box;
  box.min = {0, 1, 2};
  box.max = {3, 4, 5};
  T3DVEC corners[8];
  box.corners(corners);
  const T3DVEC expected[8] = {{0, 1, 2}, {3, 1, 2}, {3, 4, 2}, {0, 4, 2},
                              {0, 1, 5}, {3, 1, 5}, {3, 4, 5}, {0, 4, 5}};
  for (int i = 0; i < 8; ++i) EXPECT_EQ(corners[i], expected[i]) << i;
}

TEST(Box, ACoordinateThatIsNotANumberLeavesTheBox) {
  C3DAABB box = make_Box({1, 1, 1});
  box.add({kNan, 0, kNan});
  EXPECT_EQ(box.min, (T3DVEC{1, 0, 3}));
  EXPECT_EQ(box.max, (T3DVEC{2, 3, 4}));
  C3DAABB none;
  none.add({kNan, kNan, kNan});
  EXPECT_EQ(none.min.x, kAbsent);
  C2DAABB flat;
  flat.add({kNan, 1});
  EXPECT_EQ(flat.min.x, kAbsent);
  EXPECT_EQ(flat.max.y, 1);
}

TEST(Box, AnInfiniteCoordinateStretchesTheBox) {
  C3DAABB box = make_Box({1, 1, 1});
  box.add({kInf, 2, 3});
  box.add({1, -kInf, 3});
  EXPECT_EQ(box.max.x, kInf);
  EXPECT_EQ(box.min.y, -kInf);
  EXPECT_EQ(box.min.x, 1);
}

TEST(FlatBox, Longest_GivesATieToX) {
  C2DAABB box;
  box.add({0, 0});
  box.add({2, 2});
  EXPECT_EQ(box.longest(), 'x');
  box.add({0, 3});
  EXPECT_EQ(box.longest(), 'y');
}

TEST(FlatBox, MergeCentreAndSize) {
  C2DAABB a, b;
  a.add({0, 1});
  b.add({4, -3});
  a.merge(b);
  a.merge(C2DAABB());
  EXPECT_EQ(a.min, (T2DVEC{0, -3}));
  EXPECT_EQ(a.max, (T2DVEC{4, 1}));
  EXPECT_EQ(a.centre(), (T2DVEC{2, -1}));
  EXPECT_EQ(a.size(), (T2DVEC{4, 4}));
}

}  // namespace
}  // namespace undercut
