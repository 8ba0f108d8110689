// Simplification of closed polylines.
#include <gtest/gtest.h>

#include <limits>

#include "mesh/polyline.h"
#include "tests/reference/plain_smooth.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/curves.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

Points simplify(Points line, double limit) {
  Scoped<TArr<T3DVEC>> out;
  EXPECT_EQ(pol_Simplify(view_Arr(line), limit, *out), 0);
  return copy_Of(*out);
}

int32_t get_Code(Points line) {
  Points old = {{1, 2, 3}};
  TArr<T3DVEC> out = view_Arr(old);
  const int32_t code = pol_Simplify(view_Arr(line), 1.0, out);
  EXPECT_EQ(out.data, nullptr);
  return code;
}

// A square with a point on each side, 0.1 outside its middle.
Points make_Pillow() {
  return {{0, 0, 0}, {2, -0.1, 0}, {4, 0, 0}, {4.1, 2, 0},
          {4, 4, 0}, {2, 4.1, 0},  {0, 4, 0}, {-0.1, 2, 0}};
}

}  // namespace

TEST(Simplify, RemovesPointsThatStandNoHigherThanTheLimit) {
  EXPECT_EQ(simplify(make_Pillow(), 0.11), (Points{{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0}}));
}

TEST(Simplify, RemovesAPointExactlyAtTheLimit) {
  const Points line = {{0, 0, 0}, {2, -0.125, 0}, {4, 0, 0}, {2, 4, 0}};
  EXPECT_EQ(simplify(line, 0.125).size(), 3u);
  EXPECT_EQ(simplify(line, 0.12499).size(), 4u);
}

TEST(Simplify, StopsAtThreePointsHoweverLargeTheLimit) {
  EXPECT_EQ(simplify(make_Pillow(), 1e300).size(), 3u);
  EXPECT_EQ(simplify(make_Circle({0, 0, 0}, 1, 500), kInfinite).size(), 3u);
}

TEST(Simplify, LeavesThreePointsOrTwoAsTheyAre) {
  const Points three = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
  EXPECT_EQ(simplify(three, 9.0), three);
  const Points two = {{0, 0, 0}, {1, 0, 0}};
  EXPECT_EQ(simplify(two, 9.0), two);
}

TEST(Simplify, KeepsAllForANegativeLimit) {
  EXPECT_EQ(simplify(make_Pillow(), -1.0), make_Pillow());
}

TEST(Simplify, RemovesTheFlattestFirst) {
  // With the limit that takes one only: the lower bump goes.
  const Points line = {{0, 0, 0}, {4, -0.5, 0}, {8, 0, 0}, {8, 8, 0}, {4, 8.25, 0}, {0, 8, 0}};
  EXPECT_EQ(simplify(line, 0.3), (Points{line[0], line[1], line[2], line[3], line[5]}));
}

TEST(Simplify, MeasuresAPointAnewWhereItsNeighbourWent) {
  // Each point of the slow bend is low over its neighbours, and higher once these are gone.
  Points line = {{-9, 30, 0}};
  for (int k = -8; k <= 8; ++k) line.push_back({double(k), 0.05 * k * k, 0});
  line.push_back({9, 30, 0});
  const Points rest = simplify(line, 0.06);
  EXPECT_LT(rest.size(), line.size());
  EXPECT_GT(rest.size(), 6u);
}

TEST(Simplify, IgnoresZ) {
  Points line = make_Pillow();
  for (T3DVEC& p : line) p.z = 100.0 * p.x * p.y;
  EXPECT_EQ(simplify(line, 0.11).size(), 4u);
}

TEST(Simplify, GivesAPointBetweenCoincidingNeighboursNoHeight) {
  // A needle: its tip goes first, though it stands far out.
  const Points line = {{0, 0, 0}, {4, 0, 0}, {2, 0, 0}, {2, -9, 0}, {2, 0, 0}, {4, 4, 0}};
  const Points rest = simplify(line, 0.0);
  for (const T3DVEC& p : rest) EXPECT_NE(p.y, -9.0);
}

TEST(Simplify, OfEqualHeightsTakesTheOneToldFirst) {
  // All points of the square stand equally high. Without the first, its neighbours do so no more:
  // three are left.
  const Points square = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  EXPECT_EQ(simplify(square, 9.0), (Points{square[1], square[2], square[3]}));
}

TEST(Simplify, RoundsAHeightThatItMeasuresAnewToSinglePrecision) {
  // The flat point goes; the one beside it then stands 0.1 high, which is above the limit, but in
  // single precision 0.1 is 0.10000000149.
  const auto make_Bump = [](double height) {
    return Points{{0, 0, 0}, {4, -height, 0}, {6, -0.5 * height, 0}, {8, 0, 0}, {4, 9, 0}};
  };
  const double rounded = double(0.1f);
  EXPECT_EQ(simplify(make_Bump(0.1), 0.1).size(), 4u);
  EXPECT_EQ(simplify(make_Bump(0.1), rounded).size(), 3u);
}

TEST(Simplify, LeavesAHeightThatItMeasuresOnceInDoublePrecision) {
  const Points line = {{0, 0, 0}, {4, -0.1, 0}, {8, 0, 0}, {4, 9, 0}};
  EXPECT_EQ(simplify(line, 0.1).size(), 3u);
}

TEST(Simplify, EqualsThePlainForm) {
  const uint64_t seed = 48;
  reference::Random random(seed);
  for (uint32_t i = 0; i < scale_Cases(2000); ++i) {
    Points line(2 + random.below(40));
    // On a coarse grid many heights are equal, many 0.
    const bool coarse = random.chance(0.5);
    for (T3DVEC& p : line) {
      p = random.triple(-4, 4);
      if (coarse) p = {std::floor(p.x), std::floor(p.y), 0};
    }
    if (line.front() == line.back()) continue;
    const double limit = random.chance(0.2) ? 0.0 : random.real(0, 4);
    ASSERT_EQ(simplify(line, limit), plain::simplify(line, limit)) << "seed " << seed;
  }
}

TEST(Simplify, OfAStraightLineOfManyPointsIsQuick) {
  // All heights are equal: an old one is found at once nevertheless.
  Points line;
  for (uint32_t i = 0; i < 200000; ++i) line.push_back({double(i), 0, 0});
  EXPECT_EQ(simplify(line, 1.0).size(), 3u);
}

TEST(Simplify, NeverRemovesAPointWhoseHeightIsNotANumber) {
  Points line = make_Pillow();
  line[3].x = line[6].x = kNaN;  // and so are the heights of the points beside these
  EXPECT_EQ(simplify(line, 1e300).size(), 6u);
  EXPECT_EQ(simplify(make_Pillow(), kNaN), make_Pillow());
}

TEST(Simplify, EndsOnCoordinatesThatAreNotFinite) {
  const uint64_t seed = 49;
  reference::Random random(seed);
  for (uint32_t i = 0; i < scale_Cases(2000); ++i) {
    Points line(2 + random.below(20));
    for (T3DVEC& p : line) p = {random.special(), random.special(), 0};
    if (line.front() == line.back()) continue;
    EXPECT_LE(simplify(line, random.special()).size(), line.size()) << "seed " << seed;
  }
}

TEST(Simplify, WithoutPointsFails) {
  Scoped<TArr<T3DVEC>> out;
  EXPECT_EQ(pol_Simplify({nullptr, 4}, 1.0, *out), -1);
  T3DVEC point = {};
  EXPECT_EQ(pol_Simplify({&point, 0}, 1.0, *out), -2);
}

TEST(Simplify, OfALineWhoseEndsAreEqualFails) {
  Points line = make_Pillow();
  line.push_back(line.front());
  EXPECT_EQ(get_Code(line), -3);
  EXPECT_EQ(get_Code({{1, 2, 3}}), -3);
  line.back().z = 1.0;  // the heights ignore z, this does not
  EXPECT_EQ(simplify(line, -1.0).size(), line.size());
}

TEST(Simplify, WithoutMemoryFails) {
  Points line = make_Pillow();
  const auto run = [&] {
    Scoped<TArr<T3DVEC>> out;
    return pol_Simplify(view_Arr(line), 0.11, *out);
  };
  EXPECT_EQ(list_FailureCodes(run), (std::vector<int32_t>{-4, 0}));
}
