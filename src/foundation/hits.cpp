// Crossings of rays and segments with triangles, quadrilaterals, boxes and planes.
//
// A ray begins at org; org + dir only tells its direction. What lies behind org is missed.
#include "foundation/primitives.h"

namespace undercut {

namespace {

using Classifier = char (*)(const T2DVEC& p, const T2DVEC& e, const T2DVEC& f);

template <Classifier classify>
bool cross_Seg(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c, const T2DVEC& d) {
  const char first = classify(a, c, d);
  if (first == classify(b, c, d) &&
      (first == '+' || first == '-' || first == '<' || first == '>')) {
    return false;
  }
  const char second = classify(c, a, b);
  return second != classify(d, a, b) || (second != '+' && second != '-');
}

// The segment from org through ahead, made long enough to reach past the edge e f, against that
// edge.
bool hit_Long(const T2DVEC& org, const T2DVEC& ahead, const T2DVEC& e, const T2DVEC& f) {
  C2DAABB box;
  box.add(org);
  box.add(ahead);
  box.add(e);
  box.add(f);
  const double reach = len(box.size()) + 1.0;
  return hit_Seg2(org, org + reach * unit(ahead - org), e, f);
}

}  // namespace

bool hit_TriFlat(const T3DRAY& ray, const T3DFAC& f) {
  const char axis = axis_Tri3(f);
  const T2DVEC a = drop_Axis(axis, f.a), b = drop_Axis(axis, f.b), c = drop_Axis(axis, f.c);
  const T2DVEC org = drop_Axis(axis, ray.org);
  if (cls_Tri2(a, b, c, org) != '0') return true;  // also for '?': a degenerate triangle
  const T3DVEC ahead = ray.org + ray.dir;
  if (sgn_Tri3(f, ahead) != 0) return false;
  const T2DVEC to = drop_Axis(axis, ahead);
  return hit_Long(org, to, a, b) || hit_Long(org, to, b, c) || hit_Long(org, to, c, a);
}

bool hit_QuadX(const T3DRAY& ray, const T3DVEC q[4]) {
  const T3DVEC ahead = ray.org + ray.dir;
  const T3DFAC plane = {q[0], q[1], q[2]};
  const int side = sgn_Tri3X(plane, ray.org);
  if (side != 0) {
    for (int k = 0; k < 4; ++k) {
      if (side * sgn_Tri3X({ray.org, q[(k + 1) % 4], q[k]}, ahead) == -1) return false;
    }
    return true;
  }
  const char axis = axis_Tri3(plane);
  T2DVEC flat[4];
  for (int k = 0; k < 4; ++k) flat[k] = drop_Axis(axis, q[k]);
  const T2DVEC org = drop_Axis(axis, ray.org);
  if (cls_Quad2X(flat, org) != '0') return true;
  if (sgn_Tri3X(plane, ahead) != 0) return false;
  const T2DVEC to = drop_Axis(axis, ahead);
  for (int k = 0; k < 4; ++k) {
    if (hit_Seg2X(org, to, flat[k], flat[(k + 1) % 4])) return true;
  }
  return false;
}

bool hit_BoxX(const T3DRAY& ray, const C3DAABB& box) {
  static constexpr int kFaces[6][4] = {{0, 3, 2, 1}, {1, 2, 6, 5}, {2, 3, 7, 6},
                                       {3, 0, 4, 7}, {0, 1, 5, 4}, {4, 5, 6, 7}};
  if (cls_Box3(box, ray.org) != '0') return true;
  T3DVEC corners[8];
  box.corners(corners);
  for (const auto& face : kFaces) {
    const T3DVEC quad[4] = {corners[face[0]], corners[face[1]], corners[face[2]], corners[face[3]]};
    if (hit_QuadX(ray, quad)) return true;
  }
  return false;
}

bool hit_Seg2(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c, const T2DVEC& d) {
  return cross_Seg<cls_Seg2>(a, b, c, d);
}

bool hit_Seg2X(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c, const T2DVEC& d) {
  return cross_Seg<cls_Seg2X>(a, b, c, d);
}

char hit_Z(const T3DRAY& plane, const T2DVEC& p, T3DVEC& out) {
  out = {p.x, p.y, 0.0};
  const T3DVEC& n = plane.dir;
  if (n.z == 0.0) {
    const double length = len(n);
    const double distance = length == 0.0 ? kAbsent : dot(n, out - plane.org) / length;
    return distance == 0.0 ? 'l' : '0';
  }
  const double t = -dot(n, plane.org - out) / n.z;
  out.z -= t;
  return t > 0.0 ? '+' : t < 0.0 ? '-' : t == 0.0 ? 'x' : '?';
}

bool cut_Tri(const T3DRAY& ray, const T3DFAC& f, T3DVEC& out) {
  const T3DVEC n = nml_Tri(f);
  const double slope = dot(n, ray.dir);
  if (slope == 0.0) return false;
  const double t = dot(n, f.a - ray.org) / slope;
  out = ray.org + t * ray.dir;
  return true;
}

bool lin_Solve2(double a, double b, double c, double d, double u, double v, double& x, double& y) {
  const double det = a * d - c * b;
  if (std::fabs(det) == 0.0) return false;
  x = (u * d - v * b) / det;
  y = (a * v - c * u) / det;
  return true;
}

}  // namespace undercut
