// Angles, frames and matrices. Angles in degrees.
#include "foundation/values.h"

#include <algorithm>

namespace undercut {

double ang_Vec(const T3DVEC& a, const T3DVEC& b) {
  const double la = len(a), lb = len(b);
  if (la == 0) return -1.0;
  if (lb == 0) return -2.0;
  // Rounding can push the cosine of parallel vectors just above 1.
  return kDegrees * std::acos(std::clamp(dot(a, b) / (la * lb), -1.0, 1.0));
}

T3DVEC sph_ToCar(double polar, double azimuth) {
  const double p = polar * kRadians, a = azimuth * kRadians;
  const double sin_p = std::sin(p);
  return {sin_p * std::cos(a), sin_p * std::sin(a), std::cos(p)};
}

double azm_Vec(const T3DVEC& v) {
  double azimuth = std::atan2(v.y, v.x);
  if (azimuth < 0) azimuth += 6.283185307179586;
  return azimuth * kDegrees;
}

T3DVEC car_ToSph(const T3DVEC& v) { return {std::acos(v.z) * kDegrees, azm_Vec(v), len(v)}; }

void fold_Ang(double polar, double azimuth, double& polar_out, double& azimuth_out) {
  polar_out = polar;
  azimuth_out = azimuth;
  if (-360 <= polar && polar < -180) {
    polar_out = 360 + polar;
  } else if (-180 <= polar && polar < 0) {
    polar_out = -polar;
    azimuth_out = azimuth + 180;
  } else if (180 <= polar && polar <= 360) {
    polar_out = 360 - polar;
    azimuth_out = azimuth + 180;
  }
}

void frm_ToMat(T3DMAT& mat, const T3DFRM& frm) {
  mat = {{frm.x.x, frm.y.x, frm.z.x, frm.org.x,  //
          frm.x.y, frm.y.y, frm.z.y, frm.org.y,  //
          frm.x.z, frm.y.z, frm.z.z, frm.org.z,  //
          0, 0, 0, 1}};
}

void mat_ToFrm(const T3DMAT& mat, T3DFRM& frm) {
  const double* m = mat.m;
  frm = {{m[0], m[4], m[8]}, {m[1], m[5], m[9]}, {m[2], m[6], m[10]}, {m[3], m[7], m[11]}};
}

void idn_Mat(T3DMAT& mat) { frm_ToMat(mat, kIdentity); }

void inv_Rigid(T3DMAT& mat) {
  T3DFRM frm;
  mat_ToFrm(mat, frm);
  // The rows of the transposed rotation are the axes.
  const T3DVEC org = {-dot(frm.x, frm.org), -dot(frm.y, frm.org), -dot(frm.z, frm.org)};
  mat = {{frm.x.x, frm.x.y, frm.x.z, org.x,  //
          frm.y.x, frm.y.y, frm.y.z, org.y,  //
          frm.z.x, frm.z.y, frm.z.z, org.z,  //
          0, 0, 0, 1}};
}

void to_Local(const T3DFRM& frm, T3DVEC* points, uint32_t count) {
  for (uint32_t i = 0; points && i < count; ++i) points[i] = to_Local(frm, points[i]);
}

void to_World(const T3DFRM& frm, T3DVEC* points, uint32_t count) {
  for (uint32_t i = 0; points && i < count; ++i) points[i] = to_World(frm, points[i]);
}

void to_Local(const T3DFRM& frm, TArrArrVec& lines) {
  for (uint32_t i = 0; lines.data && i < lines.count; ++i)
    to_Local(frm, lines.data[i].data, lines.data[i].count);
}

T3DFRM frm_Ray(const T3DRAY& ray) {
  const T3DRAY plane = unit_Ray(ray);
  const T3DVEC& d = plane.dir;
  const double c[3] = {d.x, d.y, d.z};
  double best = -1.0;
  int k = -1;
  for (int i = 0; i < 3; ++i) {
    if (std::fabs(c[i]) > best) {
      best = std::fabs(c[i]);
      k = i;
    }
  }
  if (!(best > 0)) return kIdentity;  // also where no component is a number
  double u[3] = {1, 1, 1};
  u[k] = -(c[(k + 1) % 3] + c[(k + 2) % 3]) / c[k];
  const T3DVEC x = unit(T3DVEC{u[0], u[1], u[2]});
  const T3DVEC z = unit(d);
  return {x, cross(z, x), z, plane.org};
}

}  // namespace undercut
