#include "mesh/sub_mesh.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/mesh/soups.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using Indices = std::vector<uint32_t>;

// What a mesh holds, in values that compare.
std::vector<Indices> triangles_Of(const T3DMSH& msh) {
  std::vector<Indices> all;
  for (uint32_t t = 0; t < msh.n_tri; ++t)
    all.push_back({msh.tri[t].a, msh.tri[t].b, msh.tri[t].c});
  return all;
}
std::vector<T3DVEC> points_Of(const T3DMSH& msh) {
  return std::vector<T3DVEC>(msh.vtx, msh.vtx + msh.n_vtx);
}
bool is_Empty(const T3DMSH& msh) {
  return !msh.vtx && !msh.tri && msh.n_vtx == 0 && msh.n_tri == 0;
}

TEST(SubMeshByIndex, TakesTrianglesInTheOrderOfTheList_AndNumbersVerticesByFirstUse) {
  TSoup soup = make_Soup(6, {{0, 1, 2}, {5, 2, 1}, {3, 4, 5}});
  Indices lst = {1, 0};
  Scoped<T3DMSH> sub;
  ASSERT_TRUE(sub_Msh(soup.msh(), view_Lst(lst), *sub));
  EXPECT_EQ(triangles_Of(*sub), (std::vector<Indices>{{0, 1, 2}, {3, 2, 1}}));
  EXPECT_EQ(points_Of(*sub), (std::vector<T3DVEC>{{5, 0, 0}, {2, 0, 0}, {1, 0, 0}, {0, 0, 0}}));
}

TEST(SubMeshByIndex, LeavesOutTrianglesWithTwoEqualCornerIndices_AndTheirVertices) {
  TSoup soup = make_Soup(9, {{3, 3, 4}, {0, 1, 2}, {5, 6, 5}, {7, 8, 8}, {2, 1, 0}});
  Indices lst = {0, 1, 2, 3, 4};
  Scoped<T3DMSH> sub;
  ASSERT_TRUE(sub_Msh(soup.msh(), view_Lst(lst), *sub));
  EXPECT_EQ(triangles_Of(*sub), (std::vector<Indices>{{0, 1, 2}, {2, 1, 0}}));
  EXPECT_EQ(sub->n_vtx, 3u);
}

TEST(SubMeshByIndex, KeepsVerticesApartThatCoincide_AndTrianglesFlatByPlace) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  soup.tri = {{0, 1, 3}, {0, 2, 3}, {0, 1, 2}};
  Indices lst = {0, 1, 2};
  Scoped<T3DMSH> sub;
  ASSERT_TRUE(sub_Msh(soup.msh(), view_Lst(lst), *sub));
  EXPECT_EQ(sub->n_vtx, 4u);
  EXPECT_EQ(triangles_Of(*sub), (std::vector<Indices>{{0, 1, 2}, {0, 3, 2}, {0, 1, 3}}));
}

TEST(SubMeshByIndex, TakesATriangleAsOftenAsItIsListed) {
  TSoup soup = make_Soup(3, {{2, 0, 1}});
  Indices lst = {0, 0, 0};
  Scoped<T3DMSH> sub;
  ASSERT_TRUE(sub_Msh(soup.msh(), view_Lst(lst), *sub));
  EXPECT_EQ(triangles_Of(*sub), (std::vector<Indices>{{0, 1, 2}, {0, 1, 2}, {0, 1, 2}}));
  EXPECT_EQ(points_Of(*sub), (std::vector<T3DVEC>{{2, 0, 0}, {0, 0, 0}, {1, 0, 0}}));
}

TEST(SubMeshByIndex, OfNothing_IsEmptyAndNoFailure) {
  TSoup soup = make_Soup(3, {{0, 0, 1}, {0, 1, 2}});
  Indices flat = {0, 0};
  const int64_t live = live_Allocations();
  for (const TLst<uint32_t>& lst : {view_Lst(flat), TLst<uint32_t>{}, TLst<uint32_t>{nullptr, 5, 5},
                                    TLst<uint32_t>{flat.data(), 0, 2}}) {
    T3DMSH sub = soup.msh();
    EXPECT_TRUE(sub_Msh(soup.msh(), lst, sub));
    EXPECT_TRUE(is_Empty(sub));
  }
  EXPECT_EQ(live_Allocations(), live);
}

TEST(SubMeshByIndex, CopiesCoordinatesThatAreNotFinite) {
  TSoup soup = make_Soup(3, {{0, 1, 2}});
  soup.vtx[1].y = std::numeric_limits<double>::infinity();
  soup.vtx[2].z = std::numeric_limits<double>::quiet_NaN();
  Indices lst = {0};
  Scoped<T3DMSH> sub;
  ASSERT_TRUE(sub_Msh(soup.msh(), view_Lst(lst), *sub));
  EXPECT_EQ(sub->vtx[1].y, std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(sub->vtx[2].z));
}

TEST(SubMeshByIndex, WithoutMemory_FailsAndLeavesNothing) {
  TSoup soup = make_Tetrahedron();
  Indices lst = {0, 3};
  const auto codes = list_FailureCodes([&] {
    T3DMSH sub = soup.msh();
    const bool good = sub_Msh(soup.msh(), view_Lst(lst), sub);
    EXPECT_EQ(is_Empty(sub), !good);
    release(sub);
    return good;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}

TEST(SubMeshByIndex, OnRandomSoups_KeepsEveryCorner_AndEachVertexOnce) {
  for (uint32_t seed = 0; seed < scale_Cases(100); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    TSoup soup = make_Random(random, 4 + seed % 40, 1 + seed % 50, true);
    Indices lst, kept;
    for (uint32_t i = 0; i <= seed; ++i) lst.push_back(uint32_t(random() % soup.tri.size()));
    for (const uint32_t t : lst)
      if (!is_Flat(soup.tri[t])) kept.push_back(t);
    Scoped<T3DMSH> sub;
    ASSERT_TRUE(sub_Msh(soup.msh(), view_Lst(lst), *sub));
    ASSERT_EQ(sub->n_tri, kept.size());
    uint32_t next = 0;
    for (uint32_t i = 0; i < kept.size(); ++i)
      for (uint32_t k = 0; k < 3; ++k) {
        const uint32_t v = corner(sub->tri[i], k);
        ASSERT_LE(v, next);
        if (v == next) ++next;
        ASSERT_EQ(sub->vtx[v], soup.vtx[corner(soup.tri[kept[i]], k)]);
      }
    ASSERT_EQ(sub->n_vtx, next);
    for (uint32_t a = 0; a < sub->n_vtx; ++a)
      for (uint32_t b = 0; b < a; ++b) ASSERT_NE(sub->vtx[a], sub->vtx[b]);
  }
}

}  // namespace
