// Splits long edges, so that the regions of a coarse mesh can end inside its large triangles.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry.h"

namespace undercut::host {

struct Refined {
  Mesh mesh;                     // no edge longer than asked
  std::vector<uint32_t> origin;  // for each of its triangles the one it is a piece of, ascending
};

// Splits every edge longer than `max_edge` at its middle, for all triangles at it alike, and again
// until none is left. The old vertices keep their numbers. Throws UsageError where the result would
// have too many triangles.
Refined refine_Mesh(const Mesh& mesh, double max_edge);

}  // namespace undercut::host
