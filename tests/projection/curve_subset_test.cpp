// The subset inside curves against the cut of the mesh along them.
#include <gtest/gtest.h>

#include <map>

#include "mesh/curve_cut.h"
#include "tests/support/intensity.h"
#include "tests/support/pieces_request.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

TEST(CurveSubsetCut, IsTheSecondListOfTheCut_OnRandomMeshes) {
  const uint64_t seed = 746;
  reference::Random random(seed);
  std::map<int32_t, uint32_t> codes;
  for (uint32_t i = 0; i < scale_Cases(1000); ++i) {
    TPiecesRequest r(get_Sub);
    r.soup = pick_Sheet(random);
    r.curve = pick_Curve(random);
    const int32_t code = r.fill_AndCall();
    Scoped<TLstLstU32> sides;
    const int32_t cut = crv_Cut(r.soup.msh(), r.req.arg, *sides);
    ASSERT_EQ(code, cut == 0 ? 0 : -7) << "seed " << seed << ", case " << i;
    ++codes[code];
    if (code != 0) continue;
    ASSERT_EQ(copy_Nested(r.res.com), Lists{copy_Of(sides->data[1])})
        << "seed " << seed << ", case " << i;
  }
  EXPECT_GT(codes[0], 200u);
  EXPECT_GT(codes[-7], 50u);
}

}  // namespace
