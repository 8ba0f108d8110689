// Distances of points to boxes, segments and polylines, and of a line to a segment.
#include "foundation/primitives.h"

namespace undercut {

namespace {

// The square of what a coordinate lies outside a range by.
double excess_Sqr(double v, double low, double high) {
  const double excess = v < low ? low - v : v > high ? v - high : 0.0;
  return excess * excess;
}

// What is left of v across the unit vector dir.
T3DVEC across(const T3DVEC& v, const T3DVEC& dir) { return v - dot(v, dir) * dir; }

template <typename Vec>
double dst_Seg(const Vec& p, const Vec& a, const Vec& b) {
  const double length = len(b - a);
  if (length == 0.0) return dst(p, a);
  const Vec along = (b - a) / length;
  const double s = dot(p - a, along);
  if (s < 0.0) return dst(p, a);
  if (s > length) return dst(p, b);
  return dst(p, a + s * along);
}

}  // namespace

double dst_Box(const C3DAABB& box, const T3DVEC& p) {
  return excess_Sqr(p.x, box.min.x, box.max.x) + excess_Sqr(p.y, box.min.y, box.max.y) +
         excess_Sqr(p.z, box.min.z, box.max.z);
}

double dst_Box(const C2DAABB& box, const T2DVEC& p) {
  return excess_Sqr(p.x, box.min.x, box.max.x) + excess_Sqr(p.y, box.min.y, box.max.y);
}

double dst_Seg2(const T2DVEC& p, const T2DVEC& a, const T2DVEC& b) { return dst_Seg(p, a, b); }

double dst_Seg3(const T3DVEC& p, const T3DVEC& a, const T3DVEC& b) { return dst_Seg(p, a, b); }

double dst_Pol2(const T2DPOL& pol, const T2DVEC& p) {
  double best = kAbsent;
  if (!pol.pnt || !pol.sgm) return best;
  for (uint32_t i = 0; i < pol.n_sgm; ++i) {
    const T3DSGM sgm = pol.sgm[i];
    if (sgm.a >= pol.n_pnt || sgm.b >= pol.n_pnt) continue;
    const double distance = dst_Seg2(p, pol.pnt[sgm.a], pol.pnt[sgm.b]);
    if (distance < best) best = distance;
  }
  return best;
}

// The closest approach, looked for in the plane across the line: there the line is a point.
double dst_LineSeg(const T3DRAY& line, const T3DVEC& a, const T3DVEC& b) {
  const T3DVEC from = across(a - line.org, line.dir);
  const T3DVEC along = across(b - a, line.dir);
  const double square = dot(along, along);
  if (square == 0.0) return len(from);
  const double t = -dot(from, along) / square;
  if (t < 0.0) return len(from);
  if (t > 1.0) return len(across(b - line.org, line.dir));
  return len(from + t * along);
}

}  // namespace undercut
