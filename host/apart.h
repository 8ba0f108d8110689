// Gives the triangles that were set apart back to the regions around them.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry.h"

namespace undercut::host {

// `apart` lists triangles; those that share edges form groups. A group joins a region where every
// other triangle that shares an edge with it lies in that one region. `region_of` holds for each
// triangle a region from 1, 0 for none, -1 for outside, and is changed for the groups that join.
void join_Apart(const Mesh& mesh, const std::vector<uint32_t>& apart,
                std::vector<int32_t>& region_of);

}  // namespace undercut::host
