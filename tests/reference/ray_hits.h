// hit_Box and hit_Tri as their steps tell them, one after the other.
#pragma once

#include "foundation/primitives.h"

namespace reference {

using namespace undercut;

inline bool hit_Box(const T3DRAY& ray, const C3DAABB& box) {
  const double org[3] = {ray.org.x, ray.org.y, ray.org.z};
  const double dir[3] = {ray.dir.x, ray.dir.y, ray.dir.z};
  const double min[3] = {box.min.x, box.min.y, box.min.z};
  const double max[3] = {box.max.x, box.max.y, box.max.z};
  double tnear = -1.7976931348623157e+308;
  double tfar = 1.7976931348623157e+308;
  for (int axis = 0; axis < 3; ++axis) {
    if (dir[axis] == 0.0) {
      if (org[axis] < min[axis] || org[axis] > max[axis]) return false;
      continue;
    }
    double smaller = (min[axis] - org[axis]) / dir[axis];
    double larger = (max[axis] - org[axis]) / dir[axis];
    if (smaller > larger) {
      const double swap = smaller;
      smaller = larger;
      larger = swap;
    }
    if (smaller > tnear) tnear = smaller;
    if (larger < tfar) tfar = larger;
  }
  return tfar >= tnear && tfar > 0.0;
}

inline T2DVEC project(char axis, const T3DVEC& p) {
  switch (axis) {
    case 'z':
      return {p.x, p.y};
    case 'y':
      return {p.z, p.x};
    default:
      return {p.y, p.z};
  }
}

// The segment against an edge, stretched past it.
inline bool hit_Stretched(const T2DVEC& from, const T2DVEC& to, const T2DVEC& e, const T2DVEC& f) {
  const T2DVEC points[4] = {from, to, e, f};
  double min_x = kAbsent, min_y = kAbsent, max_x = -kAbsent, max_y = -kAbsent;
  for (const T2DVEC& p : points) {
    if (p.x < min_x) min_x = p.x;
    if (p.y < min_y) min_y = p.y;
    if (p.x > max_x) max_x = p.x;
    if (p.y > max_y) max_y = p.y;
  }
  const double ex = max_x - min_x, ey = max_y - min_y;
  const double stretch = std::sqrt(ex * ex + ey * ey) + 1;
  return hit_Seg2(from, from + stretch * unit(to - from), e, f);
}

inline bool hit_Tri(const T3DRAY& ray, const T3DFAC& f) {
  const T3DVEC& org = ray.org;
  const T3DVEC q = org + ray.dir;
  const int s = sgn_Tri3(f, org);
  if (s != 0) {
    const int signs[3] = {sgn_Tri3({org, f.b, f.a}, q), sgn_Tri3({org, f.c, f.b}, q),
                          sgn_Tri3({org, f.a, f.c}, q)};
    for (const int sign : signs) {
      if (s + sign == 0) return false;
    }
    return true;
  }
  const char axis = axis_Tri3(f);
  const T2DVEC a = project(axis, f.a), b = project(axis, f.b), c = project(axis, f.c);
  if (cls_Tri2(a, b, c, project(axis, org)) != '0') return true;
  if (sgn_Tri3(f, q) != 0) return false;
  const T2DVEC from = project(axis, org), to = project(axis, q);
  return hit_Stretched(from, to, a, b) || hit_Stretched(from, to, b, c) ||
         hit_Stretched(from, to, c, a);
}

}  // namespace reference
