// A ray against a box and against a triangle: the two tests that nearly all of the library's time
// is spent in, inline for that reason.
//
// The box test is the slab method (T. Kay, J. Kajiya, Ray Tracing Complex Scenes, 1986), the
// triangle test compares the signs of tetrahedra. Both are straight lines of arithmetic: about
// every second early exit would be guessed wrongly by the processor, which costs more than it
// saves. Their answers are those of the steps written out in full in tests/reference/ray_hits.h,
// also for coordinates that are not numbers.
#pragma once

#include "foundation/box.h"
#include "foundation/values.h"

namespace undercut {

inline int sgn(double v) { return 0 > v ? -1 : v > 0 ? 1 : 0; }

// The second value wins where one of the two is not a number: each maps to one instruction.
inline double lower_Of(double a, double b) { return a < b ? a : b; }
inline double upper_Of(double a, double b) { return a > b ? a : b; }

// One axis of hit_Box: narrows the range of the ray to the slab. False for a ray along the slab and
// outside it, bounds inclusive. A quotient that is not a number narrows nothing.
inline bool cut_Slab(double org, double dir, double low, double high, double& near, double& far) {
  if (dir == 0.0) [[unlikely]] {
    return !((org < low) | (org > high));
  }
  const double t_low = (low - org) / dir;
  const double t_high = (high - org) / dir;
  near = upper_Of(lower_Of(t_high, t_low), near);
  far = lower_Of(upper_Of(t_low, t_high), far);
  return true;
}

// A ray against a box, bounds inclusive; false for a box wholly behind org.
inline bool hit_Box(const T3DRAY& ray, const C3DAABB& box) {
  double near = -kAbsent, far = kAbsent;
  bool within = cut_Slab(ray.org.x, ray.dir.x, box.min.x, box.max.x, near, far);
  within &= cut_Slab(ray.org.y, ray.dir.y, box.min.y, box.max.y, near, far);
  within &= cut_Slab(ray.org.z, ray.dir.z, box.min.z, box.max.z, near, far);
  return within & (far >= near) & (far > 0.0);
}

// hit_Tri for an org in the plane of the triangle.
bool hit_TriFlat(const T3DRAY& ray, const T3DFAC& f);

// A ray against a triangle: does it cross at org + t dir with t > 0? One with a coordinate that is
// not a number is hit by every ray, and so is a degenerate one, save where two sums of one value
// round apart. A ray through a shared edge hits both triangles.
//
// The side of org against the triangle is compared with the sides of org + dir against the three
// triangles of org and an edge: the ray misses if any is opposite. The difference to org + dir is
// taken from that point as it rounds, not from dir.
// Inlined by force: the corners then stay in registers, which halves the time of a ray that passes
// thousands of needles.
[[gnu::always_inline]] inline bool hit_Tri(const T3DRAY& ray, const T3DFAC& f) {
  const T3DVEC a = f.a - ray.org, b = f.b - ray.org, c = f.c - ray.org;
  const T3DVEC d = (ray.org + ray.dir) - ray.org;
  const double away = dot(cross(f.b - f.a, f.c - f.a), a);  // the side of org with its sign turned
  const double ab = dot(cross(b, a), d);
  const double bc = dot(cross(c, b), d);
  const double ca = dot(cross(a, c), d);
  const bool above = away < 0.0;
  const bool below = away > 0.0;
  if (!(above | below)) [[unlikely]] {
    return hit_TriFlat(ray, f);
  }
  const bool any_below = (ab < 0.0) | (bc < 0.0) | (ca < 0.0);
  const bool any_above = (ab > 0.0) | (bc > 0.0) | (ca > 0.0);
  return !((above & any_below) | (below & any_above));
}

}  // namespace undercut
