// get_Com, called as a host calls it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <set>

#include "tests/boundary/defaults.h"
#include "tests/reference/plain_adjacency.h"
#include "tests/support/intensity.h"
#include "tests/support/pieces_request.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();

class Components : public testing::Test {
 protected:
  Components() { defaults::restore(); }
  ~Components() override { defaults::restore(); }

  // The pieces of all triangles of a mesh, with a tolerance.
  Lists lists_Of(const TSoup& soup, double tolerance) {
    r.soup = soup;
    r.bit.assign(soup.tri.size(), 1);
    defaults::set(ucs_Eps, tolerance);
    return r.lists();
  }

  TPiecesRequest r{get_Com};
};

// Two squares in halves, side by side, `gap` apart: vertices 0 to 3 and 4 to 7.
TSoup make_Apart(double gap) {
  const double x = 1 + gap;
  return {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {x, 0, 0}, {2, 0, 0}, {2, 1, 0}, {x, 1, 0}},
          {{0, 1, 2}, {0, 2, 3}, {4, 5, 6}, {4, 6, 7}}};
}

TEST_F(Components, OfAMaskOfZerosAreNone_AndNoFailure) {
  r.soup = make_Apart(0);
  r.bit.assign(4, 0);
  for (const double tolerance : {0.0, 0.1}) {
    defaults::set(ucs_Eps, tolerance);
    EXPECT_EQ(r.lists(), Lists{});
    EXPECT_TRUE(r.res.com.data == nullptr);
  }
}

TEST_F(Components, SplitShellsWithCoincidentVertices_WithoutATolerance_AndJoinThemWithOne) {
  EXPECT_EQ(lists_Of(make_Apart(0), 0), (Lists{{1, 0}, {3, 2}}));
  EXPECT_EQ(lists_Of(make_Apart(0), 1e-9), (Lists{{2, 1, 3, 0}}));
}

TEST_F(Components, JoinAcrossAGapUpToTheTolerance) {
  EXPECT_EQ(lists_Of(make_Apart(0.25), 0.25), (Lists{{2, 1, 3, 0}}));
  EXPECT_EQ(lists_Of(make_Apart(0.25), 0.2499), (Lists{{1, 0}, {3, 2}}));
}

TEST_F(Components, MergeNothing_WithAToleranceThatIsNotAboveZero) {
  for (const double tolerance : {0.0, -0.0, -1.0, -kInfinite, kNoNumber})
    EXPECT_EQ(lists_Of(make_Apart(0), tolerance), (Lists{{1, 0}, {3, 2}})) << tolerance;
}

TEST_F(Components, JoinEverything_WithAnInfiniteTolerance) {
  EXPECT_EQ(lists_Of(make_Apart(5), kInfinite), (Lists{{3, 2, 1, 0}}));
}

TEST_F(Components, ComeByTheirLowestTriangle_EachFromTheLastFoundToItsSeed) {
  // A strip of nine without its fourth, and the search runs both ways from a seed inside.
  r.soup = make_Strip(9);
  r.bit = {1, 1, 1, 0, 1, 1, 1, 1, 1};
  EXPECT_EQ(r.lists(), (Lists{{2, 1, 0}, {8, 7, 6, 5, 4}}));
  std::swap(r.soup.tri[4], r.soup.tri[6]);
  EXPECT_EQ(r.lists(), (Lists{{2, 1, 0}, {6, 8, 5, 7, 4}}));
}

TEST_F(Components, NeedASharedEdge_AVertexIsNotEnough) {
  const TSoup bow = make_Soup(5, {{0, 1, 2}, {0, 3, 4}});
  EXPECT_EQ(lists_Of(bow, 0), (Lists{{0}, {1}}));
}

TEST_F(Components, AreOfTheTrianglesOfTheMaskAlone_WhateverItsBytes) {
  r.soup = make_Strip(5);
  r.bit = {1, 255, 0, 2, 128};
  EXPECT_EQ(r.lists(), (Lists{{1, 0}, {4, 3}}));
}

TEST_F(Components, KeepTheNumbersOfTriangles_WhoseCornersAreMerged) {
  // Triangle 1 shrinks to an edge, over which it still touches both others.
  const TSoup soup = {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0.001, 1, 0}, {1, 1, 0}},
                      {{0, 1, 2}, {1, 3, 2}, {1, 4, 3}}};
  EXPECT_EQ(lists_Of(soup, 0.01), (Lists{{2, 1, 0}}));
}

TEST_F(Components, CountATriangleWithEqualCornersThatTouchesNothing) {
  const TSoup soup = {{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {9, 9, 9}}, {{3, 3, 3}, {0, 1, 2}}};
  EXPECT_EQ(lists_Of(soup, 0), (Lists{{0}, {1}}));
}

TEST_F(Components, StandCoordinatesThatAreNotFinite_WithoutATolerance) {
  TSoup soup = make_Apart(0);
  soup.vtx[1] = {kNoNumber, kInfinite, -1e308};
  EXPECT_EQ(lists_Of(soup, 0), (Lists{{1, 0}, {3, 2}}));
}

TEST_F(Components, GiveMinus5_WhereAVertexToMergeIsNoNumber) {
  for (const double bad : {kNoNumber, kInfinite}) {
    for (const bool used : {true, false}) {
      r.soup = make_Apart(0);
      if (!used) r.soup.vtx.push_back({0, 0, 0});
      (used ? r.soup.vtx[6] : r.soup.vtx.back()).y = bad;
      r.bit.assign(4, 1);
      defaults::set(ucs_Eps, 0.1);
      EXPECT_EQ(r.fill_AndCall(), -5) << bad << used;
      EXPECT_TRUE(r.res.com.data == nullptr);
    }
  }
}

void make_Good(TPiecesRequest& request) {
  request.soup = make_Apart(0);
  request.bit = {1, 1, 0, 1};
}

const TPiecesFault kFaults[] = {
    {-1, [](TPiecesRequest& q) { q.req.msh.vtx = nullptr; }},
    {-2, [](TPiecesRequest& q) { q.req.msh.tri = nullptr; }},
    {-3, [](TPiecesRequest& q) { q.req.msh.n_vtx = 0; }},
    {-4, [](TPiecesRequest& q) { q.req.msh.n_tri = 0; }},
    {UNDERCUT_BAD_VERTEX, [](TPiecesRequest& q) { q.soup.tri[3].b = 8; }},
    {UNDERCUT_BAD_VERTEX, [](TPiecesRequest& q) { q.soup.tri[0].a = 0xFFFFFFFFu; }},
    {-7, [](TPiecesRequest& q) { q.req.bit.count = 3; }},
    {-7,
     [](TPiecesRequest& q) {
       q.req.bit = {nullptr, 4};
     }},
    {-7, [](TPiecesRequest& q) { q.req.bit.count = 0; }},
    {-7,
     [](TPiecesRequest& q) {
       q.bit.push_back(1);
       q.req.bit = {q.bit.data(), 5};
     }},
};

TEST_F(Components, TellEachFaultByItsCode_TheFirstOfTwo_AndLeaveTheResultAsItWas) {
  expect_Faults(kFaults, get_Com, make_Good);
}

TEST_F(Components, GiveMinus6ForAMaskOfAnotherLength_WhereVerticesAreMerged) {
  make_Good(r);
  defaults::set(ucs_Eps, 0.1);
  r.fill();
  for (const TArrU8 mask :
       {TArrU8{nullptr, 4}, TArrU8{r.bit.data(), 3}, TArrU8{r.bit.data(), 0}, TArrU8{nullptr, 0}}) {
    r.req.bit = mask;
    EXPECT_EQ(r.call(), -6);
  }
}

TEST_F(Components, TellVerticesThatCannotBeMerged_BeforeAMaskOfAnotherLength) {
  make_Good(r);
  r.soup.vtx[0].x = kNoNumber;
  r.bit.pop_back();
  defaults::set(ucs_Eps, 0.1);
  EXPECT_EQ(r.fill_AndCall(), -5);
}

TEST_F(Components, TellTheStepThatHasNoMemory) {
  make_Good(r);
  EXPECT_EQ(r.list_Codes(), (Codes{-7, 0}));
  defaults::set(ucs_Eps, 0.1);
  // Without memory for its bits the mask fits no mesh, which shows after the merging.
  EXPECT_EQ(r.list_Codes(), (Codes{-6, -5, -6, 0}));
}

// A query through a tree as deep as that of these vertices needs memory of its own; one that takes
// the whole tree at once needs none.
TEST_F(Components, GiveMinus5_WithoutMemoryForAQueryAmongVeryUnevenVertices) {
  for (int k = 0; k < 55; ++k) {
    const double x = std::pow(2.01, k);
    for (const T3DVEC& v : {T3DVEC{x, 0, 0}, {0, x, 0}, {0, 0, x}}) {
      const auto first = static_cast<uint32_t>(r.soup.vtx.size());
      r.soup.vtx.insert(r.soup.vtx.end(), 6, v);
      r.soup.tri.push_back({first, first + 1, first + 2});
    }
  }
  r.bit.assign(r.soup.tri.size(), 1);
  r.fill();
  const auto count_Codes = [this](double tolerance) {
    defaults::set(ucs_Eps, tolerance);
    std::map<int32_t, uint32_t> counts;
    for (uint64_t n = 1; counts[0] == 0; ++n) {
      clr_Res(&r.res);
      const FailingAllocation failing(n);
      ++counts[r.call()];
    }
    return counts;
  };
  std::map<int32_t, uint32_t> queries = count_Codes(0.5);
  EXPECT_EQ(queries.size(), 3u) << queries.begin()->first;  // -6, -5 and 0
  EXPECT_GT(queries[-5], count_Codes(kInfinite)[-5]);
}

TEST_F(Components, TakeAMissingRecordAsOneWithoutAMesh) {
  make_Good(r);
  r.fill();
  EXPECT_EQ(get_Com(nullptr, &r.res), -1);
  EXPECT_EQ(get_Com(&r.req, nullptr), -1);
  EXPECT_EQ(get_Com(nullptr, nullptr), -1);
}

TEST_F(Components, OverwriteAnEarlierList_WithoutFreeingIt) {
  make_Good(r);
  const Lists expected = r.lists();
  const TLstLstU32 earlier = r.res.com;
  ASSERT_EQ(get_Com(&r.req, &r.res), 0);
  EXPECT_TRUE(r.res.com.data != earlier.data);
  EXPECT_EQ(copy_Nested(earlier), expected);
  TUcRes old;
  ini_Res(&old);
  old.com = earlier;
  clr_Res(&old);
}

TEST_F(Components, WriteNothingOfTheResultButCom) {
  make_Good(r);
  r.fill();
  TUcRes res, before;
  std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
  std::memcpy(static_cast<void*>(&before), &res, sizeof res);
  ASSERT_EQ(get_Com(&r.req, &res), 0);
  r.res.com = res.com;
  before.com = res.com;
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
}

TEST_F(Components, LeaveTheRequestAsItWas) {
  make_Good(r);
  for (const double tolerance : {0.0, 0.5}) {
    defaults::set(ucs_Eps, tolerance);
    expect_Untouched(r);
  }
}

TEST_F(Components, WorkOnRecordsAtAMultipleOf4Bytes) {
  make_Good(r);
  expect_WorksUnaligned(r, get_Com);
}

TEST_F(Components, LeakNothingInAHundredCycles) {
  make_Good(r);
  for (const double tolerance : {0.0, 0.1}) {
    defaults::set(ucs_Eps, tolerance);
    expect_NoLeak(r);
  }
}

// ---- Against plain forms ---------------------------------------------------------------------

// Triangles over the points of a lattice, some of which have twins closer than a hundredth.
struct TTwins {
  TSoup soup;
  Indices point;  // by vertex: its point of the lattice
};
TTwins pick_Twins(reference::Random& random, bool flat) {
  TTwins twins;
  const uint64_t vertices = 4 + random.below(30);
  for (uint64_t v = 0; v < vertices; ++v) {
    const auto p = static_cast<uint32_t>(random.below(24));
    twins.point.push_back(p);
    twins.soup.vtx.push_back(T3DVEC{double(p % 4), double(p / 4 % 3), double(p / 12)} +
                             random.triple(-0.002, 0.002));
  }
  for (uint64_t t = 1 + random.below(40), tries = 0; t > 0 && tries < 1000; ++tries) {
    const auto pick = [&] { return static_cast<uint32_t>(random.below(vertices)); };
    const T3DTRI tri = {pick(), pick(), pick()};
    const auto& point = twins.point;
    if (!flat && is_Flat(T3DTRI{point[tri.a], point[tri.b], point[tri.c]})) continue;
    twins.soup.tri.push_back(tri);
    --t;
  }
  return twins;
}
plain::Triangles merge_Plainly(const TTwins& twins) {
  plain::Triangles merged;
  for (const T3DTRI& t : twins.soup.tri)
    merged.push_back({twins.point[t.a], twins.point[t.b], twins.point[t.c]});
  return merged;
}

TEST_F(Components, EqualAPlainSearch_OnRandomMeshes_WithAndWithoutMerging) {
  const uint64_t seed = 741;
  reference::Random random(seed);
  std::map<size_t, uint32_t> sizes;
  for (uint32_t i = 0; i < scale_Cases(600); ++i) {
    const TTwins twins = pick_Twins(random, true);
    if (twins.soup.tri.empty()) continue;
    r.soup = twins.soup;
    r.bit.clear();
    plain::Set set;
    for (size_t t = 0; t < r.soup.tri.size(); ++t) {
      set.push_back(random.chance(0.7));
      r.bit.push_back(set.back() ? static_cast<uint8_t>(1 + random.below(255)) : 0);
    }
    defaults::set(ucs_Eps, 0.0);
    ASSERT_EQ(r.lists(), plain::search_Components(plain::list_Neighbours(r.soup.tri), set))
        << "seed " << seed << ", case " << i;
    defaults::set(ucs_Eps, 0.02);
    const Lists merged = r.lists();
    ASSERT_EQ(merged, plain::search_Components(plain::list_Neighbours(merge_Plainly(twins)), set))
        << "seed " << seed << ", case " << i;
    ++sizes[merged.size()];
  }
  EXPECT_GT(sizes.size(), 5u);
}

TEST_F(Components, EqualUnionFind_OnRandomMeshes_WithAndWithoutMerging) {
  const uint64_t seed = 742;
  reference::Random random(seed);
  const auto sort_All = [](const Lists& lists) {
    std::set<Indices> sorted;
    for (Indices list : lists) {
      std::sort(list.begin(), list.end());
      sorted.insert(list);
    }
    return sorted;
  };
  for (uint32_t i = 0; i < scale_Cases(600); ++i) {
    const TTwins twins = pick_Twins(random, false);
    if (twins.soup.tri.empty()) continue;
    r.soup = twins.soup;
    plain::Set set;
    r.bit.clear();
    for (size_t t = 0; t < r.soup.tri.size(); ++t) {
      set.push_back(random.chance(0.8));
      r.bit.push_back(set.back());
    }
    defaults::set(ucs_Eps, 0.0);
    ASSERT_EQ(sort_All(r.lists()), plain::join_Components(r.soup.tri, set))
        << "seed " << seed << ", case " << i;
    defaults::set(ucs_Eps, 0.02);
    ASSERT_EQ(sort_All(r.lists()), plain::join_Components(merge_Plainly(twins), set))
        << "seed " << seed << ", case " << i;
  }
}

TEST_F(Components, EndOnAnyCoordinates) {
  const uint64_t seed = 743;
  reference::Random random(seed);
  std::map<int32_t, uint32_t> codes;
  for (uint32_t i = 0; i < scale_Cases(300); ++i) {
    r.soup = make_Tangle(random, 5 + random.below(20), 1 + random.below(30));
    for (T3DVEC& v : r.soup.vtx)
      if (random.chance(0.05)) v.z = random.special();
    r.bit.assign(r.soup.tri.size(), 1);
    defaults::set(ucs_Eps, random.chance(0.3) ? random.special() : random.real(0, 4));
    const int32_t code = r.fill_AndCall();
    ASSERT_TRUE(code == 0 || code == -5) << "seed " << seed << ", case " << i << ": " << code;
    ++codes[code];
  }
  EXPECT_GT(codes[0], 20u);
  EXPECT_GT(codes[-5], 20u);
}

}  // namespace
