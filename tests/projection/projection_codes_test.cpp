// The checks of det_Prj and det_Roi that a host can't provoke through exports alone, and the state
// that the two leave behind.
#include <gtest/gtest.h>

#include <cstring>

#include "interface/registered_mesh.h"
#include "tests/interface/blocks.h"
#include "tests/support/allocations.h"
#include "tests/support/corridor.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using Indices = std::vector<uint32_t>;

// The records of the registered mesh as they were, so that a test may spoil them.
struct TSavedState {
  T3DMSH msh = g_Msh;
  TLst<uint32_t> sel = g_Sel, hit = g_Hit;
  CBitVector mrk = g_Mrk;
  ~TSavedState() {
    g_Msh = msh;
    g_Sel = sel;
    g_Hit = hit;
    g_Mrk = mrk;
  }
};

const T3DRAY kDownwards = {{0.5, 0.25, 4}, {0, 0, -1}};  // meets the sheet at z = 0

class ProjectionState : public BlocksTest {
 protected:
  ProjectionState() { EXPECT_EQ(r.register_Sheet(), 0); }
  int32_t project() {
    point = {7, 7, 7};
    return det_Prj(&kDownwards, &point);
  }
  Indices selected() { return Indices(g_Sel.data, g_Sel.data + g_Sel.count); }
  TCorridorRequest r;
  T3DVEC point = {};
};

// Faults of each code, in the order of the checks; the sheet has 32 triangles.
struct TFault {
  int32_t code;
  void (*make)(TUcReq&);
};
const TFault kPrjFaults[] = {
    {-1, [](TUcReq&) { g_Msh.vtx = nullptr; }},  {-2, [](TUcReq&) { g_Msh.tri = nullptr; }},
    {-3, [](TUcReq&) { g_Msh.n_vtx = 0; }},      {-4, [](TUcReq&) { g_Msh.n_tri = 0; }},
    {-5, [](TUcReq&) { g_Hit.data = nullptr; }}, {-6, [](TUcReq&) { g_Hit.capacity = 31; }},
    {-6, [](TUcReq&) { g_Hit.capacity = 33; }},
};
const TFault kRoiFaults[] = {
    {-1, [](TUcReq&) { g_Msh.vtx = nullptr; }},
    {-2, [](TUcReq&) { g_Msh.tri = nullptr; }},
    {-3, [](TUcReq&) { g_Msh.n_vtx = 0; }},
    {-4, [](TUcReq&) { g_Msh.n_tri = 0; }},
    {-5, [](TUcReq& req) { req.axi.count = 0; }},
    {-6, [](TUcReq& req) { req.ray.dir = {0, -0.0, 0}; }},
    {-7, [](TUcReq&) { g_Hit.data = nullptr; }},
    {-8, [](TUcReq&) { g_Hit.capacity = 31; }},
    {-8, [](TUcReq&) { g_Hit.capacity = 33; }},
    {-9, [](TUcReq&) { g_Sel.capacity = 31; }},
    {-9, [](TUcReq&) { g_Sel.capacity = 33; }},
    {-10, [](TUcReq&) { g_Mrk.init(31); }},
    {-10, [](TUcReq&) { g_Mrk.init(33); }},
};

TEST_F(ProjectionState, TellsEachFaultByItsCode_AndStoresNoPoint) {
  for (const TFault& fault : kPrjFaults) {
    const TSavedState saved;
    fault.make(r.req);
    EXPECT_EQ(project(), fault.code);
    EXPECT_EQ(point, (T3DVEC{7, 7, 7})) << fault.code;
  }
  EXPECT_EQ(project(), 0);
  EXPECT_EQ(point, (T3DVEC{0.5, 0.25, 0}));
}

TEST_F(ProjectionState, TellsEachFaultByItsCode_AndKeepsTheSelection) {
  ASSERT_EQ(det_Roi(&r.req), 0);
  const Indices before = selected();
  ASSERT_EQ(before.size(), 8u);
  for (const TFault& fault : kRoiFaults) {
    TUcReq req;
    std::memcpy(static_cast<void*>(&req), &r.req, sizeof req);
    const TSavedState saved;
    fault.make(req);
    EXPECT_EQ(det_Roi(&req), fault.code);
    EXPECT_EQ(selected(), before) << fault.code;
  }
  EXPECT_EQ(det_Roi(&r.req), 0);
}

TEST_F(ProjectionState, TellsTheFirstOfTwoFaults) {
  for (size_t i = 0; i < std::size(kPrjFaults); ++i)
    for (size_t k = i + 1; k < std::size(kPrjFaults); ++k) {
      const TSavedState saved;
      kPrjFaults[k].make(r.req);
      kPrjFaults[i].make(r.req);
      EXPECT_EQ(project(), kPrjFaults[i].code) << "beside " << kPrjFaults[k].code;
    }
  for (size_t i = 0; i < std::size(kRoiFaults); ++i)
    for (size_t k = i + 1; k < std::size(kRoiFaults); ++k) {
      const TSavedState saved;
      kRoiFaults[k].make(r.req);
      kRoiFaults[i].make(r.req);
      EXPECT_EQ(det_Roi(&r.req), kRoiFaults[i].code) << "beside " << kRoiFaults[k].code;
      r.fill({kDown});
    }
}

TEST_F(ProjectionState, OfAFailedRegistration_IsToldByACode) {
  const T3DMSH sheet = r.sheet.msh();
  for (uint64_t n = 1;; ++n) {
    clr_Dll();
    int32_t registered = 0;
    {
      const FailingAllocation failing(n);
      registered = ini_Adt(&sheet);
    }
    if (registered == 0) break;
    const int32_t projected = project(), selection = det_Roi(&r.req);
    EXPECT_EQ(projected == 0, registered < -8) << registered;
    EXPECT_EQ(selection == 0, registered < -10) << registered;
  }
}

TEST_F(ProjectionState, KeepsInTheScratchList_WhatTheLineMet_AndStartsItAnew) {
  g_Hit.count = 32;
  ASSERT_EQ(project(), 0);
  ASSERT_EQ(g_Hit.count, 1u);
  EXPECT_EQ(g_Hit.data[0], 0u);
  EXPECT_EQ(project(), 0);
  EXPECT_EQ(g_Hit.count, 1u);
}

TEST_F(ProjectionState, MarksWhatIsSelected_AndNothingOfTheCallBefore) {
  g_Mrk.set_All();
  g_Sel.count = 32;
  r.fill({kDown, kTilted});
  ASSERT_EQ(det_Roi(&r.req), 0);
  EXPECT_EQ(g_Sel.count, 16u);
  for (uint32_t t = 0; t < 32; ++t) EXPECT_EQ(g_Mrk.test(t), t >= 16) << t;
  // The scratch list holds the last slab alone.
  EXPECT_EQ(g_Hit.count, 8u);
}

TEST_F(ProjectionState, ListsASlabInTheOrderOfTheTree) {
  r.fill({kTilted});
  ASSERT_EQ(det_Roi(&r.req), 0);
  EXPECT_EQ(selected(), Indices(g_Hit.data, g_Hit.data + g_Hit.count));
}

}  // namespace
