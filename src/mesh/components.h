// Connected components of a set of triangles, joined over shared edges.
#pragma once

#include "foundation/bit_vector.h"
#include "mesh/adjacency.h"

namespace undercut {

// Components one after the other, in the order of their lowest triangle, each as the breadth-first
// search found it, its lowest triangle first.
struct TComponents {
  Scoped<TArr<uint8_t>> waiting;  // by triangle: in the set and not found yet; all zero at the end
  Scoped<TArr<uint32_t>> order, starts;

  uint32_t count() { return starts->count; }
  uint32_t first(uint32_t i) { return starts->data[i]; }
  uint32_t end(uint32_t i) { return i + 1 < starts->count ? starts->data[i + 1] : order->count; }
};

// Searches a set of as many bits as there are triangles. False without memory.
bool find_Components(const TAdj& tri_tri, const CBitVector& set, TComponents& out);

// The components in the order of their lowest triangle. Each list begins with the triangle that the
// breadth-first search found last and ends with its seed. An empty set gives no list and true;
// false for an empty mesh, a set of another size, or no memory.
bool cmp_Adj(const T3DMSH& msh, const TAdj& tri_tri, const CBitVector& set,
             TLst<TLst<uint32_t>>& out);
bool cmp_Own(const T3DMSH& msh, const CBitVector& set, TLst<TLst<uint32_t>>& out);

// Flags (one bit for each vertex) the vertices with an edge of more than two triangles, and those
// of triangles with two equal corner indices. Fans that touch only in a vertex do not flag it.
// False for an empty mesh, no table, or no memory.
bool vtx_Bow(const T3DMSH& msh, CBitVector& vertices, const TAdj& vtx_tri);

}  // namespace undercut
