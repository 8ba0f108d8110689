// The searches over (theta, phi), step by step as they are described, without any structure.
#pragma once

#include <cmath>
#include <functional>

namespace reference {

using Rating = std::function<double(double theta, double phi)>;

struct TFound {
  double theta, phi, rating;
};

inline TFound scan_Sphere(const double (&box)[4], double step_theta, double arc, const Rating& f) {
  const double none = 1.7976931348623157e+308;
  TFound best = {none, none, none};
  const auto consider = [&](double theta, double phi) {
    const double rating = f(theta, phi);
    if (rating < best.rating) best = {theta, phi, rating};
  };
  double theta = box[0];
  while (theta < box[2]) {
    if (theta == 0 || theta == 180) {
      consider(theta, 0);
    } else {
      const double dp = arc / std::sin(theta * 0.017453292519943295);
      const double e = std::fabs(box[3] - box[1]);
      const double n = std::floor(e / dp);
      const double m = std::ceil(e / dp);
      const double lo = e - n * dp;
      const double hi = m * dp - e;
      double count = n;
      if (hi <= lo) count = m;
      const double step = e / count;
      double phi = box[1];
      while (phi < box[3]) {
        consider(theta, phi);
        if (!(step > 0) || std::isinf(step) || phi + step == phi) break;
        phi = phi + step;
      }
    }
    if (!(step_theta > 0) || std::isinf(step_theta) || theta + step_theta == theta) break;
    theta = theta + step_theta;
  }
  return best;
}

// Vertex k is at (x[k], y[k]) and has the rating r[k].
struct TSimplex {
  double x[3], y[3], r[3];
  unsigned iterations;

  void swap_IfGreater(int i, int k) {
    if (!(r[i] > r[k])) return;
    const double hx = x[i], hy = y[i], hr = r[i];
    x[i] = x[k], y[i] = y[k], r[i] = r[k];
    x[k] = hx, y[k] = hy, r[k] = hr;
  }
};

// Moves the vertices of s; the answer is the best of the last sort.
inline TFound walk_Downhill(TSimplex& s, double eps, unsigned limit, const Rating& f) {
  for (int k = 0; k < 3; ++k) s.r[k] = f(s.x[k], s.y[k]);
  TFound found = {s.x[0], s.y[0], s.r[0]};
  for (s.iterations = 0; s.iterations < limit; ++s.iterations) {
    s.swap_IfGreater(0, 1);
    s.swap_IfGreater(0, 2);
    s.swap_IfGreater(1, 2);
    const double bx = s.x[0], by = s.y[0], fb = s.r[0];
    const double wx = s.x[2], wy = s.y[2], fw = s.r[2];
    const double fg = s.r[1];
    found = {bx, by, fb};
    const double dx = std::fabs(bx - wx), dy = std::fabs(by - wy);
    if ((dx < dy ? dy : dx) < eps) break;
    const double mx = (bx + s.x[1]) / 2, my = (by + s.y[1]) / 2;
    const double rx = mx + 1.0 * (mx - wx), ry = my + 1.0 * (my - wy);
    const double fr = f(rx, ry);
    if (fr < fb) {
      const double ex = mx + 2.0 * (mx - wx), ey = my + 2.0 * (my - wy);
      const double fe = f(ex, ey);
      if (fe < fb) {
        s.x[2] = ex, s.y[2] = ey, s.r[2] = fe;
      } else {
        s.x[2] = rx, s.y[2] = ry, s.r[2] = fr;
      }
    } else if (fr < fg) {
      s.x[2] = rx, s.y[2] = ry, s.r[2] = fr;
    } else {
      if (fr <= fw) s.x[2] = rx, s.y[2] = ry, s.r[2] = fr;
      const double cx = mx + (-0.5) * (mx - wx), cy = my + (-0.5) * (my - wy);
      const double fc = f(cx, cy);
      if (fc < fw) {
        s.x[2] = cx, s.y[2] = cy, s.r[2] = fc;
      } else {
        for (const int k : {1, 2}) {
          s.x[k] = (bx + s.x[k]) / 2;
          s.y[k] = (by + s.y[k]) / 2;
          s.r[k] = f(s.x[k], s.y[k]);
        }
      }
    }
  }
  return found;
}

}  // namespace reference
