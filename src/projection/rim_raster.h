// The grid on which the outline of an area is drawn, closed by a disk and traced.
//
// Columns run along x, rows along y of the frame, from the lower corner of the grid's box. Cell
// (row, column) is a rectangle with its border; its position is its centre. Lengths in mm.
#pragma once

#include "foundation/bit_matrix.h"
#include "foundation/values.h"
#include "interface/parameters.h"

namespace undercut {

// Fits the grid to its box (org_xy is its lower, ext_xy its upper corner): grows the box by f_val,
// then finds the size of a cell from the numbers of rows and columns, or with b_res the numbers
// from the size. With b_res the box grows by one more cell on each side, and then so that it holds
// whole cells, centred. False for a size of a cell that is not above 0 or not finite under b_res,
// and for a box that is not finite. Numbers that are 0 stay 0, and numbers too large for 32 bits
// become 0; both are left to the caller, and the grid is then of no use.
bool grid_Fit(TGriPar& grid);

// Sets the cells that the closed triangle touches, if only in a point of their border: a corner or
// an edge on a line between cells belongs to those on both sides. The corners are in the frame; z
// counts for nothing. A triangle without area sets what its segment or point touches. A corner
// beyond the border by no more than the rounding of the box counts as on it. False for one that is
// farther outside, or not a number, and for cells without size; what was drawn until then stays.
bool grid_Draw(const TGriPar& grid, const T3DFAC& f, CBitMatrix& cells);

// The disk of a radius, in cells: for each row offset within k the half width of the cells whose
// distance is no more than k, where k is the radius over the geometric mean of the two sizes,
// truncated. False for a radius below 0, for a k that is not a number or too large, or no memory.
// Release the disk by release.
bool grid_Disk(double radius, const TGriPar& grid, TDisk& disk);
void release(TDisk& disk);

// The contours of the set cells, through the centres of those that have a clear neighbour among
// their four direct ones; outside the grid is clear. Groups are connected over eight neighbours and
// come in the order of their first cell, row by row; each contour starts at its lowest row, then
// its lowest column, and does not repeat its first point. Outer contours run counter-clockwise,
// inner ones clockwise, an outer one before the inner ones of its group, these in the order of
// their starts. A contour passes a cell once for each side from which it borders on what the
// contour goes round: where a group is one cell wide it goes there and back through the same
// cells, and a single cell is a contour of one point. z = 0. False for a grid without a set cell,
// or no memory; `out` is then empty.
bool grid_Trace(const CBitMatrix& cells, const TGriPar& grid, TArr<TArr<T3DVEC>>& out);

}  // namespace undercut
