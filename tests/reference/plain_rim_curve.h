// A closed curve smoothed by a dense solve and sampled by plain cubics, in long double.
#pragma once

#include <cmath>
#include <vector>

#include "tests/reference/plain_smooth.h"

namespace undercut::plain {

using Values = std::vector<long double>;

// One coordinate of the smoothed curve: its values and first derivatives at the points.
struct TPlainSpline {
  Values value, slope;
};

inline TPlainSpline fit_Values(const std::vector<double>& x, double p) {
  const size_t n = x.size();
  const auto at = [n](size_t i) { return i % n; };
  Values right(n);
  for (size_t i = 0; i < n; ++i)
    right[i] = (long double)x[at(i + n - 1)] - 2.0L * x[i] + (long double)x[at(i + 1)];
  const Values u = solve(make_Cyclic(n, 6.0 / p + 2.0 / 3.0, -4.0 / p + 1.0 / 6.0, 1.0 / p), right);
  TPlainSpline fit = {Values(n), Values(n)};
  for (size_t i = 0; i < n; ++i)
    fit.value[i] = x[i] + (2.0L * u[i] - u[at(i + 1)] - u[at(i + n - 1)]) / p;
  // The difference of each point is that to the point before it, of point 1 that to the last.
  for (size_t q = 0; q < n; ++q) {
    const size_t s = q == 1 ? n - 1 : at(q + n - 1);
    fit.slope[q] = fit.value[q] - fit.value[s] + (2.0L * u[q] - u[s]) / 6.0L;
  }
  return fit;
}

// The cubic with these values and slopes at both ends, by its coefficients.
inline double sample_Cubic(const TPlainSpline& fit, size_t i, long double u) {
  const size_t j = (i + 1) % fit.value.size();
  const long double rise = fit.value[j] - fit.value[i];
  const long double c2 = 3.0L * rise - 2.0L * fit.slope[i] - fit.slope[j];
  const long double c3 = fit.slope[i] + fit.slope[j] - 2.0L * rise;
  return double(fit.value[i] + u * (fit.slope[i] + u * (c2 + u * c3)));
}

// The points at 0.0, step, step + step, ... below the number of points.
inline std::vector<T3DVEC> fit_Rim(const std::vector<T3DVEC>& line, double p, double step) {
  std::vector<double> x, y;
  for (const T3DVEC& point : line) {
    x.push_back(point.x);
    y.push_back(point.y);
  }
  const TPlainSpline fit_x = fit_Values(x, p), fit_y = fit_Values(y, p);
  std::vector<T3DVEC> samples;
  for (double t = 0.0; t < double(line.size()); t += step) {
    const auto i = static_cast<size_t>(std::floor(t));
    const double u = t - std::floor(t);
    samples.push_back({sample_Cubic(fit_x, i, u), sample_Cubic(fit_y, i, u), 0.0});
  }
  return samples;
}

}  // namespace undercut::plain
