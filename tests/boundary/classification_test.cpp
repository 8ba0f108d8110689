// get_UCs, called as a host calls it.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

#include "tests/boundary/defaults.h"
#include "tests/boundary/refusal.h"
#include "tests/support/allocations.h"

using namespace undercut::tests;

namespace {

using Bytes = std::vector<uint8_t>;
using Indices = std::vector<uint32_t>;
using Codes = std::vector<int32_t>;

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

const T3DRAY kDown = {{0, 0, 0}, {0, 0, -1}};       // rays go up
const T3DRAY kUp = {{0, 0, 0}, {0, 0, 1}};          // rays go down
const T3DRAY kAcross = {{0, 0, 0}, {-1, 0, -0.1}};  // rays go towards +X and slightly up

// Unit triangles in the planes z = 0 and z = 1. Triangles 0 and 1 lie on the floor and face up, 1
// below the roof 2, which faces up as well. Triangle 3 faces down. Triangles 4 and 5 have two equal
// corners, by index and by place.
struct TRoofRequest {
  std::vector<T3DVEC> vtx = {{0, 0, 0},  {1, 0, 0},  {0, 1, 0},    // 0
                             {4, 0, 0},  {5, 0, 0},  {4, 1, 0},    // 1
                             {3, -1, 1}, {7, -1, 1}, {3, 3, 1},    // 2
                             {0, 9, 0},  {0, 10, 0}, {1, 9, 0},    // 3
                             {20, 0, 0}, {21, 0, 0}, {21, 0, 0}};  // 4 and 5
  std::vector<T3DTRI> tri = {{0, 1, 2},   {3, 4, 5},    {6, 7, 8},
                             {9, 10, 11}, {12, 13, 13}, {12, 13, 14}};
  std::vector<T3DRAY> axi = {kDown};
  Indices roi;
  TUcReq req;
  TUcRes res;

  TRoofRequest() {
    ini_Req(&req);
    ini_Res(&res);
    fill();
  }
  ~TRoofRequest() { clr_Res(&res); }
  TRoofRequest(const TRoofRequest&) = delete;
  TRoofRequest& operator=(const TRoofRequest&) = delete;

  // Writes the views of mesh and axes as they now are.
  void fill() {
    req.msh = {vtx.data(), uint32_t(vtx.size()), tri.data(), uint32_t(tri.size())};
    req.axi = {axi.data(), uint32_t(axi.size())};
  }
  // Never a null list, not even for no triangle.
  void fill_Roi(const Indices& list) {
    roi = list;
    roi.reserve(1);
    req.roi = {roi.data(), uint32_t(roi.size()), uint32_t(roi.size())};
  }
  int32_t call() {
    clr_Res(&res);
    return get_UCs(&req, &res);
  }
  Bytes bytes() {
    EXPECT_EQ(call(), 0);
    return res.ucs ? Bytes(res.ucs, res.ucs + req.msh.n_tri) : Bytes();
  }
  Bytes bytes_Of(const std::vector<T3DRAY>& axes) {
    axi = axes;
    fill();
    return bytes();
  }
};

class UndercutClassification : public testing::Test {
 protected:
  void SetUp() override { defaults::restore(); }
  void TearDown() override { defaults::restore(); }
  // Of the call with each of its allocations failing in turn.
  Codes list_Codes() {
    clr_Res(&r.res);
    return list_FailureCodes([this] {
      const int32_t code = r.call();
      clr_Res(&r.res);
      return code;
    });
  }
  TRoofRequest r;
};

TEST_F(UndercutClassification, TellsWhatTheAxisDoesNotSee) {
  EXPECT_EQ(r.bytes(), (Bytes{0, 1, 0, 1, 1, 1}));
}

TEST_F(UndercutClassification, NeedsOneAxisThatSees_InAnyOrder) {
  EXPECT_EQ(r.bytes_Of({kUp}), (Bytes{1, 1, 1, 0, 1, 1}));
  EXPECT_EQ(r.bytes_Of({kAcross}), (Bytes{0, 0, 0, 1, 1, 1}));
  EXPECT_EQ(r.bytes_Of({kDown, kUp}), (Bytes{0, 1, 0, 0, 1, 1}));
  EXPECT_EQ(r.bytes_Of({kUp, kDown}), (Bytes{0, 1, 0, 0, 1, 1}));
  EXPECT_EQ(r.bytes_Of({kUp, kAcross}), (Bytes{0, 0, 0, 0, 1, 1}));
  EXPECT_EQ(r.bytes_Of({kDown, kDown, kUp, kUp}), (Bytes{0, 1, 0, 0, 1, 1}));
}

TEST_F(UndercutClassification, ReadsTheDirectionOfAnAxisAlone) {
  EXPECT_EQ(r.bytes_Of({{{4, 0, 0.5}, {0, 0, -1e-3}}}), (Bytes{0, 1, 0, 1, 1, 1}));
  EXPECT_EQ(r.bytes_Of({{{-9, 7, 50}, {0, 0, 4e5}}}), (Bytes{1, 1, 1, 0, 1, 1}));
}

TEST_F(UndercutClassification, CastsRaysAlongMinusZ_ForAnAxisWithoutDirection) {
  EXPECT_EQ(r.bytes_Of({{{4, 5, 6}, {0, 0, 0}}}), r.bytes_Of({kUp}));
}

TEST_F(UndercutClassification, WithoutAxes_FindsEveryTriangleUndercut) {
  const Bytes all(6, 1);
  EXPECT_EQ(r.bytes_Of({}), all);
  T3DRAY unread = kDown;
  r.req.axi = {&unread, 0};
  EXPECT_EQ(r.bytes(), all);
  r.req.axi = {nullptr, 3};
  EXPECT_EQ(r.bytes(), all);
  r.fill_Roi({1, 2});
  EXPECT_EQ(r.bytes(), (Bytes{0, 1, 1, 0, 0, 0}));
}

TEST_F(UndercutClassification, LeavesWhatRoiDoesNotListAtZero) {
  r.fill_Roi({1});
  EXPECT_EQ(r.bytes(), (Bytes{0, 1, 0, 0, 0, 0}));
  r.fill_Roi({0, 2});
  EXPECT_EQ(r.bytes(), Bytes(6, 0));
  r.fill_Roi({3, 0, 1});
  EXPECT_EQ(r.bytes(), (Bytes{0, 1, 0, 1, 0, 0}));
}

TEST_F(UndercutClassification, LetsWhatRoiDoesNotListCastItsShadow) {
  r.fill_Roi({1, 0});
  EXPECT_EQ(r.bytes(), (Bytes{0, 1, 0, 0, 0, 0}));
}

TEST_F(UndercutClassification, CountsTwoEqualCornersInsideRoiAsUndercut_AndOutsideNot) {
  r.fill_Roi({4, 0});
  EXPECT_EQ(r.bytes(), (Bytes{0, 0, 0, 0, 1, 0}));
  r.fill_Roi({5, 0});
  EXPECT_EQ(r.bytes(), (Bytes{0, 0, 0, 0, 0, 1}));
}

TEST_F(UndercutClassification, TakesARoiOfEveryTriangleInAnyOrder) {
  const Bytes whole = r.bytes();
  for (const Indices& order : {Indices{0, 1, 2, 3, 4, 5}, {5, 4, 3, 2, 1, 0}, {3, 0, 5, 1, 4, 2}}) {
    r.fill_Roi(order);
    EXPECT_EQ(r.bytes(), whole);
  }
}

// The number of entries alone decides whether triangles outside roi are marked in advance.
TEST_F(UndercutClassification, FindsATriangleUndercut_ThatARoiAsLongAsTheMeshLeavesOut) {
  r.fill_Roi({1, 2, 3, 4, 5, 5});
  EXPECT_EQ(r.bytes(), (Bytes{1, 1, 0, 1, 1, 1}));
  r.fill_Roi({1, 1, 1, 1, 1, 1});
  EXPECT_EQ(r.bytes(), Bytes(6, 1));
}

TEST_F(UndercutClassification, TakesRepeatedEntriesOfAShorterOrLongerRoiOnce) {
  r.fill_Roi({1, 0, 1, 0});
  EXPECT_EQ(r.bytes(), (Bytes{0, 1, 0, 0, 0, 0}));
  r.fill_Roi({1, 2, 3, 1, 2, 3, 1});
  EXPECT_EQ(r.bytes(), (Bytes{0, 1, 0, 1, 0, 0}));
}

TEST_F(UndercutClassification, TellsAnEmptyRoiFromNone_ByItsPointer) {
  r.fill_Roi({});
  EXPECT_EQ(r.bytes(), Bytes(6, 0));
  r.req.roi = {nullptr, 2, 2};
  EXPECT_EQ(r.bytes(), (Bytes{0, 1, 0, 1, 1, 1}));
}

TEST_F(UndercutClassification, LiftsTheStartOfRaysByTol_AlongTheNormal) {
  defaults::set(ucs_Tol, 1.5);  // beyond the roof
  EXPECT_EQ(r.bytes(), (Bytes{0, 0, 0, 1, 1, 1}));
  defaults::set(ucs_Tol, -0.5);  // under the floor, and above what faces down
  EXPECT_EQ(r.bytes(), (Bytes{1, 1, 1, 0, 1, 1}));
}

// The roof ends at x = 4.2 above the triangle, whose centroid lies at 4.333.
TEST_F(UndercutClassification, LetsTrianglesGrowByDil) {
  r.vtx[7] = {3.0, 1.0, 1.0};
  r.vtx[6] = {4.2, 1.0, 1.0};
  r.vtx[8] = {4.2, -1.0, 1.0};
  r.fill();
  EXPECT_EQ(r.bytes()[1], 0);
  defaults::set(ucs_Dil, 0.05);
  EXPECT_EQ(r.bytes()[1], 0);
  defaults::set(ucs_Dil, 0.5);
  EXPECT_EQ(r.bytes(), (Bytes{0, 1, 0, 1, 1, 1}));
}

TEST_F(UndercutClassification, MakesNoSoup_ForADilOfZeroOrBelow) {
  const Bytes plain = r.bytes();
  for (const double dil : {0.0, -0.0, -1e-300, -0.2, -1e9}) {
    defaults::set(ucs_Dil, dil);
    EXPECT_EQ(r.bytes(), plain) << dil;
    EXPECT_EQ(list_Codes(), (Codes{-5, -13, -17, UNDERCUT_NO_MEMORY, -18, 0})) << dil;
  }
}

TEST_F(UndercutClassification, GivesTheCodeOfEachStepThatHasNoMemory) {
  EXPECT_EQ(list_Codes(), (Codes{-5, -13, -17, UNDERCUT_NO_MEMORY, -18, 0}));
  defaults::set(ucs_Dil, 0.1);
  EXPECT_EQ(list_Codes(), (Codes{-5, -13, -15, -16, UNDERCUT_NO_MEMORY, -18, 0}));
  r.req.axi = {};
  EXPECT_EQ(list_Codes(), (Codes{-13, -15, -16, UNDERCUT_NO_MEMORY, -18, 0}));
}

TEST_F(UndercutClassification, GivesTheSameCodes_WhereManyRaysAreAskedAtOnce) {
  const std::vector<T3DTRI> few = r.tri;
  while (r.tri.size() < 4000) r.tri.insert(r.tri.end(), few.begin(), few.end());
  r.fill();
  EXPECT_EQ(list_Codes(), (Codes{-5, -13, -17, UNDERCUT_NO_MEMORY, -18, 0}));
}

TEST_F(UndercutClassification, AllocatesNothingForAnAxis) {
  const auto count_Allocations = [&] {
    for (uint64_t n = 1;; ++n) {
      const FailingAllocation failing(n);
      r.call();
      if (!failing.has_Failed()) return n;
    }
  };
  const uint64_t one = count_Allocations();
  r.axi.assign(40, kDown);
  r.fill();
  EXPECT_EQ(count_Allocations(), one);
}

TEST_F(UndercutClassification, GivesMinus6_ForAnAxisWhoseDirectionIsNotFinite) {
  const double infinite = std::numeric_limits<double>::infinity();
  for (const T3DVEC& dir : {T3DVEC{kNoNumber, 0, 1}, {0, infinite, 0}, {1, 0, -infinite}}) {
    r.axi = {kDown, {{0, 0, 0}, dir}};
    r.fill();
    const int64_t live = live_Allocations();
    EXPECT_EQ(r.call(), -6);
    EXPECT_EQ(live_Allocations(), live);
  }
}

// One fault for each code that needs no exhausted memory, in the order of the checks.
struct TFault {
  int32_t code;
  void (*make)(TRoofRequest&);
};
const TFault kFaults[] = {
    {UNDERCUT_BAD_VERTEX, [](TRoofRequest& r) { r.tri[4].b = 15; }},
    {UNDERCUT_BAD_TRIANGLE,
     [](TRoofRequest& r) {
       r.fill_Roi({0, 6, 1});
     }},
    {-6, [](TRoofRequest& r) { r.axi[0].dir.x = kNoNumber; }},
};

TEST_F(UndercutClassification, TellsEachFaultByItsCode_AndLeavesTheResultAsItWas) {
  for (const TFault& fault : kFaults) {
    TRoofRequest faulty;
    fault.make(faulty);
    expect_Refusal(get_UCs, faulty.req, fault.code);
  }
}

TEST_F(UndercutClassification, TellsTheFirstOfTwoFaults) {
  for (size_t i = 0; i < std::size(kFaults); ++i)
    for (size_t k = i + 1; k < std::size(kFaults); ++k) {
      TRoofRequest faulty;
      kFaults[k].make(faulty);
      kFaults[i].make(faulty);
      EXPECT_EQ(faulty.call(), kFaults[i].code) << "beside " << kFaults[k].code;
    }
}

TEST_F(UndercutClassification, RefusesIndicesFarOutOfRange_BeforeReadingThroughThem) {
  r.fill_Roi({0xFFFFFFFFu});
  EXPECT_EQ(r.call(), UNDERCUT_BAD_TRIANGLE);
  r.tri[0].a = 0xFFFFFFFFu;
  EXPECT_EQ(r.call(), UNDERCUT_BAD_VERTEX);
}

// An empty mesh has no code of its own: it fails as a tree over it or over its grown triangles.
TEST_F(UndercutClassification, FailsAtTheTree_ForAMeshWithoutArraysOrCounts) {
  void (*const faults[])(T3DMSH&) = {
      [](T3DMSH& m) { m.vtx = nullptr; }, [](T3DMSH& m) { m.tri = nullptr; },
      [](T3DMSH& m) { m.n_vtx = 0; },     [](T3DMSH& m) { m.n_tri = 0; },
      [](T3DMSH& m) { m = T3DMSH{}; },
  };
  for (const auto& fault : faults) {
    TRoofRequest faulty;
    fault(faulty.req.msh);
    defaults::set(ucs_Dil, 0.0);
    EXPECT_EQ(faulty.call(), -17);
    defaults::set(ucs_Dil, 0.1);
    EXPECT_EQ(faulty.call(), -16);
    EXPECT_TRUE(faulty.res.ucs == nullptr);
  }
}

TEST_F(UndercutClassification, TakesAMissingRecordAsOneWithoutAMesh) {
  EXPECT_EQ(get_UCs(nullptr, &r.res), -17);
  EXPECT_EQ(get_UCs(&r.req, nullptr), -17);
  defaults::set(ucs_Dil, 1.0);
  EXPECT_EQ(get_UCs(nullptr, nullptr), -16);
}

TEST_F(UndercutClassification, WritesNothingOfTheResultButUcs) {
  TUcRes res, before;
  std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
  std::memcpy(&before, &res, sizeof res);
  ASSERT_EQ(get_UCs(&r.req, &res), 0);
  EXPECT_TRUE(res.ucs != before.ucs);
  r.res.ucs = res.ucs;
  before.ucs = res.ucs;
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
}

TEST_F(UndercutClassification, LeavesTheRequestAsItWas) {
  r.fill_Roi({5, 0, 1});
  const auto vtx = r.vtx;
  const auto tri = r.tri;
  const auto axi = r.axi;
  const auto roi = r.roi;
  TUcReq before;
  std::memcpy(&before, &r.req, sizeof before);
  defaults::set(ucs_Dil, 0.1);
  ASSERT_EQ(r.call(), 0);
  EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
  EXPECT_EQ(std::memcmp(vtx.data(), r.vtx.data(), vtx.size() * sizeof(T3DVEC)), 0);
  EXPECT_EQ(std::memcmp(tri.data(), r.tri.data(), tri.size() * sizeof(T3DTRI)), 0);
  EXPECT_EQ(std::memcmp(axi.data(), r.axi.data(), axi.size() * sizeof(T3DRAY)), 0);
  EXPECT_EQ(roi, r.roi);
}

TEST_F(UndercutClassification, WorksOnRecordsAtAMultipleOf4Bytes) {
  alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
  auto* req = reinterpret_cast<TUcReq*>(memory + 4);
  auto* res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
  ini_Req(req);
  ini_Res(res);
  req->msh = r.req.msh;
  req->axi = r.req.axi;
  ASSERT_EQ(get_UCs(req, res), 0);
  EXPECT_EQ(Bytes(res->ucs, res->ucs + 6), (Bytes{0, 1, 0, 1, 1, 1}));
  EXPECT_EQ(clr_Res(res), 0);
}

TEST_F(UndercutClassification, KeepsTheAnswersOfTrianglesAwayFromCoordinatesThatAreNotFinite) {
  const double infinite = std::numeric_limits<double>::infinity();
  r.vtx[12] = {kNoNumber, infinite, 1e308};
  for (const double dil : {0.0, 0.1}) {
    defaults::set(ucs_Dil, dil);
    const Bytes bytes = r.bytes();
    ASSERT_EQ(bytes.size(), 6u);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 4), (Bytes{0, 1, 0, 1}));
  }
}

TEST_F(UndercutClassification, LeaksNothingInAThousandCycles) {
  r.fill_Roi({0, 1, 4});
  defaults::set(ucs_Dil, 0.1);
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 1000; ++cycle) {
    ASSERT_EQ(ini_Res(&r.res), 0);
    ASSERT_EQ(get_UCs(&r.req, &r.res), 0);
    ASSERT_EQ(live_Allocations(), live + 1);
    ASSERT_EQ(clr_Res(&r.res), 0);
  }
  EXPECT_EQ(live_Allocations(), live);
}

}  // namespace
