#include "decomposition/candidates.h"

#include <cmath>

#include "decomposition/measures.h"

namespace undercut {

namespace {

// Sideways for the relaxed test: the part of the normal at right angles to the axis, or the normal
// itself where it is nearly along the axis.
T3DVEC shift_Dir(const TUcCand& c, const T3DVEC& n, const T3DVEC& axis) {
  const double angle = ang_Vec(n, axis);
  if (!(angle > c.null_angle && angle < 180 - c.null_angle)) return n;
  const double d = dot(n, axis);
  const T3DVEC u = unit(n - d * axis);
  return dot(u, n) < 0 ? -u : u;
}

bool in_Unit(double e) { return e >= 0 && e <= 1; }

// Computed cosines and angles of unit vectors are good to 14 digits, so a thousandth of a millionth
// is far more than they can be wrong by.
constexpr double kMargin = 1e-9;

bool is_Beyond(const TUcCand& c, const T3DVEC& n) {
  TUcCone& cone = c.map->cone;
  if (cone.aperture != c.aperture) {
    const bool angle = c.aperture >= 0 && c.aperture <= 180;
    cone.aperture = c.aperture;
    cone.inside = angle ? std::cos(c.aperture * kRadians) + kMargin : 2;
    cone.outside = angle ? std::cos(c.aperture * kRadians) - kMargin : -2;
  }
  const double cosine = cos_Vec(n, c.region->measures.normal);
  if (cosine > cone.inside) return false;
  if (cosine < cone.outside) return true;
  return ang_Vec(n, unit(c.region->measures.normal)) > c.aperture;
}

bool is_Seen(const TUcCand& c, const TUcFace& face, const T3DVEC& axis) {
  T3DVEC p = face.centre;
  if (c.lift > 0) p += c.lift * face.normal;
  if (!c.tree->AnyHit({p, axis})) return true;
  if (!(c.fuzz > 0)) return false;
  p += c.fuzz * shift_Dir(c, face.normal, axis);
  return !c.tree->AnyHit({p, axis});
}

bool is_Asked(const TUcCand& c) {
  return c.region && c.map && c.tree && c.triangle < c.map->msh.n_tri;
}

// The share of a triangle's area that shows along an axis.
double show_Share(const T3DFAC& f, const TUcFace& face, const T3DVEC& axis) {
  return area_Tri(prj_Tri(f, axis, face.centre)) / face.area;
}

double turn_Share(double angle, double aperture) {
  if (angle < 0) angle = 0;
  if (angle > aperture) angle = aperture;
  return 1 - angle / aperture;
}

// The measures that hang on normal and axis alone are given.
bool sum_Cost(const TUcCand& c, const T3DFAC& f, double nml, double prj, double& cost) {
  const double e[5] = {nml, prj, q_Bnd(*c.map, c.region, c.triangle), q_Elp(*c.map, c.region, f),
                       q_Fre(*c.map, c.region, c.triangle)};
  double score = 0;
  for (int i = 0; i < 5; ++i) {
    if (!in_Unit(e[i])) return false;
    score = i == 0 ? c.weights[0] * e[0] : score + c.weights[i] * e[i];
  }
  cost = -score;
  return !std::isnan(cost);
}

}  // namespace

bool test_Cand(const TUcCand& c) {
  if (!is_Asked(c)) return false;
  const T3DFAC f = get_Fac(c.map->msh, c.triangle);
  if (is_Flat(f)) return false;
  const TUcFace face(f);
  return !is_Beyond(c, face.normal) && is_Seen(c, face, would_Axis(*c.map, *c.region, face.normal));
}

bool cost_Cand(const TUcCand& c, double& cost) {
  if (!is_Asked(c)) return false;
  const T3DFAC f = get_Fac(c.map->msh, c.triangle);
  return sum_Cost(c, f, q_Nml(*c.map, c.region, f, c.aperture), q_Prj(*c.map, c.region, f), cost);
}

double q_Nml(const CMap&, const CUcA* region, const T3DFAC& f, double aperture) {
  if (!region) return -1.0;
  if (is_Flat(f)) return -2.0;
  if (!(aperture > 0 && aperture < 180)) return -3.0;
  return turn_Share(ang_Vec(nml_Tri(f), unit(region->measures.normal)), aperture);
}

double q_Prj(const CMap& map, const CUcA* region, const T3DFAC& f) {
  if (!region) return -1.0;
  if (is_Flat(f)) return -2.0;
  const TUcFace face(f);
  return show_Share(f, face, would_Axis(map, *region, face.normal));
}

double q_Bnd(CMap& map, const CUcA* region, uint32_t triangle) {
  if (!region) return -1.0;
  if (!walk_Fan(map, triangle, region->id)) return -2.0;
  double shared, other;
  if (!sum_Fan(map, region->id, shared, other)) return -3.0;
  return shared / (shared + other);
}

double q_Elp(const CMap&, const CUcA* region, const T3DFAC& f) {
  if (!region) return -1.0;
  TUcPlane plane = region->measures.plane;
  fold_Plane(plane, region->measures.normal_area, to_Local(region->measures.normal_frame, f));
  double l1, l2, a, b;
  if (!eig_Sym2(plane.cyy, -plane.cxy, -plane.cxy, plane.cxx, l1, l2)) return -2.0;
  if (l1 < 0) return -3.0;
  if (l2 < 0) return -3.5;
  axes_Elp(l1, l2, a, b);
  if (!(a > 0)) return -4.0;
  if (!(b > 0)) return -4.5;
  return a < b ? a / b : b / a;
}

double q_Fre(const CMap& map, const CUcA* region, uint32_t triangle) {
  if (!region) return -1.0;
  return map.region_of[triangle] == 0 ? 1.0 : 0.0;
}

bool want_Tri(TUcCand& c, CUcA* region, uint32_t triangle) {
  c.region = region;
  c.triangle = triangle;
  if (!is_Asked(c)) return true;
  const T3DFAC f = get_Fac(c.map->msh, triangle);
  if (is_Flat(f)) return true;
  // Test and cost in one, as they ask for the same angle and axis.
  const TUcFace face(f);
  const double angle = ang_Vec(face.normal, unit(region->measures.normal));
  if (angle > c.aperture) return true;
  const T3DVEC axis = would_Axis(*c.map, *region, face.normal);
  if (!is_Seen(c, face, axis)) return true;
  if (!(c.aperture > 0 && c.aperture < 180)) return false;
  double cost;
  return sum_Cost(c, f, turn_Share(angle, c.aperture), show_Share(f, face, axis), cost) &&
         region->add_Wish(triangle, cost);
}

bool heed_Flag(TUcCand& c, CUcA* region, uint32_t triangle, char flag, bool open) {
  if (flag == '?') return true;
  const bool has = region->has_Cnd(triangle);
  if (flag == '+') return has || !open || want_Tri(c, region, triangle);
  if (has && !region->drop_Wish(triangle)) return false;
  return flag == '-' || !open || want_Tri(c, region, triangle);
}

}  // namespace undercut
