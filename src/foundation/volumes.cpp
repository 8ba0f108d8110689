// Whether a cylinder, a slab, a sphere or a circle reaches a box or a triangle, or holds a box
// whole.
//
// A cylinder's tests of a box are some 50 determinants, which nearly every box of a tree fails. So
// one that lies wholly on the far side of a plane along the axis is told beforehand. The answers
// must be those of the tests in full, rounding included. Let L bound the distances from the axis'
// origin and M the coordinates. Where the axis passes a box at more than 1e-6 (L + M) and the box
// is no thinner than that, each determinant that decides is at least 1e-12 L^2 times the coordinate
// across the face that all its products share, and rounded by less than some 100 * 2^-53 of the
// same: so each face has an edge that shows the axis to pass it outside, and no edge measures as
// near as the radius. Rounding of the point ahead on the axis turns it by 2^-53 M, which is nothing
// up to M = 1e8. And where no number is smaller than 1e-200 but 0, no difference of them is so
// small that products of it underflow.
#include <algorithm>

#include "foundation/primitives.h"

namespace undercut {

namespace {

// The axis forward and backward: two rays make the whole line.
template <typename Hit>
bool hit_Axis(const T3DCYL& cylinder, Hit hit) {
  const T3DFRM& frm = cylinder.frm;
  return hit(T3DRAY{frm.org, frm.z}) || hit(T3DRAY{frm.org, -frm.z});
}

// What is left of v across the unit vector dir.
T3DVEC across(const T3DVEC& v, const T3DVEC& dir) { return v - dot(v, dir) * dir; }

bool reaches(const T3DCYL& cylinder, const T3DVEC& a, const T3DVEC& b) {
  return dst_LineSeg({cylinder.frm.org, cylinder.frm.z}, a, b) <= cylinder.radius;
}

// Neither wholly above the slab nor wholly below it.
template <int N>
bool hit_SlabPoints(const T3DSLB& slab, const T3DVEC (&points)[N]) {
  const T3DFRM& frm = slab.frm;
  const T3DRAY low = {frm.org + slab.low * frm.x, frm.x};
  const T3DRAY high = {frm.org + slab.high * frm.x, frm.x};
  bool all_below = true, all_above = true;
  for (const T3DVEC& p : points) {
    all_below = all_below && sgn_Pln(low, p) < 0;
    all_above = all_above && sgn_Pln(high, p) > 0;
  }
  return !all_below && !all_above;
}

// A coordinate is so small that products of it may underflow, and is not 0.
bool has_Tiny(const T3DVEC& v) {
  const auto is_Tiny = [](double c) { return c != 0.0 && std::fabs(c) < 1e-200; };
  return is_Tiny(v.x) || is_Tiny(v.y) || is_Tiny(v.z);
}

// Surely true: no test of hit_CylBox holds. False for what is not a number, here or there. The
// box is held against the direction from the axis to its middle.
bool is_Away(const T3DCYL& cylinder, const C3DAABB& box) {
  const T3DVEC &org = cylinder.frm.org, &z = cylinder.frm.z;
  const T3DVEC size = box.size(), to = box.centre() - org, out = across(to, z);
  const double most = std::max({std::fabs(org.x), std::fabs(org.y), std::fabs(org.z)});
  const double margin = 1e-6 * (2.0 * len(to) + len(size) + most + 2.0);
  const bool fit = margin < 1e2 && size.x >= margin && size.y >= margin && size.z >= margin &&
                   std::fabs(dot(z, z) - 1.0) < 1e-12;
  // Both sides times the distance of the middle.
  const double distance = len(out);
  const double half = 0.5 * dot(size, {std::fabs(out.x), std::fabs(out.y), std::fabs(out.z)});
  const double reach = (std::max(cylinder.radius, 0.0) + margin) * distance + half;
  return fit && distance > margin && distance * distance > reach &&
         !(has_Tiny(org) || has_Tiny(z) || has_Tiny(box.min) || has_Tiny(box.max));
}

template <typename Inside>
bool all_Corners(const C3DAABB& box, Inside inside) {
  T3DVEC corners[8];
  box.corners(corners);
  for (const T3DVEC& p : corners) {
    if (!inside(p)) return false;
  }
  return true;
}

}  // namespace

bool hit_CylBox(const T3DCYL& cylinder, const C3DAABB& box) {
  static constexpr int kEdges[12][2] = {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6},
                                        {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}};
  if (is_Away(cylinder, box)) return false;
  if (hit_Axis(cylinder, [&](const T3DRAY& ray) { return hit_BoxX(ray, box); })) return true;
  T3DVEC corners[8];
  box.corners(corners);
  for (const auto& edge : kEdges) {
    if (reaches(cylinder, corners[edge[0]], corners[edge[1]])) return true;
  }
  return false;
}

bool hit_CylTri(const T3DCYL& cylinder, const T3DFAC& f) {
  return hit_Axis(cylinder, [&](const T3DRAY& ray) { return hit_Tri(ray, f); }) ||
         reaches(cylinder, f.a, f.b) || reaches(cylinder, f.b, f.c) || reaches(cylinder, f.c, f.a);
}

bool in_Cyl(const T3DCYL& cylinder, const C3DAABB& box) {
  return all_Corners(box, [&](const T3DVEC& p) { return reaches(cylinder, p, p); });
}

bool hit_SlabBox(const T3DSLB& slab, const C3DAABB& box) {
  T3DVEC corners[8];
  box.corners(corners);
  return hit_SlabPoints(slab, corners);
}

bool hit_SlabTri(const T3DSLB& slab, const T3DFAC& f) {
  const T3DVEC corners[3] = {f.a, f.b, f.c};
  return hit_SlabPoints(slab, corners);
}

bool in_Slab(const T3DSLB& slab, const C3DAABB& box) {
  return all_Corners(box, [&](const T3DVEC& p) { return cls_Slab(slab, p) != '0'; });
}

bool hit_SphBox(const T3DSPH& sphere, const C3DAABB& box) {
  return std::sqrt(dst_Box(box, sphere.centre)) <= sphere.radius;
}

bool in_Sph(const T3DSPH& sphere, const C3DAABB& box) {
  return all_Corners(box, [&](const T3DVEC& p) { return cls_Sph(sphere, p) != '0'; });
}

bool hit_CircBox(const C2DCIRC& circle, const C2DAABB& box) {
  return std::sqrt(dst_Box(box, circle.centre)) <= circle.radius;
}

bool in_Circ(const C2DCIRC& circle, const C2DAABB& box) {
  const T2DVEC corners[4] = {box.min, {box.max.x, box.min.y}, box.max, {box.min.x, box.max.y}};
  for (const T2DVEC& p : corners) {
    if (cls_Circ(circle, p) == '0') return false;
  }
  return true;
}

}  // namespace undercut
