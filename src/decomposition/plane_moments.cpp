// Moments of regions in the plane of their normal frame, and the ellipse that has the same.
//
// Polygon moments by the boundary formula (after C. Steger, On the Calculation of Moments of
// Polygons, 1996). Products run from left to right throughout.
#include <cmath>

#include "decomposition/measures.h"

namespace undercut {

namespace {

constexpr double kFourOverPi = 1.2732395447351628;

T2DVEC mean_Corner(const T3DFAC& f) {
  return {(f.a.x + f.b.x + f.c.x) / 3.0, (f.a.y + f.b.y + f.c.y) / 3.0};
}

double signed_Area(const T3DFAC& f) {
  return (f.a.x * (f.b.y - f.c.y) + f.b.x * (f.c.y - f.a.y) + f.c.x * (f.a.y - f.b.y)) / 2;
}

// But for those about the centre, which sums of several triangles have no use for.
void sum_Moments(const T3DFAC& f, TUcPlane& moments) {
  const double x[4] = {f.a.x, f.b.x, f.c.x, f.a.x};
  const double y[4] = {f.a.y, f.b.y, f.c.y, f.a.y};
  double sxx = 0, syy = 0, sxy = 0;
  for (int i = 0; i < 3; ++i) {
    const int j = i + 1;
    const double t = x[i] * y[j] - x[j] * y[i];
    sxx += (x[i] * x[i] + x[i] * x[j] + x[j] * x[j]) * t;
    syy += (y[i] * y[i] + y[i] * y[j] + y[j] * y[j]) * t;
    sxy += (x[i] * y[j] + 2 * x[i] * y[i] + 2 * x[j] * y[j] + x[j] * y[i]) * t;
  }
  moments.sxx = sxx / 12;
  moments.syy = syy / 12;
  moments.sxy = sxy / 24;
  moments.centre = mean_Corner(f);
}

}  // namespace

void central_Moments(TUcPlane& plane, double area) {
  const T2DVEC m = plane.centre;
  plane.cxx = plane.sxx - area * m.x * m.x;
  plane.cyy = plane.syy - area * m.y * m.y;
  plane.cxy = plane.sxy - area * m.x * m.y;
}

bool mom_Tri(const T3DFAC& f, TUcPlane& moments) {
  sum_Moments(f, moments);
  central_Moments(moments, signed_Area(f));
  return true;
}

void fold_Plane(TUcPlane& plane, double area, const T3DFAC& local) {
  TUcPlane own;
  sum_Moments(local, own);
  plane.sxx += own.sxx;
  plane.syy += own.syy;
  plane.sxy += own.sxy;
  const double s = signed_Area(local);
  plane.centre = (area / (area + s)) * plane.centre + (s / (area + s)) * own.centre;
  central_Moments(plane, area + s);
}

void unfold_Plane(TUcPlane& plane, double area, const T3DFAC& local) {
  const double s = signed_Area(local);
  if (!(area > s)) return;
  TUcPlane own;
  sum_Moments(local, own);
  plane.sxx -= own.sxx;
  plane.syy -= own.syy;
  plane.sxy -= own.sxy;
  plane.centre = (area / (area - s)) * plane.centre - (s / (area - s)) * own.centre;
  central_Moments(plane, area - s);
}

bool eig_Sym2(double m00, double m01, double m10, double m11, double& l1, double& l2) {
  const double t = -(m00 + m11);
  const double d = t * t / 4 - (m00 * m11 - m10 * m01);
  if (d < 0) return false;
  const double s = std::sqrt(static_cast<float>(d));
  l1 = -t / 2 + s;
  l2 = -t / 2 - s;
  return true;
}

void axes_Elp(double l1, double l2, double& a, double& b) {
  const double q = kFourOverPi;
  a = std::pow(q * q * l1 * l1 * l1 / l2, 0.125);
  b = std::pow(q * q * l2 * l2 * l2 / l1, 0.125);
}

bool get_Elp(const CUcA* region, TUcElp& ellipse) {
  if (!region) return false;
  const TUcPlane& plane = region->measures.plane;
  double l1, l2;
  if (!eig_Sym2(plane.cyy, -plane.cxy, -plane.cxy, plane.cxx, l1, l2)) return false;
  ellipse.angle = -0.5 * std::atan2(-2 * plane.cxy, plane.cxx - plane.cyy);
  axes_Elp(l1, l2, ellipse.a, ellipse.b);
  ellipse.x = plane.centre.x;
  ellipse.y = plane.centre.y;
  return true;
}

}  // namespace undercut
