#include "projection/point_search.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/random_bodies.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TPrjPar make_Par(double off, double inc, double lim) {
  TPrjPar par;
  par.f_off = off;
  par.f_inc = inc;
  par.f_lim = lim;
  return par;
}
std::vector<double> radii_Of(const TPrjPar& par) {
  Scoped<TArr<double>> radii;
  EXPECT_TRUE(list_Radii(par, *radii));
  return copy_Of(*radii);
}
std::vector<double> radii_Of(double off, double inc, double lim) {
  return radii_Of(make_Par(off, inc, lim));
}

using Radii = std::vector<double>;

TEST(PointSearchRadii, RiseByTheIncrement_WhileTheyAreBelowTheLimit) {
  EXPECT_EQ(radii_Of(0.5, 0.25, 1.25), (Radii{0.5, 0.75, 1.0}));
  EXPECT_EQ(radii_Of(0.5, 0.25, 1.26), (Radii{0.5, 0.75, 1.0, 1.25}));
  EXPECT_EQ(radii_Of(-1, 0.75, 0.5), (Radii{-1, -0.25}));
}

// Each is the one before it and the increment, rounded; not a multiple of the increment.
TEST(PointSearchRadii, AreAddedUp) {
  const Radii radii = radii_Of(TPrjPar());
  ASSERT_EQ(radii.size(), 49u);
  double radius = 0.1;
  for (const double r : radii) {
    EXPECT_EQ(r, radius);
    radius += 0.05;
  }
  EXPECT_NE(radii[48], 0.1 + 48 * 0.05);
}

TEST(PointSearchRadii, AreNone_WhereTheFirstIsNotBelowTheLimit) {
  EXPECT_EQ(radii_Of(1, 0.1, 1), Radii());
  EXPECT_EQ(radii_Of(2, 0.1, 1), Radii());
  EXPECT_EQ(radii_Of(kNan, 0.1, 1), Radii());
  EXPECT_EQ(radii_Of(1, 0.1, kNan), Radii());
  EXPECT_EQ(radii_Of(kInf, 0.1, kInf), Radii());
}

TEST(PointSearchRadii, EndWhereAStepNoLongerRaisesThem) {
  EXPECT_EQ(radii_Of(1, 0, 2), (Radii{1}));
  EXPECT_EQ(radii_Of(1, -0.5, 2), (Radii{1}));
  EXPECT_EQ(radii_Of(1, kNan, 2), (Radii{1}));
  EXPECT_EQ(radii_Of(1, kInf, kInf), (Radii{1}));
  EXPECT_EQ(radii_Of(-kInf, 1, 2), (Radii{-kInf}));
  const double third = 0x1p52;  // from here on a step of 0.5 rounds away
  EXPECT_EQ(radii_Of(third - 0.5, 0.5, kInf), (Radii{third - 0.5, third}));
}

TEST(PointSearchRadii, AreAMillionAtTheMost) {
  EXPECT_EQ(radii_Of(0, 1, 999999).size(), 999999u);
  EXPECT_EQ(radii_Of(0, 1, 1000000).size(), 1000000u);
  EXPECT_EQ(radii_Of(0, 1, 1000001).size(), 1000000u);
  EXPECT_EQ(radii_Of(0, 1e-300, 1).size(), 1000000u);
}

TEST(PointSearchRadii, WithoutMemory_Fail) {
  const auto codes = list_FailureCodes([] {
    Scoped<TArr<double>> radii;
    return list_Radii(TPrjPar(), *radii);
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{false, true}));
}

// The first phase with every radius in turn, on the tree itself.
T3DVEC to_AreaPlainly(const C3DTriAABBTree& tree, const T3DRAY& line, const Radii& radii,
                      TLst<uint32_t>& hits) {
  hits.count = 0;
  for (size_t k = 0; k < radii.size() && hits.count == 0; ++k)
    tree.QueryCylinder({{{}, {}, line.dir, line.org}, radii[k]}, hits);
  T3DVEC result = line.org;
  double best = kAbsent;
  for (uint32_t i = 0; i < hits.count; ++i) {
    const T3DFAC f = get_Fac(tree.mesh(), hits.data[i]);
    const T3DVEC away = (f.a + f.b + f.c) / 3.0 - line.org;
    const double distance = len(away - dot(away, line.dir) * line.dir);
    if (distance < best) {
      best = distance;
      result = dot(away, line.dir) * line.dir + line.org;
    }
  }
  return result;
}

// Also on meshes with triangles that every ray hits which comes to their leaf, and for lines
// without direction and values that are not finite.
TEST(PointSearch, FindsWhatEveryRadiusInTurnFinds) {
  uint32_t moved = 0;
  for (uint32_t seed = 0; seed < scale_Cases(150); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    reference::Random random(seed);
    TSoup soup = any_Mesh(random);
    if (seed % 10 == 9) soup.vtx[random.below(soup.vtx.size())].x = random.special();
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Build(soup.msh()));
    Scoped<TLst<uint32_t>> hits;
    ASSERT_TRUE(alloc(*hits, uint32_t(soup.tri.size())));
    const double off = random.real(-0.1, 1);
    const double inc = random.real(0.001, 0.3);
    const TPrjPar par = make_Par(off, inc, off + random.real(0, 40) * inc);
    Scoped<TArr<double>> radii;
    ASSERT_TRUE(list_Radii(par, *radii));
    for (int i = 0; i < 20; ++i) {
      T3DRAY line = {random.triple(-12, 12), {}};
      line.dir = unit(random.triple(-1, 1));
      if (random.chance(0.02)) line.dir = {};
      if (random.chance(0.05)) line.org.y = random.special();
      const T3DVEC plain = to_AreaPlainly(tree, line, copy_Of(*radii), *hits);
      const T3DVEC found = to_Area(tree, line, *radii, *hits);
      ASSERT_EQ(std::memcmp(&found, &plain, sizeof plain), 0) << "point " << i;
      moved += found != line.org;
    }
  }
  EXPECT_GT(moved, 1000u);
}

// What the list held before is of no account, whether radii are tried or not.
TEST(PointSearch, StartsTheListAnew) {
  TSoup soup = make_Grid(2, 2);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(soup.msh()));
  Scoped<TLst<uint32_t>> hits;
  ASSERT_TRUE(alloc(*hits, 8));
  hits->count = 8;
  TArr<double> none = {};
  EXPECT_EQ(to_Area(tree, {{1, 1, 5}, {0, 0, 1}}, none, *hits), (T3DVEC{1, 1, 5}));
  EXPECT_EQ(hits->count, 0u);
  Radii small = {0.1};
  hits->count = 8;
  EXPECT_EQ(to_Area(tree, {{0.5, 0.25, 5}, {0, 0, 1}}, view_Arr(small), *hits),
            (T3DVEC{0.5, 0.25, 0}));
  EXPECT_LT(hits->count, 8u);
  EXPECT_EQ(onto_Mesh(tree, {{9, 9, 5}, {0, 0, 1}}, 9, *hits), (T3DVEC{9, 9, 5}));
  EXPECT_EQ(hits->count, 0u);
}

}  // namespace
