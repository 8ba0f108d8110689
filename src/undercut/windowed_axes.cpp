// Five axes: the best direction for each region within a window of directions, nxn_Box. A scan of
// the window, then a downhill simplex that the rating keeps inside. Angles in degrees.
#include "interface/parameters.h"
#include "undercut/centres.h"
#include "undercut/region_axes.h"
#include "undercut/search.h"

namespace undercut {

namespace {

// A bound that is not a number makes the window empty.
void need_Window(CallFrame& frame, const TNxnPar& nxn) {
  frame.need(nxn.box[0] < nxn.box[2], -10);
  frame.need(nxn.box[1] < nxn.box[3], -11);
}

bool is_Inside(const TAmoPar& amo, const TNxnPar& nxn) {
  return pos_Box(amo.box_a, nxn.box) == '1' && pos_Box(amo.box_b, nxn.box) == '1' &&
         pos_Box(amo.box_c, nxn.box) == '1';
}

// The start simplex. Where it does not fit into the window, the radius shrinks to half the distance
// of the start from the window. As the start lies in the window, that is 0: the simplex collapses,
// and since the radius is not restored, so does that of every later region. Hosts rely on the scan
// points that they get from there on.
void start_Simplex(TAmoPar& amo, const TNxnPar& nxn, const T2DVEC& start, double& radius) {
  ini_Simplex(amo, start, radius);
  if (is_Inside(amo, nxn)) return;
  radius = dst_Box(start, nxn.box) * 0.5;
  ini_Simplex(amo, start, radius);
}

}  // namespace

}  // namespace undercut

int32_t get_5ay(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const CUCsPar ucs = g_UCs;
    TAmoPar amo = g_Amo;
    const TNxnPar nxn = g_Nxn;
    const TRegionsInput in = load_Regions(req, res);
    need_Regions(frame, in);
    need_Window(frame, nxn);
    need_Indices(frame, in);

    C5axUcErr err;
    err.set_Gew(g_ErrGew);
    err.set_Off(ucs.f_tol);
    err.set_Box(nxn.box);
    err.set_UseBox(true);
    frame.need(err.ini_Err(in.msh), -12);
    Scoped<TArr<T3DFRM>> frames;
    frame.need(alloc(*frames, in.cav.capacity), -13);

    double radius = amo.f_dxy;
    for (uint32_t k = 0; k < frames->count; ++k) {
      const TLstU32& region = in.cav.data[k];
      err.set_Sel(region);
      CCountedErr counted(err);
      const TAmoRes scanned = scan_Nxn(counted, nxn);
      frame.need(scanned.theta != kAbsent, -14);
      frame.need(scanned.phi != kAbsent, -15);
      const T2DVEC start = {scanned.theta, scanned.phi};
      frame.need(pos_Box(start, nxn.box) != '0', -16);
      start_Simplex(amo, nxn, start, radius);
      const TAmoRes found = run_Amo(counted, amo);
      frames->data[k] = frm_Found(mean_Centroids(in.msh, region), found.theta, found.phi);
      if (ucs.b_sta) print_Search("get_5ay", counted.count(), found);
    }
    res->n_lst = frames->count;
    res->lst = frames.take().data;
  });
}
