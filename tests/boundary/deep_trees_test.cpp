// Rays through a tree so deep that their walk needs memory of its own. Where that is missing, a
// computation gives the code of a step without a code of its own.
#include <gtest/gtest.h>
#include <undercut/exports.h>

#include "tests/boundary/axes_request.h"
#include "tests/support/corridor.h"

namespace undercut::tests {

namespace {

class DeepTrees : public AxisSearch {
 protected:
  void SetUp() override {
    AxisSearch::SetUp();
    defaults::set(amo_Max, uint32_t{0});
    defaults::set(nxn_Box, defaults::TBox{{90, 0, 91, 1}});  // along the stacks
    const TSoup soup = make_Uneven();
    r.vtx = soup.vtx;
    r.tri = soup.tri;
    r.regions = {list_Range(0, 6)};
    r.fill();
  }
  int32_t call_Failing(TAxesRequest::Computation computation, uint64_t n, bool& failed) {
    clr_Res(&r.res);
    const FailingAllocation failing(n);
    const int32_t code = computation(&r.req, &r.res);
    failed = failing.has_Failed();
    return code;
  }
  // A call makes a few allocations before its rays, and hundreds for them.
  void expect_GeneralCode(TAxesRequest::Computation computation) {
    clr_Res(&r.res);
    const int64_t live = live_Allocations();
    bool failed = false;
    EXPECT_EQ(call_Failing(computation, 100, failed), UNDERCUT_NO_MEMORY);
    EXPECT_TRUE(failed) << "no ray needs memory";
    EXPECT_EQ(live_Allocations(), live);
  }
  // The number of the last allocation of a call that succeeds, by halving.
  uint64_t find_Last(TAxesRequest::Computation computation) {
    bool failed = true;
    uint64_t low = 0, high = 1;
    while (call_Failing(computation, high, failed) != 0) high *= 2;
    while (high - low > 1) {
      const uint64_t middle = low + (high - low) / 2;
      call_Failing(computation, middle, failed);
      (failed ? low : high) = middle;
    }
    return low;
  }
  TAxesRequest r;
};

TEST_F(DeepTrees, WithoutMemoryForRays_Get3axGivesTheGeneralCode_AndMinus13ForTheLastSight) {
  expect_GeneralCode(get_3ax);
  bool failed = false;
  EXPECT_EQ(call_Failing(get_3ax, find_Last(get_3ax), failed), -13);
  EXPECT_TRUE(failed);
}

TEST_F(DeepTrees, WithoutMemoryForRays_Get4ayGivesTheGeneralCode) {
  defaults::set(gcu_Phi, 0.0);
  defaults::set(gcu_Th0, 80.0);
  defaults::set(gcu_Th1, 100.0);
  expect_GeneralCode(get_4ay);
}

TEST_F(DeepTrees, WithoutMemoryForRays_Get5axGivesTheGeneralCode) { expect_GeneralCode(get_5ax); }

TEST_F(DeepTrees, WithoutMemoryForRays_Get5ayGivesTheGeneralCode) { expect_GeneralCode(get_5ay); }

TEST_F(DeepTrees, WithoutMemoryForRays_TheCorridorGivesTheGeneralCode) {
  TCorridorRequest corridor;
  corridor.fill({{-1, 0, 0}});
  corridor.plate = make_Uneven();
  corridor.req.msh_c = corridor.plate.msh();
  corridor.req.ray.dir = {0, 1, 0};
  defaults::set(con_Wid, 100.0);
  ASSERT_EQ(corridor.register_Sheet(), 0);
  r.req = corridor.req;
  expect_GeneralCode(get_UCd);
  expect_GeneralCode(get_UCc);
}

// The codes of a call on the registered mesh, which a host may make again where memory is missing.
template <typename Call>
std::vector<int32_t> list_RegisteredCodes(const T3DMSH& msh, const Call& call) {
  clr_Dll();
  EXPECT_EQ(ini_Adt(&msh), 0);
  std::vector<int32_t> codes = list_FailureCodes(call);
  clr_Dll();
  return codes;
}

// A line along all of the stacks.
const T3DRAY kThrough = {{0, 0, 0}, {1, 0, 0}};

TEST_F(DeepTrees, WithoutMemoryForItsLine_DetPrjGivesTheGeneralCode_AndStoresNothing) {
  T3DVEC point = {7, 7, 7};
  EXPECT_EQ(list_RegisteredCodes(r.req.msh,
                                 [&] {
                                   point = {7, 7, 7};
                                   const int32_t code = det_Prj(&kThrough, &point);
                                   EXPECT_EQ(code == UNDERCUT_NO_MEMORY, point.y == 7);
                                   return code;
                                 }),
            (std::vector<int32_t>{UNDERCUT_NO_MEMORY, 0}));
}

TEST_F(DeepTrees, WithoutMemoryForItsSlab_DetRoiGivesTheGeneralCode) {
  T3DRAY axis = {{0, 0, 0}, {0, 1, 0}};
  r.req.axi = {&axis, 1};
  r.req.ray = kThrough;
  EXPECT_EQ(list_RegisteredCodes(r.req.msh, [&] { return det_Roi(&r.req); }),
            (std::vector<int32_t>{UNDERCUT_NO_MEMORY, 0}));
}

TEST_F(DeepTrees, WithoutMemoryForItsLines_GetPrjGivesTheGeneralCode) {
  std::vector<uint32_t> all = list_Range(0, static_cast<uint32_t>(r.tri.size()));
  TLstU32 area = view_Lst(all);
  T3DVEC point = {0, 0, 0};
  TArrVec points = {&point, 1};
  T3DFRM frame = {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}, {0, 0, 0}};
  r.req.prj_l = {&area, 1, 1};
  r.req.prj_p = {&points, 1};
  r.req.prj_f = {&frame, 1, 1};
  const std::vector<int32_t> codes = list_Codes(r, get_Prj);
  EXPECT_NE(std::find(codes.begin(), codes.end(), UNDERCUT_NO_MEMORY), codes.end());
  EXPECT_EQ(codes.back(), 0);
}

}  // namespace

}  // namespace undercut::tests
