#include <gtest/gtest.h>

#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "mesh/trees.h"
#include "tests/mesh/tree_shapes.h"

using namespace undercut;
using shapes::Mesh;

namespace {

class TreeDump : public testing::Test {
 protected:
  std::string path() const { return path_; }
  std::string read() const {
    std::ifstream file(path_);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }
  void TearDown() override { std::filesystem::remove(path_); }

 private:
  std::string path_ = std::filesystem::temp_directory_path() /
                      ("undercut-tree-dump-" + std::to_string(getpid()) + ".txt");
};

std::string facet(const std::string& normal, const std::string& a, const std::string& b,
                  const std::string& c) {
  return " facet normal " + normal + "\n   outer loop            \n     vertex " + a +
         "  \n     vertex " + b + "  \n     vertex " + c +
         "  \n   endloop               \n endfacet                \n";
}

size_t count_Of(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST_F(TreeDump, OfTriangles_HoldsTheirFacets_ThenTheirBoxAsANestedSolid) {
  Mesh mesh;
  mesh.add({0, 0, 0}, {1, 0, 0}, {0, 2, 0});
  mesh.add({0, 0, 3}, {0, 1, 3}, {1, 0, 3});
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  ASSERT_TRUE(tree.DumpNode(0, path()));

  const std::string corners[8] = {"0.000000 0.000000 0.000000", "1.000000 0.000000 0.000000",
                                  "1.000000 2.000000 0.000000", "0.000000 2.000000 0.000000",
                                  "0.000000 0.000000 3.000000", "1.000000 0.000000 3.000000",
                                  "1.000000 2.000000 3.000000", "0.000000 2.000000 3.000000"};
  const int sides[12][3] = {{3, 2, 1}, {1, 0, 3}, {1, 2, 6}, {6, 5, 1}, {2, 3, 7}, {7, 6, 2},
                            {3, 0, 4}, {4, 7, 3}, {0, 1, 5}, {5, 4, 0}, {4, 5, 6}, {6, 7, 4}};
  const std::string normals[6] = {"0.000000 0.000000 -1.000000", "1.000000 0.000000 0.000000",
                                  "0.000000 1.000000 0.000000",  "-1.000000 0.000000 0.000000",
                                  "0.000000 -1.000000 0.000000", "0.000000 0.000000 1.000000"};
  std::string expected = "solid Node\n";
  expected += facet("0.000000 0.000000 1.000000", corners[0], corners[1], corners[3]);
  expected +=
      facet("0.000000 0.000000 -1.000000", corners[4], "0.000000 1.000000 3.000000", corners[5]);
  expected += "solid Box\n";
  for (int k = 0; k < 12; ++k)
    expected +=
        facet(normals[k / 2], corners[sides[k][0]], corners[sides[k][1]], corners[sides[k][2]]);
  expected += "endsolid Box\nendsolid Node\n";
  EXPECT_EQ(read(), expected);
}

TEST_F(TreeDump, OfAChild_HoldsItsRangeOnly) {
  Mesh mesh = shapes::make_Coincident(11);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  ASSERT_TRUE(tree.DumpNode(tree.nodes()[0].left, path()));
  EXPECT_EQ(count_Of(read(), " facet normal "), 5u + 12u);
  ASSERT_TRUE(tree.DumpNode(tree.nodes()[0].right, path()));
  EXPECT_EQ(count_Of(read(), " facet normal "), 6u + 12u);
}

TEST_F(TreeDump, OfATriangleWithoutArea_HasNoNormal) {
  Mesh mesh;
  mesh.add({1, 1, 1}, {1, 1, 1}, {2, 2, 2});
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  ASSERT_TRUE(tree.DumpNode(0, path()));
  EXPECT_NE(read().find(" facet normal 0.000000 0.000000 0.000000\n"), std::string::npos);
}

TEST_F(TreeDump, OfPoints_HoldsOneALine) {
  Mesh mesh{"", {{1, -2, 0.5}, {1234567.8912345, 1e-7, 0}}, {{0, 0, 0}}};
  C3DPntAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  const C3DGeoAABBTree& base = tree;
  ASSERT_TRUE(base.DumpNode(0, path()));
  EXPECT_EQ(read(), "1.000000 -2.000000 0.500000\n1234567.891235 0.000000 0.000000\n");
}

TEST_F(TreeDump, WritesPoints_WhateverTheLocaleAndTheNumber) {
  Mesh mesh{"", {{0.5, kAbsent, -kAbsent}}, {{0, 0, 0}}};
  C3DPntAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  const std::string before = std::setlocale(LC_ALL, nullptr);
  std::setlocale(LC_ALL, "de_DE.UTF-8");  // where it is installed
  ASSERT_TRUE(tree.DumpNode(0, path()));
  std::setlocale(LC_ALL, before.c_str());
  char expected[800];
  std::snprintf(expected, sizeof expected, "%lf %lf %lf\n", 0.5, kAbsent, -kAbsent);
  EXPECT_EQ(read(), expected);
}

TEST_F(TreeDump, IsFalse_ForANodeThatIsNotThere_AndAPathThatCannotBeWritten) {
  Mesh mesh = shapes::make_Coincident(3);
  C3DTriAABBTree triangles;
  C3DPntAABBTree points;
  EXPECT_FALSE(triangles.DumpNode(0, path()));
  EXPECT_FALSE(points.DumpNode(0, path()));
  ASSERT_TRUE(triangles.Build(mesh.view()));
  ASSERT_TRUE(points.Build(mesh.view()));
  EXPECT_FALSE(triangles.DumpNode(1, path()));
  EXPECT_FALSE(triangles.DumpNode(0, ""));
  EXPECT_FALSE(points.DumpNode(0, "/no/such/folder/points.asc"));
  EXPECT_FALSE(std::filesystem::exists(path()));
}

}  // namespace
