#include "undercut/region_axes.h"

#include "foundation/axis_frames.h"

namespace undercut {

TRegionsInput load_Regions(const TUcReq* req, const TUcRes* res) {
  return req && res ? TRegionsInput{req->msh, req->cav} : TRegionsInput{};
}

void need_Regions(CallFrame& frame, const TRegionsInput& in) {
  need_Msh(frame, in.msh, 3);
  frame.need(in.cav.data, -8);
  frame.need(in.cav.capacity, -9);
}

void need_Indices(CallFrame& frame, const TRegionsInput& in) {
  frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
  frame.need(ok_Regions(in.cav, in.msh.n_tri), UNDERCUT_BAD_TRIANGLE);
}

T3DFRM frm_Found(const T3DVEC& centre, double theta, double phi) {
  T3DFRM frm = kIdentity;
  frm_Axis({centre, -sph_ToCar(theta, phi)}, frm);
  return frm;
}

}  // namespace undercut
