#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "foundation/primitives.h"
#include "tests/reference/random_geometry.h"

namespace undercut {
namespace {

using reference::Random;

TEST(Distances, PointToBox_SumsTheSquaresOfTheExcess) {
  C3DAABB box;
  box.add({0, 0, 0});
  box.add({2, 4, 6});
  EXPECT_EQ(dst_Box(box, {1, 2, 3}), 0);
  EXPECT_EQ(dst_Box(box, {2, 4, 6}), 0);
  EXPECT_EQ(dst_Box(box, {5, 2, 3}), 9);
  EXPECT_EQ(dst_Box(box, {-1, 6, 8}), 1 + 4 + 4);
  C2DAABB flat;
  flat.add({0, 0});
  flat.add({2, 4});
  EXPECT_EQ(dst_Box(flat, {1, 1}), 0);
  EXPECT_EQ(dst_Box(flat, {-3, 8}), 9 + 16);
}

TEST(Distances, PointToSegment_IsThatToItsNearestPoint) {
  const T2DVEC a = {1, 1}, b = {5, 1};
  EXPECT_EQ(dst_Seg2({-2, 5}, a, b), 5);
  EXPECT_EQ(dst_Seg2({8, -3}, a, b), 5);
  EXPECT_EQ(dst_Seg2({3, 4}, a, b), 3);
  EXPECT_EQ(dst_Seg2({5, 4}, a, b), 3);
  EXPECT_EQ(dst_Seg2({2, 1}, a, b), 0);
}

TEST(Distances, PointToSegmentWithoutLength_IsThatToItsFirstPoint) {
  EXPECT_EQ(dst_Seg2({4, 5}, {1, 1}, {1, 1}), 5);
}

TEST(Distances, PointToPolyline_IsTheSmallestOverItsSegments) {
  std::vector<T2DVEC> points = {{0, 0}, {10, 0}, {10, 10}, {3, 3}};
  std::vector<T3DSGM> segments = {{0, 1}, {1, 2}};
  T2DPOL pol = {points.data(), 4, segments.data(), 2};
  EXPECT_EQ(dst_Pol2(pol, {4, 3}), 3);
  EXPECT_EQ(dst_Pol2(pol, {9, 5}), 1);
  EXPECT_EQ(dst_Pol2(pol, {3, 3}), 3);  // a point without a segment does not count
}

TEST(Distances, PolylineWithoutSegments_HasNoDistance) {
  std::vector<T2DVEC> points = {{0, 0}};
  T3DSGM none = {0, 0};
  EXPECT_EQ(dst_Pol2({points.data(), 1, &none, 0}, {0, 0}), kAbsent);
  EXPECT_EQ(dst_Pol2({nullptr, 0, nullptr, 0}, {0, 0}), kAbsent);
  EXPECT_EQ(dst_Pol2({points.data(), 1, nullptr, 3}, {0, 0}), kAbsent);
}

TEST(Distances, SegmentOutsideThePointArray_IsPassedOver) {
  std::vector<T2DVEC> points = {{0, 0}, {10, 0}};
  std::vector<T3DSGM> segments = {{0, 2}, {4000000000u, 1}, {0, 1}};
  EXPECT_EQ(dst_Pol2({points.data(), 2, segments.data(), 3}, {5, 2}), 2);
  EXPECT_EQ(dst_Pol2({points.data(), 2, segments.data(), 2}, {5, 2}), kAbsent);
}

TEST(Distances, LineToSegment_IsTheClosestApproach) {
  const T3DRAY line = {{0, 0, 100}, {0, 0, 1}};
  EXPECT_EQ(dst_LineSeg(line, {3, -5, -7}, {3, 5, 9}), 3);
  EXPECT_EQ(dst_LineSeg(line, {3, 4, 0}, {6, 8, 1}), 5);
  EXPECT_EQ(dst_LineSeg(line, {6, 8, 1}, {3, 4, 0}), 5);
  EXPECT_EQ(dst_LineSeg(line, {-3, -4, 0}, {6, 8, 1}), 0);
}

TEST(Distances, LineToParallelSegment_IsThatOfEitherEnd) {
  const T3DRAY line = {{1, 1, 1}, {0, 0, 1}};
  EXPECT_EQ(dst_LineSeg(line, {4, 5, 0}, {4, 5, 9}), 5);
  EXPECT_EQ(dst_LineSeg(line, {4, 5, 9}, {4, 5, 0}), 5);
  EXPECT_EQ(dst_LineSeg(line, {1, 1, 9}, {1, 1, 0}), 0);
}

TEST(Distances, LineToSegmentWithoutLength_IsThatToThePoint) {
  EXPECT_EQ(dst_LineSeg({{0, 0, 0}, {1, 0, 0}}, {7, 3, 4}, {7, 3, 4}), 5);
}

// Against a search: the distance from the line is convex along the segment.
TEST(Distances, LineToSegment_AgreesWithASearchAlongTheSegment) {
  const uint64_t seed = 2421;
  SCOPED_TRACE(seed);
  Random random(seed);
  for (int i = 0; i < 5000; ++i) {
    const T3DRAY line = {random.triple(-1, 1), unit(random.triple(-1, 1))};
    const T3DVEC a = random.triple(-2, 2);
    const T3DVEC b = i % 4 ? random.triple(-2, 2) : a + random.real(-2, 2) * line.dir;
    const auto at = [&](double t) { return len(cross(a + t * (b - a) - line.org, line.dir)); };
    double low = 0, high = 1;
    for (int k = 0; k < 100; ++k) {
      const double left = low + (high - low) / 3, right = high - (high - low) / 3;
      (at(left) < at(right) ? high : low) = at(left) < at(right) ? right : left;
    }
    ASSERT_NEAR(dst_LineSeg(line, a, b), at(0.5 * (low + high)), 1e-7);
  }
}

TEST(Distances, EveryValueOfADouble_IsAnswered) {
  const uint64_t seed = 2422;
  SCOPED_TRACE(seed);
  Random random(seed);
  const auto triple = [&] { return T3DVEC{random.special(), random.special(), random.special()}; };
  const auto pair = [&] { return T2DVEC{random.special(), random.special()}; };
  for (int i = 0; i < 20000; ++i) {
    C3DAABB box;
    box.add(triple());
    EXPECT_FALSE(dst_Box(box, triple()) < 0);
    EXPECT_FALSE(dst_Seg2(pair(), pair(), pair()) < 0);
    EXPECT_FALSE(dst_LineSeg({triple(), triple()}, triple(), triple()) < 0);
  }
}

}  // namespace
}  // namespace undercut
