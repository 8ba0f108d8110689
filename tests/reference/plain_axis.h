// The three-axis search as one plain program: no tree, no prepared arrays, no threads.
#pragma once

#include <algorithm>

#include "tests/reference/plain_ratings.h"
#include "tests/reference/plain_search.h"

namespace reference {

struct TAxisSettings {
  double box[4] = {0, 0, 180, 360};
  double dxx = 40, dyy = 40;
  double dxy = 5, eps = 0.5;
  unsigned limit = 50;
  double weight = 0.01;
};

struct TAxisFound {
  T3DFRM frm;
  double rating;
  unsigned ratings;
};

inline T3DVEC mean_Point(const T3DMSH& msh) {
  T3DVEC o = {0, 0, 0};
  for (uint32_t i = 0; i < msh.n_vtx; ++i) {
    const double k = double(i) / (double(i) + 1), w = 1 / (double(i) + 1);
    o = k * o + w * msh.vtx[i];
  }
  return o;
}

// Whether V < U, with the triangles that are seen along d or against it.
inline bool lies_Low(const T3DMSH& msh, const T3DFRM& frm, const T3DVEC& d) {
  double zmin = 1e308, zmax = -1e308;
  for (uint32_t i = 0; i < msh.n_vtx; ++i) {
    const double z = undercut::to_Local(frm, msh.vtx[i]).z;
    zmin = std::min(zmin, z);
    zmax = std::max(zmax, z);
  }
  const double h = zmax - zmin;
  double v = 0, u = 0;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const TRated tri = look_At(msh, t);
    if (!tri.rated) continue;
    if (!sees(msh, tri, 0.001, d) && !sees(msh, tri, 0.001, {-d.x, -d.y, -d.z})) continue;
    const undercut::T3DFAC f = undercut::to_Local(frm, undercut::get_Fac(msh, t));
    std::vector<T3DVEC> p = {f.a, f.b, f.c};
    if (p[0].z > p[1].z) std::swap(p[0], p[1]);
    if (p[0].z > p[2].z) std::swap(p[0], p[2]);
    if (p[1].z > p[2].z) std::swap(p[1], p[2]);
    const double area = 0.5 * std::fabs((p[1].x - p[0].x) * (p[2].y - p[0].y) -
                                        (p[1].y - p[0].y) * (p[2].x - p[0].x));
    v = v + area * (p[0].z - zmin);
    u = u + (area * h - area * (p[0].z - zmin));
  }
  return v < u;
}

// Without a start it scans for one.
inline TAxisFound find_Axis(const T3DMSH& msh, const TAxisSettings& set, const T2DVEC* given) {
  unsigned ratings = 0;
  const Rating rating = [&](double theta, double phi) {
    ++ratings;
    return rate_3ax(msh, set.weight, theta, phi);
  };
  T2DVEC start = {0, 0};
  if (given) {
    start = *given;
  } else {
    const TFound scanned = scan_Sphere(set.box, set.dxx, set.dyy, rating);
    start = {scanned.theta, scanned.phi};
  }
  const double s = 1.0 / std::sqrt(2.0);
  TSimplex simplex = {};
  const double offsets[3][2] = {{-s, -s}, {s, -s}, {0, 1}};
  for (int k = 0; k < 3; ++k) {
    simplex.x[k] = start.x + set.dxy * offsets[k][0];
    simplex.y[k] = start.y + set.dxy * offsets[k][1];
  }
  const TFound best = walk_Downhill(simplex, set.eps, set.limit, rating);

  const T3DVEC o = mean_Point(msh), d = direction_Of(best.theta, best.phi);
  T3DVEC axis = {-d.x, -d.y, -d.z};
  if (lies_Low(msh, undercut::frm_Ray({o, axis}), d)) axis = {-axis.x, -axis.y, -axis.z};
  return {undercut::frm_Ray({o, axis}), best.rating, ratings};
}

}  // namespace reference
