// Walks of closed curves over the vertices of a mesh.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "mesh/curve_cut.h"
#include "tests/reference/plain_cut.h"
#include "tests/support/allocations.h"
#include "tests/support/curves.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;
using plain::List;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct TWalked {
  int32_t code;
  std::vector<List> paths;
};

TWalked walk(TSoup soup, TCurves curves) {
  Scoped<TArr<TArr<uint32_t>>> paths;
  const int32_t code = crv_Path(soup.msh(), curves.view(), *paths);
  EXPECT_TRUE(code == 0 || !paths->data);
  return {code, copy_Nested(*paths)};
}

// The path of a single curve.
List walk_One(const TSoup& soup, const std::vector<T3DVEC>& points) {
  const TWalked walked = walk(soup, {{points}});
  EXPECT_EQ(walked.code, 0);
  return walked.paths.at(0);
}

// Vertex (x, y) of a sheet that is n squares wide.
uint32_t at(uint32_t x, uint32_t y, uint32_t n) { return y * (n + 1) + x; }

// The sheet of four squares with vertex 0 to 8.
TSoup make_Four() { return make_Grid(2, 2); }

}  // namespace

TEST(CurvePath, FollowsTheSegmentsAndEndsAtItsStart) {
  const TSoup grid = make_Grid(4, 4);
  const List path = walk_One(grid, {{1, 1, 0}, {3, 1, 0}, {3, 3, 0}, {1, 3, 0}});
  EXPECT_EQ(path, (List{at(2, 1, 4), at(3, 1, 4), at(3, 2, 4), at(3, 3, 4), at(2, 3, 4),
                        at(1, 3, 4), at(1, 2, 4), at(1, 1, 4)}));
}

TEST(CurvePath, StartsAtTheVertexNearestToTheFirstPoint) {
  const List path = walk_One(make_Four(), {{1.1, 0.8, 0.3}, {2, 2, 0}, {0, 2, 0}});
  EXPECT_EQ(path.back(), 4u);
}

TEST(CurvePath, OfEquallyNearVerticesStartsAtTheFirst) {
  EXPECT_EQ(walk_One(make_Four(), {{0.5, -0.5, 0}, {2, 1, 0}, {0, 2, 0}}).back(), 0u);
}

TEST(CurvePath, NeverStartsAtAVertexWhosePlaceIsNotANumber) {
  TSoup soup = make_Four();
  soup.vtx[0].z = soup.vtx[8].z = kNaN;
  EXPECT_EQ(walk_One(soup, {{1, 1, 0}, {2, 1, 0}}), (List{5, 4}));
}

TEST(CurvePath, GoesOverTheNeighbourNearestToTheSegment) {
  // From 0 to 8 there is a diagonal; 1 and 3 are nearer to the target too.
  EXPECT_EQ(walk_One(make_Four(), {{0, 0, 0}, {2, 2, 0}}), (List{4, 8, 4, 0}));
}

TEST(CurvePath, MeasuresNearnessToTheTargetInSpaceAndNotAlongTheSegment) {
  // Vertex 2 lies farther on in the direction of the segment but high above it: it is no nearer to
  // the target than 0 is, and the walk stays.
  const TSoup soup = {{{0, 0, 0}, {0, -9, 0}, {1, 0, 2}}, {{0, 1, 2}}};
  EXPECT_EQ(walk_One(soup, {{0, 0, 0}, {1.5, 0, 0}}), List{});
}

TEST(CurvePath, ComesAcrossItsStartInTheFirstHalfAndGoesOn) {
  // Three of six segments lead out and back over the start.
  const TSoup strip = make_Grid(4, 1);
  const List path =
      walk_One(strip, {{2, 0, 0}, {3, 0, 0}, {2, 0, 0}, {1, 0, 0}, {1, 1, 0}, {3, 1, 0}});
  EXPECT_EQ(path, (List{3, 2, 1, 6, 7, 8, 2}));
}

TEST(CurvePath, EndsAtItsStartFromHalfOfTheSegmentsOnRoundedDown) {
  // Two of five segments are done, then one of three.
  const TSoup strip = make_Grid(4, 1);
  EXPECT_EQ(walk_One(strip, {{2, 0, 0}, {3, 0, 0}, {3, 1, 0}, {2, 0, 0}, {1, 1, 0}}),
            (List{3, 8, 2}));
  EXPECT_EQ(walk_One(strip, {{2, 0, 0}, {4, 0, 0}, {0, 0, 0}}), (List{3, 4, 3, 2}));
}

TEST(CurvePath, PrefersTheStartToAVertexNearerToTheSegment) {
  // The last segment runs along the upper row; the start lies below it.
  const TSoup grid = make_Grid(3, 1);
  const List path = walk_One(grid, {{1, 0.4, 0}, {3, 0, 0}, {3, 1, 0}, {-9, 1, 0}});
  EXPECT_EQ(path.back(), 1u);
  EXPECT_EQ(path, (List{2, 3, 7, 6, 1}));
}

TEST(CurvePath, ThatDoesNotComeBackFails) {
  // A sheet with a slot: the way back ends on its far side.
  TSoup slotted = make_Grid(3, 2);
  slotted.tri.erase(slotted.tri.begin() + 8, slotted.tri.begin() + 10);
  const Points across = {{1, 2, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}};
  EXPECT_EQ(walk(slotted, {{across}}).code, -17);
  EXPECT_EQ(walk(make_Grid(3, 2), {{across}}).code, 0);
}

TEST(CurvePath, ThatComesBackToAnotherVertexEquallyNearFails) {
  const Points midway = {{0.5, 0.5, 0}, {2, 2, 0}, {0, 2, 0}};
  EXPECT_EQ(walk(make_Four(), {{midway}}).code, -17);
}

TEST(CurvePath, FailsAsAWholeWhereOneCurveDoes) {
  const Points good = {{0, 0, 0}, {2, 2, 0}}, bad = {{0.5, 0.5, 0}, {2, 2, 0}, {0, 2, 0}};
  EXPECT_EQ(walk(make_Four(), {{good, bad}}).code, -17);
}

TEST(CurvePath, OfAVertexWithoutTrianglesStaysThere) {
  TSoup soup = make_Four();
  soup.vtx.push_back({0.5, 0.5, 0});
  EXPECT_EQ(walk_One(soup, {{0.5, 0.5, 0}, {2, 2, 0}, {0, 2, 0}}), List{});
}

TEST(CurvePath, OfACurveWithoutPointsOrWithOneIsEmpty) {
  EXPECT_EQ(walk(make_Four(), {{{}, {{1, 1, 0}}}}).paths, (std::vector<List>{{}, {}}));
}

TEST(CurvePath, TakesCurvesWithoutArrays) {
  TSoup soup = make_Four();
  Scoped<TArr<TArr<uint32_t>>> paths;
  EXPECT_EQ(crv_Path(soup.msh(), {nullptr, 3}, *paths), 0);
  EXPECT_EQ(paths->count, 0u);
  TArrVec curve = {nullptr, 5};
  EXPECT_EQ(crv_Path(soup.msh(), {&curve, 1}, *paths), 0);
  EXPECT_EQ(copy_Nested(*paths), std::vector<List>{{}});
}

TEST(CurvePath, EndsOnCoordinatesThatAreNotFinite) {
  const uint64_t seed = 44;
  reference::Random random(seed);
  for (uint32_t i = 0; i < scale_Cases(2000); ++i) {
    TSoup soup = make_Tangle(random, 3 + random.below(9), 12);
    for (T3DVEC& v : soup.vtx)
      if (random.chance(0.3)) v.x = random.special();
    std::vector<T3DVEC> curve(random.below(9));
    for (T3DVEC& p : curve)
      p = random.chance(0.3) ? T3DVEC{0, random.special(), 1} : random.triple(-5, 5);
    const TWalked walked = walk(soup, {{curve}});
    EXPECT_TRUE(walked.code == 0 || walked.code == -17) << "seed " << seed;
  }
  EXPECT_EQ(walk_One(make_Four(), {{kNaN, kNaN, kNaN}, {kNaN, 0, 0}}), List{});
}

TEST(CurvePath, EqualsThePlainForm) {
  const uint64_t seed = 45;
  reference::Random random(seed);
  uint32_t closed = 0, open = 0;
  for (uint32_t i = 0; i < scale_Cases(3000); ++i) {
    TSoup soup = random.chance(0.5) ? make_Bumpy(5, 4) : make_Tangle(random, 12, 20);
    std::vector<T3DVEC> curve(1 + random.below(8));
    for (T3DVEC& p : curve) p = random.triple(-1, 6);
    List expected;
    const bool closes = plain::walk_Curve(soup.vtx, soup.tri, curve, expected);
    const TWalked walked = walk(soup, {{curve}});
    ASSERT_EQ(walked.code, closes ? 0 : -17) << "seed " << seed;
    ++(closes ? closed : open);
    if (!closes) continue;
    ASSERT_EQ(walked.paths[0], expected) << "seed " << seed;
  }
  EXPECT_GT(closed, 100u);
  EXPECT_GT(open, 100u);
}

TEST(CurvePath, OfAnEmptyMeshFails) {
  TSoup soup = make_Four();
  T3DMSH msh = soup.msh();
  msh.n_tri = 0;
  Scoped<TArr<TArr<uint32_t>>> paths;
  EXPECT_EQ(crv_Path(msh, TCurves{{{{0, 0, 0}}}}.view(), *paths), -1);
  EXPECT_EQ(crv_Path(soup.msh(), TAdj{}, TCurves{{{{0, 0, 0}}}}.view(), *paths), -1);
}

TEST(CurvePath, WithoutMemoryFailsWithTheCodeOfTheStep) {
  TSoup soup = make_Four();
  TCurves curves = {{{{0, 0, 0}, {2, 2, 0}}, {{2, 2, 0}, {0, 0, 0}}}};
  const TArrArrVec view = curves.view();
  const auto run = [&] {
    Scoped<TArr<TArr<uint32_t>>> paths;
    const int32_t code = crv_Path(soup.msh(), view, *paths);
    EXPECT_EQ(code == 0, paths->data != nullptr);
    return code;
  };
  EXPECT_EQ(list_FailureCodes(run), (std::vector<int32_t>{-13, -16, 0}));
}
