// The codes of exhausted memory where a mesh is large enough for its rays to be asked all at once.
#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "tests/boundary/defaults.h"
#include "tests/support/allocations.h"
#include "tests/support/meshes.h"

using namespace undercut::tests;

namespace {

using Codes = std::vector<int32_t>;

// 800 triangles, as a region too, and axes that see some of them.
class SweptRays : public testing::Test {
 protected:
  void SetUp() override {
    defaults::restore();
    list_.resize(soup_.tri.size());
    std::iota(list_.begin(), list_.end(), 0u);
  }
  void TearDown() override { defaults::restore(); }

  template <typename Export>
  Codes list_Codes(Export call) {
    const auto n_tri = static_cast<uint32_t>(list_.size());
    T3DRAY axis = {{0, 0, 0}, {0.1, 0.2, -1}};
    TLstU32 region = {list_.data(), n_tri, n_tri};
    return list_FailureCodes([&] {
      TUcReq req;
      TUcRes res;
      ini_Req(&req);
      ini_Res(&res);
      req.msh = soup_.msh();
      req.axi = {&axis, 1};
      req.cav = {&region, 1, 1};
      const int32_t code = call(&req, &res);
      clr_Res(&res);
      return code;
    });
  }

 private:
  TSoup soup_ = make_Bumpy(20, 20);
  std::vector<uint32_t> list_;
};

}  // namespace

TEST_F(SweptRays, WithoutMemory_GiveTheCodesOfTheirExports) {
  EXPECT_EQ(list_Codes(get_UCs), (Codes{-5, -13, -17, UNDERCUT_NO_MEMORY, -18, 0}));
  EXPECT_EQ(list_Codes(get_dFi), (Codes{-5, -12, -13, -14, -15, -16, -17, -22, -24, -25, -26,
                                        UNDERCUT_NO_MEMORY, -27, 0}));
  EXPECT_EQ(list_Codes(get_Amo), (Codes{-8, UNDERCUT_NO_MEMORY, -12, 0}));
  EXPECT_EQ(list_Codes(get_5ax), (Codes{-13, UNDERCUT_NO_MEMORY, 0}));
}

TEST_F(SweptRays, OfStatistics_WithoutMemory_GiveTheCodeOfTheSeenTriangles) {
  EXPECT_EQ(list_Codes(get_Sta), (Codes{-10, -12, -13, -14, -13, 0}));
}
