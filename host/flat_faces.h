// The directions in which the flat faces of a part look.
#pragma once

#include <vector>

#include "geometry.h"

namespace undercut::host {

// Unit normals of those plane directions that have the largest area, at most so many, each with a
// share of the mesh's area of at least `share`; opposite normals are one direction. The largest
// comes first.
std::vector<T3DVEC> list_FaceNormals(const Mesh& mesh, size_t most, double share);

}  // namespace undercut::host
