#include "foundation/arrays.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "tests/support/allocations.h"

namespace undercut {
namespace {

using tests::FailingAllocation;
using tests::live_Allocations;

TEST(Arrays, AllocationOfNothing_SucceedsAndLeavesTheRecordEmpty) {
  TArrU32 arr = {reinterpret_cast<uint32_t*>(8), 7};
  TLstU32 lst = {reinterpret_cast<uint32_t*>(8), 7, 7};
  T3DMSH msh = {reinterpret_cast<T3DVEC*>(8), 7, reinterpret_cast<T3DTRI*>(8), 7};
  EXPECT_TRUE(alloc(arr, 0));
  EXPECT_TRUE(alloc(lst, 0));
  EXPECT_TRUE(arr.data == nullptr);
  EXPECT_EQ(arr.count, 0u);
  EXPECT_TRUE(lst.data == nullptr);
  EXPECT_EQ(lst.count, 0u);
  EXPECT_EQ(lst.capacity, 0u);
  EXPECT_TRUE(alloc_Msh(msh, 0, 5));
  EXPECT_TRUE(msh.vtx == nullptr);
  EXPECT_TRUE(alloc_Msh(msh, 5, 0));
  EXPECT_TRUE(msh.vtx == nullptr);
  EXPECT_TRUE(msh.tri == nullptr);
  EXPECT_EQ(msh.n_vtx, 0u);
  EXPECT_EQ(msh.n_tri, 0u);
}

TEST(Arrays, AnArrayIsCountedAndAListIsNot) {
  Scoped<TArrVec> arr;
  Scoped<TLstU32> lst;
  ASSERT_TRUE(alloc(*arr, 5));
  ASSERT_TRUE(alloc(*lst, 5));
  EXPECT_EQ(arr->count, 5u);
  EXPECT_EQ(lst->count, 0u);
  EXPECT_EQ(lst->capacity, 5u);
  for (uint32_t i = 0; i < 5; ++i) {
    EXPECT_EQ(arr->data[i], (T3DVEC{0, 0, 0}));
    EXPECT_EQ(lst->data[i], 0u);
  }
}

TEST(Arrays, InnerRecordsOfAListStartEmpty) {
  Scoped<TLstLstU32> lists;
  Scoped<TLst<TArrU32>> arrays;
  ASSERT_TRUE(alloc(*lists, 3));
  ASSERT_TRUE(alloc(*arrays, 3));
  for (uint32_t i = 0; i < 3; ++i) {
    EXPECT_TRUE(lists->data[i].data == nullptr);
    EXPECT_EQ(lists->data[i].capacity, 0u);
    EXPECT_TRUE(arrays->data[i].data == nullptr);
    EXPECT_EQ(arrays->data[i].count, 0u);
  }
}

TEST(Arrays, Release_FreesAllLevels) {
  const int64_t before = live_Allocations();
  TLstRgn regions;
  ASSERT_TRUE(alloc(regions, 3));
  ASSERT_TRUE(alloc(regions.data[0], 2));
  ASSERT_TRUE(alloc(regions.data[0].data[1], 9));
  ASSERT_TRUE(alloc(regions.data[2], 1));  // beyond any count that was set
  TArrMsh meshes;
  ASSERT_TRUE(alloc(meshes, 2));
  ASSERT_TRUE(alloc_Msh(meshes.data[1], 3, 4));
  EXPECT_EQ(live_Allocations() - before, 7);
  release(regions);
  release(meshes);
  EXPECT_EQ(live_Allocations(), before);
  EXPECT_TRUE(regions.data == nullptr);
  EXPECT_EQ(regions.capacity, 0u);
  EXPECT_TRUE(meshes.data == nullptr);
  release(regions);  // again is harmless
}

TEST(Arrays, Reset_FreesNothing) {
  TArrU32 arr;
  ASSERT_TRUE(alloc(arr, 4));
  uint32_t* data = arr.data;
  reset(arr);
  EXPECT_TRUE(arr.data == nullptr);
  EXPECT_EQ(arr.count, 0u);
  data[3] = 1;
  free_Array(data);
}

TEST(Arrays, AMeshHasRoomForBothCounts) {
  Scoped<T3DMSH> msh;
  ASSERT_TRUE(alloc_Msh(*msh, 3, 2));
  EXPECT_EQ(msh->n_vtx, 3u);
  EXPECT_EQ(msh->n_tri, 2u);
  msh->vtx[2] = {1, 2, 3};
  msh->tri[1] = {0, 1, 2};
  EXPECT_TRUE(is_Usable(*msh));
}

TEST(Arrays, AMeshIsUsableOnlyWithAllFourFields) {
  T3DVEC vtx[1];
  T3DTRI tri[1];
  EXPECT_TRUE(is_Usable({vtx, 1, tri, 1}));
  EXPECT_FALSE(is_Usable({nullptr, 1, tri, 1}));
  EXPECT_FALSE(is_Usable({vtx, 0, tri, 1}));
  EXPECT_FALSE(is_Usable({vtx, 1, nullptr, 1}));
  EXPECT_FALSE(is_Usable({vtx, 1, tri, 0}));
}

TEST(Arrays, APolylineFailsUnlessBothCountsAreAboveZero) {
  T3DPOL pol;
  T2DPOL flat;
  EXPECT_FALSE(alloc_Pol(pol, 0, 4));
  EXPECT_FALSE(alloc_Pol(pol, 4, 0));
  EXPECT_FALSE(alloc_Pol(flat, 0, 4));
  EXPECT_FALSE(alloc_Pol(flat, 4, 0));
  EXPECT_TRUE(pol.pnt == nullptr);
  EXPECT_TRUE(flat.sgm == nullptr);
  ASSERT_TRUE(alloc_Pol(pol, 4, 2));
  EXPECT_EQ(pol.n_pnt, 4u);
  EXPECT_EQ(pol.n_sgm, 2u);
  release(pol);
  EXPECT_TRUE(pol.pnt == nullptr);
  EXPECT_EQ(pol.n_sgm, 0u);
}

TEST(Arrays, FlatPol_DropsZAndCopiesSegments) {
  Scoped<T3DPOL> src;
  Scoped<T2DPOL> dst;
  ASSERT_TRUE(alloc_Pol(*src, 2, 3));
  src->pnt[0] = {1, 2, 3};
  src->pnt[1] = {4, 5, 6};
  for (uint32_t i = 0; i < 3; ++i) src->sgm[i] = {i, 7 * i};
  ASSERT_TRUE(flat_Pol(*src, *dst));
  ASSERT_EQ(dst->n_pnt, 2u);
  ASSERT_EQ(dst->n_sgm, 3u);
  EXPECT_EQ(dst->pnt[0], (T2DVEC{1, 2}));
  EXPECT_EQ(dst->pnt[1], (T2DVEC{4, 5}));
  for (uint32_t i = 0; i < 3; ++i) {
    EXPECT_EQ(dst->sgm[i].a, i);
    EXPECT_EQ(dst->sgm[i].b, 7 * i);
  }
}

TEST(Arrays, FlatPol_FailsOnAnEmptySource) {
  T2DPOL dst;
  EXPECT_FALSE(flat_Pol({}, dst));
  EXPECT_TRUE(dst.pnt == nullptr);
  T3DVEC pnt[1] = {};
  EXPECT_FALSE(flat_Pol({pnt, 1, nullptr, 1}, dst));
  EXPECT_TRUE(dst.pnt == nullptr);
}

TEST(Arrays, AFailingAllocation_LeavesARecordThatReleaseCanFree) {
  const int64_t before = live_Allocations();
  const T3DVEC pnt[2] = {};
  const T3DSGM sgm[2] = {};
  const T3DPOL src = {const_cast<T3DVEC*>(pnt), 2, const_cast<T3DSGM*>(sgm), 2};
  for (uint64_t n = 1; n < 3; ++n) {
    T3DMSH msh;
    T3DPOL pol;
    T2DPOL flat;
    bool done[3];
    {
      FailingAllocation failing(n);
      done[0] = alloc_Msh(msh, 2, 2);
    }
    {
      FailingAllocation failing(n);
      done[1] = alloc_Pol(pol, 2, 2);
    }
    {
      FailingAllocation failing(n);
      done[2] = flat_Pol(src, flat);
    }
    for (bool d : done) EXPECT_FALSE(d);
    release(msh);
    release(pol);
    release(flat);
    EXPECT_EQ(live_Allocations(), before);
  }
  TArrU32 arr;
  TLstU32 lst;
  bool done[2];
  {
    FailingAllocation failing(1);
    done[0] = alloc(arr, 5);
  }
  {
    FailingAllocation failing(1);
    done[1] = alloc(lst, 5);
  }
  EXPECT_FALSE(done[0]);
  EXPECT_FALSE(done[1]);
  EXPECT_EQ(arr.count, 0u);
  EXPECT_EQ(lst.capacity, 0u);
}

TEST(Arrays, ASizeThatOverflowsIsRefused) {
  EXPECT_EQ(new_Array<T3DVEC>(UINT64_MAX / 24 + 1), nullptr);
  EXPECT_EQ(new_Zeroed<T3DVEC>(UINT64_MAX), nullptr);
}

TEST(Arrays, Cleared_ToTheLastByteAndNoFurther_WhateverTheSize) {
  for (const size_t size : {size_t{0}, size_t{1}, size_t{65537}, size_t{262144}, size_t{1000001}}) {
    std::vector<uint8_t> bytes(size + 2, 7);
    clear_Bytes(bytes.data() + 1, size);
    EXPECT_EQ(bytes.front(), 7);
    EXPECT_EQ(bytes.back(), 7);
    EXPECT_EQ(static_cast<size_t>(std::ranges::count(bytes, 0)), size);
  }
}

TEST(Arrays, AMeshHasVerticesOutOfRange_WhereverOneIs) {
  std::vector<T3DVEC> vtx(3);
  for (const uint32_t n_tri : {1u, 4095u, 4096u, 20000u}) {
    std::vector<T3DTRI> tri(n_tri, {0, 1, 2});
    const T3DMSH msh = {vtx.data(), 3, tri.data(), n_tri};
    EXPECT_TRUE(ok_Vertices(msh));
    for (const uint32_t place : {0u, n_tri / 2, n_tri - 1})
      for (const uint32_t bad : {3u, 4u, 0xFFFFFFFFu}) {
        for (const T3DTRI& t : {T3DTRI{bad, 1, 2}, T3DTRI{0, bad, 2}, T3DTRI{0, 1, bad}}) {
          tri[place] = t;
          EXPECT_FALSE(ok_Vertices(msh)) << bad << " in " << place << " of " << n_tri;
        }
        tri[place] = {0, 1, 2};
      }
  }
}

TEST(Arrays, AMeshWithoutTriangles_HasNoVertexOutOfRange) { EXPECT_TRUE(ok_Vertices({})); }

TEST(Arrays, Scoped_ReleasesAndTakeHandsOut) {
  const int64_t before = live_Allocations();
  TArrU32 out;
  {
    Scoped<TArrU32> kept, left;
    ASSERT_TRUE(alloc(*kept, 3));
    ASSERT_TRUE(alloc(*left, 3));
    out = kept.take();
    EXPECT_TRUE(kept->data == nullptr);
  }
  EXPECT_EQ(live_Allocations() - before, 1);
  EXPECT_EQ(out.count, 3u);
  release(out);
}

}  // namespace
}  // namespace undercut
