// Grows or shrinks every triangle on its own, from its centroid.
#pragma once

#include "foundation/arrays.h"

namespace undercut {

// A soup with the triangle numbering of the mesh: triangle i has the corners 3 i to 3 i + 2, each
// moved by the distance along the ray from the centroid. A distance above 0 grows; one below 0 that
// would carry a corner beyond the centroid puts it there. A corner on the centroid stays. The
// vertex indices must be in range. False for an empty mesh, one of more than (2^32 - 1) / 3
// triangles, or no memory.
bool tri_Shrink(const T3DMSH& msh, double distance, T3DMSH& out);

}  // namespace undercut
