// What the tests of rims and curves share.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "host/curve_file.h"
#include "host/geometry.h"

namespace undercut::host {

// A file with one block for each curve.
inline std::string print_Curves(const std::vector<Curve>& curves) {
  std::ostringstream out;
  for (size_t i = 0; i < curves.size(); ++i) write_Curve(out, pad_Number(i), curves[i]);
  return out.str();
}

// The distance of a point from a closed polygon.
inline double dist_Curve(const Curve& curve, const T3DVEC& p) {
  double nearest = 1e300;
  for (size_t i = 0; i < curve.size(); ++i) {
    const T3DVEC a = curve[i], along = curve[(i + 1) % curve.size()] - a;
    const double square = dot_Vec(along, along);
    const double t =
        square > 0.0 ? std::fmin(std::fmax(dot_Vec(p - a, along) / square, 0.0), 1.0) : 0.0;
    nearest = std::fmin(nearest, len_Vec(a + t * along - p));
  }
  return nearest;
}

}  // namespace undercut::host
