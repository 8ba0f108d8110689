#include "decomposition/seeds.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <vector>

#include "bench/bodies.h"
#include "decomposition/measures.h"
#include "tests/reference/plain_sort.h"
#include "tests/reference/ray_hits.h"
#include "tests/support/intensity.h"
#include "tests/support/maps.h"

namespace undercut {
namespace {

using namespace tests;

constexpr double kLift = 0.001;

// A mesh with all that seeds are computed from.
struct TScene {
  TWorld world;
  C3DTriAABBTree tree;

  TScene(TSoup soup, std::vector<TUcBand> bands) : world(std::move(soup)) {
    EXPECT_TRUE(tree.Build(world.soup.msh()));
    EXPECT_TRUE(world.map.set_Win(bands.data(), static_cast<uint32_t>(bands.size())));
  }
  std::vector<TUcSeed> seeds(std::vector<uint32_t> roi) const {
    std::vector<TUcSeed> out;
    calc_Seeds(world.map, view_Arr(roi), tree, kLift, out);
    return out;
  }
  std::vector<TUcSeed> seeds() const { return seeds(list_All(world.soup)); }
  // Of a triangle by itself.
  TUcSeed seed(uint32_t triangle) const { return seeds({triangle}).at(0); }
};

double cos_Of(double degrees) { return std::cos(degrees * kRadians); }

// Two triangles, one lying over the other.
TSoup make_Roof() {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-9, -9, 2}, {9, -9, 2}, {0, 18, 2}};
  soup.tri = {{0, 1, 2}, {3, 4, 5}};
  return soup;
}

bool is_MinusZero(double key) { return key == 0.0 && std::signbit(key); }

// ---- Boxes -------------------------------------------------------------------------------------

// Faces of the box in pairs of triangles: 0 -Z, 2 +Z, 4 -Y, 6 +X, 8 +Y, 10 -X.
TEST(Seeds, OfABoxUnderOneBandFromTheTop_AreTheCosinesToItsMostTiltedAxis) {
  const TScene scene(make_Box(10, 20, 30), {{0, 20}});
  for (const uint32_t t : {2u, 3u}) {
    EXPECT_NEAR(scene.seed(t).key, -cos_Of(20), 1e-12);
    EXPECT_EQ(scene.seed(t).band, 0);
  }
  for (uint32_t t = 4; t < 12; ++t) EXPECT_NEAR(scene.seed(t).key, -cos_Of(70), 1e-12) << t;
  for (const uint32_t t : {0u, 1u}) {
    EXPECT_TRUE(is_MinusZero(scene.seed(t).key));
    EXPECT_EQ(scene.seed(t).band, -1);
  }
}

TEST(Seeds, ATriangleSeenFaceOnScoresOne) {
  const TScene scene(make_Box(10, 20, 30), {{0, 0}, {90, 90}});
  for (const uint32_t t : {2u, 3u}) EXPECT_NEAR(scene.seed(t).key, -1, 1e-14);
  for (uint32_t t = 4; t < 12; ++t) {
    EXPECT_NEAR(scene.seed(t).key, -1, 1e-14);
    EXPECT_EQ(scene.seed(t).band, 1);
  }
}

TEST(Seeds, UnderBandsRoundBothPoles_AreJudgedAtPolar20And160) {
  const TScene scene(make_Box(10, 20, 30), {{0, 20}, {160, 180}});
  EXPECT_NEAR(scene.seed(2).key, -cos_Of(20), 1e-12);
  EXPECT_EQ(scene.seed(2).band, 0);
  EXPECT_NEAR(scene.seed(0).key, -cos_Of(20), 1e-12);
  EXPECT_EQ(scene.seed(0).band, 1);
  EXPECT_NEAR(scene.seed(6).key, -cos_Of(70), 1e-12);  // both bands show it the same
}

TEST(Seeds, UnderTheSingleBandOf0To180_AreJudgedAt180) {
  const TScene scene(make_Box(10, 20, 30), {{0, 180}});
  EXPECT_NEAR(scene.seed(0).key, -1, 1e-12);
  EXPECT_TRUE(is_MinusZero(scene.seed(2).key));
}

TEST(Seeds, TakeTheUpperBoundOnATie_ElseTheNearerTo90) {
  // A triangle that faces along +X, seen at 60 and at 120 degrees alike, and at no other alike.
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {0, 2, 1}, {0, -1, 3}};
  soup.tri = {{0, 1, 2}};
  EXPECT_NEAR(TScene(soup, {{80, 170}}).seed(0).key, -cos_Of(10), 1e-12);
  EXPECT_NEAR(TScene(soup, {{10, 100}}).seed(0).key, -cos_Of(10), 1e-12);
  // Tilted to polar 60: 60 degrees is face on, 120 is not.
  for (T3DVEC& v : soup.vtx) v = {-std::sin(30 * kRadians) * v.z, v.y, cos_Of(30) * v.z};
  ASSERT_NEAR(nml_Tri(get_Fac(soup.msh(), 0)).z, 0.5, 1e-12);
  EXPECT_NEAR(TScene(soup, {{60, 120}}).seed(0).key, -0.5, 1e-12);
  EXPECT_NEAR(TScene(soup, {{60, 120.001}}).seed(0).key, -1, 1e-9);
}

// ---- Single records ----------------------------------------------------------------------------

TEST(Seeds, ATriangleWithTwoEqualCorners_GetsThePlainKeyZeroAndNoBand) {
  TSoup soup = make_Roof();
  soup.vtx.push_back(soup.vtx[3]);  // equal by coordinates, another index
  soup.tri.push_back({3, 4, 6});
  const TScene scene(soup, {{0, 20}});
  const TUcSeed seed = scene.seed(2);
  EXPECT_EQ(seed.key, 0.0);
  EXPECT_FALSE(std::signbit(seed.key));
  EXPECT_EQ(seed.band, -1);
}

TEST(Seeds, AHiddenTriangleGetsNegativeZero_AndIsSortedBehindAllPositiveScores) {
  const TScene scene(make_Roof(), {{0, 10}});
  const std::vector<TUcSeed> seeds = scene.seeds();
  EXPECT_EQ(seeds[0].index, 1u);
  EXPECT_LT(seeds[0].key, 0);
  EXPECT_EQ(seeds[1].index, 0u);
  EXPECT_TRUE(is_MinusZero(seeds[1].key));
  EXPECT_EQ(seeds[1].key, 0.0);
  EXPECT_EQ(seeds[1].band, -1);
}

TEST(Seeds, ATriangleHiddenAlongOneBandTakesAnother) {
  const TScene scene(make_Roof(), {{0, 10}, {89, 89}, {80, 85}});
  const TUcSeed seed = scene.seed(0);
  EXPECT_NEAR(seed.key, -cos_Of(85), 1e-12);
  EXPECT_EQ(seed.band, 2);
}

TEST(Seeds, ATieKeepsTheEarlierBand) {
  EXPECT_EQ(TScene(make_Roof(), {{0, 10}, {0, 10}, {0, 10}}).seed(1).band, 0);
  EXPECT_EQ(TScene(make_Roof(), {{0, 30}, {0, 10}, {0, 10}}).seed(1).band, 1);
}

// The corners fall on one line along the axis, exactly: the triangle is seen, with no area.
TEST(Seeds, ABandThatShowsNoAreaIsNotRecorded_ThoughTheTriangleIsSeen) {
  TSoup soup;
  soup.vtx = {{0, 0, 5}, {3, 0, 5}, {3, 3, 5}};
  soup.tri = {{0, 1, 2}};
  const TScene scene(soup, {{90, 90}});
  const T3DFAC f = get_Fac(scene.world.map.msh, 0);
  ASSERT_FALSE(scene.tree.AnyHit({cen_Tri(f) + T3DVEC{0, 0, kLift}, sph_ToCar(90, 0)}));
  EXPECT_TRUE(is_MinusZero(scene.seed(0).key));
  EXPECT_EQ(scene.seed(0).band, -1);
}

TEST(Seeds, TheLiftKeepsATriangleFromHidingItself) {
  TScene scene(make_Roof(), {{0, 10}});
  std::vector<uint32_t> roi = {1};
  std::vector<TUcSeed> seeds;
  calc_Seeds(scene.world.map, view_Arr(roi), scene.tree, -kLift, seeds);
  EXPECT_TRUE(is_MinusZero(seeds[0].key));
  EXPECT_LT(scene.seed(1).key, 0);
}

TEST(Seeds, WithFourAxes_TurnTheAxisToTheNearerAzimuth) {
  TSoup soup;  // faces azimuth 30
  soup.vtx = {{0, 0, 0}, {-0.5, cos_Of(30), 0}, {0, 0, 1}};
  soup.tri = {{0, 1, 2}};
  TScene scene(soup, {{0, 60}});
  EXPECT_NEAR(scene.seed(0).key, -std::sin(60 * kRadians), 1e-12);
  scene.world.map.b_5ax = false;
  scene.world.map.w_4ax = 100;  // azimuths 10 and 190
  EXPECT_NEAR(scene.seed(0).key, -std::sin(60 * kRadians) * cos_Of(20), 1e-12);
  scene.world.map.b_ini = true;  // is not asked
  EXPECT_NEAR(scene.seed(0).key, -std::sin(60 * kRadians) * cos_Of(20), 1e-12);
}

// ---- Lists -------------------------------------------------------------------------------------

TEST(Seeds, OfAnEmptyListAreNone) {
  const TScene scene(make_Roof(), {{0, 10}});
  EXPECT_TRUE(scene.seeds(std::vector<uint32_t>{}).empty());
}

TEST(Seeds, TheIndexIsThePlaceInTheList_AndARepeatedTriangleHasARecordForEach) {
  const TScene scene(make_Roof(), {{0, 10}});
  const std::vector<TUcSeed> seeds = scene.seeds({0, 1, 0, 1});
  ASSERT_EQ(seeds.size(), 4u);
  EXPECT_EQ(seeds[0].index, 1u);
  EXPECT_EQ(seeds[1].index, 3u);
  EXPECT_EQ(seeds[2].index, 0u);
  EXPECT_EQ(seeds[3].index, 2u);
}

TEST(Seeds, DoNotDependOnTheRegionsOfTheMap) {
  TScene scene(make_Bumpy(5, 5), {{0, 40}});
  const std::vector<TUcSeed> before = scene.seeds();
  scene.world.start({3, 4, 5});
  TUcMoved moved;
  ASSERT_TRUE(scene.world.map.apply_Move(4, 1, moved));
  const std::vector<TUcSeed> after = scene.seeds();
  for (size_t i = 0; i < before.size(); ++i) {
    EXPECT_EQ(before[i].key, after[i].key);
    EXPECT_EQ(before[i].index, after[i].index);
  }
}

TEST(Seeds, NineEqualOnes_AreNotLeftInTheirOrder) {
  const TScene scene(make_Roof(), {{0, 20}});
  std::vector<uint32_t> order;
  for (const TUcSeed& seed : scene.seeds(std::vector<uint32_t>(9, 1))) order.push_back(seed.index);
  EXPECT_EQ(order, (std::vector<uint32_t>{7, 6, 5, 8, 4, 2, 1, 0, 3}));
}

// ---- Against the plain form ---------------------------------------------------------------------

// Every triangle asked, and the sort by recursion.
std::vector<TUcSeed> plain_Seeds(const CMap& map, const std::vector<uint32_t>& roi) {
  std::vector<TUcSeed> seeds;
  for (const uint32_t t : roi) {
    seeds.push_back({0, static_cast<uint32_t>(seeds.size()), -1});
    const T3DFAC f = get_Fac(map.msh, t);
    if (f.a == f.b || f.b == f.c || f.c == f.a) continue;
    const T3DVEC n = nml_Tri(f), m = cen_Tri(f) + kLift * n;
    double az = car_ToSph(n).y;
    if (!map.b_5ax) {
      double w1 = map.w_4ax - 90, w2 = map.w_4ax - 270;
      if (w1 < 0) w1 += 360;
      if (w2 < 0) w2 += 360;
      az = std::abs(w2 - az) < std::abs(w1 - az) ? w2 : w1;
    }
    double best = 0;
    for (uint32_t k = 0; k < map.bands.size(); ++k) {
      const double lo = map.bands[k].low, hi = map.bands[k].high;
      const double q = std::abs(90 - hi) <= std::abs(90 - lo) ? hi : lo;
      const T3DVEC d = sph_ToCar(q, az);
      bool hit = false;
      for (uint32_t o = 0; o < map.msh.n_tri && !hit; ++o) {
        const T3DFAC other = get_Fac(map.msh, o);
        C3DAABB box;
        box.from_Tri(other);
        hit = reference::hit_Box({m, d}, box) && reference::hit_Tri({m, d}, other);
      }
      if (hit) continue;
      const auto onto = [&](const T3DVEC& v) { return v + dot(d, m - v) * d; };
      const double r = area_Tri(T3DFAC{onto(f.a), onto(f.b), onto(f.c)}) / area_Tri(f);
      if (r > best) {
        best = r;
        seeds.back().band = static_cast<int32_t>(k);
      }
    }
    seeds.back().key = std::copysign(best, -1.0);
  }
  reference::plain_Sort(seeds.data(), 0, static_cast<int64_t>(seeds.size()) - 1,
                        [](const TUcSeed& s) { return s.key; });
  return seeds;
}

TEST(Seeds, EqualThePlainFormToTheLastBit) {
  reference::Random random(660);
  for (uint32_t round = 0; round < scale_Cases(40); ++round) {
    std::vector<TUcBand> bands;
    for (uint64_t k = 0; k <= random.below(round % 5 == 0 ? 8 : 3); ++k) {
      const double low = random.chance(0.3) ? 0 : random.real(0, 180);
      bands.push_back({low, random.chance(0.2) ? 180 - low : random.real(low, 180)});
    }
    TScene scene(round % 4 == 0   ? make_Bumpy(6, 6)
                 : round % 4 == 1 ? make_Sphere(6, 8, 4)
                 : round % 4 == 2 ? make_Tangle(random, 12, 40)
                                  : make_Box(3, 2, 1),
                 bands);
    scene.world.map.b_5ax = random.chance(0.6);
    scene.world.map.w_4ax = random.real(-360, 360);
    std::vector<uint32_t> roi;
    for (uint32_t i = 0; i < scene.world.soup.tri.size(); ++i)
      roi.push_back(static_cast<uint32_t>(random.below(scene.world.soup.tri.size())));
    const std::vector<TUcSeed> seeds = scene.seeds(roi), plain = plain_Seeds(scene.world.map, roi);
    for (size_t i = 0; i < plain.size(); ++i) {
      ASSERT_EQ(seeds[i].key, plain[i].key) << "round " << round << ", place " << i;
      ASSERT_EQ(std::signbit(seeds[i].key), std::signbit(plain[i].key));
      ASSERT_EQ(seeds[i].index, plain[i].index) << "round " << round << ", place " << i;
      ASSERT_EQ(seeds[i].band, plain[i].band);
    }
  }
}

TEST(Seeds, AreTheSame_HoweverManyThreadsScoreThem) {
  bodies::TBody body = bodies::make_Ring(3000);
  const TScene scene({body.points, body.triangles}, {{0, 20}, {160, 180}, {80, 100}});
  const int before = omp_get_max_threads();
  omp_set_num_threads(1);
  const std::vector<TUcSeed> alone = scene.seeds();
  for (const int threads : {2, 3, 7}) {
    omp_set_num_threads(threads);
    const std::vector<TUcSeed> shared = scene.seeds();
    ASSERT_EQ(shared.size(), alone.size());
    for (size_t i = 0; i < alone.size(); ++i) {
      ASSERT_EQ(shared[i].key, alone[i].key) << "place " << i << ", " << threads << " threads";
      ASSERT_EQ(shared[i].index, alone[i].index);
      ASSERT_EQ(shared[i].band, alone[i].band);
    }
  }
  omp_set_num_threads(before);
}

}  // namespace
}  // namespace undercut
