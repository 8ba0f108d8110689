// The stages of a pass against their plain forms: the same maps to the last bit, and the same
// failures, on small bodies with random parameters.
#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "bench/bodies.h"
#include "decomposition/growth_notes.h"
#include "tests/reference/plain_stages.h"
#include "tests/support/intensity.h"
#include "tests/support/measures.h"
#include "tests/support/stages.h"

namespace undercut::tests {
namespace {

using reference::CPlainStages;

CDcmPar any_Par(reference::Random& random) {
  CDcmPar par;
  par.n_con = static_cast<uint32_t>(random.below(4));
  par.b_ini = random.chance(0.6);
  par.b_5ax = random.chance(0.6);
  par.w_4ax = random.real(0, 360);
  par.w_nul = random.chance(0.5) ? 0.5 : random.real(0, 60);
  par.f_fuz = random.chance(0.3) ? 0.0 : random.real(0, 0.4);
  par.T_win = random.real(15, 80);
  par.F_cnt = static_cast<int32_t>(random.below(9)) - 1;
  par.F_quo = random.chance(0.5) ? 0.0 : random.real(0, 4);
  par.F_srf = random.real(0, 2);
  if (random.chance(0.4)) std::strcpy(par.F_srt, "srf");
  par.L_gw0 = random.chance(0.6) ? 1 : random.real(-1, 1);
  par.L_gw1 = random.chance(0.6) ? 0 : random.real(-1, 1);
  if (random.chance(0.4)) {
    par.T_gw0 = random.real(0, 1);
    par.T_gw2 = random.real(-0.5, 1);
    par.T_gw3 = random.real(0, 1);
    par.T_gw4 = random.chance(0.5) ? 0 : random.real(0, 1);
  }
  return par;
}

TSoup any_Body(reference::Random& random) {
  const auto some = [&](uint32_t low, uint32_t high) {
    return low + static_cast<uint32_t>(random.below(high - low));
  };
  switch (random.below(7)) {
    case 0: {
      bodies::TBody ball = bodies::make_Ball(some(100, 300));
      return {std::move(ball.points), std::move(ball.triangles)};
    }
    case 1:
      return tilt(make_Bumpy(some(3, 9), some(3, 9)));
    case 2:
      return make_Sphere(some(4, 9), some(5, 12), 3);
    case 3:
      return tilt(make_Strip(some(4, 40)));
    case 4:
      return make_Wheel(some(4, 12));
    case 5:
      return make_Tangle(random, 25, some(20, 80));
    default: {
      TSoup rough = make_Bumpy(some(3, 9), some(3, 9));
      for (T3DVEC& v : rough.vtx) v += 0.1 * random.triple(-1, 1);
      return rough;
    }
  }
}

std::vector<uint32_t> any_Roi(reference::Random& random, const TSoup& soup) {
  const double share = random.chance(0.5) ? 1.0 : 0.8;
  std::vector<uint32_t> roi;
  for (const uint32_t t : list_All(soup))
    if (random.chance(share)) roi.push_back(t);
  return roi;
}

void expect_SameMaps(const CMap& a, const CMap& b) {
  ASSERT_EQ(a.region_of, b.region_of);
  ASSERT_EQ(a.next, b.next);
  ASSERT_EQ(a.prev, b.prev);
  ASSERT_EQ(list_Ids(a), list_Ids(b));
  for (uint32_t t = 0; t < a.msh.n_tri; ++t) ASSERT_EQ(a.get_Lck(t), b.get_Lck(t)) << t;
  for (const int32_t id : list_Ids(a)) {
    const CUcA &x = *a.get_Uca(id), &y = *b.get_Uca(id);
    ASSERT_EQ(x.head, y.head);
    ASSERT_EQ(x.count, y.count);
    ASSERT_EQ(x.band, y.band);
    ASSERT_EQ(x.fixed, y.fixed);
    ASSERT_EQ(x.boundary, y.boundary);
    ASSERT_EQ(x.rank, y.rank);
    ASSERT_TRUE(is_Same(x.polar0, y.polar0) && is_Same(x.azimuth0, y.azimuth0));
    ASSERT_NO_FATAL_FAILURE(expect_Same(x.measures, y.measures)) << "region " << id;
  }
}

// One mesh twice: stages of the library over one, plain ones over the other.
struct TTwins {
  TRig own, other;
  CPlainStages plain;
  CGrowthNotes notes;  // the plain form grows every region anew
  // What happened over all: that the comparison has shown something.
  uint64_t grown = 0, deleted = 0, moved = 0, guarded = 0, failed = 0;

  TTwins(const TSoup& soup, const CDcmPar& par, const std::vector<uint32_t>& roi)
      : own(soup, par, roi), other(soup, par, roi), plain(other.map(), other.tree, other.par) {
    own.stage.notes = &notes;
  }

  std::vector<uint32_t> list() const {
    return std::vector<uint32_t>(other.roi.data, other.roi.data + other.roi.count);
  }

  // False if the stage failed, as it may, in both; a difference fails the test.
  template <typename Library, typename Plain>
  bool agree(const char* stage, Library library, Plain reference) {
    SCOPED_TRACE(stage);
    bool told = true;
    try {
      reference();
    } catch (const reference::TPlainFailure&) {
      told = false;
    }
    EXPECT_EQ(library(), told);
    if (!told) ++failed;
    if (told) expect_SameMaps(own.map(), other.map());
    return told && !testing::Test::HasFailure();
  }

  void expect_SameWishes() {
    for (const TUcRef& ref : own.regions()) {
      std::map<uint32_t, double> wishes;
      for (const auto& [triangle, cost] : ref.region->candidates) wishes[triangle] = cost;
      ASSERT_EQ(wishes, plain.wishes[ref.id]);
    }
    ASSERT_EQ(own.map().ranks, plain.ranks);
  }

  bool run_Pass() {
    const bool grow = agree(
        "growth", [&] { return grow_Regions(own.stage); },
        [&] { plain.grow(list(), other.seeds); });
    if (!grow) return false;
    const auto before = own.regions().size();
    grown += before;
    const bool small = agree(
        "deletion", [&] { return del_Small(own.map(), own.par); }, [&] { plain.remove_Small(); });
    if (!small) return false;
    deleted += before - own.regions().size();
    const bool rank = agree(
        "ranking", [&] { return rank_Regions(own.stage); }, [&] { plain.rank_All(); });
    if (!rank) return false;
    expect_SameWishes();
    const bool balance = agree(
        "balancing", [&] { return balance_Regions(own.stage); }, [&] { plain.balance(); });
    EXPECT_EQ(own.stage.step, plain.steps);
    moved += plain.steps;
    guarded += plain.guarded;
    return balance && own.split() && other.split() && own.end_Pass() && other.end_Pass();
  }
};

TEST(PlainStages, EndInTheSameMapsToTheLastBit) {
  const uint32_t seed = 5150;
  std::printf("seed %u\n", seed);
  reference::Random random(seed);
  uint64_t grown = 0, deleted = 0, moved = 0, guarded = 0, failed = 0, passes = 0;
  for (uint32_t round = 0; round < scale_Cases(400); ++round) {
    SCOPED_TRACE(round);
    const TSoup soup = any_Body(random);
    const CDcmPar par = any_Par(random);
    const std::vector<uint32_t> roi = any_Roi(random, soup);
    if (roi.empty()) continue;
    TTwins twins(soup, par, roi);
    for (int pass = 0; pass < 3 && twins.run_Pass(); ++pass) ++passes;
    ASSERT_FALSE(HasFailure());
    grown += twins.grown, deleted += twins.deleted, moved += twins.moved;
    guarded += twins.guarded, failed += twins.failed;
  }
  std::printf("%lu passes, %lu regions, %lu deleted, %lu moves, %lu circles, %lu failures\n",
              passes, grown, deleted, moved, guarded, failed);
  EXPECT_GT(passes, 100u);
  EXPECT_GT(grown, 1000u);
  EXPECT_GT(deleted, 100u);
  EXPECT_GT(moved, 1000u);
  EXPECT_GT(guarded, 20u);
  EXPECT_GT(failed, 20u);
}

}  // namespace
}  // namespace undercut::tests
