// The rim of a patch, and what is left out of it.
#include "undercut/rim.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "mesh/boundary.h"
#include "tests/support/allocations.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

// What is left of edges once those between open ends are dropped.
Edges drop(const Edges& edges, std::vector<uint32_t> ends) {
  CBitVector open;
  open.from_Lst(view_Lst(ends), 100);
  std::vector<T3DSGM> sgm;
  for (const auto& [a, b] : edges) sgm.push_back({a, b});
  TArr<T3DSGM> arr = view_Arr(sgm);
  drop_Open(arr, open);
  return copy_Of(arr);
}

TEST(OpenEdges, WithBothEndsOpen_GiveTheirPlaceToTheLast) {
  EXPECT_EQ(drop({{1, 2}, {3, 4}, {5, 6}, {7, 8}}, {1, 2}), (Edges{{7, 8}, {3, 4}, {5, 6}}));
  EXPECT_EQ(drop({{3, 4}, {1, 2}, {5, 6}}, {1, 2}), (Edges{{3, 4}, {5, 6}}));
}

TEST(OpenEdges, WithOneEndOpen_Stay) {
  EXPECT_EQ(drop({{1, 2}, {2, 3}, {3, 1}, {4, 5}}, {1, 4}),
            (Edges{{1, 2}, {2, 3}, {3, 1}, {4, 5}}));
}

TEST(OpenEdges, AreTestedAgain_WhereTheyTookThePlaceOfOne) {
  EXPECT_EQ(drop({{1, 2}, {3, 4}, {5, 6}, {2, 1}}, {1, 2}), (Edges{{5, 6}, {3, 4}}));
}

TEST(OpenEdges, ThatAreLastInTheEnd_AreNeverTested) {
  EXPECT_EQ(drop({{3, 4}, {5, 6}, {1, 2}}, {1, 2}), (Edges{{3, 4}, {5, 6}, {1, 2}}));
  EXPECT_EQ(drop({{1, 2}}, {1, 2}), (Edges{{1, 2}}));
  EXPECT_EQ(drop({{1, 2}, {2, 3}, {3, 1}}, {1, 2, 3}), (Edges{{2, 3}}));
  EXPECT_EQ(drop({}, {1}), Edges{});
}

TEST(OpenEdges, AreMarkedAtBothEnds) {
  TSoup soup = make_Grid(2, 2);
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_TriTri(soup.msh(), *adj), 0);
  CBitVector ends;
  ends.init(soup.vtx.size());
  EXPECT_TRUE(mark_Open(soup.msh(), *adj, ends));
  for (uint32_t v = 0; v < 9; ++v) EXPECT_EQ(ends.test(v), v != 4) << v;
}

TEST(OpenEdges, AreMarkedAtBothEnds_WhereTrianglesAreNotTurnedAlike) {
  // Vertex 1 begins no open edge.
  TSoup soup = make_Soup(4, {{0, 1, 2}, {1, 2, 3}});
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_TriTri(soup.msh(), *adj), 0);
  CBitVector ends;
  ends.init(4);
  EXPECT_TRUE(mark_Open(soup.msh(), *adj, ends));
  EXPECT_EQ(ends.count(), 4u);
}

TEST(OpenEdges, WithoutMemory_AreNotMarked) {
  TSoup soup = make_Grid(2, 2);
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_TriTri(soup.msh(), *adj), 0);
  CBitVector ends;
  ends.init(soup.vtx.size());
  EXPECT_EQ(list_FailureCodes([&] { return mark_Open(soup.msh(), *adj, ends); }),
            (std::vector<int32_t>{false, true}));
}

// A square of 10 mm in the plane z = 3, as edges of a mesh with many other vertices.
struct TSquare {
  TSoup soup = make_Grid(30, 30);
  std::vector<T3DSGM> sgm = {{5, 7}, {7, 9}, {9, 6}, {6, 5}};
  T3DFRM frm = kIdentity;
  TSquare() {
    soup.vtx[5] = {0, 0, 3};
    soup.vtx[7] = {10, 0, 3};
    soup.vtx[9] = {10, 10, 3};
    soup.vtx[6] = {0, 10, 3};
  }
  int32_t build(CRim& rim) { return rim.Build(soup.msh(), view_Arr(sgm), frm); }
};

TEST(Rim, IsMeasuredInThePlaneOfTheFrame) {
  TSquare square;
  CRim rim;
  ASSERT_EQ(square.build(rim), 0);
  EXPECT_EQ(rim.walk_All({5, 4}), 4.0);
  EXPECT_EQ(rim.walk_All({-3, -4}), 5.0);
  EXPECT_EQ(rim.walk_All({8, 4}), 2.0);
  // A frame that looks along X.
  square.frm = {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {100, 2, 0}};
  CRim side;
  ASSERT_EQ(square.build(side), 0);
  EXPECT_EQ(side.walk_All({1, 7}), 4.0);
  EXPECT_EQ(side.walk_All({11, 3}), 3.0);
}

TEST(Rim, WithinACircle_IsAsNearAsAllOfIt) {
  TSquare square;
  CRim rim;
  ASSERT_EQ(square.build(rim), 0);
  ASSERT_TRUE(rim.build_Tree());
  EXPECT_EQ(rim.ask_Near({{5, 4}, 4.0}), 4.0);
  EXPECT_EQ(rim.ask_Near({{5, 4}, 100.0}), 4.0);
  EXPECT_EQ(rim.ask_Near({{5, 4}, kAbsent}), 4.0);
}

TEST(Rim, OutsideTheCircle_HasNoDistance) {
  TSquare square;
  CRim rim;
  ASSERT_EQ(square.build(rim), 0);
  ASSERT_TRUE(rim.build_Tree());
  EXPECT_EQ(rim.ask_Near({{5, 4}, 3.99}), kAbsent);
  EXPECT_EQ(rim.ask_Near({{5, 4}, -1.0}), kAbsent);
}

TEST(Rim, IsMeasuredAsByAWalk) {
  TSquare square;
  CRim rim;
  ASSERT_EQ(square.build(rim), 0);
  uint32_t near = 0;
  for (double x = -20; x < 30; x += 0.7)
    for (double y = -20; y < 30; y += 0.7)
      ASSERT_EQ(rim.measure({x, y}, near), rim.walk_All({x, y})) << x << " " << y;
}

TEST(Rim, WithoutEdges_HasNoPolyline) {
  TSquare square;
  square.sgm.clear();
  CRim rim;
  EXPECT_TRUE(rim.is_Empty());
  EXPECT_EQ(square.build(rim), -1);
  EXPECT_TRUE(rim.is_Empty());
}

TEST(Rim, TellsTheStepThatHadNoMemory) {
  TSquare square;
  const auto codes = list_FailureCodes([&] {
    CRim rim;
    return square.build(rim);
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-1, -2, -3, 0}));
}

TEST(Rim, WithoutMemoryForItsTree_HasNone) {
  TSquare square;
  const auto codes = list_FailureCodes([&] {
    CRim rim;
    const int32_t built = square.build(rim);
    return built != 0 ? built : rim.build_Tree() ? 0 : -4;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-1, -2, -3, -4, 0}));
}

TEST(Slack, IsAmple_FromMoreThanWhatRoundingTakes) {
  EXPECT_TRUE(is_Ample(0.05, 1000, kIdentity));
  EXPECT_TRUE(is_Ample(1e-8, 1000, kIdentity));
  EXPECT_FALSE(is_Ample(1e-10, 1000, kIdentity));
  EXPECT_FALSE(is_Ample(0.0, 1000, kIdentity));
  EXPECT_FALSE(is_Ample(0.0, 0.0, kIdentity));
  EXPECT_FALSE(is_Ample(-1.0, 1000, kIdentity));
  EXPECT_TRUE(is_Ample(HUGE_VAL, 1000, kIdentity));
  EXPECT_FALSE(is_Ample(1e-8, 1.0, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 1e5, 0}}));
}

TEST(Slack, IsAmpleOnNoMesh_WithCoordinatesThatAreHugeOrNoNumbers) {
  EXPECT_FALSE(is_Ample(HUGE_VAL, 1e150, kIdentity));
  EXPECT_FALSE(is_Ample(HUGE_VAL, HUGE_VAL, kIdentity));
  EXPECT_FALSE(is_Ample(std::nan(""), 1.0, kIdentity));
}

TEST(Extent, IsNotBelowAnyCoordinate) {
  TSoup soup = make_Grid(2, 2);
  soup.vtx[4] = {1, -77, 3};
  EXPECT_GE(find_Extent(soup.msh()), 77.0);
  EXPECT_LE(find_Extent(soup.msh()), 81.0);
  soup.vtx[2].z = std::nan("");
  EXPECT_EQ(find_Extent(soup.msh()), HUGE_VAL);
  soup.vtx[2].z = -HUGE_VAL;
  EXPECT_EQ(find_Extent(soup.msh()), HUGE_VAL);
}

TEST(Rim, CostsWhatItsEdgesCost_AndNotWhatTheMeshCosts) {
  TSquare square;
  // Not one of the other vertices is read.
  std::vector<T3DVEC> few(square.soup.vtx.begin(), square.soup.vtx.begin() + 10);
  const T3DMSH msh = {few.data(), 0xFFFFFFFFu, nullptr, 0};
  CRim rim;
  EXPECT_EQ(rim.Build(msh, view_Arr(square.sgm), square.frm), 0);
  EXPECT_EQ(rim.walk_All({5, 4}), 4.0);
}

}  // namespace
