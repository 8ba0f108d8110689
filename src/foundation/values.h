// The value records of the library and their arithmetic: vectors, frames, matrices, corners.
//
// Everything is double precision, by value, and exact: no tolerance enters here. Division by
// exactly 0.0 leaves a vector unchanged; that is what makes normalising a zero vector harmless. The
// order of operations is part of the result and must not be rearranged.
#pragma once

#include <cmath>
#include <cstdint>

#include "foundation/records.h"

// The operators stand beside their records, in the global namespace, so that they are found
// wherever the records are used.

inline T2DVEC operator+(const T2DVEC& a, const T2DVEC& b) { return {a.x + b.x, a.y + b.y}; }
inline T2DVEC operator-(const T2DVEC& a, const T2DVEC& b) { return {a.x - b.x, a.y - b.y}; }
inline T2DVEC operator*(double s, const T2DVEC& a) { return {s * a.x, s * a.y}; }
inline T2DVEC& operator/=(T2DVEC& a, double s) {
  if (s != 0.0) a = {a.x / s, a.y / s};
  return a;
}
inline T2DVEC operator/(T2DVEC a, double s) { return a /= s; }
inline bool operator==(const T2DVEC& a, const T2DVEC& b) { return a.x == b.x && a.y == b.y; }
inline bool operator!=(const T2DVEC& a, const T2DVEC& b) { return !(a == b); }

inline T3DVEC operator+(const T3DVEC& a, const T3DVEC& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline T3DVEC operator-(const T3DVEC& a, const T3DVEC& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline T3DVEC operator-(const T3DVEC& a) { return {-a.x, -a.y, -a.z}; }
inline T3DVEC operator+(const T3DVEC& a) { return a; }
inline T3DVEC operator*(double s, const T3DVEC& a) { return {s * a.x, s * a.y, s * a.z}; }
inline T3DVEC& operator+=(T3DVEC& a, const T3DVEC& b) { return a = a + b; }
inline T3DVEC& operator*=(T3DVEC& a, double s) { return a = s * a; }
inline T3DVEC& operator/=(T3DVEC& a, double s) {
  if (s != 0.0) a = {a.x / s, a.y / s, a.z / s};
  return a;
}
inline T3DVEC operator/(T3DVEC a, double s) { return a /= s; }
inline bool operator==(const T3DVEC& a, const T3DVEC& b) {
  return a.x == b.x && a.y == b.y && a.z == b.z;
}
inline bool operator!=(const T3DVEC& a, const T3DVEC& b) { return !(a == b); }

namespace undercut {

inline constexpr double kAbsent = 1.7976931348623157e+308;  // stands for "no value"
inline constexpr double kRadians = 0.017453292519943295;    // a degree in radians
inline constexpr double kDegrees = 57.29577951308232;       // a radian in degrees
inline constexpr uint32_t kNone = 0xFFFFFFFFu;              // stands for "no index"

// The vector as a key of AVLTree: ordered by x, then y, then z, by value, so -0.0 equals 0.0. What
// is not a number stands behind all numbers, equal to its like: with the bare comparison it would
// equal every number, and a tree would take the points beside it for it.
struct T3DVECF {
  double x, y, z;
};
inline bool is_Less(double a, double b) { return a < b || (std::isnan(b) && !std::isnan(a)); }
inline bool operator<(const T3DVECF& a, const T3DVECF& b) {
  if (is_Less(a.x, b.x)) return true;
  if (is_Less(b.x, a.x)) return false;
  if (is_Less(a.y, b.y)) return true;
  if (is_Less(b.y, a.y)) return false;
  return is_Less(a.z, b.z);
}

// A triangle by value.
struct T3DFAC {
  T3DVEC a, b, c;
};

struct T3DSPH {
  T3DVEC centre;
  double radius;
};

// A homogeneous 4x4 matrix, row by row: element (r, c) at 4 r + c.
struct T3DMAT {
  double m[16];
};

#pragma pack(push, 4)
// As T3DPOL, with points in the plane.
struct T2DPOL {
  T2DVEC* pnt;
  uint32_t n_pnt;
  T3DSGM* sgm;
  uint32_t n_sgm;
};
#pragma pack(pop)

inline double dot(const T2DVEC& a, const T2DVEC& b) { return a.x * b.x + a.y * b.y; }
inline double dot(const T3DVEC& a, const T3DVEC& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline T3DVEC cross(const T3DVEC& a, const T3DVEC& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double len(const T2DVEC& a) { return std::sqrt(dot(a, a)); }
inline double len(const T3DVEC& a) { return std::sqrt(dot(a, a)); }
inline double dst_Sqr(const T2DVEC& a, const T2DVEC& b) { return dot(a - b, a - b); }
inline double dst_Sqr(const T3DVEC& a, const T3DVEC& b) { return dot(a - b, a - b); }
inline double dst(const T2DVEC& a, const T2DVEC& b) { return len(a - b); }
inline double dst(const T3DVEC& a, const T3DVEC& b) { return len(a - b); }

// The vector divided by its length; a zero vector stays zero.
inline T2DVEC unit(T2DVEC a) { return a /= len(a); }
inline T3DVEC unit(T3DVEC a) { return a /= len(a); }

// The angle between two vectors in degrees, by the arc cosine of the clamped cosine. Two sentinels
// tell zero vectors by their sign: -1.0 if a has no length, else -2.0 if b has none.
double ang_Vec(const T3DVEC& a, const T3DVEC& b);

// The unit vector of a polar angle from +Z and an azimuth from +X, both in degrees.
T3DVEC sph_ToCar(double polar, double azimuth);

// The azimuth of a vector from +X, in degrees, 0 to 360.
double azm_Vec(const T3DVEC& v);

// The reverse: (polar, azimuth in 0 to 360, length). Takes z as it stands: meant for unit vectors.
T3DVEC car_ToSph(const T3DVEC& v);

// Brings a polar angle from [-360, 360] to [0, 180], turning the azimuth with it where it must;
// other angles are left as they are. Degrees.
void fold_Ang(double polar, double azimuth, double& polar_out, double& azimuth_out);

inline constexpr T3DFRM kIdentity = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};

void frm_ToMat(T3DMAT& mat, const T3DFRM& frm);
void mat_ToFrm(const T3DMAT& mat, T3DFRM& frm);
void idn_Mat(T3DMAT& mat);

// The inverse of an orthonormal frame's matrix, in place; right only for such.
void inv_Rigid(T3DMAT& mat);

inline T3DVEC to_Local(const T3DFRM& frm, const T3DVEC& p) {
  const T3DVEC d = p - frm.org;
  return {dot(d, frm.x), dot(d, frm.y), dot(d, frm.z)};
}
inline T3DVEC to_World(const T3DFRM& frm, const T3DVEC& p) {
  return (p.z * frm.z + p.y * frm.y) + (p.x * frm.x + frm.org);
}
inline T3DFAC to_Local(const T3DFRM& frm, const T3DFAC& f) {
  return {to_Local(frm, f.a), to_Local(frm, f.b), to_Local(frm, f.c)};
}
// In place over an array; a null array does nothing.
void to_Local(const T3DFRM& frm, T3DVEC* points, uint32_t count);
void to_World(const T3DFRM& frm, T3DVEC* points, uint32_t count);
void to_Local(const T3DFRM& frm, TArrArrVec& lines);

// A plane with a unit normal.
inline T3DRAY unit_Ray(const T3DRAY& ray) { return {ray.org, unit(ray.dir)}; }

// A frame whose Z axis is the normalised direction and whose origin is org. The X axis has 1 in the
// two components that are not dominant in the direction; of equal components the lower index counts
// as dominant. A zero direction gives the identity, its origin at zero too.
T3DFRM frm_Ray(const T3DRAY& ray);

// ---- Triangles ---------------------------------------------------------------------------------

inline T3DFAC get_Fac(const T3DMSH& msh, uint32_t t) {
  const T3DTRI& tri = msh.tri[t];
  return {msh.vtx[tri.a], msh.vtx[tri.b], msh.vtx[tri.c]};
}
// Two corners coincide, by coordinates.
inline bool is_Flat(const T3DFAC& f) { return f.a == f.b || f.b == f.c || f.c == f.a; }
// Two corners have one index.
inline bool is_Flat(const T3DTRI& t) { return t.a == t.b || t.b == t.c || t.c == t.a; }
inline bool has_Vtx(const T3DTRI& t, uint32_t v) { return t.a == v || t.b == v || t.c == v; }
// Corner k, wrapping: k and k + 1 are the ends of edge k.
inline uint32_t corner(const T3DTRI& t, uint32_t k) {
  return k % 3 == 0 ? t.a : k % 3 == 1 ? t.b : t.c;
}
inline double area_Tri(const T3DFAC& f) { return 0.5 * len(cross(f.b - f.a, f.c - f.a)); }
inline double area_Tri(const T2DVEC& a, const T2DVEC& b, const T2DVEC& c) {
  return 0.5 * std::fabs((b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x));
}
inline T3DVEC nml_Tri(const T3DFAC& f) { return unit(cross(f.b - f.a, f.c - f.a)); }
inline T3DVEC cen_Tri(const T3DFAC& f) { return (f.a + f.b + f.c) / 3.0; }
// The plane of a triangle: its first corner and its unit normal.
inline T3DRAY pln_Tri(const T3DFAC& f) { return {f.a, nml_Tri(f)}; }

}  // namespace undercut
