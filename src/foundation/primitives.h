// Classification, hits and distances of points, segments, triangles, boxes and volumes.
//
// No tolerance enters: coordinates are compared exactly. Two forms exist of most tests, one with
// plain determinants and one, named with an X, through the predicates. Classifiers answer with a
// character:
//   '0' outside           '1' strictly inside, or between the end points
//   'r' on the boundary   '?' degenerate input, or no axis
//   '+' left of a line    '-' right of it       'a' 'b' equal to an end point
//   '<' '>' collinear, before the first or beyond the second end point
//   'x' 'y' 'z' an axis   'l' in the plane of a triangle
// All functions are pure and may run in parallel.
#pragma once

#include "foundation/box.h"
#include "foundation/ray_hits.h"
#include "foundation/values.h"

namespace undercut {

// An infinite cylinder round the Z axis of its frame, a unit vector.
struct T3DCYL {
  T3DFRM frm;
  double radius;
};

// The space between the planes through org + low X and org + high X, with X as their normal.
struct T3DSLB {
  T3DFRM frm;
  double low, high;
};

struct C2DCIRC {
  T2DVEC centre = {0, 0};
  double radius = 0;
};

// Turn of three points: 1 left, -1 right, 0 straight.
int sgn_Turn(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c);
int cmp_Seg2X(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c);

// Side of a point: the sign of ((b - a) x (c - a)) . (p - a); the X form has the sign of orient3d,
// which is the opposite.
inline int sgn_Tri3(const T3DFAC& f, const T3DVEC& p) {
  return sgn(dot(cross(f.b - f.a, f.c - f.a), p - f.a));
}
int sgn_Tri3X(const T3DFAC& f, const T3DVEC& p);
// Side of a plane.
inline int sgn_Pln(const T3DRAY& plane, const T3DVEC& p) {
  return sgn(dot(plane.dir, p - plane.org));
}

// Point against the directed segment e to f: + - a b < > 1.
char cls_Seg2(const T2DVEC& p, const T2DVEC& e, const T2DVEC& f);
char cls_Seg2X(const T2DVEC& p, const T2DVEC& e, const T2DVEC& f);

// Point classifiers: 0 r 1, and ? for degenerate input. Outside a sphere or a circle is also what
// is not a number.
char cls_Box2(const C2DAABB& box, const T2DVEC& p);
char cls_Box3(const C3DAABB& box, const T3DVEC& p);
char cls_Sphere(const T3DSPH& sphere, const T3DVEC& p);
char cls_Tri2(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c, const T2DVEC& p);
char cls_Quad2X(const T2DVEC q[4], const T2DVEC& p);
char cls_Circ(const C2DCIRC& circle, const T2DVEC& p);
// Wider than the sphere: its four points lie on a sphere of 1.275 times the radius, with its centre
// at (0, -1/4, 1/4) radii. The point tree's shortcut answers by this test; keep the points.
char cls_Sph(const T3DSPH& sphere, const T3DVEC& p);
char cls_Slab(const T3DSLB& slab, const T3DVEC& p);

// The axis of the largest component; ties to x, then y; '?' only for NaN.
char axis_Vec(const T3DVEC& v);
char axis_Tri3(const T3DFAC& f);
// Drops an axis: z gives (x, y), y (z, x), x (y, z). Any other character is taken as x.
T2DVEC drop_Axis(char axis, const T3DVEC& p);

// hit_Tri and hit_Box stand in ray_hits.h.

// A ray against a box through its faces, from org inside in any case. A face without area is hit by
// every ray, so a flat box is.
bool hit_BoxX(const T3DRAY& ray, const C3DAABB& box);
// A ray against a planar quadrilateral, through orient3d: forward as hit_Tri, but in the plane of
// the quadrilateral the ray reaches no farther than org + dir.
bool hit_QuadX(const T3DRAY& ray, const T3DVEC q[4]);
// Segments in the plane: do they cross or touch?
bool hit_Seg2(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c, const T2DVEC& d);
bool hit_Seg2X(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c, const T2DVEC& d);

bool hit_CylBox(const T3DCYL& cylinder, const C3DAABB& box);
bool hit_CylTri(const T3DCYL& cylinder, const T3DFAC& f);
bool in_Cyl(const T3DCYL& cylinder, const C3DAABB& box);  // all 8 corners
bool hit_SlabBox(const T3DSLB& slab, const C3DAABB& box);
bool hit_SlabTri(const T3DSLB& slab, const T3DFAC& f);
bool in_Slab(const T3DSLB& slab, const C3DAABB& box);  // all 8 corners
bool hit_SphBox(const T3DSPH& sphere, const C3DAABB& box);
bool in_Sph(const T3DSPH& sphere, const C3DAABB& box);  // all 8 corners, by cls_Sph
bool hit_CircBox(const C2DCIRC& circle, const C2DAABB& box);
bool in_Circ(const C2DCIRC& circle, const C2DAABB& box);  // all 4 corners

// Squared distance from a point to a box.
double dst_Box(const C3DAABB& box, const T3DVEC& p);
double dst_Box(const C2DAABB& box, const T2DVEC& p);
// Distance from a point to a segment.
double dst_Seg2(const T2DVEC& p, const T2DVEC& a, const T2DVEC& b);
double dst_Seg3(const T3DVEC& p, const T3DVEC& a, const T3DVEC& b);
// Smallest distance to a polyline; kAbsent for one without segments.
double dst_Pol2(const T2DPOL& pol, const T2DVEC& p);
// Distance from the line through org along the unit vector dir to the segment a b.
double dst_LineSeg(const T3DRAY& line, const T3DVEC& a, const T3DVEC& b);

// Lifts (p.x, p.y, 0) along z onto a plane: '+' lowered, '-' raised, 'x' already on it; for a plane
// along z 'l' if the point lies in it and '0' if not; '?' for NaN.
char hit_Z(const T3DRAY& plane, const T2DVEC& p, T3DVEC& out);

// Where the line of a ray meets the plane of a triangle, with no test that it lies inside; false if
// they are parallel.
bool cut_Tri(const T3DRAY& ray, const T3DFAC& f, T3DVEC& out);

// Solves a b / c d (x, y) = (u, v) by Cramer's rule; false for a determinant of exactly 0.
bool lin_Solve2(double a, double b, double c, double d, double u, double v, double& x, double& y);

}  // namespace undercut
