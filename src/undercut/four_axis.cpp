// Four axes: the best tilt for each region, in a plane that a single rotary axis reaches. A scan of
// the range at equal steps, then a golden section of one step to either side of the best tilt.
// Angles in degrees.
//
// The golden section takes the rating as having one minimum in its bracket and does not compare
// with the scan: where it has several, the tilt that is handed out may rate worse than the scan's
// best.
#include <algorithm>
#include <cmath>

#include "interface/parameters.h"
#include "undercut/centres.h"
#include "undercut/region_axes.h"
#include "undercut/search.h"

namespace undercut {

namespace {

constexpr double kFewestIntervals = 5;
// A finer scan says nothing more. The limit keeps a vanishing step from asking for a count that
// would not end, or that no integer holds.
constexpr double kMostIntervals = 100000;

// A limit that is not a number fails the check that it stands in first.
void need_Range(CallFrame& frame, const TGcuPar& par) {
  frame.need(par.f_th1 > par.f_th0, -10);
  frame.need(par.f_th0 >= -360.0, -11);
  frame.need(par.f_th1 <= 360.0, -12);
  frame.need(par.f_phi >= 0.0, -13);
  frame.need(par.f_phi <= 180.0, -14);
}

uint32_t count_Intervals(CallFrame& frame, const TGcuPar& par) {
  double wanted = par.n_dim;
  if (par.n_flg != 0) {
    frame.need(par.f_win > 0.0, -16);
    wanted = std::ceil((par.f_th1 - par.f_th0) / par.f_win);
  }
  frame.need(wanted >= kFewestIntervals, -17);
  return static_cast<uint32_t>(std::min(wanted, kMostIntervals));
}

// Sets the bracket one step round the best tilt of the scan, on the side of the range alone where
// that is one of its ends. False where nothing rates below kAbsent.
bool scan_Tilts(CXaxUcErr& err, TGcuPar& par, uint32_t intervals) {
  const double step = (par.f_th1 - par.f_th0) / intervals;
  double best = kAbsent;
  uint32_t best_k = 0;
  for (uint32_t k = 0; k <= intervals; ++k) {
    const double rating = rate_Tilt(err, k * step + par.f_th0, par.f_phi);
    if (rating < best) {
      best = rating;
      best_k = k;
    }
  }
  const double tilt = best_k * step + par.f_th0;
  par.f_th0_s = best_k == 0 ? tilt : tilt - step;
  par.f_th1_s = best_k == intervals ? tilt : tilt + step;
  return best < kAbsent;
}

}  // namespace

}  // namespace undercut

int32_t get_4ay(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const CUCsPar ucs = g_UCs;
    TGcuPar gcu = g_Gcu;
    const TRegionsInput in = load_Regions(req, res);
    need_Regions(frame, in);
    need_Range(frame, gcu);
    need_Indices(frame, in);

    C5axUcErr err;
    err.set_Gew(g_ErrGew);
    err.set_Off(ucs.f_tol);
    err.set_UseBox(false);
    frame.need(err.ini_Err(in.msh), -15);
    const uint32_t intervals = count_Intervals(frame, gcu);
    Scoped<TArr<T3DFRM>> frames;
    frame.need(alloc(*frames, in.cav.capacity), -18);

    for (uint32_t k = 0; k < frames->count; ++k) {
      const TLstU32& region = in.cav.data[k];
      err.set_Sel(region);
      CCountedErr counted(err);
      frame.need(scan_Tilts(counted, gcu, intervals), -19);
      uint32_t n_itr = 0;
      const TGldRes found = run_Gld(counted, gcu, n_itr);
      double theta, phi;
      fold_Tilt(found.tilt, gcu.f_phi, theta, phi);
      frames->data[k] = frm_Found(mean_Centroids(in.msh, region), theta, phi);
      if (ucs.b_sta) print_Search("get_4ay", counted.count(), {theta, phi, found.rating});
    }
    res->n_lst = frames->count;
    res->lst = frames.take().data;
  });
}
