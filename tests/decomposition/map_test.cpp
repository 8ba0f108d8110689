#include "decomposition/map.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/reference/plain_moves.h"
#include "tests/support/allocations.h"
#include "tests/support/maps.h"

namespace undercut {
namespace {

using namespace tests;
using Slots = std::array<int32_t, 3>;

std::vector<uint32_t> list_Nbr(const CMap& map, uint32_t triangle) {
  const uint32_t* list;
  const uint32_t n = map.nbr_Tri(triangle, list);
  return std::vector<uint32_t>(list, list + n);
}

// ---- Setup -------------------------------------------------------------------------------------

TEST(MapSetup, IniMsh_FailsUnlessBothArraysAndCountsAreThere) {
  TSoup soup = make_Strip(3);
  for (int part = 0; part < 4; ++part) {
    T3DMSH msh = soup.msh();
    if (part == 0) msh.vtx = nullptr;
    if (part == 1) msh.n_vtx = 0;
    if (part == 2) msh.tri = nullptr;
    if (part == 3) msh.n_tri = 0;
    CMap map;
    EXPECT_FALSE(map.ini_Msh(msh)) << "without part " << part;
    EXPECT_FALSE(map.msh.tri);
  }
}

TEST(MapSetup, IniMsh_LeavesAllTrianglesOutsideAndUnlinked) {
  const TWorld world(make_Strip(3));
  const std::vector<int32_t> none(3, -1);
  EXPECT_EQ(world.map.region_of, none);
  EXPECT_EQ(world.map.prev, none);
  EXPECT_EQ(world.map.next, none);
  EXPECT_EQ(world.map.cnt_Uca(), 0);
  EXPECT_EQ(world.map.locked.size(), 3u);
  EXPECT_EQ(world.map.mark.size(), 3u);
  EXPECT_EQ(world.map.scratch_a.capacity, 3u);
  EXPECT_EQ(world.map.scratch_b.capacity, 3u);
  EXPECT_EQ(world.map.scratch_a.count + world.map.scratch_b.count, 0u);
}

TEST(MapSetup, IniMsh_TakesASingleTriangleWithoutNeighbours) {
  const TWorld world(make_Strip(1));
  EXPECT_EQ(world.map.slots[0], (Slots{-1, -1, -1}));
  EXPECT_TRUE(list_Nbr(world.map, 0).empty());
}

TEST(MapSetup, Slots_HoldTheTriangleAcrossEachEdge_AndMinusOneAtTheBorder) {
  const TWorld world(make_Grid(1, 1));  // 0, 1, 3 and 0, 3, 2
  EXPECT_EQ(world.map.slots[0], (Slots{-1, -1, 1}));
  EXPECT_EQ(world.map.slots[1], (Slots{0, -1, -1}));
}

TEST(MapSetup, OnAnEdgeOfManyTriangles_TheSlotHoldsTheLastNeighbour_TheListAllOfThem) {
  const TWorld world(make_Book(5));
  EXPECT_EQ(list_Nbr(world.map, 0), (std::vector<uint32_t>{1, 2, 3, 4}));
  EXPECT_EQ(list_Nbr(world.map, 4), (std::vector<uint32_t>{0, 1, 2, 3}));
  EXPECT_EQ(world.map.slots[0][0], 4);
  EXPECT_EQ(world.map.slots[2][0], 4);
  EXPECT_EQ(world.map.slots[4][0], 3);
}

TEST(MapSetup, SlotsAndNeighboursEqualThePlainForm) {
  reference::Random random(610);
  for (uint32_t round = 0; round < 150; ++round) {
    TSoup soup = make_Tangle(random, 3 + random.below(12), 1 + random.below(30));
    const reference::CPlainMap plain(soup.msh());
    const TWorld world(soup);
    for (uint32_t t = 0; t < soup.tri.size(); ++t) {
      ASSERT_EQ(list_Nbr(world.map, t), plain.neighbours[t]);
      for (uint32_t k = 0; k < 3; ++k) ASSERT_EQ(world.map.slots[t][k], plain.slots[t][k]);
    }
  }
}

TEST(MapSetup, IniMsh_ReplacesAnEarlierMeshAndItsRegions) {
  TWorld world(make_Grid(3, 3), {0, 1, 2});
  TSoup other = make_Strip(4);
  ASSERT_TRUE(world.map.ini_Msh(other.msh()));
  EXPECT_EQ(world.map.cnt_Uca(), 0);
  EXPECT_EQ(world.map.region_of.size(), 4u);
  EXPECT_TRUE(world.map.msh.tri == other.tri.data());
}

TEST(MapSetup, WhereMemoryFails_IniMshIsFalseAndNothingLeaks) {
  TSoup soup = make_Grid(3, 3);
  const std::vector<int32_t> codes = list_FailureCodes([&] {
    CMap map;
    if (map.ini_Msh(soup.msh())) return 0;
    EXPECT_FALSE(map.msh.tri);
    uint32_t first = 0;
    EXPECT_FALSE(map.ini_Roi({&first, 1}));  // there is no room for it
    return -1;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-1, 0}));
}

TEST(MapSetup, SetWin_IsFalseWithoutBands_AndKeepsTheEarlierOnes) {
  CMap map;
  const TUcBand bands[] = {{0, 20}, {160, 180}};
  EXPECT_FALSE(map.set_Win(nullptr, 2));
  EXPECT_FALSE(map.set_Win(bands, 0));
  EXPECT_TRUE(map.set_Win(bands, 2));
  EXPECT_FALSE(map.set_Win(nullptr, 1));
  ASSERT_EQ(map.bands.size(), 2u);
  EXPECT_EQ(map.bands[1].low, 160);
  EXPECT_EQ(map.bands[1].high, 180);
  EXPECT_TRUE(map.set_Win(bands + 1, 1));
  ASSERT_EQ(map.bands.size(), 1u);
  EXPECT_EQ(map.bands[0].low, 160);
}

TEST(MapSetup, BandsAreSetBeforeTheMesh_AndOutliveIt) {
  TSoup soup = make_Strip(2);
  CMap map;
  const TUcBand band = {10, 30};
  ASSERT_TRUE(map.set_Win(&band, 1));
  ASSERT_TRUE(map.ini_Msh(soup.msh()));
  map.free_Map();
  ASSERT_EQ(map.bands.size(), 1u);
  EXPECT_EQ(map.bands[0].high, 30);
}

TEST(MapSetup, AFreshMap_HasFreeAzimuth_AndAxesThatAreNotFrozen) {
  const CMap map;
  EXPECT_FALSE(map.b_ini);
  EXPECT_TRUE(map.b_5ax);
  EXPECT_EQ(map.w_4ax, -360.0);
}

// ---- Region of interest ------------------------------------------------------------------------

TEST(MapRoi, RegionZeroHoldsTheList_LastComeFirst) {
  const TWorld world(make_Strip(6), {1, 4, 2});
  const CUcA* free_region = world.map.get_Uca(0);
  ASSERT_NE(free_region, nullptr);
  EXPECT_EQ(list_Tri(world.map, *free_region), (std::vector<uint32_t>{2, 4, 1}));
  EXPECT_EQ(world.map.region_of, (std::vector<int32_t>{-1, 0, 0, -1, 0, -1}));
  expect_Sound(world.map, {1, 2, 4});
  EXPECT_FALSE(free_region->fixed);
  EXPECT_EQ(free_region->rank, 0);
}

TEST(MapRoi, TheBoundaryOfRegionZeroIsWhatTouchesItFromOutside) {
  const TWorld world(make_Strip(7), {1, 2, 5});
  EXPECT_EQ(world.map.get_Uca(0)->boundary, (std::set<uint32_t>{0, 3, 4, 6}));
}

TEST(MapRoi, TheBoundaryOfRegionZeroTakesAllNeighbours_NotSlotsAlone) {
  const TWorld world(make_Book(5), {1});
  EXPECT_EQ(world.map.get_Uca(0)->boundary, (std::set<uint32_t>{0, 2, 3, 4}));
}

TEST(MapRoi, AreaIsTheSum_CentroidTheMeanOfTriangleCentroids) {
  TWorld world(make_Grid(2, 1));
  world.start();
  EXPECT_NEAR(world.map.roi_area, 2, 1e-14);
  EXPECT_NEAR(world.map.roi_centroid.x, 1, 1e-14);
  EXPECT_NEAR(world.map.roi_centroid.y, 0.5, 1e-14);
  EXPECT_EQ(world.map.get_Uca(0)->measures.area, world.map.roi_area);
  EXPECT_EQ(world.map.get_Uca(0)->measures.perimeter, 0);
}

TEST(MapRoi, ADegenerateTriangleIsLinked_AndCountsInTheWeightsAlone) {
  TSoup soup = make_Grid(1, 1);
  soup.vtx.push_back(soup.vtx[0]);  // equal by coordinates, another index
  soup.tri.push_back({0, 4, 3});
  const T3DVEC c0 = cen_Tri(get_Fac(soup.msh(), 0)), c1 = cen_Tri(get_Fac(soup.msh(), 1));
  TWorld world(soup, {0, 2, 1});
  EXPECT_EQ(world.map.get_Uca(0)->count, 3u);
  EXPECT_NEAR(world.map.roi_area, 1, 1e-15);
  // The third of the list has the weight 1/3, though it is the second that has an area.
  const T3DVEC expected = (2.0 / 3.0) * c0 + (1.0 / 3.0) * c1;
  EXPECT_EQ(world.map.roi_centroid.x, expected.x);
  EXPECT_EQ(world.map.roi_centroid.y, expected.y);
}

TEST(MapRoi, ARepeatedTriangleIsLinkedOnce_AndCountedTwiceInAreaAndCentroid) {
  const TWorld world(make_Grid(1, 1), {0, 0, 1, 0});
  EXPECT_EQ(list_Tri(world.map, *world.map.get_Uca(0)), (std::vector<uint32_t>{1, 0}));
  EXPECT_EQ(world.map.get_Uca(0)->count, 2u);
  EXPECT_NEAR(world.map.roi_area, 2, 1e-15);
  EXPECT_NEAR(world.map.roi_centroid.x, (3 * 2.0 / 3 + 1.0 / 3) / 4, 1e-15);
}

TEST(MapRoi, AnEmptyListGivesAnEmptyRegionZero) {
  const TWorld world(make_Strip(3), {});
  EXPECT_EQ(list_Ids(world.map), std::vector<int32_t>{0});
  EXPECT_EQ(world.map.get_Uca(0)->count, 0u);
  EXPECT_EQ(world.map.roi_area, 0);
}

TEST(MapRoi, AnIndexOutOfRangeFails) {
  TWorld world(make_Strip(3));
  std::vector<uint32_t> roi = {0, 3};
  EXPECT_FALSE(world.map.ini_Roi(view_Arr(roi)));
  roi = {0xFFFFFFFFu};
  EXPECT_FALSE(world.map.ini_Roi(view_Arr(roi)));
}

TEST(MapRoi, ASecondOneStartsAnew) {
  TWorld world(make_Strip(8), {0, 1, 2, 3, 4});
  CMap& map = world.map;
  TUcMoved moved;
  ASSERT_TRUE(map.apply_Move(1, 3, moved));
  map.set_Lck(2);
  map.mark.set(3);
  map.scratch_a.count = map.scratch_b.count = 2;
  map.add_Rnk(3, -1);
  map.add_Rnq(-1, 3, map.get_Uca(3));
  world.start({5, 6});
  EXPECT_EQ(list_Ids(map), std::vector<int32_t>{0});
  expect_Sound(map, {5, 6});
  EXPECT_TRUE(map.locked.is_Empty());
  EXPECT_FALSE(map.mark.test(3));
  EXPECT_EQ(map.scratch_a.count + map.scratch_b.count, 0u);
  EXPECT_TRUE(map.ranks.empty() && map.turns.empty());
}

TEST(MapRoi, ResetMap_DoesNothingWithoutAMesh) {
  CMap map;
  ASSERT_TRUE(map.add_Uca(new CUcA(4)));
  map.add_Rnk(4, -1);
  map.reset_Map();
  EXPECT_NE(map.get_Uca(4), nullptr);
  EXPECT_EQ(map.ranks.size(), 1u);
}

TEST(MapRoi, ResetMap_KeepsTheAdjacency) {
  TWorld world(make_Grid(2, 2));
  world.start();
  const auto slots = world.map.slots;
  world.map.reset_Map();
  EXPECT_EQ(world.map.cnt_Uca(), 0);
  EXPECT_EQ(world.map.roi_area, 0);
  EXPECT_EQ(world.map.slots, slots);
  EXPECT_EQ(list_Nbr(world.map, 0), (std::vector<uint32_t>{3, 1}));
  EXPECT_EQ(world.map.region_of, std::vector<int32_t>(8, -1));
}

TEST(MapRoi, FreeMap_DestroysEveryRegion_AlsoThoseOfAMapWithoutAMesh) {
  const int64_t before = live_Allocations();
  {
    CMap map;
    ASSERT_TRUE(map.add_Uca(new CUcA(4)));
    ASSERT_TRUE(map.add_Uca(new CUcA(2)));
    map.get_Uca(4)->add_Wish(1, -1);
    map.free_Map();
    EXPECT_EQ(map.cnt_Uca(), 0);
    ASSERT_TRUE(map.add_Uca(new CUcA(4)));
  }
  EXPECT_EQ(live_Allocations(), before);
}

// ---- Regions -----------------------------------------------------------------------------------

TEST(MapRegions, AddUca_RefusesNullAndATakenId) {
  CMap map;
  EXPECT_FALSE(map.add_Uca(nullptr));
  ASSERT_TRUE(map.add_Uca(new CUcA(3)));
  CUcA same(3);
  EXPECT_FALSE(map.add_Uca(&same));
  EXPECT_NE(map.get_Uca(3), &same);
  EXPECT_EQ(map.cnt_Uca(), 1);
}

TEST(MapRegions, DelUca_ResetsTheRegionAndGivesItBack) {
  CMap map;
  auto region = std::make_unique<CUcA>(3);
  ASSERT_TRUE(map.add_Uca(region.get()));
  region->count = 4;
  region->fixed = true;
  region->boundary = {1, 2};
  region->add_Wish(5, -1);
  EXPECT_TRUE(map.del_Uca(region.get()));
  EXPECT_EQ(map.get_Uca(3), nullptr);
  EXPECT_EQ(region->id, -2);
  EXPECT_EQ(region->count, 0u);
  EXPECT_FALSE(region->fixed);
  EXPECT_TRUE(region->boundary.empty() && region->candidates.empty() && region->queue.empty());
}

TEST(MapRegions, DelUca_IsFalseForNullAndForARegionThatIsNotThere) {
  CMap map;
  CUcA stranger(3);
  EXPECT_FALSE(map.del_Uca(nullptr));
  EXPECT_FALSE(map.del_Uca(&stranger));
  EXPECT_FALSE(map.kill_Uca(nullptr));
}

TEST(MapRegions, GetUca_IsNullWhenAbsent) {
  const TWorld world(make_Strip(2), {0});
  EXPECT_EQ(world.map.get_Uca(1), nullptr);
  EXPECT_EQ(world.map.get_Uca(-1), nullptr);
  EXPECT_NE(world.map.get_Uca(0), nullptr);
  EXPECT_EQ(world.map.cnt_Uca(), 1);  // region 0 counts
}

TEST(MapRegions, MaxId_IsMinusOneWithoutRegions_AndFallsWithTheLargest) {
  CMap map;
  EXPECT_EQ(map.max_Id(), -1);
  for (const int32_t id : {4, 0, 9, 2, 7}) ASSERT_TRUE(map.add_Uca(new CUcA(id)));
  EXPECT_EQ(map.max_Id(), 9);
  ASSERT_TRUE(map.kill_Uca(map.get_Uca(9)));
  EXPECT_EQ(map.max_Id(), 7);
}

TEST(MapRegions, GetUcs_OfAnEmptyMapIsTrueWithNothing) {
  const CMap map;
  std::vector<TUcRef> out(3);
  EXPECT_TRUE(map.get_Ucs(out, false));
  EXPECT_TRUE(out.empty());
}

TEST(MapRegions, GetUcs_RunsInPreOrderOfTheTree_NotByRisingId) {
  CMap map;
  for (int32_t id = 0; id < 7; ++id) ASSERT_TRUE(map.add_Uca(new CUcA(id)));
  EXPECT_EQ(list_Ids(map), (std::vector<int32_t>{3, 1, 0, 2, 5, 4, 6}));
  ASSERT_TRUE(map.kill_Uca(map.get_Uca(3)));  // its place goes to the largest on its left
  EXPECT_EQ(list_Ids(map), (std::vector<int32_t>{2, 1, 0, 5, 4, 6}));
  ASSERT_TRUE(map.add_Uca(new CUcA(3)));
  EXPECT_EQ(list_Ids(map), (std::vector<int32_t>{2, 1, 0, 5, 4, 3, 6}));
}

TEST(MapRegions, GetUcs_SortedByBand_KeepsTheOrderOfTheTreeAmongEqualBands) {
  CMap map;
  for (int32_t id = 0; id < 7; ++id) {
    auto* region = new CUcA(id);
    ASSERT_TRUE(map.add_Uca(region));
    if (id > 0) region->band = id % 2 == 0 ? 0 : 1;
  }
  // Region 0 has no band, which is the largest number.
  EXPECT_EQ(list_Ids(map, true), (std::vector<int32_t>{2, 4, 6, 3, 1, 5, 0}));
}

// ---- Lists -------------------------------------------------------------------------------------

TEST(MapLists, AreLastInFirstOut) {
  TWorld world(make_Strip(4), {});
  CUcA* region = world.map.get_Uca(0);
  for (const uint32_t t : {1u, 2u, 3u}) {
    ASSERT_TRUE(world.map.add_Tri(t, region));
    world.map.region_of[t] = 0;
  }
  EXPECT_EQ(list_Tri(world.map, *region), (std::vector<uint32_t>{3, 2, 1}));
}

TEST(MapLists, AddTri_LinksNothingWhereTheIdIsWrittenAlready) {
  TWorld world(make_Strip(4), {1});
  CUcA* region = world.map.get_Uca(0);
  world.map.region_of[2] = 0;
  EXPECT_TRUE(world.map.add_Tri(2, region));
  EXPECT_EQ(region->count, 1u);
  EXPECT_EQ(list_Tri(world.map, *region), std::vector<uint32_t>{1});
}

TEST(MapLists, AddTriAndDelTri_LeaveTheIdToTheCaller) {
  TWorld world(make_Strip(4), {1});
  CUcA* region = world.map.get_Uca(0);
  ASSERT_TRUE(world.map.add_Tri(2, region));
  EXPECT_EQ(world.map.region_of[2], -1);
  ASSERT_TRUE(world.map.del_Tri(1, region));
  EXPECT_EQ(world.map.region_of[1], 0);
  EXPECT_EQ(region->count, 1u);
}

TEST(MapLists, AddTriAndDelTri_FailForANullRegion) {
  TWorld world(make_Strip(4), {1});
  EXPECT_FALSE(world.map.add_Tri(2, nullptr));
  EXPECT_FALSE(world.map.del_Tri(1, nullptr));
}

TEST(MapLists, DelTri_OfAnotherRegionsTriangleIsTrueAndChangesNothing) {
  TWorld world(make_Strip(4), {0, 1, 2, 3});
  CUcA* other = world.settle(2, {1});
  EXPECT_TRUE(world.map.del_Tri(0, other));
  EXPECT_EQ(other->count, 1u);
  expect_Sound(world.map, {0, 1, 2, 3});
}

TEST(MapLists, DelTri_UnlinksHeadMiddleAndTail) {
  for (const uint32_t gone : {0u, 1u, 2u}) {
    TWorld world(make_Strip(3), {0, 1, 2});
    CUcA* region = world.map.get_Uca(0);
    ASSERT_TRUE(world.map.del_Tri(gone, region));
    world.map.region_of[gone] = -1;
    std::set<uint32_t> rest = {0, 1, 2};
    rest.erase(gone);
    expect_Sound(world.map, rest);
  }
}

TEST(MapLists, NextTri_OfMinusOneIsMinusOne) {
  const TWorld world(make_Strip(3), {0, 1});
  EXPECT_EQ(world.map.next_Tri(-1), -1);
  EXPECT_EQ(world.map.next_Tri(1), 0);
  EXPECT_EQ(world.map.next_Tri(0), -1);
}

TEST(MapLists, LstEdg_GivesTheEdgesOnTheRegion_AndSkipsTheBorderOfTheMesh) {
  TWorld world(make_Grid(2, 2));
  world.start();
  // Triangle 0 of a grid lies on the border with its edge 0.
  TUcEdge edges[3];
  ASSERT_EQ(world.map.lst_Edg(0, 0, edges), 2u);
  EXPECT_EQ(edges[0].a, 1u);
  EXPECT_EQ(edges[0].b, 2u);
  EXPECT_EQ(edges[1].a, 2u);
  EXPECT_EQ(edges[1].b, 0u);  // wrapping
  EXPECT_EQ(world.map.lst_Edg(0, 5, edges), 0u);
  EXPECT_EQ(world.map.lst_Edg(0, -1, edges), 0u);  // a border slot is no triangle outside
}

TEST(MapLists, IsBnd_HoldsOnBothSidesOfABorder) {
  TWorld world(make_Strip(6));
  world.start();
  world.settle(1, {2, 3});
  const CMap& map = world.map;
  const bool border[] = {false, true, true, true, true, false};
  for (uint32_t t = 0; t < 6; ++t) {
    EXPECT_EQ(map.is_Bnd(t, 1), border[t]) << t;
    EXPECT_EQ(map.is_In(t, 1), t == 2 || t == 3) << t;
    EXPECT_EQ(map.is_Out(t, 1), t == 1 || t == 4) << t;
  }
  EXPECT_FALSE(map.is_Bnd(2, 9));
}

TEST(MapLists, IsBnd_AsksAllNeighbours_NotSlotsAlone) {
  TWorld world(make_Book(4));
  world.start();
  world.settle(1, {1});
  // Page 1 is in no slot of page 0, which holds the last page.
  EXPECT_EQ(world.map.slots[0][0], 3);
  EXPECT_TRUE(world.map.is_Out(0, 1));
}

TEST(MapLists, LocksAreOneBitForEachTriangle) {
  TWorld world(make_Strip(3));
  EXPECT_FALSE(world.map.get_Lck(1));
  EXPECT_TRUE(world.map.set_Lck(1));
  EXPECT_TRUE(world.map.get_Lck(1));
  EXPECT_FALSE(world.map.get_Lck(0) || world.map.get_Lck(2));
  EXPECT_TRUE(world.map.clr_Lck(1));
  EXPECT_FALSE(world.map.get_Lck(1));
  EXPECT_FALSE(world.map.set_Lck(3));
}

// ---- Ranks -------------------------------------------------------------------------------------

TEST(MapRanks, TheQueueGivesTheLowestRankFirst_TiesToTheLowerIdAsASignedNumber) {
  CMap map;
  CUcA a(1), b(2);
  EXPECT_TRUE(map.add_Rnq(-0.5, 2, &b));
  EXPECT_TRUE(map.add_Rnq(-0.5, -3, &a));
  EXPECT_TRUE(map.add_Rnq(-0.5, 1, &a));
  EXPECT_TRUE(map.add_Rnq(-0.9, 8, &b));
  std::vector<int32_t> order;
  double rank;
  CUcA* region;
  int32_t id;
  while (map.pop_Rnq(rank, region, id)) order.push_back(id);
  EXPECT_EQ(order, (std::vector<int32_t>{8, -3, 1, 2}));
  EXPECT_EQ(region, &b);
  EXPECT_EQ(rank, -0.5);
}

TEST(MapRanks, ThePointerTakesNoPartInTheOrder) {
  CMap map;
  CUcA a(1), b(2);
  EXPECT_TRUE(map.add_Rnq(-0.5, 1, &a));
  EXPECT_FALSE(map.add_Rnq(-0.5, 1, &b));
  CUcA* region = nullptr;
  EXPECT_TRUE(map.del_Rnq(-0.5, 1, region));
  EXPECT_EQ(region, &a);
}

TEST(MapRanks, DelRnq_AsksForTheExactPair) {
  CMap map;
  CUcA a(1);
  CUcA* region = nullptr;
  map.add_Rnq(-0.5, 1, &a);
  EXPECT_FALSE(map.del_Rnq(-0.5, 2, region));
  EXPECT_FALSE(map.del_Rnq(std::nextafter(-0.5, 0.0), 1, region));
  EXPECT_EQ(region, nullptr);
  EXPECT_TRUE(map.del_Rnq(-0.5, 1, region));
  double rank;
  int32_t id;
  EXPECT_FALSE(map.pop_Rnq(rank, region, id));
}

TEST(MapRanks, TheMapHoldsOneRankForEachId) {
  CMap map;
  double rank = 0;
  EXPECT_FALSE(map.pop_Rnk(4, rank));
  EXPECT_TRUE(map.add_Rnk(4, -0.5));
  EXPECT_FALSE(map.add_Rnk(4, -0.7));
  EXPECT_TRUE(map.pop_Rnk(4, rank));
  EXPECT_EQ(rank, -0.5);
  EXPECT_FALSE(map.pop_Rnk(4, rank));
}

}  // namespace
}  // namespace undercut
