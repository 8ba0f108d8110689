// What get_Prj hands out and when it fails, called as a host calls it.
#include <cmath>
#include <cstring>

#include "tests/boundary/prj_request.h"
#include "tests/boundary/refusal.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using Codes = std::vector<int32_t>;

class ProjectedLists : public PrjTest {};

// ---- The shape of the result --------------------------------------------------------------------

TEST_F(ProjectedLists, HandsOutAListForEachArea_OfTheSameLengthAndOrder) {
  r.points = {{{1, 1, 9}, {0.5, 1, 3}, {1, 1, 9}}, {{101, 1, 9}, {100.5, 0.5, 9}}};
  defaults::set(prj_tol, 0.0);
  EXPECT_EQ(r.moved(), (std::vector<Points>{{{1, 1, 1}, {0.5, 1, 1}, {1, 1, 1}},
                                            {{101, 1, 2}, {100.5, 0.5, 2}}}));
}

TEST_F(ProjectedLists, OfAnAreaWithoutPoints_IsAnEmptyList) {
  r.areas = {{0}, {1}, {1}};
  r.frames.resize(3, kIdentity);
  r.points = {{}, {{101, 1, 0}}, {}};
  EXPECT_EQ(r.moved(), (std::vector<Points>{{}, {{101, 1, 2}}, {}}));
  r.prj_p[1].data = nullptr;
  ASSERT_EQ(r.call(), 0);
  ASSERT_EQ(r.res.prj.count, 3u);
  EXPECT_EQ(r.res.prj.data[1].count, 0u);
}

TEST_F(ProjectedLists, OfAnAreaWithoutTriangles_IsAnEmptyList) {
  r.areas = {{}, {1}, {2, 2}};
  r.frames.resize(3, kIdentity);
  r.points = {{{1, 1, 1}}, {{101, 1, 0}}, {{5, 5, 5}}};
  EXPECT_EQ(r.moved(), (std::vector<Points>{{}, {{101, 1, 2}}, {}}));
  r.prj_l[1] = {nullptr, 1, 1};
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(r.res.prj.data[1].count, 0u);
}

TEST_F(ProjectedLists, TakesTheNumberOfTrianglesFromTheCountOfAList) {
  r.areas[0] = {0, 77};
  r.fill();
  r.prj_l[0].count = 1;
  EXPECT_EQ(r.call(), 0);
  r.prj_l[0] = {r.areas[0].data(), 1, 0};
  EXPECT_EQ(r.call(), 0);
  EXPECT_EQ(r.res.prj.data[0].count, 1u);
}

// All are found at once, more than the mesh has.
TEST_F(ProjectedLists, HasRoomForAnAreaThatListsTrianglesMoreThanOnce) {
  r.areas[0].assign(5000, 0);
  expect_Near(r.moved({1, 0.5, 9}), {1, 0.5, 0.5});
}

TEST_F(ProjectedLists, TakesAnAreaAgain_AndAPointOnEachCall) {
  r.areas = {{0}, {0}, {0}};
  r.frames.assign(3, kIdentity);
  r.points.assign(3, {{1, 1, 9}});
  EXPECT_EQ(r.moved(), std::vector<Points>(3, {{1, 1, 1}}));
  EXPECT_EQ(r.moved(), std::vector<Points>(3, {{1, 1, 1}}));
}

TEST_F(ProjectedLists, WritesNothingOfTheResultButPrj) {
  TUcRes res, before;
  std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
  std::memcpy(static_cast<void*>(&before), &res, sizeof res);
  ASSERT_EQ(get_Prj(&r.req, &res), 0);
  EXPECT_EQ(res.prj.count, 2u);
  r.res.prj = res.prj;
  before.prj = res.prj;
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
}

TEST_F(ProjectedLists, LeavesTheRequestAsItWas) {
  const auto vtx = r.vtx;
  const auto tri = r.tri;
  const auto areas = r.areas;
  const auto points = r.points;
  const auto frames = r.frames;
  TUcReq before;
  std::memcpy(static_cast<void*>(&before), &r.req, sizeof before);
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
  EXPECT_EQ(vtx, r.vtx);
  EXPECT_EQ(std::memcmp(tri.data(), r.tri.data(), tri.size() * sizeof(T3DTRI)), 0);
  EXPECT_EQ(areas, r.areas);
  EXPECT_EQ(points, r.points);
  EXPECT_EQ(std::memcmp(frames.data(), r.frames.data(), frames.size() * sizeof(T3DFRM)), 0);
}

TEST_F(ProjectedLists, WorksOnRecordsAtAMultipleOf4Bytes) {
  alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
  auto* req = reinterpret_cast<TUcReq*>(memory + 4);
  auto* res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
  std::memcpy(memory + 4, &r.req, sizeof r.req);
  ini_Res(res);
  ASSERT_EQ(get_Prj(req, res), 0);
  EXPECT_EQ(res->prj.data[1].data[0], (T3DVEC{101, 1, 2}));
  EXPECT_EQ(clr_Res(res), 0);
}

// ---- Codes --------------------------------------------------------------------------------------

// One fault for each code that needs no exhausted memory, in the order of the checks.
struct TFault {
  int32_t code;
  void (*make)(TPrjRequest&);
};
const TFault kFaults[] = {
    {-3, [](TPrjRequest& r) { r.req.prj_l.data = nullptr; }},
    {-4, [](TPrjRequest& r) { r.req.prj_p.data = nullptr; }},
    {-5, [](TPrjRequest& r) { r.req.prj_f.data = nullptr; }},
    {-6, [](TPrjRequest& r) { r.req.prj_l.count = 1; }},
    {-7, [](TPrjRequest& r) { r.req.prj_f.count = 1; }},
    {-16, [](TPrjRequest& r) { r.req.msh.vtx = nullptr; }},
    {-17, [](TPrjRequest& r) { r.req.msh.tri = nullptr; }},
    {-18, [](TPrjRequest& r) { r.req.msh.n_vtx = 0; }},
    {-19, [](TPrjRequest& r) { r.req.msh.n_tri = 0; }},
    {UNDERCUT_BAD_VERTEX, [](TPrjRequest& r) { r.tri[2].b = 6; }},
    {UNDERCUT_BAD_TRIANGLE, [](TPrjRequest& r) { r.areas[1][0] = 3; }},
};

TEST_F(ProjectedLists, TellsEachFaultByItsCode_AndLeavesTheResultAsItWas) {
  for (const TFault& fault : kFaults) {
    TPrjRequest faulty;
    fault.make(faulty);
    expect_Refusal(get_Prj, faulty.req, fault.code);
  }
}

TEST_F(ProjectedLists, TellsTheFirstOfTwoFaults) {
  for (size_t i = 0; i < std::size(kFaults); ++i)
    for (size_t k = i + 1; k < std::size(kFaults); ++k) {
      TPrjRequest faulty;
      kFaults[k].make(faulty);
      kFaults[i].make(faulty);
      EXPECT_EQ(faulty.call(), kFaults[i].code) << "beside " << kFaults[k].code;
    }
}

TEST_F(ProjectedLists, GivesMinus6AndMinus7_ForCountsThatDifferEitherWay) {
  r.req.prj_l.count = 3;
  EXPECT_EQ(r.call(), -6);
  r.fill();
  r.req.prj_p.count = 1;
  EXPECT_EQ(r.call(), -6);
  r.fill();
  r.req.prj_f.count = 3;
  EXPECT_EQ(r.call(), -7);
}

TEST_F(ProjectedLists, GivesMinus21_WithoutAnyArea) {
  r.req.prj_l.count = r.req.prj_p.count = r.req.prj_f.count = 0;
  expect_Refusal(get_Prj, r.req, -21);
  r.tri[0].a = 6;
  EXPECT_EQ(r.call(), UNDERCUT_BAD_VERTEX);
}

TEST_F(ProjectedLists, RefusesIndicesFarOutOfRange_BeforeReadingThroughThem) {
  r.areas[0][0] = 0xFFFFFFFFu;
  EXPECT_EQ(r.call(), UNDERCUT_BAD_TRIANGLE);
  r.tri[0].a = 0xFFFFFFFFu;
  EXPECT_EQ(r.call(), UNDERCUT_BAD_VERTEX);
}

TEST_F(ProjectedLists, ChecksTheTrianglesOfAnAreaWithoutPoints) {
  r.points[1].clear();
  r.areas[1][0] = 3;
  r.fill();
  EXPECT_EQ(r.call(), UNDERCUT_BAD_TRIANGLE);
}

TEST_F(ProjectedLists, TakesAMissingRecordAsAnEmptyRequest) {
  EXPECT_EQ(get_Prj(nullptr, &r.res), -3);
  EXPECT_EQ(get_Prj(&r.req, nullptr), -3);
  EXPECT_EQ(get_Prj(nullptr, nullptr), -3);
}

// Of the call with each of its allocations failing in turn.
Codes list_Codes(TPrjRequest& r) {
  clr_Res(&r.res);
  return list_FailureCodes([&r] {
    const int32_t code = r.call();
    clr_Res(&r.res);
    return code;
  });
}

TEST_F(ProjectedLists, GivesTheCodeOfEachStepThatHasNoMemory) {
  EXPECT_EQ(list_Codes(r), (Codes{-11, -20, -24, -25, -26, -25, -26, -27, 0}));
  r.points[0].clear();
  r.fill();
  EXPECT_EQ(list_Codes(r), (Codes{-11, -20, -24, -25, -26, -27, 0}));
  r.points[1].clear();
  r.fill();
  EXPECT_EQ(list_Codes(r), (Codes{-11, -20, -24, -27, 0}));
}

TEST_F(ProjectedLists, TellsAFaultBeforeALaterStepAsksForMemory) {
  r.req.prj_f.count = 1;
  EXPECT_EQ(list_Codes(r), (Codes{-7}));
  r.fill();
  r.req.msh.vtx = nullptr;
  EXPECT_EQ(list_Codes(r), (Codes{-11, -16}));
  r.fill();
  r.areas[1][0] = 3;
  EXPECT_EQ(list_Codes(r), (Codes{-11, UNDERCUT_BAD_TRIANGLE}));
  r.req.prj_l.count = r.req.prj_p.count = r.req.prj_f.count = 0;
  EXPECT_EQ(list_Codes(r), (Codes{-21}));
}

TEST_F(ProjectedLists, LeavesTheResultAsItWas_WhereMemoryRunsOut) {
  for (uint64_t n = 1;; ++n) {
    TUcRes res, before;
    std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
    std::memcpy(static_cast<void*>(&before), &res, sizeof res);
    const FailingAllocation failing(n);
    const int32_t code = get_Prj(&r.req, &res);
    if (!failing.has_Failed()) {
      r.res.prj = res.prj;
      break;
    }
    EXPECT_LT(code, 0);
    EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0) << n;
  }
}

TEST_F(ProjectedLists, AllocatesNothingForAPoint) {
  const auto count_Allocations = [&] {
    for (uint64_t n = 1;; ++n) {
      const FailingAllocation failing(n);
      r.call();
      if (!failing.has_Failed()) return n;
    }
  };
  const uint64_t one = count_Allocations();
  r.points[0].assign(100, {1, 0.5, 9});
  r.fill();
  EXPECT_EQ(count_Allocations(), one);
}

TEST_F(ProjectedLists, LeaksNothingInAThousandCycles) {
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 1000; ++cycle) {
    ASSERT_EQ(ini_Res(&r.res), 0);
    ASSERT_EQ(get_Prj(&r.req, &r.res), 0);
    ASSERT_EQ(live_Allocations(), live + 3);
    ASSERT_EQ(clr_Res(&r.res), 0);
  }
  EXPECT_EQ(live_Allocations(), live);
}

// ---- What is not finite -------------------------------------------------------------------------

TEST_F(ProjectedLists, KeepsAPointWithoutNumbers_AndMovesTheOthers) {
  r.points[0] = {{kNan, 1, 1}, {1, 0.5, 9}, {kInf, 0, 0}, {1, kNan, 1}, {1, 0.5, -9}};
  const std::vector<Points> lists = r.moved();
  ASSERT_EQ(lists[0].size(), 5u);
  expect_Near(lists[0][1], {1, 0.5, 0.5});
  expect_Near(lists[0][4], {1, 0.5, 0.5});
  EXPECT_TRUE(std::isnan(lists[0][0].x));
  EXPECT_EQ(lists[0][0].y, 1.0);
  EXPECT_EQ(lists[0][2], (T3DVEC{kInf, 0, 0}));
  EXPECT_TRUE(std::isnan(lists[0][3].y));
}

TEST_F(ProjectedLists, EndsForAnyPointAndFrame) {
  for (const double bad : {kNan, kInf, -kInf, 1e308, -1e308, 1e200, 5e-324})
    for (int k = 0; k < 6; ++k) {
      double v[6] = {1, 0.5, 9, 0, 0, 1};
      v[k] = bad;
      r.points[0] = {{v[0], v[1], v[2]}};
      r.frames[0].z = {v[3], v[4], v[5]};
      EXPECT_EQ(r.moved()[1], (Points{{101, 1, 2}})) << bad << " at " << k;
    }
}

TEST_F(ProjectedLists, EndsForAnyParameters) {
  for (const auto& setter : {prj_off, prj_inc, prj_lim, prj_tol})
    for (const double bad : {kNan, kInf, -kInf, 1e308, -1e308, 1e-308, 0.0, -0.0}) {
      defaults::restore();
      defaults::set(setter, bad);
      EXPECT_EQ(r.moved().size(), 2u);
    }
}

TEST_F(ProjectedLists, KeepsItsAnswer_BesideTrianglesThatAreNotFinite) {
  const auto v = static_cast<uint32_t>(r.vtx.size());
  r.vtx.insert(r.vtx.end(), {{kNan, kNan, kNan}, {kInf, 1, 1}, {1, -kInf, 1e308}, {kNan, 0, 0}});
  for (const T3DTRI& t : {T3DTRI{v, v + 1, v + 2}, {0, v, 1}, {v + 3, 4, v + 1}, {v, 0, 5}})
    r.tri.push_back(t);
  expect_Near(r.moved({1, 0.5, 9}), {1, 0.5, 0.5});
  EXPECT_EQ(r.moved()[1], (Points{{101, 1, 2}}));
}

}  // namespace
