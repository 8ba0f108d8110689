// Points against a window of directions.
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "tests/reference/random_geometry.h"
#include "tests/support/intensity.h"
#include "undercut/search.h"

namespace undercut::tests {

namespace {

const double kInf = std::numeric_limits<double>::infinity();
const double kNan = std::numeric_limits<double>::quiet_NaN();

constexpr double kWindow[4] = {10, 100, 40, 300};

}  // namespace

TEST(Window, HoldsAPointBetweenItsBounds) { EXPECT_EQ(pos_Box({20, 200}, kWindow), '1'); }

TEST(Window, HoldsAPointOnALowerBound) {
  EXPECT_EQ(pos_Box({10, 200}, kWindow), '1');
  EXPECT_EQ(pos_Box({20, 100}, kWindow), '1');
  EXPECT_EQ(pos_Box({10, 100}, kWindow), '1');
}

TEST(Window, HasARimOnItsUpperBoundsAlone) {
  EXPECT_EQ(pos_Box({40, 200}, kWindow), 'r');
  EXPECT_EQ(pos_Box({20, 300}, kWindow), 'r');
  EXPECT_EQ(pos_Box({40, 300}, kWindow), 'r');
  EXPECT_EQ(pos_Box({10, 300}, kWindow), 'r');
  EXPECT_EQ(pos_Box({40, 100}, kWindow), 'r');
}

TEST(Window, EndsAtItsBounds) {
  const double less = std::nextafter(10.0, 0.0), more = std::nextafter(40.0, 50.0);
  EXPECT_EQ(pos_Box({less, 200}, kWindow), '0');
  EXPECT_EQ(pos_Box({more, 200}, kWindow), '0');
  EXPECT_EQ(pos_Box({20, std::nextafter(100.0, 0.0)}, kWindow), '0');
  EXPECT_EQ(pos_Box({20, std::nextafter(300.0, 400.0)}, kWindow), '0');
}

TEST(Window, HasAPointOutside_ThatLiesOnTheUpperBoundOfTheOtherAngle) {
  EXPECT_EQ(pos_Box({40, 99}, kWindow), '0');
  EXPECT_EQ(pos_Box({9, 300}, kWindow), '0');
  EXPECT_EQ(pos_Box({40, 301}, kWindow), '0');
}

TEST(Window, HasOutsideWhatIsNoNumber) {
  EXPECT_EQ(pos_Box({kNan, 200}, kWindow), '0');
  EXPECT_EQ(pos_Box({20, kNan}, kWindow), '0');
  EXPECT_EQ(pos_Box({kInf, 200}, kWindow), '0');
}

TEST(WindowDistance, IsZeroInsideAndOnEveryBound) {
  for (const double x : {10.0, 20.0, 40.0})
    for (const double y : {100.0, 200.0, 300.0}) EXPECT_EQ(dst_Box({x, y}, kWindow), 0.0);
}

TEST(WindowDistance, IsWhatLiesBeyondABound) {
  EXPECT_EQ(dst_Box({4, 200}, kWindow), 6);
  EXPECT_EQ(dst_Box({47, 200}, kWindow), 7);
  EXPECT_EQ(dst_Box({20, 98}, kWindow), 2);
  EXPECT_EQ(dst_Box({20, 305}, kWindow), 5);
}

TEST(WindowDistance, BeyondACorner_IsTheRootOfTheSummedSquares) {
  EXPECT_EQ(dst_Box({7, 96}, kWindow), 5);
  EXPECT_EQ(dst_Box({43, 304}, kWindow), 5);
  EXPECT_EQ(dst_Box({52, 95}, kWindow), 13);
  EXPECT_EQ(dst_Box({5, 312}, kWindow), 13);
}

TEST(WindowDistance, IsThatToTheNearestOfManyPoints) {
  constexpr uint64_t seed = 20261123;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(100); ++round) {
    const T2DVEC p = {random.real(-20, 80), random.real(50, 350)};
    double nearest = kInf;
    for (int i = 0; i <= 300; ++i)
      for (int k = 0; k <= 300; ++k)
        nearest = std::min(nearest, dst(p, {10 + 0.1 * i, 100 + 200.0 / 300 * k}));
    const double distance = dst_Box(p, kWindow);
    ASSERT_LE(distance, nearest + 1e-12);
    ASSERT_GT(distance, nearest - 0.5);
    ASSERT_EQ(distance == 0.0, pos_Box(p, kWindow) != '0');
  }
}

}  // namespace undercut::tests
