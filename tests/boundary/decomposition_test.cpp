// get_Dcm, called as a host calls it: results, statuses, attempts and passes.
#include <cmath>
#include <limits>

#include "tests/boundary/dcm_request.h"
#include "tests/support/allocations.h"

using undercut::tests::FailingAllocation;
using undercut::tests::live_Allocations;

namespace {

// ---- Results -----------------------------------------------------------------------------------

TEST_F(Decomposition, GivesEachTriangleToOneRegion_OrLeavesItFree) {
  TDcmRequest r(small_Body());
  r.add_Halves();
  const std::vector<std::vector<uint32_t>> before = r.lists;
  ASSERT_EQ(r.call(), 0);
  ASSERT_EQ(r.res.uca_t.count, 2u);
  for (uint32_t i = 0; i < 2; ++i) {
    std::multiset<uint32_t> held;
    for (uint32_t k = 0; k < r.res.uca_t.data[i].count; ++k) {
      const TLstU32& region = r.res.uca_t.data[i].data[k];
      EXPECT_GT(region.count, 0u);
      held.insert(region.data, region.data + region.count);
    }
    const std::set<uint32_t> unique(held.begin(), held.end());
    EXPECT_EQ(unique.size(), held.size());
    const std::set<uint32_t> roi(before[i].begin(), before[i].end());
    for (const uint32_t t : unique) EXPECT_TRUE(roi.count(t)) << t;
    // What stayed free and can still start a region is what the host's list holds now.
    for (uint32_t j = 0; j < r.rois[i].count; ++j) {
      EXPECT_TRUE(roi.count(r.rois[i].data[j]));
      EXPECT_FALSE(unique.count(r.rois[i].data[j]));
    }
  }
}

TEST_F(Decomposition, GivesListsThatAgreeInCountAndOrder) {
  TDcmRequest r(small_Body());
  r.add_Halves();
  ASSERT_EQ(r.call(), 0);
  for (uint32_t i = 0; i < 2; ++i) {
    const uint32_t n = r.res.uca_t.data[i].count;
    ASSERT_GT(n, 0u);
    ASSERT_EQ(r.res.uca_a.data[i].count, n);
    ASSERT_EQ(r.res.uca_f.data[i].count, n);
    EXPECT_GE(r.res.uca_t.data[i].capacity, n + 1) << "region 0 has room and is left out";
    for (uint32_t k = 0; k < n; ++k) {
      // With axes frozen at their seeds the direction is the opposite of the frame's Z.
      const T3DVEC dir = r.res.uca_a.data[i].data[k].dir, z = r.res.uca_f.data[i].data[k].z;
      EXPECT_NEAR(dir.x, -z.x, 1e-12);
      EXPECT_NEAR(dir.y, -z.y, 1e-12);
      EXPECT_NEAR(dir.z, -z.z, 1e-12);
      EXPECT_NEAR(undercut::len(dir), 1, 1e-12);
    }
  }
}

TEST_F(Decomposition, HoldsAxesWithinTheirBands) {
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  ASSERT_EQ(r.call(), 0);
  for (uint32_t k = 0; k < r.res.uca_a.data[0].count; ++k) {
    const T3DVEC dir = r.res.uca_a.data[0].data[k].dir;
    const double polar = polar_Of(-dir);
    const bool in_Band =
        polar <= 20 + 1e-9 || polar >= 160 - 1e-9 || (polar >= 80 - 1e-9 && polar <= 100 + 1e-9);
    EXPECT_TRUE(in_Band) << polar;
  }
}

TEST_F(Decomposition, SnapsAzimuths_OnAFourAxisMachine) {
  defaults::set(dcm_5ax, 0);
  defaults::set(dcm_4ax, 90.0);
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  ASSERT_LE(r.call(), 1);
  for (uint32_t k = 0; k < r.res.uca_a.data[0].count; ++k) {
    const T3DVEC axis = -r.res.uca_a.data[0].data[k].dir;
    if (std::hypot(axis.x, axis.y) < 1e-6) continue;  // a pole has no azimuth
    const double off = std::fmod(azimuth_Of(axis), 180.0);
    EXPECT_LT(std::min(off, 180.0 - off), 1e-6) << azimuth_Of(axis);
  }
}

TEST_F(Decomposition, IsTheSame_OnEveryRepeat) {
  TDcmRequest a(small_Body()), b(small_Body());
  a.add(0, a.triangles());
  b.add(0, b.triangles());
  ASSERT_EQ(a.call(), b.call());
  ASSERT_EQ(a.res.uca_t.data[0].count, b.res.uca_t.data[0].count);
  for (uint32_t k = 0; k < a.res.uca_t.data[0].count; ++k) {
    const TLstU32 &x = a.res.uca_t.data[0].data[k], &y = b.res.uca_t.data[0].data[k];
    ASSERT_EQ(x.count, y.count);
    EXPECT_EQ(std::memcmp(x.data, y.data, 4 * x.count), 0);
    EXPECT_EQ(std::memcmp(&a.res.uca_f.data[0].data[k], &b.res.uca_f.data[0].data[k], 96), 0);
  }
}

// ---- Regions of interest -----------------------------------------------------------------------

TEST_F(Decomposition, SkipsAnEmptyListInTheMiddle_WithoutASlot) {
  TDcmRequest r(small_Body());
  r.add(0, r.triangles() / 2);
  r.lists.emplace_back();
  r.add(r.triangles() / 2, r.triangles());
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(r.res.uca_t.count, 2u);
  EXPECT_EQ(r.res.uca_a.count, 2u);
  EXPECT_EQ(r.res.uca_f.count, 2u);
  ASSERT_EQ(r.res.sts.count, 3u);
  for (uint32_t k = 0; k < 3; ++k) {
    EXPECT_EQ(r.sts(k).roi, k);
    EXPECT_EQ(r.sts(k).first, 0);
    EXPECT_EQ(r.sts(k).second, 0);
  }
  const uint32_t later = r.res.uca_t.data[1].data[0].data[0];
  EXPECT_GE(later, r.triangles() / 2) << "the results of the third list moved up one slot";
}

TEST_F(Decomposition, SkipsAListWithoutArray) {
  TDcmRequest r(small_Body());
  r.add_Halves();
  ASSERT_EQ(r.call(), 0);
  r.rois[0] = {nullptr, 7, 7};
  r.rois[1] = {r.lists[1].data(), 0, 7};
  clr_Res(&r.res);
  EXPECT_EQ(get_Dcm(&r.req, &r.res), 0);
  EXPECT_EQ(r.res.uca_t.count, 0u);
  EXPECT_EQ(r.res.sts.count, 2u);
}

TEST_F(Decomposition, KeepsAnEmptySlot_ForARegionOfInterestThatFailsTwice_AndGoesOn) {
  TDcmRequest r(small_Body());
  r.add_Halves();
  r.lists[0].push_back(r.triangles());  // no triangle of the mesh
  ASSERT_EQ(r.call(), 1);
  ASSERT_EQ(r.res.uca_t.count, 2u);
  EXPECT_EQ(r.res.uca_t.data[0].count, 0u);
  EXPECT_EQ(r.res.uca_a.data[0].count, 0u);
  EXPECT_EQ(r.res.uca_f.data[0].count, 0u);
  EXPECT_GT(r.res.uca_t.data[1].count, 0u);
  EXPECT_EQ(r.sts(0).first, 11);
  EXPECT_EQ(r.sts(0).second, 11);
  EXPECT_EQ(r.sts(1).first, 0);
}

TEST_F(Decomposition, PassesOverTheSecondAttempt_WhereTheFirstLeftNothingToOffer) {
  // The end file fails after the passes have shortened the list to nothing.
  std::ofstream("run") << "in the way of the folder";
  log("end", "");
  dcm_end("win");
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  ASSERT_EQ(r.call(), 1);
  EXPECT_EQ(r.rois[0].count, 0u);
  EXPECT_EQ(r.sts(0).first, 11);
  EXPECT_EQ(r.sts(0).second, 0);
  EXPECT_EQ(r.res.uca_t.count, 0u) << "skipped whole: no slot";
}

TEST_F(Decomposition, TakesARegionOfInterestWithoutSurvivors_AsDone) {
  defaults::set(dcm_quo, 1e9);
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  ASSERT_EQ(r.call(), 0);
  ASSERT_EQ(r.res.uca_t.count, 1u);
  EXPECT_EQ(r.res.uca_t.data[0].count, 0u);
  EXPECT_EQ(r.sts(0).first, 0);
}

TEST_F(Decomposition, LinksARepeatedTriangleOnce) {
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  const size_t n = r.lists[0].size();
  for (size_t i = 0; i < n; i += 3) r.lists[0].push_back(r.lists[0][i]);
  ASSERT_LE(r.call(), 1);
  std::set<uint32_t> seen;
  for (uint32_t k = 0; k < r.res.uca_t.data[0].count; ++k)
    for (uint32_t j = 0; j < r.res.uca_t.data[0].data[k].count; ++j)
      EXPECT_TRUE(seen.insert(r.res.uca_t.data[0].data[k].data[j]).second);
}

TEST_F(Decomposition, NeverWritesTheMesh) {
  TDcmRequest r(small_Body());
  const bodies::TBody before = r.body;
  r.add_Halves();
  r.call();
  EXPECT_EQ(std::memcmp(before.points.data(), r.body.points.data(), 24 * before.points.size()), 0);
  EXPECT_EQ(
      std::memcmp(before.triangles.data(), r.body.triangles.data(), 12 * before.triangles.size()),
      0);
}

// ---- Passes ------------------------------------------------------------------------------------

constexpr char kGrowth[] = "07. Fwd.";

TEST_F(Decomposition, RunsTwoPassesAtMost_WithNMaxOne) {
  defaults::set(dcm_max, 1);
  defaults::set(dcm_Cnt, 1);
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  EXPECT_EQ(count(console_Of(r), kGrowth), 2);
}

TEST_F(Decomposition, HasNoLimitOfPasses_WithNMaxZero) {
  defaults::set(dcm_Cnt, 1);
  defaults::set(dcm_max, 0);
  TDcmRequest a(small_Body()), b(small_Body());
  a.add(0, a.triangles());
  b.add(0, b.triangles());
  const int none = count(console_Of(a), kGrowth);
  defaults::set(dcm_max, -1);
  EXPECT_EQ(none, count(console_Of(b), kGrowth));
  EXPECT_GT(none, 3);
}

TEST_F(Decomposition, EndsWithThePassThatTakesNothing) {
  defaults::set(dcm_quo, 1e9);  // nothing survives, so the first pass only drops unseen triangles
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  const std::string text = console_Of(r);
  EXPECT_EQ(count(text, kGrowth), r.rois[0].count < r.triangles() ? 2 : 1);
  EXPECT_GT(r.rois[0].count, 0u);
}

// ---- Statuses ----------------------------------------------------------------------------------

TEST_F(Decomposition, IsStatus4_ForABadMesh) {
  TDcmRequest r(small_Body());
  r.add_Halves();
  const T3DMSH good = r.req.msh;
  r.req.msh.vtx = nullptr;
  EXPECT_EQ(r.call(), 4);
  r.req.msh = good;
  r.req.msh.tri = nullptr;
  EXPECT_EQ(r.call(), 4);
  r.req.msh = good;
  r.req.msh.n_vtx = 0;
  EXPECT_EQ(r.call(), 4);
  r.req.msh = good;
  r.req.msh.n_tri = 0;
  EXPECT_EQ(r.call(), 4);
  r.req.msh = good;
  r.body.triangles[5].b = r.req.msh.n_vtx;
  EXPECT_EQ(r.call(), 4);
  EXPECT_EQ(r.res.sts.count, 0u);
  EXPECT_EQ(get_Dcm(nullptr, &r.res), 4);
  EXPECT_EQ(get_Dcm(&r.req, nullptr), 4);
}

TEST_F(Decomposition, IsStatus5_WithoutRegionsOfInterest) {
  TDcmRequest r(small_Body());
  EXPECT_EQ(r.call(), 5);
  r.req.rois = {nullptr, 3, 3};
  EXPECT_EQ(get_Dcm(&r.req, &r.res), 5);
}

TEST_F(Decomposition, IsStatus8_ForFourBands_WithRecordsOfZeros) {
  defaults::set(dcm_Con, 4);
  TDcmRequest r(small_Body());
  r.add_Halves();
  EXPECT_EQ(r.call(), 8);
  ASSERT_EQ(r.res.sts.count, 2u);
  EXPECT_EQ(r.sts(1).roi, 1u);
  EXPECT_EQ(r.sts(1).first, 0);
  EXPECT_EQ(r.res.uca_t.count, 0u);
}

TEST_F(Decomposition, TakesOneBandFrom0To180_WithNConZero) {
  defaults::set(dcm_Con, 0);
  TDcmRequest zero(small_Body()), one(small_Body());
  zero.add(0, zero.triangles());
  one.add(0, one.triangles());
  const int32_t status = zero.call();
  defaults::set(dcm_Con, 1);
  defaults::set(dcm_aT0, 0.0);
  defaults::set(dcm_bT0, 180.0);
  EXPECT_EQ(one.call(), status);
  ASSERT_EQ(zero.res.uca_t.data[0].count, one.res.uca_t.data[0].count);
}

TEST_F(Decomposition, IsStatus10_WhereTheAdjacencyIsBeyondMemory) {
  bodies::TBody body;
  body.points = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  body.triangles.assign(60000, {0, 1, 2});  // each has all others as neighbours, three times
  TDcmRequest r(std::move(body));
  r.add(0, 5);
  EXPECT_EQ(r.call(), 10);
  EXPECT_EQ(r.res.sts.count, 1u);
}

TEST_F(Decomposition, IsStatus12_WithoutMemoryForTheNameOfTheFolder) {
  TDcmRequest r(small_Body());
  std::memset(r.req.dir, 'a', 200);
  const int64_t before = live_Allocations();
  {
    const FailingAllocation failing(1);
    EXPECT_EQ(get_Dcm(&r.req, &r.res), 12);
    EXPECT_TRUE(failing.has_Failed());
  }
  EXPECT_TRUE(r.res.sts.data == nullptr);
  EXPECT_EQ(live_Allocations(), before);
}

TEST_F(Decomposition, ReturnsMinus112_AndHandsNothingOver_WhereAFrameFileCannotBeOpened) {
  std::ofstream("run") << "in the way of the folder";
  log("end", "");
  dcm_end("trf");
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  const int64_t before = live_Allocations();
  EXPECT_EQ(r.call(), -112);
  EXPECT_TRUE(r.res.sts.data == nullptr);
  EXPECT_TRUE(r.res.uca_t.data == nullptr);
  r.rois.clear();
  r.rois.shrink_to_fit();
  EXPECT_LE(live_Allocations(), before);
}

TEST_F(Decomposition, FailsARegionOfInterest_WhereAnotherEndFileCannotBeOpened) {
  std::ofstream("run") << "in the way of the folder";
  log("end", "");
  for (const char* which : {"axi", "win"}) {
    dcm_end(which);
    TDcmRequest r(small_Body());
    r.add(0, r.triangles());
    EXPECT_EQ(r.call(), 1);
    EXPECT_EQ(r.sts(0).first, 11);
  }
}

// ---- Attempts ----------------------------------------------------------------------------------

TEST_F(Decomposition, FailsForAnUnknownDeletionScore) {
  dcm_srt("area");
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  EXPECT_EQ(r.call(), 1);
  EXPECT_EQ(r.sts(0).first, 11);
  EXPECT_EQ(r.sts(0).second, 11);
}

TEST_F(Decomposition, RunsEveryStageTwice_WhereBothAttemptsFail) {
  dcm_srt("area");
  TDcmRequest r(small_Body());
  r.add(0, r.triangles());
  const std::string text = console_Of(r);
  EXPECT_EQ(count(text, "04. Calc."), 2);
  EXPECT_EQ(count(text, "08. Del."), 2) << "the line of the failed stage is closed as usual";
  EXPECT_EQ(count(text, "0x. Check"), 0);
}

TEST_F(Decomposition, RepairsTheListBeforeTheSecondAttempt_IfBChkIsSet) {
  dcm_srt("area");
  defaults::set(dcm_chk, 1);
  log("flt", "");
  TDcmRequest r(small_Body());
  r.add(0, 100);
  r.add(700, 720);
  r.lists[0].insert(r.lists[0].end(), r.lists[1].begin(), r.lists[1].end());
  r.lists.pop_back();
  EXPECT_EQ(count(console_Of(r), "0x. Check :: and repair UcA region"), 1);
  EXPECT_EQ(r.rois[0].count, 100u) << "the larger patch is kept";
  EXPECT_TRUE(exists("run/02-roi/00-prv.stl"));
  EXPECT_TRUE(exists("run/02-roi/00-nxt.stl"));
  EXPECT_EQ(std::filesystem::file_size("run/02-roi/00-prv.stl"), 84u + 50 * 120);
  EXPECT_EQ(std::filesystem::file_size("run/02-roi/00-nxt.stl"), 84u + 50 * 100);
}

TEST_F(Decomposition, Returns1_WhereOnlyTheSecondAttemptSucceeds) {
  // Each allocation of the call fails once: those inside an attempt cost the first attempt only.
  bool seen = false;
  for (uint64_t n = 1; n < 100000 && !seen; n += 37) {
    TDcmRequest r(small_Body());
    r.add(0, r.triangles());
    r.rois.reserve(1);
    FailingAllocation failing(n);
    if (r.call() != 1) {
      if (!failing.has_Failed()) break;
      continue;
    }
    EXPECT_EQ(r.sts(0).first, 11);
    EXPECT_EQ(r.sts(0).second, 0);
    EXPECT_GT(r.res.uca_t.data[0].count, 0u);
    seen = true;
  }
  EXPECT_TRUE(seen);
}

TEST_F(Decomposition, AnswersAnExhaustedAllocationWithItsStatus_AndLeaksNothing) {
  std::set<int32_t> statuses;
  uint64_t n = 1;
  for (bool failed = true; failed; n += n < 120 ? 1 : n / 9) {
    TDcmRequest r(bodies::make_Ball(300));
    r.add_Halves();
    r.rois.reserve(2);
    const int64_t before = live_Allocations();
    int32_t status = 0;
    {
      FailingAllocation failing(n);
      status = r.call();
      failed = failing.has_Failed();
    }
    clr_Res(&r.res);
    ASSERT_EQ(live_Allocations(), before) << "allocation " << n;
    statuses.insert(status);
  }
  for (const int32_t status : {0, 1, 6, 7, 9, 10}) EXPECT_TRUE(statuses.count(status)) << status;
  for (const int32_t status : statuses)
    EXPECT_TRUE((std::set<int32_t>{0, 1, 6, 7, 9, 10, 12}.count(status))) << status;
}

TEST_F(Decomposition, LeaksNothing_OverAThousandCalls) {
  TDcmRequest warm(bodies::make_Ball(200));
  warm.add_Halves();
  warm.call();
  clr_Res(&warm.res);
  const int64_t before = live_Allocations();
  for (int i = 0; i < 1000; ++i) {
    TDcmRequest r(bodies::make_Ball(200));
    r.add_Halves();
    if (i % 3 == 0) r.lists[i % 2].push_back(4000000000u);
    if (i % 5 == 0) r.body.triangles[7] = {1, 1, 2};
    defaults::set(dcm_chk, i % 2 == 0);
    r.call();
  }
  EXPECT_EQ(live_Allocations(), before);
}

// ---- Hostile input -----------------------------------------------------------------------------

TEST_F(Decomposition, EndsHarmlessly_OnCoordinatesThatAreNotFinite) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double bad : {inf, -inf, nan, 1e308, -1e308, 1e-320}) {
    TDcmRequest r(small_Body());
    r.add_Halves();
    for (size_t v = 0; v < r.body.points.size(); v += 50) r.body.points[v].y = bad;
    EXPECT_LE(r.call(), 1) << bad;
    for (T3DVEC& p : r.body.points) p = {bad, bad, bad};
    r.lists.clear();
    r.add_Halves();
    EXPECT_LE(r.call(), 1) << bad;
  }
}

TEST_F(Decomposition, EndsHarmlessly_OnParametersThatAreNotFinite) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  int32_t (*const setters[])(const double*) = {dcm_4ax, dcm_aT0, dcm_bT0, dcm_nul, dcm_fuz,
                                               dcm_srf, dcm_fae, dcm_quo, dcm_Lg0, dcm_Lg1,
                                               dcm_win, dcm_Tg0, dcm_Tg3, ucs_Tol};
  for (const auto setter : setters)
    for (const double bad : {inf, -inf, nan, 0.0, -1.0}) {
      defaults::set(setter, bad);
      TDcmRequest r(bodies::make_Ball(300));
      r.add(0, r.triangles());
      EXPECT_LE(r.call(), 1);
      defaults::restore();
    }
}

TEST_F(Decomposition, TakesMeshesThatAreNoSurface) {
  bodies::TBody body = small_Body();
  const size_t n = body.triangles.size();
  for (size_t i = 0; i < n; i += 11) {
    body.triangles.push_back(body.triangles[i]);                              // repeated
    body.triangles.push_back({body.triangles[i].a, body.triangles[i].b, 0});  // a third on an edge
    body.triangles.push_back({3, 3, body.triangles[i].c});                    // two equal corners
  }
  for (const bool repair : {false, true}) {
    defaults::set(dcm_chk, repair ? 1 : 0);
    TDcmRequest r(body);
    r.add_Halves();
    EXPECT_LE(r.call(), 1);
  }
}

}  // namespace
