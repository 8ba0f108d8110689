// Reproducible random numbers and points: the same in every standard library.
#pragma once

#include <cstdint>
#include <limits>
#include <random>

#include "foundation/values.h"

namespace reference {

class Random {
 public:
  explicit Random(uint64_t seed) : engine_(seed) {}

  uint64_t below(uint64_t count) { return engine_() % count; }
  int64_t integer(int64_t low, int64_t high) {
    return low + static_cast<int64_t>(below(static_cast<uint64_t>(high - low) + 1));
  }
  bool chance(double share) { return real(0, 1) < share; }
  double real(double low, double high) {
    return low + (high - low) * (static_cast<double>(engine_() >> 11) * 0x1p-53);
  }
  T2DVEC pair(double low, double high) {
    const double x = real(low, high);
    return {x, real(low, high)};
  }
  T3DVEC triple(double low, double high) {
    const double x = real(low, high);
    const double y = real(low, high);
    return {x, y, real(low, high)};
  }
  // Zeros, ones, the ends of the range of double, infinities and what is not a number.
  double special() {
    static constexpr double kLargest = std::numeric_limits<double>::max();
    static constexpr double kInfinite = std::numeric_limits<double>::infinity();
    static constexpr double kValues[] = {0.0,
                                         -0.0,
                                         1.0,
                                         -1.0,
                                         0.5,
                                         kLargest,
                                         -kLargest,
                                         kInfinite,
                                         -kInfinite,
                                         5e-324,
                                         1e-300,
                                         1e200,
                                         std::numeric_limits<double>::quiet_NaN()};
    return kValues[below(sizeof(kValues) / sizeof(kValues[0]))];
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace reference
