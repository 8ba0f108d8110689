// What single precision calls hit or missed, in each form that the processor has.
#include "mesh/sweep_lanes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "tests/support/intensity.h"
#include "tests/support/sweep_forms.h"

namespace undercut::tests {

namespace {

constexpr uint64_t kSeed = 20240911;

// Tiles over all of a mesh and what lies beside it.
TTiles make_Tiles(uint32_t columns) {
  const float low = -1.0f;
  return {low, low, static_cast<float>(columns) / 2.0f, columns, columns};
}

// A group of rays, the last one repeated, each with a triangle, placed by a form.
struct TPlacedRays {
  float x[kGroup], y[kGroup], z[kGroup];
  uint32_t spot[kGroup], starts[kGroup], own[kGroup];
  uint32_t hits = 0;

  TPlacedRays(const TForm& form, const CPlaced& placed, const TTiles& tiles,
              const THostile& hostile, const std::vector<uint32_t>& ids) {
    for (uint32_t k = 0; k < kGroup; ++k) {
      starts[k] = ids[std::min<size_t>(k, ids.size() - 1)];
      own[k] = hostile.aims[starts[k]];
    }
    hits = form.lanes->place_Rays(placed.mesh(), placed.across(), tiles, hostile.orgs.data(),
                                  starts, own, {x, y, z, spot});
  }
};

}  // namespace

TEST(SweepLanes, CallNothingHitOrMissed_ThatIsNot) {
  std::printf("seed %llu\n", static_cast<unsigned long long>(kSeed));
  for (const TForm& form : list_Forms()) {
    TPairs totals;
    reference::Random random(kSeed);
    for (uint32_t round = 0; round < scale_Cases(400); ++round) {
      THostile hostile = make_Hostile(kSeed + round, 200, 256);
      const CPlaced placed(hostile);
      if (!placed.is_Bounded()) continue;
      for (uint32_t first = 0; first < 256; first += kGroup) {
        std::vector<uint32_t> ids(&hostile.aims[first], &hostile.aims[first] + kGroup);
        const uint64_t count = 1 + random.below(90);
        while (ids.size() < count)
          ids.push_back(static_cast<uint32_t>(random.below(hostile.soup.tri.size())));
        placed.judge(form, first, random.chance(0.5) ? 1.0f : -1.0f, ids, totals);
        ASSERT_EQ(totals.wrong, 0u) << form.name << ", round " << round << ", ray " << first;
      }
    }
    EXPECT_LT(totals.unclear, totals.pairs / 2) << form.name;
  }
}

TEST(SweepLanes, ListATriangle_InTheTilesOfAllRaysThatHitIt) {
  uint64_t hits = 0;
  for (const TForm& form : list_Forms())
    for (uint32_t round = 0; round < scale_Cases(200); ++round) {
      THostile hostile = make_Hostile(kSeed + round, 120, 400);
      const CPlaced placed(hostile);
      if (!placed.is_Bounded()) continue;
      const TTiles tiles = make_Tiles(1u << round % 13);
      const auto count = static_cast<uint32_t>(hostile.soup.tri.size());
      std::vector<uint32_t> columns(count + kGroup), rows(count + kGroup);
      std::vector<bool> thin;
      for (uint32_t t = 0; t < count; t += kGroup) {
        const uint32_t some = std::min(kGroup, count - t);
        const uint32_t bits =
            form.lanes->find_Spans(placed.mesh(), t, some, tiles, {&columns[t], &rows[t]});
        EXPECT_EQ(bits >> some, 0u);
        for (uint32_t k = 0; k < some; ++k) thin.push_back((bits >> k & 1u) != 0);
      }
      for (uint32_t i = 0; i < hostile.orgs.size(); ++i) {
        const uint32_t t = hostile.aims[i];
        if (thin[t] || !placed.exact(i, 1.0f, t)) continue;
        ++hits;
        const TRayGroup ray = placed.rays(i, 1.0f);
        const uint32_t column = tiles.column(ray.x[0]), row = tiles.row(ray.y[0]);
        ASSERT_TRUE((columns[t] & 0xffffu) <= column && column <= columns[t] >> 16 &&
                    (rows[t] & 0xffffu) <= row && row <= rows[t] >> 16)
            << form.name << ", round " << round << ", ray " << i;
      }
    }
  EXPECT_GT(hits, 1000u);
}

TEST(SweepLanes, PlaceRays_WhereTheyStart_AndHitOnlyWhatIsHit) {
  uint64_t hits = 0;
  for (const TForm& form : list_Forms())
    for (uint32_t round = 0; round < scale_Cases(200); ++round) {
      THostile hostile = make_Hostile(kSeed + round, 120, 400);
      const CPlaced placed(hostile);
      if (!placed.is_Bounded()) continue;
      const TTiles tiles = make_Tiles(1 + round % 40);
      for (uint32_t first = 0; first + kGroup <= 400; first += kGroup) {
        std::vector<uint32_t> ids;
        for (uint32_t k = 0; k <= round % kGroup; ++k) ids.push_back(first + (k * 3) % kGroup);
        const TPlacedRays rays(form, placed, tiles, hostile, ids);
        for (uint32_t k = 0; k < kGroup; ++k) {
          const uint32_t bits = (rays.hits >> k & 1u) | (rays.hits >> (k + kGroup) & 1u) << 1;
          const TRayGroup ray = placed.rays(rays.starts[k], 1.0f);
          ASSERT_EQ(rays.x[k], ray.x[0]);
          ASSERT_EQ(rays.y[k], ray.y[0]);
          ASSERT_EQ(rays.z[k], ray.z[0]);
          ASSERT_EQ(rays.spot[k], tiles.spot(ray.x[0], ray.y[0]));
          ASSERT_EQ(rays.spot[k] >> 8,
                    tiles.row(ray.y[0]) * tiles.columns + tiles.column(ray.x[0]));
          const uint32_t start = rays.starts[k], t = rays.own[k];
          ASSERT_TRUE(!(bits & 1u) || placed.exact(start, 1.0f, t)) << form.name << round;
          ASSERT_TRUE(!(bits & 2u) || placed.exact(start, -1.0f, t)) << form.name << round;
          hits += bits != 0 ? 1 : 0;
        }
      }
    }
  EXPECT_GT(hits, 1000u);
}

TEST(SweepLanes, ListTrianglesInTheirOrder_AndNoneBehindTheLast) {
  for (const TForm& form : list_Forms())
    for (uint32_t count = 1; count <= 70; ++count) {
      THostile hostile = make_Hostile(kSeed + count, 80, 64);
      const CPlaced placed(hostile);
      std::vector<uint32_t> ids;
      for (uint32_t t = 0; t < count; ++t) ids.push_back(t);
      const TRayGroup rays = placed.rays(count % 50, 1.0f);
      TFlats flats;
      form.lanes->flatten(placed.mesh(), ids.data(), count, flats);
      uint32_t list[kMostFlats + kGroup];
      const uint32_t listed = form.lanes->select(flats, 0, count, rays.view(), list);
      ASSERT_LE(listed, count);
      for (uint32_t n = 0; n < listed; ++n) {
        ASSERT_LT(list[n], count);
        ASSERT_TRUE(n == 0 || list[n - 1] < list[n]);
      }
      // From a later one on they are the same ones.
      for (uint32_t from = kGroup; from < count; from += kGroup) {
        uint32_t later[kMostFlats + kGroup];
        const uint32_t rest = form.lanes->select(flats, from, count, rays.view(), later);
        uint32_t* const begin = std::lower_bound(list, list + listed, from);
        ASSERT_TRUE(std::equal(later, later + rest, begin, list + listed));
      }
    }
}

TEST(SweepLanes, SiftOnlyForRaysThatAreStillAsked) {
  for (const TForm& form : list_Forms())
    for (uint32_t round = 0; round < 50; ++round) {
      THostile hostile = make_Hostile(kSeed + round, 64, 64);
      const CPlaced placed(hostile);
      std::vector<uint32_t> ids;
      for (uint32_t t = 0; t < 64; ++t) ids.push_back(t);
      const TRayGroup rays = placed.rays(round, -1.0f);
      TFlats flats;
      form.lanes->flatten(placed.mesh(), ids.data(), 64, flats);
      TSifted all[64], some[64];
      const uint32_t found = form.lanes->sift(flats, ids.data(), 64, rays.view(), 0xffff, all);
      const uint32_t alive = 0x5a3c;
      const uint32_t left = form.lanes->sift(flats, ids.data(), 64, rays.view(), alive, some);
      uint32_t next = 0;
      for (uint32_t n = 0; n < found; ++n) {
        if (((all[n].hit | all[n].unclear) & alive) == 0) continue;
        ASSERT_LT(next, left);
        EXPECT_EQ(some[next].at, all[n].at);
        EXPECT_EQ(some[next].hit, all[n].hit & alive);
        EXPECT_EQ(some[next].unclear, all[n].unclear & alive);
        ++next;
      }
      EXPECT_EQ(next, left);
    }
}

}  // namespace undercut::tests
