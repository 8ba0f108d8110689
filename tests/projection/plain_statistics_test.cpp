// get_Sta and get_Stb against a plain loop, bit for bit, and against rays of another method.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <numeric>

#include "tests/reference/plain_statistics.h"
#include "tests/reference/second_rays.h"
#include "tests/support/intensity.h"
#include "tests/support/random_bodies.h"
#include "tests/support/stl_mesh.h"
#include "tests/support/undercut_calls.h"

using namespace undercut;
using namespace undercut::tests;
using reference::Random;

namespace {

using Regions = std::vector<std::vector<uint32_t>>;
using Plain = TUcStat (*)(const T3DMSH&, const std::vector<uint32_t>&, const T3DRAY&, double);

class PlainStatistics : public testing::Test {
 private:
  TDefaultParameters parameters_;
};

std::vector<TUcStat> call(int32_t (*computation)(const TUcReq*, TUcRes*), const TSoup& soup,
                          Regions& regions, const std::vector<T3DRAY>& axes) {
  TUcCall call(soup);
  call.set_Axes(axes);
  std::vector<TLstU32> views;
  for (auto& region : regions) views.push_back(view_Lst(region));
  const auto count = static_cast<uint32_t>(views.size());
  call.req.cav = {views.data(), count, count};
  const int32_t status = computation(&call.req, &call.res);
  EXPECT_EQ(status, 0);
  if (status != 0) return std::vector<TUcStat>(count);
  return std::vector<TUcStat>(call.res.sta, call.res.sta + count);
}

// Nothing, all of the mesh, what lies on one side of a plane, or anything with repeats; in any
// order.
std::vector<uint32_t> any_Region(Random& random, const TSoup& soup) {
  const auto n = static_cast<uint32_t>(soup.tri.size());
  const uint64_t kind = random.below(8);
  std::vector<uint32_t> region;
  if (kind == 0) return region;
  if (kind < 3) {
    region = list_All(soup);
  } else if (kind < 6) {
    const T3DVEC normal = random.triple(-1, 1);
    const double offset = random.real(-2, 2);
    for (uint32_t t = 0; t < n; ++t)
      if (dot(soup.vtx[soup.tri[t].a], normal) > offset) region.push_back(t);
  } else {
    for (uint64_t i = random.below(2 * n); i > 0; --i)
      region.push_back(static_cast<uint32_t>(random.below(n)));
  }
  for (size_t i = region.size(); i > 1; --i) std::swap(region[i - 1], region[random.below(i)]);
  return region;
}

T3DRAY any_Axis(Random& random) {
  static constexpr T3DVEC kSpecial[] = {{0, 0, 0}, {0, 0, -2}, {1, 0, 0}, {0, -1, 0}};
  const T3DVEC org = random.triple(-9, 9);
  const T3DVEC dir = random.triple(-1, 1);
  return {org, random.chance(0.2) ? kSpecial[random.below(4)] : dir};
}

// Figures of a mesh, as a part of how many each answer is rare or not.
struct TTally {
  uint32_t all = 0, flags = 0, partly = 0;
  void add(const TUcStat& stat) {
    ++all;
    flags += stat.seen;
    partly += stat.share > 0.05 && stat.share < 0.95;
  }
};

TTally compare(int32_t (*computation)(const TUcReq*, TUcRes*), Plain plain, uint64_t seed) {
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  static constexpr double kLifts[] = {0.001, 0.0, 0.1, -0.01};
  TTally tally;
  for (uint32_t round = 0; round < scale_Cases(150); ++round) {
    const uint64_t kind = random.below(5);
    const uint64_t vertices = 5 + random.below(20), triangles = 1 + random.below(60);
    const TSoup soup = kind == 0   ? make_Tangle(random, vertices, triangles)
                       : kind == 1 ? tilt(make_Bumpy(5, 6))
                                   : any_Mesh(random);
    g_UCs.f_tol = kLifts[random.below(4)];
    Regions regions(1 + random.below(4));
    std::vector<T3DRAY> axes;
    for (auto& region : regions) {
      region = any_Region(random, soup);
      axes.push_back(any_Axis(random));
    }
    const auto stats = call(computation, soup, regions, axes);
    for (size_t k = 0; k < regions.size(); ++k) {
      const TUcStat expected = plain(TUcCall::view(soup), regions[k], axes[k], g_UCs.f_tol);
      EXPECT_EQ(std::memcmp(&stats[k], &expected, sizeof expected), 0)
          << "round " << round << ", region " << k << ": share " << stats[k].share << " instead of "
          << expected.share;
      tally.add(stats[k]);
    }
    if (testing::Test::HasFailure()) return tally;
  }
  return tally;
}

TEST_F(PlainStatistics, OfSurfaces_EqualALoopOverAllTriangles_OnRandomMeshes) {
  const TTally tally = compare(get_Sta, reference::rate_Surface, 73001);
  EXPECT_GT(tally.flags, tally.all / 20);
  EXPECT_LT(tally.flags, tally.all / 2);
  EXPECT_GT(tally.partly, tally.all / 4);
}

TEST_F(PlainStatistics, OfRims_EqualALoopOverAllTriangles_OnRandomMeshes) {
  const TTally tally = compare(get_Stb, reference::rate_Rim, 73002);
  EXPECT_GT(tally.flags, tally.all / 20);
  EXPECT_LT(tally.flags, tally.all / 2);
  EXPECT_GT(tally.partly, tally.all / 4);
}

TEST_F(PlainStatistics, OfRims_EqualALoopOverAllTriangles_OnARealPart) {
  const TSoup part = read_Stl(UNDERCUT_EXAMPLES "/molar_stub.stl");
  ASSERT_GT(part.tri.size(), 3000u);
  Regions regions(3);
  for (uint32_t t = 0; t < part.tri.size(); ++t)
    if (t % 7 < 3) regions[t % 3].push_back(t);
  const std::vector<T3DRAY> axes = {
      {{0, 0, 0}, {0.1, 0.2, -1}}, {{0, 0, 0}, {1, 0.3, 0.2}}, {{0, 0, 0}, {0, 0, 1}}};
  const auto rims = call(get_Stb, part, regions, axes);
  const auto surfaces = call(get_Sta, part, regions, axes);
  for (size_t k = 0; k < 3; ++k) {
    const T3DMSH msh = TUcCall::view(part);
    const TUcStat rim = reference::rate_Rim(msh, regions[k], axes[k], g_UCs.f_tol);
    const TUcStat surface = reference::rate_Surface(msh, regions[k], axes[k], g_UCs.f_tol);
    EXPECT_GT(rim.rim_seen, 50u);
    EXPECT_EQ(std::memcmp(&rims[k], &rim, sizeof rim), 0) << k;
    EXPECT_EQ(std::memcmp(&surfaces[k], &surface, sizeof surface), 0) << k;
  }
}

// One region of a mesh in general position, and what is said of it.
struct TCase {
  TSoup soup;
  std::vector<uint32_t> region;
  T3DRAY axis;
  TUcStat stat;
};

TCase any_Case(Random& random, int32_t (*computation)(const TUcReq*, TUcRes*)) {
  TCase c;
  c.soup = any_Mesh(random);
  c.region = any_Region(random, c.soup);
  c.axis = {{0, 0, 0}, random.triple(-1, 1)};
  Regions regions = {c.region};
  c.stat = call(computation, c.soup, regions, {c.axis})[0];
  return c;
}

TEST_F(PlainStatistics, OfSurfaces_AgreeWithRaysOfAnotherMethod) {
  namespace second = reference::second;
  constexpr uint64_t seed = 73003;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(60); ++round) {
    const TCase c = any_Case(random, get_Sta);
    const T3DMSH msh = TUcCall::view(c.soup);
    const auto obstacle = second::facets(msh);
    const auto sight = second::look(msh, obstacle, second::against(c.axis), g_UCs.f_tol);
    second::Real area = 0, area_seen = 0;
    bool all = true;
    for (const uint32_t t : c.region) {
      if (sight[t] == second::Sight::kNone) continue;
      const second::Real part = second::length(second::across(obstacle[t])) / 2;
      area += part;
      if (sight[t] == second::Sight::kSeen) area_seen += part;
      all = all && sight[t] == second::Sight::kSeen;
    }
    ASSERT_EQ(c.stat.seen, all) << "round " << round;
    ASSERT_NEAR(c.stat.area, static_cast<double>(area), 1e-10) << "round " << round;
    ASSERT_NEAR(c.stat.area_seen, static_cast<double>(area_seen), 1e-10) << "round " << round;
  }
}

TEST_F(PlainStatistics, OfRims_AgreeWithRaysOfAnotherMethod) {
  namespace second = reference::second;
  constexpr uint64_t seed = 73004;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(60); ++round) {
    const TCase c = any_Case(random, get_Stb);
    const T3DMSH msh = TUcCall::view(c.soup);
    const auto obstacle = second::facets(msh);
    const std::set<uint32_t> set(c.region.begin(), c.region.end());
    second::Real length = 0, length_seen = 0;
    uint32_t seen = 0;
    for (const reference::TRimEdge& edge : reference::list_Rim(msh, set)) {
      const second::TVec a = second::to_Real(msh.vtx[edge.a]), b = second::to_Real(msh.vtx[edge.b]);
      const second::TFacet& f = obstacle[static_cast<size_t>(find_AtEdge(msh, set, edge))];
      const second::Real l = second::length(second::minus(b, a));
      length += l;
      if (second::has_EqualCorners(f)) continue;
      const second::TVec start =
          second::plus(second::times(0.5L, second::plus(a, b)),
                       second::times(g_UCs.f_tol, second::normal(second::across(f))));
      if (!second::is_Free(obstacle, start, second::against(c.axis))) continue;
      length_seen += l;
      ++seen;
    }
    ASSERT_EQ(c.stat.rim_seen, seen) << "round " << round;
    if (length > 0) {
      ASSERT_NEAR(c.stat.share, static_cast<double>(length_seen / length), 1e-12);
    }
  }
}

}  // namespace
