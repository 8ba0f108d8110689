#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/regions.h"

namespace undercut {
namespace {

using namespace tests;
using List = std::vector<uint32_t>;

// Regions over a strip, where each has one candidate at each end.
struct TStrip : TRig {
  explicit TStrip(uint32_t length, List list = {})
      : TRig(make_Strip(length), open_Par(), std::move(list)) {
    // Only whether a triangle is free counts; of equal costs the lower triangle comes first.
    std::fill(cnd.weights, cnd.weights + 4, 0.0);
  }
  bool rank() { return rank_Regions(stage); }
  bool balance() { return balance_Regions(stage); }
  bool run() { return rank() && balance(); }
  CUcA* get(int32_t id) { return map().get_Uca(id); }
  std::set<uint32_t> held(int32_t id) {
    const List list = list_Tri(map(), *get(id));
    return std::set<uint32_t>(list.begin(), list.end());
  }
};
using Held = std::set<uint32_t>;

// ---- The end of a region -----------------------------------------------------------------------

TEST(Balancing, WithNobodyInTheQueue_EndsAtOnce) {
  TStrip rig(3);
  rig.stage.step = 9;
  EXPECT_TRUE(rig.balance());
  EXPECT_EQ(rig.stage.step, 0u);
}

TEST(Balancing, ARegionWithoutCandidatesIsLocked_AndNothingIsTakenFromIt) {
  TStrip rig(8);
  CUcA* one = settle_Open(rig, 1, {2});
  settle_Open(rig, 2, {3, 4});
  ASSERT_TRUE(rig.rank());
  one->clr_Sets();
  ASSERT_TRUE(rig.balance());
  EXPECT_EQ(rig.held(1), Held{2});
  EXPECT_EQ(rig.held(2), (Held{3, 4, 5, 6, 7}));
  EXPECT_EQ(rig.held(0), (Held{0, 1})) << "behind the wall";
  EXPECT_TRUE(rig.map().get_Lck(2));
}

TEST(Balancing, EndsWithAnEmptyQueue_EveryRegionLocked_AndFreeTrianglesUnlocked) {
  TStrip rig(9, {0, 1, 2, 3, 5, 6, 7, 8});
  settle_Open(rig, 1, {1});
  settle_Open(rig, 2, {2, 3});
  ASSERT_TRUE(rig.run());
  EXPECT_TRUE(rig.map().turns.empty());
  EXPECT_TRUE(rig.map().ranks.empty());
  for (const uint32_t t : {0u, 1u, 2u, 3u}) EXPECT_TRUE(rig.map().get_Lck(t)) << t;
  for (const uint32_t t : {5u, 6u, 7u, 8u}) EXPECT_FALSE(rig.map().get_Lck(t)) << t;
  EXPECT_EQ(rig.held(0), (Held{5, 6, 7, 8})) << "what nobody reaches stays free";
  for (const int32_t id : {1, 2}) {
    EXPECT_TRUE(rig.get(id)->candidates.empty());
    EXPECT_TRUE(rig.get(id)->queue.empty());
  }
}

// ---- Choice ------------------------------------------------------------------------------------

TEST(Balancing, AFreeCandidateMoves_AndOnlyTheGainerIsRankedAgain) {
  TStrip rig(6);
  CUcA* one = settle_Open(rig, 1, {0, 1});
  settle_Open(rig, 2, {5})->fixed = true;
  const double others = rig.get(2)->rank = 0.123;
  for (const uint32_t t : {5u}) rig.map().set_Lck(t);
  ASSERT_TRUE(rig.run());
  EXPECT_EQ(rig.held(1), (Held{0, 1, 2, 3, 4}));
  EXPECT_EQ(rig.stage.step, 3u);
  EXPECT_EQ(rig.get(2)->rank, others);
  EXPECT_EQ(rig.get(0)->rank, 0);
  EXPECT_EQ(one->rank, -(1 - 2.5 / 3.0)) << "of its five triangles";
}

TEST(Balancing, ATriangleTakenFromAnotherRanksBothAnew) {
  // Three against one, then two against two; what is wanted next is dropped by hand.
  TStrip rig(4);
  CUcA* one = settle_Open(rig, 1, {0});
  CUcA* two = settle_Open(rig, 2, {1, 2, 3});
  ASSERT_TRUE(rig.rank());
  ASSERT_TRUE(rig.balance());
  EXPECT_EQ(one->measures.area, one->count * 0.5);
  EXPECT_EQ(two->measures.area, two->count * 0.5);
  EXPECT_EQ(one->rank, -(1 - one->measures.area / 2));
  EXPECT_EQ(two->rank, -(1 - two->measures.area / 2));
  EXPECT_EQ(one->count, 2u);
}

TEST(Balancing, TheRegionOfLowestRankIsServedFirst_OfEqualOnesTheLowerId) {
  // One free triangle between the two.
  for (const bool second_smaller : {false, true}) {
    TStrip rig(6);
    settle_Open(rig, 4, second_smaller ? List{0, 1, 2} : List{1, 2});
    settle_Open(rig, 9, {4, 5});
    ASSERT_TRUE(rig.rank());
    if (!second_smaller) rig.map().set_Lck(0);
    for (const uint32_t t : {1u, 2u, 4u, 5u}) rig.map().set_Lck(t);
    ASSERT_TRUE(rig.balance());
    EXPECT_EQ(rig.map().region_of[3], second_smaller ? 9 : 4);
  }
}

TEST(Balancing, ALockedCandidateIsDroppedSilently) {
  TStrip rig(4);
  CUcA* one = settle_Open(rig, 1, {2});
  ASSERT_TRUE(rig.rank());
  rig.map().set_Lck(1);
  ASSERT_TRUE(rig.balance());
  EXPECT_EQ(rig.held(1), (Held{2, 3}));
  EXPECT_TRUE(one->candidates.empty());
}

TEST(Balancing, ACandidateThatIsNoLongerAcceptableIsDropped) {
  TStrip rig(4);
  settle_Open(rig, 1, {2});
  ASSERT_TRUE(rig.rank());
  rig.get(1)->measures.normal = {0, 0, -1};
  ASSERT_TRUE(rig.balance());
  EXPECT_EQ(rig.held(1), Held{2});
}

TEST(Balancing, ACandidateOutsideTheRegionOfInterestIsLost_TheTurnIsNot) {
  TStrip rig(4, {0, 1, 2});
  CUcA* one = settle_Open(rig, 1, {1, 2});
  ASSERT_TRUE(rig.rank());
  const double rank = one->rank;
  one->clr_Sets();
  ASSERT_TRUE(one->add_Wish(3, -2));
  TStrip same(4, {0, 1, 2});  // only the one outside
  CUcA* twin = settle_Open(same, 1, {1, 2});
  ASSERT_TRUE(same.rank());
  twin->clr_Sets();
  ASSERT_TRUE(twin->add_Wish(3, -2));
  ASSERT_TRUE(same.balance());
  EXPECT_EQ(twin->rank, rank) << "put back under the same rank";

  ASSERT_TRUE(one->add_Wish(0, -1));
  ASSERT_TRUE(rig.balance());
  EXPECT_EQ(rig.held(1), (Held{0, 1, 2})) << "the next candidate had its turn";
  EXPECT_EQ(rig.map().region_of[3], -1);
  EXPECT_EQ(rig.stage.step, 1u);
}

// ---- Guard -------------------------------------------------------------------------------------

TEST(Balancing, TwoRegionsThatTradeOneTriangleAreStopped) {
  // 1 takes triangle 2, 2 takes it back, 1 wants it again.
  TStrip rig(5);
  settle_Open(rig, 1, {0, 1});
  settle_Open(rig, 2, {2, 3, 4});
  ASSERT_TRUE(rig.run());
  EXPECT_EQ(rig.stage.step, 2u);
  EXPECT_EQ(rig.held(1), (Held{0, 1}));
  EXPECT_EQ(rig.held(2), (Held{2, 3, 4}));
}

TEST(Balancing, AfterTheCircleIsBrokenTheRegionKeepsItsTurnAndItsOtherCandidates) {
  // As before, with two free triangles beyond the first region, which are wanted less.
  TStrip rig(7);
  rig.cnd.weights[4] = -1;
  settle_Open(rig, 1, {2, 3});
  settle_Open(rig, 2, {4, 5, 6});
  ASSERT_TRUE(rig.run());
  EXPECT_EQ(rig.held(1), (Held{0, 1, 2, 3}));
  EXPECT_EQ(rig.held(2), (Held{4, 5, 6}));
  EXPECT_EQ(rig.stage.step, 4u);
}

TEST(Balancing, WhileTrianglesHaveNotComeBackANewRecordBegins) {
  // 1 takes 1, 2 and 3; 2 takes 3 back: two are still over. 1 takes 3: a new record, of 3 alone;
  // 2 takes it back, and only when 1 wants it once more is the circle seen.
  TStrip rig(6);
  settle_Open(rig, 1, {0});
  settle_Open(rig, 2, {1, 2, 3, 4, 5});
  ASSERT_TRUE(rig.run());
  EXPECT_EQ(rig.stage.step, 6u);
  EXPECT_EQ(rig.held(1), (Held{0, 1, 2}));
  EXPECT_EQ(rig.held(2), (Held{3, 4, 5}));
}

TEST(Balancing, ACircleThatTheGuardDoesNotSeeFailsAfterABoundedNumberOfTurns) {
  // Two regions chase each other round a wheel: what one takes is never what the other took.
  TRig rig(make_Wheel(6), open_Par());
  settle_Open(rig, 2, {0, 3, 4, 5});
  settle_Open(rig, 3, {1, 2});
  ASSERT_TRUE(rank_Regions(rig.stage));
  EXPECT_FALSE(balance_Regions(rig.stage));
  EXPECT_EQ(rig.stage.step, 1000000u + 200u * 6u);
  const List all = list_All(rig.world.soup);
  expect_Sound(rig.map(), Held(all.begin(), all.end()));
}

// ---- An emptied region -------------------------------------------------------------------------

TEST(Balancing, ARegionThatLosesItsLastTriangleIsWithdrawnAndGone) {
  // The great are served first.
  TStrip rig(6);
  rig.rnk.area_weight = -1;
  settle_Open(rig, 1, {0, 1});
  settle_Open(rig, 2, {2});
  settle_Open(rig, 3, {3});
  ASSERT_TRUE(rig.run());
  EXPECT_EQ(rig.get(2), nullptr);
  EXPECT_EQ(rig.get(3), nullptr);
  EXPECT_EQ(rig.held(1), (Held{0, 1, 2, 3, 4, 5}));
  EXPECT_TRUE(rig.map().ranks.empty() && rig.map().turns.empty());
}

TEST(Balancing, Region0SurvivesItsLastTriangle) {
  TStrip rig(3);
  settle_Open(rig, 1, {0, 1});
  ASSERT_TRUE(rig.run());
  ASSERT_NE(rig.get(0), nullptr);
  EXPECT_EQ(rig.get(0)->count, 0u);
}

// ---- Failures ----------------------------------------------------------------------------------

// A region in the queue; each test spoils one thing.
struct TSpoiled : TStrip {
  CUcA* region;
  TSpoiled() : TStrip(4) {
    region = settle_Open(*this, 1, {1, 2});
    EXPECT_TRUE(rank());
  }
  void queue(double rank_mapped, double rank_queued, int32_t id, CUcA* who) {
    map().ranks.clear();
    map().turns.clear();
    map().add_Rnk(id, rank_mapped);
    map().add_Rnq(rank_queued, id, who);
  }
};

TEST(Balancing, FailsWhereRankMapQueueAndRegionDisagree) {
  for (int part = 0; part < 6; ++part) {
    TSpoiled rig;
    const double rank = rig.region->rank;
    if (part == 0) rig.queue(rank, rank, 1, nullptr);
    if (part == 1) rig.map().ranks.clear();
    if (part == 2) rig.queue(rank - 1, rank, 1, rig.region);
    if (part == 3) rig.region->rank = rank + 1;
    if (part == 4) rig.queue(rank, rank, 2, rig.region);
    EXPECT_EQ(rig.balance(), part == 5) << part;
  }
}

TEST(Balancing, PassesOverAnEntryOfRegion0) {
  TStrip rig(4);
  rig.map().add_Rnk(0, 0.5);
  rig.map().add_Rnq(0.5, 0, rig.get(0));
  EXPECT_TRUE(rig.balance());
  EXPECT_TRUE(rig.map().ranks.empty());
}

TEST(Balancing, FailsWhereCandidateMapAndQueueDisagree) {
  TSpoiled other;
  other.region->clr_Sets();
  other.region->add_Cnd(0, -1);
  other.region->add_Que(-2, 0);
  EXPECT_FALSE(other.balance());
  TSpoiled absent;
  absent.region->clr_Sets();
  absent.region->add_Que(-2, 0);
  EXPECT_FALSE(absent.balance());
}

TEST(Balancing, FailsWhereARegionWantsWhatItHolds) {
  TSpoiled rig;
  rig.region->add_Wish(2, -100);
  EXPECT_FALSE(rig.balance());
}

TEST(Balancing, FailsWhereALoserHasNoRank) {
  TStrip rig(4);
  settle_Open(rig, 1, {0});
  settle_Open(rig, 2, {1, 2, 3})->fixed = true;
  EXPECT_FALSE(rig.run()) << "fixed, and not locked";
  TStrip single(2);
  settle_Open(single, 1, {0});
  settle_Open(single, 2, {1})->fixed = true;
  EXPECT_FALSE(single.run());
}

TEST(Balancing, ACostOutOfRangeFailsTheStage) {
  TStrip rig(5);
  settle_Open(rig, 1, {2});
  ASSERT_TRUE(rig.rank());
  rig.cnd.aperture = 180;
  EXPECT_FALSE(rig.balance()) << "the next neighbour costs something that is none";
}

TEST(Balancing, ATriangleThatCanNotJoinTheMeasuresFailsTheStage) {
  TSpoiled rig;
  rig.region->clr_Sets();
  ASSERT_TRUE(rig.region->add_Wish(0, -1));
  rig.rnk.map = nullptr;
  EXPECT_FALSE(rig.balance());
}

// ---- drop_Cnd ----------------------------------------------------------------------------------

TEST(DropCnd, WithdrawsWhatOneRegionHolds) {
  TStrip rig(8);
  CUcA* one = settle_Open(rig, 1, {0});
  settle_Open(rig, 2, {3, 4, 5});
  for (const uint32_t t : {3u, 7u, 5u, 1u}) one->add_Wish(t, -double(t));
  drop_Cnd(rig.map(), 2, one);
  EXPECT_EQ(list_Cnd(*one), (List{1, 7}));
  EXPECT_EQ(one->queue.size(), 2u);
  EXPECT_EQ(copy_Of(rig.map().scratch_b), (List{5, 3})) << "cheapest first";
}

TEST(DropCnd, DoesNothingForNoRegionOrNoCandidates) {
  TStrip rig(4);
  CUcA* one = settle_Open(rig, 1, {0});
  rig.map().scratch_b.count = 3;
  drop_Cnd(rig.map(), 0, nullptr);
  drop_Cnd(rig.map(), 0, one);
  EXPECT_EQ(rig.map().scratch_b.count, 3u);
}

TEST(DropCnd, StopsAtTheFirstThatIsNoCandidate) {
  TStrip rig(6);
  CUcA* one = settle_Open(rig, 1, {0});
  one->add_Wish(2, -3);
  one->add_Que(-2, 3);
  one->add_Wish(4, -1);
  drop_Cnd(rig.map(), 0, one);
  EXPECT_EQ(list_Cnd(*one), List{4});
}

}  // namespace
}  // namespace undercut
