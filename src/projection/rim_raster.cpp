// The grid of a rim: fitting it to a box, drawing triangles into it, and the disk of its closing.
//
// Drawing clips the triangle to the closed band of each row that it reaches; the run of columns
// follows from the lowest and highest x of the clipped part, which stand at corners within the band
// or where edges cross its two lines. So the time is that of the cells set, and which cells these
// are does not hang on the order of the corners.
#include "projection/rim_raster.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "foundation/arrays.h"

namespace undercut {

namespace {

// ---- Fitting -----------------------------------------------------------------------------------

bool divide_Axis(double low, double high, uint32_t count, double& size) {
  const double width = high - low;
  if (count) size = width / count;
  return std::isfinite(width);
}

bool count_Cells(double size, double& low, double& high, uint32_t& count) {
  low -= size;
  high += size;
  const double width = high - low;
  if (!std::isfinite(width)) return false;
  const double cells = std::ceil(width / size);
  count = cells >= 1.0 && cells <= UINT32_MAX ? static_cast<uint32_t>(cells) : 0;
  if (count == 0) return true;
  low -= (count * size - width) / 2.0;
  high = low + count * size;
  return std::isfinite(high - low);
}

bool is_Size(double size) { return size > 0.0 && std::isfinite(size); }

// ---- Drawing -----------------------------------------------------------------------------------

// Where x lies on an axis of the grid, in cells from 0 to their number.
bool place(double x, double low, double high, double size, uint32_t count, double& position) {
  // The upper end of the box is rounded on its way from the corners that it was made of, so these
  // can miss it by some last bits.
  constexpr double kRounding = 4.0 * std::numeric_limits<double>::epsilon();
  const double slack = kRounding * std::max(std::fabs(low), std::fabs(high));
  if (!(low - slack <= x && x <= high + slack && size > 0.0)) return false;
  position = std::clamp((x - low) / size, 0.0, static_cast<double>(count));
  return true;
}

bool place(const TGriPar& grid, const T3DVEC& p, T2DVEC& position) {
  return place(p.x, grid.org_xy.x, grid.ext_xy.x, grid.f_dxx, grid.n_col, position.x) &&
         place(p.y, grid.org_xy.y, grid.ext_xy.y, grid.f_dyy, grid.n_row, position.y);
}

// The cells from a lowest to a highest position. On a line between two cells both are taken.
struct TCells {
  int64_t first = std::numeric_limits<int64_t>::max();
  int64_t last = -1;

  void take(double position) {
    first = std::min(first, static_cast<int64_t>(std::ceil(position)) - 1);
    last = std::max(last, static_cast<int64_t>(std::floor(position)));
  }
  // Lines on the border of the grid have cells on one side only.
  void hold_Within(uint32_t count) {
    first = std::max<int64_t>(first, 0);
    last = std::min<int64_t>(last, int64_t{count} - 1);
  }
};

// The lower end first, so that two triangles find the same crossings on the edge that they share.
struct TEdge {
  T2DVEC a, b;

  // With products before the quotient: where positions are multiples of a not too small power of
  // two, a crossing on a line between columns is then found to be just there.
  void take_Crossing(double line, TCells& columns) const {
    if (!(a.y < line && line < b.y)) return;
    // Rounding carries it beyond neither end, so never out of the grid.
    const double x = a.x + (line - a.y) * (b.x - a.x) / (b.y - a.y);
    columns.take(std::clamp(x, std::min(a.x, b.x), std::max(a.x, b.x)));
  }
};

TEdge make_Edge(const T2DVEC& a, const T2DVEC& b) { return a.y <= b.y ? TEdge{a, b} : TEdge{b, a}; }

// The columns of what the closed band of a row leaves of the triangle.
TCells clip_Row(const T2DVEC (&corners)[3], const TEdge (&edges)[3], int64_t row) {
  const auto lower = static_cast<double>(row), upper = static_cast<double>(row + 1);
  TCells columns;
  for (const T2DVEC& p : corners)
    if (lower <= p.y && p.y <= upper) columns.take(p.x);
  for (const TEdge& edge : edges) {
    edge.take_Crossing(lower, columns);
    edge.take_Crossing(upper, columns);
  }
  return columns;
}

}  // namespace

bool grid_Fit(TGriPar& grid) {
  T2DVEC &low = grid.org_xy, &high = grid.ext_xy;
  if (grid.f_val != 0.0) {
    low = {low.x - grid.f_val, low.y - grid.f_val};
    high = {high.x + grid.f_val, high.y + grid.f_val};
  }
  if (!grid.b_res)
    return divide_Axis(low.x, high.x, grid.n_col, grid.f_dxx) &&
           divide_Axis(low.y, high.y, grid.n_row, grid.f_dyy);
  return is_Size(grid.f_dxx) && is_Size(grid.f_dyy) &&
         count_Cells(grid.f_dxx, low.x, high.x, grid.n_col) &&
         count_Cells(grid.f_dyy, low.y, high.y, grid.n_row);
}

bool grid_Draw(const TGriPar& grid, const T3DFAC& f, CBitMatrix& cells) {
  T2DVEC corners[3];
  if (!place(grid, f.a, corners[0]) || !place(grid, f.b, corners[1]) ||
      !place(grid, f.c, corners[2]))
    return false;
  const TEdge edges[3] = {make_Edge(corners[0], corners[1]), make_Edge(corners[1], corners[2]),
                          make_Edge(corners[2], corners[0])};
  TCells rows;
  for (const T2DVEC& p : corners) rows.take(p.y);
  rows.hold_Within(grid.n_row);
  for (int64_t row = rows.first; row <= rows.last; ++row) {
    TCells columns = clip_Row(corners, edges, row);
    columns.hold_Within(grid.n_col);
    if (!cells.set_Run(static_cast<uint32_t>(row), static_cast<uint32_t>(columns.first),
                       static_cast<uint32_t>(columns.last)))
      return false;
  }
  return true;
}

bool grid_Disk(double radius, const TGriPar& grid, TDisk& disk) {
  disk = {};
  const double cells = std::trunc(radius / std::sqrt(grid.f_dxx * grid.f_dyy));
  // Offsets and half widths are signed numbers of 32 bits.
  if (!(radius >= 0.0 && cells >= 0.0 && cells <= INT32_MAX)) return false;
  const auto k = static_cast<int64_t>(cells);
  const auto count = static_cast<uint32_t>(2 * k + 1);
  disk.half = new_Array<uint32_t>(count);
  disk.row = new_Array<int32_t>(count);
  if (!disk.half || !disk.row) {
    release(disk);
    return false;
  }
  disk.count = count;
  int64_t half = k;
  for (int64_t i = 0; i <= k; ++i) {
    while (half * half > k * k - i * i) --half;
    for (const int64_t row : {-i, i}) {
      disk.row[k + row] = static_cast<int32_t>(row);
      disk.half[k + row] = static_cast<uint32_t>(half);
    }
  }
  return true;
}

void release(TDisk& disk) {
  free_Array(disk.half);
  free_Array(disk.row);
  disk = {};
}

}  // namespace undercut
