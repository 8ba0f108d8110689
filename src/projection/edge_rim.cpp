// The rim of an area along the edges of the mesh: its border as closed curves in the frame's x and
// y. Lengths in mm.
#include "mesh/boundary.h"
#include "projection/rim_request.h"

namespace undercut {

namespace {

// The border of the area as lines of vertices. False for an area without border, or no memory. What
// is left open where the mesh is not a surface counts as closed like the rest.
bool list_Border(const T3DMSH& msh, const CBitVector& area, TArr<TArr<T3DVEC>>& lines) {
  Scoped<TAdj> vtx_tri;
  Scoped<TArr<T3DSGM>> edges;
  Scoped<TArr<TArr<uint32_t>>> loops;
  if (adj_VtxTri(msh, *vtx_tri) < 0 || bnd_Set(msh, *vtx_tri, area, *edges) < 0 ||
      !bnd_Loops(msh, *edges, *loops) || !alloc(lines, loops->count))
    return false;
  for (uint32_t i = 0; i < lines.count; ++i) {
    const TArr<uint32_t>& loop = loops->data[i];
    if (!alloc(lines.data[i], loop.count)) return false;
    for (uint32_t k = 0; k < loop.count; ++k) lines.data[i].data[k] = msh.vtx[loop.data[k]];
  }
  return true;
}

}  // namespace

}  // namespace undercut

int32_t get_Rma(const TUcReq* req, TUcRes* res) {
  using namespace undercut;
  return run_Call([&](CallFrame& frame) {
    const TRimInput in = load_Rim(req, res);
    need_Rim(frame, in);
    CBitVector area;
    flood_Area(frame, in, area);

    Scoped<TArr<TArr<T3DVEC>>> lines;
    frame.need(list_Border(in.msh, area, *lines), -36);
    to_Local(in.frm, *lines);
    const int32_t fitted = fit_Rims(in.curve, *lines);
    frame.need(fitted == 0, fitted);
    res->rma = lines.take();
  });
}
