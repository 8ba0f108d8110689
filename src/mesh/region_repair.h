// Makes a poor list of triangles into one manifold patch.
#pragma once

#include "foundation/bit_vector.h"
#include "mesh/adjacency.h"

namespace undercut {

// Rejects listed triangles with two equal corners, with an edge that more than two triangles of the
// mesh share (those rejected so far left out) and around vertices where fans touch, keeps the
// largest connected patch of the rest (the first of equals) and compacts the list to it, in its old
// order. `vertices` and `triangles` are scratch, sized to the mesh. 0, or the code of the first
// check or step that failed, -1 to -17; the list is then unchanged. -13 is for an index beyond the
// mesh, -14 to -17 are for memory. If all are rejected, the list ends empty.
int32_t reg_Repair(const T3DMSH& msh, TLst<uint32_t>& lst, CBitVector& vertices,
                   CBitVector& triangles, const TAdj& vtx_tri, const TAdj& tri_tri);

}  // namespace undercut
