#include "undercut/rim.h"

#include <utility>

#include "mesh/boundary.h"

namespace undercut {

namespace {

// Each edge with two points of its own: the polyline costs what the edges cost, however large the
// mesh is.
bool make_Polyline(const T3DMSH& msh, const TArr<T3DSGM>& edges, T3DPOL& pol) {
  if (edges.count > kNone / 2 || !alloc_Pol(pol, 2 * edges.count, edges.count)) return false;
  for (uint32_t i = 0; i < edges.count; ++i) {
    pol.pnt[2 * i] = msh.vtx[edges.data[i].a];
    pol.pnt[2 * i + 1] = msh.vtx[edges.data[i].b];
    pol.sgm[i] = {2 * i, 2 * i + 1};
  }
  return true;
}

}  // namespace

bool mark_Open(const T3DMSH& msh, const TAdj& vtx_tri, CBitVector& ends) {
  Scoped<TArr<T3DSGM>> open;
  if (bnd_All(msh, vtx_tri, *open) != 0) return false;
  for (uint32_t i = 0; i < open->count; ++i) {
    ends.set(open->data[i].a);
    ends.set(open->data[i].b);
  }
  return true;
}

void drop_Open(TArr<T3DSGM>& edges, const CBitVector& ends) {
  for (uint32_t i = 0; i + 1 < edges.count;) {
    T3DSGM& edge = edges.data[i];
    if (ends.test(edge.a) && ends.test(edge.b))
      std::swap(edge, edges.data[--edges.count]);
    else
      ++i;
  }
}

int32_t CRim::Build(const T3DMSH& msh, const TArr<T3DSGM>& edges, const T3DFRM& frm) {
  Scoped<T3DPOL> pol;
  if (!make_Polyline(msh, edges, *pol)) return -1;
  to_Local(frm, pol->pnt, pol->n_pnt);
  if (!flat_Pol(*pol, *flat_)) return -2;
  return tree_.Build(*flat_) && alloc(*found_, flat_->n_sgm) ? 0 : -3;
}

}  // namespace undercut
