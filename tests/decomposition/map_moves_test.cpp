#include <gtest/gtest.h>

#include <string>

#include "decomposition/map.h"
#include "tests/reference/plain_moves.h"
#include "tests/support/intensity.h"
#include "tests/support/maps.h"

namespace undercut {
namespace {

using namespace tests;

std::string to_Text(const std::array<char, 4>& flags) { return {flags.begin(), flags.end()}; }
std::string to_Text(const TUcMoved& moved) { return {moved.target, moved.source}; }

// "ab": the status letters, or "" where the move fails.
std::string apply(CMap& map, uint32_t triangle, int32_t to) {
  TUcMoved moved;
  return map.apply_Move(triangle, to, moved) ? to_Text(moved) : "";
}

// ---- classify_Move -----------------------------------------------------------------------------

TEST(ClassifyMove, ToTheSameRegion_IsTrueWithABlankRecord) {
  TWorld world(make_Strip(4), {0, 1, 2});
  TUcMove move;
  for (const uint32_t t : {1u, 3u}) {  // the second is outside, as the target is
    move.from = 77;
    ASSERT_TRUE(world.map.classify_Move(t, world.map.region_of[t], move));
    EXPECT_EQ(move.from, -1);
    EXPECT_EQ(move.to, -1);
    EXPECT_EQ(move.triangles, (std::array<int32_t, 4>{-1, -1, -1, -1}));
    EXPECT_EQ(to_Text(move.from_flags) + to_Text(move.to_flags), "????????");
  }
}

TEST(ClassifyMove, FailsForATriangleOrATargetOutside) {
  TWorld world(make_Strip(4), {0, 1, 2});
  TUcMove move;
  EXPECT_FALSE(world.map.classify_Move(3, 0, move));
  EXPECT_FALSE(world.map.classify_Move(1, -1, move));
  EXPECT_FALSE(world.map.classify_Move(1, -5, move));
}

TEST(ClassifyMove, OfASeed_MakesItsNeighboursCandidates_AndSaysNothingOfTheSeed) {
  TWorld world(make_Strip(4));
  world.start();
  TUcMove move;
  ASSERT_TRUE(world.map.classify_Move(1, 6, move));
  EXPECT_EQ(move.from, 0);
  EXPECT_EQ(move.to, 6);
  // Triangle 1 has the corners 1, 2, 3: triangle 0 lies across edge 0, triangle 2 across edge 1.
  EXPECT_EQ(move.triangles, (std::array<int32_t, 4>{1, 0, 2, -1}));
  EXPECT_EQ(to_Text(move.from_flags), "+???");
  EXPECT_EQ(to_Text(move.to_flags), "?++?");
}

TEST(ClassifyMove, OfTheLastTriangleThatTouchesAnOuterOne_TakesThatFromTheSource) {
  TWorld world(make_Strip(5));
  world.start();
  world.settle(1, {0, 1});
  TUcMove move;
  ASSERT_TRUE(world.map.classify_Move(2, 1, move));
  EXPECT_EQ(move.triangles, (std::array<int32_t, 4>{2, -1, 3, 1}));
  EXPECT_EQ(to_Text(move.from_flags),
            "+?"
            "?-");
  EXPECT_EQ(to_Text(move.to_flags), "-?+?");
}

TEST(ClassifyMove, RenewsAnOuterTriangleThatTouchesASideByAnotherEdge) {
  TWorld world(make_Wheel(4));
  world.start();
  world.settle(1, {0});
  TUcMove move;
  // Triangle 2 lies across the hub from 0: both its neighbours touch region 1 by their other edge.
  ASSERT_TRUE(world.map.classify_Move(2, 1, move));
  EXPECT_EQ(to_Text(move.to_flags), "?u?u");
  EXPECT_EQ(to_Text(move.from_flags), "+???");
  // Seen from region 1, triangle 0 leaves alone; its neighbours are not held by anyone else there.
  ASSERT_TRUE(world.map.classify_Move(0, 0, move));
  EXPECT_EQ(to_Text(move.from_flags), "?-?-");
  EXPECT_EQ(to_Text(move.to_flags), "-???");
}

TEST(ClassifyMove, OfATriangleWithoutSlots_MakesItACandidateOfItsSource) {
  TWorld world(make_Strip(1));
  world.start();
  TUcMove move;
  ASSERT_TRUE(world.map.classify_Move(0, 1, move));
  EXPECT_EQ(to_Text(move.from_flags), "+???");
  EXPECT_EQ(to_Text(move.to_flags), "????");
}

TEST(ClassifyMove, CountsTheOutsideOfTheRegionOfInterestAsAnotherRegion) {
  TWorld world(make_Strip(3), {1});
  TUcMove move;
  ASSERT_TRUE(world.map.classify_Move(1, 2, move));
  EXPECT_EQ(to_Text(move.from_flags), "?--?");
  EXPECT_EQ(to_Text(move.to_flags), "?++?");
}

// A page touches the target through its neighbour list, though its slot holds another page: it is
// then outside the target like any other, and its flag says so.
TEST(ClassifyMove, OnAnEdgeOfManyTriangles_AsksTheListForTheTouch_AndTheSlotForTheFlags) {
  TWorld world(make_Book(4));
  world.start();
  world.settle(1, {1});
  TUcMove move;
  ASSERT_TRUE(world.map.classify_Move(0, 1, move));
  EXPECT_EQ(move.triangles[1], 3);
  EXPECT_EQ(to_Text(move.to_flags), "-+??");
}

// ---- apply_Move --------------------------------------------------------------------------------

TEST(ApplyMove, ToTheSameRegion_ChangesNothing) {
  TWorld world(make_Strip(4), {0, 1, 2});
  const std::set<uint32_t> boundary = world.map.get_Uca(0)->boundary;
  EXPECT_EQ(apply(world.map, 1, 0), "--");
  EXPECT_EQ(apply(world.map, 3, -1), "--");
  EXPECT_EQ(world.map.get_Uca(0)->boundary, boundary);
  expect_Sound(world.map, {0, 1, 2});
}

TEST(ApplyMove, OfATriangleOutsideTheRegionOfInterestFails) {
  TWorld world(make_Strip(4), {0, 1, 2});
  EXPECT_EQ(apply(world.map, 3, 0), "");
  EXPECT_EQ(apply(world.map, 1, -1), "");
  EXPECT_EQ(apply(world.map, 1, -7), "");
  EXPECT_EQ(world.map.cnt_Uca(), 1);
  expect_Sound(world.map, {0, 1, 2});
}

TEST(ApplyMove, OutOfARegionThatIsNotThereFails_BeforeTheTargetIsMade) {
  TWorld world(make_Strip(4), {0, 1, 2});
  world.map.region_of[1] = 5;
  EXPECT_EQ(apply(world.map, 1, 6), "");
  EXPECT_EQ(world.map.get_Uca(6), nullptr);
}

TEST(ApplyMove, ToAnUnknownRegionMakesItAndReportsSo) {
  TWorld world(make_Strip(4));
  world.start();
  EXPECT_EQ(apply(world.map, 1, 5), "a-");
  ASSERT_NE(world.map.get_Uca(5), nullptr);
  EXPECT_EQ(list_Tri(world.map, *world.map.get_Uca(5)), std::vector<uint32_t>{1});
  EXPECT_EQ(apply(world.map, 2, 5), "--");
  EXPECT_EQ(list_Tri(world.map, *world.map.get_Uca(5)), (std::vector<uint32_t>{2, 1}));
}

TEST(ApplyMove, OfTheLastFreeTriangleReportsIt_AndRegionZeroStays) {
  TWorld world(make_Strip(4), {1});
  EXPECT_EQ(apply(world.map, 1, 5), "ar");
  ASSERT_NE(world.map.get_Uca(0), nullptr);
  EXPECT_EQ(world.map.get_Uca(0)->count, 0u);
  EXPECT_EQ(world.map.get_Uca(0)->head, -1);
}

TEST(ApplyMove, OfTheLastTriangleOfAnotherRegionDestroysIt) {
  TWorld world(make_Strip(4));
  world.start();
  ASSERT_EQ(apply(world.map, 1, 5), "a-");
  EXPECT_EQ(apply(world.map, 1, 0), "-r");
  EXPECT_EQ(world.map.get_Uca(5), nullptr);
  EXPECT_EQ(world.map.cnt_Uca(), 1);
}

TEST(ApplyMove, LeavesBoundariesAsTheyAre_ForRankingFillsThemAnew) {
  TWorld world(make_Strip(5), {2, 3});
  const std::set<uint32_t> frontier = {1, 4};
  ASSERT_EQ(world.map.get_Uca(0)->boundary, frontier);
  ASSERT_EQ(apply(world.map, 2, 1), "a-");
  EXPECT_EQ(world.map.get_Uca(0)->boundary, frontier);
  EXPECT_TRUE(world.map.get_Uca(1)->boundary.empty());
}

// ---- Random moves ------------------------------------------------------------------------------

// Both forms of the map, told the same moves.
struct TPair {
  TWorld world;
  reference::CPlainMap plain;
  std::set<uint32_t> roi;

  TPair(const TSoup& soup, const std::vector<uint32_t>& list)
      : world(soup, list), plain(world.soup.msh()), roi(list.begin(), list.end()) {
    plain.lists[0];
    for (const uint32_t t : list) {
      if (plain.region_of[t] == 0) continue;
      plain.region_of[t] = 0;
      plain.lists[0].insert(plain.lists[0].begin(), t);
    }
  }

  void move(uint32_t t, int32_t to) {
    TUcMove move;
    const reference::TPlainMove expected = plain.classify(t, to);
    const bool classified = world.map.classify_Move(t, to, move);
    ASSERT_EQ(classified, expected.ok);
    if (classified) {
      ASSERT_EQ(to_Text(move.from_flags), expected.from);
      ASSERT_EQ(to_Text(move.to_flags), expected.to);
    }
    ASSERT_EQ(apply(world.map, t, to), plain.apply(t, to));
  }

  void expect_Same() const {
    expect_Sound(world.map, roi);
    ASSERT_EQ(size_t(world.map.cnt_Uca()), plain.lists.size());
    for (const auto& [id, list] : plain.lists) {
      const CUcA* region = world.map.get_Uca(id);
      ASSERT_NE(region, nullptr);
      ASSERT_EQ(list_Tri(world.map, *region), list);
    }
  }
};

std::vector<uint32_t> pick_Roi(reference::Random& random, const TSoup& soup) {
  std::vector<uint32_t> roi;
  for (uint32_t t = 0; t < soup.tri.size(); ++t)
    if (random.chance(0.8)) roi.push_back(t);
  if (!roi.empty() && random.chance(0.5)) roi.push_back(roi[random.below(roi.size())]);
  return roi;
}

TEST(RandomMoves, OnTangledMeshes_EqualThePlainForm_AndKeepTheMapSound) {
  reference::Random random(620);
  for (uint32_t round = 0; round < scale_Cases(120); ++round) {
    const TSoup soup = make_Tangle(random, 4 + random.below(10), 4 + random.below(30));
    TPair pair(soup, pick_Roi(random, soup));
    for (uint32_t step = 0; step < 120; ++step) {
      const auto t = static_cast<uint32_t>(random.below(soup.tri.size()));
      pair.move(t, static_cast<int32_t>(random.integer(-1, 5)));
      if (!HasFatalFailure()) pair.expect_Same();
      ASSERT_FALSE(HasFatalFailure()) << "round " << round << ", step " << step;
    }
  }
}

}  // namespace
}  // namespace undercut
