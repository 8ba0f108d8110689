// The checks of get_UCd and get_UCc that a host can't provoke through exports alone, and the state
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
  TLst<uint32_t> sel = g_Sel, hit = g_Hit, aux = g_Aux;
  CBitVector mrk = g_Mrk, ucs = g_Ucs;
  void restore() const {
    g_Msh = msh;
    g_Sel = sel;
    g_Hit = hit;
    g_Aux = aux;
    g_Mrk = mrk;
    g_Ucs = ucs;
  }
};

class CorridorState : public BlocksTest {
 protected:
  CorridorState() { EXPECT_EQ(r.register_Sheet(), 0); }
  TCorridorRequest r;
};

Indices list_Set(const CBitVector& bits) {
  Indices list;
  for (uint32_t t = 0; t < bits.size(); ++t)
    if (bits.test(t)) list.push_back(t);
  return list;
}

Indices list_Sorted(const TLst<uint32_t>& lst) {
  Indices list(lst.data, lst.data + lst.count);
  std::sort(list.begin(), list.end());
  return list;
}

// ---- Codes --------------------------------------------------------------------------------------

// One fault for each code, in the order of the checks.
struct TFault {
  int32_t code;
  void (*make)(TCorridorRequest&);
};

const TFault kSharedFaults[] = {
    {-1, [](TCorridorRequest&) { g_Msh.vtx = nullptr; }},
    {-2, [](TCorridorRequest&) { g_Msh.tri = nullptr; }},
    {-3, [](TCorridorRequest&) { g_Msh.n_vtx = 0; }},
    {-4, [](TCorridorRequest&) { g_Msh.n_tri = 0; }},
    {-5, [](TCorridorRequest& r) { r.req.msh_c.vtx = nullptr; }},
    {-6, [](TCorridorRequest& r) { r.req.msh_c.tri = nullptr; }},
    {-7, [](TCorridorRequest& r) { r.req.msh_c.n_vtx = 0; }},
    {-8, [](TCorridorRequest& r) { r.req.msh_c.n_tri = 0; }},
    {-9, [](TCorridorRequest& r) { r.req.axi.count = 0; }},
    {-9, [](TCorridorRequest& r) { r.req.axi.data = nullptr; }},
    {-10,
     [](TCorridorRequest& r) {
       r.req.ray.dir = {0, -0.0, 0};
     }},
    {-11, [](TCorridorRequest&) { g_Hit.data = nullptr; }},
};

std::vector<TFault> join(const std::vector<TFault>& own) {
  std::vector<TFault> all(std::begin(kSharedFaults), std::end(kSharedFaults));
  all.insert(all.end(), own.begin(), own.end());
  all.push_back({UNDERCUT_BAD_VERTEX, [](TCorridorRequest& r) { r.plate.tri[1].c = 4; }});
  return all;
}

const std::vector<TFault> kUCdFaults = join({
    {-12, [](TCorridorRequest&) { --g_Hit.capacity; }},
    {-13, [](TCorridorRequest&) { g_Mrk.init(31); }},
    {-14, [](TCorridorRequest&) { g_Ucs.init(33); }},
});

const std::vector<TFault> kUCcFaults = join({
    {-12, [](TCorridorRequest&) { g_Aux.data = nullptr; }},
    {-13, [](TCorridorRequest&) { --g_Hit.capacity; }},
    {-14, [](TCorridorRequest&) { ++g_Aux.capacity; }},
    {-15, [](TCorridorRequest&) { g_Mrk.init(31); }},
    {-16, [](TCorridorRequest&) { g_Ucs.init(33); }},
    {-17, [](TCorridorRequest&) { g_Sel.data = nullptr; }},
    {-18, [](TCorridorRequest&) { --g_Sel.capacity; }},
});

using Computation = int32_t (*)(const TUcReq*, TUcRes*);

void check_EachFault(TCorridorRequest& r, const std::vector<TFault>& faults, Computation call) {
  for (const TFault& fault : faults) {
    const TSavedState saved;
    const TSoup plate = r.plate;
    TUcRes res, before;
    std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
    std::memcpy(&before, &res, sizeof res);
    fault.make(r);
    const int64_t live = live_Allocations();
    EXPECT_EQ(call(&r.req, &res), fault.code);
    EXPECT_EQ(live_Allocations(), live) << fault.code;
    EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0) << fault.code;
    saved.restore();
    r.plate = plate;
    r.fill({kDown});
  }
}

void check_EachPair(TCorridorRequest& r, const std::vector<TFault>& faults, Computation call) {
  for (size_t i = 0; i < faults.size(); ++i)
    for (size_t k = i + 1; k < faults.size(); ++k) {
      const TSavedState saved;
      const TSoup plate = r.plate;
      faults[k].make(r);
      faults[i].make(r);
      EXPECT_EQ(call(&r.req, &r.res), faults[i].code) << "beside " << faults[k].code;
      saved.restore();
      r.plate = plate;
      r.fill({kDown});
    }
}

TEST_F(CorridorState, TellsEachFaultByItsCode_AndLeavesTheResultAsItWas) {
  check_EachFault(r, kUCdFaults, get_UCd);
  check_EachFault(r, kUCcFaults, get_UCc);
}

TEST_F(CorridorState, TellsTheFirstOfTwoFaults) {
  check_EachPair(r, kUCdFaults, get_UCd);
  check_EachPair(r, kUCcFaults, get_UCc);
}

TEST_F(CorridorState, NeedsNeitherAuxNorSel_InGetUCd) {
  const TSavedState saved;
  g_Aux = {};
  g_Sel = {};
  EXPECT_EQ(r.call_UCd(), 0);
  saved.restore();
}

TEST_F(CorridorState, RefusesIndicesFarOutOfRange_BeforeReadingThroughThem) {
  r.plate.tri[0].a = 0xFFFFFFFFu;
  EXPECT_EQ(r.call_UCd(), UNDERCUT_BAD_VERTEX);
  EXPECT_EQ(r.call_UCc(), UNDERCUT_BAD_VERTEX);
}

TEST_F(CorridorState, KeepsMarksAndLists_WhereACheckFails) {
  r.fill({kDown, kTilted});
  ASSERT_EQ(r.call_UCc(), 0);
  const Indices mrk = list_Set(g_Mrk), ucs = list_Set(g_Ucs), sel = list_Sorted(g_Sel);
  ASSERT_FALSE(ucs.empty() || sel.empty());
  r.plate.tri[0].a = 4;
  EXPECT_EQ(r.call_UCd(), UNDERCUT_BAD_VERTEX);
  EXPECT_EQ(r.call_UCc(), UNDERCUT_BAD_VERTEX);
  EXPECT_EQ(list_Set(g_Mrk), mrk);
  EXPECT_EQ(list_Set(g_Ucs), ucs);
  EXPECT_EQ(list_Sorted(g_Sel), sel);
}

// ---- What is left behind ------------------------------------------------------------------------

TEST_F(CorridorState, MarksTheBandsOfAllPoses_AndKeepsThatOfTheLastInHit) {
  r.fill({kDown, kTilted});
  for (const Computation call : {get_UCd, get_UCc}) {
    g_Mrk.set_All();
    ASSERT_EQ(call(&r.req, &r.res), 0);
    EXPECT_EQ(list_Set(g_Mrk), list_Range(16, 32));
    EXPECT_EQ(list_Sorted(g_Hit), list_Range(24, 32));
    clr_Res(&r.res);
  }
}

TEST_F(CorridorState, HoldsInUcs_WhatIsBlockedAfterGetUCd_AndWhatIsSeenAfterGetUCc) {
  r.fill({kDown, kTilted});
  ASSERT_EQ(r.call_UCd(), 0);
  Indices blocked = list_Range(16, 20), seen = list_Range(20, 24);
  for (uint32_t t = 24; t < 28; ++t) blocked.push_back(t);
  for (uint32_t t = 28; t < 32; ++t) seen.push_back(t);
  EXPECT_EQ(list_Set(g_Ucs), blocked);
  ASSERT_EQ(r.call_UCc(), 0);
  EXPECT_EQ(list_Set(g_Ucs), seen);
}

TEST_F(CorridorState, HoldsInAux_WhatTheLastPoseSees) {
  r.fill({kDown, kTilted});
  ASSERT_EQ(r.call_UCc(), 0);
  EXPECT_EQ(list_Sorted(g_Aux), list_Range(28, 32));
  ASSERT_EQ(r.call_UCd(), 0);
  EXPECT_EQ(g_Aux.count, 0u);
}

TEST_F(CorridorState, ListsInTheOrderOfTheTree) {
  ASSERT_EQ(r.call_UCc(), 0);
  ASSERT_EQ(g_Sel.count, 4u);
  Indices expected;
  for (uint32_t i = 0; i < g_Hit.count; ++i)
    if (!g_Ucs.test(g_Hit.data[i])) expected.push_back(g_Hit.data[i]);
  EXPECT_EQ(Indices(g_Sel.data, g_Sel.data + g_Sel.count), expected);
}

TEST_F(CorridorState, HoldsWhatTheRunHadReached_WhereTheObstaclesTreeFails) {
  const auto fail = [this](Computation call) {
    const FailingAllocation failing(1);
    return call(&r.req, &r.res);
  };
  ASSERT_EQ(r.call_UCc(), 0);
  EXPECT_EQ(fail(get_UCc), -19);
  EXPECT_EQ(g_Sel.count, 0u);
  EXPECT_TRUE(g_Mrk.is_Empty());
  EXPECT_TRUE(g_Ucs.is_Empty());
  ASSERT_EQ(r.call_UCc(), 0);
  EXPECT_EQ(fail(get_UCd), -16);
  EXPECT_EQ(g_Sel.count, 4u);
  EXPECT_TRUE(g_Mrk.is_Empty());
  EXPECT_EQ(g_Ucs.count(), 32u);
}

TEST_F(CorridorState, NeverGoesBeyondTheRoomOfTheLists) {
  g_Con.f_wid = 1000;
  r.plate.vtx[1].x = r.plate.vtx[2].x = 50;
  r.fill({kDown, kTilted, kDown});
  ASSERT_EQ(r.call_UCc(), 0);
  EXPECT_EQ(g_Hit.count, 32u);
  EXPECT_EQ(list_Sorted(g_Sel), list_Range(0, 32));
  r.plate.vtx[1].x = r.plate.vtx[2].x = -9;
  ASSERT_EQ(r.call_UCc(), 0);
  EXPECT_EQ(list_Sorted(g_Aux), list_Range(0, 32));
}

}  // namespace
