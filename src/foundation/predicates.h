// Orientation and in-circle tests after J. R. Shewchuk, Adaptive Precision Floating-Point
// Arithmetic and Fast Robust Geometric Predicates, 1997, with every constant of the filters left at
// zero.
//
// With error bounds of zero, the plain determinant is the answer wherever it is not exactly zero
// (and always, in orient2d); where it is, the first adaptive stage sums the rounded products anew,
// and that sum is the answer. Near-degenerate input is not resolved exactly, on purpose: which
// points count as collinear or on a circle hangs on these very roundings.
#pragma once

namespace undercut {

// Each point is two or three doubles. Positive: counter-clockwise.
double orient2d(const double pa[2], const double pb[2], const double pc[2]);
// Positive: pd lies below the plane, the side from which pa, pb, pc appear clockwise.
double orient3d(const double pa[3], const double pb[3], const double pc[3], const double pd[3]);
// Positive: pd lies inside the circle through pa, pb, pc, which run counter-clockwise.
double incircle(const double pa[2], const double pb[2], const double pc[2], const double pd[2]);
// Positive: pe lies inside the sphere through pa to pd, given a positive orient3d of them.
double insphere(const double pa[3], const double pb[3], const double pc[3], const double pd[3],
                const double pe[3]);

}  // namespace undercut
