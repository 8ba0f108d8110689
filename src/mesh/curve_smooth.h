// Smoothing and curvature of closed curves in x and y.
#pragma once

#include "foundation/arrays.h"

namespace undercut {

// The arrays of TSpl, each with a value for each point of the curve.
enum TSplArray : uint32_t {
  kSplParameter,  // 1, 2, 3, ...
  kSplInputX,     // the curve as it came
  kSplInputY,     //
  kSplRightX,     // right-hand sides: its second differences
  kSplRightY,     //
  kSplSmoothX,    // the curve smoothed
  kSplSmoothY,    //
  kSplFirstX,     // first derivatives
  kSplFirstY,     //
  kSplSecondX,    // second derivatives: the solution of pol_Smooth
  kSplSecondY,    //
  kSplCurvature,  // 1 / mm
  kSplArrays
};

#pragma pack(push, 4)
// The work record of curve smoothing. The layout is fixed: hence the packing.
struct TSpl {
  double* arrays[kSplArrays];
  double p;  // smoothing parameter: the larger, the nearer to the input
  uint32_t count;
};

// The factors L D L' of a symmetric cyclic matrix of five diagonals. L has ones on its diagonal;
// beside the two diagonals below it, its two last rows are filled. All is indexed by the column.
struct TBand {
  double* diagonal;      // D: size
  double* first;         // the first diagonal below: size - 1
  double* second;        // the second: size - 2
  double* last_but_one;  // the rest of that row: size - 4
  double* last;          // the rest of the last row: size - 3
  uint32_t size;
};
#pragma pack(pop)

// All arrays, every value 0; false for a count of 0 or no memory, and the record is then empty.
bool alloc(TSpl& spl, uint32_t count);
void release(TSpl& spl);
// The same; false for a size that is not above 4.
bool alloc(TBand& band, uint32_t size);
void release(TBand& band);

// Solves for the second derivatives of a smoothing spline through a closed curve: the cyclic matrix
// with 6 / p + 2 / 3 on its diagonal, -4 / p + 1 / 6 and 1 / p beside it, times the second
// derivatives, is the right-hand side, for x and for y. `band` receives the factors. 0; -1 to -4 no
// array of the right-hand side x, y, of the second derivatives x, y; -5 a count of 0; -6 fewer than
// 7 points, a matrix with a 0 on the diagonal of its factors, or no memory; `band` is then empty.
int32_t pol_Smooth(TSpl& spl, TBand& band);

// The curvature from the derivatives, not a number where the first are 0. 0; -1 to -5 no array of
// first derivatives x, y, second derivatives x, y, curvature; -6 a count of 0.
int32_t pol_Curv(TSpl& spl);

// The factors of a matrix with these values on and beside its diagonal. `band` must be empty. 0; -1
// for a size below 7, -2 where the diagonal of the factors gets a 0, -3 no memory; it is then empty
// again.
int32_t fac_Band(TBand& band, uint32_t size, double diagonal, double first, double second);

}  // namespace undercut
