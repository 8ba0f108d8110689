// The searches that find an axis for each region against plain programs, bit for bit.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "bench/bodies.h"
#include "interface/exports.h"
#include "interface/parameters.h"
#include "tests/reference/plain_region_axes.h"
#include "tests/support/intensity.h"
#include "tests/support/meshes.h"

namespace undercut::tests {

namespace {

using reference::Random;
using reference::Region;

// A request over a random mesh: a tangle, a sheet with waves or a ball with warts. Its regions are
// the whole mesh, an empty one and random ones, which repeat triangles.
struct TRandomRequest {
  TSoup soup;
  std::vector<Region> regions;
  std::vector<TLstU32> cav;
  TUcReq req;
  TUcRes res;

  explicit TRandomRequest(Random& random) {
    const uint64_t kind = random.below(3);
    if (kind == 0) {
      soup = make_Tangle(random, 6 + random.below(30), 3 + random.below(30));
    } else if (kind == 1) {
      soup = tilt(make_Bumpy(3, 4));
    } else {
      const bodies::TBody ball = bodies::make_Ball(70);
      soup = {ball.points, ball.triangles};
    }
    regions.push_back(std::nullopt);
    regions.push_back(std::vector<uint32_t>());
    for (int k = 0; k < 3; ++k) {
      std::vector<uint32_t> list;
      const uint64_t count = 1 + random.below(20);
      while (list.size() < count)
        list.push_back(static_cast<uint32_t>(random.below(soup.tri.size())));
      regions.insert(regions.begin() + static_cast<int64_t>(random.below(regions.size() + 1)),
                     list);
    }
    ini_Req(&req);
    ini_Res(&res);
    req.msh = soup.msh();
    for (Region& region : regions) cav.push_back(view(region));
    req.cav = {cav.data(), 0, static_cast<uint32_t>(cav.size())};
  }
  ~TRandomRequest() { clr_Res(&res); }
  TRandomRequest(const TRandomRequest&) = delete;
  TRandomRequest& operator=(const TRandomRequest&) = delete;

  static TLstU32 view(Region& region) {
    if (!region) return {nullptr, 0, 0};
    region->reserve(1);
    return view_Lst(*region);
  }
  void expect_Frames(const reference::TRegionAxes& plain) const {
    ASSERT_EQ(res.n_lst, plain.frames.size());
    EXPECT_EQ(std::memcmp(res.lst, plain.frames.data(), plain.frames.size() * sizeof(T3DFRM)), 0);
  }
};

// A copy: in its record it may be misaligned.
T3DFRM frame_Of(const TUcRes& res) { return res.frm_b; }

bool is_Same(const T3DFRM& a, const T3DFRM& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

class RegionAxes : public testing::Test {
 protected:
  void TearDown() override {
    g_UCs = CUCsPar();
    g_Gcu = TGcuPar();
    g_Nxn = TNxnPar();
    g_Amo = TAmoPar();
    g_ErrGew = 0.01;
  }
  // A window, the steps of its scan and a simplex.
  static reference::TAxisSettings pick_Window(Random& random) {
    reference::TAxisSettings set;
    set.box[0] = random.real(-10, 120);
    set.box[1] = random.real(-50, 300);
    set.box[2] = set.box[0] + random.real(1, 60);
    set.box[3] = set.box[1] + random.real(1, 200);
    if (random.chance(0.3)) {
      const double all[4] = {0, 0, 180, 360};
      std::copy_n(all, 4, set.box);
    }
    set.dxx = random.real(10, 40);
    set.dyy = random.real(10, 40);
    set.dxy = random.chance(0.1) ? 0 : random.real(0.5, 8);
    set.eps = random.real(0.1, 1);
    set.limit = static_cast<unsigned>(random.below(30));
    set.weight = random.chance(0.3) ? 1 : 0.01;
    std::copy_n(set.box, 4, g_Nxn.box);
    g_Nxn.f_dxx = set.dxx;
    g_Nxn.f_dyy = set.dyy;
    g_Amo.f_dxy = set.dxy;
    g_Amo.f_eps = set.eps;
    g_Amo.n_max = set.limit;
    g_ErrGew = set.weight;
    return set;
  }
  static double pick_Lift(Random& random) {
    g_UCs.f_tol = random.chance(0.2) ? random.real(-1, 1) : 0.001;
    return g_UCs.f_tol;
  }
};

TEST_F(RegionAxes, OfFourAxes_AreThoseOfAPlainProgram) {
  constexpr uint64_t seed = 20261124;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  for (uint32_t round = 0; round < scale_Cases(15); ++round) {
    TRandomRequest r(random);
    reference::TTiltSettings set;
    set.th0 = random.real(-360, 300);
    set.th1 = random.real(set.th0, 360);
    set.phi = random.real(0, 180);
    set.eps = random.real(0.01, 1);
    set.limit = static_cast<unsigned>(random.below(50));
    set.intervals = 5 + static_cast<unsigned>(random.below(20));
    set.weight = random.chance(0.3) ? 1 : 0.01;
    set.lift = pick_Lift(random);
    g_Gcu.f_th0 = set.th0;
    g_Gcu.f_th1 = set.th1;
    g_Gcu.f_phi = set.phi;
    g_Gcu.f_eps = set.eps;
    g_Gcu.n_max = set.limit;
    g_Gcu.n_dim = set.intervals;
    g_ErrGew = set.weight;
    if (random.chance(0.3)) {
      const double win = (set.th1 - set.th0) / random.real(5, 20);
      set.intervals = static_cast<unsigned>(std::ceil((set.th1 - set.th0) / win));
      g_Gcu.f_win = win;
      g_Gcu.n_flg = 1;
    } else {
      g_Gcu.n_flg = 0;
    }
    SCOPED_TRACE(round);
    const reference::TRegionAxes plain = find_4ay(r.req.msh, r.regions, set);
    ASSERT_EQ(get_4ay(&r.req, &r.res), plain.code);
    if (plain.code == 0) r.expect_Frames(plain);
    if (HasFailure()) return;
  }
}

TEST_F(RegionAxes, OfFiveAxes_AreThoseOfAPlainProgram) {
  constexpr uint64_t seed = 20261125;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  uint32_t found = 0;
  for (uint32_t round = 0; round < scale_Cases(15); ++round) {
    TRandomRequest r(random);
    const reference::TAxisSettings set = pick_Window(random);
    const double lift = pick_Lift(random);
    for (size_t k = 0; k < r.regions.size(); k += 2) {
      r.req.roi = r.cav[k];
      const int32_t code = get_5ax(&r.req, &r.res);
      if (code == -11) continue;  // a region of nothing but equal corner indices
      ASSERT_EQ(code, 0);
      ++found;
      ASSERT_TRUE(is_Same(frame_Of(r.res), find_5ax(r.req.msh, r.regions[k], set, lift)))
          << round << ", region " << k;
    }
  }
  EXPECT_GT(found, scale_Cases(35));
}

TEST_F(RegionAxes, InAWindow_AreThoseOfAPlainProgram) {
  constexpr uint64_t seed = 20261126;
  std::printf("seed %llu\n", static_cast<unsigned long long>(seed));
  Random random(seed);
  uint32_t found = 0;
  for (uint32_t round = 0; round < scale_Cases(15); ++round) {
    TRandomRequest r(random);
    const reference::TAxisSettings set = pick_Window(random);
    const reference::TRegionAxes plain = find_5ay(r.req.msh, r.regions, set, pick_Lift(random));
    SCOPED_TRACE(round);
    ASSERT_EQ(get_5ay(&r.req, &r.res), plain.code);
    if (plain.code != 0) continue;
    ++found;
    r.expect_Frames(plain);
    if (HasFailure()) return;
    clr_Res(&r.res);
  }
  EXPECT_GT(found, scale_Cases(5));
}

}  // namespace

}  // namespace undercut::tests
