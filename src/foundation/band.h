// The band that a tool follows: a slab round a plane that holds two directions.
#pragma once

#include "foundation/primitives.h"

namespace undercut {

// The slab round the plane through ray's org that holds ray's direction and that of the pose. Its
// normal is not made a unit vector: the band is narrower than the width by the sine of the angle
// between the two, and holds everything where they are parallel.
inline T3DSLB make_Band(const T3DRAY& ray, const T3DVEC& pose, double width) {
  const T3DVEC u = unit(ray.dir), v = unit(pose);
  const double half = width * 0.5;
  return {{cross(u, v), u, v, ray.org}, -half, half};
}

}  // namespace undercut
