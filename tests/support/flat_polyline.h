// A polyline in the plane that owns its points and segments.
#pragma once

#include <cstdint>
#include <vector>

#include "foundation/values.h"

namespace undercut::tests {

struct TFlatPolyline {
  std::vector<T2DVEC> points;
  std::vector<T3DSGM> segments;

  T2DPOL view() {
    T2DPOL pol = {};
    pol.pnt = points.data();
    pol.n_pnt = static_cast<uint32_t>(points.size());
    pol.sgm = segments.data();
    pol.n_sgm = static_cast<uint32_t>(segments.size());
    return pol;
  }
};

}  // namespace undercut::tests
