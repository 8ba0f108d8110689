// From the raw points of a closed curve to the curve that is handed out: a cubic smoothing spline
// (C. Reinsch, Smoothing by Spline Functions, 1967), resampled and thinned out.
#pragma once

#include "foundation/arrays.h"

namespace undercut {

// How a curve is finished.
struct TRimCurve {
  double p;      // parameter of the spline: the larger, the nearer to the points
  double step;   // of resampling, in units of the points' index
  double limit;  // mm: points no higher over the chord of their neighbours are dropped
};

// Smooths and resamples one closed curve in x and y; z of the output is 0. 0, or the code of the
// step: -37 no memory for the work record, or a count of 0; -38 no points; -40 fewer than 7 points,
// a spline that can't be solved, or no memory; -44 a step that is not above 0, more than 2^32 - 1
// points, or no memory. The steps -39 (right-hand sides), -41 (values), -42 (first derivatives) and
// -43 (curvature) do not fail.
int32_t fit_Rim(const TArr<T3DVEC>& line, double p, double step, TArr<T3DVEC>& out);

// fit_Rim for each curve in place, then drops a last point that repeats the first (of curves with
// more than two points; this, step -45, does not fail), then thins each curve out. 0, a code of
// fit_Rim, or -46 for a curve that can't be thinned out: its ends are still equal, as those of a
// single point are, or no memory. What was done before a failure stays in `lines`, which the caller
// releases.
int32_t fit_Rims(const TRimCurve& how, TArr<TArr<T3DVEC>>& lines);

}  // namespace undercut
