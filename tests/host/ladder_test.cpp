#include "host/ladder.h"

#include <algorithm>
#include <random>

#include "support.h"

namespace undercut::host {
namespace {

std::vector<T3DVEC> make_Centres(uint32_t n) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> pick(0.0, 1.0);
  std::vector<T3DVEC> centres;
  for (uint32_t i = 0; i < n; ++i)
    centres.push_back({10 * pick(random), pick(random), pick(random)});
  return centres;
}

Patch make_Patch(uint32_t roi, uint32_t from, uint32_t to) {
  Patch patch{roi, 0, {}};
  for (uint32_t i = from; i < to; ++i) patch.triangles.push_back(i);
  return patch;
}

// The rungs that take patches to pieces, without those for whole ones.
LadderRules make_Rungs(double aperture) {
  LadderRules rules = make_Ladder(aperture, 1);
  rules.whole.clear();
  rules.rest.clear();
  return rules;
}

// A library that fails where `bad` says so, and else makes one region of the whole patch.
template <typename Bad>
Attempt make_Library(const Bad& bad) {
  return [bad](const std::vector<Patch>& patches, const Rung& rung) {
    std::vector<Outcome> outcomes;
    for (const Patch& patch : patches) {
      Outcome outcome;
      if (bad(patch, rung)) {
        outcome.first = outcome.second = 11;
        outcome.rest = patch.triangles;
      } else {
        outcome.regions.push_back({patch.triangles, {}, {}});
      }
      outcomes.push_back(outcome);
    }
    return outcomes;
  };
}

std::vector<uint32_t> all_Triangles(const Climb& climb) {
  std::vector<uint32_t> all;
  for (const Settled& s : climb.settled) {
    all.insert(all.end(), s.patch.triangles.begin(), s.patch.triangles.end());
  }
  for (const Patch& p : climb.given_up)
    all.insert(all.end(), p.triangles.begin(), p.triangles.end());
  std::sort(all.begin(), all.end());
  return all;
}

using Apertures = std::vector<double>;

Apertures list_Apertures(const std::vector<Rung>& rungs) {
  Apertures apertures;
  for (const Rung& rung : rungs) apertures.push_back(rung.aperture);
  return apertures;
}

TEST(Ladder, RungsAreTheUsersApertureAndTheNarrowerOnes) {
  EXPECT_EQ(list_Apertures(make_Ladder(55, 1).rungs), Apertures({55, 40, 30, 25, 20, 15, 10}));
  EXPECT_EQ(list_Apertures(make_Ladder(25, 1).rungs), Apertures({25, 20, 15, 10}));
  EXPECT_EQ(list_Apertures(make_Ladder(5, 1).rungs), Apertures({5}));
  for (const Rung& rung : make_Ladder(55, 1).rungs) {
    EXPECT_TRUE(rung.again);
    EXPECT_EQ(rung.position, 0u);
  }
}

TEST(Ladder, WholePatchesGetTenPositionsAndThenFourAtEachOfThreeNarrowerApertures) {
  const std::vector<Rung> whole = make_Ladder(55, 199999).whole;
  Apertures expected(10, 55.0);
  for (const double narrower : {45.0, 40.0, 30.0}) expected.insert(expected.end(), 4, narrower);
  EXPECT_EQ(list_Apertures(whole), expected);
  for (uint32_t i = 0; i < whole.size(); ++i) {
    EXPECT_FALSE(whole[i].again);
    EXPECT_EQ(whole[i].position, i < 10 ? i : (i - 10) % 4) << i;
  }
  EXPECT_EQ(make_Ladder(40, 1).whole.size(), 14u);
  EXPECT_EQ(make_Ladder(30, 1).whole.size(), 10u);
}

TEST(Ladder, WholePatchesOfLargerMeshes_GetFewerPositionsButOneAtLeast) {
  EXPECT_EQ(make_Ladder(55, 200000).whole.size(), 5u + 3 * 2);
  EXPECT_EQ(make_Ladder(55, 400000).whole.size(), 4u + 3 * 2);
  EXPECT_EQ(make_Ladder(55, 100000000).whole.size(), 1u + 3 * 1);
}

TEST(Ladder, SuccessAtOnce_NeedsOneCall) {
  const Climb climb = climb_Ladder({make_Patch(0, 0, 9)}, make_Rungs(55), make_Centres(9),
                                   make_Library([](const Patch&, const Rung&) { return false; }));
  ASSERT_EQ(climb.settled.size(), 1u);
  EXPECT_EQ(climb.settled[0].aperture, 55.0);
  EXPECT_EQ(climb.calls, 1u);
  ASSERT_EQ(climb.notes.size(), 1u);
  EXPECT_EQ(climb.notes[0].failed, 0u);
}

// A library whose first call deals with triangles 0 to 5 and fails on the others; what the second
// attempt makes of those is told by its code. Later calls succeed.
Attempt make_HalfFailing(int32_t second, std::vector<std::vector<uint32_t>>& offered) {
  return [second, &offered](const std::vector<Patch>& patches, const Rung&) {
    std::vector<Outcome> outcomes(patches.size());
    for (size_t i = 0; i < patches.size(); ++i) {
      offered.push_back(patches[i].triangles);
      if (offered.size() > 1) {
        outcomes[i].regions.push_back({patches[i].triangles, {}, {}});
        continue;
      }
      outcomes[i].first = 11;
      outcomes[i].second = second;
      outcomes[i].rest = {8, 7};
      if (second != 0) outcomes[i].rest.push_back(6);
      if (second == 0) outcomes[i].regions.push_back({{6}, {}, {}});
    }
    return outcomes;
  };
}

using Lists = std::vector<std::vector<uint32_t>>;

TEST(Ladder, WhatASecondAttemptLetGoOf_IsOfferedAgainAtTheSameAperture) {
  Lists offered;
  const Climb climb = climb_Ladder({make_Patch(0, 0, 9)}, make_Rungs(55), make_Centres(9),
                                   make_HalfFailing(0, offered));
  EXPECT_EQ(offered[1], std::vector<uint32_t>({0, 1, 2, 3, 4, 5}));
  ASSERT_EQ(climb.settled.size(), 2u);
  EXPECT_EQ(climb.settled[0].patch.triangles, std::vector<uint32_t>({6, 7, 8}));
  EXPECT_EQ(climb.settled[0].regions[0].triangles, std::vector<uint32_t>({6}));
  EXPECT_EQ(climb.settled[1].aperture, 55.0);
  EXPECT_EQ(climb.notes[0].first, 11);
  EXPECT_TRUE(climb.given_up.empty());
}

TEST(Ladder, OfATwofoldFailure_OnlyTheRestGoesDown) {
  Lists offered;
  const Climb climb = climb_Ladder({make_Patch(0, 0, 9)}, make_Rungs(55), make_Centres(9),
                                   make_HalfFailing(11, offered));
  EXPECT_EQ(offered, Lists({{0, 1, 2, 3, 4, 5, 6, 7, 8}, {0, 1, 2, 3, 4, 5}, {6, 7, 8}}));
  ASSERT_EQ(climb.settled.size(), 2u);
  EXPECT_EQ(climb.settled[0].aperture, 55.0);
  EXPECT_EQ(climb.settled[1].aperture, 40.0);
}

TEST(Ladder, PlainlyCalled_IsOneRungInPositionZero) {
  const LadderRules plain = make_Plain(25);
  EXPECT_TRUE(plain.whole.empty());
  EXPECT_EQ(list_Apertures(plain.rungs), Apertures({25}));
  EXPECT_EQ(plain.rungs[0].position, 0u);
  EXPECT_FALSE(plain.rungs[0].again);
  EXPECT_EQ(plain.most_halvings, 0u);
}

TEST(Ladder, PlainlyCalled_WhatTheSecondAttemptFoundIsKeptAndWhatItLetGoOfGivenUp) {
  Lists offered;
  const Climb climb = climb_Ladder({make_Patch(0, 0, 9)}, make_Plain(55), make_Centres(9),
                                   make_HalfFailing(0, offered));
  EXPECT_EQ(offered.size(), 1u);
  ASSERT_EQ(climb.given_up.size(), 1u);
  EXPECT_EQ(climb.given_up[0].triangles, std::vector<uint32_t>({0, 1, 2, 3, 4, 5}));
  ASSERT_EQ(climb.settled.size(), 1u);
  EXPECT_EQ(climb.settled[0].regions.size(), 1u);
}

TEST(Ladder, ASecondAttemptThatWasSkipped_IsAFailureOfTheWholePatch) {
  uint32_t calls = 0;
  const Attempt library = [&](const std::vector<Patch>& patches, const Rung&) {
    std::vector<Outcome> outcomes(patches.size());
    if (++calls == 1) outcomes[0].first = 11;
    return outcomes;
  };
  const Climb climb = climb_Ladder({make_Patch(0, 0, 9)}, make_Rungs(55), make_Centres(9), library);
  EXPECT_EQ(calls, 2u);
  ASSERT_EQ(climb.settled.size(), 1u);
  EXPECT_EQ(climb.settled[0].aperture, 40.0);
  EXPECT_EQ(climb.settled[0].patch.triangles.size(), 9u);
}

TEST(Ladder, GoesDownToTheFirstApertureThatSucceeds) {
  const Climb climb =
      climb_Ladder({make_Patch(0, 0, 9)}, make_Rungs(55), make_Centres(9),
                   make_Library([](const Patch&, const Rung& r) { return r.aperture > 25; }));
  ASSERT_EQ(climb.settled.size(), 1u);
  EXPECT_EQ(climb.settled[0].aperture, 25.0);
  EXPECT_EQ(climb.settled[0].patch.halvings, 0u);
  EXPECT_EQ(climb.calls, 4u);
  EXPECT_EQ(climb.notes[2].first, 11);
  EXPECT_EQ(climb.notes[2].second, 11);
}

TEST(Ladder, HalvesWhatFailsOnEveryRungUntilItSucceeds) {
  const Climb climb = climb_Ladder(
      {make_Patch(0, 0, 100)}, make_Rungs(12), make_Centres(100),
      make_Library([](const Patch& p, const Rung&) { return p.triangles.size() > 30; }));
  EXPECT_EQ(climb.settled.size(), 4u);
  for (const Settled& s : climb.settled) EXPECT_EQ(s.patch.halvings, 2u);
  EXPECT_TRUE(climb.given_up.empty());
  EXPECT_EQ(all_Triangles(climb), make_Patch(0, 0, 100).triangles);
}

TEST(Ladder, OneBadTriangle_IsGivenUpAlone) {
  const Climb climb = climb_Ladder({make_Patch(0, 0, 100)}, make_Rungs(55), make_Centres(100),
                                   make_Library([](const Patch& p, const Rung&) {
                                     return std::find(p.triangles.begin(), p.triangles.end(),
                                                      42u) != p.triangles.end();
                                   }));
  ASSERT_EQ(climb.given_up.size(), 1u);
  EXPECT_EQ(climb.given_up[0].triangles, std::vector<uint32_t>({42}));
  EXPECT_EQ(all_Triangles(climb), make_Patch(0, 0, 100).triangles);
}

TEST(Ladder, EndsWhereEverythingFails) {
  const Climb climb = climb_Ladder({make_Patch(0, 0, 5000)}, make_Rungs(55), make_Centres(5000),
                                   make_Library([](const Patch&, const Rung&) { return true; }));
  EXPECT_TRUE(climb.settled.empty());
  EXPECT_EQ(climb.given_up.size(), 5000u);
  // Thirteen halvings come down to single triangles, with seven rungs at each size.
  EXPECT_EQ(climb.calls, 7u * 14u);
  EXPECT_EQ(all_Triangles(climb).size(), 5000u);
}

TEST(Ladder, GivesUpPiecesAtTheLimitOfHalvings) {
  const Climb climb =
      climb_Ladder({make_Patch(0, 0, 64)}, LadderRules{{}, {{55.0, 0, true}}, {}, {}, 2},
                   make_Centres(64), make_Library([](const Patch&, const Rung&) { return true; }));
  EXPECT_EQ(climb.given_up.size(), 4u);
  EXPECT_EQ(climb.calls, 3u);
}

TEST(Ladder, PlainlyCalled_AFailureIsGivenUpAfterOneCall) {
  const Climb climb = climb_Ladder({make_Patch(0, 0, 9)}, make_Plain(55), make_Centres(9),
                                   make_Library([](const Patch&, const Rung&) { return true; }));
  EXPECT_EQ(climb.calls, 1u);
  EXPECT_EQ(climb.given_up.size(), 1u);
}

TEST(Ladder, RegionsOfInterestGoTogetherAndOnlyThoseThatFailGoOn) {
  std::vector<size_t> offered;
  const Attempt inner =
      make_Library([](const Patch& p, const Rung& r) { return p.roi == 1 && r.aperture > 30; });
  const Attempt library = [&](const std::vector<Patch>& patches, const Rung& rung) {
    offered.push_back(patches.size());
    return inner(patches, rung);
  };
  const Climb climb = climb_Ladder({make_Patch(0, 0, 5), make_Patch(1, 5, 9), make_Patch(2, 9, 9)},
                                   make_Rungs(55), make_Centres(9), library);
  // The empty patch is never offered.
  EXPECT_EQ(offered, std::vector<size_t>({2, 1, 1}));
  EXPECT_EQ(climb.notes.size(), 4u);
  EXPECT_EQ(climb.settled.back().patch.roi, 1u);
  EXPECT_EQ(climb.settled.back().aperture, 30.0);
}

TEST(Ladder, APatchThatGoesThroughWholeInAnotherPosition_IsNotSplit) {
  std::vector<Rung> rungs;
  const Attempt inner = make_Library([](const Patch&, const Rung& r) { return r.position < 3; });
  const Attempt library = [&](const std::vector<Patch>& patches, const Rung& rung) {
    rungs.push_back(rung);
    return inner(patches, rung);
  };
  const Climb climb =
      climb_Ladder({make_Patch(0, 0, 9)}, make_Ladder(55, 9), make_Centres(9), library);
  ASSERT_EQ(climb.settled.size(), 1u);
  EXPECT_EQ(climb.settled[0].patch.triangles, make_Patch(0, 0, 9).triangles);
  EXPECT_EQ(climb.settled[0].patch.halvings, 0u);
  EXPECT_EQ(climb.settled[0].aperture, 55.0);
  EXPECT_EQ(list_Apertures(rungs), Apertures(4, 55.0));
  ASSERT_EQ(climb.notes.size(), 4u);
  for (uint32_t i = 0; i < 4; ++i) EXPECT_EQ(climb.notes[i].position, i);
}

TEST(Ladder, WholePatches_AreOfferedWholeWhateverAFailedAttemptLetGoOf) {
  Lists offered;
  const LadderRules rules{{{55.0, 0, false}, {55.0, 1, false}}, {{55.0, 0, true}}, {}, {}, 0};
  const Climb climb =
      climb_Ladder({make_Patch(0, 0, 9)}, rules, make_Centres(9), make_HalfFailing(0, offered));
  const std::vector<uint32_t> whole = make_Patch(0, 0, 9).triangles;
  EXPECT_EQ(offered, Lists({whole, whole}));
  ASSERT_EQ(climb.settled.size(), 1u);
  EXPECT_EQ(climb.settled[0].patch.triangles, whole);
}

TEST(Ladder, ComesToPiecesBehindAllRungsForWholePatchesAndNeverGoesBackToThem) {
  std::vector<Rung> rungs;
  std::vector<size_t> sizes;
  const Attempt inner =
      make_Library([](const Patch& p, const Rung&) { return p.triangles.size() > 5; });
  const Attempt library = [&](const std::vector<Patch>& patches, const Rung& rung) {
    rungs.push_back(rung);
    sizes.push_back(patches[0].triangles.size());
    return inner(patches, rung);
  };
  const LadderRules rules = make_Ladder(30, 10);
  const Climb climb = climb_Ladder({make_Patch(0, 0, 10)}, rules, make_Centres(10), library);
  ASSERT_EQ(rungs.size(), rules.whole.size() + rules.rungs.size() + 1);
  for (size_t i = 0; i + 1 < rungs.size(); ++i) {
    EXPECT_EQ(rungs[i].again, i >= rules.whole.size()) << i;
    EXPECT_EQ(sizes[i], 10u) << i;
  }
  EXPECT_TRUE(rungs.back().again);
  EXPECT_EQ(rungs.back().aperture, 30.0);
  EXPECT_EQ(climb.settled.size(), 2u);
  for (const Settled& s : climb.settled) EXPECT_EQ(s.patch.halvings, 1u);
}

TEST(Ladder, OfSeveralPatches_OnlyThoseThatFailedGetAnotherPosition) {
  const Attempt library =
      make_Library([](const Patch& p, const Rung& r) { return p.roi == 1 && r.position == 0; });
  const Climb climb = climb_Ladder({make_Patch(0, 0, 5), make_Patch(1, 5, 9)}, make_Ladder(55, 9),
                                   make_Centres(9), library);
  EXPECT_EQ(climb.calls, 2u);
  ASSERT_EQ(climb.notes.size(), 3u);
  EXPECT_EQ(climb.notes[2].roi, 1u);
  EXPECT_EQ(climb.notes[2].position, 1u);
  EXPECT_EQ(climb.settled.size(), 2u);
}

TEST(Halve, CutsAlongTheLongestExtentIntoEqualHalvesInFileOrder) {
  const std::vector<T3DVEC> centres = make_Centres(101);
  const std::vector<Patch> halves = halve_Patch(make_Patch(3, 0, 101), centres);
  ASSERT_EQ(halves.size(), 2u);
  EXPECT_EQ(halves[0].triangles.size(), 50u);
  EXPECT_EQ(halves[1].triangles.size(), 51u);
  EXPECT_EQ(halves[0].roi, 3u);
  EXPECT_EQ(halves[1].halvings, 1u);
  double low = 0.0, high = 10.0;
  for (const uint32_t t : halves[0].triangles) low = std::max(low, centres[t].x);
  for (const uint32_t t : halves[1].triangles) high = std::min(high, centres[t].x);
  EXPECT_LE(low, high);
  EXPECT_TRUE(std::is_sorted(halves[0].triangles.begin(), halves[0].triangles.end()));
}

TEST(Halve, TrianglesAtOnePlaceAreCutByNumber) {
  const std::vector<Patch> halves = halve_Patch(make_Patch(0, 0, 4), std::vector<T3DVEC>(4));
  EXPECT_EQ(halves[0].triangles, std::vector<uint32_t>({0, 1}));
  EXPECT_EQ(halves[1].triangles, std::vector<uint32_t>({2, 3}));
}

TEST(Ladder, OffersWhatStayedFree_OnceMoreAtEachTiltOfTheBands) {
  std::vector<std::vector<uint32_t>> offered;
  std::vector<Tilt> tilts;
  // The first call takes triangle 0; each later one takes the lowest that it is offered.
  const Attempt library = [&](const std::vector<Patch>& patches, const Rung& rung) {
    offered.push_back(patches[0].triangles);
    tilts.push_back(rung.tilt);
    Outcome outcome;
    outcome.regions.push_back({{patches[0].triangles[0]}, {}, {}});
    return std::vector<Outcome>{outcome};
  };
  const Climb climb =
      climb_Ladder({make_Patch(0, 0, 9)}, make_Ladder(55, 9), make_Centres(9), library);
  ASSERT_EQ(offered.size(), 4u);
  EXPECT_EQ(tilts, std::vector<Tilt>({Tilt::kBand, Tilt::kLow, Tilt::kHigh, Tilt::kMiddle}));
  EXPECT_EQ(offered[1], std::vector<uint32_t>({1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(offered[3], std::vector<uint32_t>({3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(climb.notes.back().tilt, Tilt::kMiddle);
  EXPECT_TRUE(climb.given_up.empty());
}

TEST(Ladder, WhatFailsOfTheRest_StaysFreeAndIsNoFailure) {
  const Attempt library = [](const std::vector<Patch>& patches, const Rung& rung) {
    Outcome outcome;
    if (rung.tilt == Tilt::kBand) {
      outcome.regions.push_back({{patches[0].triangles[0]}, {}, {}});
    } else {
      outcome.first = outcome.second = 11;
      outcome.rest = patches[0].triangles;
    }
    return std::vector<Outcome>{outcome};
  };
  const Climb climb =
      climb_Ladder({make_Patch(0, 0, 9)}, make_Ladder(55, 9), make_Centres(9), library);
  EXPECT_TRUE(climb.given_up.empty());
  EXPECT_EQ(climb.calls, 4u);
  ASSERT_EQ(climb.settled.size(), 1u);
}

TEST(Ladder, APatchWithoutARegion_IsOfferedOnceMoreWithSmallRegionsKept) {
  std::vector<std::vector<uint32_t>> kept;
  const Attempt library = [&](const std::vector<Patch>& patches, const Rung& rung) {
    std::vector<Outcome> outcomes;
    for (const Patch& patch : patches) {
      Outcome outcome;
      if (rung.keep_small) kept.push_back(patch.triangles);
      const bool found = patch.roi == 0 || rung.keep_small;
      if (found) outcome.regions.push_back({{patch.triangles[0]}, {}, {}});
      outcomes.push_back(outcome);
    }
    return outcomes;
  };
  const std::vector<Patch> patches = {make_Patch(0, 0, 5), make_Patch(1, 5, 9)};
  const Climb climb = climb_Ladder(patches, make_Ladder(55, 9, true), make_Centres(9), library);
  EXPECT_EQ(kept, std::vector<std::vector<uint32_t>>({{5, 6, 7, 8}}));
  EXPECT_TRUE(climb.notes.back().keep_small);
  EXPECT_EQ(climb.notes.back().tilt, Tilt::kBand);
  kept.clear();
  climb_Ladder(patches, make_Ladder(55, 9), make_Centres(9), library);
  EXPECT_TRUE(kept.empty());
}

}  // namespace
}  // namespace undercut::host
