// What must hold after every stage of a decomposition, on random bodies with random parameters.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>

#include "bench/bodies.h"
#include "tests/support/intensity.h"
#include "tests/support/stages.h"

namespace undercut::tests {
namespace {

TSoup soup_Of(bodies::TBody body) { return {std::move(body.points), std::move(body.triangles)}; }

CDcmPar random_Par(reference::Random& random) {
  CDcmPar par;
  par.n_con = static_cast<uint32_t>(random.below(4));
  par.b_ini = random.chance(0.7);
  par.b_5ax = random.chance(0.7);
  par.F_cnt = static_cast<int32_t>(random.below(6));
  par.F_quo = random.chance(0.5) ? 5.0 : 0.5;
  par.T_win = random.real(15.0, 75.0);
  par.f_fuz = random.chance(0.3) ? 0.0 : 0.15;
  if (random.chance(0.3)) std::strcpy(par.F_srt, "srf");
  return par;
}

TSoup random_Body(reference::Random& random, uint32_t round) {
  switch (round % 4) {
    case 0:
      return soup_Of(bodies::make_Ball(600 + static_cast<uint32_t>(random.below(900))));
    case 1:
      return soup_Of(bodies::make_Ring(600 + static_cast<uint32_t>(random.below(900))));
    case 2:
      return tilt(make_Bumpy(18, 15));
    default:
      return make_Tangle(random, 40, 150);
  }
}

// Every second case leaves part of the mesh outside; some name a triangle twice.
std::vector<uint32_t> random_Roi(reference::Random& random, const TSoup& soup) {
  std::vector<uint32_t> roi;
  const double share = random.chance(0.5) ? 1.0 : 0.7;
  for (const uint32_t t : list_All(soup)) {
    if (random.chance(share)) roi.push_back(t);
    if (!roi.empty() && random.chance(0.002)) roi.push_back(roi.back());
  }
  return roi;
}

void expect_SameCandidates(const CUcA& region) {
  ASSERT_EQ(region.candidates.size(), region.queue.size());
  for (const TUcWish& wish : region.queue) {
    const TUcPrice* price = region.candidates.find({static_cast<uint32_t>(wish.triangle), 0});
    ASSERT_NE(price, nullptr);
    ASSERT_EQ(price->cost, wish.cost);
  }
}

void expect_Invariants(TRig& rig, const std::set<uint32_t>& roi, const char* stage) {
  SCOPED_TRACE(stage);
  ASSERT_NO_FATAL_FAILURE(expect_Sound(rig.map(), roi));
  ASSERT_NE(rig.map().get_Uca(0), nullptr);
  for (const TUcRef& ref : rig.regions()) expect_SameCandidates(*ref.region);
}

// A frozen walk over one region of interest: each stage, then the invariants. False ends it: a
// stage failed, as it may.
bool run_Checked(TRig& rig, const std::set<uint32_t>& roi) {
  const auto checked = [&](const char* name, const std::function<bool()>& run) {
    const bool ok = run();
    if (ok) expect_Invariants(rig, roi, name);
    return ok && !testing::Test::HasFatalFailure();
  };
  uint32_t before = rig.roi.count;
  for (int pass = 0; pass < 4 && rig.roi.count != 0; ++pass) {
    if (!checked("growth", [&] { return grow_Regions(rig.stage); })) return false;
    if (!checked("deletion", [&] { return del_Small(rig.map(), rig.par); })) return false;
    if (!checked("ranking", [&] { return rank_Regions(rig.stage); })) return false;
    if (!checked("balancing", [&] { return balance_Regions(rig.stage); })) return false;
    EXPECT_TRUE(rig.map().turns.empty() && rig.map().ranks.empty());
    if (!checked("split", [&] { return rig.split(); })) return false;
    if (!checked("end of pass", [&] { return rig.end_Pass(); })) return false;
    if (before <= rig.roi.count) break;
    before = rig.roi.count;
  }
  return checked("last filter", [&] { return fil_Lst(rig.map()); });
}

TEST(Stages, KeepEveryTriangleInOneList_AndCandidatesAlikeInBothContainers) {
  const uint32_t seed = 20260;
  std::printf("seed %u\n", seed);
  reference::Random random(seed);
  uint32_t through = 0;
  const uint32_t rounds = scale_Cases(40);
  for (uint32_t round = 0; round < rounds; ++round) {
    SCOPED_TRACE(round);
    TSoup soup = random_Body(random, round);
    std::vector<uint32_t> roi = random_Roi(random, soup);
    const std::set<uint32_t> members(roi.begin(), roi.end());
    TRig rig(std::move(soup), random_Par(random), std::move(roi));
    through += run_Checked(rig, members);
    ASSERT_FALSE(HasFatalFailure());
  }
  EXPECT_GT(through, rounds / 4) << "most rounds stop early: the walk shows little";
}

// ---- Measures ----------------------------------------------------------------------------------

double plain_Perimeter(const CMap& map, const CUcA& region) {
  double sum = 0;
  for (const uint32_t t : list_Tri(map, region)) {
    const T3DFAC f = get_Fac(map.msh, t);
    const T3DVEC corners[] = {f.a, f.b, f.c, f.a};
    for (size_t k = 0; k < 3; ++k)
      if (map.slots[t][k] == -1 || map.region_of[map.slots[t][k]] != region.id)
        sum += dst(corners[k], corners[k + 1]);
  }
  return sum;
}

double plain_Area(const CMap& map, const CUcA& region) {
  double sum = 0;
  for (const uint32_t t : list_Tri(map, region)) sum += area_Tri(get_Fac(map.msh, t));
  return sum;
}

// Nothing leaves a region while regions grow, so its list read from the end is the order in which
// its triangles joined, and every mean can be told again to the last bit.
void expect_Replay(const CMap& map, const CUcA& region) {
  const std::vector<uint32_t> list = list_Tri(map, region);
  const T3DFAC first = get_Fac(map.msh, list.back());
  double area = area_Tri(first);
  T3DVEC centroid = cen_Tri(first), normal = nml_Tri(first);
  for (size_t i = 1; i < list.size(); ++i) {
    const T3DFAC f = get_Fac(map.msh, list[list.size() - 1 - i]);
    const double count = static_cast<double>(i + 1);  // the triangle is counted already
    const double w0 = count / (count + 1), w1 = 1 / (count + 1);
    area += area_Tri(f);
    centroid = w1 * cen_Tri(f) + w0 * centroid;
    normal = w1 * nml_Tri(f) + w0 * normal;
  }
  const TUcMeasures& m = region.measures;
  ASSERT_EQ(m.area, area);
  ASSERT_EQ(m.centroid, centroid);
  ASSERT_EQ(m.normal, normal);
  ASSERT_NEAR(m.perimeter, plain_Perimeter(map, region),
              1e-9 * (1 + m.perimeter) * static_cast<double>(list.size()));
  ASSERT_GE(m.normal_area, 0);
  ASSERT_LE(m.normal_area, area * (1 + 1e-9));
  ASSERT_LE(m.axis_area, area * (1 + 1e-9));
}

TEST(Stages, LeaveGrownRegionsWithTheMeansOfTheirTriangles) {
  reference::Random random(7);
  uint32_t seen = 0;
  for (uint32_t round = 0; round < scale_Cases(24); ++round) {
    SCOPED_TRACE(round);
    TSoup soup = random_Body(random, round % 3);
    TRig rig(std::move(soup), random_Par(random));
    if (!grow_Regions(rig.stage)) continue;
    for (const CUcA* region : rig.open_Regions()) {
      ASSERT_NO_FATAL_FAILURE(expect_Replay(rig.map(), *region));
      ++seen;
    }
  }
  EXPECT_GT(seen, 50u);
}

TEST(Stages, LeaveBalancedRegionsWithTheirArea) {
  reference::Random random(11);
  uint32_t moved = 0;
  for (uint32_t round = 0; round < scale_Cases(24); ++round) {
    SCOPED_TRACE(round);
    TRig rig(random_Body(random, round % 3), random_Par(random));
    if (!grow_Regions(rig.stage) || !del_Small(rig.map(), rig.par)) continue;
    if (!rank_Regions(rig.stage) || !balance_Regions(rig.stage)) continue;
    moved += rig.stage.step;
    for (const CUcA* region : rig.open_Regions()) {
      const double area = plain_Area(rig.map(), *region);
      ASSERT_NEAR(region->measures.area, area, 1e-9 * (1 + area));
      const double rim = plain_Perimeter(rig.map(), *region);
      ASSERT_NEAR(region->measures.perimeter, rim, 1e-8 * (1 + rim) * region->count);
    }
  }
  EXPECT_GT(moved, 100u);
}

TEST(Stages, LeaveSplitRegionsWithMeasuresOfTheirOwn) {
  reference::Random random(13);
  for (uint32_t round = 0; round < scale_Cases(8); ++round) {
    SCOPED_TRACE(round);
    TRig rig(random_Body(random, round % 2), CDcmPar());
    std::vector<uint32_t> scattered;
    for (uint32_t t = 0; t < rig.triangles.size(); ++t)
      if (random.chance(0.5)) scattered.push_back(t);
    CUcA* parent = rig.world.settle(5, scattered);
    parent->band = 0;
    parent->measures.polar_low = 0;
    parent->measures.polar_high = 20;
    parent->polar0 = 10;
    parent->azimuth0 = 40;
    ASSERT_TRUE(com_Uca(rig.map(), parent));
    ASSERT_EQ(rig.map().get_Uca(5), nullptr);
    for (const CUcA* piece : rig.open_Regions()) {
      ASSERT_GT(piece->id, 5);
      ASSERT_EQ(piece->band, 0u);
      ASSERT_EQ(piece->measures.area, plain_Area(rig.map(), *piece));
      ASSERT_EQ(piece->measures.axis_frame.org, rig.map().roi_centroid);
    }
  }
}

}  // namespace
}  // namespace undercut::tests
