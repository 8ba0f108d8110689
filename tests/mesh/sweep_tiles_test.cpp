// Tiles of a sweep that are answered in another way than most: by depth where many layers lie
// behind one another, and in several turns where they hold many triangles or rays.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <numeric>

#include "mesh/sweep.h"
#include "tests/support/intensity.h"
#include "tests/support/random_bodies.h"
#include "tests/support/sweep_cases.h"
#include "tests/support/threads.h"

namespace undercut::tests {

namespace {

constexpr uint64_t kSeed = 20241126;

// A mesh and rays that are made at random.
class CMaker {
 public:
  explicit CMaker(uint64_t seed) : random_(seed) {}

  TSoup soup;

  void add(const T3DVEC& a, const T3DVEC& b, const T3DVEC& c) {
    const auto first = static_cast<uint32_t>(soup.vtx.size());
    soup.vtx.insert(soup.vtx.end(), {a, b, c});
    soup.tri.push_back({first, first + 1, first + 2});
  }

  // Sheets of nx by ny unit squares over one another, from z = 0 to z = height.
  void add_Layers(uint32_t layers, uint32_t nx, uint32_t ny, double height) {
    std::vector<uint32_t> order;  // lest it be that of their depths
    for (uint32_t k = 0; k < layers; ++k) order.push_back(k);
    for (size_t k = layers; k > 1; --k) std::swap(order[k - 1], order[random_.below(k)]);
    for (const uint32_t k : order) {
      TSoup layer = make_Grid(nx, ny);
      for (T3DVEC& v : layer.vtx) v.z = height * k / (layers - 1);
      join(soup, layer);
    }
  }

  // Triangles of about this size, with a corner in a box.
  void add_Small(uint32_t count, double size, const C3DAABB& box) {
    for (uint32_t t = 0; t < count; ++t) {
      const T3DVEC a = any_Point(box);
      const T3DVEC b = a + random_.triple(-size, size);
      add(a, b, a + random_.triple(-size, size));
    }
  }

  T3DVEC any_Point(const C3DAABB& box) {
    const double x = random_.real(box.min.x, box.max.x), y = random_.real(box.min.y, box.max.y);
    return {x, y, random_.real(box.min.z, box.max.z)};
  }

  C3DAABB mesh_Box() const {
    C3DAABB box;
    for (const T3DVEC& v : soup.vtx) box.add(v);
    return box;
  }

  THostile look(const T3DVEC& direction) const {
    THostile out;
    out.soup = soup;
    out.direction = direction;
    return out;
  }

  // Adds rays from anywhere in a box, half of them from both sides of a face, an edge or a corner
  // of some triangle, and from so close that single precision can't tell.
  void aim(uint32_t rays, const C3DAABB& box, THostile& out) {
    for (const size_t end = out.orgs.size() + rays; out.orgs.size() < end;) {
      const T3DVEC org = random_.chance(0.5) ? any_Point(box) : aim_AtTriangle(out.direction);
      C3DAABB reach = box;
      reach.add(org);
      if (reach.min == box.min && reach.max == box.max) put(org, out);
    }
  }

  void put(const T3DVEC& org, THostile& out) {
    out.orgs.push_back(org);
    out.box.add(org);
    out.sight.push_back(static_cast<uint8_t>(1 + random_.below(3)));
  }

  T3DVEC aim_AtTriangle(const T3DVEC& direction) {
    const T3DFAC f = get_Fac(soup.msh(), static_cast<uint32_t>(random_.below(soup.tri.size())));
    double s = random_.real(0, 1);
    const double t = random_.chance(0.5) ? 0 : random_.real(0, 1 - s);
    if (t == 0 && random_.chance(0.3)) s = std::round(s);
    const double away = random_.real(-1, 1) * std::pow(2.0, random_.real(-50, 2));
    return f.a + s * (f.b - f.a) + t * (f.c - f.a) + away * direction;
  }

 private:
  reference::Random random_;
};

C3DAABB make_Cube(const T3DVEC& low, const T3DVEC& high) {
  C3DAABB box;
  box.add(low);
  box.add(high);
  return box;
}

// A list of all rays turned round, and some twice.
std::vector<uint32_t> list_Back(size_t count) {
  std::vector<uint32_t> list;
  for (size_t i = count; i > 0; --i) {
    list.push_back(static_cast<uint32_t>(i - 1));
    if (i % 5 == 0) list.push_back(static_cast<uint32_t>(i - 1));
  }
  return list;
}

// A sweep of each form answers as a loop over all triangles does, with and without a list, on up to
// three threads; and there are hits and misses to tell.
void expect_Plain(THostile& hostile, const C3DTriAABBTree& tree) {
  const std::vector<uint8_t> want = leave_Plain(hostile);
  const std::vector<uint32_t> list = list_Back(want.size());
  std::vector<uint8_t> asked, listed;
  for (const uint32_t i : list) asked.push_back(hostile.sight[i]), listed.push_back(want[i]);
  const size_t changed = static_cast<size_t>(
      std::inner_product(want.begin(), want.end(), hostile.sight.begin(), 0, std::plus<>(),
                         [](uint8_t a, uint8_t b) { return a != b ? 1 : 0; }));
  const auto blind = static_cast<size_t>(std::count(want.begin(), want.end(), 0));
  EXPECT_GT(changed, want.size() / 10);
  EXPECT_LT(blind, want.size() - want.size() / 20);
  for (const TForm& form : list_Forms()) {
    CSweep sweep;
    ASSERT_TRUE(sweep.ini_Msh(tree, form.lanes));
    for (const int count : {1, 2, 3}) {
      const CThreads threads(count);
      std::vector<uint8_t> sight = hostile.sight;
      ASSERT_TRUE(sweep.clear_Hit(hostile.direction, take_Rays(hostile, sight)));
      EXPECT_EQ(sight, want) << form.name << ", threads " << count;
      sight = asked;
      ASSERT_TRUE(
          sweep.clear_Hit(hostile.direction, {hostile.orgs.data(), hostile.box, list.data(),
                                              static_cast<uint32_t>(list.size()), sight.data()}));
      EXPECT_EQ(sight, listed) << form.name << ", threads " << count << ", listed";
    }
  }
}

// Likewise, and no tile is left to the tree.
void expect_Plain(THostile hostile) {
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Prepare(hostile.soup.msh()));
  expect_Plain(hostile, tree);
  EXPECT_FALSE(tree.has_Rays());
}

const T3DVEC kWays[] = {{0, 0, 1}, {0.01, -0.02, 1}};

}  // namespace

// Half of the place is covered many times, the other half hardly, so that there each triangle
// counts.
TEST(SweepTiles, AnswersDeepOnes_AsALoopOverAllTriangles_ForAnyNumberOfThreads) {
  std::printf("seed %llu\n", static_cast<unsigned long long>(kSeed));
  for (uint32_t round = 0; round < scale_Cases(2); ++round)
    for (const uint32_t layers : {40u, 150u})
      for (const T3DVEC& way : kWays) {
        CMaker maker(kSeed + round);
        maker.add_Small(30, 0.5, make_Cube({2.3, 0, 0}, {4, 4, 2}));
        maker.add_Layers(layers, 2, 4, 2);
        maker.add_Small(30, 0.5, make_Cube({2.3, 0, 0}, {4, 4, 2}));
        THostile hostile = maker.look(way);
        maker.aim(900, maker.mesh_Box(), hostile);
        expect_Plain(hostile);
      }
}

// As many triangles and rays in one tile as take several turns each, and some of them deep.
TEST(SweepTiles, AnswersThoseOfManyTrianglesAndRays_InTurns) {
  for (uint32_t round = 0; round < scale_Cases(1); ++round)
    for (const T3DVEC& way : kWays) {
      const C3DAABB place = make_Cube({8, 8, -0.6}, {9, 9, 0.6});
      CMaker maker(kSeed + 100 + round);
      maker.soup = make_Bumpy(40, 40);
      maker.add_Small(1300, 0.04, place);
      THostile flat = maker.look(way);
      maker.aim(1900, place, flat);
      maker.aim(1500, maker.mesh_Box(), flat);
      expect_Plain(flat);

      CMaker layered(kSeed + 200 + round);
      layered.add_Layers(120, 2, 3, 2);
      layered.add_Small(200, 0.3, make_Cube({2.3, 0.3, 0}, {3.6, 2.6, 2}));
      layered.add_Layers(120, 2, 3, 2);
      THostile deep = layered.look(way);
      layered.aim(3600, make_Cube({1.4, 0, 0}, {3.7, 3, 2}), deep);
      expect_Plain(deep);
    }
}

// Walls seen end-on, and many triangles around one point.
TEST(SweepTiles, AreLeftToTheTree_WhereTrianglesCrowd) {
  CMaker walls(kSeed + 500), point(kSeed + 501);
  for (uint32_t w = 0; w < 2600; ++w) {
    const double x = 0.002 * w;
    walls.add({x, 0, 0}, {x, 7, 0}, {x + 1e-4, 0, 7});
  }
  point.soup = make_Bumpy(12, 12);
  point.add_Small(2600, 0.02, make_Cube({7, 7, -0.5}, {7.4, 7.4, 0.5}));
  for (CMaker* maker : {&walls, &point}) {
    THostile hostile = maker->look(kWays[1]);
    maker->aim(3000, maker == &walls ? walls.mesh_Box() : make_Cube({7, 7, -0.5}, {7.4, 7.4, 0.5}),
               hostile);
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Prepare(hostile.soup.msh()));
    expect_Plain(hostile, tree);
    EXPECT_TRUE(tree.has_Rays());
  }
}

TEST(SweepTiles, AskTheOneTriangleThatReachesOutOfItsLayer_WhereverItStands) {
  constexpr uint32_t kLayers = 300;
  for (const double out : {2000.0, -2000.0})
    for (uint32_t tall = 0; tall < kLayers; ++tall) {
      CMaker maker(kSeed);
      for (uint32_t k = 0; k < kLayers; ++k) {
        const double z = k, end = k == tall ? z + out : z;
        maker.add({0, 0, z}, {1, 0, end}, {0, 1, end});
      }
      THostile hostile = maker.look({0, 0, 1});
      const double beyond = out > 0 ? 400.0 : -100.0;
      for (const double x : {0.2, 0.3, 0.4}) maker.put({x, 0.3, beyond}, hostile);
      for (uint8_t& sight : hostile.sight) sight = kBoth;
      const std::vector<uint8_t> want = leave_Plain(hostile);
      ASSERT_EQ(std::ranges::count(want, 0), 3);
      ASSERT_TRUE(sweeps(hostile)) << tall;
    }
}

// Where the tree is there already it takes less to leave a tile to it.
TEST(SweepTiles, AreLeftToATreeThatIsThere_ThoughTheyAreDeep) {
  CMaker maker(kSeed + 600);
  maker.add_Layers(1300, 2, 2, 2);
  THostile hostile = maker.look(kWays[1]);
  maker.aim(1200, maker.mesh_Box(), hostile);
  maker.aim(200, make_Cube({0, 0, 2}, {2, 2, 2.02}), hostile);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.BuildRays(hostile.soup.msh()));
  expect_Plain(hostile, tree);
}

// More tiles than runs of them, most of the rays in a few.
TEST(SweepTiles, AreSharedOut_WhereverTheRaysAre) {
  CMaker maker(kSeed + 300);
  maker.soup = make_Bumpy(70, 70);
  maker.add_Small(300, 2, make_Cube({0, 0, -1}, {70, 70, 1}));
  for (const double corner : {0.0, 63.0}) {
    THostile hostile = maker.look(kWays[1]);
    maker.aim(800, make_Cube({corner, corner, -1}, {corner + 7, corner + 7, 1}), hostile);
    maker.aim(800, make_Cube({0, 0, -1}, {70, 70, 1}), hostile);
    expect_Plain(hostile);
  }
}

// Boxes as thin as a sheet, seen end-on or nearly so, and rays along their walls, on both sides.
TEST(SweepTiles, HoldThinWalls_AgainstRaysBesideThem) {
  for (uint32_t round = 0; round < scale_Cases(1); ++round)
    for (const T3DVEC& way : {T3DVEC{0, 0, 1}, T3DVEC{1e-9, 0, 1}, T3DVEC{1e-6, -1e-7, 1},
                              T3DVEC{0, 3e-5, 1}, T3DVEC{0.01, 0.02, 1}}) {
      reference::Random random(kSeed + 400 + round);
      CMaker maker(kSeed + 400 + round);
      for (uint32_t k = 0; k < 100; ++k) {
        TSoup wall = make_Box(0.05, 0.8, 0.5 + 0.02 * k);
        for (T3DVEC& v : wall.vtx) v += T3DVEC{1.0 * (k % 10), 1.0 * (k / 10), 0.1 * (k % 7)};
        join(maker.soup, wall);
      }
      const C3DAABB box = maker.mesh_Box();
      THostile hostile = maker.look(way);
      while (hostile.orgs.size() < 2000) {
        const T3DVEC corner = maker.soup.vtx[random.below(maker.soup.vtx.size())];
        const double side = random.chance(0.5) ? 1 : -1, along = random.real(-0.9, 0.9);
        const double off = random.chance(0.2) ? 0 : side * std::pow(2.0, random.real(-52, -4));
        const double z = random.chance(0.5) ? random.real(box.min.z, box.max.z) : corner.z;
        T3DVEC org = corner + (random.chance(0.5) ? T3DVEC{off, along, 0} : T3DVEC{along, off, 0});
        org.x = std::clamp(org.x, box.min.x - 0.1, box.max.x + 0.1);
        org.y = std::clamp(org.y, box.min.y - 0.1, box.max.y + 0.1);
        maker.put({org.x, org.y, z}, hostile);
      }
      expect_Plain(hostile);
    }
}

}  // namespace undercut::tests
