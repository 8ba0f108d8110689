// The order in which a tile of a sweep is answered.
//
// Rays close to one another share a group, so that few triangles lie near any of it. Where many
// layers lie behind one another depth tells more than place: then rays at one depth share a group,
// and triangles stand nearest first, since the nearest ones hit. An order, no more: answers don't
// hang on it.
#pragma once

#include "mesh/sweep_lanes.h"

namespace undercut {

inline constexpr uint32_t kMostRays = 1024;
inline constexpr uint32_t kMostGroups = kMostRays / kGroup;

// Rays of one tile that run the same way.
struct TTileRays {
  uint32_t count = 0;
  float way = 0;
  uint32_t ray[kMostRays];
  alignas(64) float x[kMostRays];  // the last is repeated up to a whole group
  alignas(64) float y[kMostRays];
  alignas(64) float z[kMostRays];

  TGroup group(uint32_t first) const { return {x + first, y + first, z + first, way}; }
};

// Where all rays of a sweep start, and their spots (see TTiles).
struct TRayPoints {
  const float *x, *y, *z;
  const uint32_t* spot;
};

// Fills out.ray and the places with the listed rays, at most kMostRays; out.way is given.
void order_Rays(const TRayPoints& from, const uint32_t* list, uint32_t count, bool by_depth,
                TTileRays& out);

// Sorts triangles from the first that rays of a way meet to the last, about.
void order_Triangles(const TFlatMesh& mesh, float way, uint32_t count, uint32_t* ids);

}  // namespace undercut
