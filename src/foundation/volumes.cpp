// Whether a cylinder, a slab, a sphere or a circle reaches a box or a triangle, or holds a box
// whole.
#include "foundation/primitives.h"

namespace undercut {

namespace {

// The axis forward and backward: two rays make the whole line.
template <typename Hit>
bool hit_Axis(const T3DCYL& cylinder, Hit hit) {
  const T3DFRM& frm = cylinder.frm;
  return hit(T3DRAY{frm.org, frm.z}) || hit(T3DRAY{frm.org, -frm.z});
}

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
