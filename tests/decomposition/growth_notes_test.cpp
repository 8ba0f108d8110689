#include "decomposition/growth_notes.h"

#include <gtest/gtest.h>

#include <limits>

#include "bench/bodies.h"
#include "tests/support/intensity.h"
#include "tests/support/measures.h"
#include "tests/support/regions.h"

namespace undercut {
namespace {

using namespace tests;
using List = std::vector<uint32_t>;

// A strip of 60 triangles, of which 20 to 39 have grown from triangle 30 while 40 and on were held.
struct TNoted {
  TRig rig;
  CGrowthNotes notes;
  List grown;

  TNoted() : rig(make_Strip(60), open_Par()) {
    List others;
    for (uint32_t t = 40; t < 60; ++t) others.push_back(t);
    settle_Open(rig, 7, others);
    for (uint32_t t = 20; t < 40; ++t) grown.push_back(t);
    CUcA* region = settle_Open(rig, 3, grown);
    region->measures.area = 123;
    region->azimuth0 = 45;
    notes.begin();
    notes.note(map(), *region, 30);
    free_Again(3);
    notes.begin();
  }
  CMap& map() { return rig.map(); }
  void free_Again(int32_t id) {
    CUcA* region = map().get_Uca(id);
    while (region->head != -1)
      map().pass_Tri(static_cast<uint32_t>(region->head), region, map().get_Uca(0));
    map().kill_Uca(region);
  }
  // The region that comes of the seed; null if there is no note that holds.
  CUcA* replay(uint32_t seed) {
    CUcA* region = rig.world.settle(9, {});
    return notes.replay(map(), *map().get_Uca(0), *region, seed) ? region : nullptr;
  }
};

TEST(GrowthNotes, MakeTheRegionAgain_TrianglesInTheirOrder_AndAllMeasures) {
  TNoted noted;
  const CUcA* region = noted.replay(30);
  ASSERT_NE(region, nullptr);
  EXPECT_EQ(region->id, 9);
  EXPECT_EQ(list_Tri(noted.map(), *region), List(noted.grown.rbegin(), noted.grown.rend()));
  EXPECT_EQ(region->count, 20u);
  EXPECT_EQ(region->measures.area, 123);
  EXPECT_EQ(region->azimuth0, 45);
  EXPECT_EQ(region->band, 0u);
  for (const uint32_t t : noted.grown) EXPECT_EQ(noted.map().region_of[t], 9);
}

TEST(GrowthNotes, OfAnotherSeedAreNone) {
  TNoted noted;
  EXPECT_EQ(noted.replay(31), nullptr);
}

TEST(GrowthNotes, DoNotHold_WhereATriangleOfTheRegionIsHeldByNow) {
  TNoted noted;
  settle_Open(noted.rig, 4, {25});
  EXPECT_EQ(noted.replay(30), nullptr);
  EXPECT_EQ(noted.map().region_of[26], 0) << "nothing is changed";
}

TEST(GrowthNotes, DoNotHold_WhereATriangleBesideTheRegionIsFreeByNow) {
  TNoted noted;
  noted.map().pass_Tri(40, noted.map().get_Uca(7), noted.map().get_Uca(0));
  EXPECT_EQ(noted.replay(30), nullptr);
}

TEST(GrowthNotes, Hold_WhereTheTrianglesBesideTheRegionAreHeldByWhomever) {
  TNoted noted;
  settle_Open(noted.rig, 4, {40});  // another region than then
  settle_Open(noted.rig, 5, {19});  // free then, and refused
  EXPECT_NE(noted.replay(30), nullptr);
}

TEST(GrowthNotes, ServeTheNextGrowthOnly_UnlessTheyAreUsed) {
  TNoted noted;
  noted.notes.begin();
  EXPECT_EQ(noted.replay(30), nullptr);
  TNoted used;
  ASSERT_NE(used.replay(30), nullptr);
  used.free_Again(9);
  used.notes.begin();
  EXPECT_NE(used.replay(30), nullptr);
}

TEST(GrowthNotes, AreForgottenForAnotherRegionOfInterest) {
  TNoted noted;
  noted.notes.forget();
  EXPECT_EQ(noted.replay(30), nullptr);
  TNoted used;
  ASSERT_NE(used.replay(30), nullptr);
  used.free_Again(9);
  used.notes.forget();  // what this growth noted, too
  used.notes.begin();
  EXPECT_EQ(used.replay(30), nullptr);
}

// ---- Whole passes ------------------------------------------------------------------------------

struct TBodyCase {
  TSoup soup;
  CDcmPar par;
  List roi;
};

TBodyCase any_Case(reference::Random& random, uint32_t round) {
  const auto count = 400 + static_cast<uint32_t>(random.below(2500));
  bodies::TBody body = round % 2 ? bodies::make_Ball(count) : bodies::make_Ring(count);
  TBodyCase made;
  made.soup = {std::move(body.points), std::move(body.triangles)};
  made.par.n_con = static_cast<uint32_t>(random.below(4));
  made.par.b_ini = random.chance(0.6);
  made.par.b_5ax = random.chance(0.6);
  made.par.T_win = random.real(10, 70);
  made.par.F_cnt = 1 + static_cast<int32_t>(random.below(3));
  made.par.F_quo = random.chance(0.7) ? 0 : random.real(0, 3);
  for (const uint32_t t : list_All(made.soup))
    if (random.chance(round % 3 ? 1 : 0.95)) made.roi.push_back(t);
  return made;
}

void expect_SameRegions(TRig& a, TRig& b) {
  ASSERT_EQ(a.map().region_of, b.map().region_of);
  ASSERT_EQ(a.map().next, b.map().next);
  ASSERT_EQ(a.map().prev, b.map().prev);
  ASSERT_EQ(list_Ids(a.map()), list_Ids(b.map()));
  ASSERT_EQ(a.stage.step, b.stage.step);
  for (const int32_t id : list_Ids(a.map())) {
    const CUcA &x = *a.map().get_Uca(id), &y = *b.map().get_Uca(id);
    ASSERT_EQ(x.band, y.band);
    ASSERT_TRUE(is_Same(x.polar0, y.polar0) && is_Same(x.azimuth0, y.azimuth0));
    ASSERT_NO_FATAL_FAILURE(expect_Same(x.measures, y.measures)) << "region " << id;
  }
}

// False if the growth failed, as it may, in both.
bool run_Pass(TRig& noted, TRig& plain) {
  const bool grown = grow_Regions(plain.stage);
  EXPECT_EQ(grow_Regions(noted.stage), grown);
  expect_SameRegions(noted, plain);
  for (TRig* rig : {&noted, &plain}) {
    if (!grown) break;
    const bool balanced =
        del_Small(rig->map(), rig->par) && rank_Regions(rig->stage) && balance_Regions(rig->stage);
    if (!balanced || !rig->split() || !rig->end_Pass()) return false;
  }
  return grown && !testing::Test::HasFailure();
}

// As where a region of interest failed and is tried once more.
TEST(GrowthNotes, OfAGrowthThatWasGivenUp_GiveTheSameRegionsAgain) {
  bodies::TBody body = bodies::make_Ball(2000);
  TRig rig({body.points, body.triangles}, CDcmPar());
  CGrowthNotes notes;
  rig.stage.notes = &notes;
  ASSERT_TRUE(grow_Regions(rig.stage));
  const std::vector<int32_t> first = rig.map().region_of;
  const uint32_t noted = notes.grown();
  ASSERT_GT(noted, 3u);
  ASSERT_TRUE(rig.map().ini_Roi({rig.roi.data, rig.roi.count}));
  ASSERT_TRUE(grow_Regions(rig.stage));
  EXPECT_EQ(rig.map().region_of, first);
  EXPECT_EQ(notes.replayed(), noted);
}

// A held neighbour of a seed costs no number then, and a free one does.
TEST(GrowthNotes, AreNotUsed_WhereAWeightIsNoFiniteNumber) {
  TRig rig(make_Bumpy(9, 9), open_Par());
  CGrowthNotes notes;
  rig.stage.notes = &notes;
  rig.seeds.assign(1, {-1.0, 0, 0});
  rig.cnd.weights[4] = std::numeric_limits<double>::infinity();
  grow_Regions(rig.stage);
  EXPECT_EQ(notes.grown(), 0u);
  rig.cnd.weights[4] = 0.2;
  ASSERT_TRUE(rig.map().ini_Roi({rig.roi.data, rig.roi.count}));
  ASSERT_TRUE(grow_Regions(rig.stage));
  EXPECT_GT(notes.grown(), 0u);
}

TEST(GrowthNotes, ChangeNothingInWhatPassesGrow) {
  const uint32_t seed = 7411;
  std::printf("seed %u\n", seed);
  reference::Random random(seed);
  uint32_t passes = 0, replayed = 0, grown = 0;
  for (uint32_t round = 0; round < scale_Cases(40); ++round) {
    SCOPED_TRACE(round);
    const TBodyCase body = any_Case(random, round);
    TRig noted(body.soup, body.par, body.roi), plain(body.soup, body.par, body.roi);
    CGrowthNotes notes;
    noted.stage.notes = &notes;
    for (int pass = 0; pass < 5 && run_Pass(noted, plain); ++pass) ++passes;
    ASSERT_FALSE(HasFailure());
    replayed += notes.replayed();
    grown += notes.grown();
  }
  std::printf("%u passes, %u regions noted, %u replayed\n", passes, grown, replayed);
  EXPECT_GT(passes, 80u);
  EXPECT_GT(replayed, 500u);
  EXPECT_GT(grown, 500u);
}

}  // namespace
}  // namespace undercut
