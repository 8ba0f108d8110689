// Closed curves as a host hands them over.
#pragma once

#include <cmath>
#include <vector>

#include "foundation/values.h"
#include "tests/mesh/soups.h"

namespace undercut::tests {

using Points = std::vector<T3DVEC>;

// Owns a set of curves.
struct TCurves {
  std::vector<Points> curves;
  std::vector<TArrVec> views = {};

  TArrArrVec view() {
    views.clear();
    for (Points& curve : curves) {
      const TArr<T3DVEC> points = view_Arr(curve);
      views.push_back({points.data, points.count});
    }
    return {views.data(), static_cast<uint32_t>(views.size())};
  }
};

// A circle round Z, counterclockwise seen from +Z.
inline Points make_Circle(const T3DVEC& centre, double radius, uint32_t points) {
  Points circle;
  for (uint32_t i = 0; i < points; ++i) {
    const double turn = 6.283185307179586 * i / points;
    circle.push_back(centre + T3DVEC{radius * std::cos(turn), radius * std::sin(turn), 0});
  }
  return circle;
}

}  // namespace undercut::tests
