// The filter of components against a plain loop.
#include <gtest/gtest.h>

#include <map>

#include "interface/parameters.h"
#include "mesh/curve_cut.h"
#include "tests/support/intensity.h"
#include "tests/support/pieces_request.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

class ComponentFilterLoop : public testing::Test {
 protected:
  ~ComponentFilterLoop() override { g_Flt = TFltPar(); }
};

double plain_Area(const TSoup& soup, uint32_t t) {
  const T3DVEC &a = soup.vtx[soup.tri[t].a], &b = soup.vtx[soup.tri[t].b],
               &c = soup.vtx[soup.tri[t].c];
  const T3DVEC u = {b.x - a.x, b.y - a.y, b.z - a.z}, v = {c.x - a.x, c.y - a.y, c.z - a.z};
  const T3DVEC n = {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
  return 0.5 * std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
}

// 0, -12 or -15, as the call gives them, and the pieces that stay.
int32_t filter_Plainly(TPiecesRequest& r, Lists& kept) {
  std::vector<bool> inside(r.soup.tri.size());
  if (!r.sets.empty()) {
    Scoped<TLstLstU32> sides;
    if (crv_CutLst(r.soup.msh(), r.req.lst, *sides) != 0) return -12;
    for (uint32_t k = 1; k < sides->count; ++k)
      for (const uint32_t t : copy_Of(sides->data[k])) inside[t] = true;
  }
  for (const Indices& piece : r.pieces) {
    std::vector<double> values = {0.0};
    double area = 0.0;
    bool is_Inside = false;
    for (const uint32_t t : piece) {
      if (t >= r.soup.tri.size()) return -15;
      is_Inside = inside[t];
      if (is_Inside) break;
      values.push_back(r.add[t]);
      area += plain_Area(r.soup, t);
    }
    const double largest = *std::max_element(values.begin(), values.end());
    if (!is_Inside && area >= g_Flt.f_srf && largest >= g_Flt.f_dep) kept.push_back(piece);
  }
  return 0;
}

void pick_Pieces(reference::Random& random, TPiecesRequest& r) {
  const uint64_t count = r.soup.tri.size();
  r.pieces.assign(1 + random.below(6), {});
  for (Indices& piece : r.pieces)
    for (uint64_t i = random.below(8); i-- > 0;)
      piece.push_back(static_cast<uint32_t>(random.below(count + random.chance(0.2))));
  r.add.clear();
  for (uint64_t t = 0; t < count; ++t) r.add.push_back(0.25 * double(random.integer(-4, 4)));
  r.sets.assign(random.below(3), {});
  for (TCurves& set : r.sets)
    for (uint64_t c = 1 + random.below(2); c-- > 0;) set.curves.push_back(pick_Curve(random));
}

TEST_F(ComponentFilterLoop, GivesTheSamePiecesAndCodes_OnRandomMeshes) {
  const uint64_t seed = 745;
  reference::Random random(seed);
  std::map<int32_t, uint32_t> codes;
  uint32_t dropped = 0, stayed = 0, with_Curves = 0;
  for (uint32_t i = 0; i < scale_Cases(2000); ++i) {
    TPiecesRequest r(flt_Com);
    r.soup = pick_Sheet(random);
    pick_Pieces(random, r);
    g_Flt.f_srf = random.chance(0.3) ? 0.0 : random.real(0, 4);
    g_Flt.f_dep = 0.25 * double(random.integer(-1, 4));
    const int32_t code = r.fill_AndCall();
    Lists kept;
    ASSERT_EQ(code, filter_Plainly(r, kept)) << "seed " << seed << ", case " << i;
    ++codes[code];
    if (code != 0) continue;
    ASSERT_EQ(copy_Nested(r.res.com), kept) << "seed " << seed << ", case " << i;
    stayed += static_cast<uint32_t>(kept.size());
    dropped += static_cast<uint32_t>(r.pieces.size() - kept.size());
    with_Curves += !r.sets.empty();
  }
  EXPECT_GT(codes[-12], 100u);
  EXPECT_GT(codes[-15], 10u);
  EXPECT_GT(stayed, 500u);
  EXPECT_GT(dropped, 500u);
  EXPECT_GT(with_Curves, 200u);
}

}  // namespace
