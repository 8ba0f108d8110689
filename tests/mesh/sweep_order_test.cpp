// The order of rays and triangles in a tile.
#include "mesh/sweep_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <numeric>
#include <vector>

#include "tests/reference/random_geometry.h"
#include "tests/support/intensity.h"

namespace undercut::tests {

namespace {

constexpr uint64_t kSeed = 20241122;
constexpr uint32_t kDepths = 255;  // widths of a key between the least and the greatest depth

// A tile of side `side` from (x, y) on; or the middle one of three by three.
TTiles make_Tile(float x, float y, float side) { return {x, y, 1.0f / side, 1, 1}; }
TTiles make_Nine(float x, float y, float side) { return {x - side, y - side, 1.0f / side, 3, 3}; }

// Rays of a sweep, and those of them that lie in one tile.
struct TRays {
  TTiles tiles;
  std::vector<float> x, y, z;
  std::vector<uint32_t> spot, list;

  explicit TRays(const TTiles& over) : tiles(over) {}
  void add(float at_x, float at_y, float at_z) {
    list.push_back(static_cast<uint32_t>(x.size()));
    x.push_back(at_x), y.push_back(at_y), z.push_back(at_z);
    spot.push_back(tiles.spot(at_x, at_y));
  }
  TRayPoints points() const { return {x.data(), y.data(), z.data(), spot.data()}; }
  uint32_t count() const { return static_cast<uint32_t>(list.size()); }
  void shuffle(reference::Random& random) {
    for (size_t i = list.size(); i > 1; --i) std::swap(list[i - 1], list[random.below(i)]);
  }
};

float any_Float(reference::Random& random, double low, double high) {
  return static_cast<float>(random.real(low, high));
}

// `count` of 3000 rays, in any order, around a tile from (low, low) to (high, high).
TRays make_Rays(reference::Random& random, const TTiles& tiles, uint32_t count, double low,
                double high) {
  TRays rays(tiles);
  for (uint32_t i = 0; i < 3000; ++i) {
    const float x = any_Float(random, low, high), y = any_Float(random, low, high);
    rays.add(x, y, any_Float(random, -1, 1));
  }
  rays.shuffle(random);
  rays.list.resize(count);
  return rays;
}

// The rays that were listed, each at its own place, and the last again up to a whole group.
void expect_Same(const TRays& rays, const TTileRays& out) {
  ASSERT_EQ(out.count, rays.count());
  std::vector<uint32_t> want = rays.list, got(out.ray, out.ray + out.count);
  std::sort(want.begin(), want.end());
  std::sort(got.begin(), got.end());
  EXPECT_EQ(got, want);
  for (uint32_t i = 0; i < (out.count + kGroup - 1) / kGroup * kGroup; ++i) {
    const uint32_t ray = out.ray[std::min(i, out.count - 1)];
    ASSERT_TRUE(out.x[i] == rays.x[ray] && out.y[i] == rays.y[ray] && out.z[i] == rays.z[ray])
        << i << " of " << out.count;
  }
}

TTileRays order(const TRays& rays, bool by_depth) {
  TTileRays out;
  out.way = -1.0f;
  order_Rays(rays.points(), rays.list.data(), rays.count(), by_depth, out);
  EXPECT_EQ(out.way, -1.0f);
  return out;
}

// From each ray to the next, in the plane.
double mean_Step(const TTileRays& rays) {
  double sum = 0;
  for (uint32_t i = 1; i < rays.count; ++i)
    sum += std::hypot(rays.x[i] - rays.x[i - 1], rays.y[i] - rays.y[i - 1]);
  return sum / (rays.count - 1);
}

// Greatest first: how far any depth is below the greatest before it.
template <typename Depth>
double worst_Fall(uint32_t count, Depth depth) {
  double worst = 0, highest = depth(0);
  for (uint32_t i = 1; i < count; ++i) {
    highest = std::max(highest, depth(i));
    worst = std::max(worst, highest - depth(i));
  }
  return worst;
}

constexpr uint32_t kCounts[] = {1, 2, 15, 16, 17, 31, 64, 500, kMostRays - 1, kMostRays};

// Triangles whose first corner alone has a depth that counts.
struct TLayers {
  std::vector<TFlatVec> vtx;
  std::vector<T3DTRI> tri;
  std::vector<uint32_t> ids;

  explicit TLayers(const std::vector<float>& depths) {
    for (const float z : depths) {
      const auto first = static_cast<uint32_t>(vtx.size());
      vtx.insert(vtx.end(), {{9, 9, -z, 9}, {9, 9, z, 9}, {9, 9, 0.5f - z, 9}});
      tri.push_back({first + 1, first, first + 2});
      ids.push_back(static_cast<uint32_t>(ids.size()));
    }
  }
  TFlatMesh mesh() const { return {vtx.data(), tri.data(), 0}; }
  double depth(uint32_t t) const { return vtx[tri[t].a].z; }
};

// Sorts them along a way; they must be those that were listed. What they fall by, at most.
double sort_Along(TLayers layers, float way) {
  std::vector<uint32_t> ids = layers.ids;
  order_Triangles(layers.mesh(), way, static_cast<uint32_t>(ids.size()), ids.data());
  const double fall = worst_Fall(static_cast<uint32_t>(ids.size()),
                                 [&](uint32_t i) { return way * layers.depth(ids[i]); });
  std::sort(ids.begin(), ids.end());
  std::sort(layers.ids.begin(), layers.ids.end());
  EXPECT_EQ(ids, layers.ids);
  return fall;
}

}  // namespace

TEST(SweepOrder, OfRays_KeepsEachWithItsPlace_AndRepeatsTheLast) {
  std::printf("seed %llu\n", static_cast<unsigned long long>(kSeed));
  reference::Random random(kSeed);
  for (uint32_t round = 0; round < scale_Cases(20); ++round)
    for (const uint32_t count : kCounts)
      for (const bool by_depth : {false, true}) {
        const TRays rays = make_Rays(random, make_Nine(0.25f, 0.25f, 0.25f), count, 0.25, 0.5);
        expect_Same(rays, order(rays, by_depth));
      }
}

TEST(SweepOrder, OfRays_KeepsThoseOutsideOfTheTile_AndThoseInOnePlace) {
  reference::Random random(kSeed + 1);
  const TTiles tile = make_Tile(-0.25f, 0.5f, 0.125f);
  for (const uint32_t count : kCounts)
    for (const bool by_depth : {false, true}) {
      const TRays around = make_Rays(random, tile, count, -2, 2);
      expect_Same(around, order(around, by_depth));
      TRays one(tile);
      for (uint32_t i = 0; i < count; ++i) one.add(-0.2f, 0.6f, 0.7f);
      one.shuffle(random);
      expect_Same(one, order(one, by_depth));
      TRays edges(tile);  // of the tile, and far away
      for (uint32_t i = 0; i < count; ++i)
        edges.add(i % 3 == 0   ? -0.25f
                  : i % 3 == 1 ? -0.125f
                               : -1e30f,
                  i % 4 == 0   ? 0.5f
                  : i % 4 == 1 ? 0.625f
                               : 1e30f,
                  static_cast<float>(i));
      expect_Same(edges, order(edges, by_depth));
    }
}

// Cells are as many as hold two rays each, or four in the smallest; each cell is a neighbour of the
// one before it along the curve.
TEST(SweepOrder, OfRays_StepsFromCellToNeighbouringCell) {
  reference::Random random(kSeed + 2);
  const uint32_t cases[][2] = {{2, 2}, {4, 2}, {8, 2}, {16, 1}, {16, 2}, {16, 4}};
  for (const auto& [side, per_cell] : cases) {
    const float cell = 0.5f / static_cast<float>(side);
    TRays rays(side == 4 ? make_Tile(-0.25f, 0.125f, 0.5f) : make_Nine(-0.25f, 0.125f, 0.5f));
    for (uint32_t k = 0; k < side * side * per_cell; ++k)
      rays.add(-0.25f + cell * (0.5f + static_cast<float>(k % side)),
               0.125f + cell * (0.5f + static_cast<float>(k / side % side)), 0);
    rays.shuffle(random);
    const TTileRays out = order(rays, false);
    expect_Same(rays, out);
    for (uint32_t i = 1; i < out.count; ++i) {
      const float step = std::fabs(out.x[i] - out.x[i - 1]) + std::fabs(out.y[i] - out.y[i - 1]);
      ASSERT_NEAR(step, i % per_cell == 0 ? cell : 0.0f, 1e-6f) << side << ", " << i;
    }
  }
}

TEST(SweepOrder, OfRays_KeepsNeighboursTogether) {
  reference::Random random(kSeed + 3);
  for (const uint32_t count : {100u, 500u, kMostRays}) {
    const TRays rays = make_Rays(random, make_Tile(0, 0, 1), count, 0, 1);
    const TTileRays out = order(rays, false);
    // In a random order it is 0.52, and in the best one about 0.71 over the root of the count.
    EXPECT_LT(mean_Step(out), 1.6 / std::sqrt(count)) << count;
  }
}

TEST(SweepOrder, OfRaysByDepth_IsSorted_UpToTheWidthOfAKey) {
  reference::Random random(kSeed + 4);
  for (const uint32_t count : kCounts) {
    const TRays rays = make_Rays(random, make_Tile(0, 0, 1), count, 0, 1);
    const TTileRays out = order(rays, true);
    const auto [low, high] = std::minmax_element(out.z, out.z + count);
    EXPECT_LE(worst_Fall(count, [&](uint32_t i) { return double{out.z[i]}; }),
              1.001 * (*high - *low) / kDepths)
        << count;
  }
  TRays levels(make_Tile(0, 0, 1));  // a key each
  for (uint32_t k = 0; k < 1000; ++k)
    levels.add(0, 0, static_cast<float>(k % (kDepths + 1)) - 100.0f);
  levels.shuffle(random);
  const TTileRays out = order(levels, true);
  expect_Same(levels, out);
  EXPECT_TRUE(std::is_sorted(out.z, out.z + out.count));
}

TEST(SweepOrder, OfRaysByDepth_KeepsAll_WhereDepthsAreFarFromEven) {
  reference::Random random(kSeed + 5);
  for (const uint32_t count : kCounts) {
    TRays rays = make_Rays(random, make_Tile(0, 0, 1), count, 0, 1);
    for (float& z : rays.z) z = static_cast<float>(std::pow(2.0, random.real(-90, 0)));
    expect_Same(rays, order(rays, true));
  }
}

TEST(SweepOrder, OfTriangles_IsSortedAlongTheWay_UpToTheWidthOfAKey) {
  reference::Random random(kSeed + 6);
  for (uint32_t round = 0; round < scale_Cases(20); ++round)
    for (const uint32_t count : {1u, 2u, 3u, 129u, 600u, 5000u}) {
      std::vector<float> depths;
      for (uint32_t t = 0; t < count; ++t) depths.push_back(any_Float(random, -0.75, 1));
      const auto [low, high] = std::minmax_element(depths.begin(), depths.end());
      const double width = 1.001 * (*high - *low) / kDepths;
      EXPECT_LE(sort_Along(TLayers(depths), 1.0f), width) << count;
      EXPECT_LE(sort_Along(TLayers(depths), -1.0f), width) << count;
    }
}

TEST(SweepOrder, OfTriangles_IsExact_WhereEachDepthHasAKey) {
  reference::Random random(kSeed + 7);
  std::vector<float> depths;
  for (uint32_t t = 0; t < 3000; ++t)
    depths.push_back(static_cast<float>(t < 2 ? t * kDepths : random.below(kDepths + 1)));
  for (int turn = 0; turn < 3; ++turn) {
    EXPECT_EQ(sort_Along(TLayers(depths), 1.0f), 0.0);
    EXPECT_EQ(sort_Along(TLayers(depths), -1.0f), 0.0);
    std::sort(depths.begin(), depths.end());
    if (turn == 1) std::reverse(depths.begin(), depths.end());
  }
}

TEST(SweepOrder, OfTriangles_KeepsAll_AtOneDepth_AndWhereDepthsAreFarFromEven) {
  reference::Random random(kSeed + 8);
  for (const uint32_t count : {1u, 2u, 700u}) {
    EXPECT_EQ(sort_Along(TLayers(std::vector<float>(count, 0.3f)), 1.0f), 0.0);
    EXPECT_EQ(sort_Along(TLayers(std::vector<float>(count, -0.3f)), -1.0f), 0.0);
    std::vector<float> depths;
    for (uint32_t t = 0; t < count; ++t)
      depths.push_back(static_cast<float>(std::pow(2.0, random.real(-90, 0))));
    sort_Along(TLayers(depths), 1.0f);
    sort_Along(TLayers(depths), -1.0f);
  }
}

TEST(SweepOrder, OfSomeTriangles_TouchesNoOthers) {
  reference::Random random(kSeed + 9);
  std::vector<float> depths;
  for (uint32_t t = 0; t < 400; ++t) depths.push_back(any_Float(random, -1, 1));
  const TLayers layers(depths);
  std::vector<uint32_t> ids = layers.ids;
  std::reverse(ids.begin(), ids.end());
  const std::vector<uint32_t> before = ids;
  order_Triangles(layers.mesh(), 1.0f, 200, &ids[100]);
  for (uint32_t i = 0; i < 100; ++i) {
    EXPECT_EQ(ids[i], before[i]);
    EXPECT_EQ(ids[300 + i], before[300 + i]);
  }
  std::vector<uint32_t> some(&ids[100], &ids[300]), want(&before[100], &before[300]);
  std::sort(some.begin(), some.end());
  std::sort(want.begin(), want.end());
  EXPECT_EQ(some, want);
}

}  // namespace undercut::tests
