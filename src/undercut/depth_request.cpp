#include "undercut/depth_request.h"

#include "foundation/axis_frames.h"
#include "undercut/selection.h"

namespace undercut {

TDepthInput read_Depth(const TUcReq* req, const TUcRes* res) {
  if (!req || !res) return {};
  TDepthInput in = {req->msh, req->axi, req->roi, req->arg, req->msh_b};
  if (!is_Usable(in.msh)) in.msh = {};
  if (!in.shadows.data) in.shadows.count = 0;
  return in;
}

void need_Indices(CallFrame& frame, const TDepthInput& in) {
  frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
  for (uint32_t i = 0; i < in.shadows.count; ++i) {
    const T3DMSH& shadow = in.shadows.data[i];
    frame.need(!is_Usable(shadow) || ok_Vertices(shadow), UNDERCUT_BAD_VERTEX);
  }
  frame.need(ok_Triangles(in.roi, in.msh.n_tri), UNDERCUT_BAD_TRIANGLE);
}

void need_Axes(CallFrame& frame, const TDepthInput& in, TArr<T3DMAT>& axes) {
  const int32_t framed = mat_Axes(in.axi, axes);
  frame.need(framed == 0, framed);
}

void need_Selection(CallFrame& frame, const TDepthInput& in, CBitVector& sel) {
  frame.at(-8);  // what curves need beside their own codes
  const int32_t selected = sel_Bits(in.msh, in.roi, in.arg, sel);
  frame.need(selected == 0, selected);
}

}  // namespace undercut
