// The walk of a ray through the tree of rays.
#pragma once

#include "foundation/values.h"
#include "mesh/ray_builder.h"

namespace undercut {

// A ray as the walk needs it, scaled as the tree is. ray_tree.cpp tells what the numbers for boxes
// are and why they suffice, ray_walk.inc those for triangles.
struct TRayWay {
  T3DRAY ray;  // as it was given

  // For boxes: the row of bounds where the ray enters a slab (near ^ 1: where it leaves), one over
  // its direction, whose longest component is 1, and org times that, moved to the safe side.
  uint32_t near[3];
  float inverse[3], near_org[3], far_org[3];

  // For triangles: org in single precision and what that leaves, more than that is off by, and
  // (org + dir) - org, whose longest component is 1.
  float org[3], rest[3], slack, along[3];
  bool keeps_Direction;  // `along` is the direction, but for 2^-32
};

// Whether a triangle passes hit_Box with its own box and hit_Tri. walk_Rays takes the fastest form
// that the processor has.
bool walk_Rays(const TRayParts& parts, const T3DMSH& msh, const TRayWay& way);
bool walk_Portable(const TRayParts& parts, const T3DMSH& msh, const TRayWay& way);

// Whether the triangle passes hit_Tri and hit_Box with its own box: what decides where bounds
// don't. The triangle first: nearly every box that comes this far would pass.
[[gnu::noinline]] bool hit_Own(const T3DRAY& ray, const T3DMSH& msh, uint32_t triangle);

}  // namespace undercut
