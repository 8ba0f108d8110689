// Simplification and smoothing of closed curves in their plainest form: an ordered multimap, and a
// dense matrix.
#pragma once

#include <cmath>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "foundation/values.h"

namespace undercut::plain {

// The rest of a closed polyline whose flattest points are removed one by one.
inline std::vector<T3DVEC> simplify(const std::vector<T3DVEC>& line, double limit) {
  const size_t n = line.size();
  std::vector<size_t> next(n), previous(n);
  std::vector<double> height(n);
  const auto measure = [&](size_t i) {
    const T3DVEC a = line[previous[i]], p = line[i], b = line[next[i]];
    const double twice = (p.x - a.x) * (b.y - a.y) - (p.y - a.y) * (b.x - a.x);
    const double chord = std::sqrt((a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y));
    return chord == 0.0 ? 0.0 : twice / chord;
  };
  std::multimap<double, size_t> map;
  for (size_t i = 0; i < n; ++i) {
    next[i] = (i + 1) % n;
    previous[i] = (i + n - 1) % n;
    height[i] = std::fabs(measure(i));
    map.insert({height[i], i});
  }
  const auto replace = [&](size_t i) {
    for (auto at = map.lower_bound(height[i]); at != map.end(); ++at)
      if (at->second == i) {
        map.erase(at);
        break;
      }
    height[i] = std::fabs(static_cast<float>(measure(i)));
    map.insert({height[i], i});
  };
  for (size_t left = n; left >= 4 && map.begin()->first <= limit; --left) {
    const size_t i = map.begin()->second;
    map.erase(map.begin());
    height[i] = -1.0;
    next[previous[i]] = next[i];
    previous[next[i]] = previous[i];
    replace(previous[i]);
    replace(next[i]);
  }
  std::vector<T3DVEC> rest;
  for (size_t i = 0; i < n; ++i)
    if (height[i] != -1.0) rest.push_back(line[i]);
  return rest;
}

using Matrix = std::vector<std::vector<long double>>;

// The cyclic matrix with the given values on and beside its diagonal.
inline Matrix make_Cyclic(size_t n, double diagonal, double first, double second) {
  Matrix matrix(n, std::vector<long double>(n));
  for (size_t i = 0; i < n; ++i) {
    matrix[i][i] = diagonal;
    matrix[i][(i + 1) % n] = matrix[(i + 1) % n][i] = first;
    matrix[i][(i + 2) % n] = matrix[(i + 2) % n][i] = second;
  }
  return matrix;
}

// Gauss, with the largest pivot of each column.
inline std::vector<long double> solve(Matrix matrix, std::vector<long double> right) {
  const size_t n = right.size();
  for (size_t k = 0; k < n; ++k) {
    size_t pivot = k;
    for (size_t i = k + 1; i < n; ++i)
      if (std::fabs(matrix[i][k]) > std::fabs(matrix[pivot][k])) pivot = i;
    std::swap(matrix[k], matrix[pivot]);
    std::swap(right[k], right[pivot]);
    for (size_t i = k + 1; i < n; ++i) {
      const long double factor = matrix[i][k] / matrix[k][k];
      for (size_t j = k; j < n; ++j) matrix[i][j] -= factor * matrix[k][j];
      right[i] -= factor * right[k];
    }
  }
  for (size_t k = n; k-- > 0;) {
    for (size_t j = k + 1; j < n; ++j) right[k] -= matrix[k][j] * right[j];
    right[k] /= matrix[k][k];
  }
  return right;
}

}  // namespace undercut::plain
