#include <gtest/gtest.h>

#include <limits>
#include <new>
#include <thread>

#include "mesh/trees.h"
#include "tests/mesh/tree_shapes.h"
#include "tests/reference/plain_rays.h"
#include "tests/support/allocations.h"
#include "tests/support/intensity.h"

using namespace undercut;
using reference::Random;
using shapes::Answers;
using shapes::Mesh;
using undercut::tests::scale_Cases;

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Unit triangles one behind the other along x, each in a plane across it.
Mesh make_Row(uint32_t count) {
  Mesh mesh;
  for (uint32_t t = 0; t < count; ++t) mesh.add({1.0 * t, 0, 0}, {1.0 * t, 1, 0}, {1.0 * t, 0, 1});
  return mesh;
}

std::vector<uint32_t> on_Line(const C3DTriAABBTree& tree, const T3DRAY& ray) {
  Answers answers(tree.items().size());
  tree.QueryLine(ray, answers.list);
  return answers.ids();
}

std::vector<uint32_t> item_Order(const C3DTriAABBTree& tree) {
  std::vector<uint32_t> ids;
  for (const auto& item : tree.items()) ids.push_back(item.id);
  return ids;
}

// ---- Build -------------------------------------------------------------------------------------

TEST(TriangleTree, IsOneLeaf_ForTenTriangles) {
  Mesh mesh = make_Row(10);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  ASSERT_EQ(tree.nodes().size(), 1u);
  EXPECT_TRUE(tree.nodes()[0].is_Leaf());
  EXPECT_EQ(tree.nodes()[0].first, 0u);
  EXPECT_EQ(tree.nodes()[0].last, 9u);
}

TEST(TriangleTree, HasChildren_ForElevenTriangles) {
  Mesh mesh = make_Row(11);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  ASSERT_EQ(tree.nodes().size(), 3u);
  EXPECT_FALSE(tree.nodes()[0].is_Leaf());
}

TEST(TriangleTree, CutsOffFive_WhereElevenCentresCoincide) {
  Mesh mesh = shapes::make_Nested(11);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  ASSERT_EQ(tree.nodes().size(), 3u);
  const auto& left = tree.nodes()[tree.nodes()[0].left];
  const auto& right = tree.nodes()[tree.nodes()[0].right];
  EXPECT_EQ(left.last - left.first + 1, 5u);
  EXPECT_EQ(right.last - right.first + 1, 6u);
}

TEST(TriangleTree, SplitsTheLaterAxis_OfEqualExtents) {
  // Points as triangles at the corners of a box, more of them at one end of each axis.
  const auto split_Of = [](double x, double y, double z) {
    Mesh mesh;
    for (uint32_t k = 0; k < 24; ++k) {
      const T3DVEC p = {k % 2 ? x : 0, k / 2 % 2 ? y : 0, k / 4 % 2 ? z : 0};
      mesh.add(p, p, p);
    }
    C3DTriAABBTree tree;
    EXPECT_TRUE(tree.Build(mesh.view()));
    return tree.nodes()[tree.nodes()[0].left].box.size();
  };
  EXPECT_EQ(split_Of(2, 2, 2), (T3DVEC{2, 2, 0}));
  EXPECT_EQ(split_Of(2, 2, 1), (T3DVEC{2, 0, 1}));
  EXPECT_EQ(split_Of(2, 1, 2), (T3DVEC{2, 1, 0}));
  EXPECT_EQ(split_Of(2, 1, 1), (T3DVEC{0, 1, 1}));
}

TEST(TriangleTree, Build_FailsAndLeavesItEmpty_WithoutArraysOrCounts) {
  for (int missing = 0; missing < 4; ++missing) {
    Mesh mesh = make_Row(20);
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Build(mesh.view()));
    T3DMSH msh = mesh.view();
    if (missing == 0) msh.vtx = nullptr;
    if (missing == 1) msh.tri = nullptr;
    if (missing == 2) msh.n_vtx = 0;
    if (missing == 3) msh.n_tri = 0;
    EXPECT_FALSE(tree.Build(msh));
    EXPECT_TRUE(tree.nodes().empty());
    EXPECT_TRUE(tree.items().empty());
    EXPECT_EQ(tree.mesh().n_tri, 0u);
    EXPECT_FALSE(tree.AnyHit({{-1, 0.2, 0.2}, {1, 0, 0}}));
  }
}

TEST(TriangleTree, Build_Fails_OnAVertexIndexOutOfRange) {
  Mesh mesh = make_Row(20);
  mesh.triangles[17].b = static_cast<uint32_t>(mesh.points.size());
  C3DTriAABBTree tree;
  EXPECT_FALSE(tree.Build(mesh.view()));
  EXPECT_TRUE(tree.nodes().empty());
}

TEST(TriangleTree, Build_FailsAndLeavesItEmpty_WhereverMemoryRunsOut) {
  Random random(11);
  for (Mesh mesh : {shapes::make_Stragglers(60), shapes::make_Soup(random, 100)}) {
    const std::vector<int32_t> codes = tests::list_FailureCodes([&] {
      C3DTriAABBTree tree;
      if (tree.Build(mesh.view())) return 1;
      return tree.nodes().empty() && tree.items().empty() ? 0 : -1;
    });
    EXPECT_EQ(codes, (std::vector<int32_t>{0, 1}));
  }
}

TEST(TriangleTree, Prepare_RefusesWhatBuildRefuses) {
  Mesh mesh = make_Row(3);
  C3DTriAABBTree tree;
  EXPECT_FALSE(tree.Prepare({}));
  mesh.triangles[2].b = 9;
  EXPECT_FALSE(tree.Prepare(mesh.view()));
  EXPECT_EQ(tree.mesh().vtx, nullptr);
  EXPECT_TRUE(tree.nodes().empty());
  EXPECT_FALSE(tree.AnyHit({{-1, 0.2, 0.2}, {1, 0, 0}}));
  mesh.triangles[2].b = 8;
  EXPECT_TRUE(tree.Prepare(mesh.view()));
}

TEST(TriangleTree, AnswersLikeABuiltOne_WhenOnlyPrepared) {
  Random random(19);
  for (Mesh& mesh : shapes::all_Meshes(random, 300)) {
    C3DTriAABBTree built, prepared;
    ASSERT_TRUE(built.Build(mesh.view()));
    ASSERT_TRUE(prepared.Prepare(mesh.view()));
    const T3DRAY ray = {random.triple(-1, 1), random.triple(-1, 1)};
    EXPECT_EQ(prepared.AnyHit(ray), built.AnyHit(ray));
    EXPECT_EQ(on_Line(prepared, ray), on_Line(built, ray));
    EXPECT_EQ(item_Order(prepared), item_Order(built));
    EXPECT_EQ(prepared.nodes().size(), built.nodes().size());
  }
}

TEST(TriangleTree, TellsWhetherATriangleIsExcluded) {
  Mesh mesh = make_Row(3);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Prepare(mesh.view()));
  EXPECT_FALSE(tree.has_Excluded());
  tree.Exclude(1);
  EXPECT_TRUE(tree.has_Excluded());
  tree.Clear();
  EXPECT_FALSE(tree.has_Excluded());
}

// With each query first in its turn.
TEST(TriangleTree, QueriesThrow_WithoutMemoryForATree_AndTheNextOneMakesIt) {
  Random random(20);
  Mesh mesh = shapes::make_Soup(random, 200);
  const T3DRAY ray = {{20, 0.5, 0.25}, {-1, 0, 0}};
  C3DTriAABBTree built;
  ASSERT_TRUE(built.Build(mesh.view()));
  const bool hit = built.AnyHit(ray);
  const std::vector<uint32_t> line = on_Line(built, ray);
  for (uint64_t n = 1, threw = 1; threw > 0; ++n) {
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Prepare(mesh.view()));
    const auto throws = [&](auto query) -> uint64_t {
      const tests::FailingAllocation failing(n);
      try {
        query();
      } catch (const std::bad_alloc&) {
        return 1;
      }
      EXPECT_FALSE(failing.has_Failed());
      return 0;
    };
    threw = throws([&] { tree.AnyHit(ray); }) + throws([&] { tree.nodes(); });
    EXPECT_EQ(tree.AnyHit(ray), hit);
    EXPECT_EQ(on_Line(tree, ray), line);
    EXPECT_EQ(item_Order(tree), item_Order(built));
    ASSERT_LT(n, 1000u);
    if (n < 3) {
      EXPECT_EQ(threw, 2u);
    }
  }
}

// By threads of its own, so that the thread sanitizer sees them start and end.
TEST(TriangleTree, MakesItsTreesOnce_ForThreadsThatAskAtOnce) {
  Random random(21);
  Mesh mesh = shapes::make_Soup(random, 2000);
  std::vector<T3DRAY> rays;
  for (int k = 0; k < 200; ++k) rays.push_back({random.triple(-20, 20), random.triple(-1, 1)});
  C3DTriAABBTree built;
  ASSERT_TRUE(built.Build(mesh.view()));
  for (int round = 0; round < 20; ++round) {
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Prepare(mesh.view()));
    std::vector<uint32_t> wrong(4);
    std::vector<std::thread> threads;
    for (uint32_t i = 0; i < wrong.size(); ++i)
      threads.emplace_back([&, i] {
        if (i % 2) wrong[i] += tree.nodes().size() != built.nodes().size();
        for (const T3DRAY& ray : rays) wrong[i] += tree.AnyHit(ray) != built.AnyHit(ray);
        wrong[i] += on_Line(tree, rays[i]) != on_Line(built, rays[i]);
      });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, std::vector<uint32_t>(4));
  }
}

TEST(TriangleTree, Clear_EmptiesIt) {
  Mesh mesh = make_Row(30);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  tree.Clear();
  EXPECT_TRUE(tree.nodes().empty());
  EXPECT_EQ(tree.mesh().vtx, nullptr);
  EXPECT_TRUE(on_Line(tree, {{-1, 0.2, 0.2}, {1, 0, 0}}).empty());
}

TEST(TriangleTree, EqualsThePlainBuild_OnEveryKindOfMesh) {
  Random random(1);
  for (const uint32_t count : {1u, 9u, 10u, 11u, 12u, 25u, 40u, 99u, 300u, 1501u})
    for (Mesh& mesh : shapes::all_Meshes(random, std::max(count, 2u))) {
      SCOPED_TRACE(mesh.name + " " + std::to_string(count));
      C3DTriAABBTree tree;
      ASSERT_TRUE(tree.Build(mesh.view()));
      shapes::expect_Sound(tree.nodes(), tree.items());
      const reference::PlainTree<C3DAABB> plain(shapes::triangle_Boxes(mesh));
      shapes::expect_Same(tree.nodes(), tree.items(), plain);
    }
}

TEST(TriangleTree, EqualsThePlainBuild_OnNumbersOfEveryKind) {
  Random random(2);
  for (uint32_t round = 0; round < scale_Cases(100); ++round) {
    Mesh mesh;
    for (uint32_t t = 0; t < 60; ++t) {
      const auto any = [&] { return random.chance(0.3) ? random.special() : random.real(-1, 1); };
      const T3DVEC a = {any(), any(), any()}, b = {any(), any(), any()};
      const T3DVEC c = {any(), any(), any()};
      mesh.add(a, b, c);
    }
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Build(mesh.view()));
    const reference::PlainTree<C3DAABB> plain(shapes::triangle_Boxes(mesh));
    shapes::expect_Same(tree.nodes(), tree.items(), plain);
  }
}

TEST(TriangleTree, IsAsDeepAsAFifthOfItsTriangles_WhereAllCoincide) {
  Mesh mesh = shapes::make_Coincident(100000);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  uint32_t depth = 0, node = 0;
  for (; !tree.nodes()[node].is_Leaf(); node = tree.nodes()[node].right) {
    ++depth;
    const auto& left = tree.nodes()[tree.nodes()[node].left];
    ASSERT_EQ(left.last - left.first + 1, 5u);
    ASSERT_TRUE(left.is_Leaf());
  }
  EXPECT_EQ(depth, 19998u);
  EXPECT_EQ(on_Line(tree, {{1, 1, -5}, {0, 0, 1}}).size(), 100000u);
  EXPECT_TRUE(tree.AnyHit({{1, 1, -5}, {0, 0, 1}}));
  EXPECT_FALSE(tree.AnyHit({{0.2, 1.8, 0.1}, {0, 0, 1}}));
  EXPECT_EQ(shapes::sorted(item_Order(tree))[99999], 99999u);
}

// ---- Lines -------------------------------------------------------------------------------------

TEST(TriangleTree, QueryLine_CountsAnOriginOnABoxFaceAsInside) {
  Mesh mesh;
  mesh.add({1, 0, 0}, {1, 2, 0}, {1, 0, 2});
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  EXPECT_EQ(on_Line(tree, {{0, 0, 0.5}, {1, 0, 0}}).size(), 1u);  // on the low y face
  EXPECT_EQ(on_Line(tree, {{0, 0, 2}, {1, 0, 0}}).size(), 1u);    // on the high z face too
  EXPECT_TRUE(on_Line(tree, {{0, -1e-300, 0.5}, {1, 0, 0}}).empty());
}

TEST(TriangleTree, QueryLine_FindsNothing_WhoseBoxLiesWhollyBehind) {
  Mesh mesh = make_Row(11);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  EXPECT_TRUE(on_Line(tree, {{-1, 0.2, 0.2}, {-1, 0, 0}}).empty());
  EXPECT_EQ(on_Line(tree, {{-1, 0.2, 0.2}, {1, 0, 0}}).size(), 11u);
}

TEST(TriangleTree, QueryLine_ReportsATriangleRoundTheOrigin_ThoughItsCrossingLiesBehind) {
  Mesh mesh;
  mesh.add({0, 0, 0}, {10, 0, 10}, {0, 10, 0});
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  const T3DRAY ray = {{3, 3, 5}, {0, 0, 1}};  // the triangle has z = 3 there
  EXPECT_EQ(on_Line(tree, ray).size(), 1u);
  EXPECT_FALSE(tree.AnyHit(ray));
  EXPECT_TRUE(tree.AnyHit({{3, 3, 5}, {0, 0, -1}}));
}

TEST(TriangleTree, QueryLine_AnswersInItemOrder_WithWhatALoopFinds) {
  Random random(3);
  for (uint32_t round = 0; round < scale_Cases(20); ++round)
    for (Mesh& mesh : shapes::all_Meshes(random, 200)) {
      C3DTriAABBTree tree;
      ASSERT_TRUE(tree.Build(mesh.view()));
      std::vector<uint32_t> place(mesh.triangles.size());
      for (uint32_t i = 0; i < place.size(); ++i) place[tree.items()[i].id] = i;
      for (int k = 0; k < 20; ++k) {
        const T3DVEC target = mesh.points[random.below(mesh.points.size())];
        const T3DVEC org = random.triple(-12, 12);
        const T3DRAY ray = {org, random.chance(0.5) ? target - org : random.triple(-1, 1)};
        const std::vector<uint32_t> found = on_Line(tree, ray);
        EXPECT_EQ(shapes::sorted(found), reference::on_Line(mesh.view(), ray)) << mesh.name;
        for (size_t i = 1; i < found.size(); ++i) EXPECT_LT(place[found[i - 1]], place[found[i]]);
      }
    }
}

// ---- Cylinders and slabs -----------------------------------------------------------------------

TEST(TriangleTree, QueryCylinder_FindsWhatALoopFinds) {
  Random random(4);
  for (uint32_t round = 0; round < scale_Cases(20); ++round) {
    // Without nested boxes: whole boxes inside the cylinder take triangles that it reaches too.
    Mesh mesh = round % 2 ? shapes::make_Soup(random, 300) : shapes::make_Grid(random, 12, 4);
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Build(mesh.view()));
    for (int k = 0; k < 20; ++k) {
      const T3DFRM frm = frm_Ray({random.triple(-10, 10), random.triple(-1, 1)});
      const T3DCYL cylinder = {frm, std::pow(10.0, random.real(-2, 2))};
      Answers answers(mesh.triangles.size());
      tree.QueryCylinder(cylinder, answers.list);
      std::vector<uint32_t> expected;
      for (uint32_t t = 0; t < mesh.triangles.size(); ++t)
        if (hit_CylTri(cylinder, get_Fac(mesh.view(), t))) expected.push_back(t);
      EXPECT_EQ(shapes::sorted(answers.ids()), expected);
    }
  }
}

TEST(TriangleTree, QueryCylinder_TakesAllInItemOrder_IfItHoldsTheRootBox) {
  Random random(5);
  Mesh mesh = shapes::make_Soup(random, 200);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  Answers answers(200);
  tree.QueryCylinder({kIdentity, 100}, answers.list);
  EXPECT_EQ(answers.ids(), item_Order(tree));
}

TEST(TriangleTree, QuerySlab_FindsWhatALoopFinds) {
  Random random(6);
  for (uint32_t round = 0; round < scale_Cases(10); ++round)
    for (Mesh& mesh : shapes::all_Meshes(random, 200)) {
      C3DTriAABBTree tree;
      ASSERT_TRUE(tree.Build(mesh.view()));
      for (int k = 0; k < 10; ++k) {
        T3DSLB slab = {kIdentity, random.real(-5, 5), 0};
        slab.high = slab.low + random.real(0, 8);
        slab.frm.x = random.triple(-1, 1);
        slab.frm.org = random.triple(-3, 3);
        Answers answers(mesh.triangles.size());
        tree.QuerySlab(slab, answers.list);
        std::vector<uint32_t> expected;
        for (uint32_t t = 0; t < mesh.triangles.size(); ++t)
          if (hit_SlabTri(slab, get_Fac(mesh.view(), t))) expected.push_back(t);
        EXPECT_EQ(shapes::sorted(answers.ids()), expected) << mesh.name;
      }
    }
}

TEST(TriangleTree, QuerySlab_WiderThanTheMesh_TakesAllInItemOrder) {
  Random random(7);
  Mesh mesh = shapes::make_Soup(random, 200);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  Answers answers(200);
  tree.QuerySlab({kIdentity, -100, 100}, answers.list);
  EXPECT_EQ(answers.ids(), item_Order(tree));
}

TEST(TriangleTree, QuerySlab_HoldingTheRootBox_LooksAtNoTriangle) {
  Mesh mesh = make_Row(30);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  // Moved away behind the tree's back: a test of any triangle would leave it out.
  for (T3DVEC& p : mesh.points) p.x += 1000;
  Answers answers(30);
  tree.QuerySlab({kIdentity, -100, 100}, answers.list);
  EXPECT_EQ(answers.ids(), item_Order(tree));
  answers.list.count = 0;
  tree.QuerySlab({kIdentity, -100, 28.5}, answers.list);  // not all of the root box
  EXPECT_LT(answers.list.count, 30u);
}

TEST(TriangleTree, Queries_AppendToWhatTheListHolds) {
  Mesh mesh = make_Row(3);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  Answers answers(10);
  answers.list.data[0] = 77;
  answers.list.count = 1;
  tree.QueryLine({{-1, 0.2, 0.2}, {1, 0, 0}}, answers.list);
  tree.QuerySlab({kIdentity, -1, 0.5}, answers.list);
  EXPECT_EQ(answers.ids(), (std::vector<uint32_t>{77, 0, 1, 2, 0}));
}

// ---- AnyHit ------------------------------------------------------------------------------------

TEST(TriangleTree, AnyHit_IsFalse_OnAnEmptyTree) {
  const C3DTriAABBTree tree;
  EXPECT_FALSE(tree.AnyHit({{0, 0, 0}, {0, 0, 1}}));
  EXPECT_TRUE(tree.nodes().empty());
}

TEST(TriangleTree, AnyHit_PassesOverTheExcludedTriangle) {
  Mesh mesh = make_Row(20);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  const T3DRAY last = {{18.5, 0.2, 0.2}, {1, 0, 0}};
  EXPECT_TRUE(tree.AnyHit(last));
  tree.Exclude(19);
  EXPECT_FALSE(tree.AnyHit(last));
  EXPECT_TRUE(tree.AnyHit({{17.5, 0.2, 0.2}, {1, 0, 0}}));
  ASSERT_TRUE(tree.Build(mesh.view()));  // forgets it
  EXPECT_TRUE(tree.AnyHit(last));
}

TEST(TriangleTree, AnyHit_IsTrueOfADegenerateTriangle_WhoseBoxTheRayPasses) {
  Mesh mesh;
  mesh.add({0, 0, 0}, {4, 4, 4}, {0, 0, 0});
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  EXPECT_TRUE(tree.AnyHit({{3, 1, -1}, {0, 0, 1}}));
  EXPECT_FALSE(tree.AnyHit({{5, 1, -1}, {0, 0, 1}}));
}

T3DVEC any_Direction(Random& random) {
  static const T3DVEC kAxes[6] = {{1, 0, 0},  {-1, 0, 0}, {0, 1, 0},
                                  {0, -1, 0}, {0, 0, 1},  {-0.0, -0.0, -1}};
  switch (random.below(6)) {
    case 0:
      return kAxes[random.below(6)];
    case 1:  // within an axis plane, or nearly
      return sph_ToCar(90.0, random.real(0, 360));
    case 2:
      return sph_ToCar(random.real(0, 180), 90.0 * static_cast<double>(random.below(4)));
    case 3:  // one component next to nothing
      return {random.real(-1, 1), std::pow(10.0, random.real(-320, 0)), random.real(-1, 1)};
    case 4:  // of any length
      return std::pow(10.0, random.real(-40, 40)) * random.triple(-1, 1);
    default:
      return random.triple(-1, 1);
  }
}

// From somewhere, from a lifted centroid, or exactly on a coordinate of the mesh; often straight at
// a vertex or the middle of an edge.
T3DRAY any_Ray(Random& random, const T3DMSH& msh, const C3DAABB& box) {
  const T3DFAC f = get_Fac(msh, static_cast<uint32_t>(random.below(msh.n_tri)));
  const T3DVEC middle = box.centre(), size = box.size();
  const T3DVEC at = random.triple(-1.2, 1.2);
  T3DRAY ray = {middle + T3DVEC{at.x * size.x, at.y * size.y, at.z * size.z},
                any_Direction(random)};
  switch (random.below(6)) {
    case 0:
      ray.org = cen_Tri(f) + 0.001 * nml_Tri(f);
      break;
    case 1:
      ray.org = f.a;
      break;
    case 2:
      ray.dir = f.b - ray.org;
      break;
    case 3:
      ray.dir = 0.5 * (f.a + f.b) - ray.org;
      break;
    case 4:  // in a plane of the box
      (random.below(2) ? ray.org.x : ray.org.z) = random.below(2) ? f.a.x : f.c.z;
      break;
    default:
      break;
  }
  if (random.chance(0.02)) ray.org = ray.org - std::pow(10.0, random.real(0, 25)) * ray.dir;
  return ray;
}

void compare_Rays(Random& random, Mesh& mesh, uint32_t count, uint32_t& hits) {
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  for (uint32_t k = 0; k < count; ++k) {
    const T3DRAY ray = any_Ray(random, mesh.view(), tree.nodes()[0].box);
    const bool hit = reference::any_Hit(mesh.view(), ray);
    hits += hit ? 1 : 0;
    ASSERT_EQ(tree.AnyHit(ray), hit)
        << mesh.name << " org " << ray.org.x << " " << ray.org.y << " " << ray.org.z << " dir "
        << ray.dir.x << " " << ray.dir.y << " " << ray.dir.z;
  }
}

TEST(TriangleTree, AnyHit_EqualsTheLoopOverAllTriangles_ForAMillionRays) {
  Random random(8);
  uint32_t hits = 0, rays = 0;
  for (uint32_t round = 0; rays < scale_Cases(1000000); ++round) {
    const auto count = static_cast<uint32_t>(std::pow(10.0, random.real(0.5, 2.7)));
    for (Mesh& mesh : shapes::all_Meshes(random, std::max(count, 2u))) {
      ASSERT_NO_FATAL_FAILURE(compare_Rays(random, mesh, 2000, hits));
      rays += 2000;
    }
  }
  EXPECT_GT(hits, rays / 10);  // neither answer is rare
  EXPECT_LT(hits, rays - rays / 10);
}

TEST(TriangleTree, AnyHit_EqualsTheLoop_AtEveryScale) {
  Random random(9);
  uint32_t hits = 0;
  for (uint32_t round = 0; round < scale_Cases(60); ++round) {
    const double scale = std::pow(10.0, random.real(-60, 60));
    Mesh mesh = shapes::make_Soup(random, 100, scale);
    if (round % 3 == 0)  // far from the origin, so that coordinates are coarse
      for (T3DVEC& p : mesh.points) p += T3DVEC{1e9 * scale, 0, -1e7 * scale};
    ASSERT_NO_FATAL_FAILURE(compare_Rays(random, mesh, 1000, hits));
  }
  EXPECT_GT(hits, 1000u);
}

TEST(TriangleTree, AnyHit_EqualsTheLoop_OnALargeBody) {
  Random random(10);
  Mesh mesh = shapes::make_Grid(random, 150, 3);
  uint32_t hits = 0;
  compare_Rays(random, mesh, scale_Cases(3000), hits);
}

TEST(TriangleTree, Queries_EndAndStayWithinTheirArrays_ForNumbersOfEveryKind) {
  Random random(12);
  for (uint32_t round = 0; round < scale_Cases(200); ++round) {
    Mesh mesh = shapes::make_Soup(random, 60);
    for (T3DVEC& p : mesh.points)
      if (random.chance(0.1)) p.y = random.special();
    C3DTriAABBTree tree;
    ASSERT_TRUE(tree.Build(mesh.view()));
    const auto any = [&] { return random.chance(0.3) ? random.special() : random.real(-9, 9); };
    const T3DVEC a = {any(), any(), any()}, b = {any(), any(), any()};
    Answers answers(3 * 60);
    tree.QueryLine({a, b}, answers.list);
    tree.QueryCylinder({{a, b, a, b}, any()}, answers.list);
    tree.QuerySlab({{a, b, a, b}, any(), any()}, answers.list);
    EXPECT_LE(answers.list.count, answers.list.capacity);
    for (const uint32_t id : answers.ids()) EXPECT_LT(id, 60u);
    tree.AnyHit({a, b});
  }
}

TEST(TriangleTree, AnyHit_FindsNothingThatALoopDoesNot_ForRaysThatAreNotFinite) {
  Random random(13);
  Mesh mesh = shapes::make_Soup(random, 100);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  for (const double odd : {kInfinite, -kInfinite, kNaN})
    for (int k = 0; k < 6; ++k) {
      T3DRAY ray = {{1, 2, 3}, {0.3, -0.5, 0.7}};
      T3DVEC& part = k < 3 ? ray.org : ray.dir;
      (k % 3 == 0 ? part.x : k % 3 == 1 ? part.y : part.z) = odd;
      EXPECT_LE(tree.AnyHit(ray), reference::any_Hit(mesh.view(), ray));
    }
}

TEST(TriangleTree, AnyHit_EqualsTheLoop_ForARayWithoutDirection) {
  Random random(14);
  Mesh mesh = shapes::make_Degenerate(random, 100);
  C3DTriAABBTree tree;
  ASSERT_TRUE(tree.Build(mesh.view()));
  uint32_t hits = 0;
  for (uint32_t k = 0; k < scale_Cases(1000); ++k) {
    const T3DRAY ray = {random.triple(-1, 5), {0, 0, 0}};
    const bool hit = reference::any_Hit(mesh.view(), ray);
    EXPECT_EQ(tree.AnyHit(ray), hit);
    hits += hit ? 1 : 0;
  }
  EXPECT_GT(hits, 0u);
}

}  // namespace
