// Incidence of triangles at vertices, of segments at points, and of triangles at edges.
#include "mesh/adjacency.h"

#include <gtest/gtest.h>

#include "tests/mesh/soups.h"
#include "tests/reference/plain_adjacency.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/threads.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

std::vector<std::vector<uint32_t>> copy_Table(const TAdj& adj, size_t items) {
  std::vector<std::vector<uint32_t>> table;
  for (size_t i = 0; i < items; ++i) table.emplace_back(adj.lists[i], adj.lists[i] + adj.counts[i]);
  return table;
}

plain::Table list_AtVertices(TSoup soup) {
  Scoped<TAdj> adj;
  EXPECT_EQ(adj_VtxTri(soup.msh(), *adj), 0);
  return copy_Table(*adj, soup.vtx.size());
}

plain::Table list_Neighbours(TSoup soup) {
  Scoped<TAdj> adj;
  EXPECT_EQ(adj_TriTri(soup.msh(), *adj), 0);
  return copy_Table(*adj, soup.tri.size());
}

bool is_Empty(const TAdj& adj) { return !adj.lists && !adj.counts; }

// The codes of make(adj) as its first, second, ... allocation fails; a failure leaves nothing.
template <typename Make>
std::vector<int32_t> list_TableCodes(Make make) {
  return list_FailureCodes([&] {
    TAdj adj;
    const int32_t code = make(adj);
    EXPECT_EQ(is_Empty(adj), code < 0);
    adj_Free(adj);
    return code;
  });
}

}  // namespace

TEST(VertexTriangles, AreListedInRisingOrder) {
  EXPECT_EQ(list_AtVertices(make_Soup(4, {{0, 1, 2}, {2, 1, 3}})),
            (plain::Table{{0}, {0, 1}, {0, 1}, {1}}));
}

TEST(VertexTriangles, ATriangleIsListedOnceForEachOccurrenceOfTheVertex) {
  EXPECT_EQ(list_AtVertices(make_Soup(2, {{0, 1, 0}, {1, 1, 1}})),
            (plain::Table{{0, 0}, {0, 1, 1, 1}}));
}

TEST(VertexTriangles, AVertexThatNoTriangleUsesHasNone) {
  EXPECT_EQ(list_AtVertices(make_Soup(5, {{0, 1, 3}})), (plain::Table{{0}, {0}, {}, {0}, {}}));
}

TEST(VertexTriangles, AllEntriesLieInOneBlockThatBeginsAtTheFirstList) {
  TSoup soup = make_Soup(4, {{1, 2, 3}, {3, 2, 1}});
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_VtxTri(soup.msh(), *adj), 0);
  EXPECT_EQ(adj->counts[0], 0u);
  for (uint32_t v = 0; v < 3; ++v) EXPECT_EQ(adj->lists[v + 1], adj->lists[v] + adj->counts[v]);
}

TEST(VertexTriangles, OfAMeshWithoutTrianglesOrVerticesAreEmptyAndCanBeFreed) {
  T3DTRI none;
  const T3DMSH msh = {nullptr, 0, &none, 0};
  Scoped<TAdj> vtx_tri, tri_tri;
  EXPECT_EQ(adj_VtxTri(msh, *vtx_tri), 0);
  EXPECT_EQ(adj_TriTri(msh, *tri_tri), 0);
}

TEST(VertexTriangles, WithoutTriangleArray_GiveMinusOne) {
  T3DVEC p = {};
  TAdj adj;
  EXPECT_EQ(adj_VtxTri({&p, 1, nullptr, 1}, adj), -1);
  EXPECT_TRUE(is_Empty(adj));
}

TEST(VertexTriangles, WithoutMemory_GiveMinusTwoToMinusFourByAllocation) {
  TSoup soup = make_Tetrahedron();
  const auto codes = list_TableCodes([&](TAdj& adj) { return adj_VtxTri(soup.msh(), adj); });
  EXPECT_EQ(codes, (std::vector<int32_t>{-2, -3, -4, 0}));
}

TEST(VertexTriangleThreads, ListTheSame_HoweverManyTheyAre) {
  for (const uint32_t vertices : {7u, 30000u}) {
    std::mt19937_64 random(vertices);
    const TSoup soup = make_Random(random, vertices, 70000, false);
    const plain::Table table = plain::list_AtVertices(soup.tri, vertices);
    for (const int threads : {1, 2, 3, 16}) {
      const CThreads scope(threads);
      EXPECT_TRUE(list_AtVertices(soup) == table) << vertices << " vertices, " << threads;
    }
  }
}

TEST(VertexTriangles, WithoutMemoryInSeveralParts_GiveTheSameCodes) {
  std::mt19937_64 random(1);
  TSoup soup = make_Random(random, 9, 70000, false);
  const CThreads scope(3);
  const auto codes = list_TableCodes([&](TAdj& adj) { return adj_VtxTri(soup.msh(), adj); });
  EXPECT_EQ(codes, (std::vector<int32_t>{-2, -3, -4, 0}));
}

TEST(PointSegments, AreListedInRisingOrder) {
  std::vector<T3DVEC> points(4);
  std::vector<T3DSGM> segments = {{2, 0}, {0, 1}, {1, 1}, {0, 2}};
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_PntSgm({points.data(), 4, segments.data(), 4}, *adj), 0);
  EXPECT_EQ(copy_Table(*adj, 4), (plain::Table{{0, 1, 3}, {1, 2, 2}, {0, 3}, {}}));
}

TEST(PointSegments, WithoutSegmentArray_GiveMinusOne) {
  TAdj adj;
  EXPECT_EQ(adj_PntSgm({nullptr, 0, nullptr, 0}, adj), -1);
}

TEST(PointSegments, WithoutMemory_GiveMinusTwoToMinusFourByAllocation) {
  T3DSGM segment = {0, 1};
  const auto codes = list_TableCodes([&](TAdj& adj) {
    return adj_PntSgm({nullptr, 2, &segment, 1}, adj);
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-2, -3, -4, 0}));
}

TEST(Neighbours, ASingleTriangleHasNone) {
  EXPECT_EQ(list_Neighbours(make_Soup(3, {{0, 1, 2}})), (plain::Table{{}}));
}

TEST(Neighbours, TwoTrianglesOnAnEdgeListEachOtherOnce) {
  EXPECT_EQ(list_Neighbours(make_Soup(4, {{0, 1, 2}, {2, 1, 3}})), (plain::Table{{1}, {0}}));
}

TEST(Neighbours, ThreeTrianglesOnAnEdgeEachListBothOthers) {
  EXPECT_EQ(list_Neighbours(make_Soup(5, {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}})),
            (plain::Table{{1, 2}, {0, 2}, {0, 1}}));
}

TEST(Neighbours, ComeByTheEdgesOfTheTriangleInTurn) {
  // The neighbour over ab is the last triangle, that over ca the first.
  EXPECT_EQ(list_Neighbours(make_Soup(6, {{0, 2, 5}, {2, 1, 4}, {0, 1, 2}, {1, 0, 3}}))[2],
            (std::vector<uint32_t>{3, 1, 0}));
}

TEST(Neighbours, ATriangleWithSeveralCommonEdgesIsListedOncePerEdge) {
  EXPECT_EQ(list_Neighbours(make_Soup(3, {{0, 1, 2}, {0, 2, 1}})),
            (plain::Table{{1, 1, 1}, {0, 0, 0}}));
}

TEST(Neighbours, ThatShareOnlyAVertexAreNone) {
  EXPECT_EQ(list_Neighbours(make_Soup(5, {{0, 1, 2}, {0, 3, 4}})), (plain::Table{{}, {}}));
}

TEST(Neighbours, AnEdgeFromAVertexToItselfIsSharedByAllTrianglesThere) {
  // Edges 00, 01, 10 of the first triangle; the second has 0 once, the third not.
  EXPECT_EQ(list_Neighbours(make_Soup(5, {{0, 0, 1}, {0, 2, 3}, {2, 3, 4}}))[0],
            (std::vector<uint32_t>{1}));
}

TEST(Neighbours, ATriangleWithTheFirstEndTwiceIsListedTwice) {
  EXPECT_EQ(list_Neighbours(make_Soup(3, {{0, 1, 2}, {0, 0, 1}}))[0],
            (std::vector<uint32_t>{1, 1}));
  EXPECT_EQ(list_Neighbours(make_Soup(3, {{1, 0, 2}, {0, 0, 1}}))[0], (std::vector<uint32_t>{1}));
}

TEST(Neighbours, WithAGivenVertexTableAreTheSame) {
  TSoup soup = make_Tetrahedron();
  Scoped<TAdj> vtx_tri, with, without;
  ASSERT_EQ(adj_VtxTri(soup.msh(), *vtx_tri), 0);
  ASSERT_EQ(adj_TriTri(soup.msh(), *vtx_tri, *with), 0);
  ASSERT_EQ(adj_TriTri(soup.msh(), *without), 0);
  EXPECT_EQ(copy_Table(*with, 4), copy_Table(*without, 4));
}

TEST(Neighbours, WithoutTriangleArray_GiveMinusOne) {
  T3DVEC p = {};
  TAdj adj;
  EXPECT_EQ(adj_TriTri({&p, 1, nullptr, 1}, adj), -1);
  EXPECT_EQ(adj_TriTri({&p, 1, nullptr, 1}, TAdj{}, adj), -1);
  EXPECT_TRUE(is_Empty(adj));
}

TEST(Neighbours, WithoutVertexTable_GiveMinusTwo) {
  TSoup soup = make_Tetrahedron();
  TAdj adj;
  EXPECT_EQ(adj_TriTri(soup.msh(), TAdj{}, adj), -2);
}

TEST(Neighbours, WithoutMemory_GiveMinusTwoToMinusFiveByAllocation) {
  TSoup soup = make_Tetrahedron();
  const auto codes = list_TableCodes([&](TAdj& adj) { return adj_TriTri(soup.msh(), adj); });
  EXPECT_EQ(codes, (std::vector<int32_t>{-2, -3, -4, -5, 0}));
}

TEST(Neighbours, OfManyCoincidentTrianglesFailLikeMemory) {
  // Each of 100,000 triangles would list each other one three times.
  TSoup soup = make_Soup(3, std::vector<T3DTRI>(100000, T3DTRI{0, 1, 2}));
  TAdj adj;
  EXPECT_EQ(adj_TriTri(soup.msh(), adj), -5);
  EXPECT_TRUE(is_Empty(adj));
}

TEST(Neighbours, OfManyTrianglesOnTwoEdgesInTurnFailLikeMemory) {
  TSoup soup = make_Soup(100003, {});
  for (uint32_t t = 0; t < 100000; ++t) soup.tri.push_back({0, 1 + t % 2, t + 3});
  TAdj adj;
  EXPECT_EQ(adj_TriTri(soup.msh(), adj), -5);
}

TEST(Neighbours, OfAFanAroundOneVertexNeedNoWalkOverAllOfIt) {
  const uint32_t count = 100000;
  const plain::Table table = list_Neighbours(make_Fan(count));
  EXPECT_EQ(table[0], (std::vector<uint32_t>{1}));
  for (uint32_t t = 1; t + 1 < count; ++t)
    ASSERT_EQ(table[t], (std::vector<uint32_t>{t - 1, t + 1})) << t;
}

TEST(Neighbours, AgreeWithAllPairsOnRandomSoups) {
  for (uint32_t seed = 0; seed < scale_Cases(300); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    // Every fifth has so many triangles at its vertices that they are chained.
    const uint32_t triangles = 1 + seed % 40 + (seed % 5 == 0 ? 60 : 0);
    const TSoup soup = make_Random(random, 3 + seed % 9, triangles, seed % 2 == 0);
    ASSERT_EQ(list_Neighbours(soup), plain::list_Neighbours(soup.tri));
    ASSERT_EQ(list_AtVertices(soup),
              plain::list_AtVertices(soup.tri, static_cast<uint32_t>(soup.vtx.size())));
  }
}

TEST(IncidenceTable, FreeZeroesItAndCanBeRepeated) {
  TSoup soup = make_Tetrahedron();
  TAdj adj;
  ASSERT_EQ(adj_VtxTri(soup.msh(), adj), 0);
  adj_Free(adj);
  EXPECT_TRUE(is_Empty(adj));
  adj_Free(adj);
  EXPECT_TRUE(is_Empty(adj));
}
