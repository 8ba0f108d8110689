// The result lists of a finished region of interest, and its end files over maps made by hand.
#include "decomposition/output.h"

#include <cstring>
#include <sstream>

#include "decomposition/stage_files.h"
#include "tests/files/support.h"
#include "tests/support/allocations.h"
#include "tests/support/maps.h"

namespace undercut::tests {
namespace {

bool equal(const T3DVEC& a, const T3DVEC& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

// A sheet with region 0 and three others: 5 with three triangles, 2 with two, 7 with none.
struct TFinished : TWorld {
  CUcA *five, *two, *seven;
  TFinished() : TWorld(make_Bumpy(4, 4), list_All(make_Bumpy(4, 4))) {
    five = settle(5, {0, 1, 2});
    two = settle(2, {10, 11});
    seven = settle(7, {});
    for (CUcA* region : {five, two, seven}) {
      const double i = region->id;
      region->measures.centroid = {i, 10 * i, 100 * i};
      region->measures.axis = {0, 3 * i, 4 * i};
      region->measures.axis_frame = frm_Ray({{i, i, i}, {0, 3, 4}});
    }
  }
  std::vector<TUcRef> refs(bool sorted = false) {
    std::vector<TUcRef> all;
    EXPECT_TRUE(map.get_Ucs(all, sorted));
    return all;
  }
};

std::vector<uint32_t> items(const TLst<uint32_t>& list) {
  return {list.data, list.data + list.count};
}

// ---- Result lists ------------------------------------------------------------------------------

TEST(WrtTri, WalksEachList_SoTheLastTriangleJoinedComesFirst) {
  TFinished world;
  const std::vector<TUcRef> refs = {{5, world.five}, {2, world.two}};
  Scoped<TLst<TLst<uint32_t>>> slot;
  ASSERT_TRUE(wrt_Tri(world.map, *slot, &refs));
  ASSERT_EQ(slot->count, 2u);
  EXPECT_EQ(items(slot->data[0]), (std::vector<uint32_t>{2, 1, 0}));
  EXPECT_EQ(items(slot->data[1]), (std::vector<uint32_t>{11, 10}));
}

TEST(WrtTri, GivesInnerListsTheCapacityOfTheRegion_AndTheOuterThatOfTheRegionList) {
  TFinished world;
  const std::vector<TUcRef> refs = world.refs();
  Scoped<TLst<TLst<uint32_t>>> slot;
  ASSERT_TRUE(wrt_Tri(world.map, *slot, &refs));
  EXPECT_EQ(refs.size(), 4u);
  EXPECT_EQ(slot->capacity, 4u);
  EXPECT_EQ(slot->count, 2u);
  for (uint32_t k = 0; k < 2; ++k) EXPECT_EQ(slot->data[k].capacity, slot->data[k].count);
}

TEST(WrtTri, IsFalse_WhereAListIsLongerThanItsCount) {
  TFinished world;
  world.five->count = 2;
  const std::vector<TUcRef> refs = {{5, world.five}};
  Scoped<TLst<TLst<uint32_t>>> slot;
  EXPECT_FALSE(wrt_Tri(world.map, *slot, &refs));
}

TEST(WrtAxi, GivesTheCentre_AndTheOppositeOfTheUnitAxis) {
  TFinished world;
  const std::vector<TUcRef> refs = {{2, world.two}, {5, world.five}};
  Scoped<TLst<T3DRAY>> slot;
  ASSERT_TRUE(wrt_Axi(world.map, *slot, &refs));
  ASSERT_EQ(slot->count, 2u);
  EXPECT_EQ(slot->capacity, 2u);
  EXPECT_TRUE(equal(slot->data[0].org, {2, 20, 200}));
  EXPECT_TRUE(equal(slot->data[1].org, {5, 50, 500}));
  for (uint32_t k = 0; k < 2; ++k) {
    EXPECT_DOUBLE_EQ(slot->data[k].dir.x, 0);
    EXPECT_DOUBLE_EQ(slot->data[k].dir.y, -0.6);
    EXPECT_DOUBLE_EQ(slot->data[k].dir.z, -0.8);
  }
}

TEST(WrtFrm, CopiesTheAxisFrame) {
  TFinished world;
  world.five->measures.normal_frame = frm_Ray({{9, 9, 9}, {1, 0, 0}});
  const std::vector<TUcRef> refs = {{2, world.two}, {5, world.five}};
  Scoped<TLst<T3DFRM>> slot;
  ASSERT_TRUE(wrt_Frm(world.map, *slot, &refs));
  ASSERT_EQ(slot->count, 2u);
  EXPECT_EQ(std::memcmp(&slot->data[0], &world.two->measures.axis_frame, sizeof(T3DFRM)), 0);
  EXPECT_EQ(std::memcmp(&slot->data[1], &world.five->measures.axis_frame, sizeof(T3DFRM)), 0);
}

TEST(Writers, PassOverRegionZero_NullRegions_AndRegionsWithoutTriangles) {
  TFinished world;
  const std::vector<TUcRef> refs = {
      {0, world.map.get_Uca(0)}, {7, world.seven}, {9, nullptr}, {2, world.two}};
  Scoped<TLst<TLst<uint32_t>>> t;
  Scoped<TLst<T3DRAY>> a;
  Scoped<TLst<T3DFRM>> f;
  ASSERT_TRUE(wrt_Tri(world.map, *t, &refs));
  ASSERT_TRUE(wrt_Axi(world.map, *a, &refs));
  ASSERT_TRUE(wrt_Frm(world.map, *f, &refs));
  EXPECT_EQ(t->count, 1u);
  EXPECT_EQ(a->count, 1u);
  EXPECT_EQ(f->count, 1u);
  EXPECT_EQ(t->capacity, 4u);
  EXPECT_EQ(a->capacity, 4u);
  EXPECT_EQ(f->capacity, 4u);
  EXPECT_EQ(items(t->data[0]), (std::vector<uint32_t>{11, 10}));
  EXPECT_EQ(a->data[0].org.x, 2);
}

TEST(Writers, FetchAllRegionsUnsorted_ForNoList) {
  TFinished world;
  world.five->band = 0;
  world.two->band = 1;
  std::vector<double> order;
  for (const TUcRef& ref : world.refs(false))
    if (ref.id != 0 && ref.region->count != 0) order.push_back(ref.id);
  Scoped<TLst<TLst<uint32_t>>> t;
  Scoped<TLst<T3DRAY>> a;
  Scoped<TLst<T3DFRM>> f;
  ASSERT_TRUE(wrt_Tri(world.map, *t, nullptr));
  ASSERT_TRUE(wrt_Axi(world.map, *a, nullptr));
  ASSERT_TRUE(wrt_Frm(world.map, *f, nullptr));
  ASSERT_EQ(t->count, order.size());
  ASSERT_EQ(a->count, order.size());
  ASSERT_EQ(f->count, order.size());
  for (uint32_t k = 0; k < a->count; ++k) {
    EXPECT_EQ(a->data[k].org.x, order[k]);
    EXPECT_EQ(f->data[k].org.x, order[k]);
    EXPECT_EQ(t->data[k].count, order[k] == 5 ? 3u : 2u);
  }
}

TEST(Writers, AreFalse_ForNoRegionAtAll) {
  TFinished world;
  const std::vector<TUcRef> none;
  Scoped<TLst<TLst<uint32_t>>> t;
  Scoped<TLst<T3DRAY>> a;
  Scoped<TLst<T3DFRM>> f;
  EXPECT_FALSE(wrt_Tri(world.map, *t, &none));
  EXPECT_FALSE(wrt_Axi(world.map, *a, &none));
  EXPECT_FALSE(wrt_Frm(world.map, *f, &none));
  world.map.reset_Map();
  EXPECT_FALSE(wrt_Tri(world.map, *t, nullptr));
  EXPECT_FALSE(wrt_Axi(world.map, *a, nullptr));
  EXPECT_FALSE(wrt_Frm(world.map, *f, nullptr));
}

TEST(Writers, GiveAnEmptyList_WhereOnlyRegionZeroIsLeft) {
  TWorld world(make_Bumpy(2, 2), {0, 1, 2});
  Scoped<TLst<TLst<uint32_t>>> t;
  ASSERT_TRUE(wrt_Tri(world.map, *t, nullptr));
  EXPECT_EQ(t->count, 0u);
  EXPECT_EQ(t->capacity, 1u);
}

TEST(Writers, EmptyTheSlotFirst) {
  TFinished world;
  const std::vector<TUcRef> five = {{5, world.five}}, none;
  const int64_t before = live_Allocations();
  {
    Scoped<TLst<TLst<uint32_t>>> t;
    ASSERT_TRUE(wrt_Tri(world.map, *t, &five));
    ASSERT_TRUE(wrt_Tri(world.map, *t, &five));
    EXPECT_EQ(t->count, 1u) << "not appended";
    EXPECT_FALSE(wrt_Tri(world.map, *t, &none));
    EXPECT_EQ(t->count, 0u);
    EXPECT_TRUE(t->data == nullptr);
  }
  EXPECT_EQ(live_Allocations(), before);
}

TEST(Writers, AreFalse_WithoutMemory_AndLeakNothing) {
  TFinished world;
  const std::vector<TUcRef> refs = world.refs();
  const auto codes = list_FailureCodes([&] {
    Scoped<TLst<TLst<uint32_t>>> t;
    Scoped<TLst<T3DRAY>> a;
    Scoped<TLst<T3DFRM>> f;
    if (!wrt_Tri(world.map, *t, &refs)) return 1;
    if (!wrt_Axi(world.map, *a, &refs)) return 2;
    return wrt_Frm(world.map, *f, &refs) ? 0 : 3;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{1, 2, 3, 0}));
}

TEST(RegionList, IsSortedByBand_AndKeepsTheOrderOfTheTreeAmongEquals) {
  TWorld world(make_Bumpy(6, 6), list_All(make_Bumpy(6, 6)));
  for (uint32_t i = 1; i <= 20; ++i) world.settle(static_cast<int32_t>(i), {i})->band = i % 3;
  std::vector<int32_t> expected;
  for (const uint32_t band : {0u, 1u, 2u, kNone})
    for (const int32_t id : list_Ids(world.map))
      if (world.map.get_Uca(id)->band == band) expected.push_back(id);
  EXPECT_EQ(list_Ids(world.map, true), expected);
  EXPECT_EQ(expected.back(), 0) << "region 0 has no band and comes last";
}

// ---- Where an axis meets its region ------------------------------------------------------------

// Large triangles round the Z axis, one above the other.
TSoup make_Floors(std::initializer_list<double> heights) {
  TSoup soup;
  for (const double z : heights) {
    const auto v = static_cast<uint32_t>(soup.vtx.size());
    soup.vtx.insert(soup.vtx.end(), {{-10, -10, z}, {10, -10, z}, {0, 10, z}});
    soup.tri.push_back({v, v + 1, v + 2});
  }
  return soup;
}

struct TPierced : TWorld {
  C3DTriAABBTree tree;
  Scoped<TLst<uint32_t>> scratch;
  explicit TPierced(TSoup mesh) : TWorld(std::move(mesh)) {
    start();
    EXPECT_TRUE(tree.Build(soup.msh()));
    EXPECT_TRUE(alloc(*scratch, soup.msh().n_tri));
  }
  T3DVEC hit(int32_t id, const T3DRAY& ray) {
    T3DVEC point = {7, 7, 7};
    EXPECT_TRUE(hit_Uca(map, tree, id, ray, *scratch, point));
    return point;
  }
};

constexpr T3DRAY kUp = {{0, 0, 0}, {0, 0, 1}};

TEST(HitUca, GivesTheNearestHitOfTheRegion) {
  TPierced world(make_Floors({5, 2, 9}));
  world.settle(1, {0, 1, 2});
  EXPECT_TRUE(equal(world.hit(1, kUp), {0, 0, 2}));
}

TEST(HitUca, IgnoresOtherRegions) {
  TPierced world(make_Floors({5, 1, 9, 2}));
  world.settle(1, {0, 2});
  world.settle(2, {1});
  EXPECT_TRUE(equal(world.hit(1, kUp), {0, 0, 5}));
  EXPECT_TRUE(equal(world.hit(2, kUp), {0, 0, 1}));
  EXPECT_TRUE(equal(world.hit(0, kUp), {0, 0, 2}));
}

TEST(HitUca, GivesTheStart_WhereTheLineMisses) {
  TPierced world(make_Floors({5, 2}));
  world.settle(1, {0});
  EXPECT_TRUE(equal(world.hit(1, {{50, 1, 0}, {0, 0, 1}}), {50, 1, 0})) << "beside it";
  EXPECT_TRUE(equal(world.hit(1, {{0, 0, 0}, {1, 0, 0}}), {0, 0, 0})) << "along it";
  EXPECT_TRUE(equal(world.hit(3, kUp), {0, 0, 0})) << "no such region";
}

TEST(HitUca, PassesOverBoxesBehindTheStart) {
  TPierced world(make_Floors({-3, -5}));
  world.settle(1, {0, 1});
  EXPECT_TRUE(equal(world.hit(1, kUp), {0, 0, 0}));
}

TEST(HitUca, CountsTheWholeLine_InBoxesReachedForward) {
  // A slope through (0, 0, -1): the line meets it behind the start, but its box reaches beyond.
  TSoup slope = {{{-10, -10, -11}, {10, -10, 9}, {0, 20, -1}}, {{0, 1, 2}}};
  const TSoup floor = make_Floors({4});
  slope.vtx.insert(slope.vtx.end(), floor.vtx.begin(), floor.vtx.end());
  slope.tri.push_back({3, 4, 5});
  TPierced world(slope);
  world.settle(1, {0, 1});
  const T3DVEC p = world.hit(1, kUp);
  EXPECT_NEAR(p.z, -1, 1e-12) << "nearer than the floor at 4";
}

TEST(HitUca, LeavesTheOutput_ForAnInvalidMesh) {
  const CMap map;
  const C3DTriAABBTree tree;
  TLst<uint32_t> scratch = {};
  T3DVEC point = {7, 8, 9};
  EXPECT_FALSE(hit_Uca(map, tree, 1, kUp, scratch, point));
  EXPECT_TRUE(equal(point, {7, 8, 9}));
}

// ---- End files over maps made by hand ----------------------------------------------------------

class EndOf : public InFolder {
 protected:
  void SetUp() override {
    InFolder::SetUp();
    par.l_log = 1;
    std::strcpy(par.l_wrk, "end");
    std::strcpy(par.l_end, "axi trf win");
    std::strcpy(par.l_pth, "run");
    par.l_len = 2;
  }
  undercut::EndFiles write(TPierced& world) {
    CStageFiles files(par, ".", world.map, world.tree);
    files.set_Roi(3);
    files.set_Pass(12);
    return files.write_End();
  }
  static std::string end(const char* name) { return read(std::string("run/13-end/03-12-") + name); }

  CDcmPar par;
};

TEST_F(EndOf, ARegionWithoutTriangles_HasAFrameAndALatitude_ButNoAxisAndNoResult) {
  TPierced world(make_Floors({5, 2}));
  world.settle(1, {0})->measures.axis = {0, 0, 3};
  world.settle(4, {})->measures.axis = {0, 0, -0.5};
  ASSERT_EQ(write(world), undercut::EndFiles::kDone);
  EXPECT_EQ(end("11-Axi.pol").find("axi-4"), std::string::npos);
  EXPECT_NE(end("11-Axi.pol").find("<axi-1>"), std::string::npos);
  EXPECT_TRUE(exists("run/13-end/03-12-12-Lcs-4.txt"));
  EXPECT_TRUE(exists("run/13-end/03-12-12-Lcs-1.txt"));
  EXPECT_FALSE(exists("run/13-end/03-12-12-Lcs-0.txt"));
  EXPECT_NE(end("13-Win.txt").find("south latitude (0004) := +0.00 [deg]\n"), std::string::npos);

  Scoped<TLst<TLst<uint32_t>>> t;
  Scoped<TLst<T3DRAY>> a;
  Scoped<TLst<T3DFRM>> f;
  ASSERT_TRUE(wrt_Tri(world.map, *t, nullptr) && wrt_Axi(world.map, *a, nullptr) &&
              wrt_Frm(world.map, *f, nullptr));
  EXPECT_EQ(t->count, 1u);
  EXPECT_EQ(a->count, 1u);
  EXPECT_EQ(f->count, 1u);
}

TEST_F(EndOf, TheAxis_BeginsWhereItsLineMeetsTheRegion) {
  TPierced world(make_Floors({5, 2}));
  CUcA* region = world.settle(1, {0});
  region->measures.axis = {0, 0, 3};  // not of unit length
  region->measures.centroid = {1, -1, 0};
  ASSERT_EQ(write(world), undercut::EndFiles::kDone);
  EXPECT_EQ(end("11-Axi.pol"),
            "<axi-1>\n1.000000 -1.000000 5.000000\n1.000000 -1.000000 7.000000\n</axi-1>\n");
}

TEST_F(EndOf, TheAxis_BeginsAtTheCentre_WhereItsLineMissesTheRegion) {
  TPierced world(make_Floors({5, 2}));
  CUcA* region = world.settle(1, {0});
  region->measures.axis = {0, 0, 1};
  region->measures.centroid = {50, 0, 0};
  ASSERT_EQ(write(world), undercut::EndFiles::kDone);
  EXPECT_EQ(end("11-Axi.pol"),
            "<axi-1>\n50.000000 0.000000 0.000000\n50.000000 0.000000 2.000000\n</axi-1>\n");
}

TEST_F(EndOf, LatitudesAreOfTheNearerPole_AndTheEquatorIsSouthern) {
  TPierced world(make_Floors({5, 2, 1, 0, -1}));
  world.settle(1, {0})->measures.axis = {5, 0, 0};
  world.settle(2, {1})->measures.axis = {0, 1, 1};
  world.settle(3, {2})->measures.axis = {0, 1, -1};
  world.settle(4, {3})->measures.axis = {0, 0, 0};
  ASSERT_EQ(write(world), undercut::EndFiles::kDone);
  std::set<std::string> lines;
  std::istringstream text(end("13-Win.txt"));
  for (std::string line; std::getline(text, line);) lines.insert(line);
  EXPECT_EQ(lines,
            (std::set<std::string>{
                "south latitude (0001) := +90.00 [deg]", "north latitude (0002) := +45.00 [deg]",
                "south latitude (0003) := +45.00 [deg]", "south latitude (0004) := -1.00 [deg]"}));
}

TEST_F(EndOf, AFrame_HasItsAxesInColumns_AndAFixedLastLine) {
  TPierced world(make_Floors({5}));
  world.settle(6, {0})->measures.axis_frame = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {-1, -2, -3}};
  ASSERT_EQ(write(world), undercut::EndFiles::kDone);
  EXPECT_EQ(end("12-Lcs-6.txt"),
            "+1.00000000e+00 +4.00000000e+00 +7.00000000e+00 -1.00000000e+00\n"
            "+2.00000000e+00 +5.00000000e+00 +8.00000000e+00 -2.00000000e+00\n"
            "+3.00000000e+00 +6.00000000e+00 +9.00000000e+00 -3.00000000e+00\n"
            "+0.00000000e+00 +0.00000000e+00 +0.00000000e+00 +1.00000000e+00\n");
}

TEST_F(EndOf, AnUnwritableFolder_FailsForAxesAndLatitudes_AndIsWorseForFrames) {
  std::ofstream("run") << "in the way of the folder";
  TPierced world(make_Floors({5}));
  world.settle(1, {0})->measures.axis = {0, 0, 1};
  const std::pair<const char*, undercut::EndFiles> kCases[] = {
      {"axi", undercut::EndFiles::kFailed},  {"win", undercut::EndFiles::kFailed},
      {"trf", undercut::EndFiles::kNoFrame}, {"axi trf", undercut::EndFiles::kFailed},
      {"uda", undercut::EndFiles::kDone},    {"h2o", undercut::EndFiles::kDone}};
  std::strcpy(par.l_uda, "ply stl txt pol");
  for (const auto& [words, result] : kCases) {
    std::strcpy(par.l_end, words);
    EXPECT_EQ(write(world), result) << words;
  }
}

TEST_F(EndOf, AFolderThatDoesNotFit_IsNoFailure) {
  TPierced world(make_Floors({5}));
  world.settle(1, {0})->measures.axis = {0, 0, 1};
  const CStageFiles files(par, std::string(250, 'd'), world.map, world.tree);
  EXPECT_EQ(files.write_End(), undercut::EndFiles::kDone);
  EXPECT_EQ(count_Files(), 0u);
}

}  // namespace
}  // namespace undercut::tests
