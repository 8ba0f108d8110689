// The measures of a region written down step by step: one triangle in or out, and all anew. Every
// quantity has its own line of text-book arithmetic in the order that the library promises, so that
// the two can be compared to the last bit.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "decomposition/measures.h"

namespace reference {

using namespace undercut;

inline T3DVEC plain_Axis(const CMap& map, const CUcA& region, const T3DVEC& n) {
  double p = region.polar0;
  double a = region.azimuth0;
  if (!map.b_ini) {
    p = car_ToSph(n).x;
    a = car_ToSph(n).y;
    if (!map.b_5ax) {
      const double w1 = map.w_4ax - 90 < 0 ? map.w_4ax - 90 + 360 : map.w_4ax - 90;
      const double w2 = map.w_4ax - 270 < 0 ? map.w_4ax - 270 + 360 : map.w_4ax - 270;
      a = std::abs(a - w1) > std::abs(a - w2) ? w2 : w1;
    }
  }
  if (region.measures.polar_low > p) p = region.measures.polar_low;
  if (p > region.measures.polar_high) p = region.measures.polar_high;
  return sph_ToCar(p, a);
}

inline T3DVEC plain_Unit(const T3DVEC& v) {
  const double length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  if (length == 0) return v;
  return {v.x / length, v.y / length, v.z / length};
}

inline T3DVEC plain_Onto(const T3DVEC& q, const T3DVEC& d, const T3DVEC& m) {
  const double t = d.x * (m.x - q.x) + d.y * (m.y - q.y) + d.z * (m.z - q.z);
  return {q.x + t * d.x, q.y + t * d.y, q.z + t * d.z};
}

inline T3DVEC plain_Blend(double w1, const T3DVEC& a, double w0, const T3DVEC& b) {
  return {w1 * a.x + w0 * b.x, w1 * a.y + w0 * b.y, w1 * a.z + w0 * b.z};
}

// The corners, and per edge whether the triangle across it is in the region.
struct TPlainStep {
  T3DVEC corner[3];
  bool shared[3];

  TPlainStep(const CMap& map, int32_t id, uint32_t t) {
    const T3DFAC f = get_Fac(map.msh, t);
    corner[0] = f.a, corner[1] = f.b, corner[2] = f.c;
    for (int k = 0; k < 3; ++k) {
      const int32_t nb = map.slots[t][k];
      shared[k] = nb >= 0 && map.region_of[nb] == id;
    }
  }
  T3DFAC face() const { return {corner[0], corner[1], corner[2]}; }
  TPlainStep onto(const T3DVEC& d, const T3DVEC& m) const {
    TPlainStep step = *this;
    for (T3DVEC& c : step.corner) c = plain_Onto(c, d, m);
    return step;
  }
  // L - 2 S
  double gain() const {
    double all = 0, common = 0;
    for (int k = 0; k < 3; ++k) all += dst(corner[k], corner[(k + 1) % 3]);
    for (int k = 0; k < 3; ++k)
      if (shared[k]) common += dst(corner[k], corner[(k + 1) % 3]);
    return all - 2 * common;
  }
};

inline double plain_Signed(const T3DFAC& l) {
  return (l.a.x * (l.b.y - l.c.y) + l.b.x * (l.c.y - l.a.y) + l.c.x * (l.a.y - l.b.y)) / 2;
}

// In with sign 1, out with sign -1; A is the normal area before.
inline void plain_Plane(TUcPlane& p, double A, const T3DFAC& l, int sign) {
  if ((l.a.x == l.b.x && l.a.y == l.b.y) || (l.b.x == l.c.x && l.b.y == l.c.y) ||
      (l.c.x == l.a.x && l.c.y == l.a.y))
    return;
  const double s = plain_Signed(l);
  if (sign < 0 && !(A > s)) return;
  const double x[] = {l.a.x, l.b.x, l.c.x, l.a.x}, y[] = {l.a.y, l.b.y, l.c.y, l.a.y};
  double xx = 0, yy = 0, xy = 0;
  for (int i = 0, j = 1; i < 3; ++i, ++j) {
    const double t = x[i] * y[j] - x[j] * y[i];
    xx += (x[i] * x[i] + x[i] * x[j] + x[j] * x[j]) * t;
    yy += (y[i] * y[i] + y[i] * y[j] + y[j] * y[j]) * t;
    xy += (x[i] * y[j] + 2 * x[i] * y[i] + 2 * x[j] * y[j] + x[j] * y[i]) * t;
  }
  p.sxx += sign * (xx / 12);
  p.syy += sign * (yy / 12);
  p.sxy += sign * (xy / 24);
  const double gx = (l.a.x + l.b.x + l.c.x) / 3, gy = (l.a.y + l.b.y + l.c.y) / 3;
  const double whole = A + sign * s;
  p.centre = {(A / whole) * p.centre.x + sign * ((s / whole) * gx),
              (A / whole) * p.centre.y + sign * ((s / whole) * gy)};
  const double mx = p.centre.x, my = p.centre.y;
  p.cxx = p.sxx - whole * mx * mx;
  p.cyy = p.syy - whole * my * my;
  p.cxy = p.sxy - whole * mx * my;
}

inline T3DVEC plain_Turn(const T3DVEC& v, const T3DVEC& k, double t) {
  const double along = v.x * k.x + v.y * k.y + v.z * k.z;
  const T3DVEC par = {along * k.x, along * k.y, along * k.z};
  const T3DVEC perp = {v.x - par.x, v.y - par.y, v.z - par.z};
  const T3DVEC side = {k.y * perp.z - k.z * perp.y, k.z * perp.x - k.x * perp.z,
                       k.x * perp.y - k.y * perp.x};
  const double c = std::cos(t), s = std::sin(t);
  return {par.x + c * perp.x + s * side.x, par.y + c * perp.y + s * side.y,
          par.z + c * perp.z + s * side.z};
}

// What upd_Add (sign 1) and upd_Del (sign -1) make of the measures. The region's count is that
// after the move.
inline TUcMeasures plain_Update(const CMap& map, const CUcA& region, uint32_t t, int sign) {
  TUcMeasures m = region.measures;
  const TPlainStep step(map, region.id, t);
  const T3DVEC c = cen_Tri(step.face()), n = nml_Tri(step.face());
  const double N = region.count;
  const bool means = sign > 0 || N >= 2;
  const double w0 = means ? N / (N + sign) : 1, w1 = means ? sign * (1 / (N + sign)) : 0;

  m.area += sign * area_Tri(step.face());
  m.perimeter += sign * step.gain();
  if (means) m.centroid = plain_Blend(w1, c, w0, m.centroid);
  const TPlainStep flat = step.onto(plain_Unit(m.axis), c);
  m.axis_area += sign * area_Tri(flat.face());
  m.axis_perimeter += sign * flat.gain();
  if (means) {
    const T3DVEC axis = plain_Blend(w1, plain_Axis(map, region, n), w0, m.axis);
    m.axis_frame = frm_Ray({m.axis_frame.org, axis});
    m.axis = axis;
  }
  plain_Plane(m.plane, m.normal_area, to_Local(m.normal_frame, step.face()), sign);
  const TPlainStep seen = step.onto(plain_Unit(m.normal), c);
  m.normal_area += sign * area_Tri(seen.face());
  m.normal_perimeter += sign * seen.gain();
  if (!means) return m;
  const T3DVEC normal = plain_Blend(w1, n, w0, m.normal);
  const double angle = ang_Vec(m.normal, normal);
  if (!(angle < 0.5)) {
    const T3DVEC k = plain_Unit(cross(normal, m.normal));
    const double turn = -(angle * 0.017453292519943295);
    m.normal_frame = {plain_Turn(m.normal_frame.x, k, turn), plain_Turn(m.normal_frame.y, k, turn),
                      plain_Turn(m.normal_frame.z, k, turn), m.normal_frame.org};
  }
  m.normal = normal;
  return m;
}

// A piece of a region's rim: an edge that a triangle of another region, or of none, shares.
struct TPlainEdge {
  T3DVEC p, q;
};
inline std::vector<TPlainEdge> plain_Rim(const CMap& map, uint32_t t) {
  std::vector<TPlainEdge> rim;
  const T3DTRI& own = map.msh.tri[t];
  for (uint32_t j = 0; j < map.neighbours.counts[t]; ++j) {
    const uint32_t nb = map.neighbours.lists[t][j];
    if (nb == t || map.region_of[nb] == map.region_of[t]) continue;
    const T3DTRI& other = map.msh.tri[nb];
    const uint32_t v[] = {other.a, other.b, other.c, other.a};
    for (int k = 0; k < 3; ++k) {
      const bool p_in = v[k] == own.a || v[k] == own.b || v[k] == own.c;
      const bool q_in = v[k + 1] == own.a || v[k + 1] == own.b || v[k + 1] == own.c;
      if (p_in && q_in) rim.push_back({map.msh.vtx[v[k]], map.msh.vtx[v[k + 1]]});
    }
  }
  return rim;
}

// Area and rim of the listed triangles, along a direction if it has a length.
inline double plain_Area(const CMap& map, const std::vector<uint32_t>& list, const T3DVEC& d) {
  double sum = 0;
  for (const uint32_t t : list) {
    const T3DFAC f = get_Fac(map.msh, t);
    const T3DVEC c = cen_Tri(f);
    sum += area_Tri(T3DFAC{plain_Onto(f.a, d, c), plain_Onto(f.b, d, c), plain_Onto(f.c, d, c)});
  }
  return sum;
}
inline double plain_Length(const CMap& map, const std::vector<uint32_t>& list, const T3DVEC& d) {
  double sum = 0;
  for (const uint32_t t : list)
    for (const TPlainEdge& e : plain_Rim(map, t)) {
      const T3DVEC middle = {(e.p.x + e.q.x) / 2, (e.p.y + e.q.y) / 2, (e.p.z + e.q.z) / 2};
      sum += dst(plain_Onto(e.p, d, middle), plain_Onto(e.q, d, middle));
    }
  return sum;
}

// What rcalc_Uca makes of the measures.
inline TUcMeasures plain_Measures(const CMap& map, const CUcA& region) {
  TUcMeasures m = region.measures;
  std::vector<uint32_t> list;
  for (int32_t t = region.head; t != -1; t = map.next[t])
    if (!is_Flat(get_Fac(map.msh, uint32_t(t)))) list.push_back(uint32_t(t));
  const double count = region.count;
  const T3DVEC none = {0, 0, 0};

  m.area = plain_Area(map, list, none);
  m.perimeter = 0;
  for (const uint32_t t : list)
    for (const TPlainEdge& e : plain_Rim(map, t)) m.perimeter += dst(e.p, e.q);
  m.centroid = none;
  for (const uint32_t t : list) m.centroid += cen_Tri(get_Fac(map.msh, t));
  m.centroid = m.centroid / count;
  m.axis_area = plain_Area(map, list, plain_Unit(m.axis));
  m.axis_perimeter = plain_Length(map, list, plain_Unit(m.axis));
  m.axis = none;
  for (const uint32_t t : list) m.axis += plain_Axis(map, region, nml_Tri(get_Fac(map.msh, t)));
  m.axis = m.axis / count;
  m.axis_frame = frm_Ray({map.roi_centroid, plain_Unit(m.axis)});
  m.normal = none;
  for (const uint32_t t : list) m.normal += nml_Tri(get_Fac(map.msh, t));
  m.normal = m.normal / count;
  m.normal_frame = frm_Ray({m.centroid, plain_Unit(m.normal)});

  double x = 0, y = 0, twice = 0;
  TUcPlane sums;
  for (const uint32_t t : list) {
    const T3DFAC l = to_Local(m.normal_frame, get_Fac(map.msh, t));
    const double s2 = l.a.x * (l.b.y - l.c.y) + l.b.x * (l.c.y - l.a.y) + l.c.x * (l.a.y - l.b.y);
    x += (l.a.x + l.b.x + l.c.x) * s2;
    y += (l.a.y + l.b.y + l.c.y) * s2;
    twice += s2;
    TUcPlane own;
    mom_Tri(l, own);
    sums.sxx += own.sxx, sums.syy += own.syy, sums.sxy += own.sxy;
  }
  if (twice != 0) m.plane.centre = {x / (3 * twice), y / (3 * twice)};
  m.plane.sxx = sums.sxx, m.plane.syy = sums.syy, m.plane.sxy = sums.sxy;
  m.normal_area = plain_Area(map, list, plain_Unit(m.normal));
  const double mx = m.plane.centre.x, my = m.plane.centre.y, A = m.normal_area;
  m.plane.cxx = m.plane.sxx - A * mx * mx;
  m.plane.cyy = m.plane.syy - A * my * my;
  m.plane.cxy = m.plane.sxy - A * mx * my;
  m.normal_perimeter = plain_Length(map, list, plain_Unit(m.normal));
  return m;
}

}  // namespace reference
