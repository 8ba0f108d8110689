// get_UCd and get_UCc against a plain loop over poses and triangles.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <vector>

#include "interface/registered_mesh.h"
#include "tests/interface/blocks.h"
#include "tests/reference/plain_undercut.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

using namespace undercut;
using namespace undercut::tests;

namespace {

using Indices = std::vector<uint32_t>;
using reference::Random;
using reference::TBand;
using Set = std::set<uint32_t>;

struct TCase {
  TSoup part, obstacle;
  T3DRAY ray;
  std::vector<T3DRAY> axi;
  TUcReq req;
  TUcRes res;

  explicit TCase(Random& random) {
    part = random.chance(0.5) ? tilt(make_Bumpy(6, 5)) : make_Sphere(6, 9, 4.0);
    if (random.chance(0.5)) part = make_Tangle(random, 20, 70);
    obstacle = make_Tangle(random, 30, 1 + random.below(25));
    ray = {random.triple(-2, 2), random.triple(-1, 1)};
    const uint64_t poses = 1 + random.below(4);
    while (axi.size() < poses) axi.push_back({random.triple(-5, 5), random.triple(-3, 3)});
    g_Con.f_wid = random.real(0, 6);
    g_UCs.f_tol = random.chance(0.5) ? 0.001 : 0.3;
    clr_Dll();
    const T3DMSH msh = part.msh();
    EXPECT_EQ(ini_Adt(&msh), 0);
    ini_Req(&req);
    ini_Res(&res);
    req.ray = ray;
    req.axi = view_Arr(axi);
    req.msh_c = obstacle.msh();
  }
  ~TCase() {
    clr_Res(&res);
    clr_Dll();
  }
  TCase(const TCase&) = delete;
  TCase& operator=(const TCase&) = delete;

  std::vector<TBand> follow() {
    return reference::follow_Corridor(part.msh(), obstacle.msh(), ray, axi, g_Con.f_wid,
                                      g_UCs.f_tol);
  }
};

class PlainCorridor : public BlocksTest {};

Set to_Set(const TLst<uint32_t>& lst) { return Set(lst.data, lst.data + lst.count); }

Set to_Set(const CBitVector& bits) {
  Set set;
  for (uint32_t t = 0; t < bits.size(); ++t)
    if (bits.test(t)) set.insert(t);
  return set;
}

TEST_F(PlainCorridor, EqualsThePlainLoop_InGetUCd) {
  constexpr uint64_t seed = 54101;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  size_t found = 0;
  for (uint32_t round = 0; round < scale_Cases(300); ++round) {
    TCase c(random);
    Set marked, blocked;
    for (const TBand& band : c.follow()) {
      marked.insert(band.all.begin(), band.all.end());
      blocked.insert(band.blocked.begin(), band.blocked.end());
    }
    ASSERT_EQ(get_UCd(&c.req, &c.res), 0);
    Set bytes;
    for (uint32_t t = 0; t < c.part.tri.size(); ++t)
      if (c.res.ucs[t]) bytes.insert(t);
    ASSERT_EQ(bytes, blocked) << "round " << round;
    ASSERT_EQ(to_Set(g_Mrk), marked) << "round " << round;
    found += blocked.size();
  }
  EXPECT_GT(found, 300u);
}

TEST_F(PlainCorridor, EqualsThePlainLoop_InGetUCc) {
  constexpr uint64_t seed = 54102;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  size_t found = 0, passed = 0;
  for (uint32_t round = 0; round < scale_Cases(300); ++round) {
    TCase c(random);
    const std::vector<TBand> bands = c.follow();
    Set seen;
    for (const TBand& band : bands) seen.insert(band.seen.begin(), band.seen.end());
    Set never;
    std::set_difference(bands.back().all.begin(), bands.back().all.end(), seen.begin(), seen.end(),
                        std::inserter(never, never.end()));
    ASSERT_EQ(get_UCc(&c.req, &c.res), 0);
    ASSERT_EQ(to_Set(g_Sel), never) << "round " << round;
    ASSERT_EQ(g_Sel.count, never.size());
    ASSERT_EQ(g_Hit.count, bands.back().all.size());
    ASSERT_EQ(to_Set(g_Ucs), seen);
    found += never.size();
    passed += bands.back().blocked.size() > never.size() ? 1 : 0;
  }
  EXPECT_GT(found, 300u);
  EXPECT_GT(passed, 5u);  // rounds in which an earlier pose saw what the last one does not
}

}  // namespace
