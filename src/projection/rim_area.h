// The area whose rim is asked for: what is connected with a start triangle and seen along a
// direction, cleaned by morphology over triangle adjacency (a closing, notches, holes).
#pragma once

#include "foundation/bit_vector.h"
#include "mesh/adjacency.h"
#include "mesh/trees.h"

namespace undercut {

// Where the flood runs.
struct TRimFlood {
  T3DMSH msh;
  T3DVEC direction;  // rays run along it
  double lift;       // mm, of a ray's start along the triangle's normal
  uint32_t start;    // the first triangle
};

// Floods from the start over the triangles that `open` still has. Each one met is taken from
// `open`, and joins `area` if its ray along the direction hits nothing and it does not face away,
// or if two of its corners are equal: such a triangle joins unseen. So a blocked one is not tried
// again from another side. Of the start only the ray is asked. 0; -16 a start with two equal
// corners, -17 one that is not seen; -18 to -20, for the start, and -23, -24 a set or a queue that
// is too small: neither happens if both sets have a bit for each triangle and the queue has room
// for each. The steps -21 and -22 do not fail. Throws std::bad_alloc where a ray has no memory,
// which it needs on extremely uneven meshes only. `queue` is a scratch list.
int32_t flood_Rim(const TRimFlood& flood, const C3DTriAABBTree& tree, const TAdj& tri_tri,
                  CBitVector& open, CBitVector& area, TLst<uint32_t>& queue);

// One ring of dilation or erosion over adjacency, in place: all decisions read the old state. A
// triangle without neighbours stays. False without memory, or for a set without bits.
bool dil_Bits(const TAdj& tri_tri, CBitVector& bits);
bool ero_Bits(const TAdj& tri_tri, CBitVector& bits);

// Sets, in rising order, each clear triangle that has exactly `count` set neighbours at that
// moment, so what is set first counts for the later ones. The flag has no effect; it stays for its
// callers. False for a set without bits.
bool fix_Notch(const TAdj& tri_tri, uint32_t count, bool flag, CBitVector& bits);

// Sets every clear component that touches the area but the largest of these, the first found of
// equals: on a closed mesh that one is taken for the outside. Components are found from the lowest
// triangle up. 0; -1, -2 no table, -3 no bits, -4 no memory; -5 to -8 are not met.
int32_t fill_Holes(const TAdj& tri_tri, CBitVector& bits);

}  // namespace undercut
