// How many other triangles share each edge, for all edges of a mesh in linear time.
//
// Walking the triangles at one end of each edge is quadratic where many triangles meet at a vertex.
// Here the triangles at a vertex raise a count at each of their corners, once for all edges that
// begin at it.
#pragma once

#include "mesh/adjacency.h"

namespace undercut {

// Each vertex of a triangle once.
template <typename Action>
void each_Corner(const T3DTRI& t, Action action) {
  action(t.a);
  if (t.b != t.a) action(t.b);
  if (t.c != t.a && t.c != t.b) action(t.c);
}

// How often a vertex occurs among the corners.
inline uint32_t count_Corner(const T3DTRI& t, uint32_t v) {
  return (t.a == v ? 1u : 0u) + (t.b == v ? 1u : 0u) + (t.c == v ? 1u : 0u);
}

// For each edge k, from an accepted vertex p to q, of each accepted triangle t: visit(t, k,
// others), where `others` is the number of entries at p, those of t left out, whose accepted
// triangle contains q. A triangle has as many entries at p as corners there. Edges come by their
// first vertex, then by triangle. `shared` holds a zero for each vertex, before and after.
template <typename AcceptVtx, typename Accept, typename Visit>
void visit_Edges(const T3DMSH& msh, const TAdj& vtx_tri, uint32_t* shared, AcceptVtx accept_vtx,
                 Accept accept, Visit visit) {
  for (uint32_t p = 0; p < msh.n_vtx; ++p) {
    if (!accept_vtx(p)) continue;
    const uint32_t* list = vtx_tri.lists[p];
    const uint32_t count = vtx_tri.counts[p];
    for (uint32_t i = 0; i < count; ++i)
      if (accept(list[i])) each_Corner(msh.tri[list[i]], [&](uint32_t q) { ++shared[q]; });
    for (uint32_t i = 0; i < count; ++i) {
      if ((i > 0 && list[i] == list[i - 1]) || !accept(list[i])) continue;
      const T3DTRI& tri = msh.tri[list[i]];
      const uint32_t own = count_Corner(tri, p);
      for (uint32_t k = 0; k < 3; ++k)
        if (corner(tri, k) == p) visit(list[i], k, shared[corner(tri, k + 1)] - own);
    }
    for (uint32_t i = 0; i < count; ++i)
      each_Corner(msh.tri[list[i]], [&](uint32_t q) { shared[q] = 0; });
  }
}
template <typename Accept, typename Visit>
void visit_Edges(const T3DMSH& msh, const TAdj& vtx_tri, uint32_t* shared, Accept accept,
                 Visit visit) {
  visit_Edges(
      msh, vtx_tri, shared, [](uint32_t) { return true; }, accept, visit);
}

}  // namespace undercut
