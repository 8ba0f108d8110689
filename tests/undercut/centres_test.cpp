// Origins of frames: running means.
#include "undercut/centres.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "tests/support/meshes.h"

namespace undercut::tests {

namespace {

// The i-th point against the mean of those before it.
T3DVEC mean_Of(const std::vector<T3DVEC>& points) {
  double x = 0, y = 0, z = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    const double k = double(i) / (double(i) + 1), w = 1 / (double(i) + 1);
    x = k * x + w * points[i].x;
    y = k * y + w * points[i].y;
    z = k * z + w * points[i].z;
  }
  return {x, y, z};
}

// Exactly; prints what differs.
void expect_Equal(const T3DVEC& a, const T3DVEC& b) {
  EXPECT_EQ(a.x, b.x);
  EXPECT_EQ(a.y, b.y);
  EXPECT_EQ(a.z, b.z);
}

T3DVEC third_Of(const T3DFAC& f) {
  return {(f.a.x + f.b.x + f.c.x) / 3, (f.a.y + f.b.y + f.c.y) / 3, (f.a.z + f.b.z + f.c.z) / 3};
}

}  // namespace

TEST(Centres, OfOneVertex_AreIt) {
  TSoup soup;
  soup.vtx = {{0.1, -7.3, 1e9}};
  expect_Equal(mean_Vertices(soup.msh()), {0.1, -7.3, 1e9});
}

TEST(Centres, OfAllVertices_RunInTheirOrder_UnusedOnesAmongThem) {
  constexpr uint64_t seed = 77;
  std::printf("seed %d\n", int(seed));
  reference::Random random(seed);
  for (int round = 0; round < 50; ++round) {
    TSoup soup;
    for (uint64_t v = 0; v < 1 + random.below(200); ++v)
      soup.vtx.push_back(random.triple(-100, 300));
    soup.tri = {{0, 0, 0}};
    expect_Equal(mean_Vertices(soup.msh()), mean_Of(soup.vtx));
  }
}

TEST(Centres, OfAMeanThatRuns_DoNotOverflow) {
  TSoup soup;
  soup.vtx.assign(10, {1.7e308, -1.7e308, 1});
  const T3DVEC mean = mean_Vertices(soup.msh());
  EXPECT_NEAR(mean.x / 1.7e308, 1, 1e-12);
  EXPECT_NEAR(mean.y / 1.7e308, -1, 1e-12);
}

TEST(Centres, OfAList_AreThoseOfItsCentroids_EachWithTheSameWeight) {
  TSoup soup = tilt(make_Bumpy(5, 5));
  std::vector<uint32_t> list = {7, 3, 3, 40, 0, 12, 7};
  std::vector<T3DVEC> centroids;
  for (const uint32_t t : list) centroids.push_back(third_Of(get_Fac(soup.msh(), t)));
  expect_Equal(mean_Centroids(soup.msh(), view_Lst(list)), mean_Of(centroids));
}

TEST(Centres, CountTrianglesWithEqualCorners) {
  TSoup soup;
  soup.vtx = {{0, 0, 0}, {3, 0, 0}, {0, 3, 0}};
  soup.tri = {{0, 1, 2}, {1, 1, 1}};
  std::vector<uint32_t> list = {0, 1};
  expect_Equal(mean_Centroids(soup.msh(), view_Lst(list)), {2, 0.5, 0});
}

TEST(Centres, OfAnEmptyList_AreZero) {
  TSoup soup = tilt(make_Pyramid());
  std::vector<uint32_t> list = {1};
  TLst<uint32_t> empty = view_Lst(list);
  empty.count = 0;
  expect_Equal(mean_Centroids(soup.msh(), empty), {0, 0, 0});
}

TEST(Centres, OfANullList_AreTheMeanOfTheVertices) {
  TSoup soup = tilt(make_Pyramid());
  expect_Equal(mean_Centroids(soup.msh(), {}), mean_Vertices(soup.msh()));
  expect_Equal(mean_Centroids(soup.msh(), {nullptr, 3, 3}), mean_Vertices(soup.msh()));
}

}  // namespace undercut::tests
