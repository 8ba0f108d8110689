// Connected components of sets of triangles, and vertices that are no manifold points.
#include "mesh/components.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/mesh/soups.h"
#include "tests/reference/plain_adjacency.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

// By both forms, which must agree.
plain::Table list_Components(TSoup soup, const std::vector<bool>& set) {
  Scoped<TAdj> adj;
  Scoped<TLst<TLst<uint32_t>>> given, own;
  const CBitVector bits = to_Bits(set);
  EXPECT_EQ(adj_TriTri(soup.msh(), *adj), 0);
  EXPECT_TRUE(cmp_Adj(soup.msh(), *adj, bits, *given));
  EXPECT_TRUE(cmp_Own(soup.msh(), bits, *own));
  EXPECT_EQ(copy_Nested(*given), copy_Nested(*own));
  return copy_Nested(*given);
}

std::vector<bool> flag_Bows(TSoup soup) {
  Scoped<TAdj> adj;
  CBitVector bits;
  EXPECT_EQ(adj_VtxTri(soup.msh(), *adj), 0);
  EXPECT_TRUE(vtx_Bow(soup.msh(), bits, *adj));
  EXPECT_EQ(bits.size(), soup.vtx.size());
  std::vector<bool> flags;
  for (uint32_t v = 0; v < soup.vtx.size(); ++v) flags.push_back(bits.test(v));
  return flags;
}

TSoup make_Islands() { return make_Soup(8, {{0, 1, 2}, {4, 5, 6}, {2, 1, 3}, {6, 5, 7}}); }

}  // namespace

TEST(Components, OfAnEmptySetAreNoneAndSucceed) {
  EXPECT_EQ(list_Components(make_Islands(), std::vector<bool>(4)), plain::Table{});
}

TEST(Components, OfTwoIslandsComeByTheirFirstTriangleAndEndWithTheirSeed) {
  EXPECT_EQ(list_Components(make_Islands(), all_Of(make_Islands())),
            (plain::Table{{2, 0}, {3, 1}}));
}

TEST(Components, AreListedAgainstTheOrderOfTheSearch) {
  // Triangle 0 has the neighbours 2 and 1, in this order; 3 hangs on 2.
  const TSoup soup = make_Soup(6, {{0, 1, 2}, {2, 0, 3}, {1, 0, 4}, {0, 4, 5}});
  EXPECT_EQ(list_Components(soup, all_Of(soup)), (plain::Table{{3, 1, 2, 0}}));
}

TEST(Components, AreNotJoinedOverTrianglesOutsideTheSet) {
  const TSoup strip = make_Soup(5, {{0, 1, 2}, {2, 1, 3}, {2, 3, 4}});
  EXPECT_EQ(list_Components(strip, {true, false, true}), (plain::Table{{0}, {2}}));
}

TEST(Components, AreNotJoinedOverAVertex) {
  const TSoup soup = make_Soup(5, {{0, 1, 2}, {0, 3, 4}});
  EXPECT_EQ(list_Components(soup, all_Of(soup)), (plain::Table{{0}, {1}}));
}

TEST(Components, OfAnEmptyMeshOrASetOfAnotherSize_Fail) {
  TSoup soup = make_Islands();
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_TriTri(soup.msh(), *adj), 0);
  TLst<TLst<uint32_t>> out = {nullptr, 7, 7};
  const CBitVector right = to_Bits(all_Of(soup)), wrong = to_Bits({true, true, true});
  const auto expect_Failure = [&](const T3DMSH& msh, const CBitVector& set) {
    EXPECT_FALSE(cmp_Adj(msh, *adj, set, out));
    EXPECT_FALSE(cmp_Own(msh, set, out));
    EXPECT_EQ(out.count, 0u);
  };
  expect_Failure(soup.msh(), wrong);
  expect_Failure(soup.msh(), CBitVector{});
  expect_Failure({nullptr, 8, soup.tri.data(), 4}, right);
  expect_Failure({soup.vtx.data(), 0, soup.tri.data(), 4}, right);
  expect_Failure({soup.vtx.data(), 8, nullptr, 4}, right);
  expect_Failure({soup.vtx.data(), 8, soup.tri.data(), 0}, CBitVector{});
}

TEST(Components, WithoutTable_Fail) {
  TSoup soup = make_Islands();
  TLst<TLst<uint32_t>> out;
  EXPECT_FALSE(cmp_Adj(soup.msh(), TAdj{}, to_Bits(all_Of(soup)), out));
}

TEST(Components, WithoutMemory_FailAndLeaveNothing) {
  TSoup soup = make_Islands();
  const CBitVector set = to_Bits(all_Of(soup));
  const auto codes = list_FailureCodes([&] {
    TLst<TLst<uint32_t>> out;
    const bool good = cmp_Own(soup.msh(), set, out);
    EXPECT_EQ(out.data != nullptr, good);
    release(out);
    return good;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}

TEST(Components, AgreeWithThePlainSearchOnRandomSoups) {
  for (uint32_t seed = 0; seed < scale_Cases(300); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const TSoup soup = make_Random(random, 4 + seed % 20, 1 + seed % 40, seed % 2 == 0);
    const std::vector<bool> set = pick_Some(random, soup.tri.size(), 70);
    ASSERT_EQ(list_Components(soup, set),
              plain::search_Components(plain::list_Neighbours(soup.tri), set));
  }
}

TEST(Components, AreThePartitionByUnionFind) {
  for (uint32_t seed = 0; seed < scale_Cases(200); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const TSoup soup = make_Random(random, 10 + seed % 20, 1 + seed % 60, false);
    const std::vector<bool> set = pick_Some(random, soup.tri.size(), 70);
    std::set<std::vector<uint32_t>> partition;
    uint32_t last_seed = 0;
    for (std::vector<uint32_t> component : list_Components(soup, set)) {
      ASSERT_EQ(component.back(), *std::min_element(component.begin(), component.end()));
      ASSERT_GE(component.back(), last_seed);
      last_seed = component.back();
      std::sort(component.begin(), component.end());
      partition.insert(component);
    }
    ASSERT_EQ(partition, plain::join_Components(soup.tri, set));
  }
}

TEST(Components, OfALongStripNeedNoDeepStack) {
  const uint32_t count = 200000;
  TSoup soup = make_Soup(count + 2, {});
  for (uint32_t t = 0; t < count; ++t) soup.tri.push_back({t, t + 1, t + 2});
  const plain::Table components = list_Components(soup, all_Of(soup));
  ASSERT_EQ(components.size(), 1u);
  EXPECT_EQ(components[0].front(), count - 1);
  EXPECT_EQ(components[0].back(), 0u);
}

TEST(Bows, AClosedSurfaceHasNone) {
  EXPECT_EQ(flag_Bows(make_Tetrahedron()), std::vector<bool>(4));
}

TEST(Bows, AreTheEndsOfAnEdgeOfThreeTriangles) {
  EXPECT_EQ(flag_Bows(make_Soup(5, {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}})),
            (std::vector<bool>{true, true, false, false, false}));
}

TEST(Bows, AreTheCornersOfATriangleWithEqualCorners) {
  EXPECT_EQ(flag_Bows(make_Soup(4, {{0, 0, 1}, {1, 2, 3}})),
            (std::vector<bool>{true, true, false, false}));
  EXPECT_EQ(flag_Bows(make_Soup(1, {{0, 0, 0}})), (std::vector<bool>{true}));
}

TEST(Bows, FansThatOnlyTouchAreNotFlagged) {
  EXPECT_EQ(flag_Bows(make_Soup(5, {{0, 1, 2}, {0, 3, 4}})), std::vector<bool>(5));
}

TEST(Bows, WithoutMeshOrTable_Fail) {
  TSoup soup = make_Tetrahedron();
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_VtxTri(soup.msh(), *adj), 0);
  CBitVector bits;
  EXPECT_FALSE(vtx_Bow({}, bits, *adj));
  EXPECT_FALSE(vtx_Bow(soup.msh(), bits, TAdj{}));
  EXPECT_FALSE(bits.is_Valid());
}

TEST(Bows, WithoutMemory_Fail) {
  TSoup soup = make_Tetrahedron();
  Scoped<TAdj> adj;
  ASSERT_EQ(adj_VtxTri(soup.msh(), *adj), 0);
  const auto codes = list_FailureCodes([&] {
    CBitVector bits;
    return vtx_Bow(soup.msh(), bits, *adj);
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}

TEST(Bows, AgreeWithThePlainCountOnRandomSoups) {
  for (uint32_t seed = 0; seed < scale_Cases(300); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937_64 random(seed);
    const TSoup soup = make_Random(random, 4 + seed % 20, 1 + seed % 30, seed % 3 == 0);
    ASSERT_EQ(flag_Bows(soup), plain::flag_Bows(soup.tri, static_cast<uint32_t>(soup.vtx.size())));
  }
}
