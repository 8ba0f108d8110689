// All rays along one direction in one pass: the answers of AnyHit.
#include "mesh/sweep.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "tests/support/intensity.h"
#include "tests/support/sweep_cases.h"
#include "tests/support/threads.h"

namespace undercut::tests {

namespace {

constexpr uint64_t kSeed = 20241103;

}  // namespace

TEST(Sweep, EqualsALoopOverAllTriangles_ForAnyNumberOfThreads) {
  std::printf("seed %llu\n", static_cast<unsigned long long>(kSeed));
  uint32_t taken = 0;
  CSweep reused[4];
  for (uint32_t round = 0; round < scale_Cases(40); ++round) {
    THostile hostile = make_Hostile(kSeed + round, 60 + round % 7 * 30, 400);
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Prepare(hostile.soup.msh()));
    const std::vector<uint8_t> want = leave_Plain(hostile);
    const CThreads threads(round % 3 == 0 ? 1 : round % 3 == 1 ? 2 : 16);
    uint32_t k = 0;
    for (const TForm& form : list_Forms()) {
      CSweep& sweep = reused[k++];
      if (!sweep.ini_Msh(tree, form.lanes)) continue;
      for (int turn = 0; turn < 2; ++turn) {  // the second along what the first leaves in memory
        std::vector<uint8_t> sight = hostile.sight;
        if (!sweep.clear_Hit(hostile.direction, take_Rays(hostile, sight))) break;
        ++taken;
        ASSERT_EQ(sight, want) << form.name << ", round " << round << ", kind " << hostile.kind;
      }
    }
  }
  EXPECT_GT(taken, 40u);
}

TEST(Sweep, FollowsTheList_InItsOrder_WithRepeats) {
  reference::Random random(kSeed);
  for (uint32_t round = 0; round < scale_Cases(40); ++round) {
    THostile hostile = make_Hostile(kSeed + round, 60, 300);
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Prepare(hostile.soup.msh()));
    std::vector<uint32_t> list;
    std::vector<uint8_t> asked;
    for (uint64_t n = random.below(700); n > 0; --n) {
      list.push_back(static_cast<uint32_t>(random.below(300)));
      asked.push_back(static_cast<uint8_t>(random.below(8)));
    }
    for (const TForm& form : list_Forms()) {
      std::vector<uint8_t> sight = asked;
      CSweep sweep;
      if (!sweep.ini_Msh(tree, form.lanes) ||
          !sweep.clear_Hit(hostile.direction, {hostile.orgs.data(), hostile.box, list.data(),
                                               static_cast<uint32_t>(list.size()), sight.data()}))
        continue;
      for (uint32_t n = 0; n < list.size(); ++n)
        ASSERT_EQ(sight[n], leave_Plain(hostile.soup.msh(), hostile.orgs[list[n]],
                                        hostile.direction, asked[n]))
            << form.name << ", round " << round << ", entry " << n;
    }
  }
}

TEST(Sweep, TakesMeshesAndDirections_NearAndFar) {
  for (const double scale : {1e-12, 1e-6, 1.0, 100.0})
    for (const double away : {0.0, 1.0, 60.0}) {
      TSoup soup = make_Bumpy(12, 12);
      for (T3DVEC& v : soup.vtx) v = scale * (v + 10 * away * T3DVEC{1, -1, 0.5});
      THostile hostile = make_Case(soup, unit(T3DVEC{0.1, 0.2, 1}), 0.25 * scale);
      EXPECT_TRUE(sweeps(hostile)) << scale << " " << away;
    }
}

TEST(Sweep, TakesNoMesh_WithoutNumbersOrOutOfRange) {
  const double infinite = std::numeric_limits<double>::infinity();
  for (const double odd : {infinite, -infinite, std::nan(""), 1e300}) {
    THostile hostile = make_Case(make_Grid(12, 12), {0, 0, 1});
    hostile.soup.vtx[7].y = odd;
    EXPECT_FALSE(sweeps(hostile)) << odd;
  }
  THostile point = make_Case(make_Grid(12, 12), {0, 0, 1});
  for (T3DVEC& v : point.soup.vtx) v = {1, 2, 3};
  EXPECT_FALSE(sweeps(point));
}

TEST(Sweep, TakesNoDirection_ThatOrgAndDirDontKeep) {
  const double nan = std::nan("");
  for (const T3DVEC& direction :
       {T3DVEC{0, 0, 0}, T3DVEC{0, nan, 1}, T3DVEC{1e-13, 0, 0}, T3DVEC{0, 2e12, 0},
        T3DVEC{0, 0, 1e-5}, T3DVEC{0, 0, std::numeric_limits<double>::infinity()}}) {
    THostile hostile = make_Case(make_Grid(12, 12), {0, 0, 1});
    hostile.direction = direction;
    EXPECT_FALSE(sweeps(hostile)) << direction.x << " " << direction.y << " " << direction.z;
  }
}

TEST(Sweep, TakesNoMesh_FarFromTheOriginForItsSize) {
  for (const double away : {1e5, 1e9, 1e15}) {
    TSoup soup = make_Bumpy(12, 12);
    for (T3DVEC& v : soup.vtx) v.x += away;
    THostile hostile = make_Case(soup, {0, 0, 1});
    EXPECT_FALSE(sweeps(hostile)) << away;
  }
}

TEST(Sweep, TakesNoRays_FarFromTheMesh) {
  THostile hostile = make_Case(make_Grid(12, 12), {0, 0, 1});
  EXPECT_TRUE(sweeps(hostile));
  hostile.orgs[3].z = 5;
  hostile.box.add(hostile.orgs[3]);
  EXPECT_FALSE(sweeps(hostile));
}

TEST(Sweep, TakesNoMesh_WithATriangleThatIsExcluded) {
  THostile hostile = make_Case(make_Grid(12, 12), {0, 0, 1});
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Prepare(hostile.soup.msh()));
  CSweep sweep;
  EXPECT_TRUE(sweep.ini_Msh(tree));
  tree.Exclude(5);
  EXPECT_FALSE(sweep.ini_Msh(tree));
}

TEST(Sweep, TakesNoMesh_WhoseTrianglesLieOverTooManyTiles) {
  // One in six is small, and these are the ones that tell how large tiles should be.
  reference::Random random(kSeed);
  TSoup soup;
  for (uint32_t t = 0; t < 24000; ++t) {
    const double size = t % 6 == 0 ? 0.01 : 3;
    const double x = t % 6 == 0 ? random.real(-1, 1) : -1, y = t % 6 == 0 ? random.real(-1, 1) : -1;
    soup.vtx.insert(soup.vtx.end(), {{x, y, random.real(-1, 1)},
                                     {x + size, y, random.real(-1, 1)},
                                     {x, y + size, random.real(-1, 1)}});
    soup.tri.push_back({3 * t, 3 * t + 1, 3 * t + 2});
  }
  THostile hostile = make_Case(soup, {0, 0, 1}, 0.01);
  hostile.sight.resize(600);
  EXPECT_FALSE(sweeps(hostile));
}

TEST(Sweep, TakesCrowdedPlaces) {
  // Walls seen end-on, one triangle many times, and many around one point.
  TSoup walls, one, many = make_Bumpy(12, 12);
  for (uint32_t w = 0; w < 500; ++w) {
    const double x = 0.01 * w;
    walls.vtx.insert(walls.vtx.end(), {{x, 0, 0}, {x, 7, 0}, {x + 1e-4, 0, 7}});
    walls.tri.push_back({3 * w, 3 * w + 1, 3 * w + 2});
    one.vtx.insert(one.vtx.end(), {{0, 0, 0}, {1, 0, 0.1}, {0, 1, 0.3}});
    one.tri.push_back({3 * w, 3 * w + 1, 3 * w + 2});
  }
  for (uint32_t n = 0; n < 800; ++n) {
    const T3DVEC at = T3DVEC{7, 7, 1} + 1e-3 * sph_ToCar(n * 0.09, n * 37.0);
    const auto first = static_cast<uint32_t>(many.vtx.size());
    many.vtx.insert(many.vtx.end(), {at, at + T3DVEC{1e-3, 0, 0}, at + T3DVEC{0, 1e-3, 1e-4}});
    many.tri.push_back({first, first + 1, first + 2});
  }
  for (TSoup* soup : {&walls, &one, &many}) {
    THostile hostile = make_Case(*soup, unit(T3DVEC{1, 1e-3, 2e-3}), 0.01);
    EXPECT_TRUE(sweeps(hostile));
    hostile.direction = unit(T3DVEC{0.01, 0.02, 1});
    EXPECT_TRUE(sweeps(hostile));
  }
}

TEST(Sweep, TakesFlatMeshes_SeenEdgeOn_AndSingleTriangles) {
  for (const T3DVEC& direction : {T3DVEC{1, 0, 0}, T3DVEC{0, 1, 0}, T3DVEC{0.6, 0.8, 0}}) {
    THostile sheet = make_Case(make_Grid(14, 14), direction, 0.1);
    EXPECT_TRUE(sweeps(sheet));
    THostile row = make_Case(make_Grid(300, 1), direction, 0.1);
    EXPECT_TRUE(sweeps(row));
  }
  for (const T3DVEC& direction : {T3DVEC{1, 0, 0}, T3DVEC{0, 0, 1}, T3DVEC{0.6, 0.48, 0.64}}) {
    THostile one = make_Case({{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}}}, direction, 0.02);
    EXPECT_TRUE(sweeps(one));
    THostile segment = make_Case({{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, {{0, 1, 2}}}, direction, 0.02);
    EXPECT_TRUE(sweeps(segment));
  }
}

TEST(Sweep, TakesRaysBesideTheMesh_InTheCornersOfItsBox) {
  reference::Random random(kSeed);
  for (const T3DVEC& direction : {T3DVEC{0, 0, 1}, unit(T3DVEC{1, 1, 1}), T3DVEC{0.6, 0, 0.8}}) {
    THostile hostile = make_Case(make_Sphere(12, 16, 1), direction, 0.01);
    // A segment taken for a triangle is hit by all that pass its box.
    hostile.soup.vtx.insert(hostile.soup.vtx.end(), {{-0.9, -0.3, -0.1}, {0.9, 0.3, 0.1}});
    const auto first = static_cast<uint32_t>(hostile.soup.vtx.size() - 2);
    hostile.soup.tri.push_back({first, first + 1, first});
    for (T3DVEC& org : hostile.orgs) hostile.box.add(org = random.triple(-1, 1));
    EXPECT_TRUE(sweeps(hostile));
  }
}

TEST(Sweep, AsksNoRay_ThatIsAskedAlongNeitherWay) {
  THostile hostile = make_Case(make_Bumpy(12, 12), {0, 0, 1});
  for (uint32_t i = 0; i < hostile.sight.size(); ++i)
    hostile.sight[i] = static_cast<uint8_t>(i % 8);
  EXPECT_TRUE(sweeps(hostile));
  std::fill(hostile.sight.begin(), hostile.sight.end(), uint8_t{4});
  EXPECT_TRUE(sweeps(hostile));
  hostile.sight.clear();
  EXPECT_TRUE(sweeps(hostile));
}

}  // namespace undercut::tests
