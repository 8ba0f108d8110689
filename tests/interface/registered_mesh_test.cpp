// The registered mesh, seen from inside.
#include "interface/registered_mesh.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "tests/interface/blocks.h"
#include "tests/support/allocations.h"

using namespace undercut;

namespace {

// Two triangles of a unit square in the plane z = 0.
struct TSquare {
  std::vector<T3DVEC> vtx = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  std::vector<T3DTRI> tri = {{0, 1, 2}, {0, 2, 3}};
  T3DMSH msh() { return {vtx.data(), uint32_t(vtx.size()), tri.data(), uint32_t(tri.size())}; }
};

class RegisteredMesh : public BlocksTest {
 protected:
  RegisteredMesh() { clr_Dll(); }
  ~RegisteredMesh() override { clr_Dll(); }
  int32_t add() {
    const T3DMSH msh = square.msh();
    return ini_Adt(&msh);
  }
  TSquare square;
};

bool is_Empty(const T3DMSH& m) { return !m.vtx && !m.tri && m.n_vtx == 0 && m.n_tri == 0; }
bool is_Empty(const TLst<uint32_t>& l) { return !l.data && l.count == 0 && l.capacity == 0; }

void expect_Empty() {
  EXPECT_TRUE(is_Empty(g_Msh));
  EXPECT_TRUE(is_Empty(g_Sel));
  EXPECT_TRUE(is_Empty(g_Hit));
  EXPECT_TRUE(is_Empty(g_Aux));
  EXPECT_TRUE(g_Tre.nodes().empty());
  EXPECT_EQ(g_Mrk.size(), 0u);
  EXPECT_EQ(g_Ucs.size(), 0u);
  EXPECT_EQ(g_Shd.size(), 0u);
}

TEST_F(RegisteredMesh, HasNoTriangles_BeforeOneIsRegistered) {
  uint32_t count = 99;
  EXPECT_EQ(cnt_Tri(&count), 0);
  EXPECT_EQ(count, 0u);
  expect_Empty();
}

TEST_F(RegisteredMesh, IsADeepCopy_ThatOutlivesTheHostsArrays) {
  ASSERT_EQ(add(), 0);
  EXPECT_TRUE(g_Msh.vtx != square.vtx.data());
  EXPECT_TRUE(g_Msh.tri != square.tri.data());
  const TSquare plain;
  for (T3DVEC& v : square.vtx) v = {9, 9, 9};
  for (T3DTRI& t : square.tri) t = {3, 3, 3};
  ASSERT_EQ(g_Msh.n_vtx, 4u);
  ASSERT_EQ(g_Msh.n_tri, 2u);
  EXPECT_EQ(std::memcmp(g_Msh.vtx, plain.vtx.data(), 4 * sizeof(T3DVEC)), 0);
  EXPECT_EQ(std::memcmp(g_Msh.tri, plain.tri.data(), 2 * sizeof(T3DTRI)), 0);
}

TEST_F(RegisteredMesh, SizesItsListsAndBitVectorsToItsTriangles) {
  ASSERT_EQ(add(), 0);
  for (const auto* lst : {&g_Sel, &g_Hit, &g_Aux}) {
    EXPECT_TRUE(lst->data != nullptr);
    EXPECT_EQ(lst->count, 0u);
    EXPECT_EQ(lst->capacity, 2u);
  }
  for (const auto* bits : {&g_Mrk, &g_Ucs, &g_Shd}) {
    EXPECT_EQ(bits->size(), 2u);
    EXPECT_TRUE(bits->is_Empty());
  }
  uint32_t count = 0;
  EXPECT_EQ(cnt_Tri(&count), 0);
  EXPECT_EQ(count, 2u);
}

TEST_F(RegisteredMesh, IsSeenByItsTree) {
  ASSERT_EQ(add(), 0);
  EXPECT_EQ(g_Tre.mesh().vtx, g_Msh.vtx);
  EXPECT_TRUE(g_Tre.AnyHit({{0.7, 0.2, 1.0}, {0, 0, -1}}));
  EXPECT_FALSE(g_Tre.AnyHit({{1.7, 0.2, 1.0}, {0, 0, -1}}));
}

TEST_F(RegisteredMesh, RefusesAMeshWithoutArraysOrCounts_EachWithItsCode) {
  T3DMSH msh = square.msh();
  EXPECT_EQ(ini_Adt(nullptr), -1);
  msh.vtx = nullptr;
  EXPECT_EQ(ini_Adt(&msh), -1);
  msh = square.msh();
  msh.tri = nullptr;
  EXPECT_EQ(ini_Adt(&msh), -2);
  msh = square.msh();
  msh.n_vtx = 0;
  EXPECT_EQ(ini_Adt(&msh), -3);
  msh = square.msh();
  msh.n_tri = 0;
  EXPECT_EQ(ini_Adt(&msh), -4);
  msh = {};
  EXPECT_EQ(ini_Adt(&msh), -1);
  expect_Empty();
}

TEST_F(RegisteredMesh, RefusesAVertexIndexOutOfRange_AfterTheChecksOfArraysAndCounts) {
  square.tri[1].c = 4;
  EXPECT_EQ(add(), UNDERCUT_BAD_VERTEX);
  EXPECT_TRUE(is_Empty(g_Msh));
  T3DMSH msh = square.msh();
  msh.n_vtx = 0;
  EXPECT_EQ(ini_Adt(&msh), -3);
}

TEST_F(RegisteredMesh, LeavesTheHostsMeshAsItWas) {
  ASSERT_EQ(add(), 0);
  const TSquare plain;
  EXPECT_EQ(std::memcmp(square.vtx.data(), plain.vtx.data(), 4 * sizeof(T3DVEC)), 0);
  EXPECT_EQ(std::memcmp(square.tri.data(), plain.tri.data(), 2 * sizeof(T3DTRI)), 0);
}

TEST_F(RegisteredMesh, ASecondRegistration_FreesNeitherTheFirstMeshNorItsLists) {
  ASSERT_EQ(add(), 0);
  T3DMSH first = g_Msh;
  TLst<uint32_t> lists[3] = {g_Sel, g_Hit, g_Aux};
  square.vtx[0] = {-1, -1, 0};
  ASSERT_EQ(add(), 0);
  EXPECT_TRUE(g_Msh.vtx != first.vtx);
  EXPECT_EQ(first.vtx[0].x, 0.0);
  EXPECT_EQ(g_Msh.vtx[0].x, -1.0);
  release(first);  // a second release would be one too many
  for (auto& lst : lists) {
    EXPECT_EQ(lst.data[0], 0u);
    release(lst);
  }
}

TEST_F(RegisteredMesh, AFailedRegistration_EmptiesTheFourRecordsWithoutFreeingThem) {
  ASSERT_EQ(add(), 0);
  T3DMSH first = g_Msh;
  TLst<uint32_t> lists[3] = {g_Sel, g_Hit, g_Aux};
  EXPECT_EQ(ini_Adt(nullptr), -1);
  EXPECT_TRUE(is_Empty(g_Msh));
  EXPECT_TRUE(is_Empty(g_Sel));
  EXPECT_TRUE(is_Empty(g_Hit));
  EXPECT_TRUE(is_Empty(g_Aux));
  EXPECT_EQ(first.n_tri, 2u);
  release(first);
  for (auto& lst : lists) release(lst);
}

TEST_F(RegisteredMesh, Clearing_EmptiesEverythingAndMayBeRepeated) {
  ASSERT_EQ(add(), 0);
  EXPECT_EQ(clr_Dll(), 0);
  expect_Empty();
  EXPECT_EQ(clr_Dll(), 0);
  expect_Empty();
  uint32_t count = 99;
  cnt_Tri(&count);
  EXPECT_EQ(count, 0u);
}

TEST_F(RegisteredMesh, Clearing_LeavesTheParametersAsTheHostSetThem) {
  const double value = 12.5;
  dcm_win(&value);
  ucs_Tol(&value);
  ASSERT_EQ(add(), 0);
  clr_Dll();
  EXPECT_EQ(g_Dcm.T_win, 12.5);
  EXPECT_EQ(g_UCs.f_tol, 12.5);
}

TEST_F(RegisteredMesh, ItsSelection_IsAViewOfTheLibrarysOwnList) {
  ASSERT_EQ(add(), 0);
  TLstU32 lst = {};
  EXPECT_EQ(get_Roi(&lst), 0);
  EXPECT_TRUE(lst.data == g_Sel.data);
  EXPECT_EQ(lst.count, 0u);
  EXPECT_EQ(lst.capacity, 2u);
  g_Sel.data[0] = 1;
  g_Sel.count = 1;
  EXPECT_EQ(get_Roi(&lst), 0);
  EXPECT_EQ(lst.count, 1u);
  EXPECT_EQ(lst.data[0], 1u);
}

TEST_F(RegisteredMesh, ItsShadedTriangles_AreNone) {
  ASSERT_EQ(add(), 0);
  uint32_t old = 7;
  TLstU32 lst = {&old, 1, 1};
  EXPECT_EQ(get_Shd(&lst), 0);
  EXPECT_EQ(lst.count, 0u);
  EXPECT_TRUE(lst.data != &old);
  EXPECT_EQ(clr_Sub(&lst), 0);
}

TEST_F(RegisteredMesh, ItsShadedTriangles_AreTheSetBits) {
  ASSERT_EQ(add(), 0);
  g_Shd.set(1);
  TLstU32 lst = {};
  EXPECT_EQ(get_Shd(&lst), 0);
  ASSERT_EQ(lst.count, 1u);
  EXPECT_EQ(lst.data[0], 1u);
  EXPECT_EQ(clr_Sub(&lst), 0);
  EXPECT_TRUE(is_Empty(lst));
}

TEST_F(RegisteredMesh, ItsShadedTriangles_AreNoneWithoutAMesh) {
  TLstU32 lst = {};
  EXPECT_EQ(get_Shd(&lst), 0);
  EXPECT_TRUE(is_Empty(lst));
}

TEST_F(RegisteredMesh, ItsShadedTriangles_GiveMinus1WithoutMemoryForTheList) {
  ASSERT_EQ(add(), 0);
  g_Shd.set(0);
  TLstU32 lst = {};
  {
    const tests::FailingAllocation failing(1);
    EXPECT_EQ(get_Shd(&lst), -1);
    EXPECT_TRUE(failing.has_Failed());
  }
  EXPECT_TRUE(is_Empty(lst));
}

TEST_F(RegisteredMesh, TheTreeAndTheBitVectors_AreReleasedByASecondRegistration) {
  ASSERT_EQ(add(), 0);
  T3DMSH first = g_Msh;
  TLst<uint32_t> lists[3] = {g_Sel, g_Hit, g_Aux};
  const int64_t live = tests::live_Allocations();
  ASSERT_EQ(add(), 0);
  EXPECT_EQ(tests::live_Allocations(), live + 5) << "two arrays of the mesh and three lists";
  release(first);
  for (auto& lst : lists) release(lst);
  EXPECT_EQ(tests::live_Allocations(), live);
}

TEST_F(RegisteredMesh, NullPointers_AreHarmless) {
  ASSERT_EQ(add(), 0);
  EXPECT_EQ(cnt_Tri(nullptr), 0);
  EXPECT_EQ(get_Roi(nullptr), 0);
  EXPECT_EQ(get_Shd(nullptr), 0);
}

}  // namespace
