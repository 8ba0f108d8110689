// det_Roi, called as a host calls it. Its checks of the library's own lists:
// tests/projection/projection_codes_test.cpp.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "foundation/values.h"
#include "tests/boundary/defaults.h"
#include "tests/support/allocations.h"
#include "tests/support/corridor.h"

using namespace undercut::tests;

namespace {

using Indices = std::vector<uint32_t>;

const T3DVEC kAlong = {5, 0, 0};  // the direction of the ray

// Sheet and ray are those of the corridor: the sheet's row y holds the triangles 8 y to 8 y + 7,
// and the ray runs over the middle of row 2.
class SlabSelection : public testing::Test {
 protected:
  SlabSelection() { EXPECT_EQ(r.register_Sheet(), 0); }
  ~SlabSelection() override { defaults::restore(); }
  Indices listed() {
    TLstU32 view = {};
    EXPECT_EQ(get_Roi(&view), 0);
    return Indices(view.data, view.data + view.count);
  }
  Indices sorted() {
    Indices list = listed();
    std::sort(list.begin(), list.end());
    return list;
  }
  Indices select(const std::vector<T3DVEC>& axes) {
    r.fill(axes);
    EXPECT_EQ(det_Roi(&r.req), 0);
    return sorted();
  }
  TCorridorRequest r;
};

TEST_F(SlabSelection, HoldsWhatReachesIntoTheSlab) {
  EXPECT_EQ(select({kDown}), list_Range(16, 24));
  EXPECT_EQ(select({kTilted}), list_Range(24, 32));
}

TEST_F(SlabSelection, OfASecondCall_IsNotJoinedWithTheFirst) {
  EXPECT_EQ(select({kDown}), list_Range(16, 24));
  EXPECT_EQ(select({kTilted}), list_Range(24, 32));
  EXPECT_EQ(select({kDown}), list_Range(16, 24));
}

TEST_F(SlabSelection, JoinsTheSlabsOfAllAxes_EachTriangleOnce_AsFirstSeen) {
  defaults::set(con_Wid, 1.02);
  select({kTilted});
  Indices expected = listed();
  ASSERT_EQ(expected.size(), 16u);  // rows 2 and 3
  select({kDown});
  const Indices second = listed();
  for (const uint32_t t : second)
    if (std::find(expected.begin(), expected.end(), t) == expected.end()) expected.push_back(t);
  ASSERT_EQ(expected.size(), 24u);
  select({kTilted, kDown, kTilted, kDown});
  EXPECT_EQ(listed(), expected);
}

TEST_F(SlabSelection, IsAsWideAsConWid_ToBothSidesTogether) {
  defaults::set(con_Wid, 0.98);
  EXPECT_EQ(select({kDown}), list_Range(16, 24));
  defaults::set(con_Wid, 1.02);
  EXPECT_EQ(select({kDown}), list_Range(8, 32));
  defaults::set(con_Wid, 3.02);
  EXPECT_EQ(select({kDown}), list_Range(0, 32));
  defaults::set(con_Wid, 0.0);
  EXPECT_EQ(select({kDown}), list_Range(16, 24));
}

// The normal of the slab is as long as the sine of the angle between ray and axis.
TEST_F(SlabSelection, IsThinnerForAnObliqueAxis) {
  const T3DVEC oblique = {1, 0, -1};
  defaults::set(con_Wid, 1.40);
  EXPECT_EQ(select({oblique}), list_Range(16, 24));
  defaults::set(con_Wid, 1.43);
  EXPECT_EQ(select({oblique}), list_Range(8, 32));
}

TEST_F(SlabSelection, OfAnAxisAlongTheRay_IsTheWholeMesh) {
  defaults::set(con_Wid, 0.0);
  EXPECT_EQ(select({kAlong}), list_Range(0, 32));
  EXPECT_EQ(select({-kAlong}), list_Range(0, 32));
  EXPECT_EQ(select({{0, 0, 0}}), list_Range(0, 32));
}

TEST_F(SlabSelection, ReadsTheDirectionOfAnAxisAlone_AndOrgAndDirectionOfTheRay) {
  r.fill({kDown});
  r.req.ray = {{-50, 0.5, 99}, {0.001, 0, 0}};
  r.axi[0].org = {1e300, -4, 1};
  EXPECT_EQ(det_Roi(&r.req), 0);
  EXPECT_EQ(sorted(), list_Range(0, 8));
}

TEST_F(SlabSelection, IsEmpty_WhereNoTriangleReachesIn) {
  r.fill({kDown});
  r.req.ray.org.y = 50;
  EXPECT_EQ(det_Roi(&r.req), 0);
  EXPECT_EQ(listed(), Indices());
}

TEST_F(SlabSelection, GivesMinus1_WithoutARegisteredMesh) {
  r.fill({kDown});
  clr_Dll();
  EXPECT_EQ(det_Roi(&r.req), -1);
  EXPECT_EQ(det_Roi(nullptr), -1);
}

TEST_F(SlabSelection, GivesMinus5_WithoutAxes_AndKeepsTheSelection) {
  select({kDown});
  r.req.axi.count = 0;
  EXPECT_EQ(det_Roi(&r.req), -5);
  r.req.axi = {nullptr, 3};
  EXPECT_EQ(det_Roi(&r.req), -5);
  EXPECT_EQ(det_Roi(nullptr), -5);
  EXPECT_EQ(sorted(), list_Range(16, 24));
}

TEST_F(SlabSelection, GivesMinus6_ForARayWithoutDirection_AndKeepsTheSelection) {
  select({kDown});
  for (const T3DVEC& none : {T3DVEC{0, 0, 0}, T3DVEC{-0.0, 0, -0.0}}) {
    r.req.ray.dir = none;
    EXPECT_EQ(det_Roi(&r.req), -6);
  }
  r.req.axi.count = 0;
  EXPECT_EQ(det_Roi(&r.req), -5);
  EXPECT_EQ(sorted(), list_Range(16, 24));
}

TEST_F(SlabSelection, OfDirectionsThatAreNoNumbers_IsTheWholeMesh) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(select({{nan, 0, -1}}), list_Range(0, 32));
  r.fill({kDown});
  r.req.ray.dir = {nan, 0, 0};
  EXPECT_EQ(det_Roi(&r.req), 0);
  EXPECT_EQ(sorted(), list_Range(0, 32));
}

TEST_F(SlabSelection, StaysWithinTheMesh_ForValuesThatAreNotFinite) {
  const double infinite = std::numeric_limits<double>::infinity();
  for (const double bad : {infinite, -infinite, 1e308, std::nan("")}) {
    r.fill({{bad, 0, -1}, {0, bad, bad}, kDown});
    r.req.ray = {{bad, 0, 0}, {0, bad, 1}};
    EXPECT_EQ(det_Roi(&r.req), 0);
    EXPECT_LE(listed().size(), 32u);
    defaults::set(con_Wid, bad);
    r.fill({kDown, kTilted});
    EXPECT_EQ(det_Roi(&r.req), 0);
    EXPECT_LE(listed().size(), 32u);
    defaults::set(con_Wid, 0.5);
  }
}

TEST_F(SlabSelection, HandsOutAViewOfTheSameArray_InEachCall) {
  select({kDown});
  TLstU32 first, second;
  get_Roi(&first);
  select({kTilted});
  get_Roi(&second);
  EXPECT_TRUE(first.data == second.data);
  EXPECT_EQ(second.count, 8u);
  EXPECT_EQ(second.capacity, 32u);
}

TEST_F(SlabSelection, AllocatesNothing) {
  r.fill({kDown, kTilted});
  const FailingAllocation failing(1);
  EXPECT_EQ(det_Roi(&r.req), 0);
  EXPECT_FALSE(failing.has_Failed());
}

TEST_F(SlabSelection, LeavesTheRequestAsItWas) {
  r.fill({kDown, kTilted});
  const std::vector<T3DRAY> axi = r.axi;
  TUcReq before;
  std::memcpy(static_cast<void*>(&before), &r.req, sizeof before);
  ASSERT_EQ(det_Roi(&r.req), 0);
  EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
  EXPECT_EQ(std::memcmp(axi.data(), r.axi.data(), axi.size() * sizeof(T3DRAY)), 0);
}

TEST_F(SlabSelection, WorksOnARequestAtAMultipleOf4Bytes) {
  alignas(8) char memory[4 + sizeof(TUcReq)];
  r.fill({kDown});
  std::memcpy(memory + 4, &r.req, sizeof r.req);
  EXPECT_EQ(det_Roi(reinterpret_cast<TUcReq*>(memory + 4)), 0);
  EXPECT_EQ(sorted(), list_Range(16, 24));
}

}  // namespace
