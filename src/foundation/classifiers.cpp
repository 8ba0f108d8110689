// Sides of points, and the classes of points against segments, polygons and volumes.
//
// The order of the products in the plain determinants is part of the answer: rounding decides which
// points count as collinear, and may put a corner of a triangle just outside it.
#include "foundation/predicates.h"
#include "foundation/primitives.h"

namespace undercut {

namespace {

// A point as the predicates take it.
struct TPair {
  double xy[2];
  explicit TPair(const T2DVEC& p) : xy{p.x, p.y} {}
};
struct TTriple {
  double xyz[3];
  explicit TTriple(const T3DVEC& p) : xyz{p.x, p.y, p.z} {}
};

// The class against the segment e to f of a point whose side of it is known.
char cls_Side(int side, const T2DVEC& p, const T2DVEC& e, const T2DVEC& f) {
  if (side < 0) return '-';
  if (side > 0) return '+';
  if (p == e) return 'a';
  if (p == f) return 'b';
  const bool vertical = e.x == f.x;
  const double at = vertical ? p.y : p.x;
  const double first = vertical ? e.y : e.x;
  const double second = vertical ? f.y : f.x;
  const bool rising = first <= second;
  if (at < (rising ? first : second)) return rising ? '<' : '>';
  if (at > (rising ? second : first)) return rising ? '>' : '<';
  return '1';
}

// The class inside a convex polygon of turn `turn`, from the sides of the point against its edges.
template <int N>
char cls_Sides(int turn, const int (&sides)[N]) {
  bool on_edge = false;
  for (const int side : sides) {
    if (side * turn == -1) return '0';
    on_edge |= side == 0;
  }
  return on_edge ? 'r' : '1';
}

// The class of a point by the sign of an in-circle determinant. Without a number it is outside.
char cls_Sign(double det) { return det > 0.0 ? '1' : det == 0.0 ? 'r' : '0'; }

}  // namespace

int sgn_Turn(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c) {
  const double left = a.x * b.y + b.x * c.y + c.x * a.y;
  const double right = a.x * c.y + b.x * a.y + c.x * b.y;
  return right > left ? -1 : left > right ? 1 : 0;
}

int cmp_Seg2X(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c) {
  return sgn(orient2d(TPair(a).xy, TPair(b).xy, TPair(c).xy));
}

int sgn_Tri3X(const T3DFAC& f, const T3DVEC& p) {
  return sgn(orient3d(TTriple(f.a).xyz, TTriple(f.b).xyz, TTriple(f.c).xyz, TTriple(p).xyz));
}

char cls_Seg2(const T2DVEC& p, const T2DVEC& e, const T2DVEC& f) {
  return cls_Side(sgn_Turn(e, f, p), p, e, f);
}

char cls_Seg2X(const T2DVEC& p, const T2DVEC& e, const T2DVEC& f) {
  return cls_Side(cmp_Seg2X(e, f, p), p, e, f);
}

// Only the maximum counts as the boundary; a point on a minimum is inside. Answers hang on it.
char cls_Box2(const C2DAABB& box, const T2DVEC& p) {
  if (p.x < box.min.x || p.y < box.min.y || p.x > box.max.x || p.y > box.max.y) return '0';
  return p.x == box.max.x || p.y == box.max.y ? 'r' : '1';
}

char cls_Box3(const C3DAABB& box, const T3DVEC& p) {
  if (p.x < box.min.x || p.y < box.min.y || p.z < box.min.z) return '0';
  if (p.x > box.max.x || p.y > box.max.y || p.z > box.max.z) return '0';
  if (p.x == box.min.x || p.y == box.min.y || p.z == box.min.z) return 'r';
  return p.x == box.max.x || p.y == box.max.y || p.z == box.max.z ? 'r' : '1';
}

char cls_Sphere(const T3DSPH& sphere, const T3DVEC& p) {
  const double square = dst_Sqr(p, sphere.centre);
  const double limit = sphere.radius * sphere.radius;
  return square < limit ? '1' : square == limit ? 'r' : '0';
}

char cls_Tri2(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c, const T2DVEC& p) {
  const int turn = sgn_Turn(a, b, c);
  if (turn == 0) return '?';
  return cls_Sides(turn, {sgn_Turn(a, b, p), sgn_Turn(b, c, p), sgn_Turn(c, a, p)});
}

char cls_Quad2X(const T2DVEC q[4], const T2DVEC& p) {
  const int turn = cmp_Seg2X(q[0], q[1], q[2]);
  if (turn == 0 || turn != cmp_Seg2X(q[2], q[3], q[0])) return '?';
  return cls_Sides(turn, {cmp_Seg2X(q[0], q[1], p), cmp_Seg2X(q[1], q[2], p),
                          cmp_Seg2X(q[2], q[3], p), cmp_Seg2X(q[3], q[0], p)});
}

char cls_Circ(const C2DCIRC& circle, const T2DVEC& p) {
  const T2DVEC& m = circle.centre;
  const double r = circle.radius;
  return cls_Sign(incircle(TPair({m.x + r, m.y}).xy, TPair({m.x, m.y + r}).xy,
                           TPair({m.x - r, m.y}).xy, TPair(p).xy));
}

char cls_Sph(const T3DSPH& sphere, const T3DVEC& p) {
  const T3DVEC& m = sphere.centre;
  const double r = sphere.radius;
  return cls_Sign(insphere(TTriple({m.x - r, m.y - r, m.z}).xyz,
                           TTriple({m.x + r, m.y - r, m.z}).xyz, TTriple({m.x, m.y + r, m.z}).xyz,
                           TTriple({m.x, m.y, m.z - r}).xyz, TTriple(p).xyz));
}

char cls_Slab(const T3DSLB& slab, const T3DVEC& p) {
  const T3DFRM& frm = slab.frm;
  const int over_low = sgn_Pln({frm.org + slab.low * frm.x, frm.x}, p);
  const int over_high = sgn_Pln({frm.org + slab.high * frm.x, frm.x}, p);
  if (over_low < 0 || over_high > 0) return '0';
  return over_low == 0 || over_high == 0 ? 'r' : '1';
}

char axis_Vec(const T3DVEC& v) {
  const double x = std::fabs(v.x), y = std::fabs(v.y), z = std::fabs(v.z);
  if (x >= y && x >= z) return 'x';
  if (y >= x && y >= z) return 'y';
  if (z >= x && z >= y) return 'z';
  return '?';
}

char axis_Tri3(const T3DFAC& f) { return axis_Vec(cross(f.c - f.a, f.b - f.a)); }

T2DVEC drop_Axis(char axis, const T3DVEC& p) {
  if (axis == 'z') return {p.x, p.y};
  if (axis == 'y') return {p.z, p.x};
  return {p.y, p.z};
}

}  // namespace undercut
