// The rating of a direction for three axes.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <cstdio>

#include "tests/reference/plain_ratings.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"
#include "undercut/evaluators.h"

namespace undercut::tests {

namespace {

double rate(TSoup& soup, double weight, double theta, double phi) {
  C3axUcErr err;
  err.set_Gew(weight);
  EXPECT_TRUE(err.ini_Err(soup.msh()));
  return err.Err(theta, phi);
}

double area_Of(TSoup& soup) {
  double area = 0;
  for (uint32_t t = 0; t < soup.tri.size(); ++t) area += area_Tri(get_Fac(soup.msh(), t));
  return area;
}

std::vector<uint32_t> list_Seen(TSoup& soup, double theta, double phi) {
  C3axUcErr err;
  EXPECT_TRUE(err.ini_Err(soup.msh()));
  CBitVector seen;
  EXPECT_TRUE(seen.init(soup.tri.size()));
  EXPECT_EQ(err.get_Vis(theta, phi, seen), 0);
  std::vector<uint32_t> list;
  for (uint32_t t = 0; t < soup.tri.size(); ++t)
    if (seen.test(t)) list.push_back(t);
  return list;
}

}  // namespace

TEST(ThreeAxisError, OfAConvexBody_IsItsWholeArea_EachTriangleOnce) {
  TSoup soup = tilt(make_Pyramid());
  EXPECT_NEAR(rate(soup, 1, 0, 0), -area_Of(soup), 1e-12);
  EXPECT_NEAR(rate(soup, 1, 37, 111), -area_Of(soup), 1e-12);
}

TEST(ThreeAxisError, CountsWallsAlongTheDirectionTwice) {
  TSoup soup = make_Box(2, 3, 5);
  const double ends = 2 * 2 * 3, walls = 2 * (2 + 3) * 5;
  EXPECT_DOUBLE_EQ(rate(soup, 1, 0, 0), -(ends + 2 * walls));
}

TEST(ThreeAxisError, OfWeight0_IsTheProjectedArea) {
  TSoup soup = make_Box(2, 3, 5);
  EXPECT_DOUBLE_EQ(rate(soup, 0, 0, 0), -12);
  TSoup grid = make_Grid(2, 2);
  EXPECT_DOUBLE_EQ(rate(grid, 0, 60, 20), -4 * std::cos(60 * kRadians));
}

TEST(ThreeAxisError, OfWeight0_OfATriangleAlongTheDirection_IsNothing) {
  TSoup grid = make_Grid(2, 2);
  // cos(90 degrees) is not quite 0 in double.
  EXPECT_NEAR(rate(grid, 0, 90, 20), 0, 1e-15);
  EXPECT_DOUBLE_EQ(rate(grid, 1, 90, 20), -2 * 4);
  TSoup wall;
  wall.vtx = {{0, 0, 0}, {1, 0, 0}, {0, 0, 1}};
  wall.tri = {{0, 1, 2}};
  EXPECT_EQ(rate(wall, 0, 0, 0), 0);
  EXPECT_EQ(rate(wall, 1, 0, 0), -1);
}

TEST(ThreeAxisError, MixesTheTwoAreasByTheWeight) {
  TSoup grid = make_Grid(2, 2);
  EXPECT_DOUBLE_EQ(rate(grid, 0.25, 60, 20), -(0.25 * 4 + 0.75 * 4 * std::cos(60 * kRadians)));
}

TEST(ThreeAxisError, HasAWeightOf1_UntilItIsSet) {
  TSoup grid = make_Grid(2, 2);
  C3axUcErr err;
  ASSERT_TRUE(err.ini_Err(grid.msh()));
  EXPECT_DOUBLE_EQ(err.Err(60, 20), -4);
}

TEST(ThreeAxisError, IsNotChangedByTrianglesWithTwoEqualCorners_ThatStandAside) {
  TSoup soup = tilt(make_Bumpy(6, 6));
  const double before = rate(soup, 0.3, 20, 30);
  const auto first = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), {{900, 0, 0}, {900, 0, 0}, {901, 1, 1}});
  soup.tri.insert(soup.tri.begin() + 5, {first, first + 1, first + 2});
  soup.tri.insert(soup.tri.begin() + 9, {first + 2, first, first});
  soup.tri.push_back({4, 4, 4});
  EXPECT_EQ(rate(soup, 0.3, 20, 30), before);
}

TEST(ThreeAxisError, OfWhatATriangleWithTwoEqualCornersBlocks_IsThatUnderATriangleOnALine) {
  TSoup soup = make_Grid(3, 3);
  soup.vtx.insert(soup.vtx.end(), {{0, 0, 1}, {1, 1, 2}, {2, 2, 3}});
  const double before = rate(soup, 1, 0, 0);
  soup.tri.push_back({16, 17, 18});
  const double under_Line = rate(soup, 1, 0, 0);
  EXPECT_EQ(before, -9);
  EXPECT_EQ(under_Line, -9 + 4);  // its box is over four squares
  soup.tri.back() = {16, 16, 18};
  EXPECT_EQ(rate(soup, 1, 0, 0), under_Line);
}

TEST(ThreeAxisError, OfTheOppositeDirection_IsTheSame) {
  TSoup soup = tilt(make_Bumpy(8, 8));
  EXPECT_NEAR(rate(soup, 0.3, 20, 30), rate(soup, 0.3, 160, 210), 1e-9);
}

TEST(ThreeAxisError, EqualsThePlainRating_ForAnyNumberOfThreads) {
  constexpr uint64_t seed = 5151;
  std::printf("seed %d\n", int(seed));
  reference::Random random(seed);
  const int threads_before = omp_get_max_threads();
  for (uint32_t round = 0; round < scale_Cases(30); ++round) {
    TSoup soup = round % 3 == 0   ? make_Tangle(random, 5 + random.below(40), 1 + random.below(90))
                 : round % 3 == 1 ? tilt(make_Bumpy(6, 5))
                 : round == 2     ? tilt(make_Bumpy(20, 20))
                                  : make_Sphere(6, 9, 4);
    const double weight = random.real(0, 1);
    C3axUcErr err;
    err.set_Gew(weight);
    ASSERT_TRUE(err.ini_Err(soup.msh()));
    for (int k = 0; k < 3; ++k) {
      const double theta = k == 0 ? 90.0 * double(random.below(3)) : random.real(-10, 190);
      const double phi = random.real(0, 360);
      const double plain = reference::rate_3ax(soup.msh(), weight, theta, phi);
      for (const int threads : {1, 2, 3, 4, 8, 16}) {
        omp_set_num_threads(threads);
        ASSERT_EQ(err.Err(theta, phi), plain) << "round " << round << ", threads " << threads;
      }
    }
  }
  omp_set_num_threads(threads_before);
}

TEST(ThreeAxisError, AllocatesNothingForARating) {
  TSoup soup = make_Bumpy(30, 30);
  C3axUcErr err;
  ASSERT_TRUE(err.ini_Err(soup.msh()));
  const double first = err.Err(10, 20);
  const FailingAllocation failing(1);
  double again = 0;
  for (int i = 0; i < 20; ++i) again = err.Err(10, 20);
  EXPECT_FALSE(failing.has_Failed());
  EXPECT_EQ(again, first);
}

TEST(ThreeAxisError, IsPreparedAnew) {
  TSoup grid = make_Grid(3, 2), box = make_Box(2, 3, 5);
  C3axUcErr err;
  ASSERT_TRUE(err.ini_Err(box.msh()));
  ASSERT_TRUE(err.ini_Err(grid.msh()));
  EXPECT_DOUBLE_EQ(err.Err(0, 0), -6);
  ASSERT_TRUE(err.ini_Err(box.msh()));
  EXPECT_DOUBLE_EQ(err.Err(0, 0), -112);
  err.clr_Err();
  EXPECT_EQ(err.Err(0, 0), 0);
  err.clr_Err();
}

TEST(ThreeAxisError, IsNotPrepared_ForAMeshWithoutArraysOrCounts) {
  TSoup box = make_Box(1, 1, 1);
  T3DMSH views[4] = {box.msh(), box.msh(), box.msh(), box.msh()};
  views[0].vtx = nullptr;
  views[1].tri = nullptr;
  views[2].n_vtx = 0;
  views[3].n_tri = 0;
  for (const T3DMSH& view : views) {
    C3axUcErr err;
    ASSERT_TRUE(err.ini_Err(box.msh()));
    EXPECT_FALSE(err.ini_Err(view));
    EXPECT_EQ(err.Err(0, 0), 0);
  }
}

TEST(ThreeAxisError, IsNotPrepared_ForAVertexOutOfRange) {
  TSoup box = make_Box(1, 1, 1);
  box.tri[7].c = 8;
  C3axUcErr err;
  EXPECT_FALSE(err.ini_Err(box.msh()));
}

TEST(ThreeAxisError, IsNotPrepared_WithoutMemory) {
  TSoup soup = make_Bumpy(4, 4);
  const std::vector<int32_t> codes = list_FailureCodes([&] {
    C3axUcErr err;
    const bool done = err.ini_Err(soup.msh());
    if (!done) {
      EXPECT_EQ(err.Err(0, 0), 0);
    }
    return done ? 0 : -1;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-1, 0}));
}

TEST(ThreeAxisError, LiftsItsRaysByAThousandth) {
  // A roof a little lower than that above the floor, and one a little higher.
  for (const double gap : {0.00099, 0.00101}) {
    TSoup soup = make_Grid(1, 1);
    for (uint32_t v = 0; v < 4; ++v) soup.vtx.push_back(soup.vtx[v] + T3DVEC{0, 0, gap});
    soup.tri.push_back({4, 6, 5});
    soup.tri.push_back({5, 6, 7});
    // Floor and roof are turned to each other.
    EXPECT_DOUBLE_EQ(rate(soup, 1, 0, 0), gap < 0.001 ? -2 : 0);
  }
}

TEST(ThreeAxisSight, IsWhatEitherEndSees) {
  TSoup grid = make_Grid(1, 1);
  EXPECT_EQ(list_Seen(grid, 0, 0), (std::vector<uint32_t>{0, 1}));
  EXPECT_EQ(list_Seen(grid, 180, 0), (std::vector<uint32_t>{0, 1}));
  grid.tri.insert(grid.tri.begin(), {0, 0, 1});
  EXPECT_EQ(list_Seen(grid, 0, 0), (std::vector<uint32_t>{1, 2}));
  TSoup box = make_Box(1, 2, 3);
  EXPECT_EQ(list_Seen(box, 0, 0).size(), 12u);
}

TEST(ThreeAxisSight, HidesWhatIsBetweenTwoPlates) {
  TSoup soup = make_Grid(1, 1);
  for (const double z : {-1.0, 1.0}) {
    const auto first = static_cast<uint32_t>(soup.vtx.size());
    for (uint32_t v = 0; v < 4; ++v)
      soup.vtx.push_back({3 * soup.vtx[v].x - 1, 3 * soup.vtx[v].y - 1, z});
    soup.tri.push_back({first, first + 1, first + 3});
    soup.tri.push_back({first, first + 3, first + 2});
  }
  // The upper plate faces up, the lower one too: its rays down are blocked by itself.
  EXPECT_EQ(list_Seen(soup, 0, 0), (std::vector<uint32_t>{4, 5}));
}

TEST(ThreeAxisSight, ClearsTheBitsOfBefore) {
  TSoup soup = make_Grid(4, 4);
  soup.tri.push_back({0, 0, 0});
  C3axUcErr err;
  ASSERT_TRUE(err.ini_Err(soup.msh()));
  CBitVector seen;
  ASSERT_TRUE(seen.init(soup.tri.size()));
  seen.set_All();
  ASSERT_EQ(err.get_Vis(0, 0, seen), 0);
  EXPECT_EQ(seen.count(), 32u);
  EXPECT_FALSE(seen.test(32));
}

TEST(ThreeAxisSight, OfBitsOfAnotherSize_IsRefused_AndLeavesThemAsTheyWere) {
  TSoup soup = make_Grid(2, 2);
  C3axUcErr err;
  ASSERT_TRUE(err.ini_Err(soup.msh()));
  for (const uint64_t size : {7, 9}) {
    CBitVector seen;
    ASSERT_TRUE(seen.init(size));
    seen.set(3);
    EXPECT_EQ(err.get_Vis(0, 0, seen), -5);
    EXPECT_EQ(seen.count(), 1u);
    EXPECT_TRUE(seen.test(3));
  }
  CBitVector none;
  EXPECT_EQ(err.get_Vis(0, 0, none), -5);
}

TEST(ThreeAxisSight, IsWhatTheRatingCounts) {
  TSoup soup = tilt(make_Bumpy(9, 9));
  for (const double theta : {0.0, 35.0, 80.0, 90.0}) {
    double area = 0;
    for (const uint32_t t : list_Seen(soup, theta, 77)) area += area_Tri(get_Fac(soup.msh(), t));
    // A sheet in general position: nothing is seen both ways.
    EXPECT_NEAR(rate(soup, 1, theta, 77), -area, 1e-9) << theta;
  }
}

}  // namespace undercut::tests
