// Where a line meets a mesh.
#pragma once

#include "mesh/trees.h"

namespace undercut {

// The crossing of the line with the mesh of the tree that lies nearest to the ray's org, before it
// or behind, among the triangles that QueryLine lists and `wanted` accepts; of equally near ones
// the first listed. `hits` is scratch with room for every triangle. False, and nothing stored, for
// none; a distance that is not below the largest double is none.
template <typename Wanted>
bool near_Hit(const C3DTriAABBTree& tree, const T3DRAY& ray, TLst<uint32_t>& hits, Wanted wanted,
              T3DVEC& point, double& distance) {
  hits.count = 0;
  tree.QueryLine(ray, hits);
  double best = kAbsent;
  for (uint32_t i = 0; i < hits.count; ++i) {
    T3DVEC p;
    if (!wanted(hits.data[i]) || !cut_Tri(ray, get_Fac(tree.mesh(), hits.data[i]), p)) continue;
    const double d = dst(p, ray.org);
    if (!(d < best)) continue;
    best = d;
    point = p;
  }
  distance = best;
  return best < kAbsent;
}

}  // namespace undercut
