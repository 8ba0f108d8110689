#include <gtest/gtest.h>

#include "tests/support/measures.h"
#include "tests/support/regions.h"

namespace undercut {
namespace {

using namespace tests;
using List = std::vector<uint32_t>;

// ---- fix_Regions -------------------------------------------------------------------------------

TEST(FixRegions, LocksAndFixesAllButRegion0_WhichItFrees) {
  TRig rig(make_Strip(6), CDcmPar(), {0, 1, 2, 3, 4});
  settle_Open(rig, 1, {0, 1});
  settle_Open(rig, 2, {3});
  for (const uint32_t t : {1u, 2u, 4u, 5u}) rig.map().set_Lck(t);
  rig.map().get_Uca(0)->fixed = true;
  ASSERT_TRUE(fix_Regions(rig.map()));
  for (const uint32_t t : {0u, 1u, 3u}) EXPECT_TRUE(rig.map().get_Lck(t)) << t;
  for (const uint32_t t : {2u, 4u}) EXPECT_FALSE(rig.map().get_Lck(t)) << t;
  EXPECT_TRUE(rig.map().get_Lck(5)) << "outside: nobody minds";
  EXPECT_FALSE(rig.map().get_Uca(0)->fixed);
  EXPECT_TRUE(rig.map().get_Uca(1)->fixed);
  EXPECT_TRUE(rig.map().get_Uca(2)->fixed);
}

// ---- keep_Seeds --------------------------------------------------------------------------------

struct TKept : TRig {
  TKept(List list, std::vector<TUcSeed> scored) : TRig(make_Strip(8), CDcmPar(), std::move(list)) {
    seeds = std::move(scored);
  }
  List listed() const { return List(roi.data, roi.data + roi.count); }
};

TEST(KeepSeeds, DropsWhatIsTakenLockedOrWithoutScore_AndMakesTheListThatOfTheSeeds) {
  TKept rig({7, 6, 5, 4, 3, 2, 1}, {{-0.9, 3, 0},
                                    {-0.8, 0, 1},
                                    {-0.7, 6, 2},
                                    {-0.6, 5, 0},
                                    {-0.5, 2, 1},
                                    {-0.0, 1, -1},
                                    {0.0, 4, -1}});
  settle_Open(rig, 1, {7});
  rig.map().set_Lck(2);
  keep_Seeds(rig.map(), rig.roi, rig.seeds);
  EXPECT_EQ(rig.listed(), (List{4, 1, 5}));
  ASSERT_EQ(rig.seeds.size(), 3u);
  const TUcSeed expected[] = {{-0.9, 0, 0}, {-0.7, 1, 2}, {-0.5, 2, 1}};
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_EQ(rig.seeds[i].key, expected[i].key);
    EXPECT_EQ(rig.seeds[i].index, expected[i].index);
    EXPECT_EQ(rig.seeds[i].band, expected[i].band);
  }
}

TEST(KeepSeeds, AgainChangesNothing) {
  TKept rig({3, 1, 2}, {{-0.9, 2, 0}, {-0.8, 0, 0}, {-0.7, 1, 0}});
  keep_Seeds(rig.map(), rig.roi, rig.seeds);
  EXPECT_EQ(rig.listed(), (List{2, 3, 1}));
  keep_Seeds(rig.map(), rig.roi, rig.seeds);
  EXPECT_EQ(rig.listed(), (List{2, 3, 1}));
  EXPECT_EQ(rig.seeds.size(), 3u);
}

TEST(KeepSeeds, KeepsBothOfATriangleThatIsListedTwice) {
  TKept rig({3, 3}, {{-0.9, 0, 0}, {-0.9, 1, 0}});
  keep_Seeds(rig.map(), rig.roi, rig.seeds);
  EXPECT_EQ(rig.listed(), (List{3, 3}));
}

TEST(KeepSeeds, MayLeaveNone) {
  TKept rig({3, 4}, {{-0.9, 0, 0}, {-0.0, 1, -1}});
  settle_Open(rig, 1, {3});
  keep_Seeds(rig.map(), rig.roi, rig.seeds);
  EXPECT_EQ(rig.roi.count, 0u);
  EXPECT_TRUE(rig.seeds.empty());
}

// ---- renew_Free --------------------------------------------------------------------------------

TEST(RenewFree, GivesRegion0ItsFrontierAndAreaAnew_AndNothingElse) {
  TRig rig(make_Strip(7), CDcmPar(), {0, 1, 2, 3, 4, 5});
  settle_Open(rig, 1, {2});
  CUcA* free_region = rig.map().get_Uca(0);
  free_region->boundary = {0, 5};
  free_region->add_Wish(4, -1);
  free_region->measures.area = -5;
  free_region->measures.perimeter = 77;
  ASSERT_TRUE(renew_Free(rig.map()));
  EXPECT_EQ(free_region->boundary, (std::set<uint32_t>{2, 6}));
  EXPECT_TRUE(free_region->candidates.empty() && free_region->queue.empty());
  EXPECT_EQ(free_region->measures.area, 2.5);
  EXPECT_EQ(free_region->measures.perimeter, 77);
}

TEST(RenewFree, OfNothingIsNothing) {
  TRig rig(make_Strip(2), CDcmPar());
  settle_Open(rig, 1, {0, 1});
  ASSERT_TRUE(renew_Free(rig.map()));
  EXPECT_EQ(rig.map().get_Uca(0)->measures.area, 0);
  EXPECT_TRUE(rig.map().get_Uca(0)->boundary.empty());
}

TEST(RenewFree, FailsWithoutRegion0) {
  CMap bare;
  EXPECT_FALSE(renew_Free(bare));
}

// ---- A pass after another ----------------------------------------------------------------------

TEST(NextPass, FixedRegionsStandAsWalls) {
  CDcmPar par = open_Par();
  par.F_quo = 0;
  par.F_cnt = 0;
  TRig rig(make_Strip(9), par);
  rig.seeds = {{-0.9, 0, 0}, {-0.8, 8, 0}};
  settle_Open(rig, 1, {4});
  ASSERT_TRUE(fix_Regions(rig.map()));
  keep_Seeds(rig.map(), rig.roi, rig.seeds);
  ASSERT_TRUE(grow_Regions(rig.stage) && rank_Regions(rig.stage) && balance_Regions(rig.stage));
  EXPECT_EQ(rig.map().get_Uca(1)->count, 1u);
  EXPECT_EQ(list_Tri(rig.map(), *rig.map().get_Uca(2)).size(), 4u);
  EXPECT_EQ(list_Tri(rig.map(), *rig.map().get_Uca(3)).size(), 4u);
}

}  // namespace
}  // namespace undercut
