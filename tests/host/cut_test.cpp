#include "host/cut.h"

#include <algorithm>
#include <map>
#include <random>

#include "host/part.h"
#include "support.h"

namespace undercut::host {
namespace {

using Corners = std::vector<uint32_t>;

Corners list_Corners(const Mesh& mesh) {
  Corners corners;
  for (const T3DTRI& t : mesh.triangles) corners.insert(corners.end(), {t.a, t.b, t.c});
  return corners;
}

// Every corner is where it was.
void expect_SamePlaces(const Mesh& before, const Mesh& after) {
  const Corners old = list_Corners(before), now = list_Corners(after);
  ASSERT_EQ(old.size(), now.size());
  for (size_t i = 0; i < old.size(); ++i) {
    const T3DVEC &p = before.vertices[old[i]], &q = after.vertices[now[i]];
    EXPECT_TRUE(p.x == q.x && p.y == q.y && p.z == q.z) << "corner " << i;
  }
}

// The faces of a tetrahedron over the given vertices, winding outwards.
std::vector<T3DTRI> make_Tetrahedron(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
  return {{a, c, b}, {a, b, d}, {b, c, d}, {c, a, d}};
}

TEST(Cut, LeavesAClosedSurfaceUntouched) {
  Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, make_Tetrahedron(0, 1, 2, 3)};
  const Mesh before = mesh;
  EXPECT_EQ(cut_Singular(mesh), 0u);
  EXPECT_EQ(list_Corners(mesh), list_Corners(before));
  EXPECT_EQ(mesh.vertices.size(), 4u);
}

TEST(Cut, LeavesAnOpenSurfaceUntouched) {
  Mesh mesh = weld_Corners(make_Dome(5));
  const Mesh before = mesh;
  EXPECT_EQ(cut_Singular(mesh), 0u);
  EXPECT_EQ(list_Corners(mesh), list_Corners(before));
}

TEST(Cut, ThreeTrianglesOnAnEdge_ArePartedAndTheFirstKeepsItsVertices) {
  Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, -1, 0}},
            {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}}};
  const Mesh before = mesh;
  EXPECT_EQ(cut_Singular(mesh), 4u);
  EXPECT_EQ(list_Corners(mesh), Corners({0, 1, 2, 5, 6, 3, 7, 8, 4}));
  expect_SamePlaces(before, mesh);
}

TEST(Cut, TwoFansThatTouchInAVertex_ArePartedAndTheFirstKeepsIt) {
  // The tips of two tetrahedra are vertex 3.
  Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 2}, {1, 0, 2}, {0, 1, 2}},
            make_Tetrahedron(0, 1, 2, 3)};
  for (const T3DTRI& t : make_Tetrahedron(4, 5, 6, 3)) mesh.triangles.push_back(t);
  const Mesh before = mesh;
  EXPECT_EQ(cut_Singular(mesh), 1u);
  Corners expected = list_Corners(before);
  std::replace(expected.begin() + 12, expected.end(), 3u, 7u);
  EXPECT_EQ(list_Corners(mesh), expected);
  expect_SamePlaces(before, mesh);
}

TEST(Cut, TwoBodiesThatShareAnEdge_ArePartedThereAndStayWholeElsewhere) {
  // Edge 0 1 has four triangles; round either end the two of one body belong together.
  Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, -1, 0}, {0, 0, -1}},
            make_Tetrahedron(0, 1, 2, 3)};
  for (const T3DTRI& t : make_Tetrahedron(0, 1, 4, 5)) mesh.triangles.push_back(t);
  const Mesh before = mesh;
  EXPECT_EQ(cut_Singular(mesh), 2u);
  Corners expected = list_Corners(before);
  std::replace(expected.begin() + 12, expected.end(), 0u, 6u);
  std::replace(expected.begin() + 12, expected.end(), 1u, 7u);
  EXPECT_EQ(list_Corners(mesh), expected);
  expect_SamePlaces(before, mesh);
}

TEST(Cut, DoubledTriangles_StayJoinedToEachOtherUnlessAThirdShouldersIn) {
  Mesh two{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {2, 1, 0}}};
  EXPECT_EQ(cut_Singular(two), 0u);
  Mesh three{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}, {2, 1, 0}, {1, 2, 0}}};
  EXPECT_EQ(cut_Singular(three), 6u);
  EXPECT_EQ(list_Corners(three), Corners({0, 1, 2, 3, 4, 5, 6, 7, 8}));
}

TEST(Cut, ATriangleWithTwoEqualCorners_KeepsThemEqual) {
  Mesh mesh{{{0, 0, 0}, {1, 0, 0}}, {{0, 0, 1}}};
  EXPECT_EQ(cut_Singular(mesh), 0u);
  EXPECT_EQ(list_Corners(mesh), Corners({0, 0, 1}));
}

TEST(Cut, AnEmptyMesh_HasNothingToCut) {
  Mesh mesh;
  EXPECT_EQ(cut_Singular(mesh), 0u);
}

TEST(Cut, IsDoneInOneGo_AndLeavesEveryEdgeWithTwoTrianglesAtMost) {
  for (uint32_t seed = 0; seed < 200; ++seed) {
    std::mt19937 random(seed);
    Mesh mesh;
    for (int v = 0; v < 12; ++v) mesh.vertices.push_back({1.0 * v, 1.0 * (v * v % 7), 0.5 * v});
    while (mesh.triangles.size() < 5 + seed % 40) {
      const auto pick = [&] { return static_cast<uint32_t>(random() % 12); };
      const T3DTRI t{pick(), pick(), pick()};
      if (!has_EqualCorners(t)) mesh.triangles.push_back(t);
    }
    const Mesh before = mesh;
    const uint32_t copies = cut_Singular(mesh);
    EXPECT_EQ(mesh.vertices.size(), before.vertices.size() + copies) << "seed " << seed;
    expect_SamePlaces(before, mesh);
    std::map<std::pair<uint32_t, uint32_t>, int> uses;
    for (const T3DTRI& t : mesh.triangles) {
      for (const auto& [a, b] : {std::pair(t.a, t.b), {t.b, t.c}, {t.c, t.a}}) {
        const int count = ++uses[{std::min(a, b), std::max(a, b)}];
        EXPECT_LE(count, 2) << "seed " << seed;
      }
    }
    EXPECT_EQ(cut_Singular(mesh), 0u) << "seed " << seed;
  }
}

}  // namespace
}  // namespace undercut::host
