// Repair of lists of triangles into one manifold patch.
#include "mesh/region_repair.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "tests/mesh/soups.h"
#include "tests/reference/plain_adjacency.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using List = std::vector<uint32_t>;

// A mesh with the tables and bit vectors that the repair needs.
struct TCase {
  explicit TCase(TSoup s) : soup(std::move(s)), msh(soup.msh()) {
    EXPECT_EQ(adj_VtxTri(msh, *vtx_tri), 0);
    EXPECT_EQ(adj_TriTri(msh, *tri_tri), 0);
    vertices.init(msh.n_vtx);
    triangles.init(msh.n_tri);
  }
  int32_t run(TLst<uint32_t>& lst) {
    return reg_Repair(msh, lst, vertices, triangles, *vtx_tri, *tri_tri);
  }
  List repair(List lst) {
    TLst<uint32_t> view = view_Lst(lst);
    EXPECT_EQ(run(view), 0);
    lst.resize(view.count);
    return lst;
  }
  TSoup soup;
  T3DMSH msh;
  Scoped<TAdj> vtx_tri, tri_tri;
  CBitVector vertices, triangles;
};

List repair_All(const TSoup& soup) {
  List all(soup.tri.size());
  std::iota(all.begin(), all.end(), 0u);
  return TCase(soup).repair(all);
}

// Two triangles on an edge and a third that touches them in vertex 0.
TSoup make_Touching() { return make_Soup(6, {{0, 1, 2}, {0, 4, 5}, {0, 2, 3}}); }

// A double cone over a closed rim, with a triangle hung on each rim vertex, two on the first. Where
// the fans touch no vertex but the first has more than two open ends, until the rejection there
// opens the cone to both sides, and so on around the rim. For odd n all of it goes; a lone triangle
// stays, the last.
TSoup make_Cascade(uint32_t n) {
  TSoup soup = make_Soup(3 * n + 7, {});
  const uint32_t apex = n + 1;
  uint32_t tip = n + 2;
  const auto hang_At = [&](uint32_t v) {
    soup.tri.push_back({v, tip, tip + 1});
    tip += 2;
  };
  for (uint32_t k = 0; k < n; ++k) {
    const uint32_t here = 1 + k, next = 1 + (k + 1) % n;
    soup.tri.push_back({0, here, next});
    soup.tri.push_back({apex, next, here});
    hang_At(here);
  }
  hang_At(1);
  soup.tri.push_back({tip, tip + 1, tip + 2});
  return soup;
}

}  // namespace

TEST(Repair, KeepsASingleTriangle) { EXPECT_EQ(repair_All(make_Soup(3, {{0, 1, 2}})), List{0}); }

TEST(Repair, OfTwoPatchesOfEqualSizeTheFirstFoundWins) {
  TCase two(make_Soup(6, {{0, 1, 2}, {3, 4, 5}}));
  EXPECT_EQ(two.repair({0, 1}), List{0});
  EXPECT_EQ(two.repair({1, 0}), List{1});
}

TEST(Repair, KeepsTheLargestPatch) {
  EXPECT_EQ(repair_All(make_Soup(7, {{0, 1, 2}, {3, 4, 5}, {5, 4, 6}})), (List{1, 2}));
}

TEST(Repair, KeepsTheOldOrderAndRepeatedEntries) {
  TCase strip(make_Soup(8, {{0, 1, 2}, {2, 1, 3}, {2, 3, 4}, {5, 6, 7}}));
  EXPECT_EQ(strip.repair({2, 3, 0, 1, 2}), (List{2, 0, 1, 2}));
}

TEST(Repair, ARepeatedTriangleCountsOnceInItsPatch) {
  TCase two(make_Soup(7, {{0, 1, 2}, {3, 4, 5}, {5, 4, 6}}));
  EXPECT_EQ(two.repair({0, 0, 0, 1, 2}), (List{1, 2}));
}

TEST(Repair, RejectsTrianglesWithEqualCorners) {
  EXPECT_EQ(repair_All(make_Soup(4, {{0, 0, 1}, {0, 1, 2}, {2, 1, 3}})), (List{1, 2}));
}

TEST(Repair, ARejectedTriangleWithEqualCornersDoesNotCrowdAnEdge) {
  EXPECT_EQ(repair_All(make_Soup(4, {{1, 2, 2}, {0, 1, 2}, {2, 1, 3}})), (List{1, 2}));
}

TEST(Repair, RejectsAllTrianglesOfAnEdgeThatThreeShare) {
  // The rejected ones still count against each other. What is left hangs on one of them.
  const TSoup soup = make_Soup(7, {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}, {1, 4, 5}, {4, 5, 6}});
  EXPECT_EQ(repair_All(soup), (List{3, 4}));
}

TEST(Repair, TrianglesThatAreNotListedCountOnAnEdgeToo) {
  TCase edge(make_Soup(6, {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}, {2, 1, 5}}));
  EXPECT_EQ(edge.repair({0, 1, 3}), List{3});
}

TEST(Repair, ATriangleThatIsNotListedCountsOnceForEachOfItsCornersAtTheFirstEnd) {
  // The edge 01 begins where the second triangle has two corners; 10 where it has one.
  TCase forward(make_Soup(3, {{0, 1, 2}, {0, 0, 1}}));
  EXPECT_EQ(forward.repair({0}), List{});
  TCase backward(make_Soup(3, {{1, 0, 2}, {0, 0, 1}}));
  EXPECT_EQ(backward.repair({0}), List{0});
}

TEST(Repair, RejectsAllTrianglesAroundAVertexWhereFansTouch) {
  EXPECT_EQ(repair_All(make_Touching()), List{});
}

TEST(Repair, LeavesAClosedFanBesideAnOpenOneWithTwoOpenEnds) {
  // A closed fan has no open end: with one open fan there are two, which is not too many.
  const TSoup soup = make_Soup(6, {{0, 1, 2}, {0, 2, 3}, {0, 3, 1}, {0, 4, 5}});
  EXPECT_EQ(repair_All(soup), (List{0, 1, 2}));
}

TEST(Repair, LooksForTouchingFansOnlyAmongListedTriangles) {
  TCase touching(make_Touching());
  EXPECT_EQ(touching.repair({0, 2}), (List{0, 2}));
}

TEST(Repair, LooksAgainWhereARejectionOpensAFan) {
  const TSoup soup = make_Cascade(5);
  List all(soup.tri.size());
  std::iota(all.begin(), all.end(), 0u);
  uint32_t rounds = 0;
  const List expected = plain::repair(soup.tri, uint32_t(soup.vtx.size()), all, rounds);
  EXPECT_EQ(rounds, 4u);  // three that find a vertex, and the last
  EXPECT_EQ(expected, List{all.back()});
  EXPECT_EQ(repair_All(soup), expected);
}

TEST(Repair, OfManyRoundsAroundOneVertexIsLinear) {
  // 50,001 rounds, each of which takes some of 100,000 triangles at a vertex.
  const TSoup soup = make_Cascade(100001);
  EXPECT_EQ(repair_All(soup), List{uint32_t(soup.tri.size() - 1)});
}

TEST(Repair, LeavesTheBitsOfAllOtherTrianglesSetAndNoVertexMarked) {
  TCase touching(make_Soup(9, {{0, 1, 2}, {0, 4, 5}, {6, 7, 8}}));
  touching.vertices.set_All();
  EXPECT_EQ(touching.repair({0, 1, 2}), List{2});
  EXPECT_TRUE(touching.vertices.is_Empty());
  EXPECT_TRUE(touching.triangles.test(0));
  EXPECT_TRUE(touching.triangles.test(1));
  EXPECT_FALSE(touching.triangles.test(2));
}

TEST(Repair, TellsWhatIsMissing_InTheOrderOfItsChecks) {
  TCase c(make_Tetrahedron());
  List ids = {0, 1};
  TLst<uint32_t> lst = view_Lst(ids);
  // All wrong at first; each step mends the one that was told.
  T3DMSH msh = {};
  TLst<uint32_t> none = {};
  TAdj first, second;
  CBitVector vertices, triangles;
  const auto run = [&] { return reg_Repair(msh, none, vertices, triangles, first, second); };
  EXPECT_EQ(run(), -1);
  msh.vtx = c.msh.vtx;
  EXPECT_EQ(run(), -2);
  msh.tri = c.msh.tri;
  EXPECT_EQ(run(), -3);
  msh.n_vtx = 4;
  EXPECT_EQ(run(), -4);
  msh.n_tri = 4;
  EXPECT_EQ(run(), -5);
  none.data = lst.data;
  EXPECT_EQ(run(), -6);
  none.count = none.capacity = 2;
  EXPECT_EQ(run(), -7);
  first.lists = c.vtx_tri->lists;
  EXPECT_EQ(run(), -8);
  first.counts = c.vtx_tri->counts;
  EXPECT_EQ(run(), -9);
  second.lists = c.tri_tri->lists;
  EXPECT_EQ(run(), -10);
  second.counts = c.tri_tri->counts;
  vertices.init(5);
  EXPECT_EQ(run(), -11);
  vertices.init(4);
  triangles.init(3);
  EXPECT_EQ(run(), -12);
  triangles.init(4);
  EXPECT_EQ(run(), 0);
}

TEST(Repair, OfAnIndexBeyondTheMesh_IsMinusThirteenAndLeavesTheList) {
  TCase c(make_Tetrahedron());
  List ids = {0, 4, 1};
  TLst<uint32_t> lst = view_Lst(ids);
  EXPECT_EQ(c.run(lst), -13);
  EXPECT_EQ(copy_Of(lst), (List{0, 4, 1}));
}

TEST(Repair, WithoutMemory_GivesMinusFourteenToMinusSeventeenAndLeavesTheList) {
  TCase c(make_Soup(6, {{0, 1, 2}, {3, 4, 5}}));
  List ids = {0, 1};
  const auto codes = list_FailureCodes([&] {
    TLst<uint32_t> lst = view_Lst(ids);
    const int32_t code = c.run(lst);
    EXPECT_EQ(lst.count, code < 0 ? 2u : 1u);
    EXPECT_EQ(ids[1], 1u);
    return code;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-14, -15, -16, -17, 0}));
}

TEST(Repair, OfCoincidentTrianglesKeepsNoneAndIsQuick) {
  // Their table of neighbours would not fit; the repair comes to look at none of its entries.
  const uint32_t count = 100000;
  TSoup soup = make_Soup(3, std::vector<T3DTRI>(count, T3DTRI{0, 1, 2}));
  Scoped<TAdj> vtx_tri, tri_tri;
  ASSERT_EQ(adj_VtxTri(soup.msh(), *vtx_tri), 0);
  TSoup apart = make_Soup(300000, {});
  for (uint32_t t = 0; t < count; ++t) apart.tri.push_back({3 * t, 3 * t + 1, 3 * t + 2});
  ASSERT_EQ(adj_TriTri(apart.msh(), *tri_tri), 0);
  CBitVector vertices, triangles;
  vertices.init(3);
  triangles.init(count);
  List ids(count);
  std::iota(ids.begin(), ids.end(), 0u);
  TLst<uint32_t> lst = view_Lst(ids);
  EXPECT_EQ(reg_Repair(soup.msh(), lst, vertices, triangles, *vtx_tri, *tri_tri), 0);
  EXPECT_EQ(lst.count, 0u);
}

TEST(Repair, OfALargeFanKeepsIt) { EXPECT_EQ(repair_All(make_Fan(100000)).size(), 100000u); }

TEST(Repair, AgreesWithThePlainRoundsOnTornSheets) {
  uint32_t most = 0, kept = 0;
  for (uint32_t seed = 0; seed < scale_Cases(400); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const TSoup soup = make_Torn(random, 2 + seed % 7, seed % 12, 0.1 * (seed % 4));
    if (soup.tri.empty()) continue;
    List lst;
    for (uint32_t i = 0; i < 1 + 2 * soup.tri.size(); ++i)
      lst.push_back(uint32_t(random() % soup.tri.size()));
    uint32_t rounds = 0;
    const List expected = plain::repair(soup.tri, uint32_t(soup.vtx.size()), lst, rounds);
    ASSERT_EQ(TCase(soup).repair(lst), expected);
    most = std::max(most, rounds);
    kept += !expected.empty();
  }
  EXPECT_GE(most, 4u) << "no case needs several rounds";
  EXPECT_GE(kept, 100u) << "hardly any case keeps a patch";
}

TEST(Repair, AgreesWithThePlainRoundsOnRandomSoups) {
  for (uint32_t seed = 0; seed < scale_Cases(300); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const TSoup soup = make_Random(random, 5 + seed % 20, 1 + seed % 25, seed % 2 == 0);
    List lst;
    for (uint32_t i = 0; i <= seed % 40; ++i) lst.push_back(uint32_t(random() % soup.tri.size()));
    uint32_t rounds = 0;
    const List expected = plain::repair(soup.tri, uint32_t(soup.vtx.size()), lst, rounds);
    ASSERT_EQ(TCase(soup).repair(lst), expected);
  }
}
