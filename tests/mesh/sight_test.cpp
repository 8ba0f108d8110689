// Which triangles see out along a direction.
#include "mesh/sight.h"

#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <cstdio>
#include <new>

#include "tests/reference/plain_rays.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

namespace {

constexpr double kLift = 0.001;

// What each triangle sees; as many as the mesh has, or as the list.
std::vector<uint8_t> look(TSoup& soup, const T3DVEC& direction, Ways ways,
                          const std::vector<uint32_t>* list = nullptr, double lift = kLift,
                          const T3DVEC* nml = nullptr) {
  C3DTriAABBTree tree;
  EXPECT_TRUE(tree.Build(soup.msh()));
  std::vector<uint8_t> sight(list ? list->size() : soup.tri.size(), 0xEE);
  see_Along(tree, {soup.msh(), lift, nml}, direction, ways, list ? list->data() : nullptr,
            static_cast<uint32_t>(sight.size()), sight.data());
  return sight;
}

std::vector<uint8_t> look_Plain(TSoup& soup, const T3DVEC& direction, Ways ways) {
  std::vector<uint8_t> sight;
  const T3DMSH msh = soup.msh();
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const T3DFAC f = get_Fac(msh, t);
    if (f.a == f.b || f.b == f.c || f.a == f.c) {
      sight.push_back(kNoRay);
      continue;
    }
    const T3DVEC org = cen_Tri(f) + kLift * nml_Tri(f);
    uint8_t seen = 0;
    if (!reference::any_Hit(msh, {org, direction})) seen |= kSeesAhead;
    if (ways == Ways::kBoth && !reference::any_Hit(msh, {org, -direction})) seen |= kSeesBehind;
    sight.push_back(seen);
  }
  return sight;
}

// Two unit squares over each other, both facing up, at z = 0 and z = 1.
TSoup make_Floors() {
  TSoup soup = make_Grid(1, 1);
  for (uint32_t v = 0; v < 4; ++v) soup.vtx.push_back(soup.vtx[v] + T3DVEC{0, 0, 1});
  for (uint32_t t = 0; t < 2; ++t) {
    const T3DTRI tri = soup.tri[t];
    soup.tri.push_back({tri.a + 4, tri.b + 4, tri.c + 4});
  }
  return soup;
}

}  // namespace

TEST(Sight, IsBlockedByAnotherTriangle_AndOpenAboveTheLast) {
  TSoup soup = make_Floors();
  EXPECT_EQ(look(soup, {0, 0, 1}, Ways::kAhead),
            (std::vector<uint8_t>{0, 0, kSeesAhead, kSeesAhead}));
}

TEST(Sight, IsBlockedByTheTriangleItself_WhereTheRayEntersTheSurface) {
  TSoup soup = make_Grid(1, 1);
  EXPECT_EQ(look(soup, {0, 0, -1}, Ways::kAhead), (std::vector<uint8_t>{0, 0}));
  EXPECT_EQ(look(soup, {0, 0, -1}, Ways::kBoth), (std::vector<uint8_t>{kSeesBehind, kSeesBehind}));
}

TEST(Sight, GoesBothWays_AlongAWall) {
  TSoup soup = make_Grid(1, 1);
  const uint8_t both = kSeesAhead | kSeesBehind;
  EXPECT_EQ(look(soup, {0.8, 0.6, 0}, Ways::kBoth), (std::vector<uint8_t>{both, both}));
  EXPECT_EQ(look(soup, {0.8, 0.6, 0}, Ways::kAhead),
            (std::vector<uint8_t>{kSeesAhead, kSeesAhead}));
}

TEST(Sight, StartsNoRay_WhereTwoCornersAreEqualByCoordinates) {
  TSoup soup = make_Grid(1, 1);
  soup.vtx.push_back(soup.vtx[0]);  // 4
  soup.vtx.push_back({-0.0, 0.0, -0.0});
  soup.tri = {{0, 0, 1}, {0, 1, 1}, {1, 0, 1}, {0, 1, 4}, {4, 1, 0}, {1, 0, 5}, {0, 1, 2}};
  EXPECT_EQ(look(soup, {0, 0, 1}, Ways::kBoth),
            (std::vector<uint8_t>{kNoRay, kNoRay, kNoRay, kNoRay, kNoRay, kNoRay, kSeesAhead}));
}

TEST(Sight, OfATriangleOnALine_IsThatOfARay) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}};
  soup.tri = {{0, 1, 2}};
  // It has no normal to be lifted along, and is hit by every ray that passes its box.
  EXPECT_EQ(look(soup, {0, 0, 1}, Ways::kBoth), std::vector<uint8_t>{0});
}

TEST(Sight, FollowsTheList_InItsOrder_WithRepeats) {
  TSoup soup = make_Floors();
  soup.tri.push_back({0, 0, 1});
  const std::vector<uint32_t> list = {3, 0, 4, 0, 2, 3};
  EXPECT_EQ(look(soup, {0, 0, 1}, Ways::kBoth, &list),
            (std::vector<uint8_t>{kSeesAhead, 0, kNoRay, 0, kSeesAhead, kSeesAhead}));
  const std::vector<uint32_t> none;
  EXPECT_TRUE(look(soup, {0, 0, 1}, Ways::kBoth, &none).empty());
}

TEST(Sight, WritesNoMoreThanTheCount) {
  TSoup soup = make_Floors();
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(soup.msh()));
  uint8_t sight[4] = {9, 9, 9, 9};
  see_Along(tree, {soup.msh(), kLift}, {0, 0, 1}, Ways::kAhead, nullptr, 3, sight);
  EXPECT_EQ(sight[2], kSeesAhead);
  EXPECT_EQ(sight[3], 9);
}

TEST(Sight, StartsAtTheLift_AlongTheNormalsThatAreGiven) {
  TSoup soup = make_Floors();
  // The lower floor's rays start above the upper one, or below where the normals are turned round.
  EXPECT_EQ(look(soup, {0, 0, 1}, Ways::kAhead, nullptr, 1.5)[0], kSeesAhead);
  EXPECT_EQ(look(soup, {0, 0, 1}, Ways::kAhead, nullptr, 0.5)[0], 0);
  const std::vector<T3DVEC> down(4, {0, 0, -1});
  EXPECT_EQ(look(soup, {0, 0, -1}, Ways::kAhead, nullptr, 0.5, down.data())[0], kSeesAhead);
  EXPECT_EQ(look(soup, {0, 0, -1}, Ways::kAhead, nullptr, 0.5)[0], 0);
}

TEST(Sight, IsMeasuredAgainstTheObstacle_NotTheMeshOfTheStarts) {
  TSoup soup = make_Grid(1, 1), roof = make_Grid(3, 3);
  for (T3DVEC& v : roof.vtx) v = v + T3DVEC{-1, -1, 5};
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(roof.msh()));
  uint8_t sight[2];
  see_Along(tree, {soup.msh(), kLift}, {0, 0, 1}, Ways::kBoth, nullptr, 2, sight);
  EXPECT_EQ(sight[0], kSeesBehind);
  EXPECT_EQ(sight[1], kSeesBehind);
}

TEST(Sight, EqualsALoopOverAllTriangles_ForAnyNumberOfThreads) {
  constexpr uint64_t seed = 20240811;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  const int threads_before = omp_get_max_threads();
  for (uint32_t round = 0; round < scale_Cases(20); ++round) {
    TSoup soup = round % 3 == 0   ? make_Tangle(random, 5 + random.below(40), 1 + random.below(90))
                 : round % 3 == 1 ? tilt(make_Bumpy(6, 5))

                 : round == 2 ? tilt(make_Bumpy(25, 25))
                              : tilt(make_Sphere(6, 9, 4));
    const T3DVEC d = round % 5 == 0 ? T3DVEC{0, 0, 1} : random.triple(-1, 1);
    const Ways ways = random.chance(0.5) ? Ways::kBoth : Ways::kAhead;
    const std::vector<uint8_t> plain = look_Plain(soup, d, ways);
    std::vector<T3DVEC> normals;
    for (uint32_t t = 0; t < soup.tri.size(); ++t)
      normals.push_back(nml_Tri(get_Fac(soup.msh(), t)));
    for (const int threads : {1, 2, 3, 4, 8, 16}) {
      omp_set_num_threads(threads);
      ASSERT_EQ(look(soup, d, ways), plain) << "round " << round << ", threads " << threads;
      ASSERT_EQ(look(soup, d, ways, nullptr, kLift, normals.data()), plain) << "round " << round;
    }
  }
  omp_set_num_threads(threads_before);
}

// Large enough for several threads to sort and answer parts of it.
TEST(Sight, OfALargeMesh_EqualsSingleRays_ForAnyNumberOfThreads) {
  TSoup soup = tilt(make_Bumpy(80, 80));
  const T3DVEC d = {0.3, -0.2, 0.5};
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.BuildRays(soup.msh()));
  std::vector<uint8_t> single;
  for (uint32_t t = 0; t < soup.tri.size(); ++t) {
    const T3DFAC f = get_Fac(soup.msh(), t);
    const T3DVEC org = cen_Tri(f) + kLift * nml_Tri(f);
    single.push_back((tree.AnyHit({org, d}) ? 0 : kSeesAhead) |
                     (tree.AnyHit({org, -d}) ? 0 : kSeesBehind));
  }
  const int threads_before = omp_get_max_threads();
  for (const int threads : {1, 2, 5, 16}) {
    omp_set_num_threads(threads);
    EXPECT_EQ(look(soup, d, Ways::kBoth), single) << threads;
  }
  omp_set_num_threads(threads_before);
}

TEST(Sight, OfTrianglesAtInfinity_DisturbsNoOther) {
  TSoup soup = make_Floors();
  soup.vtx.insert(soup.vtx.end(), {{90, 90, 0}, {91, 90, 0}, {INFINITY, 95, 5}, {NAN, NAN, NAN}});
  soup.tri.push_back({8, 9, 10});
  soup.tri.push_back({9, 11, 9});
  soup.tri.push_back({11, 8, 9});
  const std::vector<uint8_t> sight = look(soup, {0, 0, -1}, Ways::kBoth);
  EXPECT_EQ(std::vector<uint8_t>(sight.begin(), sight.begin() + 4),
            (std::vector<uint8_t>{0, 0, kSeesBehind, kSeesBehind}));
  look(soup, {NAN, INFINITY, 0}, Ways::kBoth);
}

TEST(Sight, IsNotBlocked_ByTrianglesWithoutNumbers) {
  TSoup soup = make_Floors();
  const std::vector<uint8_t> before = look(soup, {0.1, 0.2, -1}, Ways::kBoth);
  const auto first = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), {{NAN, NAN, NAN}, {NAN, 1, 2}, {NAN, 3, 5}});
  soup.tri.push_back({first, first + 1, first + 2});
  const std::vector<uint8_t> after = look(soup, {0.1, 0.2, -1}, Ways::kBoth);
  EXPECT_EQ(std::vector<uint8_t>(after.begin(), after.end() - 1), before);
}

// Looks once, with the n-th allocation failing; whether any failed, and so the look did.
bool fails_At(uint64_t n, const C3DTriAABBTree& tree, TSoup& soup, uint32_t count) {
  std::vector<uint8_t> sight(soup.tri.size());
  const int64_t live = live_Allocations();
  bool thrown = false, failed = false;
  {
    const FailingAllocation failing(n);
    try {
      see_Along(tree, {soup.msh(), kLift}, {0.1, 0.2, 1}, Ways::kBoth, nullptr, count,
                sight.data());
    } catch (const std::bad_alloc&) {
      thrown = true;
    }
    failed = failing.has_Failed();
  }
  EXPECT_EQ(thrown, failed) << n;
  if (n == 1) {
    EXPECT_EQ(live_Allocations(), live);  // later ones may have left a tree
  }
  return failed;
}

TEST(Sight, TellsExhaustedMemory_FromTheCallingThread) {
  TSoup soup = make_Bumpy(40, 40);
  for (const uint32_t count : {3u, static_cast<uint32_t>(soup.tri.size())}) {
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Prepare(soup.msh()));
    uint64_t n = 1;
    while (fails_At(n, tree, soup, count)) ++n;
    EXPECT_GT(n, 2u) << count;
    EXPECT_LT(n, 200u) << count;
  }
}

TEST(Sight, NeedsNoMemory_WhenItLooksAgain) {
  TSoup soup = make_Bumpy(40, 40);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Prepare(soup.msh()));
  CSight eye(tree, {soup.msh(), kLift});
  std::vector<uint8_t> first(soup.tri.size()), again(soup.tri.size());
  const auto count = static_cast<uint32_t>(first.size());
  eye.see_Along({0.1, 0.2, 1}, Ways::kBoth, nullptr, count, first.data());
  const FailingAllocation failing(1);
  for (int i = 0; i < 5; ++i)
    eye.see_Along({0.1, 0.2, 1}, Ways::kBoth, nullptr, count, again.data());
  EXPECT_FALSE(failing.has_Failed());
  EXPECT_EQ(again, first);
}

TEST(Sight, NeedsNoMemory_ForAFewTriangles_OnceTheTreeIsThere) {
  TSoup soup = make_Bumpy(40, 40);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Prepare(soup.msh()));
  tree.BuildRays();
  uint8_t sight[8];
  const FailingAllocation failing(1);
  see_Along(tree, {soup.msh(), kLift}, {0.1, 0.2, 1}, Ways::kBoth, nullptr, 8, sight);
  EXPECT_FALSE(failing.has_Failed());
}

TEST(Sight, LooksAlongManyDirections_AtOneMeshAndThenAtAnother) {
  reference::Random random(4711);
  CSight eye;
  for (uint32_t round = 0; round < scale_Cases(12); ++round) {
    TSoup soup = round % 4 == 3 ? make_Tangle(random, 40, 700) : tilt(make_Bumpy(14, 26));
    if (round % 4 == 2)  // no numbers where the next mesh starts no ray
      for (uint32_t v = 0; v < soup.vtx.size(); v += 7) soup.vtx[v] = {NAN, NAN, NAN};
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Prepare(soup.msh()));
    eye.ini_Sight(tree, {soup.msh(), kLift});
    for (int k = 0; k < 3; ++k) {
      const T3DVEC d = random.triple(-1, 1);
      std::vector<uint8_t> sight(soup.tri.size());
      eye.see_Along(d, Ways::kBoth, nullptr, static_cast<uint32_t>(sight.size()), sight.data());
      ASSERT_EQ(sight, look_Plain(soup, d, Ways::kBoth)) << "round " << round;
      std::vector<uint32_t> list;
      while (list.size() < 60 + 300 * random.below(2))
        list.push_back(static_cast<uint32_t>(random.below(sight.size())));
      std::vector<uint8_t> listed(list.size());
      eye.see_Along(d, Ways::kBoth, list.data(), static_cast<uint32_t>(list.size()), listed.data());
      for (size_t i = 0; i < list.size(); ++i) ASSERT_EQ(listed[i], sight[list[i]]);
    }
  }
}

}  // namespace undercut::tests
