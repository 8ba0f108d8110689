#include "undercut/rim.h"

#include <algorithm>
#include <cmath>
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

bool mark_Open(const T3DMSH& msh, const TAdj& tri_tri, CBitVector& ends) {
  Scoped<TArr<T3DSGM>> open;
  if (bnd_Adj(msh, tri_tri, nullptr, *open) != 0) return false;
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
  return search_.Build(*flat_) ? 0 : -3;
}

double find_Extent(const T3DMSH& msh) {
  double extent = 0.0;
  for (uint32_t v = 0; v < msh.n_vtx; ++v) {
    const T3DVEC& p = msh.vtx[v];
    const double sum = std::fabs(p.x) + std::fabs(p.y) + std::fabs(p.z);
    if (!(sum <= kAbsent)) return HUGE_VAL;
    extent = std::max(extent, sum);
  }
  return extent;
}

// Let M bound all coordinates in the plane. A computed distance is off by less than 60 times 2^-53
// M (segment_search.cpp says why), that between two places and the sum of both by less than 20
// times. So the radius falls short of the true distance by less than 2e-14 M, and where squares
// underflow by less than 1e-150 mm.
bool is_Ample(double slack, double extent, const T3DFRM& frm) {
  const auto largest = [](const T3DVEC& v) {
    return std::max(std::fabs(v.x), std::max(std::fabs(v.y), std::fabs(v.z)));
  };
  const double axes = std::max(largest(frm.x), largest(frm.y));
  const double most = 4.0 * (extent + largest(frm.org)) * axes;
  return most < 1e140 && slack >= 1e-12 * most + 1e-150;
}

}  // namespace undercut
