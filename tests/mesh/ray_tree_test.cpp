#include <gtest/gtest.h>

#include <limits>

#include "mesh/lanes.h"
#include "mesh/trees.h"
#include "tests/mesh/tree_shapes.h"

using namespace undercut;
using shapes::Mesh;

namespace {

// The tree of rays over a mesh, and the box tree that it was made from.
struct Built {
  explicit Built(Mesh mesh) : mesh_(std::move(mesh)) {
    const std::vector<C3DAABB> boxes = shapes::triangle_Boxes(mesh_);
    for (uint32_t t = 0; t < boxes.size(); ++t) boxes_.items.push_back({t, boxes[t]});
    boxes_.build();
    rays.build(boxes_, mesh_.view());
  }
  bool any_Hit(const T3DRAY& ray) { return rays.any_Hit(ray, mesh_.view()); }

  TRayTree rays;

 private:
  Mesh mesh_;
  TBoxTree<C3DAABB> boxes_;
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
  rays.build({}, {});
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
  EXPECT_EQ(not_Above(x, y), 1u | 4u);
}

}  // namespace
