// Triangles grown and shrunk from their centroids.
#include "mesh/shrink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "tests/mesh/soups.h"
#include "tests/reference/random_geometry.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

// The triangles of the soup, by value.
std::vector<T3DFAC> shrink(TSoup soup, double distance) {
  Scoped<T3DMSH> out;
  EXPECT_TRUE(tri_Shrink(soup.msh(), distance, *out));
  EXPECT_EQ(out->n_tri, soup.tri.size());
  EXPECT_EQ(out->n_vtx, 3 * soup.tri.size());
  std::vector<T3DFAC> faces;
  for (uint32_t t = 0; t < out->n_tri; ++t) {
    EXPECT_EQ(out->tri[t].a, 3 * t);
    EXPECT_EQ(out->tri[t].b, 3 * t + 1);
    EXPECT_EQ(out->tri[t].c, 3 * t + 2);
    faces.push_back(get_Fac(*out, t));
  }
  return faces;
}

bool is_Same(const T3DFAC& f, const T3DFAC& g) { return f.a == g.a && f.b == g.b && f.c == g.c; }

T3DVEC get_Corner(const T3DFAC& f, uint32_t k) { return k == 0 ? f.a : k == 1 ? f.b : f.c; }

// Corners 5, 5 and 8 from the centroid, which is the origin.
TSoup make_Kite() { return {{{-4, 3, 0}, {-4, -3, 0}, {8, 0, 0}}, {{0, 1, 2}}}; }

}  // namespace

TEST(Shrink, ByNothingReproducesTheCorners) {
  TSoup soup = tilt(make_Sphere(7, 9, 11.3));
  const std::vector<T3DFAC> faces = shrink(soup, 0.0);
  for (uint32_t t = 0; t < faces.size(); ++t)
    EXPECT_TRUE(is_Same(faces[t], get_Fac(soup.msh(), t))) << t;
}

TEST(Shrink, ByMoreThanTheDistanceLandsOnTheCentroid) {
  TSoup soup = tilt(make_Box(1, 2, 3));
  const std::vector<T3DFAC> faces = shrink(soup, -10.0);
  for (uint32_t t = 0; t < faces.size(); ++t) {
    const T3DVEC g = cen_Tri(get_Fac(soup.msh(), t));
    EXPECT_TRUE(is_Same(faces[t], {g, g, g})) << t;
  }
}

TEST(Shrink, ByExactlyTheDistanceLandsOnTheCentroid) {
  const T3DFAC face = shrink(make_Kite(), -5.0)[0];
  EXPECT_EQ(len(face.a), 0.0);
  EXPECT_EQ(len(face.b), 0.0);
  EXPECT_EQ(len(face.c), 3.0);
}

TEST(Shrink, StopsOnlyTheCornersThatWouldPassTheCentroid) {
  const T3DFAC face = shrink(make_Kite(), -5.5)[0];
  EXPECT_TRUE(is_Same(face, {{0, 0, 0}, {0, 0, 0}, {2.5, 0, 0}}));
}

TEST(Shrink, GrowsForADistanceAboveZero) {
  const T3DFAC face = shrink(make_Kite(), 5.0)[0];
  EXPECT_TRUE(is_Same(face, {{-8, 6, 0}, {-8, -6, 0}, {13, 0, 0}}));
}

TEST(Shrink, MovesEachCornerByTheDistanceAlongItsRay) {
  const uint64_t seed = 41;
  reference::Random random(seed);
  for (uint32_t i = 0; i < scale_Cases(2000); ++i) {
    TSoup soup = {{random.triple(-9, 9), random.triple(-9, 9), random.triple(-9, 9)}, {{0, 1, 2}}};
    const double distance = random.real(-4, 4);
    const T3DFAC before = get_Fac(soup.msh(), 0), after = shrink(soup, distance)[0];
    const T3DVEC g = cen_Tri(before);
    for (uint32_t k = 0; k < 3; ++k) {
      const T3DVEC ray = get_Corner(before, k) - g, moved = get_Corner(after, k) - g;
      EXPECT_NEAR(len(moved), std::max(0.0, len(ray) + distance), 1e-12) << "seed " << seed;
      EXPECT_NEAR(dot(moved, ray), len(moved) * len(ray), 1e-11) << "seed " << seed;
    }
  }
}

TEST(Shrink, LeavesACornerOnTheCentroidWhereItIs) {
  const TSoup line = {{{0, 0, 0}, {-2, 0, 0}, {2, 0, 0}}, {{0, 1, 2}}};
  EXPECT_TRUE(is_Same(shrink(line, 1.0)[0], {{0, 0, 0}, {-3, 0, 0}, {3, 0, 0}}));
}

TEST(Shrink, KeepsATriangleOfOnePointInItsPlace) {
  const T3DVEC p = {4, 8, 2};
  for (const double distance : {-1.0, 0.0, 1.0})
    EXPECT_TRUE(is_Same(shrink({{p}, {{0, 0, 0}}}, distance)[0], {p, p, p})) << distance;
}

TEST(Shrink, GivesSharedCornersToEachTriangleForItself) {
  const std::vector<T3DFAC> faces = shrink(make_Grid(1, 1), -0.1);
  EXPECT_FALSE(faces[0].a == faces[1].a);
}

TEST(Shrink, TakesADistanceThatIsNotANumber) {
  const T3DFAC face = shrink(make_Kite(), std::numeric_limits<double>::quiet_NaN())[0];
  EXPECT_TRUE(std::isnan(face.a.x));
}

TEST(Shrink, OfAnEmptyMeshFails) {
  TSoup soup = make_Kite();
  T3DMSH out = soup.msh();
  T3DMSH msh = soup.msh();
  msh.n_tri = 0;
  EXPECT_FALSE(tri_Shrink(msh, 1.0, out));
  EXPECT_EQ(out.vtx, nullptr);
  msh = soup.msh();
  msh.vtx = nullptr;
  EXPECT_FALSE(tri_Shrink(msh, 1.0, out));
}

TEST(Shrink, OfMoreTrianglesThanIndicesReachFails) {
  TSoup soup = make_Kite();
  T3DMSH msh = soup.msh(), out;
  msh.n_tri = UINT32_MAX / 3 + 1;
  const FailingAllocation first(1);
  EXPECT_FALSE(tri_Shrink(msh, 1.0, out));
  EXPECT_FALSE(first.has_Failed()) << "nothing may be allocated";
}

TEST(Shrink, FailsWithoutMemoryAndLeaksNothing) {
  TSoup soup = make_Kite();
  const auto run = [&] {
    Scoped<T3DMSH> out;
    const bool done = tri_Shrink(soup.msh(), 1.0, *out);
    EXPECT_EQ(done, out->vtx != nullptr);
    return done ? 0 : -1;
  };
  EXPECT_EQ(list_FailureCodes(run), (std::vector<int32_t>{-1, 0}));
}
