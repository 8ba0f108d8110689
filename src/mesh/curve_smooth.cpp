// Smoothing splines over closed curves (C. H. Reinsch, Smoothing by spline functions, 1967), with
// points one parameter unit apart: a cyclic matrix of five diagonals, factored once for x and y.
#include "mesh/curve_smooth.h"

namespace undercut {

namespace {

static_assert(sizeof(TSpl) == 108 && sizeof(TBand) == 44);

// A row of the matrix, up to the third column from the right. Away from the corner it is 0.
struct TRow {
  double corner[2];  // columns 0 and 1
  double second;     // the band, left of the diagonal
  uint32_t at;       // the column of `second`; `first` is in the next, where that is in reach
  double first;

  double get_Value(uint32_t column) const {
    if (column < 2) return corner[column];
    return column == at ? second : column == at + 1 ? first : 0.0;
  }
};

// The factors of one of the two last rows, column by column; place(j) is where column j is stored.
// Answers with what the row takes from its diagonal.
template <typename Place>
double fill_Row(const TBand& band, const TRow& row, Place place) {
  double taken = 0.0;
  for (uint32_t j = 0; j + 2 < band.size; ++j) {
    double value = row.get_Value(j);
    if (j >= 1) value -= place(j - 1) * band.diagonal[j - 1] * band.first[j - 1];
    if (j >= 2) value -= place(j - 2) * band.diagonal[j - 2] * band.second[j - 2];
    place(j) = value / band.diagonal[j];
    taken += place(j) * place(j) * band.diagonal[j];
  }
  return taken;
}

// The rows of the plain band. False where the diagonal gets a 0.
bool factor_Band(const TBand& band, double diagonal, double first, double second) {
  double* d = band.diagonal;
  for (uint32_t i = 0; i + 2 < band.size; ++i) {
    d[i] = diagonal;
    if (i >= 2) {
      band.second[i - 2] = second / d[i - 2];
      d[i] -= band.second[i - 2] * band.second[i - 2] * d[i - 2];
    }
    if (i >= 1) {
      const double fill = i >= 2 ? second * band.first[i - 2] : 0.0;
      band.first[i - 1] = (first - fill) / d[i - 1];
      d[i] -= band.first[i - 1] * band.first[i - 1] * d[i - 1];
    }
    if (d[i] == 0.0) return false;
  }
  return true;
}

// The two last rows, which the corners of the matrix fill.
bool factor_Rows(const TBand& band, double diagonal, double first, double second) {
  const uint32_t n = band.size;
  double* d = band.diagonal;
  const auto above = [&](uint32_t j) -> double& {
    return j + 4 < n ? band.last_but_one[j] : j + 4 == n ? band.second[j] : band.first[j];
  };
  const auto below = [&](uint32_t j) -> double& {
    return j + 3 < n ? band.last[j] : band.second[j];
  };
  d[n - 2] = diagonal - fill_Row(band, {{second, 0.0}, second, n - 4, first}, above);
  if (d[n - 2] == 0.0) return false;
  const double taken = fill_Row(band, {{first, second}, second, n - 3, first}, below);
  double value = first;
  for (uint32_t j = 0; j + 2 < n; ++j) value -= below(j) * d[j] * above(j);
  band.first[n - 2] = value / d[n - 2];
  d[n - 1] = diagonal - taken - band.first[n - 2] * band.first[n - 2] * d[n - 2];
  return d[n - 1] != 0.0;
}

// Solves with the factors.
void solve_Band(const TBand& band, const double* right, double* out) {
  const uint32_t n = band.size;
  double corner[2] = {0.0, 0.0};
  for (uint32_t i = 0; i < n; ++i) {
    out[i] = right[i];
    if (i >= 1) out[i] -= band.first[i - 1] * out[i - 1];
    if (i >= 2) out[i] -= band.second[i - 2] * out[i - 2];
    if (i + 2 >= n) out[i] -= corner[i + 2 - n];
    if (i + 4 < n) corner[0] += band.last_but_one[i] * out[i];
    if (i + 3 < n) corner[1] += band.last[i] * out[i];
  }
  for (uint32_t i = n; i-- > 0;) {
    out[i] /= band.diagonal[i];
    if (i + 1 < n) out[i] -= band.first[i] * out[i + 1];
    if (i + 2 < n) out[i] -= band.second[i] * out[i + 2];
    if (i + 4 < n) out[i] -= band.last_but_one[i] * out[n - 2];
    if (i + 3 < n) out[i] -= band.last[i] * out[n - 1];
  }
}

// 0, or -k where the k-th of the arrays is missing.
template <uint32_t N>
int32_t find_Missing(const TSpl& spl, const TSplArray (&needed)[N]) {
  for (uint32_t k = 0; k < N; ++k)
    if (!spl.arrays[needed[k]]) return -static_cast<int32_t>(k) - 1;
  return 0;
}

}  // namespace

bool alloc(TSpl& spl, uint32_t count) {
  spl = {};
  if (count == 0) return false;
  spl.count = count;
  for (uint32_t k = 0; k < kSplArrays; ++k) {
    spl.arrays[k] = new_Zeroed<double>(count);
    if (spl.arrays[k]) continue;
    release(spl);
    return false;
  }
  return true;
}

void release(TSpl& spl) {
  for (uint32_t k = 0; k < kSplArrays; ++k) free_Array(spl.arrays[k]);
  spl = {};
}

bool alloc(TBand& band, uint32_t size) {
  band = {};
  if (size <= 4) return false;
  band = {new_Zeroed<double>(size),     new_Zeroed<double>(size - 1), new_Zeroed<double>(size - 2),
          new_Zeroed<double>(size - 4), new_Zeroed<double>(size - 3), size};
  if (band.diagonal && band.first && band.second && band.last_but_one && band.last) return true;
  release(band);
  return false;
}

void release(TBand& band) {
  free_Array(band.diagonal);
  free_Array(band.first);
  free_Array(band.second);
  free_Array(band.last_but_one);
  free_Array(band.last);
  band = {};
}

int32_t fac_Band(TBand& band, uint32_t size, double diagonal, double first, double second) {
  band = {};
  if (size < 7) return -1;
  if (!alloc(band, size)) return -3;
  if (factor_Band(band, diagonal, first, second) && factor_Rows(band, diagonal, first, second))
    return 0;
  release(band);
  return -2;
}

int32_t pol_Smooth(TSpl& spl, TBand& band) {
  band = {};
  const int32_t missing = find_Missing(spl, {kSplRightX, kSplRightY, kSplSecondX, kSplSecondY});
  if (missing < 0) return missing;
  if (spl.count == 0) return -5;
  const double p = spl.p;
  if (fac_Band(band, spl.count, 6.0 / p + 2.0 / 3.0, -4.0 / p + 1.0 / 6.0, 1.0 / p) < 0) return -6;
  solve_Band(band, spl.arrays[kSplRightX], spl.arrays[kSplSecondX]);
  solve_Band(band, spl.arrays[kSplRightY], spl.arrays[kSplSecondY]);
  return 0;
}

int32_t pol_Curv(TSpl& spl) {
  const int32_t missing =
      find_Missing(spl, {kSplFirstX, kSplFirstY, kSplSecondX, kSplSecondY, kSplCurvature});
  if (missing < 0) return missing;
  if (spl.count == 0) return -6;
  for (uint32_t i = 0; i < spl.count; ++i) {
    const double x1 = spl.arrays[kSplFirstX][i], y1 = spl.arrays[kSplFirstY][i];
    const double x2 = spl.arrays[kSplSecondX][i], y2 = spl.arrays[kSplSecondY][i];
    spl.arrays[kSplCurvature][i] = (x1 * y2 - x2 * y1) / std::pow(x1 * x1 + y1 * y1, 1.5);
  }
  return 0;
}

}  // namespace undercut
