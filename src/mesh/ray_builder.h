// The build of the tree of rays.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "foundation/values.h"
#include "mesh/ray_nodes.h"

namespace undercut {

// Deeper than any tree is.
inline constexpr uint32_t kMostRayLevels = 28;

inline double max_Abs(const T3DVEC& v) {
  return std::max(std::max(std::fabs(v.x), std::fabs(v.y)), std::fabs(v.z));
}

struct TRayParts {
  std::vector<TRayNode> nodes;  // the root first
  std::vector<TRayLeaf> leaves;
};

// No triangle may have an inverted box. `scale` is a power of two that brings
// the coordinates below 1. Throws std::bad_alloc.
void build_Rays(const T3DMSH& msh, double scale, TRayParts& parts);

}  // namespace undercut
