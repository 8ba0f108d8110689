#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "mesh/lanes.h"
#include "mesh/trees.h"
#include "tests/mesh/tree_shapes.h"
#include "tests/reference/plain_rays.h"
#include "tests/support/intensity.h"

using namespace undercut;
using reference::Random;
using shapes::Mesh;
using undercut::tests::scale_Cases;

namespace {

// The tree of rays over a mesh, which both forms of its walk are asked.
struct Built {
  explicit Built(Mesh mesh) : mesh_(std::move(mesh)), boxes_(shapes::triangle_Boxes(mesh_)) {
    rays.build(mesh_.view());
  }
  bool any_Hit(const T3DRAY& ray) {
    const bool hit = rays.any_Hit(ray, mesh_.view());
    EXPECT_EQ(rays.any_HitPortable(ray, mesh_.view()), hit);
    return hit;
  }
  bool any_InLoop(const T3DRAY& ray) { return reference::any_Hit(mesh_.view(), ray); }
  const C3DAABB& pick_Box(Random& random) const { return boxes_[random.below(boxes_.size())]; }

  TRayTree rays;

 private:
  Mesh mesh_;
  std::vector<C3DAABB> boxes_;
};

Mesh make_One(double size) {
  Mesh mesh;
  mesh.add({0, 0, 0}, {size, 0, 0}, {0, size, 0});
  return mesh;
}

const T3DRAY kDown = {{0.2, 0.2, 1}, {0, 0, -1}};

TEST(RayTree, TakesNoRay_BeforeItIsBuilt) {
  TRayTree rays;
  EXPECT_FALSE(rays.takes(kDown));
  rays.build({});
  EXPECT_FALSE(rays.takes(kDown));
}

TEST(RayTree, TakesNoRay_AfterItIsCleared) {
  Built built(make_One(1));
  EXPECT_TRUE(built.rays.takes(kDown));
  EXPECT_TRUE(built.any_Hit(kDown));
  built.rays.clear();
  EXPECT_FALSE(built.rays.takes(kDown));
}

TEST(RayTree, TakesRays_FiniteAndInRange_Only) {
  const Built built(make_One(1));
  const double infinite = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double odd : {infinite, -infinite, nan}) {
    EXPECT_FALSE(built.rays.takes({{0, odd, 0}, {0, 0, 1}}));
    EXPECT_FALSE(built.rays.takes({{0, 0, 0}, {0, odd, 1}}));
  }
  EXPECT_FALSE(built.rays.takes({{0, 0, 0}, {0, 0, 0}}));
  EXPECT_FALSE(built.rays.takes({{0, 0, 0}, {1e-31, 0, 0}}));
  EXPECT_FALSE(built.rays.takes({{0, 0, 0}, {0, -1e31, 0}}));
  EXPECT_FALSE(built.rays.takes({{0, 0, 2e18}, {0, 0, 1}}));
  EXPECT_TRUE(built.rays.takes({{0, 0, -1e18}, {5e-324, 0, -1e-30}}));
  EXPECT_TRUE(built.rays.takes({{0, 1e-300, 0}, {1e30, 0, -0.0}}));
}

TEST(RayTree, IsNotMade_WhereCoordinatesAreOutOfRangeOrNotNumbers) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_TRUE(Built(make_One(1e18)).rays.takes(kDown));
  EXPECT_TRUE(Built(make_One(1e-30)).rays.takes(kDown));
  EXPECT_FALSE(Built(make_One(2e18)).rays.takes(kDown));
  EXPECT_FALSE(Built(make_One(std::numeric_limits<double>::infinity())).rays.takes(kDown));
  Mesh mesh = make_One(1);
  mesh.add({nan, 0, 0}, {nan, 1, 0}, {nan, 0, 1});
  EXPECT_FALSE(Built(mesh).rays.takes(kDown));
}

TEST(RayTree, AnswersForCoincidentTrianglesLikeForOne) {
  Built one(shapes::make_Coincident(1)), many(shapes::make_Coincident(500));
  const T3DRAY hit = {{1, 1, -5}, {0, 0, 1}}, miss = {{0.2, 1.8, 0.1}, {0, 0, 1}};
  EXPECT_TRUE(one.any_Hit(hit));
  EXPECT_TRUE(many.any_Hit(hit));
  EXPECT_FALSE(one.any_Hit(miss));
  EXPECT_FALSE(many.any_Hit(miss));
}

double& get_Part(T3DVEC& v, uint64_t axis) { return axis == 0 ? v.x : axis == 1 ? v.y : v.z; }

// Segments taken for triangles, far from the origin or near it, some of them along an axis plane.
Mesh make_Segments(Random& random, uint32_t count, double scale) {
  Mesh mesh;
  const double away = random.chance(0.5) ? 0.0 : scale * std::pow(10.0, random.real(0, 12));
  const T3DVEC middle = away * random.triple(-1, 1);
  for (uint32_t t = 0; t < count; ++t) {
    const T3DVEC a = middle + scale * random.triple(-1, 1);
    T3DVEC b = a + (scale * std::pow(10.0, random.real(-4, 0))) * random.triple(-1, 1);
    if (random.chance(0.3)) b.y = a.y;
    mesh.add(a, b, a);
  }
  return mesh;
}

// At a corner, an edge, a face or the inside of a box, or the number next to it, from any distance.
T3DRAY aim_At(Random& random, const C3DAABB& box, double scale) {
  const T3DVEC corners[2] = {box.min, box.max};
  T3DVEC at, dir = random.triple(-1, 1);
  for (uint64_t axis = 0; axis < 3; ++axis) {
    T3DVEC low = box.min, high = box.max;
    double& part = get_Part(at, axis);
    part = random.real(get_Part(low, axis), get_Part(high, axis));
    if (random.chance(0.6)) {
      T3DVEC corner = corners[random.below(2)];
      part = get_Part(corner, axis);
    }
    if (random.chance(0.2)) part = std::nextafter(part, random.chance(0.5) ? 1e300 : -1e300);
  }
  double& part = get_Part(dir, random.below(3));
  switch (random.below(4)) {
    case 0:
      part = random.chance(0.5) ? 0.0 : -0.0;
      break;
    case 1:  // about where a quotient is cut off
      part *= std::pow(2.0, random.real(-44, -36));
      break;
    case 2:
      part *= std::pow(10.0, random.real(-320, 0));
      break;
    default:
      break;
  }
  T3DRAY ray = {at - (scale * std::pow(10.0, random.real(-3, 12))) * dir, dir};
  if (random.chance(0.3)) ray.dir = at - ray.org;
  if (random.chance(0.2)) ray.org = at;
  return ray;
}

void compare_Rays(Random& random, Built& built, double scale, uint32_t& hits, uint32_t& rays) {
  for (int k = 0; k < 500; ++k) {
    const T3DRAY ray = aim_At(random, built.pick_Box(random), scale);
    if (!built.rays.takes(ray)) continue;
    const bool hit = built.any_InLoop(ray);
    hits += hit ? 1 : 0;
    ++rays;
    ASSERT_EQ(built.any_Hit(ray), hit)
        << std::hexfloat << "org " << ray.org.x << " " << ray.org.y << " " << ray.org.z << " dir "
        << ray.dir.x << " " << ray.dir.y << " " << ray.dir.z;
  }
}

// A triangle without area is hit by every ray that passes its box, so the boxes alone decide.
TEST(RayTree, EqualsTheLoop_ForRaysThatGrazeBoxes) {
  Random random(15);
  SCOPED_TRACE("seed 15");
  uint32_t hits = 0, rays = 0;
  for (uint32_t round = 0; round < scale_Cases(400); ++round) {
    const double scale = round % 2 ? 1.0 : std::pow(10.0, random.real(-60, 5));
    Built built(make_Segments(random, 1 + static_cast<uint32_t>(random.below(30)), scale));
    ASSERT_NO_FATAL_FAILURE(compare_Rays(random, built, scale, hits, rays));
  }
  EXPECT_GT(rays, 100000u);
  EXPECT_GT(hits, rays / 10);  // neither answer is rare
  EXPECT_LT(hits, rays - rays / 10);
}

// Such a triangle is hit by every ray that passes the box of its other coordinates.
TEST(RayTree, EqualsTheLoop_WhereACoordinateOfATriangleIsNoNumber) {
  Random random(16);
  SCOPED_TRACE("seed 16");
  uint32_t hits = 0, rays = 0;
  for (uint32_t round = 0; round < scale_Cases(60); ++round) {
    Mesh mesh = shapes::make_Soup(random, 1 + static_cast<uint32_t>(random.below(40)));
    for (size_t p = 2; p < mesh.points.size(); p += 3)
      if (random.chance(0.3))
        get_Part(mesh.points[p], random.below(3)) = std::numeric_limits<double>::quiet_NaN();
    Built built(mesh);
    ASSERT_NO_FATAL_FAILURE(compare_Rays(random, built, 10.0, hits, rays));
  }
  EXPECT_GT(rays, 20000u);
  EXPECT_GT(hits, rays / 10);
  EXPECT_LT(hits, rays - rays / 10);
}

// Small triangles in a heap, far from the origin or near it, some next to flat; or so small beside
// one large triangle that products of their edges are next to nothing.
Mesh make_Heap(Random& random, uint32_t count, double scale) {
  Mesh mesh;
  const bool is_Tiny = random.chance(0.2);
  const double away = is_Tiny ? 0.0 : scale * std::pow(10.0, random.real(-3, 7));
  const T3DVEC middle = away * random.triple(-1, 1);
  const double size = scale * std::pow(10.0, is_Tiny ? random.real(-25, -5) : random.real(-5, 0));
  if (is_Tiny) mesh.add({scale, 0, 0}, {scale, scale, 0}, {scale, 0, scale});
  for (uint32_t t = 0; t < count; ++t) {
    const T3DVEC a = middle + (is_Tiny ? 4 * size : scale) * random.triple(-1, 1);
    const T3DVEC b = a + size * random.triple(-1, 1);
    const double width = random.chance(0.3) ? std::pow(10.0, random.real(-18, 0)) : 1.0;
    mesh.add(a, b, a + random.real(-1, 2) * (b - a) + (size * width) * random.triple(-1, 1));
  }
  return mesh;
}

// At a point of an edge, or of its line, moved off it by any small part of its length; from close
// by or far away, ahead or behind; or along the plane of the triangle.
T3DRAY aim_AtEdge(Random& random, const T3DFAC& f, double scale) {
  const T3DVEC along = f.b - f.a, across = f.c - f.a;
  T3DVEC at = f.a + random.real(-0.2, 1.2) * along;
  if (random.chance(0.2)) at = random.chance(0.5) ? f.b : f.a;
  if (random.chance(0.7)) at += (std::pow(2.0, random.real(-56, -1)) * random.real(-1, 1)) * across;
  T3DVEC dir = random.triple(-1, 1);
  if (random.chance(0.1)) dir = random.real(-1, 1) * along + random.real(-1, 1) * across;
  if (random.chance(0.2))  // next to that plane
    dir = random.real(-1, 1) * along + random.real(-1, 1) * across +
          (dst(f.a, f.b) * std::pow(2.0, random.real(-40, 0))) * random.triple(-1, 1);
  if (random.chance(0.2)) dir = std::pow(10.0, random.real(-14, 3)) * dir;
  const double away =
      (random.chance(0.3) ? dst(f.a, f.b) : scale * std::pow(10.0, random.real(-12, 6)));
  const T3DVEC org = at - (random.chance(0.8) ? away : -away) * unit(dir);
  return {org, dir};
}

// Here single precision decides, or should leave it alone.
TEST(RayTree, EqualsTheLoop_ForRaysThatPassEdgesAndCorners) {
  Random random(17);
  SCOPED_TRACE("seed 17");
  uint32_t hits = 0, rays = 0;
  for (uint32_t round = 0; round < scale_Cases(1000); ++round) {
    const double scale = round % 2 ? 1.0 : std::pow(10.0, random.real(-20, 10));
    Mesh mesh = make_Heap(random, 1 + static_cast<uint32_t>(random.below(20)), scale);
    Built built(mesh);
    for (int k = 0; k < 300; ++k) {
      const auto t = static_cast<uint32_t>(random.below(mesh.triangles.size()));
      const T3DRAY ray = aim_AtEdge(random, get_Fac(mesh.view(), t), scale);
      if (!built.rays.takes(ray)) continue;
      const bool hit = built.any_InLoop(ray);
      hits += hit ? 1 : 0;
      ++rays;
      ASSERT_EQ(built.any_Hit(ray), hit)
          << std::hexfloat << "org " << ray.org.x << " " << ray.org.y << " " << ray.org.z << " dir "
          << ray.dir.x << " " << ray.dir.y << " " << ray.dir.z;
    }
  }
  EXPECT_GT(rays, 200000u);
  EXPECT_GT(hits, rays / 10);
  EXPECT_LT(hits, rays - rays / 10);
}

// Each part of it cuts off next to nothing: its triangles halve in size and place, many times over,
// with heaps of equal triangles, and of different ones with one centre, in between.
TEST(RayTree, EqualsTheLoop_OnAMeshThatNoPlacePartsEvenly) {
  Random random(18);
  SCOPED_TRACE("seed 18");
  Mesh mesh;
  for (int k = 0; k < 90; ++k) {
    const double s = std::pow(2.0, -k);
    for (int copy = 0; copy < 40; ++copy) mesh.add({s, 0, 0}, {s, s, 0}, {s, 0, s});
    for (int shell = 1; shell < 30; ++shell)
      mesh.add({s - 0.01 * s * shell, 0, s}, {s + 0.01 * s * shell, 0, s}, {s, 0, s});
  }
  Built built(mesh);
  uint32_t hits = 0, rays = 0;
  ASSERT_NO_FATAL_FAILURE(compare_Rays(random, built, 1.0, hits, rays));
  EXPECT_GT(hits, rays / 10);
  EXPECT_LT(hits, rays - rays / 10);
}

// In the mesh as in the ray: a zero with a sign is a zero.
TEST(RayTree, AnswersAlikeForZerosOfBothSigns) {
  Mesh mesh;
  mesh.add({0.0, 0.0, 0.0}, {1, 0, 0}, {0, 1, 0});
  mesh.add({-0.0, 0.0, -0.0}, {1, 0, -0.0}, {0, 1, 0});
  Built built(mesh);
  EXPECT_TRUE(built.any_Hit(kDown));
  EXPECT_TRUE(built.any_Hit({{0.0, 0.0, 1}, {-0.0, 0.0, -1}}));
  EXPECT_TRUE(built.any_Hit({{-0.0, -0.0, -1}, {0.0, -0.0, 1}}));
  EXPECT_FALSE(built.any_Hit({{0.2, -5e-324, 1}, {0.0, -0.0, -1}}));
}

TEST(Lanes, ComputeEachLaneOnItsOwn) {
  alignas(16) const float a[4] = {1, -2, 3, 4.5f}, b[4] = {4, -5, 3, 0.5f};
  alignas(16) float out[4];
  const TLanes x = load_Lanes(a), y = load_Lanes(b);
  const auto expect_Lanes = [&](TLanes lanes, std::vector<float> expected) {
    store_Lanes(out, lanes);
    EXPECT_EQ(std::vector<float>(out, out + 4), expected);
  };
  expect_Lanes(x - y, {-3, 3, 0, 4});
  expect_Lanes(x * y, {4, 10, 9, 2.25f});
  expect_Lanes(greater(x, y), {4, -2, 3, 4.5f});
  expect_Lanes(lesser(x, y), {1, -5, 3, 0.5f});
  expect_Lanes(fill_Lanes(7), {7, 7, 7, 7});
  expect_Lanes(x + y, {5, -7, 6, 5});
  expect_Lanes(flip(x, sign_Of(y)), {1, 2, 3, 4.5f});
  EXPECT_EQ(above(x, y), 2u | 8u);
  EXPECT_EQ(negative(x), 2u);
}

}  // namespace
