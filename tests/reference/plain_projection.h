// Points and lines onto a mesh by loops over all triangles: no tree, and every radius in turn. And
// a second opinion on where a line crosses a mesh, by another method in extended precision.
#pragma once

#include <vector>

#include "tests/reference/plain_rays.h"
#include "tests/reference/second_rays.h"

namespace reference {

// A distance of kAbsent stands for no crossing; the point is then org.
struct TCross {
  T3DVEC point;
  double distance;
};

inline TCross cross_Line(const T3DMSH& msh, const T3DRAY& ray) {
  TCross best = {ray.org, undercut::kAbsent};
  for (const uint32_t t : on_Line(msh, ray)) {
    T3DVEC p;
    if (!undercut::cut_Tri(ray, undercut::get_Fac(msh, t), p)) continue;
    const double distance = undercut::len(p - ray.org);
    if (distance < best.distance) best = {p, distance};
  }
  return best;
}

struct TRadii {
  double off, inc, lim;
};

// The triangles that the first radius finds that finds any.
inline std::vector<uint32_t> near_Line(const T3DMSH& area, const T3DRAY& line,
                                       const TRadii& radii) {
  std::vector<uint32_t> found;
  for (double radius = radii.off; radius < radii.lim && found.empty(); radius += radii.inc)
    for (uint32_t t = 0; t < area.n_tri; ++t)
      if (undercut::hit_CylTri({{{}, {}, line.dir, line.org}, radius}, undercut::get_Fac(area, t)))
        found.push_back(t);
  return found;
}

inline T3DVEC to_Area(const T3DMSH& area, const T3DRAY& line, const TRadii& radii) {
  double best = undercut::kAbsent;
  T3DVEC result = line.org;
  for (const uint32_t t : near_Line(area, line, radii)) {
    const undercut::T3DFAC f = undercut::get_Fac(area, t);
    const T3DVEC away = (f.a + f.b + f.c) / 3.0 - line.org;
    const double height = undercut::dot(away, line.dir);
    const double distance = undercut::len(away - height * line.dir);
    if (distance < best) {
      best = distance;
      result = height * line.dir + line.org;
    }
  }
  return result;
}

inline T3DVEC onto_Mesh(const T3DMSH& msh, const T3DRAY& line, double tolerance) {
  const TCross minus = cross_Line(msh, {line.org, -line.dir});
  const TCross plus = cross_Line(msh, line);
  T3DVEC result = line.org;
  if (minus.distance < plus.distance) result = minus.point;
  if (plus.distance < minus.distance) result = plus.point;
  if (plus.distance == minus.distance && plus.distance < undercut::kAbsent)
    result = undercut::dot(minus.point - line.org, line.dir) >= 0 ? plus.point : minus.point;
  if (undercut::len(result - line.org) > tolerance) result = line.org;
  return result;
}

// The distance along the whole line, in lengths of dir, to the nearest facet that it crosses; below
// 0 for none.
inline second::Real second_Distance(const std::vector<second::TFacet>& facets, const T3DRAY& line) {
  using namespace second;
  const TVec d = to_Real(line.dir);
  Real best = -1;
  for (const TFacet& f : facets) {
    const TVec u = minus(f.b, f.a), v = minus(f.c, f.a), from = minus(to_Real(line.org), f.a);
    const TVec p = outer(d, v), q = outer(from, u);
    const Real scale = inner(u, p);
    if (scale == 0) continue;
    const Real s = inner(from, p) / scale, t = inner(d, q) / scale;
    if (s < 0 || t < 0 || s + t > 1) continue;
    const Real away = inner(v, q) / scale;
    const Real distance = away < 0 ? -away : away;
    if (best < 0 || distance < best) best = distance;
  }
  return best;
}

}  // namespace reference
