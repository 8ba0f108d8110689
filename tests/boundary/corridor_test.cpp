// get_UCd and get_UCc, called as a host calls them.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "tests/boundary/defaults.h"
#include "tests/support/allocations.h"
#include "tests/support/corridor.h"

using namespace undercut::tests;

namespace {

using Indices = std::vector<uint32_t>;
using Codes = std::vector<int32_t>;

class UndercutCorridor : public testing::Test {
 protected:
  UndercutCorridor() { EXPECT_EQ(r.register_Sheet(), 0); }
  ~UndercutCorridor() override {
    clr_Dll();
    defaults::restore();
  }
  // The triangles that get_UCd finds.
  Indices blocked() {
    EXPECT_EQ(r.call_UCd(), 0);
    Indices list;
    for (uint32_t t = 0; r.res.ucs && t < r.sheet.tri.size(); ++t) {
      EXPECT_LE(r.res.ucs[t], 1) << t;
      if (r.res.ucs[t] != 0) list.push_back(t);
    }
    return list;
  }
  Indices blocked(const std::vector<T3DVEC>& poses) {
    r.fill(poses);
    return blocked();
  }
  // The triangles that get_UCc lists, sorted.
  Indices never_Seen() {
    EXPECT_EQ(r.call_UCc(), 0);
    TLstU32 view;
    std::memcpy(&view, &r.res.frm_a, sizeof view);
    Indices list(view.data, view.data + view.count);
    std::sort(list.begin(), list.end());
    return list;
  }
  Indices never_Seen(const std::vector<T3DVEC>& poses) {
    r.fill(poses);
    return never_Seen();
  }
  // Two triangles with equal corners, by index and by place, across row 2 under the plate.
  void add_Flat() {
    r.sheet.vtx.push_back(r.sheet.vtx[15]);
    r.sheet.tri.push_back({10, 10, 15});
    r.sheet.tri.push_back({10, 15, 25});
    EXPECT_EQ(r.register_Sheet(), 0);
  }
  TCorridorRequest r;
};

TEST_F(UndercutCorridor, BlocksWhatLiesInTheBandBehindTheObstacle) {
  EXPECT_EQ(blocked({kDown}), list_Range(16, 20));
  EXPECT_EQ(never_Seen({kDown}), list_Range(16, 20));
}

TEST_F(UndercutCorridor, FollowsThePose_RoundTheRay) {
  EXPECT_EQ(blocked({kTilted}), list_Range(24, 28));
  EXPECT_EQ(never_Seen({kTilted}), list_Range(24, 28));
}

TEST_F(UndercutCorridor, FollowsTheOriginOfTheRay) {
  r.fill({kDown});
  r.req.ray.org = {-50, 0.5, 99};
  EXPECT_EQ(blocked(), list_Range(0, 4));
}

TEST_F(UndercutCorridor, CastsNoShadowOfTheRegisteredMesh) {
  r.sheet.vtx.push_back({-9, -9, 0.5});
  r.sheet.vtx.push_back({19, -9, 0.5});
  r.sheet.vtx.push_back({4, 30, 0.5});
  r.sheet.tri.push_back({25, 26, 27});
  ASSERT_EQ(r.register_Sheet(), 0);
  r.plate.vtx = {{0, 2, 1}, {1, 2, 1}, {1, 3, 1}, {0, 3, 1}};
  EXPECT_EQ(blocked({kDown}), list_Range(16, 18));
}

// The ray lies above the middle of row 2. Of each row that comes in, 4 triangles lie under the
// plate.
TEST_F(UndercutCorridor, IsAsWideAsConWid) {
  defaults::set(con_Wid, 0.0);
  EXPECT_EQ(blocked({kDown}), list_Range(16, 20));
  defaults::set(con_Wid, 0.98);
  EXPECT_EQ(blocked({kDown}), list_Range(16, 20));
  defaults::set(con_Wid, 1.02);
  EXPECT_EQ(blocked({kDown}).size(), 12u);
  defaults::set(con_Wid, 2.98);
  EXPECT_EQ(blocked({kDown}).size(), 12u);
  defaults::set(con_Wid, 3.02);
  EXPECT_EQ(blocked({kDown}).size(), 16u);
  defaults::set(con_Wid, 100.0);
  EXPECT_EQ(blocked({kDown}).size(), 16u);
}

// u x v is not made a unit vector: its length is the sine of the angle between ray and pose.
TEST_F(UndercutCorridor, IsNarrowerForAnObliquePose) {
  const T3DVEC oblique = {1, 0, -1};
  defaults::set(con_Wid, 1.02);
  EXPECT_EQ(blocked({oblique}), list_Range(16, 22));
  defaults::set(con_Wid, 1.40);
  EXPECT_EQ(blocked({oblique}), list_Range(16, 22));
  defaults::set(con_Wid, 1.43);
  EXPECT_EQ(blocked({oblique}).size(), 18u);
}

TEST_F(UndercutCorridor, ReadsTheDirectionsOfRayAndPosesAlone) {
  const Indices row = list_Range(24, 28);
  EXPECT_EQ(blocked({{0, 2e-9, -2e-9}}), row);
  EXPECT_EQ(blocked({{0, 3e7, -3e7}}), row);
  r.fill({kTilted});
  r.req.ray.dir = {-1e-200, 0, 0};
  EXPECT_EQ(blocked(), row);
}

TEST_F(UndercutCorridor, OfAPoseAlongTheRay_TakesEveryTriangle) {
  defaults::set(con_Wid, 0.0);
  // Rays along the sheet towards -X: the wall stands on the far side of all triangles.
  r.plate.vtx = {{-1, -9, -9}, {-1, 9, -9}, {-1, 9, 9}, {-1, -9, 9}};
  const Indices all = list_Range(0, 32);
  EXPECT_EQ(blocked({{2, 0, 0}}), all);
  EXPECT_EQ(never_Seen({{2, 0, 0}}), all);
  EXPECT_EQ(blocked({{-2, 0, 0}}), Indices());
  EXPECT_EQ(never_Seen({{-2, 0, 0}}), Indices());
}

// A pose too long to be made a unit vector gives no band, and rays all the same.
TEST_F(UndercutCorridor, CastsRaysAlongThePoseAsGiven) {
  EXPECT_EQ(blocked({{0, 0, -1e200}}).size(), 16u);
  EXPECT_EQ(never_Seen({{0, 0, -1e200}}).size(), 16u);
}

TEST_F(UndercutCorridor, OfAPoseWithoutDirection_RaisesNoCode) {
  r.fill({{0, 0, 0}});
  EXPECT_EQ(r.call_UCd(), 0);
  EXPECT_EQ(r.call_UCc(), 0);
}

TEST_F(UndercutCorridor, RaisesNoCode_ForDirectionsThatAreNotFinite) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double infinite = std::numeric_limits<double>::infinity();
  for (const double bad : {nan, infinite, 1e308}) {
    r.fill({{bad, 0, -1}, {0, bad, bad}});
    EXPECT_EQ(r.call_UCd(), 0);
    EXPECT_EQ(r.call_UCc(), 0);
    r.fill({kDown});
    r.req.ray = {{bad, 0, 0}, {0, bad, 1}};
    EXPECT_EQ(r.call_UCd(), 0);
    EXPECT_EQ(r.call_UCc(), 0);
  }
}

TEST_F(UndercutCorridor, LiftsTheStartOfRaysByTol_AlongTheNormal) {
  defaults::set(ucs_Tol, 1.5);
  EXPECT_EQ(blocked({kDown}), Indices());
  EXPECT_EQ(never_Seen({kDown}), Indices());
}

// ---- What several poses give --------------------------------------------------------------------

const T3DVEC kLeftwards = {1, 0, -1};    // rays run to -X as they rise: the plate blocks to x = 3
const T3DVEC kRightwards = {-1, 0, -1};  // and to +X: to x = 1

TEST_F(UndercutCorridor, BlocksAtSomePose) {
  EXPECT_EQ(blocked({kDown, kLeftwards}), list_Range(16, 22));
  EXPECT_EQ(blocked({kLeftwards, kDown}), list_Range(16, 22));
  Indices both = list_Range(16, 20);
  for (const uint32_t t : list_Range(24, 28)) both.push_back(t);
  EXPECT_EQ(blocked({kDown, kTilted}), both);
  EXPECT_EQ(blocked({kTilted, kDown, kTilted}), both);
}

TEST_F(UndercutCorridor, ListsWhatNoPoseSees) {
  EXPECT_EQ(never_Seen({kDown, kLeftwards}), list_Range(16, 20));
  EXPECT_EQ(never_Seen({kRightwards, kDown}), list_Range(16, 18));
  EXPECT_EQ(never_Seen({kDown, kRightwards}), list_Range(16, 18));
}

TEST_F(UndercutCorridor, ListsTheBandOfTheLastPoseAlone) {
  EXPECT_EQ(never_Seen({kDown, kTilted}), list_Range(24, 28));
  EXPECT_EQ(never_Seen({kTilted, kDown}), list_Range(16, 20));
}

TEST_F(UndercutCorridor, PassesOverTwoEqualCorners_AndListsThemAsNeverSeen) {
  add_Flat();
  EXPECT_EQ(blocked({kDown}), list_Range(16, 20));
  Indices listed = list_Range(16, 20);
  listed.push_back(32);
  listed.push_back(33);
  EXPECT_EQ(never_Seen({kDown}), listed);
}

TEST_F(UndercutCorridor, ListsEveryTriangleOnce_WhereAllAreBlocked) {
  r.plate.vtx[1].x = r.plate.vtx[2].x = 50;
  defaults::set(con_Wid, 100.0);
  EXPECT_EQ(blocked({kDown, kDown, kTilted}), list_Range(0, 32));
  EXPECT_EQ(never_Seen({kDown, kDown, kTilted}), list_Range(0, 32));
}

// ---- What is handed out -------------------------------------------------------------------------

TEST_F(UndercutCorridor, HandsOutAViewOfTheSelectedTriangles) {
  TLstU32 before, view, selected;
  get_Roi(&before);
  std::memset(static_cast<void*>(&r.res.frm_a), 0xAB, sizeof r.res.frm_a);
  ASSERT_EQ(r.call_UCc(), 0);
  std::memcpy(&view, &r.res.frm_a, sizeof view);
  EXPECT_EQ(get_Roi(&selected), 0);
  EXPECT_EQ(std::memcmp(&view, &selected, sizeof view), 0);
  EXPECT_TRUE(view.data == before.data);
  EXPECT_EQ(view.count, 4u);
  EXPECT_EQ(view.capacity, 32u);
  unsigned char rest[sizeof r.res.frm_a];
  std::memcpy(rest, &r.res.frm_a, sizeof rest);
  for (size_t i = sizeof view; i < sizeof rest; ++i) EXPECT_EQ(rest[i], 0xAB) << i;
}

TEST_F(UndercutCorridor, KeepsTheViewThroughClrRes_AndOverwritesItByTheNextCall) {
  ASSERT_EQ(never_Seen({kDown}), list_Range(16, 20));
  TLstU32 view;
  std::memcpy(&view, &r.res.frm_a, sizeof view);
  EXPECT_EQ(clr_Res(&r.res), 0);
  EXPECT_EQ(Indices(view.data, view.data + view.count).size(), 4u);
  EXPECT_EQ(never_Seen({kTilted}), list_Range(24, 28));
  Indices now(view.data, view.data + 4);
  std::sort(now.begin(), now.end());
  EXPECT_EQ(now, list_Range(24, 28));
}

TEST_F(UndercutCorridor, StartsAnew_WithEachCall) {
  EXPECT_EQ(blocked({kTilted}), list_Range(24, 28));
  EXPECT_EQ(never_Seen({kRightwards}), list_Range(16, 18));
  EXPECT_EQ(blocked({kDown}), list_Range(16, 20));
  EXPECT_EQ(never_Seen({kDown}), list_Range(16, 20));
  EXPECT_EQ(never_Seen({kDown}), list_Range(16, 20));
}

TEST_F(UndercutCorridor, LeavesTheSelectionAlone_InGetUCd) {
  ASSERT_EQ(never_Seen({kTilted}), list_Range(24, 28));
  blocked({kDown});
  TLstU32 selected;
  get_Roi(&selected);
  EXPECT_EQ(selected.count, 4u);
  EXPECT_GE(selected.data[0], 24u);
}

TEST_F(UndercutCorridor, WritesNothingElseOfTheResult) {
  TUcRes res, before;
  std::memset(static_cast<void*>(&res), 0xAB, sizeof res);
  std::memcpy(&before, &res, sizeof res);
  ASSERT_EQ(get_UCc(&r.req, &res), 0);
  std::memcpy(&before, &res, sizeof(TLstU32));
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
  ASSERT_EQ(get_UCd(&r.req, &res), 0);
  EXPECT_TRUE(res.ucs != before.ucs);
  r.res.ucs = before.ucs = res.ucs;
  EXPECT_EQ(std::memcmp(&res, &before, sizeof res), 0);
}

TEST_F(UndercutCorridor, LeavesTheRequestAsItWas) {
  r.fill({kDown, kTilted});
  const TSoup plate = r.plate;
  const auto axi = r.axi;
  TUcReq before;
  std::memcpy(&before, &r.req, sizeof before);
  ASSERT_EQ(r.call_UCd(), 0);
  ASSERT_EQ(r.call_UCc(), 0);
  EXPECT_EQ(std::memcmp(&before, &r.req, sizeof before), 0);
  EXPECT_EQ(std::memcmp(plate.vtx.data(), r.plate.vtx.data(), 4 * sizeof(T3DVEC)), 0);
  EXPECT_EQ(std::memcmp(plate.tri.data(), r.plate.tri.data(), 2 * sizeof(T3DTRI)), 0);
  EXPECT_EQ(std::memcmp(axi.data(), r.axi.data(), axi.size() * sizeof(T3DRAY)), 0);
}

TEST_F(UndercutCorridor, WorksOnRecordsAtAMultipleOf4Bytes) {
  alignas(8) char memory[8 + sizeof(TUcReq) + sizeof(TUcRes)];
  auto* req = reinterpret_cast<TUcReq*>(memory + 4);
  auto* res = reinterpret_cast<TUcRes*>(memory + 4 + sizeof(TUcReq));
  ini_Req(req);
  ini_Res(res);
  req->axi = r.req.axi;
  const T3DRAY ray = r.req.ray;
  std::memcpy(static_cast<void*>(&req->ray), &ray, sizeof ray);
  req->msh_c = r.req.msh_c;
  ASSERT_EQ(get_UCd(req, res), 0);
  EXPECT_EQ(res->ucs[16], 1);
  EXPECT_EQ(res->ucs[20], 0);
  ASSERT_EQ(get_UCc(req, res), 0);
  TLstU32 view;
  std::memcpy(&view, &res->frm_a, sizeof view);
  EXPECT_EQ(view.count, 4u);
  EXPECT_EQ(clr_Res(res), 0);
}

// ---- Failures -----------------------------------------------------------------------------------

TEST_F(UndercutCorridor, TakesAMissingRecordAsOneWithoutAnObstacle) {
  EXPECT_EQ(get_UCd(nullptr, &r.res), -5);
  EXPECT_EQ(get_UCd(&r.req, nullptr), -5);
  EXPECT_EQ(get_UCc(nullptr, &r.res), -5);
  EXPECT_EQ(get_UCc(&r.req, nullptr), -5);
  clr_Dll();
  EXPECT_EQ(get_UCd(nullptr, nullptr), -1);
  EXPECT_EQ(get_UCc(nullptr, nullptr), -1);
}

TEST_F(UndercutCorridor, NeedsARegisteredMesh) {
  clr_Dll();
  EXPECT_EQ(r.call_UCd(), -1);
  EXPECT_EQ(r.call_UCc(), -1);
}

TEST_F(UndercutCorridor, GivesTheCodeOfEachStepThatHasNoMemory) {
  r.fill({kDown, kTilted});
  EXPECT_EQ(list_FailureCodes([&] {
              const int32_t code = r.call_UCd();
              clr_Res(&r.res);
              return code;
            }),
            (Codes{-16, -17, 0}));
  EXPECT_EQ(list_FailureCodes([&] { return r.call_UCc(); }), (Codes{-19, 0}));
}

TEST_F(UndercutCorridor, LeaksNothingInAThousandCycles) {
  r.fill({kDown, kTilted, kDown});
  const int64_t live = live_Allocations();
  for (int cycle = 0; cycle < 1000; ++cycle) {
    ASSERT_EQ(get_UCc(&r.req, &r.res), 0);
    ASSERT_EQ(live_Allocations(), live);
    ASSERT_EQ(get_UCd(&r.req, &r.res), 0);
    ASSERT_EQ(live_Allocations(), live + 1);
    ASSERT_EQ(clr_Res(&r.res), 0);
  }
  EXPECT_EQ(live_Allocations(), live);
}

}  // namespace
