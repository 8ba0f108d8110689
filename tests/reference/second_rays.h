// Rays by a method that the library does not use, for a second opinion on what is seen: solving for
// the crossing of line and plane (T. Moeller, B. Trumbore, Fast, Minimum Storage Ray/Triangle
// Intersection, 1997), in extended precision, against every triangle in turn. Nothing here uses the
// library but for its plain records.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/records.h"

namespace reference::second {

using Real = long double;

struct TVec {
  Real x, y, z;
};
inline TVec to_Real(const T3DVEC& v) { return {v.x, v.y, v.z}; }
inline TVec plus(const TVec& a, const TVec& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline TVec minus(const TVec& a, const TVec& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline TVec times(Real s, const TVec& a) { return {s * a.x, s * a.y, s * a.z}; }
inline Real inner(const TVec& a, const TVec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline TVec outer(const TVec& a, const TVec& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Real length(const TVec& a) { return __builtin_sqrtl(inner(a, a)); }
inline TVec normal(const TVec& a) { return times(1 / length(a), a); }

struct TFacet {
  TVec a, b, c;
};
inline TFacet facet(const T3DMSH& msh, uint32_t t) {
  const T3DTRI& tri = msh.tri[t];
  return {to_Real(msh.vtx[tri.a]), to_Real(msh.vtx[tri.b]), to_Real(msh.vtx[tri.c])};
}
inline bool is_Same(const TVec& a, const TVec& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }
inline bool has_EqualCorners(const TFacet& f) {
  return is_Same(f.a, f.b) || is_Same(f.b, f.c) || is_Same(f.c, f.a);
}
inline TVec middle(const TFacet& f) { return times(Real(1) / 3, plus(plus(f.a, f.b), f.c)); }
inline TVec across(const TFacet& f) { return outer(minus(f.b, f.a), minus(f.c, f.a)); }

inline bool crosses_Facet(const TVec& org, const TVec& d, const TFacet& f) {
  const TVec u = minus(f.b, f.a), v = minus(f.c, f.a), from = minus(org, f.a);
  const TVec p = outer(d, v);
  const Real scale = inner(u, p);
  if (scale == 0) return false;
  const Real s = inner(from, p) / scale;
  const TVec q = outer(from, u);
  const Real t = inner(d, q) / scale;
  return s >= 0 && t >= 0 && s + t <= 1 && inner(v, q) / scale > 0;
}

// A triangle with two equal corners stops every ray that meets its box: the box of a segment.
inline bool crosses_Box(const TVec& org, const TVec& d, const TFacet& f) {
  const Real o[3] = {org.x, org.y, org.z}, e[3] = {d.x, d.y, d.z};
  const Real p[3][3] = {{f.a.x, f.a.y, f.a.z}, {f.b.x, f.b.y, f.b.z}, {f.c.x, f.c.y, f.c.z}};
  Real first = 0, last = 1e300L;
  for (int k = 0; k < 3; ++k) {
    Real low = p[0][k], high = p[0][k];
    for (int i = 1; i < 3; ++i) {
      if (p[i][k] < low) low = p[i][k];
      if (p[i][k] > high) high = p[i][k];
    }
    if (e[k] == 0) {
      if (o[k] < low || o[k] > high) return false;
      continue;
    }
    Real t0 = (low - o[k]) / e[k], t1 = (high - o[k]) / e[k];
    if (t0 > t1) {
      const Real held = t0;
      t0 = t1;
      t1 = held;
    }
    if (t0 > first) first = t0;
    if (t1 < last) last = t1;
  }
  return first <= last && last > 0;
}

// The triangles of a mesh as obstacles.
inline std::vector<TFacet> facets(const T3DMSH& msh) {
  std::vector<TFacet> all;
  for (uint32_t t = 0; t < msh.n_tri; ++t) all.push_back(facet(msh, t));
  return all;
}

inline bool is_Free(const std::vector<TFacet>& obstacle, const TVec& org, const TVec& d) {
  for (const TFacet& f : obstacle)
    if (has_EqualCorners(f) ? crosses_Box(org, d, f) : crosses_Facet(org, d, f)) return false;
  return true;
}

enum class Sight { kSeen, kHidden, kNone };

// By triangle of msh: what the ray from its lifted centroid along d meets. None for equal corners.
inline std::vector<Sight> look(const T3DMSH& msh, const std::vector<TFacet>& obstacle,
                               const TVec& d, double lift) {
  std::vector<Sight> sight;
  for (const TFacet& f : facets(msh)) {
    if (has_EqualCorners(f)) {
      sight.push_back(Sight::kNone);
      continue;
    }
    const TVec org = plus(middle(f), times(lift, normal(across(f))));
    sight.push_back(is_Free(obstacle, org, d) ? Sight::kSeen : Sight::kHidden);
  }
  return sight;
}

// Rays run against the axis; one without direction stands for the Z axis.
inline TVec against(const T3DRAY& axis) {
  const TVec d = to_Real(axis.dir);
  return length(d) == 0 ? TVec{0, 0, -1} : times(-1, normal(d));
}

// By triangle: 1 for those that no axis sees, among the selected ones.
inline std::vector<uint8_t> undercut_By(const T3DMSH& msh, const std::vector<T3DRAY>& axes,
                                        double lift, const std::vector<bool>& selected) {
  std::vector<uint8_t> undercut(selected.begin(), selected.end());
  const std::vector<TFacet> obstacle = facets(msh);
  for (const T3DRAY& axis : axes) {
    const std::vector<Sight> sight = look(msh, obstacle, against(axis), lift);
    for (uint32_t t = 0; t < msh.n_tri; ++t)
      if (sight[t] == Sight::kSeen) undercut[t] = 0;
  }
  return undercut;
}

}  // namespace reference::second
