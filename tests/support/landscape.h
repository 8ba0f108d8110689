// Ratings that are a plain function of the angles, and a record of where a search asked for them.
#pragma once

#include <cmath>
#include <functional>
#include <limits>
#include <utility>
#include <vector>

#include "tests/reference/random_geometry.h"
#include "undercut/evaluators.h"

namespace undercut::tests {

class CLandscape final : public CXaxUcErr {
 public:
  using Height = std::function<double(double theta, double phi)>;
  explicit CLandscape(Height height) : height_(std::move(height)) {}
  double Err(const double& theta, const double& phi) override {
    asked.push_back({theta, phi});
    return height_(theta, phi);
  }
  std::vector<T2DVEC> asked;

 private:
  Height height_;
};

// A few waves, about a third of them in flat terraces, so that ratings are often equal, and some
// with patches without a number.
inline CLandscape::Height make_Waves(reference::Random& random) {
  double a[9];
  for (double& factor : a) factor = random.real(-1, 1);
  const bool terraced = random.chance(0.35), torn = random.chance(0.2);
  return [=](double theta, double phi) {
    const double x = theta * 0.05, y = phi * 0.03;
    double h = a[0] * x + a[1] * y + a[2] * std::sin(3 * x + 4 * a[3]) +
               a[4] * std::cos(2 * y + x * a[5]) + a[6] * std::sin(x * y * 0.2 + a[7]);
    if (terraced) h = std::floor(h * 2);
    if (torn && std::sin(7 * x + 5 * y + a[8]) > 0.6)
      return std::numeric_limits<double>::quiet_NaN();
    return h;
  };
}

// Equal by value, or both not a number.
inline bool is_Alike(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

}  // namespace undercut::tests
