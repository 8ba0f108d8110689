// Ratings of a direction, one triangle after the other, with rays against every triangle.
#pragma once

#include <cmath>
#include <vector>

#include "tests/reference/plain_rays.h"

namespace reference {

inline T3DVEC direction_Of(double theta, double phi) {
  const double p = theta * 0.017453292519943295, a = phi * 0.017453292519943295;
  return {std::sin(p) * std::cos(a), std::sin(p) * std::sin(a), std::cos(p)};
}

// What a rating knows of a triangle. One with two corners at one place is not rated.
struct TRated {
  bool rated;
  double area;
  T3DVEC normal, centre;
};

inline TRated look_At(const T3DMSH& msh, uint32_t t) {
  const T3DVEC a = msh.vtx[msh.tri[t].a], b = msh.vtx[msh.tri[t].b], c = msh.vtx[msh.tri[t].c];
  const auto same = [](const T3DVEC& p, const T3DVEC& q) {
    return p.x == q.x && p.y == q.y && p.z == q.z;
  };
  if (same(a, b) || same(b, c) || same(c, a)) return {false, 0, {0, 0, 0}, {0, 0, 0}};
  const T3DVEC u = b - a, v = c - a;
  T3DVEC n = {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
  const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  if (length != 0) n = {n.x / length, n.y / length, n.z / length};
  const T3DVEC sum = a + b + c;
  return {true, 0.5 * length, n, {sum.x / 3, sum.y / 3, sum.z / 3}};
}

inline bool sees(const T3DMSH& msh, const TRated& tri, double lift, const T3DVEC& d) {
  return !any_Hit(msh, {tri.centre + lift * tri.normal, d});
}

inline double rate_3ax(const T3DMSH& msh, double weight, double theta, double phi) {
  const T3DVEC d = direction_Of(theta, phi);
  double sum = 0;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const TRated tri = look_At(msh, t);
    if (!tri.rated) continue;
    for (const T3DVEC& r : {d, T3DVEC{-d.x, -d.y, -d.z}}) {
      if (!sees(msh, tri, 0.001, r)) continue;
      const double cosine = tri.normal.x * r.x + tri.normal.y * r.y + tri.normal.z * r.z;
      sum = sum + (weight * tri.area + (1 - weight) * std::fabs(cosine) * tri.area);
    }
  }
  return -sum;
}

inline double rate_5ax(const T3DMSH& msh, double weight, double lift,
                       const std::vector<uint32_t>& list, double theta, double phi) {
  const T3DVEC d = direction_Of(theta, phi);
  double total = 0, blocked = 0;
  for (uint32_t t = 0; t < msh.n_tri; ++t) total = total + look_At(msh, t).area;
  T3DVEC n = {0, 0, 0};
  for (const uint32_t t : list) {
    const TRated tri = look_At(msh, t);
    if (!tri.rated) continue;
    if (sees(msh, tri, lift, d))
      n = {n.x + tri.normal.x, n.y + tri.normal.y, n.z + tri.normal.z};
    else
      blocked = blocked + tri.area;
  }
  const double length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
  if (length != 0) n = {n.x / length, n.y / length, n.z / length};
  const double c = d.x * n.x + d.y * n.y + d.z * n.z;
  double rest = 1 - c * c;
  if (rest < 0) rest = 0;
  return blocked / total + weight * std::sqrt(rest);
}

}  // namespace reference
