// Merging of vertices by distance and by equal coordinates.
#include "mesh/weld.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/mesh/soups.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TSoup make_Points(std::vector<T3DVEC> points) {
  TSoup soup;
  soup.vtx = std::move(points);
  soup.tri = {{0, 0, 0}};
  return soup;
}

std::vector<uint32_t> map_Vertices(TSoup soup, double tolerance) {
  Scoped<TWeld> weld;
  EXPECT_TRUE(wld_Tol(soup.msh(), *weld, tolerance));
  return std::vector<uint32_t>(weld->map, weld->map + soup.vtx.size());
}

bool is_Empty(const T3DMSH& m) { return !m.vtx && !m.tri && m.n_vtx == 0 && m.n_tri == 0; }
bool is_Empty(const TWeld& w) {
  return is_Empty(w.source) && is_Empty(w.merged) && !w.map && !w.clusters && !w.next;
}

// A polyline that owns its arrays, as wld_Pol needs it.
struct TOwned {
  TOwned(const std::vector<T3DVEC>& points, const std::vector<T3DSGM>& segments) {
    EXPECT_TRUE(alloc_Pol(pol, static_cast<uint32_t>(points.size()),
                          static_cast<uint32_t>(segments.size())));
    std::copy(points.begin(), points.end(), pol.pnt);
    std::copy(segments.begin(), segments.end(), pol.sgm);
  }
  ~TOwned() { release(pol); }
  std::vector<T3DVEC> points() const { return {pol.pnt, pol.pnt + pol.n_pnt}; }
  Edges segments() const { return copy_Of(TArr<T3DSGM>{pol.sgm, pol.n_sgm}); }
  T3DPOL pol = {};
};

std::vector<T3DVEC> get_Points(const T3DMSH& msh) { return {msh.vtx, msh.vtx + msh.n_vtx}; }
std::vector<std::vector<uint32_t>> get_Triangles(const T3DMSH& msh) {
  std::vector<std::vector<uint32_t>> triangles;
  for (uint32_t t = 0; t < msh.n_tri; ++t)
    triangles.push_back({msh.tri[t].a, msh.tri[t].b, msh.tri[t].c});
  return triangles;
}
using Triangles = std::vector<std::vector<uint32_t>>;

// Points of a small lattice, so that many coincide.
std::vector<T3DVEC> pick_Points(std::mt19937_64& random, uint32_t count, uint32_t steps) {
  std::vector<T3DVEC> points;
  const auto pick = [&] { return double(random() % steps); };
  for (uint32_t i = 0; i < count; ++i) points.push_back({pick(), pick(), pick()});
  return points;
}

}  // namespace

TEST(WeldByDistance, WithToleranceZeroMergesOnlyVerticesAtTheSamePlace) {
  const double next = std::nextafter(1.0, 2.0);
  EXPECT_EQ(map_Vertices(make_Points({{1, 0, 0}, {next, 0, 0}, {1, 0, 0}, {1, -0.0, 0}}), 0.0),
            (std::vector<uint32_t>{0, 1, 0, 0}));
}

TEST(WeldByDistance, IncludesTheTolerance) {
  const double beyond = std::nextafter(2.0, 3.0);
  EXPECT_EQ(map_Vertices(make_Points({{0, 0, 0}, {2, 0, 0}, {beyond, 0, 0}, {50, 0, 0}}), 2),
            (std::vector<uint32_t>{0, 0, 1, 2}));
}

TEST(WeldByDistance, TakesVerticesBeyondTheToleranceWhereTheirWholeBoxLiesInTheWiderSphere) {
  EXPECT_EQ(map_Vertices(make_Points({{0, 0, 0}, {2, 0, 0}, {2.1, 0, 0}}), 2),
            (std::vector<uint32_t>{0, 0, 0}));
}

TEST(WeldByDistance, OfThreeInARowTheFirstTakesTheSecondAndTheThirdStandsAlone) {
  EXPECT_EQ(map_Vertices(make_Points({{0, 0, 0}, {0.9, 0, 0}, {1.8, 0, 0}}), 1.0),
            (std::vector<uint32_t>{0, 0, 1}));
}

TEST(WeldByDistance, AVertexStaysWithTheEarlierCentreThoughALaterOneIsCloser) {
  EXPECT_EQ(map_Vertices(make_Points({{0, 0, 0}, {1.8, 0, 0}, {0.95, 0, 0}}), 1.0),
            (std::vector<uint32_t>{0, 1, 0}));
}

TEST(WeldByDistance, ChainsTheMembersOfAClusterLastFirst) {
  TSoup soup = make_Points({{0, 0, 0}, {9, 0, 0}, {0, 0, 0}, {0, 0, 0}});
  Scoped<TWeld> weld;
  ASSERT_TRUE(wld_Tol(soup.msh(), *weld, 0.0));
  ASSERT_EQ(weld->merged.n_vtx, 2u);
  EXPECT_EQ(weld->clusters[0].head, 3u);
  EXPECT_EQ(weld->clusters[0].count, 3u);
  EXPECT_EQ(weld->clusters[0].id, 0u);
  EXPECT_EQ(weld->clusters[1].head, 1u);
  EXPECT_EQ(weld->clusters[1].count, 1u);
  EXPECT_EQ(weld->clusters[1].id, 1u);
  EXPECT_EQ(std::vector<uint32_t>(weld->next, weld->next + 4),
            (std::vector<uint32_t>{kNone, kNone, 0, 2}));
}

TEST(WeldByDistance, AMergedVertexIsTheMeanOfItsMembers) {
  TSoup soup = make_Points({{1, 2, 3}, {1.5, 2, 3}, {0.5, 2, 6}, {50, 0, 0}});
  Scoped<TWeld> weld;
  ASSERT_TRUE(wld_Tol(soup.msh(), *weld, 4.0));
  EXPECT_EQ(get_Points(weld->merged), (std::vector<T3DVEC>{{1, 2, 4}, {50, 0, 0}}));
}

TEST(WeldByDistance, TheMeanIsSummedFromTheLastMemberToTheFirst) {
  TSoup soup = make_Points({{0.1, 0, 0}, {0.2, 0, 0}, {0.3, 0, 0}});
  Scoped<TWeld> weld;
  ASSERT_TRUE(wld_Tol(soup.msh(), *weld, 4.0));
  ASSERT_NE((0.3 + 0.2) + 0.1, (0.1 + 0.2) + 0.3);
  EXPECT_EQ(weld->merged.vtx[0].x, ((0.3 + 0.2) + 0.1) / 3.0);
}

TEST(WeldByDistance, MapsTrianglesAndKeepsThoseThatDegenerate) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {5, 0, 0}, {0, 5, 0}, {0.5, 0, 0}};
  soup.tri = {{0, 1, 2}, {3, 2, 0}};
  Scoped<TWeld> weld;
  ASSERT_TRUE(wld_Tol(soup.msh(), *weld, 1.0));
  EXPECT_EQ(get_Triangles(weld->merged), (Triangles{{0, 1, 2}, {0, 2, 0}}));
  EXPECT_EQ(weld->source.vtx, soup.vtx.data());
  EXPECT_EQ(weld->source.n_tri, 2u);
}

TEST(WeldByDistance, ReleaseFreesAllButTheSource) {
  TSoup soup = make_Tetrahedron();
  const int64_t before = live_Allocations();
  TWeld weld;
  ASSERT_TRUE(wld_Tol(soup.msh(), weld, 0.0));
  release(weld);
  EXPECT_TRUE(is_Empty(weld));
  EXPECT_EQ(live_Allocations(), before);
  EXPECT_EQ(soup.vtx[3].x, 3.0);
}

TEST(WeldByDistance, OfAnEmptyMesh_Fails) {
  TSoup soup = make_Tetrahedron();
  TWeld weld;
  EXPECT_FALSE(wld_Tol({nullptr, 4, soup.tri.data(), 4}, weld, 1.0));
  EXPECT_FALSE(wld_Tol({soup.vtx.data(), 0, soup.tri.data(), 4}, weld, 1.0));
  EXPECT_FALSE(wld_Tol({soup.vtx.data(), 4, nullptr, 4}, weld, 1.0));
  EXPECT_FALSE(wld_Tol({soup.vtx.data(), 4, soup.tri.data(), 0}, weld, 1.0));
  EXPECT_TRUE(is_Empty(weld));
}

TEST(WeldByDistance, OfAVertexThatItsOwnQueryDoesNotFind_Fails) {
  TWeld weld;
  TSoup soup = make_Points({{0, 0, 0}, {kNan, 0, 0}, {50, 0, 0}});
  EXPECT_FALSE(wld_Tol(soup.msh(), weld, 1.0));
  soup = make_Points({{0, 0, 0}, {0, kInf, 0}, {1, 0, 0}});
  EXPECT_FALSE(wld_Tol(soup.msh(), weld, 1.0));
  soup = make_Points({{0, 0, 0}, {1, 0, 0}});
  EXPECT_FALSE(wld_Tol(soup.msh(), weld, kNan));
  EXPECT_TRUE(is_Empty(weld));
}

TEST(WeldByDistance, OfAVertexThatIsNoNumberMayBeTakenWithTheWholeBoxAroundIt) {
  TSoup soup = make_Points({{0, 0, 0}, {kNan, 0, 0}, {1, 0, 0}});
  EXPECT_EQ(map_Vertices(soup, 1.0), (std::vector<uint32_t>{0, 0, 0}));
}

TEST(WeldByDistance, WithoutMemory_FailsAndLeavesNothing) {
  TSoup soup = make_Tetrahedron();
  const auto codes = list_FailureCodes([&] {
    TWeld weld;
    const bool good = wld_Tol(soup.msh(), weld, 1.0);
    EXPECT_EQ(is_Empty(weld), !good);
    release(weld);
    return good;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}

TEST(WeldByDistance, OnRandomPointsWithToleranceZeroIsEqualityOfCoordinates) {
  for (uint32_t seed = 0; seed < scale_Cases(50); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const std::vector<T3DVEC> points = pick_Points(random, 1 + seed * 8, 2 + seed % 6);
    std::vector<uint32_t> expected;
    uint32_t merged = 0;
    for (size_t i = 0; i < points.size(); ++i) {
      const auto first = std::find(points.begin(), points.end(), points[i]) - points.begin();
      expected.push_back(size_t(first) == i ? merged++ : expected[size_t(first)]);
    }
    ASSERT_EQ(map_Vertices(make_Points(points), 0.0), expected);
  }
}

TEST(WeldByDistance, EveryVertexIsNearTheFirstOfItsClusterAndFirstsAreApart) {
  // The query may reach beyond the tolerance where a whole box lies in its wider sphere.
  const double reach = 1.63;
  for (uint32_t seed = 0; seed < scale_Cases(30); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> pick(0.0, 4.0);
    std::vector<T3DVEC> points;
    for (uint32_t i = 0; i < 300; ++i) points.push_back({pick(random), pick(random), pick(random)});
    const std::vector<uint32_t> map = map_Vertices(make_Points(points), 1.0);
    std::vector<T3DVEC> firsts;
    for (size_t v = 0; v < map.size(); ++v) {
      ASSERT_LE(map[v], firsts.size());
      if (map[v] < firsts.size()) {
        ASSERT_LE(dst(points[v], firsts[map[v]]), reach);
        continue;
      }
      for (const T3DVEC& first : firsts) ASSERT_GT(dst(points[v], first), 1.0);
      firsts.push_back(points[v]);
    }
  }
}

TEST(WeldOfAPolyline, TreatsBothZerosAsOneKey) {
  TOwned line({{0.0, 1, 2}, {5, 5, 5}, {-0.0, 1, 2}}, {{0, 1}, {1, 2}});
  ASSERT_TRUE(wld_Pol(line.pol));
  EXPECT_EQ(line.segments(), (Edges{{0, 1}, {1, 0}}));
  EXPECT_EQ(line.points(), (std::vector<T3DVEC>{{0, 1, 2}, {5, 5, 5}}));
}

TEST(WeldOfAPolyline, KeepsPointsApartThatDifferInTheLastBit) {
  TOwned line({{1, 0, 0}, {std::nextafter(1.0, 2.0), 0, 0}}, {{0, 1}});
  ASSERT_TRUE(wld_Pol(line.pol));
  EXPECT_EQ(line.pol.n_pnt, 2u);
}

TEST(WeldOfAPolyline, NumbersPointsByFirstUseAndDropsUnusedOnes) {
  TOwned line({{9, 9, 9}, {1, 0, 0}, {2, 0, 0}, {1, 0, 0}}, {{2, 1}, {3, 2}, {1, 3}});
  ASSERT_TRUE(wld_Pol(line.pol));
  EXPECT_EQ(line.points(), (std::vector<T3DVEC>{{2, 0, 0}, {1, 0, 0}}));
  EXPECT_EQ(line.segments(), (Edges{{0, 1}, {1, 0}, {1, 1}}));
}

TEST(WeldOfAPolyline, MergesEqualPointsThatAreNoNumbers) {
  TOwned line({{kNan, 0, 0}, {1, kInf, 0}, {kNan, 0, 0}, {1, kInf, 0}}, {{0, 1}, {2, 3}});
  ASSERT_TRUE(wld_Pol(line.pol));
  EXPECT_EQ(line.segments(), (Edges{{0, 1}, {0, 1}}));
}

TEST(WeldOfAPolyline, WithoutPointsOrSegments_Fails) {
  T3DVEC p = {};
  T3DSGM s = {0, 0};
  for (T3DPOL pol : {T3DPOL{nullptr, 1, &s, 1}, T3DPOL{&p, 0, &s, 1}, T3DPOL{&p, 1, nullptr, 1},
                     T3DPOL{&p, 1, &s, 0}})
    EXPECT_FALSE(wld_Pol(pol));
}

TEST(WeldOfAPolyline, WithoutMemory_FailsAndChangesNothing) {
  const std::vector<T3DVEC> points = {{7, 7, 7}, {1, 0, 0}, {1, 0, 0}};
  const auto codes = list_FailureCodes([&] {
    T3DPOL pol = {new_Array<T3DVEC>(3), 3, new_Array<T3DSGM>(1), 1};
    if (!pol.pnt || !pol.sgm) {
      release(pol);
      return false;
    }
    std::copy(points.begin(), points.end(), pol.pnt);
    pol.sgm[0] = {1, 2};
    const bool good = wld_Pol(pol);
    EXPECT_EQ(pol.n_pnt, good ? 1u : 3u);
    EXPECT_EQ(pol.sgm[0].b, good ? 0u : 2u);
    release(pol);
    return good;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}

TEST(WeldOfAPolyline, AgreesWithASearchThroughAllPointsOnRandomLines) {
  for (uint32_t seed = 0; seed < scale_Cases(100); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const std::vector<T3DVEC> points = pick_Points(random, 1 + seed, 2 + seed % 5);
    std::vector<T3DSGM> segments;
    const auto pick = [&] { return uint32_t(random() % points.size()); };
    for (uint32_t s = 0; s <= seed; ++s) segments.push_back({pick(), pick()});
    std::vector<T3DVEC> merged;
    Edges expected;
    const auto find_Or_Add = [&](uint32_t p) {
      const auto at = std::find(merged.begin(), merged.end(), points[p]) - merged.begin();
      if (size_t(at) == merged.size()) merged.push_back(points[p]);
      return uint32_t(at);
    };
    for (const T3DSGM& s : segments) {
      const uint32_t a = find_Or_Add(s.a);
      expected.push_back({a, find_Or_Add(s.b)});
    }
    TOwned line(points, segments);
    ASSERT_TRUE(wld_Pol(line.pol));
    ASSERT_EQ(line.points(), merged);
    ASSERT_EQ(line.segments(), expected);
  }
}

TEST(SubMesh, GluesShellsWithCoincidentVertices) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}};
  soup.tri = {{0, 1, 2}, {4, 3, 5}};
  std::vector<uint32_t> lst = {0, 1};
  Scoped<T3DMSH> sub;
  ASSERT_TRUE(wld_Sub(soup.msh(), view_Lst(lst), *sub));
  EXPECT_EQ(get_Triangles(*sub), (Triangles{{0, 1, 2}, {2, 1, 3}}));
  EXPECT_EQ(get_Points(*sub), (std::vector<T3DVEC>{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}));
}

TEST(SubMesh, TakesTrianglesInTheOrderOfTheListAndRepeatsThem) {
  TSoup soup = make_Soup(4, {{0, 1, 2}, {2, 1, 3}});
  std::vector<uint32_t> lst = {1, 0, 1};
  Scoped<T3DMSH> sub;
  ASSERT_TRUE(wld_Sub(soup.msh(), view_Lst(lst), *sub));
  EXPECT_EQ(get_Triangles(*sub), (Triangles{{0, 1, 2}, {3, 1, 0}, {0, 1, 2}}));
  EXPECT_EQ(get_Points(*sub), (std::vector<T3DVEC>{{2, 0, 0}, {1, 0, 0}, {3, 0, 0}, {0, 0, 0}}));
}

TEST(SubMesh, ATriangleWithEqualCornersLeavesItsSlotZero) {
  TSoup soup = make_Soup(5, {{0, 1, 2}, {4, 4, 3}, {1, 2, 3}});
  std::vector<uint32_t> lst = {2, 1, 0};
  Scoped<T3DMSH> sub;
  ASSERT_TRUE(wld_Sub(soup.msh(), view_Lst(lst), *sub));
  EXPECT_EQ(get_Triangles(*sub), (Triangles{{0, 1, 2}, {0, 0, 0}, {3, 0, 1}}));
  EXPECT_EQ(sub->n_vtx, 4u);
}

TEST(SubMesh, OfNothingButTrianglesWithEqualCorners_Fails) {
  TSoup soup = make_Soup(2, {{0, 0, 1}});
  std::vector<uint32_t> lst = {0};
  T3DMSH sub;
  EXPECT_FALSE(wld_Sub(soup.msh(), view_Lst(lst), sub));
  EXPECT_TRUE(is_Empty(sub));
}

TEST(SubMesh, OfAnEmptyMeshOrListOrAnIndexBeyondTheMesh_Fails) {
  TSoup soup = make_Tetrahedron();
  std::vector<uint32_t> good = {0}, bad = {0, 4};
  T3DMSH sub;
  EXPECT_FALSE(wld_Sub({}, view_Lst(good), sub));
  EXPECT_FALSE(wld_Sub(soup.msh(), {}, sub));
  EXPECT_FALSE(wld_Sub(soup.msh(), {nullptr, 1, 1}, sub));
  EXPECT_FALSE(wld_Sub(soup.msh(), {good.data(), 0, 1}, sub));
  EXPECT_FALSE(wld_Sub(soup.msh(), view_Lst(bad), sub));
  EXPECT_TRUE(is_Empty(sub));
}

TEST(SubMesh, WithoutMemory_FailsAndLeavesNothing) {
  TSoup soup = make_Tetrahedron();
  std::vector<uint32_t> lst = {0, 3};
  const auto codes = list_FailureCodes([&] {
    T3DMSH sub;
    const bool good = wld_Sub(soup.msh(), view_Lst(lst), sub);
    EXPECT_EQ(is_Empty(sub), !good);
    release(sub);
    return good;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}

TEST(SubMesh, OnRandomSoupsKeepsTheCoordinatesOfEachCornerAndNoPlaceTwice) {
  for (uint32_t seed = 0; seed < scale_Cases(100); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    TSoup soup = make_Random(random, 4 + seed % 40, 1 + seed % 50, false);
    soup.vtx = pick_Points(random, uint32_t(soup.vtx.size()), 2 + seed % 4);
    std::vector<uint32_t> lst;
    for (uint32_t i = 0; i <= seed; ++i) lst.push_back(uint32_t(random() % soup.tri.size()));
    Scoped<T3DMSH> sub;
    ASSERT_TRUE(wld_Sub(soup.msh(), view_Lst(lst), *sub));
    ASSERT_EQ(sub->n_tri, lst.size());
    for (uint32_t i = 0; i < lst.size(); ++i)
      for (uint32_t k = 0; k < 3; ++k)
        ASSERT_EQ(sub->vtx[corner(sub->tri[i], k)], soup.vtx[corner(soup.tri[lst[i]], k)]);
    for (uint32_t a = 0; a < sub->n_vtx; ++a)
      for (uint32_t b = 0; b < a; ++b) ASSERT_NE(sub->vtx[a], sub->vtx[b]);
  }
}

TEST(SubMeshes, AreOneForEachList) {
  TSoup soup = make_Soup(4, {{0, 1, 2}, {2, 1, 3}});
  std::vector<uint32_t> one = {1}, two = {0, 1};
  std::vector<TArr<uint32_t>> lists = {view_Arr(one), view_Arr(two)};
  Scoped<TArr<T3DMSH>> subs;
  ASSERT_TRUE(wld_SubLst(soup.msh(), view_Lst(lists), *subs));
  ASSERT_EQ(subs->count, 2u);
  EXPECT_EQ(get_Triangles(subs->data[0]), (Triangles{{0, 1, 2}}));
  EXPECT_EQ(get_Triangles(subs->data[1]), (Triangles{{0, 1, 2}, {2, 1, 3}}));
}

TEST(SubMeshes, StopAtTheFirstFailureAndLeaveNothing) {
  TSoup soup = make_Tetrahedron();
  std::vector<uint32_t> good = {1}, bad = {7};
  std::vector<TArr<uint32_t>> lists = {view_Arr(good), view_Arr(bad), view_Arr(good)};
  const int64_t before = live_Allocations();
  TArr<T3DMSH> subs;
  EXPECT_FALSE(wld_SubLst(soup.msh(), view_Lst(lists), subs));
  EXPECT_EQ(subs.data, nullptr);
  EXPECT_EQ(live_Allocations(), before);
}

TEST(SubMeshes, WithoutLists_Fail) {
  TSoup soup = make_Tetrahedron();
  TArr<uint32_t> none = {};
  TArr<T3DMSH> subs;
  EXPECT_FALSE(wld_SubLst(soup.msh(), {nullptr, 1, 1}, subs));
  EXPECT_FALSE(wld_SubLst(soup.msh(), {&none, 0, 1}, subs));
  EXPECT_FALSE(wld_SubLst(soup.msh(), {&none, 1, 1}, subs));
}

TEST(SubMeshes, WithoutMemory_FailAndLeaveNothing) {
  TSoup soup = make_Tetrahedron();
  std::vector<uint32_t> one = {1}, two = {0, 1};
  std::vector<TArr<uint32_t>> lists = {view_Arr(one), view_Arr(two)};
  const auto codes = list_FailureCodes([&] {
    TArr<T3DMSH> subs;
    const bool good = wld_SubLst(soup.msh(), view_Lst(lists), subs);
    EXPECT_EQ(subs.data != nullptr, good);
    release(subs);
    return good;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}
