// Boundary edges of meshes and sets, and the chains they form.
#include "mesh/boundary.h"

#include <gtest/gtest.h>

#include "tests/mesh/soups.h"
#include "tests/reference/plain_adjacency.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

Edges list_All(TSoup soup) {
  Scoped<TAdj> adj;
  Scoped<TArr<T3DSGM>> edges;
  EXPECT_EQ(adj_VtxTri(soup.msh(), *adj), 0);
  EXPECT_EQ(bnd_All(soup.msh(), *adj, *edges), 0);
  return copy_Of(*edges);
}

Edges list_Set(TSoup soup, const std::vector<bool>& set) {
  Scoped<TAdj> adj;
  Scoped<TArr<T3DSGM>> edges;
  EXPECT_EQ(adj_VtxTri(soup.msh(), *adj), 0);
  EXPECT_EQ(bnd_Set(soup.msh(), *adj, to_Bits(set), *edges), 0);
  return copy_Of(*edges);
}

// By the table of neighbours.
Edges list_Adj(TSoup soup, const std::vector<bool>& set) {
  Scoped<TAdj> tri_tri;
  Scoped<TArr<T3DSGM>> edges;
  EXPECT_EQ(adj_TriTri(soup.msh(), *tri_tri), 0);
  const CBitVector bits = to_Bits(set);
  EXPECT_EQ(bnd_Adj(soup.msh(), *tri_tri, &bits, *edges), 0);
  return copy_Of(*edges);
}
Edges list_AllAdj(TSoup soup) {
  Scoped<TAdj> tri_tri;
  Scoped<TArr<T3DSGM>> edges;
  EXPECT_EQ(adj_TriTri(soup.msh(), *tri_tri), 0);
  EXPECT_EQ(bnd_Adj(soup.msh(), *tri_tri, nullptr, *edges), 0);
  return copy_Of(*edges);
}

// By the list of the same triangles, in an order that hangs on `step`.
Edges list_Lst(TSoup soup, const std::vector<bool>& set, uint32_t step) {
  std::vector<uint32_t> lst, number(soup.vtx.size());
  for (uint32_t i = 0, t = 0; i < set.size();
       ++i, t = (t + step) % static_cast<uint32_t>(set.size()))
    if (set[t]) lst.push_back(t);
  Scoped<TArr<T3DSGM>> edges;
  EXPECT_EQ(bnd_Lst(soup.msh(), view_Lst(lst), number.data(), *edges), 0);
  for (const uint32_t n : number) EXPECT_EQ(n, 0u);
  return copy_Of(*edges);
}

Edges list_Own(TSoup soup, const std::vector<bool>& set) {
  Scoped<TArr<T3DSGM>> edges;
  EXPECT_EQ(bnd_Own(soup.msh(), to_Bits(set), *edges), 0);
  return copy_Of(*edges);
}

Edges list_Out(TSoup soup, const std::vector<bool>& set, std::vector<uint32_t> lst) {
  Scoped<TAdj> adj;
  Scoped<TArr<T3DSGM>> edges;
  EXPECT_EQ(adj_TriTri(soup.msh(), *adj), 0);
  EXPECT_EQ(bnd_Out(soup.msh(), *adj, to_Bits(set), view_Lst(lst), *edges), 0);
  return copy_Of(*edges);
}

plain::Table list_Chains(const Edges& edges, uint32_t vertices) {
  std::vector<T3DSGM> segments;
  for (const auto& [a, b] : edges) segments.push_back({a, b});
  TSoup soup = make_Soup(vertices, {});
  Scoped<TArr<TArr<uint32_t>>> chains;
  EXPECT_TRUE(bnd_Loops(soup.msh(), view_Arr(segments), *chains));
  return copy_Nested(*chains);
}

}  // namespace

TEST(Boundary, OfASingleTriangleIsItsThreeEdgesInItsOrientation) {
  EXPECT_EQ(list_All(make_Soup(3, {{2, 0, 1}})), (Edges{{2, 0}, {0, 1}, {1, 2}}));
}

TEST(Boundary, OfTwoTrianglesOnAnEdgeIsFourEdges) {
  EXPECT_EQ(list_All(make_Soup(4, {{0, 1, 2}, {2, 1, 3}})),
            (Edges{{0, 1}, {2, 0}, {1, 3}, {3, 2}}));
}

TEST(Boundary, AnEdgeOfThreeTrianglesIsOnNoBoundary) {
  EXPECT_EQ(list_All(make_Soup(5, {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}})),
            (Edges{{1, 2}, {2, 0}, {0, 3}, {3, 1}, {1, 4}, {4, 0}}));
}

TEST(Boundary, OfATetrahedronIsEmptyAndGivesNoLoops) {
  EXPECT_EQ(list_All(make_Tetrahedron()), Edges{});
  TSoup soup = make_Tetrahedron();
  TArr<T3DSGM> none = {nullptr, 0};
  TArr<TArr<uint32_t>> chains = {nullptr, 5};
  EXPECT_FALSE(bnd_Loops(soup.msh(), none, chains));
  EXPECT_EQ(chains.count, 0u);
}

TEST(Boundary, ATriangleWithEqualCornersIsANeighbourLikeAnyOther) {
  // The edge 01 is shared by the second triangle; its own edge 00 by the first.
  EXPECT_EQ(list_All(make_Soup(3, {{0, 1, 2}, {0, 0, 1}})), (Edges{{1, 2}, {2, 0}}));
}

TEST(Boundary, ATriangleDoesNotShareAnEdgeWithItself) {
  EXPECT_EQ(list_All(make_Soup(2, {{0, 0, 1}})), (Edges{{0, 0}, {0, 1}, {1, 0}}));
}

TEST(SetBoundary, SeesOnlyTrianglesOfTheSet) {
  const TSoup soup = make_Soup(4, {{0, 1, 2}, {2, 1, 3}});
  EXPECT_EQ(list_Set(soup, {false, true}), (Edges{{2, 1}, {1, 3}, {3, 2}}));
  EXPECT_EQ(list_Set(soup, {false, false}), Edges{});
}

TEST(OwnBoundary, PassesOverTrianglesWithEqualCornersOnBothSides) {
  const TSoup soup = make_Soup(3, {{0, 1, 2}, {0, 0, 1}});
  EXPECT_EQ(list_Own(soup, {true, true}), (Edges{{0, 1}, {1, 2}, {2, 0}}));
  EXPECT_EQ(list_Set(soup, {true, true}), (Edges{{1, 2}, {2, 0}}));
}

TEST(OuterBoundary, IsTheEdgesSharedWithTrianglesOutsideTheSet) {
  // A strip of three; the last one's far edges are shared with nobody.
  const TSoup soup = make_Soup(5, {{0, 1, 2}, {2, 1, 3}, {2, 3, 4}});
  EXPECT_EQ(list_Out(soup, {false, true, true}, {1, 2}), (Edges{{2, 1}}));
  EXPECT_EQ(list_Out(soup, {false, true, false}, {1}), (Edges{{2, 1}, {3, 2}}));
}

TEST(OuterBoundary, OfAListThatIsNotTheSetAsksTheSet) {
  const TSoup soup = make_Soup(4, {{0, 1, 2}, {2, 1, 3}});
  EXPECT_EQ(list_Out(soup, {false, false}, {0, 0}), (Edges{{1, 2}, {1, 2}}));
  EXPECT_EQ(list_Out(soup, {false, false}, {}), Edges{});
}

TEST(OuterBoundary, ANeighbourOverTwoEdgesGivesTheFirstOneTwice) {
  EXPECT_EQ(list_Out(make_Soup(4, {{0, 1, 2}, {1, 2, 0}}), {true, false}, {0}),
            (Edges{{0, 1}, {0, 1}, {0, 1}}));
}

TEST(OuterBoundary, ANeighbourWithoutACommonEdgeGivesNothing) {
  // A table of another mesh: it joins triangles that share no vertex.
  TSoup joined = make_Soup(4, {{0, 1, 2}, {2, 1, 3}}), apart = make_Soup(6, {{0, 1, 2}, {3, 4, 5}});
  Scoped<TAdj> adj;
  Scoped<TArr<T3DSGM>> edges;
  std::vector<uint32_t> lst = {0};
  ASSERT_EQ(adj_TriTri(joined.msh(), *adj), 0);
  EXPECT_EQ(bnd_Out(apart.msh(), *adj, to_Bits({true, false}), view_Lst(lst), *edges), 0);
  EXPECT_EQ(edges->count, 0u);
}

TEST(BoundaryCodes, WithoutTriangleArray_AreMinusOne) {
  T3DVEC p = {};
  const T3DMSH msh = {&p, 1, nullptr, 0};
  TArr<T3DSGM> edges;
  EXPECT_EQ(bnd_All(msh, TAdj{}, edges), -1);
  EXPECT_EQ(bnd_Set(msh, TAdj{}, CBitVector{}, edges), -1);
  EXPECT_EQ(bnd_Adj(msh, TAdj{}, nullptr, edges), -1);
  EXPECT_EQ(bnd_Own(msh, CBitVector{}, edges), -1);
  EXPECT_EQ(bnd_Out(msh, TAdj{}, CBitVector{}, {}, edges), -1);
  EXPECT_EQ(edges.data, nullptr);
}

TEST(BoundaryCodes, WithoutTriangles_AreMinusTwo) {
  TSoup soup = make_Tetrahedron();
  const T3DMSH msh = {soup.vtx.data(), 4, soup.tri.data(), 0};
  TArr<T3DSGM> edges;
  EXPECT_EQ(bnd_All(msh, TAdj{}, edges), -2);
  EXPECT_EQ(bnd_Set(msh, TAdj{}, CBitVector{}, edges), -2);
  EXPECT_EQ(bnd_Adj(msh, TAdj{}, nullptr, edges), -2);
  EXPECT_EQ(bnd_Own(msh, CBitVector{}, edges), -2);
  EXPECT_EQ(bnd_Out(msh, TAdj{}, CBitVector{}, {}, edges), -2);
}

TEST(BoundaryCodes, WithoutTable_AreMinusThree) {
  TSoup soup = make_Tetrahedron();
  TArr<T3DSGM> edges;
  EXPECT_EQ(bnd_All(soup.msh(), TAdj{}, edges), -3);
  EXPECT_EQ(bnd_Set(soup.msh(), TAdj{}, CBitVector{}, edges), -3);
  EXPECT_EQ(bnd_Adj(soup.msh(), TAdj{}, nullptr, edges), -3);
  EXPECT_EQ(bnd_Out(soup.msh(), TAdj{}, CBitVector{}, {}, edges), -3);
}

TEST(BoundaryCodes, ForAListBeyondTheMeshOrMissing_AreMinusThree) {
  TSoup soup = make_Tetrahedron();
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_TriTri(soup.msh(), *adj), 0);
  std::vector<uint32_t> lst = {0, 4};
  TArr<T3DSGM> edges;
  const CBitVector none = to_Bits({false, false, false, false});
  EXPECT_EQ(bnd_Out(soup.msh(), *adj, none, view_Lst(lst), edges), -3);
  EXPECT_EQ(bnd_Out(soup.msh(), *adj, none, {nullptr, 1, 1}, edges), -3);
  EXPECT_EQ(edges.data, nullptr);
}

TEST(BoundaryCodes, WithoutMemory_AreMinusThreeForTheOwnTableAndMinusFour) {
  TSoup soup = make_Soup(4, {{0, 1, 2}, {2, 1, 3}});
  const CBitVector all = to_Bits(all_Of(soup)), first = to_Bits({true, false});
  Scoped<TAdj> vtx_tri, tri_tri;
  ASSERT_EQ(adj_VtxTri(soup.msh(), *vtx_tri), 0);
  ASSERT_EQ(adj_TriTri(soup.msh(), *tri_tri), 0);
  std::vector<uint32_t> lst = {0};
  const auto list_Codes = [&](auto call) {
    return list_FailureCodes([&] {
      TArr<T3DSGM> edges;
      const int32_t code = call(edges);
      EXPECT_EQ(edges.data == nullptr && edges.count == 0, code < 0);
      release(edges);
      return code;
    });
  };
  using Codes = std::vector<int32_t>;
  const auto run_All = [&](auto& edges) { return bnd_All(soup.msh(), *vtx_tri, edges); };
  const auto run_Set = [&](auto& edges) { return bnd_Set(soup.msh(), *vtx_tri, all, edges); };
  const auto run_Adj = [&](auto& edges) { return bnd_Adj(soup.msh(), *tri_tri, &all, edges); };
  const auto run_Own = [&](auto& edges) { return bnd_Own(soup.msh(), all, edges); };
  const auto run_Out = [&](auto& edges) {
    return bnd_Out(soup.msh(), *tri_tri, first, view_Lst(lst), edges);
  };
  EXPECT_EQ(list_Codes(run_All), (Codes{-4, 0}));
  EXPECT_EQ(list_Codes(run_Set), (Codes{-4, 0}));
  EXPECT_EQ(list_Codes(run_Adj), (Codes{-4, 0}));
  EXPECT_EQ(list_Codes(run_Own), (Codes{-3, -4, 0}));
  EXPECT_EQ(list_Codes(run_Out), (Codes{-4, 0}));
}

TEST(BoundaryProperties, AgreeWithCountsByEdgeOnRandomSoups) {
  for (uint32_t seed = 0; seed < scale_Cases(300); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const TSoup soup = make_Random(random, 3 + seed % 12, 1 + seed % 40, seed % 2 == 0);
    const std::vector<bool> set = pick_Some(random, soup.tri.size(), 60);
    std::vector<bool> sound = set;
    for (size_t t = 0; t < sound.size(); ++t) sound[t] = set[t] && !is_Flat(soup.tri[t]);
    ASSERT_EQ(list_All(soup), plain::list_Boundary(soup.tri, all_Of(soup)));
    ASSERT_EQ(list_Set(soup, set), plain::list_Boundary(soup.tri, set));
    ASSERT_EQ(list_AllAdj(soup), plain::list_Boundary(soup.tri, all_Of(soup)));
    ASSERT_EQ(list_Adj(soup, set), plain::list_Boundary(soup.tri, set));
    ASSERT_EQ(list_Own(soup, set), plain::list_Boundary(soup.tri, sound));
  }
}

TEST(BoundaryProperties, OuterEdgesHaveATriangleOutsideForEachNeighbourThere) {
  for (uint32_t seed = 0; seed < scale_Cases(200); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const TSoup soup = make_Random(random, 4 + seed % 9, 1 + seed % 30, seed % 2 == 0);
    const std::vector<bool> set = pick_Some(random, soup.tri.size(), 50);
    const plain::Table neighbours = plain::list_Neighbours(soup.tri);
    std::vector<uint32_t> lst;
    Edges expected;
    for (uint32_t t = 0; t < soup.tri.size(); ++t) {
      if (!set[t]) continue;
      lst.push_back(t);
      for (const uint32_t n : neighbours[t]) {
        if (set[n]) continue;
        for (const auto& edge : plain::get_Edges(soup.tri[t]))
          if (has_Vtx(soup.tri[n], edge.first) && has_Vtx(soup.tri[n], edge.second)) {
            expected.push_back(edge);
            break;
          }
      }
    }
    ASSERT_EQ(list_Out(soup, set, lst), expected);
  }
}

TEST(BoundaryProperties, OfALargeFanAndOfCoincidentTrianglesTakeNoWalkOverAllOfThem) {
  const uint32_t count = 100000;
  EXPECT_EQ(list_All(make_Fan(count)).size(), count + 2);
  const TSoup same = make_Soup(3, std::vector<T3DTRI>(count, T3DTRI{0, 1, 2}));
  EXPECT_EQ(list_All(same), Edges{});
  std::vector<bool> last(count);
  last[count - 1] = true;
  EXPECT_EQ(list_Set(same, last), (Edges{{0, 1}, {1, 2}, {2, 0}}));
}

TEST(Chains, AClosedQuadGivesOneChainOfFourWithoutRepeatingTheFirst) {
  EXPECT_EQ(list_Chains({{2, 3}, {0, 1}, {3, 0}, {1, 2}}, 4), (plain::Table{{0, 1, 2, 3}}));
}

TEST(Chains, OfOneSegmentIsItsTwoEnds) {
  EXPECT_EQ(list_Chains({{3, 1}}, 4), (plain::Table{{3, 1}}));
}

TEST(Chains, OpenOnesComeFirstByRisingStart) {
  EXPECT_EQ(list_Chains({{0, 1}, {1, 2}, {2, 0}, {7, 5}, {4, 6}}, 8),
            (plain::Table{{4, 6}, {7, 5}, {0, 1, 2}}));
}

TEST(Chains, FollowEdgesInTheirDirectionOnly) {
  // Both edges lead to 1: the second chain finds it taken.
  EXPECT_EQ(list_Chains({{0, 1}, {2, 1}}, 3), (plain::Table{{0, 1}, {2}}));
  // No edge begins alone: 1 has two edges, 0 and 2 are ends.
  EXPECT_EQ(list_Chains({{1, 0}, {1, 2}}, 3), (plain::Table{{0}, {1, 2}}));
}

TEST(Chains, TakeTheLastOfSeveralWaysFirst) {
  EXPECT_EQ(list_Chains({{0, 1}, {1, 2}, {1, 3}}, 4), (plain::Table{{0, 1, 3, 2}}));
}

TEST(Chains, WhatABranchCutsOffBecomesAChainOfItsOwn) {
  // The way in from 4 takes the whole loop 1 2 3; of two ways in, one stands alone.
  EXPECT_EQ(list_Chains({{2, 3}, {3, 1}, {1, 2}, {5, 3}, {4, 5}}, 6),
            (plain::Table{{4, 5, 3, 1, 2}}));
  EXPECT_EQ(list_Chains({{1, 2}, {2, 3}, {3, 1}, {2, 4}, {5, 3}, {6, 5}, {6, 1}}, 7),
            (plain::Table{{1, 2, 4, 3}, {5}, {6}}));
}

TEST(Chains, ASegmentFromAVertexToItselfIsAChainOfOne) {
  EXPECT_EQ(list_Chains({{2, 2}}, 3), (plain::Table{{2}}));
}

TEST(Chains, WithoutVerticesOrEdgeArray_Fail) {
  T3DSGM edge = {0, 0};
  TArr<TArr<uint32_t>> chains;
  EXPECT_FALSE(bnd_Loops({}, {&edge, 1}, chains));
  TSoup soup = make_Tetrahedron();
  EXPECT_FALSE(bnd_Loops(soup.msh(), {nullptr, 1}, chains));
  EXPECT_FALSE(bnd_Loops(soup.msh(), {&edge, 0}, chains));
}

TEST(Chains, WithoutMemory_FailAndLeaveNothing) {
  TSoup soup = make_Soup(6, {});
  std::vector<T3DSGM> edges = {{0, 1}, {2, 3}, {4, 5}};
  const auto codes = list_FailureCodes([&] {
    TArr<TArr<uint32_t>> chains;
    const bool good = bnd_Loops(soup.msh(), view_Arr(edges), chains);
    EXPECT_EQ(chains.data != nullptr, good);
    release(chains);
    return good;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}

TEST(Chains, OfALongLoopNeedNoDeepStack) {
  const uint32_t count = 1000000;
  Edges edges;
  for (uint32_t v = 0; v < count; ++v) edges.push_back({v, (v + 1) % count});
  const plain::Table chains = list_Chains(edges, count);
  ASSERT_EQ(chains.size(), 1u);
  for (uint32_t v = 0; v < count; ++v) ASSERT_EQ(chains[0][v], v);
}

TEST(Chains, AgreeWithThePlainWalkOnRandomEdges) {
  for (uint32_t seed = 0; seed < scale_Cases(500); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const uint32_t vertices = 2 + seed % 15;
    Edges edges;
    for (uint32_t e = 0; e <= seed % 20; ++e)
      edges.push_back({random() % vertices, random() % vertices});
    ASSERT_EQ(list_Chains(edges, vertices), plain::list_Chains(edges, vertices));
  }
}

TEST(BoundaryOfAList, IsThatOfTheSet_EdgeByEdge) {
  for (uint32_t seed = 0; seed < scale_Cases(500); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    TSoup soup = seed % 2 == 0 ? make_Torn(random, 3 + seed % 6, seed % 5, 0.2)
                               : make_Random(random, 4 + seed % 9, 5 + seed % 40, true);
    const auto set = pick_Some(random, soup.tri.size(), 10 + seed % 80);
    const auto count = static_cast<uint32_t>(soup.tri.size());
    uint32_t step = 1 + static_cast<uint32_t>(random() % 100);
    while (std::gcd(step, count) != 1) ++step;
    ASSERT_EQ(list_Lst(soup, set, step), list_Set(soup, set));
  }
}

TEST(BoundaryOfAList, OfNoTriangles_IsEmpty) {
  TSoup soup = make_Tetrahedron();
  TArr<T3DSGM> edges = {nullptr, 5};
  EXPECT_EQ(bnd_Lst(soup.msh(), {nullptr, 0, 0}, nullptr, edges), 0);
  EXPECT_EQ(edges.count, 0u);
}

TEST(BoundaryOfAList, TellsWhatIsMissing) {
  TSoup soup = make_Tetrahedron();
  std::vector<uint32_t> lst = {0}, number(4);
  TArr<T3DSGM> edges;
  EXPECT_EQ(bnd_Lst({soup.vtx.data(), 4, nullptr, 4}, view_Lst(lst), number.data(), edges), -1);
  EXPECT_EQ(bnd_Lst({soup.vtx.data(), 4, soup.tri.data(), 0}, view_Lst(lst), number.data(), edges),
            -2);
  EXPECT_EQ(bnd_Lst(soup.msh(), {nullptr, 1, 1}, number.data(), edges), -3);
}

TEST(BoundaryOfAList, WithoutMemory_FailsAndLeavesNothing) {
  TSoup soup = make_Fan(5);
  std::vector<uint32_t> lst = {3, 1}, number(soup.vtx.size());
  const auto codes = list_FailureCodes([&] {
    Scoped<TArr<T3DSGM>> edges;
    return bnd_Lst(soup.msh(), view_Lst(lst), number.data(), *edges);
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-4, 0}));
  EXPECT_EQ(number, std::vector<uint32_t>(soup.vtx.size()));
}

TEST(BoundaryOfAList, CostsWhatTheListCosts) {
  // A wheel whose hub has 200,000 triangles, taken one by one.
  TSoup soup = make_Fan(200000);
  std::vector<uint32_t> number(soup.vtx.size());
  for (uint32_t t = 0; t < soup.tri.size(); ++t) {
    std::vector<uint32_t> lst = {t};
    Scoped<TArr<T3DSGM>> edges;
    ASSERT_EQ(bnd_Lst(soup.msh(), view_Lst(lst), number.data(), *edges), 0);
    ASSERT_EQ(edges->count, 3u);
  }
}
