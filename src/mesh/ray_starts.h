// Where the rays of triangles start: the centroid, lifted along the unit normal.
#pragma once

#include <cstdint>

#include "foundation/values.h"
#include "mesh/point_range.h"

namespace undercut {

// What is found for a triangle instead of what it sees: two corners are equal, by coordinates, and
// no ray starts.
inline constexpr uint8_t kNoRay = 4;

// centroid + lift * unit normal.
struct TRayStarts {
  T3DMSH msh;
  double lift;                  // mm
  const T3DVEC* nml = nullptr;  // a unit normal for each triangle; null: they are computed
};

// False where no ray starts; org is 0 then.
bool start_Ray(const TRayStarts& starts, uint32_t t, T3DVEC& org);

// The rays of the triangles from `first` to before `end`: fills their entries of `orgs`, 0 where no
// ray starts, and of `no_ray`, kNoRay or 0; the range of the starts that are. start_Rays takes the
// fastest form that the processor has; both give the same bits.
TPointRange start_Rays(const TRayStarts& starts, uint32_t first, uint32_t end, T3DVEC* orgs,
                       uint8_t* no_ray);
TPointRange start_Each(const TRayStarts& starts, uint32_t first, uint32_t end, T3DVEC* orgs,
                       uint8_t* no_ray);

}  // namespace undercut
