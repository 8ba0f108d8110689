// Connected components of a set of triangles, joined over shared edges.
#pragma once

#include "foundation/bit_vector.h"
#include "mesh/adjacency.h"

namespace undercut {

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
