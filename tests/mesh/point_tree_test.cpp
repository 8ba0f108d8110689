#include <gtest/gtest.h>

#include "mesh/trees.h"
#include "tests/mesh/tree_shapes.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using reference::Random;
using shapes::Answers;
using shapes::Mesh;
using undercut::tests::scale_Cases;

namespace {

Mesh make_Points(const std::vector<T3DVEC>& points) { return {"points", points, {{0, 0, 0}}}; }

std::vector<uint32_t> in_Sphere(const C3DPntAABBTree& tree, const T3DSPH& sphere) {
  Answers answers(tree.items().size());
  tree.QuerySphere(sphere, answers.list);
  return answers.ids();
}

std::vector<C3DAABB> point_Boxes(const Mesh& mesh) {
  std::vector<C3DAABB> boxes(mesh.points.size());
  for (size_t i = 0; i < boxes.size(); ++i) boxes[i].add(mesh.points[i]);
  return boxes;
}

TEST(PointTree, Build_FailsAndLeavesItEmpty_WithoutArraysOrCounts) {
  for (int missing = 0; missing < 4; ++missing) {
    Mesh mesh = make_Points({{1, 2, 3}, {4, 5, 6}});
    C3DPntAABBTree tree;
    ASSERT_TRUE(tree.Build(mesh.view()));
    T3DMSH msh = mesh.view();
    if (missing == 0) msh.vtx = nullptr;
    if (missing == 1) msh.tri = nullptr;
    if (missing == 2) msh.n_vtx = 0;
    if (missing == 3) msh.n_tri = 0;
    EXPECT_FALSE(tree.Build(msh));
    EXPECT_TRUE(tree.nodes().empty());
    EXPECT_TRUE(in_Sphere(tree, {{1, 2, 3}, 9}).empty());
  }
}

TEST(PointTree, Build_ReadsNoTriangle) {
  Mesh mesh = make_Points({{1, 2, 3}, {4, 5, 6}});
  mesh.triangles[0] = {77, 78, 79};
  C3DPntAABBTree tree;
  EXPECT_TRUE(tree.Build(mesh.view()));
  EXPECT_EQ(tree.items().size(), 2u);
}

TEST(PointTree, Build_FailsAndLeavesItEmpty_WhereverMemoryRunsOut) {
  Random random(20);
  Mesh mesh = shapes::make_Soup(random, 50);
  const std::vector<int32_t> codes = tests::list_FailureCodes([&] {
    C3DPntAABBTree tree;
    if (tree.Build(mesh.view())) return 1;
    return tree.nodes().empty() && tree.items().empty() ? 0 : -1;
  });
  EXPECT_EQ(codes, (std::vector<int32_t>{0, 1}));
}

TEST(PointTree, SplitsTheCloudOfACubeOnZ) {
  std::vector<T3DVEC> points;
  for (int k = 0; k < 27; ++k) points.push_back({1.0 * (k % 3), 1.0 * (k / 3 % 3), 1.0 * (k / 9)});
  Mesh mesh = make_Points(points);
  C3DPntAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  const auto& root = tree.nodes()[0];
  EXPECT_EQ(tree.nodes()[root.left].box.max.z, 0.0);  // the middle is not strictly below itself
  EXPECT_EQ(tree.nodes()[root.right].box.min.z, 1.0);
}

TEST(PointTree, EqualsThePlainBuild_OnEveryKindOfMesh) {
  Random random(21);
  for (const uint32_t count : {2u, 5u, 40u, 300u})
    for (Mesh& mesh : shapes::all_Meshes(random, count)) {
      SCOPED_TRACE(mesh.name + " " + std::to_string(count));
      C3DPntAABBTree tree;
      ASSERT_TRUE(tree.Build(mesh.view()));
      shapes::expect_Sound(tree.nodes(), tree.items());
      const reference::PlainTree<C3DAABB> plain(point_Boxes(mesh));
      shapes::expect_Same(tree.nodes(), tree.items(), plain);
    }
}

TEST(PointTree, QuerySphere_WithoutRadius_FindsTheVertexAndAllAtTheSamePlace) {
  Random random(22);
  Mesh mesh = shapes::make_Soup(random, 40);
  mesh.points[50] = mesh.points[7];
  mesh.points[119] = mesh.points[7];
  C3DPntAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  EXPECT_EQ(shapes::sorted(in_Sphere(tree, {mesh.points[7], 0})),
            (std::vector<uint32_t>{7, 50, 119}));
}

TEST(PointTree, QuerySphere_WithoutRadius_TakesNoWholeBox) {
  Mesh mesh = make_Points({{0, 0, 0}, {2, 2, 2}, {1, 1, 1}, {0, 2, 0}});
  C3DPntAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  EXPECT_EQ(in_Sphere(tree, {{1, 1, 1}, 0}), (std::vector<uint32_t>{2}));
}

TEST(PointTree, QuerySphere_CountsAPointAtExactlyTheRadiusAsInside) {
  Mesh mesh = make_Points({{3, 4, 0}, {3, 4.0000001, 0}, {-40, 0, 0}});
  C3DPntAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  EXPECT_EQ(in_Sphere(tree, {{0, 0, 0}, 5}), (std::vector<uint32_t>{0}));
}

TEST(PointTree, QuerySphere_ReportsPointsBeyondTheRadius_WhereTheirWholeBoxIsTaken) {
  // The wider sphere of the shortcut reaches to 1.5 radii along -y.
  Mesh mesh = make_Points({{0, -0.95, 0}, {0, -1.2, 0}});
  C3DPntAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  EXPECT_EQ(cls_Sphere({{0, 0, 0}, 1}, mesh.points[1]), '0');
  EXPECT_EQ(in_Sphere(tree, {{0, 0, 0}, 1}), (std::vector<uint32_t>{0, 1}));
  mesh.points[0] = {0, 0.95, 0};
  mesh.points.push_back({0, 2, 0});  // now the box sticks out of both
  ASSERT_TRUE(tree.Build(mesh.view()));
  EXPECT_EQ(in_Sphere(tree, {{0, 0, 0}, 1}), (std::vector<uint32_t>{0}));
}

// What the walk must find: all inside, and beyond the radius only points of boxes taken whole.
TEST(PointTree, QuerySphere_FindsAllInside_AndOthersOnlyInBoxesTakenWhole) {
  Random random(23);
  for (uint32_t round = 0; round < scale_Cases(30); ++round)
    for (Mesh& mesh : shapes::all_Meshes(random, 80)) {
      C3DPntAABBTree tree;
      ASSERT_TRUE(tree.Build(mesh.view()));
      for (int k = 0; k < 10; ++k) {
        const T3DVEC centre = mesh.points[random.below(mesh.points.size())];
        const T3DSPH sphere = {centre + random.triple(-0.5, 0.5), random.real(0, 6)};
        std::vector<bool> expected(mesh.points.size()), taken(mesh.points.size());
        for (size_t i = 0; i < mesh.points.size(); ++i)
          expected[i] = cls_Sphere(sphere, mesh.points[i]) != '0';
        for (const auto& node : tree.nodes()) {
          if (!hit_SphBox(sphere, node.box) || !in_Sph(sphere, node.box)) continue;
          for (uint32_t i = node.first; i <= node.last; ++i) taken[tree.items()[i].id] = true;
        }
        std::vector<uint32_t> ids;
        for (uint32_t i = 0; i < mesh.points.size(); ++i)
          if (expected[i] || taken[i]) ids.push_back(i);
        EXPECT_EQ(shapes::sorted(in_Sphere(tree, sphere)), ids) << mesh.name;
      }
    }
}

TEST(PointTree, HoldsPointsThatAreNotNumbers) {
  Random random(24);
  Mesh mesh = shapes::make_Soup(random, 100);
  for (T3DVEC& p : mesh.points)
    if (random.chance(0.2)) p.x = random.special();
  C3DPntAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  for (int k = 0; k < 200; ++k) {
    const T3DSPH sphere = {{random.special(), random.special(), 1}, random.special()};
    EXPECT_LE(in_Sphere(tree, sphere).size(), mesh.points.size());
  }
}

}  // namespace
