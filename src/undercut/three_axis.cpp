// The axis along whose two ends a three-axis machine reaches the most of a mesh, from a scan of the
// sphere or from a given start.
#include "foundation/axis_frames.h"
#include "interface/call_frame.h"
#include "undercut/axis_sign.h"
#include "undercut/centres.h"
#include "undercut/search.h"

namespace undercut {

namespace {

// Private copies of what a call reads.
struct TAxisInput {
  T3DMSH msh = {};
  T2DVEC start = {};
  TAmoPar amo = g_Amo;
  double weight = g_ErrGew;
  bool prints = g_UCs.b_sta != 0;

  TAxisInput(const TUcReq* req, const TUcRes* res) {
    if (!req || !res) return;
    msh = req->msh;
    start = {req->f_a, req->f_b};
  }
};

T3DFRM frame_Axis(CallFrame& frame, C3axUcErr& err, const T3DMSH& msh, const T3DVEC& org,
                  const TAmoRes& best) {
  CBitVector seen;
  frame.need(seen.init(msh.n_tri), -12);
  frame.at(-13);
  frame.need(err.get_Vis(best.theta, best.phi, seen) == 0, -13);

  const T3DVEC axis = -sph_ToCar(best.theta, best.phi);
  T3DFRM frm;
  frame.need(frm_Axis({org, axis}, frm), -14);
  return is_Reversed(msh, frm, seen) ? frm_Ray({org, -axis}) : frm;
}

// find_Start(err) is where the simplex starts.
template <typename FindStart>
T3DFRM search_Axis(CallFrame& frame, const char* name, TAxisInput& in, FindStart find_Start) {
  need_Msh(frame, in.msh, 3);
  frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
  const T3DVEC org = mean_Vertices(in.msh);

  C3axUcErr err;
  err.set_Gew(in.weight);
  frame.need(err.ini_Err(in.msh), -8);

  CCountedErr counted(err);
  ini_Simplex(in.amo, find_Start(counted), in.amo.f_dxy);
  const TAmoRes best = run_Amo(counted, in.amo);
  if (in.prints) print_Search(name, counted.count(), best);

  return frame_Axis(frame, err, in.msh, org, best);
}

}  // namespace

}  // namespace undercut

int32_t get_3ax(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    TAxisInput in(req, res);
    const TNxnPar nxn = g_Nxn;
    res->frm_a = search_Axis(frame, "get_3ax", in, [&](CXaxUcErr& err) -> T2DVEC {
      const TAmoRes best = scan_Nxn(err, nxn);
      return {best.theta, best.phi};
    });
  });
}

int32_t get_Amo(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    TAxisInput in(req, res);
    res->frm_a = search_Axis(frame, "get_Amo", in, [&in](const CXaxUcErr&) { return in.start; });
  });
}
