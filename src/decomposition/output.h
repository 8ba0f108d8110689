// What a finished region of interest hands to the host: triangles, axes and frames of its regions.
//
// Entry k of the three lists belongs to one region: all three pass over region 0 and empty regions.
#pragma once

#include <vector>

#include "decomposition/map.h"
#include "mesh/trees.h"

namespace undercut {

// Each empties the slot and fills it, from the given regions or, for null, from all of the map,
// unsorted. False for no region at all or no memory.
// Triangles: walking the region's list, so the last one joined comes first.
bool wrt_Tri(const CMap& map, TLst<TLst<uint32_t>>& slot, const std::vector<TUcRef>* regions);
// Axes: the region's centre, and the opposite of its axis as a unit vector.
bool wrt_Axi(const CMap& map, TLst<T3DRAY>& slot, const std::vector<TUcRef>* regions);
// Frames: the axis frame.
bool wrt_Frm(const CMap& map, TLst<T3DFRM>& slot, const std::vector<TUcRef>* regions);

// Where the line of a ray meets a region nearest to the ray's start; the start itself if it misses.
// False for an unusable mesh, with `point` unwritten. `scratch` is sized for all triangles.
bool hit_Uca(const CMap& map, const C3DTriAABBTree& tree, int32_t id, const T3DRAY& ray,
             TLst<uint32_t>& scratch, T3DVEC& point);

}  // namespace undercut
