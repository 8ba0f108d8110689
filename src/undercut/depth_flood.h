// The distances of the triangles of a patch from its rim, in mm, from triangle to neighbour.
//
// The first triangle of a patch walks along the whole rim. By the triangle inequality the rim lies
// no farther from a neighbour than this distance plus that between the two, so each of the others
// asks for what lies within a small circle. Where the slack added to it is ample (is_Ample), that
// gives every triangle its distance from the whole rim, and the triangles are measured on their own
// instead (patch_rims.h); where it is not, what a circle misses shows in the result, and so does
// the order of the flood.
#pragma once

#include "foundation/bit_vector.h"
#include "foundation/queue.h"
#include "mesh/adjacency.h"
#include "undercut/rim.h"

namespace undercut {

struct TFlood {
  T3DMSH msh;
  const TAdj& tri_tri;
  T3DFRM frm;           // distances are measured across its Z axis
  double slack;         // added to each circle's radius, so that rounding loses nothing, in mm
  CBitVector& waiting;  // by triangle
  CQueue& queue;        // empty, with a node for each triangle
  double* rho;          // by triangle: the distances
};

// The centroid of a triangle, across the Z axis of the frame.
T2DVEC get_Place(const T3DMSH& msh, const T3DFRM& frm, uint32_t t);

// Floods from each triangle of the list, in list order, whose bit is still set; clears the bits of
// all that it reaches. Where the circle holds no part of the rim (a slack below 0, coordinates that
// are not finite) kAbsent is stored, and a line on standard error says so. 0; -1 clearing the bit
// of a seed, -2 pushing it, -3 popping, -4 clearing the bit of a neighbour, -5 pushing it. Throws
// std::bad_alloc where a query had no memory; it needs none on rims other than extremely uneven
// ones.
int32_t flood_Depth(const TFlood& flood, CRim& rim, const TLst<uint32_t>& list);

}  // namespace undercut
