// Several meshes as one.
#pragma once

#include "foundation/arrays.h"

namespace undercut {

// Vertices and triangles in the order of the meshes, indices moved up by the vertices before them.
// Meshes without triangles add nothing. False if none has any, for more than 2^32 - 1 vertices or
// triangles in all, or no memory.
bool join_Meshes(const TArr<T3DMSH>& meshes, T3DMSH& out);

}  // namespace undercut
