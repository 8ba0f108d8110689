#include "host/prepare.h"

#include <algorithm>
#include <map>
#include <random>

#include "host/apart.h"
#include "host/errors.h"
#include "host/part.h"
#include "host/refine.h"
#include "support.h"

namespace undercut::host {
namespace {

Mesh make_DomeMesh(int n) { return weld_Corners(make_Dome(n)); }

double total_Area(const Mesh& mesh) {
  double area = 0.0;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) area += area_Tri(mesh, i);
  return area;
}

TEST(Rotation, TakesUpToZAndKeepsLengthsAndHandedness) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> pick(-1.0, 1.0);
  for (int i = 0; i < 2000; ++i) {
    T3DVEC up{pick(random), pick(random), pick(random)};
    if (i % 4 == 0) up = {1e-9 * pick(random), 1e-9 * pick(random), -1.0};
    const Rotation r = rotate_Up(up);
    const T3DVEC z = r.turn(unit_Vec(up));
    EXPECT_NEAR(z.x, 0.0, 1e-14) << "seed 11, round " << i;
    EXPECT_NEAR(z.y, 0.0, 1e-14);
    EXPECT_NEAR(z.z, 1.0, 1e-14);
    const T3DVEC v{pick(random), pick(random), pick(random)};
    EXPECT_NEAR(len_Vec(r.turn_Back(r.turn(v)) - v), 0.0, 1e-14) << "seed 11, round " << i;
    EXPECT_NEAR(dot_Vec(cross_Vec(r.x, r.y), r.z), 1.0, 1e-14);
  }
}

TEST(Rotation, ByRightAnglesIsExact) {
  const T3DVEC v{1.25, -2.5, 3.75};
  const T3DVEC same = rotate_Up({0, 0, 2}).turn(v);
  EXPECT_TRUE(same.x == v.x && same.y == v.y && same.z == v.z);
  EXPECT_EQ(rotate_Up({0, 5, 0}).turn(v).z, v.y);
  EXPECT_EQ(rotate_Up({-1, 0, 0}).turn(v).z, -v.x);
  const T3DVEC down = rotate_Up({0, 0, -1}).turn(v);
  EXPECT_TRUE(down.x == v.x && down.y == -v.y && down.z == -v.z);
}

// Turned, parted and displaced as far as told, without needles set apart.
Prepared prepare_Displaced(const Mesh& mesh, double displacement) {
  PrepareRules rules;
  rules.displacement = displacement;
  rules.needle = 0.0;
  return prepare_Mesh(mesh, rules);
}

bool is_Same(const T3DVEC& a, const T3DVEC& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

TEST(Position, MovesEachVertexByItsShareOfItsShortestEdge) {
  // Vertex 0 has edges of 1 and 10, vertex 3 one of 10 and one longer; vertex 4 has none.
  const Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 10}, {7, 7, 7}}, {{0, 1, 2}, {0, 1, 3}}};
  Prepared prepared = prepare_Displaced(mesh, 1e-4);
  for (uint32_t position = 0; position < 5; ++position) {
    place_Vertices(prepared, position);
    const std::vector<T3DVEC>& now = prepared.mesh.vertices;
    EXPECT_NEAR(len_Vec(now[0] - mesh.vertices[0]), 1e-4, 1e-12) << position;
    EXPECT_NEAR(len_Vec(now[3] - mesh.vertices[3]), 1e-3, 1e-12) << position;
    EXPECT_TRUE(is_Same(now[4], mesh.vertices[4])) << position;
  }
}

TEST(Position, IsTheSameEveryTimeWhateverCameBefore) {
  Prepared a = prepare_Displaced(make_DomeMesh(6), 1e-4);
  Prepared b = prepare_Displaced(make_DomeMesh(6), 1e-4);
  const std::vector<T3DVEC> first = a.mesh.vertices;
  place_Vertices(a, 7);
  for (const uint32_t position : {3, 1, 7}) place_Vertices(b, position);
  for (size_t v = 0; v < a.mesh.vertices.size(); ++v) {
    EXPECT_TRUE(is_Same(a.mesh.vertices[v], b.mesh.vertices[v])) << v;
    EXPECT_FALSE(is_Same(a.mesh.vertices[v], first[v])) << v;
  }
  place_Vertices(a, 0);
  for (size_t v = 0; v < first.size(); ++v) EXPECT_TRUE(is_Same(a.mesh.vertices[v], first[v]));
}

TEST(Position, StaysTheSameFromVersionToVersion) {
  Prepared one = prepare_Displaced({{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 1, 2}}}, 1.0);
  EXPECT_EQ(one.mesh.vertices[0].x, 0.95925720288565985);
  EXPECT_EQ(one.mesh.vertices[2].z, 0.40962895973691271);
  place_Vertices(one, 1);
  EXPECT_EQ(one.mesh.vertices[0].x, -0.7323040188420823);
  EXPECT_EQ(one.mesh.vertices[2].z, -0.8436275609216398);
}

TEST(Position, TiltsFlatNeighboursAgainstEachOther) {
  Soup corners = make_Dome(5);
  for (T3DVEC& corner : corners) corner.z = 0.0;
  Prepared prepared = prepare_Displaced(weld_Corners(corners), 1e-4);
  const Mesh& mesh = prepared.mesh;
  const auto normal = [&](uint32_t i) {
    const T3DTRI t = mesh.triangles[i];
    const T3DVEC a = mesh.vertices[t.a];
    return unit_Vec(cross_Vec(mesh.vertices[t.b] - a, mesh.vertices[t.c] - a));
  };
  for (const uint32_t position : {0, 1, 9}) {
    place_Vertices(prepared, position);
    for (uint32_t i = 1; i < mesh.triangles.size(); ++i) {
      const double tilt = len_Vec(normal(i) - normal(i - 1));
      EXPECT_GT(tilt, 1e-7) << position;
      EXPECT_LT(tilt, 1e-3) << position;
    }
  }
}

TEST(Position, CopiesOfAVertexGoWhereItGoes) {
  // Three triangles on one edge, and the first of them once more.
  const Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 2}, {0, -3, 0}},
                  {{0, 1, 2}, {0, 1, 3}, {0, 1, 4}, {1, 2, 0}}};
  Prepared prepared = prepare_Mesh(mesh, {});
  EXPECT_TRUE(prepared.apart[3]);
  ASSERT_EQ(prepared.mesh.vertices.size(), 5u + 3 + 4);
  EXPECT_EQ(std::vector<uint32_t>(prepared.root.begin(), prepared.root.begin() + 5),
            std::vector<uint32_t>({0, 1, 2, 3, 4}));
  for (uint32_t position = 0; position < 4; ++position) {
    place_Vertices(prepared, position);
    for (size_t i = 0; i < mesh.triangles.size(); ++i) {
      const T3DTRI &old = mesh.triangles[i], &now = prepared.mesh.triangles[i];
      for (const auto& [o, n] : {std::pair(old.a, now.a), {old.b, now.b}, {old.c, now.c}}) {
        EXPECT_EQ(prepared.root[n], o);
        EXPECT_TRUE(is_Same(prepared.mesh.vertices[n], prepared.mesh.vertices[o])) << position;
        EXPECT_FALSE(is_Same(prepared.mesh.vertices[n], mesh.vertices[o])) << position;
      }
    }
  }
}

TEST(Position, OfAPlainMeshIsItsOwn) {
  const Mesh mesh = make_DomeMesh(4);
  Prepared plain = keep_Plain(mesh);
  for (const uint32_t position : {0, 1, 5}) place_Vertices(plain, position);
  ASSERT_EQ(plain.mesh.vertices.size(), mesh.vertices.size());
  for (size_t v = 0; v < mesh.vertices.size(); ++v) {
    EXPECT_TRUE(is_Same(plain.mesh.vertices[v], mesh.vertices[v]));
  }
}

TEST(Awkward, MarksNeedlesUpToTheLimitAndDegenerateTriangles) {
  const Mesh mesh{{{0, 0, 0}, {10, 0, 0}, {5, 0.009, 0}, {5, 0.011, 0}, {20, 0, 0}},
                  {{0, 1, 2}, {0, 1, 3}, {0, 0, 1}, {0, 1, 4}, {0, 0, 0}}};
  EXPECT_EQ(find_Awkward(mesh, 1e-3), std::vector<bool>({true, false, true, true, true}));
}

TEST(Awkward, MarksTheLaterOfDoubledTrianglesHoweverTurned) {
  const Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}},
                  {{0, 1, 2}, {1, 3, 2}, {2, 1, 0}, {1, 2, 0}}};
  EXPECT_EQ(find_Awkward(mesh, 1e-3), std::vector<bool>({false, false, true, true}));
}

TEST(SetApart, GivesMarkedTrianglesVerticesOfTheirOwnAtTheSamePlaces) {
  Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}, {{0, 1, 2}, {1, 3, 2}, {0, 0, 1}}};
  set_Apart(mesh, {false, true, true});
  EXPECT_EQ(mesh.triangles[0].b, 1u);
  EXPECT_EQ(mesh.triangles[1].a, 4u);
  EXPECT_EQ(mesh.triangles[1].c, 6u);
  EXPECT_EQ(mesh.vertices[5].y, 1.0);
  // Equal corners stay one vertex.
  EXPECT_EQ(mesh.triangles[2].a, mesh.triangles[2].b);
  EXPECT_EQ(mesh.vertices.size(), 9u);
}

TEST(Refine, LeavesNoEdgeLongerAndKeepsAreaAndOrder) {
  const Mesh mesh = make_DomeMesh(3);
  const Refined refined = refine_Mesh(mesh, 0.7);
  for (const T3DTRI& t : refined.mesh.triangles) {
    const auto& v = refined.mesh.vertices;
    EXPECT_LE(len_Vec(v[t.b] - v[t.a]), 0.7);
    EXPECT_LE(len_Vec(v[t.c] - v[t.b]), 0.7);
    EXPECT_LE(len_Vec(v[t.a] - v[t.c]), 0.7);
  }
  EXPECT_NEAR(total_Area(refined.mesh), total_Area(mesh), 1e-9);
  EXPECT_TRUE(std::is_sorted(refined.origin.begin(), refined.origin.end()));
  std::vector<double> area(mesh.triangles.size(), 0.0);
  for (uint32_t i = 0; i < refined.origin.size(); ++i) {
    area[refined.origin[i]] += area_Tri(refined.mesh, i);
  }
  for (uint32_t i = 0; i < area.size(); ++i) EXPECT_NEAR(area[i], area_Tri(mesh, i), 1e-12);
}

TEST(Refine, StaysAClosedNet_EveryInnerEdgeHasTwoTriangles) {
  const Mesh mesh = make_DomeMesh(3);
  const auto count_Edges = [](const Mesh& m) {
    std::map<std::pair<uint32_t, uint32_t>, int> uses;
    for (const T3DTRI& t : m.triangles) {
      for (const auto& [a, b] : {std::pair(t.a, t.b), std::pair(t.b, t.c), std::pair(t.c, t.a)}) {
        ++uses[{std::min(a, b), std::max(a, b)}];
      }
    }
    return uses;
  };
  const Mesh fine = refine_Mesh(mesh, 1.1).mesh;
  for (const auto& [edge, uses] : count_Edges(fine)) {
    const auto on_Rim = [&](uint32_t v) {
      const T3DVEC& p = fine.vertices[v];
      return p.x == 0.0 || p.y == 0.0 || p.x == 10.0 || p.y == 10.0;
    };
    EXPECT_EQ(uses == 2 || (uses == 1 && on_Rim(edge.first) && on_Rim(edge.second)), true);
  }
}

TEST(Refine, EachNumberOfSplitEdges_KeepsTheWinding) {
  for (const double limit : {0.9, 1.05, 1.2}) {
    const Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0.1, 1.1, 0}}, {{0, 1, 2}}};
    const Refined refined = refine_Mesh(mesh, limit);
    for (const T3DTRI& t : refined.mesh.triangles) {
      const auto& v = refined.mesh.vertices;
      EXPECT_GT(cross_Vec(v[t.b] - v[t.a], v[t.c] - v[t.a]).z, 0.0) << limit;
    }
  }
}

TEST(Refine, WithoutLongEdges_ChangesNothing) {
  const Mesh mesh = make_DomeMesh(4);
  EXPECT_EQ(refine_Mesh(mesh, 1e9).mesh.vertices.size(), mesh.vertices.size());
}

TEST(Refine, RefusesToMakeTooManyTriangles_OfALargeAreaOrOfNeedles) {
  const Mesh mesh{{{0, 0, 0}, {1e6, 0, 0}, {0, 1e6, 0}}, {{0, 1, 2}}};
  EXPECT_TRUE(has_Text(catch_Text<UsageError>([&] { refine_Mesh(mesh, 1.0); }), "larger length"));
  const Mesh needle{{{0, 0, 0}, {1e9, 0, 0}, {0, 1e-9, 0}}, {{0, 1, 2}}};
  EXPECT_TRUE(has_Text(catch_Text<UsageError>([&] { refine_Mesh(needle, 1.0); }), "larger length"));
}

TEST(Prepare, PlainIsTheMeshAsItIs) {
  const Mesh mesh = make_DomeMesh(3);
  const Prepared plain = keep_Plain(mesh);
  EXPECT_EQ(plain.mesh.vertices[5].z, mesh.vertices[5].z);
  EXPECT_EQ(plain.origin[7], 7u);
  EXPECT_TRUE(plain.rest.empty());
}

TEST(Prepare, TurnsRefinesAndDisplacesWithinATenthousandth) {
  PrepareRules rules;
  rules.up = {0, 1, 0};
  rules.max_edge = 2.0;
  const Mesh mesh = make_DomeMesh(4);
  const Prepared prepared = prepare_Mesh(mesh, rules);
  ASSERT_GT(prepared.mesh.triangles.size(), mesh.triangles.size());
  EXPECT_EQ(prepared.origin.back(), mesh.triangles.size() - 1);
  for (size_t v = 0; v < mesh.vertices.size(); ++v) {
    const T3DVEC back = prepared.rotation.turn_Back(prepared.mesh.vertices[v]);
    EXPECT_LT(len_Vec(back - mesh.vertices[v]), 2.0e-4 * 1.01);
  }
}

TEST(Prepare, CutsTheMeshWhereItIsNoSurface_UnlessToldNotTo) {
  const Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 2}, {0, -3, 0}},
                  {{0, 1, 2}, {0, 1, 3}, {0, 1, 4}}};
  PrepareRules rules;
  EXPECT_EQ(prepare_Mesh(mesh, rules).mesh.vertices.size(), 9u);
  rules.cut = false;
  EXPECT_EQ(prepare_Mesh(mesh, rules).mesh.vertices.size(), 5u);
}

TEST(Prepare, ANeedleOnAnEdgeOfTwoOthers_DoesNotPartThem) {
  const Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0.5, 1e-5, 0}},
                  {{0, 1, 2}, {1, 0, 3}, {0, 1, 4}}};
  const Prepared prepared = prepare_Mesh(mesh, {});
  EXPECT_EQ(prepared.apart, std::vector<bool>({false, false, true}));
  EXPECT_EQ(prepared.mesh.triangles[0].a, prepared.mesh.triangles[1].b);
  EXPECT_EQ(prepared.mesh.triangles[0].b, prepared.mesh.triangles[1].a);
  EXPECT_EQ(prepared.mesh.vertices.size(), 8u);
}

// A strip of triangles 0 to n - 1, neighbours by number.
Mesh make_Strip(uint32_t n) {
  Mesh mesh;
  for (uint32_t i = 0; i < n + 2; ++i) mesh.vertices.push_back({1.0 * i, i % 2 ? 1.0 : 0.0, 0});
  for (uint32_t i = 0; i < n; ++i) mesh.triangles.push_back({i, i + 1, i + 2});
  return mesh;
}

TEST(Apart, AGroupInsideOneRegionJoinsIt) {
  std::vector<int32_t> region = {4, 0, 0, 4, 4};
  join_Apart(make_Strip(5), {1, 2}, region);
  EXPECT_EQ(region, std::vector<int32_t>({4, 4, 4, 4, 4}));
}

TEST(Apart, AGroupBetweenRegionsBesideFreeOnesOrTheOutside_StaysFree) {
  for (const int32_t other : {5, 0, -1}) {
    std::vector<int32_t> region = {4, 0, 0, other, other};
    join_Apart(make_Strip(5), {1, 2}, region);
    EXPECT_EQ(region[1], 0) << other;
    EXPECT_EQ(region[2], 0) << other;
  }
}

TEST(Apart, AGroupAloneStaysFreeAndOneAtTheRimJoins) {
  std::vector<int32_t> region = {0, 0};
  join_Apart(make_Strip(2), {0, 1}, region);
  EXPECT_EQ(region, std::vector<int32_t>({0, 0}));
  region = {0, 0, 7};
  join_Apart(make_Strip(3), {0, 1}, region);
  EXPECT_EQ(region, std::vector<int32_t>({7, 7, 7}));
}

TEST(Apart, ManyTrianglesOnOneEdge_TakeNoQuadraticTime) {
  Mesh mesh{{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {}};
  std::vector<uint32_t> apart;
  for (uint32_t i = 0; i < 300000; ++i) {
    mesh.triangles.push_back({0, 1, 2});
    if (i > 0) apart.push_back(i);
  }
  std::vector<int32_t> region(mesh.triangles.size(), 0);
  region[0] = 3;
  join_Apart(mesh, apart, region);
  EXPECT_EQ(region.back(), 3);
}

}  // namespace
}  // namespace undercut::host
