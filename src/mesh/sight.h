// Which triangles see out of a mesh along a direction: from the centroid of each, lifted along its
// normal, does a ray leave without a hit?
//
// There is no test of orientation. A ray that enters the surface is hit by its own triangle, which
// is how triangles that face away drop out.
#pragma once

#include "mesh/trees.h"

namespace undercut {

// What see_Along finds for a triangle.
inline constexpr uint8_t kSeesAhead = 1;   // along the direction
inline constexpr uint8_t kSeesBehind = 2;  // against it
inline constexpr uint8_t kNoRay = 4;       // two corners are equal, by coordinates: no ray starts

// Where rays start: centroid + lift * unit normal.
struct TRayStarts {
  T3DMSH msh;
  double lift;                  // mm
  const T3DVEC* nml = nullptr;  // a unit normal for each triangle; null: they are computed
};

enum class Ways { kAhead, kBoth };

// sight[i] for the i-th listed triangle, or for triangle i where the list is null. Loops in
// parallel over the list; every entry hangs on its own triangle alone. Throws std::bad_alloc, from
// the calling thread, where a query had no memory; it needs none on meshes other than extremely
// uneven ones. The indices must be in range.
void see_Along(const C3DTriAABBTree& obstacle, const TRayStarts& starts, const T3DVEC& direction,
               Ways ways, const uint32_t* list, uint32_t count, uint8_t* sight);

}  // namespace undercut
