// The flood over what a direction sees.
#include "projection/rim_area.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/reference/plain_rim_area.h"
#include "tests/support/intensity.h"
#include "tests/support/random_bodies.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using Indices = std::vector<uint32_t>;

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

// A sheet that faces up, and rays that go up.
class RimFlood : public testing::Test {
 protected:
  void SetUp() override { set_Mesh(make_Grid(4, 4)); }

  void set_Mesh(TSoup mesh) {
    soup = std::move(mesh);
    adj_Free(*tri_tri);
    release(*queue);
    const uint32_t count = soup.msh().n_tri;
    ASSERT_EQ(adj_TriTri(soup.msh(), *tri_tri), 0);
    ASSERT_TRUE(tree.Build(soup.msh()));
    ASSERT_TRUE(alloc(*queue, count));
    open = to_Bits(all_Of(soup));
    ASSERT_TRUE(area.init(count));
  }
  int32_t flood(uint32_t start) {
    return flood_Rim({soup.msh(), direction, lift, start}, tree, *tri_tri, open, area, *queue);
  }
  Indices list_Area() {
    Scoped<TLst<uint32_t>> lst;
    EXPECT_TRUE(area.to_Lst(*lst));
    return copy_Of(*lst);
  }
  // Of a strip of six triangle 3 faces down; its ray, not lifted, begins on it.
  void turn_Over() {
    set_Mesh(make_Strip(6));
    std::swap(soup.tri[3].b, soup.tri[3].c);
    ASSERT_TRUE(tree.Build(soup.msh()));
    lift = 0.0;
  }
  // A triangle of its own, face up, that hides what lies below it.
  static void add_Roof(TSoup& mesh, const T3DVEC& a, const T3DVEC& b, const T3DVEC& c) {
    const auto first = static_cast<uint32_t>(mesh.vtx.size());
    mesh.vtx.insert(mesh.vtx.end(), {a, b, c});
    mesh.tri.push_back({first, first + 1, first + 2});
  }

  TSoup soup;
  T3DVEC direction = {0, 0, 1};
  double lift = 0.001;
  Scoped<TAdj> tri_tri;
  C3DTriAABBTree tree;
  CBitVector open, area;
  Scoped<TLst<uint32_t>> queue;
};

}  // namespace

TEST_F(RimFlood, TakesASheetThatIsSeen) {
  ASSERT_EQ(flood(13), 0);
  EXPECT_EQ(list_Area(), list_All(soup));
  EXPECT_TRUE(open.is_Empty());
}

TEST_F(RimFlood, RunsBreadthFirst_InTheOrderOfTheTable) {
  set_Mesh(make_Wheel(7));
  ASSERT_EQ(flood(2), 0);
  EXPECT_EQ(copy_Of(*queue), (Indices{2, 1, 3, 0, 4, 6, 5}));
}

TEST_F(RimFlood, StaysWithinWhatIsOpen) {
  set_Mesh(make_Strip(10));
  open.clear(3);
  open.clear(8);
  ASSERT_EQ(flood(5), 0);
  EXPECT_EQ(list_Area(), (Indices{4, 5, 6, 7}));
  EXPECT_TRUE(open.test(0) && open.test(2) && open.test(9));
}

TEST_F(RimFlood, TakesTheStart_ThoughItIsNotOpen) {
  open.clear_All();
  ASSERT_EQ(flood(5), 0);
  EXPECT_EQ(list_Area(), (Indices{5}));
}

TEST_F(RimFlood, LeavesOutWhatIsHidden_AndTakesItFromTheOpenOnes) {
  TSoup mesh = make_Strip(9);
  const uint32_t roof = 9;
  add_Roof(mesh, {1.5, -1, 1}, {3.2, -1, 1}, {2.3, 3, 1});
  set_Mesh(mesh);
  ASSERT_EQ(flood(0), 0);
  // Triangles 3 and 4 lie below it; what is behind them is reached by no other way.
  EXPECT_EQ(list_Area(), (Indices{0, 1, 2}));
  EXPECT_FALSE(open.test(3));
  EXPECT_TRUE(open.test(4) && open.test(roof));
}

TEST_F(RimFlood, DoesNotTryAHiddenTriangleAgain_FromAnotherSide) {
  TSoup mesh = make_Wheel(8);
  add_Roof(mesh, {0, 0.35, 1}, {0.5, 0.35, 1}, {0.25, 1.2, 1});
  set_Mesh(mesh);
  ASSERT_EQ(flood(5), 0);
  EXPECT_EQ(list_Area(), (Indices{0, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(queue->count, 7u);
  EXPECT_FALSE(open.test(1));
}

TEST_F(RimFlood, LeavesOutWhatFacesAway_ThoughItsRayIsFree) {
  turn_Over();
  ASSERT_EQ(flood(0), 0);
  EXPECT_EQ(list_Area(), (Indices{0, 1, 2}));
}

TEST_F(RimFlood, TakesAStartThatFacesAway_IfItsRayIsFree) {
  turn_Over();
  ASSERT_EQ(flood(3), 0);
  EXPECT_EQ(list_Area(), list_All(soup));
}

// A wall beside the start leans by so little that only the last bits of its normal tell it.
TEST_F(RimFlood, LeavesOutAWall_ThatLeansByNoMoreThanTheCosineOfAQuarterTurn) {
  const auto joins = [this](double lean) {
    area.clear_All();
    set_Mesh({{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-lean, 0.5, 1}}, {{0, 1, 2}, {0, 2, 3}}});
    EXPECT_EQ(flood(0), 0);
    return area.test(1);
  };
  EXPECT_FALSE(joins(0.0));
  EXPECT_FALSE(joins(6e-17));
  EXPECT_TRUE(joins(6.2e-17));
  EXPECT_TRUE(joins(1e-3));
  EXPECT_FALSE(joins(-1e-3));
  // The direction counts with its length.
  direction = {0, 0, 10};
  EXPECT_TRUE(joins(1e-17));
  direction = {0, 0, 0.01};
  EXPECT_FALSE(joins(1e-16));
}

TEST_F(RimFlood, IsLiftedAsTold) {
  // A roof half a millimetre over the sheet hides nothing from rays that start above it.
  TSoup mesh = make_Strip(9);
  add_Roof(mesh, {-5, -5, 0.5}, {25, -5, 0.5}, {2, 25, 0.5});
  set_Mesh(mesh);
  EXPECT_EQ(flood(0), -17);
  lift = 0.6;
  ASSERT_EQ(flood(0), 0);
  EXPECT_EQ(area.count(), 9u);
}

TEST_F(RimFlood, TakesADegenerateTriangleUnseen_AndRunsThroughIt) {
  TSoup mesh = make_Strip(9);
  mesh.vtx[5] = mesh.vtx[6];  // triangles 4 and 5 have two corners at one place
  add_Roof(mesh, {2, -1, 1}, {3.9, -1, 1}, {3, 3, 1});
  mesh.vtx.back() = {3, 3, 1};
  set_Mesh(mesh);
  ASSERT_TRUE(is_Flat(get_Fac(soup.msh(), 4)) && is_Flat(get_Fac(soup.msh(), 5)));
  ASSERT_FALSE(plain::joins_Area(soup.msh(), {direction, lift}, 6));
  ASSERT_EQ(flood(8), 0);
  EXPECT_FALSE(area.test(6));
  open = to_Bits(all_Of(soup));
  area.clear_All();
  ASSERT_EQ(flood(0), 0);
  EXPECT_FALSE(area.test(6));
  EXPECT_TRUE(area.test(4) && area.test(5));
}

TEST_F(RimFlood, TakesADegenerateTriangle_ByIndexToo) {
  set_Mesh(make_Soup(4, {{0, 1, 2}, {1, 2, 2}, {2, 3, 1}}));
  soup.vtx = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}};
  soup.tri[2] = {1, 3, 2};
  ASSERT_TRUE(tree.Build(soup.msh()));
  ASSERT_EQ(flood(0), 0);
  EXPECT_TRUE(area.test(1));
}

TEST_F(RimFlood, GivesMinus16_ForAStartWithTwoEqualCorners) {
  for (const auto& [a, b] : {std::pair{0u, 1u}, {1u, 2u}, {2u, 0u}}) {
    set_Mesh(make_Grid(3, 3));
    const uint32_t corners[] = {soup.tri[4].a, soup.tri[4].b, soup.tri[4].c};
    soup.vtx[corners[a]] = soup.vtx[corners[b]];
    ASSERT_TRUE(tree.Build(soup.msh()));
    EXPECT_EQ(flood(4), -16);
    EXPECT_TRUE(area.is_Empty());
  }
  set_Mesh(make_Grid(3, 3));
  soup.tri[4].b = soup.tri[4].a;
  EXPECT_EQ(flood(4), -16);
}

TEST_F(RimFlood, GivesMinus17_ForAStartThatIsNotSeen) {
  direction = {0, 0, -1};
  EXPECT_EQ(flood(4), -17);
  EXPECT_TRUE(area.is_Empty());
  EXPECT_EQ(open.count(), 32u);
}

TEST_F(RimFlood, GivesACodeForEachSetThatIsTooSmall) {
  CBitVector small;
  ASSERT_TRUE(small.init(4));
  std::swap(queue->capacity, queue->count);
  EXPECT_EQ(flood(4), -20);
  queue->capacity = 1;
  EXPECT_EQ(flood(4), -24);
  queue->capacity = 32;
  open = small;
  EXPECT_EQ(flood(4), -19);
  open = to_Bits(all_Of(soup));
  area = small;
  EXPECT_EQ(flood(4), -18);
  EXPECT_EQ(flood(3), -23);
}

// A ray without numbers counts as blocked.
TEST_F(RimFlood, LeavesOutWhatHasNoNumbers) {
  set_Mesh(make_Strip(8));
  soup.vtx[6] = {kNoNumber, kNoNumber, kNoNumber};
  ASSERT_TRUE(tree.Build(soup.msh()));
  ASSERT_EQ(flood(0), 0);
  EXPECT_EQ(list_Area(), (Indices{0, 1, 2, 3}));
  EXPECT_EQ(flood(5), -17);
}

TEST_F(RimFlood, LeavesNothingOut_AlongADirectionWithoutANumber) {
  direction = {kNoNumber, 0, 1};
  ASSERT_EQ(flood(0), 0);
  EXPECT_EQ(list_Area(), list_All(soup));
}

TEST_F(RimFlood, EqualsThePlainForm_OnRandomMeshes) {
  const uint64_t seed = 740;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  reference::Random random(seed);
  uint32_t reached = 0;
  for (uint32_t round = 0; round < scale_Cases(400); ++round) {
    SCOPED_TRACE(round);
    const uint64_t kind = random.below(4);
    set_Mesh(kind == 0   ? any_Ball(random, 8, 9, 0.6)
             : kind == 1 ? any_Heap(random, 4)
             : kind == 2 ? make_Tangle(random, 12, 40)
                         : tilt(make_Bumpy(7, 6)));
    direction = random.triple(-1, 1);
    lift = random.chance(0.2) ? 0.0 : 0.001;
    std::vector<bool> may(soup.tri.size());
    for (size_t t = 0; t < may.size(); ++t) may[t] = random.chance(0.85);
    open = to_Bits(may);
    const auto start = static_cast<uint32_t>(random.below(soup.tri.size()));
    const int32_t code = flood(start);
    const T3DFAC f = get_Fac(soup.msh(), start);
    const bool seen = !reference::any_Hit(soup.msh(), {cen_Tri(f) + lift * nml_Tri(f), direction});
    ASSERT_EQ(code, is_Flat(f) ? -16 : seen ? 0 : -17);
    if (code != 0) continue;
    ++reached;
    const plain::Set expected =
        plain::flood(soup.msh(), plain::list_Neighbours(soup.tri), {direction, lift}, start, may);
    for (uint32_t t = 0; t < expected.size(); ++t) ASSERT_EQ(area.test(t), expected[t]) << t;
  }
  EXPECT_GT(reached, 50u);
}
