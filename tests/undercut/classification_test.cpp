// get_UCs against a plain loop over triangles and axes.
#include <gtest/gtest.h>
#include <omp.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

#include "bench/bodies.h"
#include "tests/interface/blocks.h"
#include "tests/reference/plain_undercut.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using Bytes = std::vector<uint8_t>;
using Indices = std::vector<uint32_t>;
using reference::Random;

// A call with its own records. A null roi is the whole mesh.
Bytes call(const T3DMSH& msh, const Indices* roi, std::vector<T3DRAY> axi) {
  TUcReq req;
  TUcRes res;
  ini_Req(&req);
  ini_Res(&res);
  req.msh = msh;
  req.axi = view_Arr(axi);
  Indices list = roi ? *roi : Indices();
  list.reserve(1);
  if (roi) req.roi = view_Lst(list);
  EXPECT_EQ(get_UCs(&req, &res), 0);
  Bytes bytes(res.ucs, res.ucs + (res.ucs ? msh.n_tri : 0));
  clr_Res(&res);
  return bytes;
}

Bytes call_Plainly(const T3DMSH& msh, const Indices* roi, const std::vector<T3DRAY>& axi) {
  if (g_UCs.f_dil <= 0) return reference::find_Undercut(msh, msh, roi, axi, g_UCs.f_tol);
  reference::TPlainSoup soup = reference::grow_Triangles(msh, g_UCs.f_dil);
  return reference::find_Undercut(msh, soup.msh(), roi, axi, g_UCs.f_tol);
}

std::vector<T3DRAY> make_Axes(Random& random, uint64_t count) {
  static constexpr T3DVEC kSpecial[] = {{0, 0, 1}, {0, 0, -1}, {-1, 0, 0}, {0, 2, 0},
                                        {0, 0, 0}, {1, 1, 0},  {0, -3, 3}};
  std::vector<T3DRAY> axi;
  while (axi.size() < count)
    axi.push_back({random.triple(-9, 9),
                   random.chance(0.3) ? kSpecial[random.below(7)] : random.triple(-2, 2)});
  return axi;
}

template <typename T>
void shuffle(Random& random, std::vector<T>& list) {
  for (size_t i = list.size(); i > 1; --i) std::swap(list[i - 1], list[random.below(i)]);
}

// Null, a part of the mesh with repeats, all of it in any order, or a list as long as the mesh.
std::unique_ptr<Indices> make_Roi(Random& random, uint32_t n_tri) {
  const uint64_t kind = random.below(5);
  if (kind == 0) return nullptr;
  auto roi = std::make_unique<Indices>();
  if (kind == 1) {
    for (uint32_t t = 0; t < n_tri; ++t) roi->push_back(t);
    shuffle(random, *roi);
    return roi;
  }
  const uint64_t count = kind == 2 ? n_tri : random.below(2 * n_tri);
  while (roi->size() < count) roi->push_back(static_cast<uint32_t>(random.below(n_tri)));
  return roi;
}

TSoup make_Mesh(Random& random) {
  switch (random.below(6)) {
    case 0:
      return make_Bumpy(6, 5);
    case 1:
      return tilt(make_Bumpy(5, 6));
    case 2:
      return make_Sphere(6, 8, 3.0);
    case 3:
      return tilt(make_Box(2, 3, 1));
    case 4:
      return make_Tangle(random, 12 + random.below(20), 1 + random.below(60));
    default: {
      TSoup soup;
      const auto count = static_cast<uint32_t>(1 + random.below(80));
      for (uint32_t t = 0; t < count; ++t) {
        const T3DVEC at = random.triple(-3, 3);
        for (int k = 0; k < 3; ++k) soup.vtx.push_back(at + random.triple(-1, 1));
        soup.tri.push_back({3 * t, 3 * t + 1, 3 * t + 2});
      }
      return soup;
    }
  }
}

class Classification : public BlocksTest {
 protected:
  ~Classification() override { omp_set_num_threads(threads_before); }
  const int threads_before = omp_get_max_threads();
};

TEST_F(Classification, EqualsThePlainLoop_OnRandomMeshes) {
  constexpr uint64_t seed = 54001;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  static constexpr double kLifts[] = {0.001, 0.0, 0.1, -0.01};
  static constexpr double kGrowths[] = {0.0, 0.0, -0.4, 0.02, 0.3};
  uint64_t undercut = 0, all = 0;
  for (uint32_t round = 0; round < scale_Cases(400); ++round) {
    TSoup soup = make_Mesh(random);
    const auto axi = make_Axes(random, random.below(6));
    const auto roi = make_Roi(random, soup.msh().n_tri);
    g_UCs.f_tol = kLifts[random.below(4)];
    g_UCs.f_dil = kGrowths[random.below(5)];
    const Bytes bytes = call(soup.msh(), roi.get(), axi);
    ASSERT_EQ(bytes, call_Plainly(soup.msh(), roi.get(), axi)) << "round " << round;
    all += bytes.size();
    undercut += static_cast<uint64_t>(std::count(bytes.begin(), bytes.end(), 1));
  }
  EXPECT_GT(undercut, all / 5);  // neither answer is rare
  EXPECT_LT(undercut, all * 4 / 5);
}

TEST_F(Classification, EqualsThePlainLoop_OnABodyWithOverhangs) {
  bodies::TBody body = bodies::make_Ball(1500);
  Random random(54002);
  for (const double growth : {0.0, 0.15}) {
    g_UCs.f_dil = growth;
    const auto axi = make_Axes(random, 4);
    EXPECT_EQ(call(body.view(), nullptr, axi), call_Plainly(body.view(), nullptr, axi));
  }
}

TEST_F(Classification, HasTheSameBytes_ForAnyNumberOfThreads) {
  bodies::TBody body = bodies::make_Ring(4000);
  Random random(54003);
  const auto axi = make_Axes(random, 5);
  Indices roi;
  for (uint32_t t = 0; t < body.view().n_tri; ++t)
    if (random.chance(0.7)) roi.push_back(t);
  shuffle(random, roi);
  for (const double growth : {0.0, 0.2}) {
    g_UCs.f_dil = growth;
    omp_set_num_threads(1);
    const Bytes whole = call(body.view(), nullptr, axi), part = call(body.view(), &roi, axi);
    // From many down: LLVM's runtime loses memory where a team grows again and again.
    for (const int threads : {16, 8, 4, 3, 2, 1}) {
      omp_set_num_threads(threads);
      for (int repeat = 0; repeat < 3; ++repeat) {
        ASSERT_EQ(call(body.view(), nullptr, axi), whole) << threads << " threads";
        ASSERT_EQ(call(body.view(), &roi, axi), part) << threads << " threads";
      }
    }
  }
}

TEST_F(Classification, HasTheSameBytes_ForAnyOrderOfTheAxes) {
  bodies::TBody body = bodies::make_Ball(3000);
  Random random(54004);
  auto axi = make_Axes(random, 6);
  const Bytes bytes = call(body.view(), nullptr, axi);
  for (int order = 0; order < 8; ++order) {
    shuffle(random, axi);
    EXPECT_EQ(call(body.view(), nullptr, axi), bytes);
  }
}

TEST_F(Classification, HasTheSameBytes_ForAnyOrderOfRoi) {
  bodies::TBody body = bodies::make_Ball(3000);
  Random random(54005);
  const auto axi = make_Axes(random, 3);
  const Bytes whole = call(body.view(), nullptr, axi);
  Indices roi;
  for (uint32_t t = 0; t < body.view().n_tri; ++t) roi.push_back(t);
  for (int order = 0; order < 5; ++order) {
    shuffle(random, roi);
    EXPECT_EQ(call(body.view(), &roi, axi), whole);
  }
  roi.resize(roi.size() / 2);
  Bytes half(whole.size(), 0);
  for (const uint32_t t : roi) half[t] = whole[t];
  for (int order = 0; order < 5; ++order) {
    EXPECT_EQ(call(body.view(), &roi, axi), half);
    shuffle(random, roi);
  }
}

// With every axis of the list also on its own: undercut is what all of them miss.
TEST_F(Classification, OfSeveralAxes_IsWhatEachOfThemMisses) {
  bodies::TBody body = bodies::make_Ring(3000);
  Random random(54006);
  const auto axi = make_Axes(random, 7);
  Bytes missed(body.view().n_tri, 1);
  for (const T3DRAY& axis : axi) {
    const Bytes one = call(body.view(), nullptr, {axis});
    for (size_t t = 0; t < missed.size(); ++t) missed[t] &= one[t];
  }
  EXPECT_EQ(call(body.view(), nullptr, axi), missed);
}

// A triangle that is a point has no direction to grow in, and disturbs no ray.
TEST_F(Classification, CountsTwoEqualCornersAsUndercut_ThatHaveGrown) {
  TSoup soup = make_Grid(1, 1);
  soup.vtx.insert(soup.vtx.end(), {{0.1, 20, 0.3}, {4, 40, 4}, {4, 40, 4}, {9, 9, 9}});
  soup.tri.insert(soup.tri.end(), {{4, 5, 5}, {5, 4, 4}, {4, 5, 6}, {7, 7, 7}, {4, 4, 4}});
  g_UCs.f_dil = 0.5;
  EXPECT_EQ(call(soup.msh(), nullptr, {{{0, 0, 0}, {0.1, 0.2, -1}}}), (Bytes{0, 0, 1, 1, 1, 1, 1}));
}

TEST_F(Classification, EndsInBoundedTime_OnCoordinatesThatAreNotFinite) {
  Random random(54007);
  for (uint32_t round = 0; round < scale_Cases(60); ++round) {
    TSoup soup = make_Mesh(random);
    for (T3DVEC& v : soup.vtx)
      if (random.chance(0.2)) v = {random.special(), random.special(), random.special()};
    g_UCs.f_tol = random.chance(0.5) ? 0.001 : random.special();
    g_UCs.f_dil = random.chance(0.5) ? 0.0 : random.special();
    const Bytes bytes = call(soup.msh(), nullptr, make_Axes(random, 2));
    ASSERT_EQ(bytes.size(), soup.tri.size());
    for (const uint8_t byte : bytes) ASSERT_LE(byte, 1);
  }
}

}  // namespace
