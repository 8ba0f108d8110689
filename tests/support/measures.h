// Comparison of the measures of regions.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "decomposition/region.h"

namespace undercut::tests {

inline void expect_Near(const T3DVEC& a, const T3DVEC& b, double tolerance) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

// The same to the last bit; what is no number equals its like.
inline bool is_Same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }
inline void expect_Same(const TUcMeasures& a, const TUcMeasures& b) {
  static_assert(sizeof(TUcMeasures) == 50 * sizeof(double));
  double x[50], y[50];
  std::memcpy(x, static_cast<const void*>(&a), sizeof x);
  std::memcpy(y, static_cast<const void*>(&b), sizeof y);
  for (int i = 0; i < 50; ++i) ASSERT_TRUE(is_Same(x[i], y[i])) << i << ": " << x[i] << " " << y[i];
}

}  // namespace undercut::tests
