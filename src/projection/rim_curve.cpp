// From the raw points of a closed curve to a smooth, evenly sampled and thinned out one. All of it
// is done in x and y; the parameter of the curve is the index of its points.
#include "projection/rim_curve.h"

#include "mesh/curve_smooth.h"
#include "mesh/polyline.h"

namespace undercut {

namespace {

uint32_t get_Next(const TSpl& spl, uint32_t i) { return i + 1 < spl.count ? i + 1 : 0; }
uint32_t get_Previous(const TSpl& spl, uint32_t i) { return i > 0 ? i - 1 : spl.count - 1; }

// The parameter, and the points as they came.
void fill_Input(const TArr<T3DVEC>& line, TSpl& spl) {
  for (uint32_t i = 0; i < spl.count; ++i) {
    spl.arrays[kSplParameter][i] = i + 1.0;
    spl.arrays[kSplInputX][i] = line.data[i].x;
    spl.arrays[kSplInputY][i] = line.data[i].y;
  }
}

void fill_Right(const TSpl& spl, const double* input, double* right) {
  for (uint32_t i = 0; i < spl.count; ++i)
    right[i] = input[get_Previous(spl, i)] - 2.0 * input[i] + input[get_Next(spl, i)];
}

void fill_Smooth(const TSpl& spl, const double* input, const double* u, double* smooth) {
  for (uint32_t i = 0; i < spl.count; ++i)
    smooth[i] =
        input[i] + (1.0 / spl.p) * (2.0 * u[i] - u[get_Next(spl, i)] - u[get_Previous(spl, i)]);
}

// Every derivative hangs on the interval before its point, but that of point 1: its difference
// reaches from the last point over point 0, so over two intervals. This asymmetry stays: the first
// two intervals of every curve are shaped by it.
void fill_First(const TSpl& spl, const double* smooth, const double* u, double* first) {
  for (uint32_t i = 0; i < spl.count; ++i) {
    const uint32_t q = get_Next(spl, i), s = i > 0 ? i : spl.count - 1;
    first[q] = (smooth[q] - smooth[s]) + (2.0 * u[q] - u[s]) / 6.0;
  }
}

int32_t fit_Spline(const TArr<T3DVEC>& line, TSpl& spl) {
  fill_Input(line, spl);
  double* const* arrays = spl.arrays;
  fill_Right(spl, arrays[kSplInputX], arrays[kSplRightX]);
  fill_Right(spl, arrays[kSplInputY], arrays[kSplRightY]);
  Scoped<TBand> band;
  if (pol_Smooth(spl, *band) < 0) return -40;
  fill_Smooth(spl, arrays[kSplInputX], arrays[kSplSecondX], arrays[kSplSmoothX]);
  fill_Smooth(spl, arrays[kSplInputY], arrays[kSplSecondY], arrays[kSplSmoothY]);
  fill_First(spl, arrays[kSplSmoothX], arrays[kSplSecondX], arrays[kSplFirstX]);
  fill_First(spl, arrays[kSplSmoothY], arrays[kSplSecondY], arrays[kSplFirstY]);
  return pol_Curv(spl) < 0 ? -43 : 0;
}

// How many points the parameter meets that runs from 0.0 to the number of points by adding the step
// again and again. False for a step that is not above 0, or too many.
//
// What is far too many is told by a quotient, not by a walk. That refuses nothing that fits: with
// fewer than 2^33 steps each is rounded by less than a millionth of it, and with more, where the
// rounding may be as large as the step, by no more than that. Nor does t ever stand still in what
// is left.
bool count_Steps(uint32_t points, double step, uint32_t& count) {
  if (!(step > 0.0) || points / step > 0x1.0001p32) return false;
  uint64_t steps = 0;
  for (double t = 0.0; t < points; t += step) ++steps;
  count = static_cast<uint32_t>(steps);
  return steps <= UINT32_MAX;
}

// Cubic Hermite interpolation at u in [0, 1) of the interval from i to j.
double interpolate(const double* value, const double* slope, uint32_t i, uint32_t j, double u) {
  const double u2 = u * u, u3 = u2 * u;
  return (2.0 * u3 - 3.0 * u2 + 1.0) * value[i] + (u3 - 2.0 * u2 + u) * slope[i] +
         (3.0 * u2 - 2.0 * u3) * value[j] + (u3 - u2) * slope[j];
}

bool resample(const TSpl& spl, double step, TArr<T3DVEC>& out) {
  uint32_t count = 0;
  if (!count_Steps(spl.count, step, count) || !alloc(out, count)) return false;
  T3DVEC* end = out.data;
  double t = 0.0;
  for (uint32_t i = 0; i < spl.count; ++i) {
    const uint32_t j = get_Next(spl, i);
    for (; t < spl.arrays[kSplParameter][i]; t += step)
      *end++ = {interpolate(spl.arrays[kSplSmoothX], spl.arrays[kSplFirstX], i, j, t - i),
                interpolate(spl.arrays[kSplSmoothY], spl.arrays[kSplFirstY], i, j, t - i), 0.0};
  }
  return true;
}

}  // namespace

int32_t fit_Rim(const TArr<T3DVEC>& line, double p, double step, TArr<T3DVEC>& out) {
  reset(out);
  Scoped<TSpl> spl;
  if (!alloc(*spl, line.count)) return -37;
  if (!line.data) return -38;
  spl->p = p;
  const int32_t code = fit_Spline(line, *spl);
  if (code < 0) return code;
  return resample(*spl, step, out) ? 0 : -44;
}

int32_t fit_Rims(const TRimCurve& how, TArr<TArr<T3DVEC>>& lines) {
  const auto replace = [](TArr<T3DVEC>& line, const TArr<T3DVEC>& by) {
    release(line);
    line = by;
  };
  for (uint32_t i = 0; i < lines.count; ++i) {
    TArr<T3DVEC> fitted = {};
    const int32_t code = fit_Rim(lines.data[i], how.p, how.step, fitted);
    if (code < 0) return code;
    replace(lines.data[i], fitted);
  }
  for (uint32_t i = 0; i < lines.count; ++i) {
    TArr<T3DVEC>& line = lines.data[i];
    if (line.count > 2 && line.data[0] == line.data[line.count - 1]) --line.count;
  }
  for (uint32_t i = 0; i < lines.count; ++i) {
    TArr<T3DVEC> thin = {};
    if (pol_Simplify(lines.data[i], how.limit, thin) < 0) return -46;
    replace(lines.data[i], thin);
  }
  return 0;
}

}  // namespace undercut
