#include "undercut/centres.h"

namespace undercut {

namespace {

void add_Point(T3DVEC& mean, uint32_t i, const T3DVEC& point) {
  const double before = i, all = before + 1.0;
  mean = (before / all) * mean + (1.0 / all) * point;
}

}  // namespace

T3DVEC mean_Vertices(const T3DMSH& msh) {
  T3DVEC mean = {};
  for (uint32_t v = 0; v < msh.n_vtx; ++v) add_Point(mean, v, msh.vtx[v]);
  return mean;
}

T3DVEC mean_Centroids(const T3DMSH& msh, const TLst<uint32_t>& lst) {
  if (!lst.data) return mean_Vertices(msh);
  T3DVEC mean = {};
  for (uint32_t i = 0; i < lst.count; ++i) add_Point(mean, i, cen_Tri(get_Fac(msh, lst.data[i])));
  return mean;
}

}  // namespace undercut
