// The measures of a region: kept up to date one triangle at a time, or computed anew from its list.
//
// upd_Add and upd_Del are constant time and allocate nothing. Their running means weigh with a
// count that includes the triangle on the way in and not on the way out, so adding and removing a
// triangle does not restore the old values: the drift is part of the behaviour.
#pragma once

#include <cmath>
#include <limits>

#include "decomposition/map.h"

namespace undercut {

// A region in its map, with the weights of its rank.
struct TUcRank {
  CUcA* region = nullptr;
  CMap* map = nullptr;
  double area_weight = 1.0;   // L_gw0
  double shape_weight = 0.0;  // L_gw1
};

// The ellipse of a region in the plane of its normal frame: centre, angle in radians, semi-axes.
struct TUcElp {
  double x, y, angle, a, b;
};

// A triangle's unit normal, centroid and area, to the last bit those of nml_Tri, cen_Tri and
// area_Tri.
struct TUcFace {
  T3DVEC normal, centre;
  double area;

  explicit TUcFace(const T3DFAC& f) : normal(cross(f.b - f.a, f.c - f.a)), centre(cen_Tri(f)) {
    const double length = len(normal);
    normal /= length;
    area = 0.5 * length;
  }
};

// The cosine between two vectors, good to 14 digits; not a number where a length is none or
// extreme. It spares the arc cosine where an angle is far from its limit.
inline double cos_Vec(const T3DVEC& a, const T3DVEC& b) {
  const double aa = dot(a, a), bb = dot(b, b);
  if (!(aa > 1e-100 && aa < 1e100 && bb > 1e-100 && bb < 1e100))
    return std::numeric_limits<double>::quiet_NaN();
  return dot(a, b) / std::sqrt(aa * bb);
}

// Of the two azimuths of a four-axis machine the one nearer to `azimuth` by plain difference, not
// round the circle; the first on a tie. Degrees.
double snap_Azimuth(const CMap& map, double azimuth);

// The tool axis that a triangle of this normal asks for, a unit vector: the axis of the seed if it
// is frozen, else the normal itself, snapped and clamped to the band of the region.
T3DVEC axis_Tri(const CMap& map, const CUcA& region, const T3DVEC& normal);

// The axis that the region would have with a triangle of this normal; unit.
T3DVEC would_Axis(const CMap& map, const CUcA& region, const T3DVEC& normal);

// Along a unit direction into the plane through a point.
inline T3DVEC prj_Pnt(const T3DVEC& p, const T3DVEC& along, const T3DVEC& through) {
  return p + dot(along, through - p) * along;
}
inline T3DFAC prj_Tri(const T3DFAC& f, const T3DVEC& along, const T3DVEC& through) {
  return {prj_Pnt(f.a, along, through), prj_Pnt(f.b, along, through), prj_Pnt(f.c, along, through)};
}
inline double rim_Tri(const T3DFAC& f) { return dst(f.a, f.b) + dst(f.b, f.c) + dst(f.c, f.a); }

// Call upd_Add after apply_Move has put the triangle into the region, upd_Del after it has taken it
// out. False for a null pointer or a triangle with two equal corners; nothing is changed then.
bool upd_Add(const TUcRank& context, uint32_t triangle);
bool upd_Del(const TUcRank& context, uint32_t triangle);

// All measures from the list; the polar range and the seed's axis are kept.
void rcalc_Uca(const CMap& map, CUcA& region);

// False when the moments have no real eigenvalues.
bool get_Elp(const CUcA* region, TUcElp& ellipse);
// Semi-axes from principal moments, larger first.
void axes_Elp(double l1, double l2, double& a, double& b);
// Eigenvalues of a symmetric 2x2 matrix, larger first; false if they are not real. The root is
// taken in single precision, on purpose: close decisions of deletion hang on its last digits.
bool eig_Sym2(double m00, double m01, double m10, double m11, double& l1, double& l2);

// The moments about the centre, from those about the origin and the area.
void central_Moments(TUcPlane& plane, double area);
// Moments of one triangle from its corners in frame coordinates (z is not read).
bool mom_Tri(const T3DFAC& local, TUcPlane& moments);
// Folds a triangle in; `area` is the region's normal area before it.
void fold_Plane(TUcPlane& plane, double area, const T3DFAC& local);
// Takes a triangle out; nothing changes unless more area than its own is left.
void unfold_Plane(TUcPlane& plane, double area, const T3DFAC& local);

}  // namespace undercut
