// Boundary edges of a mesh or of a set of its triangles, and their chains.
//
// An edge keeps the orientation of the triangle it comes from: corners ab, bc, ca.
#pragma once

#include "foundation/bit_vector.h"
#include "mesh/adjacency.h"

namespace undercut {

// Edges that no second triangle shares. 0; -1 no triangle array, -2 no triangles, -3 no table,
// -4 no memory.
int32_t bnd_All(const T3DMSH& msh, const TAdj& vtx_tri, TArr<T3DSGM>& out);

// Bit k for edge k of a triangle: no neighbour for which accept(neighbour) holds shares it. By the
// table of neighbours, so one triangle knows without the others.
template <typename Accept>
uint8_t find_Open(const T3DMSH& msh, const TAdj& tri_tri, uint32_t t, Accept accept) {
  unsigned open = 7;
  for (uint32_t i = 0; i < tri_tri.counts[t] && open; ++i) {
    const uint32_t n = tri_tri.lists[t][i];
    if (!accept(n)) continue;
    const bool a = has_Vtx(msh.tri[n], msh.tri[t].a), b = has_Vtx(msh.tri[n], msh.tri[t].b);
    const bool c = has_Vtx(msh.tri[n], msh.tri[t].c);
    open &= ~((a && b ? 1u : 0u) | (b && c ? 2u : 0u) | (c && a ? 4u : 0u));
  }
  return static_cast<uint8_t>(open);
}

// How many bits such a mask has. Without an instruction of newer processors std::popcount is a
// call.
inline uint32_t count_Open(uint32_t open) { return (open & 1u) + (open >> 1 & 1u) + (open >> 2); }

// Edges of the triangles of a set that no second triangle of the set shares. Codes as bnd_All.
int32_t bnd_Set(const T3DMSH& msh, const TAdj& vtx_tri, const CBitVector& set, TArr<T3DSGM>& out);

// bnd_Set by the table of neighbours, in parallel; the whole mesh where there is no set. The table
// must be there. Codes as bnd_All.
int32_t bnd_Adj(const T3DMSH& msh, const TAdj& tri_tri, const CBitVector* set, TArr<T3DSGM>& out);

// bnd_Set of the listed triangles, edge by edge in the same order, at the cost of the list instead
// of the mesh: for patch after patch of a large mesh. The list holds each triangle once, in any
// order, all in range. `number` holds a zero for each vertex, before and after. Codes as bnd_All;
// -3 for a list without array.
int32_t bnd_Lst(const T3DMSH& msh, const TLst<uint32_t>& lst, uint32_t* number, TArr<T3DSGM>& out);

// bnd_Set with a table of its own; triangles with two equal corner indices count on neither side.
// Codes as bnd_All.
int32_t bnd_Own(const T3DMSH& msh, const CBitVector& set, TArr<T3DSGM>& out);

// For each listed triangle and each of its neighbours outside the set, their first common edge. A
// neighbour that shares two edges is listed twice and gives the first of them twice. Codes as
// bnd_All; -3 also for a list without array, or with an index beyond the mesh.
int32_t bnd_Out(const T3DMSH& msh, const TAdj& tri_tri, const CBitVector& set,
                const TLst<uint32_t>& lst, TArr<T3DSGM>& out);

// Chains edges, in their direction, into lists of vertices: open chains first, by rising start,
// then closed ones, whose first vertex is not repeated. False for an empty list or no memory.
bool bnd_Loops(const T3DMSH& msh, const TArr<T3DSGM>& edges, TArr<TArr<uint32_t>>& out);

}  // namespace undercut
