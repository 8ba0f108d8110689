// Meshes cut along closed curves.
#include "mesh/curve_cut.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "mesh/index_lists.h"
#include "mesh/region_area.h"
#include "tests/reference/plain_cut.h"
#include "tests/support/allocations.h"
#include "tests/support/curves.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;
using plain::List;

namespace {

struct TSides {
  int32_t code;
  std::vector<List> lists;
};

TSides cut(TSoup soup, TCurves curves) {
  Scoped<TLst<TLst<uint32_t>>> sides;
  const int32_t code = crv_Cut(soup.msh(), curves.view(), *sides);
  EXPECT_TRUE(code == 0 || !sides->data);
  return {code, copy_Nested(*sides)};
}

// Owns the sets and their views.
TSides cut_Sets(TSoup soup, std::vector<TCurves> sets) {
  std::vector<TArrArrVec> views;
  for (TCurves& set : sets) views.push_back(set.view());
  Scoped<TLst<TLst<uint32_t>>> sides;
  const TArrCrv view = {views.data(), static_cast<uint32_t>(views.size())};
  const int32_t code = crv_CutLst(soup.msh(), view, *sides);
  EXPECT_TRUE(code == 0 || !sides->data);
  return {code, copy_Nested(*sides)};
}

double sum_Area(TSoup soup, List list) { return reg_Area(soup.msh(), view_Lst(list)); }

// The triangles of the squares (x, y) of a sheet that is n squares wide.
List list_Squares(uint32_t n, const std::vector<std::pair<uint32_t, uint32_t>>& squares) {
  List list;
  for (const auto& [x, y] : squares) {
    list.push_back(2 * (y * n + x));
    list.push_back(2 * (y * n + x) + 1);
  }
  std::sort(list.begin(), list.end());
  return list;
}

// All lists together, in rising order.
List join(const TSides& sides) {
  List all;
  for (const List& list : sides.lists) {
    EXPECT_TRUE(std::is_sorted(list.begin(), list.end()));
    all.insert(all.end(), list.begin(), list.end());
  }
  std::sort(all.begin(), all.end());
  return all;
}

// Corners of the rectangle from (x, y) on, counterclockwise.
Points make_Frame(double x, double y, double width, double height) {
  return {{x, y, 0}, {x + width, y, 0}, {x + width, y + height, 0}, {x, y + height, 0}};
}

Points turn_Round(Points points) {
  std::reverse(points.begin(), points.end());
  return points;
}

// A triangle, the three on its edges, which fill a hexagon, and a ring round that.
TSoup make_Star() {
  TSoup soup = {{}, {{1, 3, 5}, {5, 0, 1}, {1, 2, 3}, {3, 4, 5}}};
  for (const double radius : {1.0, 2.0})
    for (const T3DVEC& p : make_Circle({0, 0, 0}, radius, 6)) soup.vtx.push_back(p);
  for (uint32_t k = 0; k < 6; ++k) {
    const uint32_t next = (k + 1) % 6;
    soup.tri.push_back({k, k + 6, next + 6});
    soup.tri.push_back({k, next + 6, next});
  }
  return soup;
}

// Two triangles on an edge, and a third on the same edge, hung on a sheet away from its rim.
TSoup make_Finned() {
  TSoup soup = make_Grid(6, 6);
  soup.vtx.push_back({3, 3, 1});
  soup.tri.push_back({24, 25, 49});  // over the edge from (3, 3) to (4, 3)
  return soup;
}

}  // namespace

TEST(CurveCut, OfARectangleHasItsSquaresInside) {
  const TSides sides = cut(make_Grid(5, 4), {{make_Frame(1, 1, 2, 2)}});
  EXPECT_EQ(sides.code, 0);
  EXPECT_EQ(sides.lists.at(1), list_Squares(5, {{1, 1}, {2, 1}, {1, 2}, {2, 2}}));
  EXPECT_EQ(join(sides), list_All(make_Grid(5, 4)));
}

TEST(CurveCut, OfACurveTheOtherWayRoundHasItsOutsideInside) {
  const TSides there = cut(make_Grid(5, 4), {{make_Frame(1, 1, 2, 2)}});
  const TSides back = cut(make_Grid(5, 4), {{turn_Round(make_Frame(1, 1, 2, 2))}});
  EXPECT_EQ(back.code, 0);
  EXPECT_EQ(back.lists.at(0), there.lists.at(1));
  EXPECT_EQ(back.lists.at(1), there.lists.at(0));
}

TEST(CurveCut, OfATriangleSeesTheSideByTheTrianglesOrientation) {
  TSoup soup = make_Grid(5, 4);
  for (T3DTRI& t : soup.tri) std::swap(t.b, t.c);
  const TSides sides = cut(soup, {{make_Frame(1, 1, 2, 2)}});
  EXPECT_EQ(sides.lists.at(0), list_Squares(5, {{1, 1}, {2, 1}, {1, 2}, {2, 2}}));
}

TEST(CurveCut, OfASingleSquareHasTheTrianglesWithAllCornersOnTheCurve) {
  // No flood enters here: the edges alone seed both.
  const TSides sides = cut(make_Grid(5, 4), {{make_Frame(1, 1, 1, 1)}});
  EXPECT_EQ(sides.lists.at(1), list_Squares(5, {{1, 1}}));
}

TEST(CurveCut, TakesATriangleThatTouchesTheCurveOnlyWithItsCorners) {
  const TSides sides = cut(make_Star(), {{make_Circle({0, 0, 0}, 1, 6)}});
  EXPECT_EQ(sides.code, 0);
  EXPECT_EQ(sides.lists.at(1), (List{0, 1, 2, 3}));
}

TEST(CurveCut, LeavesATriangleThatTouchesTheCurveFromTheRight) {
  const TSides sides = cut(make_Star(), {{turn_Round(make_Circle({0, 0, 0}, 1, 6))}});
  EXPECT_EQ(sides.code, 0);
  EXPECT_EQ(sides.lists.at(0), (List{0, 1, 2, 3}));
}

TEST(CurveCut, LeavesATriangleBetweenTwoCurvesThatHasNoEdgeOfThem) {
  // From its first corner the loop leads to none of the others: the walk ends after one round.
  TSoup soup = make_Grid(9, 3);
  soup.tri.push_back({11, 14, 17});  // from one frame to the next and on, with no edge of them
  const TSides sides =
      cut(soup, {{make_Frame(1, 1, 1, 1), make_Frame(4, 1, 1, 1), make_Frame(7, 1, 1, 1)}});
  EXPECT_EQ(sides.code, 0);
  EXPECT_EQ(sides.lists.at(1), list_Squares(9, {{1, 1}, {4, 1}, {7, 1}}));
}

TEST(CurveCut, OfACircleOnASheetHasTheAreaOfTheDisk) {
  const TSoup sheet = make_Grid(40, 40);
  for (const double radius : {4.0, 8.0, 15.0}) {
    const TSides sides = cut(sheet, {{make_Circle({20.3, 19.8, 0}, radius, 200)}});
    ASSERT_EQ(sides.code, 0) << radius;
    EXPECT_NEAR(sum_Area(sheet, sides.lists[1]), 3.14159265 * radius * radius, 6.3 * radius * 0.75)
        << radius;
    EXPECT_EQ(join(sides), list_All(sheet));
    for (const uint32_t t : sides.lists[1]) {
      TSoup copy = sheet;
      EXPECT_LT(dst(cen_Tri(get_Fac(copy.msh(), t)), {20.3, 19.8, 0}), radius + 1.5);
    }
  }
}

TEST(CurveCut, OfACircleOnASphereHasTheAreaOfTheCap) {
  const TSoup sphere = make_Sphere(48, 96, 10.0);
  for (const double polar : {30.0, 60.0, 90.0, 140.0}) {
    const double angle = polar * kRadians;
    const TSides sides =
        cut(sphere, {{make_Circle({0, 0, 10.0 * std::cos(angle)}, 10.0 * std::sin(angle), 150)}});
    ASSERT_EQ(sides.code, 0) << polar;
    const double cap = 2 * 3.14159265 * 100.0 * (1.0 - std::cos(angle));
    const double row = 2 * 3.14159265 * 100.0 * std::sin(angle) * (3.75 * kRadians);
    EXPECT_NEAR(sum_Area(sphere, sides.lists[1]), cap, row) << polar;
    EXPECT_EQ(join(sides), list_All(sphere));
  }
}

TEST(CurveCut, TakesSeveralCurvesAsOneSet) {
  const TSides sides = cut(make_Grid(9, 4), {{make_Frame(1, 1, 1, 2), make_Frame(5, 1, 2, 1)}});
  EXPECT_EQ(sides.lists.at(1), list_Squares(9, {{1, 1}, {1, 2}, {5, 1}, {6, 1}}));
}

TEST(CurveCut, OfARingHasTheBandBetweenItsCurves) {
  const TSoup grid = make_Grid(9, 9);
  const TSides sides = cut(grid, {{make_Frame(1, 1, 7, 7), turn_Round(make_Frame(3, 3, 3, 3))}});
  EXPECT_EQ(sides.code, 0);
  EXPECT_EQ(sum_Area(grid, sides.lists.at(1)), 49.0 - 9.0);
}

TEST(CurveCut, LeavesTrianglesWithEqualCornersOutOfBothLists) {
  TSoup soup = make_Grid(5, 4);
  const auto extra = static_cast<uint32_t>(soup.tri.size());
  soup.tri.push_back({0, 0, 1});
  soup.tri.push_back({14, 15, 14});  // inside
  const TSides sides = cut(soup, {{make_Frame(1, 1, 3, 3)}});
  EXPECT_EQ(sides.code, 0);
  List all = join(sides);
  EXPECT_EQ(all.size(), size_t{extra});
  EXPECT_EQ(all.back(), extra - 1);
}

TEST(CurveCut, DropsASpurOfTheCurve) {
  Points curve = make_Frame(1, 1, 3, 3);
  curve.insert(curve.begin() + 2, {{6, 1, 0}, {4, 1, 0}});
  const TSoup grid = make_Grid(7, 6);
  const TSides sides = cut(grid, {{curve}});
  EXPECT_EQ(sides.lists.at(1), cut(grid, {{make_Frame(1, 1, 3, 3)}}).lists.at(1));
}

TEST(CurveCut, OfACurveThatBoundsNothingFails) {
  const TSoup grid = make_Grid(4, 4);
  // There and back along one line: both sides are left of it.
  EXPECT_EQ(cut(grid, {{{{1, 2, 0}, {3, 2, 0}}}}).code, -19);
  // No curve at all.
  EXPECT_EQ(cut(grid, {{}}).code, -20);
  // A curve about a single vertex.
  EXPECT_EQ(cut(grid, {{make_Circle({2, 2, 0}, 0.1, 20)}}).code, -19);
  EXPECT_EQ(cut(grid, {{{}}}).code, -19);
}

TEST(CurveCut, OfACurveThatBoundsAllTrianglesFails) {
  EXPECT_EQ(cut(make_Grid(4, 4), {{make_Frame(0, 0, 4, 4)}}).code, -19);
  EXPECT_EQ(cut(make_Grid(4, 4), {{turn_Round(make_Frame(0, 0, 4, 4))}}).code, -20);
}

TEST(CurveCut, OfNothingAmongTrianglesThatAreInNoListFailsForTheEmptyList) {
  TSoup soup = make_Grid(4, 4);
  soup.tri.push_back({6, 6, 6});
  EXPECT_EQ(cut(soup, {{}}).code, -19);
}

TEST(CurveCut, FailsWhereACurveRunsThroughAnEdgeOfThreeTriangles) {
  EXPECT_EQ(cut(make_Finned(), {{make_Frame(1, 1, 4, 2)}}).code, -15);
}

TEST(CurveCut, PassesOverEdgesOfThreeTrianglesAwayFromTheCurve) {
  const TSides sides = cut(make_Finned(), {{make_Frame(1, 1, 4, 4)}});
  EXPECT_EQ(sides.code, 0);
  EXPECT_EQ(sides.lists.at(1).size(), 33u);
  EXPECT_EQ(sides.lists.at(1).back(), 72u);
}

TEST(CurveCut, FailsWhereACurveRunsThroughATriangleWithEqualCorners) {
  TSoup soup = make_Grid(5, 4);
  soup.tri.push_back({7, 7, 8});
  EXPECT_EQ(cut(soup, {{make_Frame(1, 1, 2, 2)}}).code, -15);
}

TEST(CurveCut, OfAWalkThatDoesNotComeBackFails) {
  EXPECT_EQ(cut(make_Grid(2, 2), {{{{0.5, 0.5, 0}, {2, 2, 0}, {0, 2, 0}}}}).code, -17);
}

TEST(CurveCut, OfAnEmptyMeshFails) {
  TSoup soup = make_Grid(2, 2);
  T3DMSH msh = soup.msh();
  msh.n_vtx = 0;
  Scoped<TLst<TLst<uint32_t>>> sides;
  EXPECT_EQ(crv_Cut(msh, TCurves{{make_Frame(0, 0, 1, 1)}}.view(), *sides), -1);
}

TEST(CurveCut, TakesCurvesWithoutArrays) {
  TSoup soup = make_Grid(2, 2);
  Scoped<TLst<TLst<uint32_t>>> sides;
  EXPECT_EQ(crv_Cut(soup.msh(), {nullptr, 2}, *sides), -20);
  TArrVec curve = {nullptr, 4};
  EXPECT_EQ(crv_Cut(soup.msh(), {&curve, 1}, *sides), -19);
  EXPECT_EQ(crv_CutLst(soup.msh(), {nullptr, 2}, *sides), -19);
  EXPECT_EQ(crv_CutLst(soup.msh(), {nullptr, 0}, *sides), -19);
  TArrArrVec set = {nullptr, 4};
  EXPECT_EQ(crv_CutLst(soup.msh(), {&set, 0}, *sides), -19);
  EXPECT_EQ(crv_CutLst(soup.msh(), {&set, 1}, *sides), -20);
}

TEST(CurveCut, WithoutMemoryFailsWithTheCodeOfTheStep) {
  TSoup soup = make_Grid(5, 4);
  TCurves curves = {{make_Frame(1, 1, 2, 2)}};
  const TArrArrVec view = curves.view();
  const auto run = [&] {
    Scoped<TLst<TLst<uint32_t>>> sides;
    const int32_t code = crv_Cut(soup.msh(), view, *sides);
    EXPECT_EQ(code == 0, sides->data != nullptr);
    return code;
  };
  EXPECT_EQ(list_FailureCodes(run), (std::vector<int32_t>{-13, -16, -2, -3, -11, -3, 0}));
}

TEST(CurveCutLst, HasAListForEachSetBehindTheRest) {
  const TSides sides =
      cut_Sets(make_Grid(9, 4), {{{make_Frame(5, 1, 2, 1)}}, {{make_Frame(1, 1, 1, 2)}}});
  ASSERT_EQ(sides.code, 0);
  ASSERT_EQ(sides.lists.size(), 3u);
  EXPECT_EQ(sides.lists[1], list_Squares(9, {{5, 1}, {6, 1}}));
  EXPECT_EQ(sides.lists[2], list_Squares(9, {{1, 1}, {1, 2}}));
  EXPECT_EQ(join(sides), list_All(make_Grid(9, 4)));
}

TEST(CurveCutLst, OfANestedSetEndsTheOuterOneAtTheInnerLoop) {
  const TSoup grid = make_Grid(9, 9);
  const TSides sides = cut_Sets(grid, {{{make_Frame(1, 1, 7, 7)}}, {{make_Frame(3, 3, 3, 3)}}});
  ASSERT_EQ(sides.code, 0);
  EXPECT_EQ(sum_Area(grid, sides.lists[1]), 49.0 - 9.0);
  EXPECT_EQ(sum_Area(grid, sides.lists[2]), 9.0);
}

TEST(CurveCutLst, OfALoopOfTwoSetsGivesItsLeftToTheFirst) {
  const TSides sides =
      cut_Sets(make_Grid(5, 4), {{{make_Frame(1, 1, 2, 2)}}, {{make_Frame(1, 1, 2, 2)}}});
  EXPECT_EQ(sides.code, -19);
}

TEST(CurveCutLst, SharesWhatLiesLeftOfTwoSetsByNearness) {
  // The first set's loop runs round the second's, which has its outside to its left.
  const TSoup grid = make_Grid(15, 15);
  const TSides sides =
      cut_Sets(grid, {{{make_Frame(1, 1, 13, 13)}}, {{turn_Round(make_Frame(6, 6, 3, 3))}}});
  ASSERT_EQ(sides.code, 0);
  EXPECT_GT(sum_Area(grid, sides.lists[1]), 52.0);
  EXPECT_GT(sum_Area(grid, sides.lists[2]), 12.0);
  EXPECT_EQ(sum_Area(grid, sides.lists[1]) + sum_Area(grid, sides.lists[2]), 169.0 - 9.0);
}

TEST(CurveCutLst, OfASetWithoutCurvesFails) {
  EXPECT_EQ(cut_Sets(make_Grid(5, 4), {{{make_Frame(1, 1, 2, 2)}}, {{}}}).code, -19);
  EXPECT_EQ(cut_Sets(make_Grid(5, 4), {}).code, -19);
}

namespace {

TSoup pick_Mesh(reference::Random& random) {
  TSoup soup = make_Bumpy(6, 5);
  if (random.chance(0.2)) soup.tri.push_back(soup.tri[random.below(soup.tri.size())]);
  if (random.chance(0.2)) soup.tri.push_back({1, 1, 3});
  for (uint64_t k = random.below(6); k-- > 0;)
    soup.tri.erase(soup.tri.begin() + static_cast<long>(random.below(soup.tri.size())));
  return soup;
}

Points pick_Curve(reference::Random& random) {
  const auto count = static_cast<uint32_t>(3 + random.below(9));
  const T3DVEC centre = {random.real(1, 5), random.real(1, 4), 0};
  Points points = make_Circle(centre, random.real(0.5, 3), count);
  for (T3DVEC& p : points) p += random.triple(-0.4, 0.4);
  return random.chance(0.5) ? points : turn_Round(points);
}

std::vector<TCurves> pick_Sets(reference::Random& random) {
  std::vector<TCurves> sets(1 + random.below(2));
  for (TCurves& set : sets)
    for (uint64_t c = 1 + random.below(2); c-- > 0;) set.curves.push_back(pick_Curve(random));
  return sets;
}

// By the plain forms of all steps.
TSides cut_Plainly(const TSoup& soup, const std::vector<TCurves>& sets) {
  std::vector<std::vector<List>> loops;
  for (const TCurves& set : sets) {
    loops.emplace_back();
    for (const Points& curve : set.curves) {
      loops.back().emplace_back();
      if (!plain::walk_Curve(soup.vtx, soup.tri, curve, loops.back().back())) return {-17, {}};
    }
  }
  for (std::vector<List>& set : loops)
    for (List& loop : set) {
      if (loop.empty()) return {-19, {}};
      loop = plain::find_BigLoop(plain::drop_Repeats(loop));
      loop.pop_back();
    }
  List label;
  if (!plain::label_Sides(soup.tri, static_cast<uint32_t>(soup.vtx.size()), loops, label))
    return {-15, {}};
  std::vector<List> lists(sets.size() + 1);
  for (uint32_t t = 0; t < soup.tri.size(); ++t)
    if (!is_Flat(soup.tri[t])) lists[label[t]].push_back(t);
  for (const List& list : lists) {
    if (list.empty()) return {-19, {}};
    if (list.size() == soup.tri.size()) return {-20, {}};
  }
  return {0, lists};
}

}  // namespace

TEST(CurveCutLst, EqualsThePlainForm) {
  const uint64_t seed = 46;
  reference::Random random(seed);
  std::map<int32_t, uint32_t> codes;
  for (uint32_t i = 0; i < scale_Cases(1500); ++i) {
    const TSoup soup = pick_Mesh(random);
    const std::vector<TCurves> sets = pick_Sets(random);
    const TSides sides = cut_Sets(soup, sets), expected = cut_Plainly(soup, sets);
    ASSERT_EQ(sides.code, expected.code) << "seed " << seed << ", case " << i;
    ASSERT_EQ(sides.lists, expected.lists) << "seed " << seed << ", case " << i;
    ++codes[sides.code];
  }
  EXPECT_GT(codes[0], 300u);
  EXPECT_GT(codes[-15], 10u);
  EXPECT_GT(codes[-17], 10u);
  EXPECT_GT(codes[-19], 10u);
}

TEST(CurveCutLst, EndsOnCoordinatesThatAreNotFinite) {
  const uint64_t seed = 47;
  reference::Random random(seed);
  for (uint32_t i = 0; i < scale_Cases(500); ++i) {
    TSoup soup = pick_Mesh(random);
    std::vector<TCurves> sets = pick_Sets(random);
    for (T3DVEC& v : soup.vtx)
      if (random.chance(0.1)) v.y = random.special();
    for (T3DVEC& p : sets[0].curves[0])
      if (random.chance(0.1)) p.x = random.special();
    EXPECT_LE(cut_Sets(soup, sets).code, 0) << "seed " << seed;
  }
}
