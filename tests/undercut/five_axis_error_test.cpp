// The rating of a direction for five axes.
#include <gtest/gtest.h>
#include <omp.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "tests/reference/plain_ratings.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"
#include "undercut/evaluators.h"

namespace undercut::tests {

namespace {

constexpr double kLift = 0.002;

// An evaluator with a weight, ready for ratings of a mesh that outlives it.
struct TRater {
  C5axUcErr err;
  TRater(TSoup& soup, double weight, double lift = kLift) {
    err.set_Gew(weight);
    err.set_Off(lift);
    EXPECT_TRUE(err.ini_Err(soup.msh()));
  }
};

double rate(TSoup& soup, double weight, double theta, double phi) {
  return TRater(soup, weight).err.Err(theta, phi);
}

TLst<uint32_t> view(std::vector<uint32_t>& list) { return view_Lst(list); }

// A triangle of area 8 that faces up, and one of area 2 that faces along X, beside it.
TSoup make_Corner() {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {20, 0, 0}, {20, 2, 0}, {20, 0, 2}};
  soup.tri = {{0, 1, 2}, {3, 4, 5}};
  return soup;
}

}  // namespace

TEST(FiveAxisError, OfASheetSeenSquarely_IsNothing) {
  TSoup soup = make_Grid(3, 3);
  EXPECT_EQ(rate(soup, 0.7, 0, 0), 0);
}

TEST(FiveAxisError, AddsTheSineOfTheTilt) {
  TSoup soup = make_Grid(3, 3);
  EXPECT_NEAR(rate(soup, 0.7, 30, 40), 0.7 * 0.5, 1e-12);
  EXPECT_EQ(rate(soup, 0.0, 30, 40), 0.0);
}

TEST(FiveAxisError, WhereAllIsBlocked_Is1AndTheWeight) {
  TSoup soup = make_Grid(3, 3);
  EXPECT_EQ(rate(soup, 0.7, 180, 0), 1.7);
  EXPECT_EQ(rate(soup, 0.0, 150, 10), 1.0);
}

TEST(FiveAxisError, OfASelectionThatIsBlocked_CountsAgainstTheWholeMesh) {
  TSoup soup = make_Corner();
  TRater rater(soup, 0.5);
  std::vector<uint32_t> small = {1}, large = {0};
  rater.err.set_Sel(view(small));
  EXPECT_DOUBLE_EQ(rater.err.Err(90, 180), 0.2 + 0.5);
  rater.err.set_Sel(view(large));
  EXPECT_DOUBLE_EQ(rater.err.Err(180, 0), 0.8 + 0.5);
  EXPECT_EQ(rater.err.Err(0, 0), 0.0);
}

TEST(FiveAxisError, AddsTheNormalsWithoutTheirAreas) {
  TSoup soup = make_Corner();
  // Both are seen; their mean normal lies halfway, though one has four times the area.
  EXPECT_NEAR(rate(soup, 1, 45, 0), 0, 1e-7);
  EXPECT_NEAR(rate(soup, 1, 60, 0), std::sin(15 * kRadians), 1e-12);
}

TEST(FiveAxisError, LooksOneWayOnly) {
  TSoup soup = make_Corner();
  EXPECT_DOUBLE_EQ(rate(soup, 0, 10, 180), 0.2);
  EXPECT_DOUBLE_EQ(rate(soup, 0, 100, 0), 0.8);
}

TEST(FiveAxisError, IsANumberAlongTheNormalItself) {
  constexpr uint64_t seed = 99;
  std::printf("seed %d\n", int(seed));
  reference::Random random(seed);
  uint32_t beyond = 0;
  for (int round = 0; round < 2000; ++round) {
    TSoup soup;
    for (int k = 0; k < 3; ++k) soup.vtx.push_back(random.triple(-1, 1));
    soup.tri = {{0, 1, 2}};
    const T3DVEC n = nml_Tri(get_Fac(soup.msh(), 0));
    const T3DVEC angles = car_ToSph(n);
    const double c = dot(sph_ToCar(angles.x, angles.y), n);
    if (c * c > 1) ++beyond;
    const double rating = rate(soup, 1, angles.x, angles.y);
    ASSERT_GE(rating, 0.0) << round;
    ASSERT_LT(rating, 1e-6) << round;
  }
  EXPECT_GT(beyond, 10u);  // where the root would have been that of a negative number
}

TEST(FiveAxisError, OfADirectionThatIsNoNumber_IsNoNumber) {
  TSoup soup = make_Grid(1, 1);
  EXPECT_TRUE(std::isnan(rate(soup, 1, NAN, 0)));
  EXPECT_TRUE(std::isnan(rate(soup, 1, 10, INFINITY)));
}

TEST(FiveAxisError, OnABoundOfTheBox_IsRatedAsElsewhere) {
  TSoup soup = make_Grid(1, 1);
  TRater rater(soup, 0.3);
  const double box[4] = {10, 20, 30, 40};
  rater.err.set_Box(box);
  rater.err.set_UseBox(true);
  for (const double theta : {10.0, 20.0, 30.0})
    for (const double phi : {20.0, 33.0, 40.0})
      EXPECT_EQ(rater.err.Err(theta, phi), rate(soup, 0.3, theta, phi)) << theta << " " << phi;
}

TEST(FiveAxisError, BeyondTheBoxByAnyAmount_IsAbsent) {
  TSoup soup = make_Grid(1, 1);
  TRater rater(soup, 0.3);
  const double box[4] = {10, 20, 30, 40};
  rater.err.set_Box(box);
  rater.err.set_UseBox(true);
  const double below = std::nextafter(10, 0), above = std::nextafter(30, 90);
  EXPECT_EQ(rater.err.Err(below, 30), kAbsent);
  EXPECT_EQ(rater.err.Err(above, 30), kAbsent);
  EXPECT_EQ(rater.err.Err(20, std::nextafter(20, 0)), kAbsent);
  EXPECT_EQ(rater.err.Err(20, std::nextafter(40, 90)), kAbsent);
  EXPECT_EQ(rater.err.Err(NAN, 30), kAbsent);
  EXPECT_EQ(rater.err.Err(20, NAN), kAbsent);
  rater.err.set_UseBox(false);
  EXPECT_LT(rater.err.Err(below, 30), 1.0);
}

TEST(FiveAxisError, HasTheSphereAsItsBox_UntilOneIsSet_AndDoesNotUseIt) {
  TSoup soup = make_Grid(1, 1);
  TRater rater(soup, 0.3);
  EXPECT_LT(rater.err.Err(-5, 0), 1.0);
  rater.err.set_UseBox(true);
  EXPECT_EQ(rater.err.Err(-5, 0), kAbsent);
  EXPECT_EQ(rater.err.Err(5, 361), kAbsent);
  EXPECT_LT(rater.err.Err(0, 0), 1.0);
  EXPECT_EQ(rater.err.Err(180, 360), 1.3);
}

TEST(FiveAxisError, StartsItsRaysAtTheLift) {
  TSoup soup = make_Grid(1, 1);
  for (uint32_t v = 0; v < 4; ++v) soup.vtx.push_back(soup.vtx[v] + T3DVEC{0, 0, 1});
  soup.tri.push_back({4, 5, 7});
  soup.tri.push_back({4, 7, 6});
  EXPECT_DOUBLE_EQ(TRater(soup, 0, 0.9).err.Err(0, 0), 0.5);
  EXPECT_DOUBLE_EQ(TRater(soup, 0, 1.1).err.Err(0, 0), 0.0);
}

TEST(FiveAxisError, IsNotChangedByTrianglesWithTwoEqualCorners_ThatStandAside) {
  TSoup soup = tilt(make_Bumpy(6, 6));
  const double before = rate(soup, 0.3, 70, 30);
  const auto first = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), {{900, 0, 0}, {900, 0, 0}, {901, 1, 1}});
  soup.tri.insert(soup.tri.begin() + 5, {first, first + 1, first + 2});
  soup.tri.push_back({4, 4, 4});
  EXPECT_EQ(rate(soup, 0.3, 70, 30), before);
  std::vector<uint32_t> flat = {5};
  TRater rater(soup, 0.3);
  rater.err.set_Sel(view(flat));
  EXPECT_EQ(rater.err.Err(70, 30), 0.3);
}

TEST(FiveAxisError, IsNotChangedByTrianglesWithTwoEqualCorners_AtInfinity) {
  TSoup soup = tilt(make_Bumpy(6, 6));
  const double before = rate(soup, 0.3, 70, 30);
  const auto first = static_cast<uint32_t>(soup.vtx.size());
  soup.vtx.insert(soup.vtx.end(), {{900, 900, INFINITY}, {900, 900, INFINITY}, {900, 900, 0}});
  soup.tri.push_back({first, first + 1, first + 2});
  EXPECT_EQ(rate(soup, 0.3, 70, 30), before);
}

TEST(FiveAxisError, OfAnEmptySelection_IsTheWeight) {
  TSoup soup = make_Grid(1, 1);
  TRater rater(soup, 0.3);
  std::vector<uint32_t> list = {0};
  TLst<uint32_t> empty = view(list);
  empty.count = 0;
  rater.err.set_Sel(empty);
  EXPECT_EQ(rater.err.Err(180, 0), 0.3);
  EXPECT_EQ(rater.err.Err(0, 0), 0.3);
}

TEST(FiveAxisError, OfANullSelection_IsThatOfAll) {
  TSoup soup = make_Corner();
  TRater rater(soup, 0.3);
  std::vector<uint32_t> list = {0};
  rater.err.set_Sel(view(list));
  rater.err.set_Sel({});
  EXPECT_EQ(rater.err.Err(40, 0), rate(soup, 0.3, 40, 0));
}

TEST(FiveAxisError, CountsATriangleAsOftenAsItIsListed_InListsLongerThanTheMesh) {
  TSoup soup = make_Corner();
  TRater rater(soup, 0.5);
  std::vector<uint32_t> list(7, 1);
  rater.err.set_Sel(view(list));
  EXPECT_DOUBLE_EQ(rater.err.Err(90, 180), 7 * 0.2 + 0.5);
  list = {0, 1, 1, 1, 1};
  rater.err.set_Sel(view(list));
  EXPECT_NEAR(rater.err.Err(90, 0), 0.8, 1e-12);
  // The mean of one normal up and four along X.
  EXPECT_NEAR(rater.err.Err(45, 0), 0.5 * std::sin(std::atan2(4, 1) - 45 * kRadians), 1e-12);
}

TEST(FiveAxisError, ForgetsItsSelection_WhenItIsPreparedAnew) {
  TSoup soup = make_Corner();
  TRater rater(soup, 0.5);
  std::vector<uint32_t> list = {0};
  rater.err.set_Sel(view(list));
  ASSERT_TRUE(rater.err.ini_Err(soup.msh()));
  EXPECT_DOUBLE_EQ(rater.err.Err(90, 180), 0.2 + 0.5);
}

TEST(FiveAxisError, IsPreparedAnew_WithTheAreaOfTheNewMesh) {
  TSoup corner = make_Corner(), grid = make_Grid(4, 4);
  TRater rater(grid, 0.5);
  ASSERT_TRUE(rater.err.ini_Err(corner.msh()));
  EXPECT_DOUBLE_EQ(rater.err.Err(10, 180), 0.2 + 0.5 * std::sin(10 * kRadians));
  rater.err.clr_Err();
  EXPECT_TRUE(std::isnan(rater.err.Err(10, 180)));  // no area to hold it against
}

TEST(FiveAxisError, IsNotPrepared_ForAMeshWithoutArraysOrCounts) {
  TSoup box = make_Box(1, 1, 1);
  T3DMSH views[4] = {box.msh(), box.msh(), box.msh(), box.msh()};
  views[0].vtx = nullptr;
  views[1].tri = nullptr;
  views[2].n_vtx = 0;
  views[3].n_tri = 0;
  std::vector<uint32_t> list = {0};
  for (const T3DMSH& msh : views) {
    TRater rater(box, 1);
    EXPECT_FALSE(rater.err.ini_Err(msh));
    rater.err.set_Sel(view(list));
    EXPECT_TRUE(std::isnan(rater.err.Err(0, 0)));  // and reads nothing
  }
}

TEST(FiveAxisError, IsNotPrepared_WithoutMemory) {
  TSoup soup = make_Bumpy(4, 4);
  const std::vector<int32_t> codes = list_FailureCodes([&] {
    C5axUcErr err;
    return err.ini_Err(soup.msh()) ? 0 : -1;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{-1, 0}));
}

TEST(FiveAxisError, AllocatesNothingForARating) {
  TSoup soup = make_Bumpy(30, 30);
  TRater rater(soup, 0.1);
  std::vector<uint32_t> list(5000, 17);
  rater.err.set_Sel(view(list));
  const double first = rater.err.Err(10, 20);
  const FailingAllocation failing(1);
  double again = 0;
  for (int i = 0; i < 20; ++i) again = rater.err.Err(10, 20);
  EXPECT_FALSE(failing.has_Failed());
  EXPECT_EQ(again, first);
}

TEST(FiveAxisError, EqualsThePlainRating_ForAnyNumberOfThreads) {
  constexpr uint64_t seed = 6161;
  std::printf("seed %d\n", int(seed));
  reference::Random random(seed);
  const int threads_before = omp_get_max_threads();
  for (uint32_t round = 0; round < scale_Cases(30); ++round) {
    TSoup soup = round % 3 == 0   ? make_Tangle(random, 5 + random.below(40), 3 + random.below(90))
                 : round % 3 == 1 ? tilt(make_Bumpy(6, 5))
                 : round == 2     ? tilt(make_Bumpy(20, 20))
                                  : make_Sphere(6, 9, 4);
    const double weight = random.real(0, 1);
    TRater rater(soup, weight);
    std::vector<uint32_t> list = list_All(soup);
    if (round % 2 == 1) {
      list.resize(1 + random.below(3 * list.size()));
      for (uint32_t& t : list) t = static_cast<uint32_t>(random.below(soup.tri.size()));
      rater.err.set_Sel(view(list));
    }
    for (int k = 0; k < 3; ++k) {
      const double theta = k == 0 ? 90.0 * double(random.below(3)) : random.real(-10, 190);
      const double phi = random.real(0, 360);
      const double plain = reference::rate_5ax(soup.msh(), weight, kLift, list, theta, phi);
      for (const int threads : {1, 2, 3, 4, 8, 16}) {
        omp_set_num_threads(threads);
        const double rating = rater.err.Err(theta, phi);
        ASSERT_TRUE(rating == plain || (std::isnan(rating) && std::isnan(plain)))
            << "round " << round << ", threads " << threads;
      }
    }
  }
  omp_set_num_threads(threads_before);
}

}  // namespace undercut::tests
