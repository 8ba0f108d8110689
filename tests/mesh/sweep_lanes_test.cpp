// What single precision calls hit or missed, in each form that the processor has.
#include "mesh/sweep_lanes.h"

#include <gtest/gtest.h>

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

// Rays of a case, a triangle each, placed by a form.
struct TPlacedRays {
  std::vector<float> x, y, z;
  std::vector<uint32_t> spot;
  uint32_t hits = 0;

  TPlacedRays(const TForm& form, const CPlaced& placed, const TTiles& tiles,
              const THostile& hostile, const std::vector<uint32_t>& ids)
      : x(ids.size()), y(x), z(x), spot(ids.size()) {
    std::vector<uint32_t> own;
    for (const uint32_t id : ids) own.push_back(hostile.aims[id]);
    own.resize(std::max<size_t>(own.size(), kLanes8));  // read as a whole
    hits = form.lanes->place_Rays(placed.mesh(), placed.across(), tiles, hostile.orgs.data(),
                                  ids.data(), own.data(), static_cast<uint32_t>(ids.size()),
                                  {x.data(), y.data(), z.data(), spot.data()});
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
      for (uint32_t first = 0; first < 256; first += kLanes8) {
        std::vector<uint32_t> ids(&hostile.aims[first], &hostile.aims[first] + kLanes8);
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
      std::vector<TSpan> spans(count);
      std::vector<bool> thin;
      for (uint32_t t = 0; t < count; t += kLanes8) {
        const uint32_t some = std::min(kLanes8, count - t);
        const uint32_t bits = form.lanes->find_Spans(placed.mesh(), t, some, tiles, &spans[t]);
        EXPECT_EQ(bits >> some, 0u);
        for (uint32_t k = 0; k < some; ++k) thin.push_back((bits >> k & 1u) != 0);
      }
      for (uint32_t i = 0; i < hostile.orgs.size(); ++i) {
        const uint32_t t = hostile.aims[i];
        if (thin[t] || !placed.exact(i, 1.0f, t)) continue;
        ++hits;
        const TRays8 ray = placed.rays(i, 1.0f);
        const uint32_t column = tiles.column(ray.x[0]), row = tiles.row(ray.y[0]);
        const TSpan& span = spans[t];
        ASSERT_TRUE(span.first_column <= column && column <= span.last_column &&
                    span.first_row <= row && row <= span.last_row)
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
      for (uint32_t first = 0; first + kLanes8 <= 400; first += kLanes8) {
        std::vector<uint32_t> ids;
        for (uint32_t k = 0; k <= round % kLanes8; ++k) ids.push_back(first + (k * 3) % kLanes8);
        const TPlacedRays rays(form, placed, tiles, hostile, ids);
        for (uint32_t k = 0; k < kLanes8; ++k) {
          const uint32_t bits = (rays.hits >> k & 1u) | (rays.hits >> (k + kLanes8) & 1u) << 1;
          if (k >= ids.size()) {
            ASSERT_EQ(bits, 0u);
            continue;
          }
          const TRays8 ray = placed.rays(ids[k], 1.0f);
          ASSERT_EQ(rays.x[k], ray.x[0]);
          ASSERT_EQ(rays.y[k], ray.y[0]);
          ASSERT_EQ(rays.z[k], ray.z[0]);
          ASSERT_EQ(rays.spot[k], tiles.spot(ray.x[0], ray.y[0]));
          ASSERT_EQ(rays.spot[k] / (2 * kSpots), tiles.tile(ray.x[0], ray.y[0]));
          const uint32_t t = hostile.aims[ids[k]];
          ASSERT_TRUE(!(bits & 1u) || placed.exact(ids[k], 1.0f, t)) << form.name << round;
          ASSERT_TRUE(!(bits & 2u) || placed.exact(ids[k], -1.0f, t)) << form.name << round;
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
      const TRays8 rays = placed.rays(count % 50, 1.0f);
      TFlats flats;
      form.lanes->flatten(placed.mesh(), ids.data(), count, CPlaced::spot(rays), flats);
      uint32_t list[kMostFlats + kLanes8];
      const uint32_t listed = form.lanes->select(flats, count, rays, list);
      ASSERT_LE(listed, count);
      for (uint32_t n = 0; n < listed; ++n) {
        ASSERT_LT(list[n], count);
        ASSERT_TRUE(n == 0 || list[n - 1] < list[n]);
      }
    }
}

TEST(SweepLanes, FetchTheListedRays_TheLastOneForThoseThatAreMissing) {
  const float x[] = {1, 2, 3, 4}, y[] = {5, 6, 7, 8}, z[] = {-1, -2, -3, -4};
  const uint32_t list[] = {3, 1, 2};
  for (const TForm& form : list_Forms())
    for (uint32_t count = 1; count <= 3; ++count) {
      TRays8 rays;
      form.lanes->fetch(x, y, z, list, count, rays);
      for (uint32_t k = 0; k < kLanes8; ++k) {
        const uint32_t i = list[std::min(k, count - 1)];
        EXPECT_EQ(rays.x[k], x[i]);
        EXPECT_EQ(rays.y[k], y[i]);
        EXPECT_EQ(rays.z[k], z[i]);
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
      const TRays8 rays = placed.rays(round, -1.0f);
      TFlats flats;
      form.lanes->flatten(placed.mesh(), ids.data(), 64, CPlaced::spot(rays), flats);
      TSifted all[64], some[64];
      const uint32_t found = form.lanes->sift(flats, ids.data(), 64, rays, 0xff, all);
      const uint32_t alive = 0x5a;
      const uint32_t left = form.lanes->sift(flats, ids.data(), 64, rays, alive, some);
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
