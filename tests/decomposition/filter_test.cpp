#include "decomposition/filter.h"

#include <gtest/gtest.h>

#include "decomposition/measures.h"
#include "tests/support/maps.h"
#include "tests/support/measures.h"

namespace undercut {
namespace {

using namespace tests;
using List = std::vector<uint32_t>;
using Held = std::set<uint32_t>;

struct TPatches : TWorld {
  explicit TPatches(TSoup mesh) : TWorld(std::move(mesh)) { start(); }
  TPatches(TSoup mesh, List roi) : TWorld(std::move(mesh), std::move(roi)) {}
  CUcA* get(int32_t id) { return map.get_Uca(id); }
  List list(int32_t id) { return list_Tri(map, *get(id)); }
  Held held(int32_t id) {
    const List all = list(id);
    return Held(all.begin(), all.end());
  }
  CUcA* open(int32_t id, const List& triangles) {
    CUcA* region = settle(id, triangles);
    region->measures.polar_low = 0;
    region->measures.polar_high = 180;
    region->measures.axis = {0, 0, 1};
    region->polar0 = region->azimuth0 = 0;
    rcalc_Uca(map, *region);
    return region;
  }
  std::vector<int32_t> ids() {
    std::vector<int32_t> all = list_Ids(map);
    std::sort(all.begin(), all.end());
    return all;
  }
  void expect_Whole() {
    const List all = list_All(soup);
    expect_Sound(map, Held(all.begin(), all.end()));
  }
};
using Ids = std::vector<int32_t>;

// ---- Pieces ------------------------------------------------------------------------------------

TEST(Pieces, AreBreadthFirst_TheLastFoundAtTheHead_InTheOrderOfTheList) {
  TPatches world(make_Strip(9));
  const CUcA* region = world.settle(4, {7, 3, 1, 2, 8});  // its list: 8, 2, 1, 3, 7
  std::vector<TUcComp> pieces;
  find_Pieces(world.map, *region, pieces);
  ASSERT_EQ(pieces.size(), 2u);
  EXPECT_EQ(pieces[0].chain, (List{7, 8}));
  EXPECT_EQ(pieces[1].index, 1u);
  // From 2 its neighbours in the order of its edges, then theirs.
  const uint32_t* nbr;
  ASSERT_EQ(world.map.nbr_Tri(2, nbr), 2u);
  EXPECT_EQ(pieces[1].chain, (List{nbr[1], nbr[0], 2}));
}

TEST(Pieces, HangTogetherByEdgesNotByCorners) {
  TPatches world(make_Wheel(6));
  std::vector<TUcComp> pieces;
  find_Pieces(world.map, *world.settle(1, {0, 2, 4}), pieces);
  EXPECT_EQ(pieces.size(), 3u);
}

// ---- com_Uca -----------------------------------------------------------------------------------

TEST(ComUca, AConnectedRegionKeepsItsIdAndEverything) {
  TPatches world(make_Strip(6));
  CUcA* region = world.open(4, {1, 2, 3});
  region->add_Wish(5, -1);
  const TUcMeasures before = region->measures;
  ASSERT_TRUE(com_Uca(world.map, region));
  EXPECT_EQ(world.get(4), region);
  EXPECT_EQ(world.list(4), (List{3, 2, 1}));
  EXPECT_EQ(region->candidates.size(), 1u);
  expect_Same(region->measures, before);
}

TEST(ComUca, ARegionInPiecesGoes_AndEveryPieceGetsANewId_TheBiggestToo) {
  TPatches world(make_Strip(9));
  CUcA* region = world.open(4, {1, 2, 3, 4, 7});
  world.open(6, {8});
  region->band = 2;
  region->fixed = true;
  region->polar0 = 31;
  region->azimuth0 = 77;
  region->rank = -3;
  region->boundary.insert(0);
  region->add_Wish(0, -1);
  region->measures.axis_ratio = 0.625;  // of the seed: nothing computes it anew
  ASSERT_TRUE(com_Uca(world.map, region));
  EXPECT_EQ(world.ids(), (Ids{0, 6, 7, 8}));
  EXPECT_EQ(world.held(7), Held{7}) << "first in the list, first in ids";
  EXPECT_EQ(world.held(8), (Held{1, 2, 3, 4}));
  for (const int32_t id : {7, 8}) {
    const CUcA* piece = world.get(id);
    EXPECT_EQ(piece->band, 2u);
    EXPECT_TRUE(piece->fixed);
    EXPECT_EQ(piece->polar0, 31);
    EXPECT_EQ(piece->azimuth0, 77);
    EXPECT_EQ(piece->rank, 0);
    EXPECT_EQ(piece->measures.axis_ratio, 0.625);
    EXPECT_TRUE(piece->boundary.empty() && piece->candidates.empty() && piece->queue.empty());
  }
  world.expect_Whole();
}

TEST(ComUca, GivesPiecesMeasuresOfTheirOwn_TheirFramesAtTheCentreOfTheWhole) {
  TPatches world(make_Strip(9));
  ASSERT_TRUE(com_Uca(world.map, world.open(1, {0, 1, 2, 5, 6})));
  double area = 0;
  for (const int32_t id : {2, 3}) {
    CUcA* piece = world.get(id);
    EXPECT_EQ(piece->measures.axis_frame.org, world.map.roi_centroid);
    EXPECT_EQ(piece->measures.normal_frame.org, piece->measures.centroid);
    const TUcMeasures before = piece->measures;
    rcalc_Uca(world.map, *piece);
    expect_Same(piece->measures, before);
    area += piece->measures.area;
  }
  EXPECT_EQ(area, 2.5);
}

TEST(ComUca, FailsWithoutRegionOrNeighbours) {
  TPatches world(make_Strip(3));
  EXPECT_FALSE(com_Uca(world.map, nullptr));
  CMap bare;
  CUcA region(1);
  EXPECT_FALSE(com_Uca(bare, &region));
}

// ---- lst_Com -----------------------------------------------------------------------------------

TEST(LstCom, GivesThePiecesInChainOrder_AndChangesNothing) {
  TPatches world(make_Strip(9));
  const CUcA* region = world.open(4, {1, 2, 3, 7, 8});
  const List before = world.list(4);
  TLst<TArr<uint32_t>> lists = {};
  ASSERT_TRUE(lst_Com(world.map, region, lists));
  std::vector<TUcComp> pieces;
  find_Pieces(world.map, *region, pieces);
  const auto copies = copy_Nested(lists);
  ASSERT_EQ(copies.size(), 2u);
  for (size_t i = 0; i < 2; ++i) EXPECT_EQ(copies[i], pieces[i].chain);
  EXPECT_EQ(world.list(4), before);
  release(lists);
}

TEST(LstCom, GivesNoListsForOnePieceOrNone) {
  TPatches world(make_Strip(5));
  TLst<TArr<uint32_t>> lists = {};
  ASSERT_TRUE(lst_Com(world.map, world.get(0), lists));
  EXPECT_EQ(lists.count, 0u);
  world.settle(1, {0, 1, 2, 3, 4});
  ASSERT_TRUE(lst_Com(world.map, world.get(0), lists));
  EXPECT_EQ(lists.count, 0u);
  EXPECT_FALSE(lst_Com(world.map, nullptr, lists));
}

// ---- clo_Uca -----------------------------------------------------------------------------------

TEST(CloUca, TakesAllFreeNeighbours_ThenGivesBackWhatTouchesTheFree) {
  TPatches world(make_Strip(9));
  CUcA* region = world.open(1, {2, 4, 5});
  const TUcMeasures before = region->measures;
  ASSERT_TRUE(clo_Uca(world.map, region));
  EXPECT_EQ(world.held(1), (Held{2, 3, 4, 5})) << "the gap at 3 is closed, 1 and 6 go again";
  expect_Same(region->measures, before);
  world.expect_Whole();
}

TEST(CloUca, TakesNothingFromOtherRegions_AndKeepsWhatTouchesThem) {
  TPatches world(make_Strip(9));
  world.open(2, {3, 6});
  CUcA* region = world.open(1, {4, 5});
  ASSERT_TRUE(clo_Uca(world.map, region));
  EXPECT_EQ(world.held(1), (Held{4, 5}));
}

TEST(CloUca, NeighbourNamedTwiceIsTakenOnce) {
  // Two triangles on the same three corners: each is the other's neighbour three times.
  TSoup soup = make_Strip(3);
  soup.tri[1] = soup.tri[0];
  TPatches world(soup);
  const uint32_t* nbr;
  ASSERT_GE(world.map.nbr_Tri(0, nbr), 3u);
  CUcA* region = world.settle(1, {0});
  ASSERT_TRUE(clo_Uca(world.map, region));
  world.expect_Whole();
  EXPECT_EQ(world.held(1).count(0), 1u);
}

TEST(CloUca, TwiceUsesFreshMarks) {
  TPatches world(make_Strip(9));
  CUcA* region = world.open(1, {2, 4, 5});
  ASSERT_TRUE(clo_Uca(world.map, region));
  EXPECT_TRUE(world.map.mark.test(1)) << "marks stay until the next use";
  ASSERT_TRUE(clo_Uca(world.map, region));
  EXPECT_EQ(world.held(1), (Held{2, 3, 4, 5}));
}

TEST(CloUca, FailsWithoutRegion0) {
  TPatches world(make_Strip(3));
  CUcA* region = world.settle(1, {0, 1, 2});
  ASSERT_TRUE(world.map.kill_Uca(world.get(0)));
  EXPECT_FALSE(clo_Uca(world.map, region));
}

// ---- fil_Uca -----------------------------------------------------------------------------------

TEST(FilUca, TakesFreePiecesThatTouchThisRegionOnly) {
  TPatches world(make_Strip(12));
  CUcA* one = world.open(1, {2, 3, 5});
  world.open(2, {8, 9});
  const TUcMeasures before = one->measures;
  // Free: 0 1 | 4 | 6 7 | 10 11.
  ASSERT_TRUE(fil_Uca(world.map, one));
  EXPECT_EQ(world.held(1), (Held{0, 1, 2, 3, 4, 5})) << "the end of the mesh touches nothing";
  EXPECT_EQ(world.held(0), (Held{6, 7, 10, 11}));
  expect_Same(one->measures, before);
  world.expect_Whole();
}

TEST(FilUca, WhatTouchesTheOutsideIsNotEnclosed) {
  TPatches world(make_Strip(6), {1, 2, 3, 4, 5});
  CUcA* one = world.open(1, {3});
  ASSERT_TRUE(fil_Uca(world.map, one));
  EXPECT_EQ(world.held(1), (Held{3, 4, 5}));
  EXPECT_EQ(world.held(0), (Held{1, 2}));
}

TEST(FilUca, IsTrueWithoutRegion0) {
  TPatches world(make_Strip(3));
  CUcA* region = world.settle(1, {0, 1, 2});
  ASSERT_TRUE(world.map.kill_Uca(world.get(0)));
  EXPECT_TRUE(fil_Uca(world.map, region));
}

// ---- smo_Uca -----------------------------------------------------------------------------------

TEST(SmoUca, GivesBackWhatHasTwoFreeNeighbours) {
  TPatches world(make_Strip(9));
  CUcA* region = world.open(1, {1, 4, 5, 6});
  const TUcMeasures before = region->measures;
  ASSERT_TRUE(smo_Uca(world.map, region));
  EXPECT_EQ(world.held(1), (Held{4, 5, 6}));
  expect_Same(region->measures, before);
  world.expect_Whole();
}

TEST(SmoUca, MayEmptyARegion_WhichStaysInTheTree) {
  TPatches world(make_Strip(3));
  CUcA* region = world.open(1, {1});
  ASSERT_TRUE(smo_Uca(world.map, region));
  EXPECT_EQ(region->count, 0u);
  EXPECT_EQ(world.get(1), region);
  EXPECT_EQ(world.held(0), (Held{0, 1, 2}));
}

TEST(SmoUca, FailsWithoutRegion0) {
  TPatches world(make_Strip(3));
  CUcA* region = world.settle(1, {0, 1, 2});
  ASSERT_TRUE(world.map.kill_Uca(world.get(0)));
  EXPECT_FALSE(smo_Uca(world.map, region));
}

// ---- fil_Lst -----------------------------------------------------------------------------------

TEST(FilLst, ARegionInsideAnotherIsAbsorbed_AndTheAreaOfTheOtherStays) {
  TPatches world(make_Grid(3, 3));
  CUcA* inner = world.open(1, {8});
  List rest;
  for (const uint32_t t : list_All(world.soup))
    if (t != 8) rest.push_back(t);
  CUcA* outer = world.open(2, rest);
  // It would be absorbed itself, for the border of the mesh touches nothing: a free corner.
  world.map.pass_Tri(0, outer, world.get(0));
  const TUcMeasures before = outer->measures;
  ASSERT_EQ(inner->count, 1u);
  ASSERT_TRUE(fil_Lst(world.map));
  EXPECT_EQ(world.ids(), (Ids{0, 2}));
  EXPECT_EQ(world.list(2).front(), 8u);
  expect_Same(outer->measures, before);
  world.expect_Whole();
}

TEST(FilLst, OnlyTheEnclosedPieceOfARegionMoves) {
  // 1 1 2 1 3 with a piece of 2 between two of 1.
  TPatches world(make_Strip(8), {0, 1, 2, 3, 4, 5, 6});
  world.open(1, {1, 2, 4});
  world.open(2, {3, 6});
  world.open(3, {5});
  ASSERT_TRUE(fil_Lst(world.map));
  EXPECT_EQ(world.held(1), (Held{1, 2, 3, 4}));
  EXPECT_EQ(world.held(2), Held{6}) << "beside the outside";
  EXPECT_EQ(world.held(3), Held{5}) << "beside two regions";
  EXPECT_EQ(world.held(0), Held{0});
}

TEST(FilLst, APieceBesideTwoRegionsAFreeTriangleOrTheOutsideStays) {
  TPatches world(make_Strip(8), {1, 2, 3, 4, 5, 6, 7});
  world.open(1, {1});     // outside and 2
  world.open(2, {2, 3});  // 1 and 3
  world.open(3, {4});     // 2 and free
  ASSERT_TRUE(fil_Lst(world.map));
  EXPECT_EQ(world.ids(), (Ids{0, 1, 2, 3}));
}

TEST(FilLst, ABorderOfTheMeshCountsAsNothing) {
  TPatches world(make_Strip(4), {0, 1, 2});
  world.open(1, {0});
  world.open(2, {1, 2});
  ASSERT_TRUE(fil_Lst(world.map));
  EXPECT_EQ(world.ids(), (Ids{0, 2}));
  EXPECT_EQ(world.held(2), (Held{0, 1, 2}));
}

TEST(FilLst, RegionsAreTakenInTreeOrder_WithWhatTheyHaveByThen) {
  // Two regions that enclose each other: the first of the tree goes.
  TPatches world(make_Strip(4));
  world.open(1, {0, 1});
  world.open(2, {2, 3});
  const Ids order = list_Ids(world.map);
  int32_t first = order[0] != 0 ? order[0] : order[1];
  ASSERT_TRUE(fil_Lst(world.map));
  EXPECT_EQ(world.get(first), nullptr);
  EXPECT_EQ(world.held(3 - first), (Held{0, 1, 2, 3}));
}

TEST(FilLst, ARegionAloneOnItsMeshStays) {
  TPatches world(make_Pyramid());
  world.open(1, {0, 1, 2, 3});
  ASSERT_TRUE(fil_Lst(world.map));
  EXPECT_EQ(world.ids(), (Ids{0, 1}));
}

TEST(FilLst, RemovesRegionsThatWereEmptyBefore_ButNeverRegion0) {
  TPatches world(make_Strip(4));
  CUcA* one = world.open(1, {1});
  ASSERT_TRUE(smo_Uca(world.map, one));
  ASSERT_TRUE(fil_Lst(world.map));
  EXPECT_EQ(world.ids(), Ids{0});
}

TEST(FilLst, MindsNoLocks) {
  TPatches world(make_Strip(4), {0, 1, 2});
  world.open(1, {0})->fixed = true;
  world.open(2, {1, 2})->fixed = true;
  for (const uint32_t t : {0u, 1u, 2u}) world.map.set_Lck(t);
  ASSERT_TRUE(fil_Lst(world.map));
  EXPECT_EQ(world.ids(), (Ids{0, 2}));
}

TEST(FilLst, FailsWithoutNeighbourTables) {
  CMap bare;
  EXPECT_FALSE(fil_Lst(bare));
}

}  // namespace
}  // namespace undercut
