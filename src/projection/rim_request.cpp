#include "projection/rim_request.h"

#include "interface/parameters.h"
#include "projection/rim_area.h"

namespace undercut {

namespace {

void clean_Area(CallFrame& frame, const TAdj& tri_tri, CBitVector& area) {
  frame.need(dil_Bits(tri_tri, area) && ero_Bits(tri_tri, area), -25);
  frame.need(fix_Notch(tri_tri, 2, true, area), -26);
  // Once more on purpose: what is set first can leave new notches behind it.
  frame.need(fix_Notch(tri_tri, 2, true, area), -27);
  frame.need(fill_Holes(tri_tri, area) == 0, -28);
}

}  // namespace

TRimInput load_Rim(const TUcReq* req, const TUcRes* res) {
  if (!req || !res) return {};
  const CUCsPar par = g_UCs;
  return {req->msh,
          req->roi,
          req->frm,
          req->n_cnt,
          req->p_a,
          par.f_tol,
          {par.f_gew, par.f_res, par.f_err}};
}

void need_Rim(CallFrame& frame, const TRimInput& in) {
  need_Msh(frame, in.msh);
  frame.need(in.roi.data, -5);
  frame.need(in.roi.count, -6);
}

void need_RimIndices(CallFrame& frame, const TRimInput& in) {
  frame.need(ok_Vertices(in.msh), UNDERCUT_BAD_VERTEX);
  frame.need(ok_Triangles(in.roi, in.msh.n_tri), UNDERCUT_BAD_TRIANGLE);
}

void flood_Area(CallFrame& frame, const TRimInput& in, CBitVector& area) {
  frame.need(in.start < in.msh.n_tri, -9);
  need_RimIndices(frame, in);
  CBitVector open;
  frame.need(open.from_Lst(in.roi, in.msh.n_tri), -10);
  frame.need(area.init(in.msh.n_tri), -11);
  frame.need(open.test(in.start), -12);
  Scoped<TLst<uint32_t>> queue;
  frame.need(alloc(*queue, in.msh.n_tri), -13);
  C3DTriAABBTree tree;
  frame.need(tree.BuildRays(in.msh), -14);
  Scoped<TAdj> tri_tri;
  frame.need(adj_TriTri(in.msh, *tri_tri) == 0, -15);
  const TRimFlood flood = {in.msh, -in.frm.z, in.lift, in.start};
  const int32_t flooded = flood_Rim(flood, tree, *tri_tri, open, area, *queue);
  frame.need(flooded == 0, flooded);
  clean_Area(frame, *tri_tri, area);
}

}  // namespace undercut
