// The contours of the set cells of a grid, by following borders (S. Suzuki and K. Abe, Topological
// Structural Analysis of Digitized Binary Images by Border Following, 1985).
//
// Where that method marks the cells that it has passed, this one knows the contours beforehand: an
// outer one for each group of set cells, an inner one for each group of clear cells that is cut off
// from the outside. Both groups are found over runs of cells in a row (A. Rosenfeld and J. Pfaltz,
// Sequential Operations in Digital Picture Processing, 1966), so time and memory are those of the
// grid's bits, which are read byte by byte, and of its border. Set cells are connected over eight
// neighbours, clear ones over four.
#include <algorithm>
#include <bit>

#include "foundation/arrays.h"
#include "projection/rim_raster.h"

namespace undercut {

namespace {

// ---- Runs and their groups ---------------------------------------------------------------------

// Cells first to last of a row, all of one kind, with cells of the other kind at both ends.
struct TRun {
  uint32_t row, first, last;
};

bool operator<(const TRun& a, const TRun& b) {
  return a.row != b.row ? a.row < b.row : a.first < b.first;
}

// The first bit from `from` on that has the value; `end` for none.
uint64_t find_Bit(const uint8_t* data, uint64_t from, uint64_t end, bool value) {
  const unsigned flip = value ? 0 : 0xFF;
  for (; from < end; from = (from | 7) + 1) {
    const auto byte = static_cast<uint8_t>((data[from >> 3] ^ flip) & (0xFFu >> (from & 7)));
    if (byte) return std::min<uint64_t>(end, (from & ~7ull) + std::countl_zero(byte));
  }
  return end;
}

// Calls visit(run) for each run of set cells, row by row.
template <typename Visit>
void each_Run(const CBitMatrix& cells, Visit visit) {
  const uint64_t columns = cells.columns(), end = cells.rows() * columns;
  for (uint64_t bit = find_Bit(cells.data(), 0, end, true); bit < end;) {
    const uint64_t row = bit / columns, start = row * columns;
    const uint64_t stop = find_Bit(cells.data(), bit, start + columns, false);
    visit(TRun{static_cast<uint32_t>(row), static_cast<uint32_t>(bit - start),
               static_cast<uint32_t>(stop - 1 - start)});
    bit = find_Bit(cells.data(), stop, end, true);
  }
}

bool list_Runs(const CBitMatrix& cells, TArr<TRun>& runs) {
  uint64_t count = 0;
  each_Run(cells, [&count](const TRun&) { ++count; });
  if (count > UINT32_MAX || !alloc(runs, static_cast<uint32_t>(count))) return false;
  TRun* end = runs.data;
  each_Run(cells, [&end](const TRun& run) { *end++ = run; });
  return true;
}

// The runs of clear cells between two runs of a row. Those before the first and behind the last one
// of a row are the outside.
bool list_Gaps(const TArr<TRun>& runs, TArr<TRun>& gaps) {
  uint32_t count = 0;
  for (uint32_t i = 1; i < runs.count; ++i) count += runs.data[i - 1].row == runs.data[i].row;
  if (!alloc(gaps, count)) return false;
  TRun* end = gaps.data;
  for (uint32_t i = 1; i < runs.count; ++i) {
    const TRun &a = runs.data[i - 1], &b = runs.data[i];
    if (a.row == b.row) *end++ = {a.row, a.last + 1, b.first - 1};
  }
  return true;
}

// A run's group is told by its root, the first run of the group.
uint32_t find_Root(TArr<uint32_t>& links, uint32_t i) {
  for (; links.data[i] != i; i = links.data[i]) links.data[i] = links.data[links.data[i]];
  return i;
}

void join(TArr<uint32_t>& links, uint32_t i, uint32_t j) {
  const uint32_t a = find_Root(links, i), b = find_Root(links, j);
  links.data[std::max(a, b)] = std::min(a, b);
}

// Joins runs of neighbouring rows that share a column, or with a reach of 1 miss it by one; at the
// end each run is linked with its root.
bool join_Runs(const TArr<TRun>& runs, uint64_t reach, TArr<uint32_t>& links) {
  if (!alloc(links, runs.count)) return false;
  for (uint32_t i = 0; i < runs.count; ++i) links.data[i] = i;
  uint32_t below = 0;
  for (uint32_t i = 0; i < runs.count; ++i) {
    const TRun& run = runs.data[i];
    const auto lies_Before = [&](const TRun& other) {
      return other.row + 1 < run.row || (other.row < run.row && other.last + reach < run.first);
    };
    while (lies_Before(runs.data[below])) ++below;
    for (uint32_t k = below; runs.data[k].row < run.row; ++k) {
      if (runs.data[k].first > run.last + reach) break;
      join(links, i, k);
    }
  }
  for (uint32_t i = 0; i < runs.count; ++i) links.data[i] = find_Root(links, i);
  return true;
}

// Whether the row has set cells at or before the run's first column and at or behind its last one.
// What lies across from the run is then set or a gap itself; else some of it is the outside.
bool is_Covered(const TArr<TRun>& runs, uint32_t row, const TRun& gap) {
  const TRun* end = runs.data + runs.count;
  // A row below the grid, which wraps, has no runs either.
  const TRun* a = std::lower_bound<const TRun*>(runs.data, end, TRun{row, 0, 0});
  const TRun* b = std::lower_bound<const TRun*>(runs.data, end, TRun{row + 1, 0, 0});
  return a < b && a->first <= gap.first && gap.last <= b[-1].last;
}

// Sets a byte for the root of each group of gaps that the outside reaches.
bool mark_Open(const TArr<TRun>& runs, const TArr<TRun>& gaps, const TArr<uint32_t>& links,
               TArr<uint8_t>& open) {
  if (!alloc(open, gaps.count)) return false;
  for (uint32_t i = 0; i < gaps.count; ++i) {
    const TRun& gap = gaps.data[i];
    if (!is_Covered(runs, gap.row - 1, gap) || !is_Covered(runs, gap.row + 1, gap))
      open.data[links.data[i]] = 1;
  }
  return true;
}

// ---- Where contours start ----------------------------------------------------------------------

struct TStart {
  uint32_t row, column;
  uint8_t outer;
};

struct TGroups {
  Scoped<TArr<TRun>> runs, gaps;
  Scoped<TArr<uint32_t>> run_links, gap_links;
  Scoped<TArr<uint8_t>> gap_open;

  bool find(const CBitMatrix& cells) {
    return list_Runs(cells, *runs) && list_Gaps(*runs, *gaps) && join_Runs(*runs, 1, *run_links) &&
           join_Runs(*gaps, 0, *gap_links) && mark_Open(*runs, *gaps, *gap_links, *gap_open);
  }

  // Calls visit(start, group) for each contour: the outer ones in the order of their groups, then
  // the inner ones in the order of their starts. A group is told by its root.
  template <typename Visit>
  void each_Start(Visit visit) {
    for (uint32_t i = 0; i < runs->count; ++i)
      if (run_links->data[i] == i) visit(TStart{runs->data[i].row, runs->data[i].first, 1}, i);
    for (uint32_t i = 0; i < gaps->count; ++i) {
      if (gap_links->data[i] != i || gap_open->data[i]) continue;
      // The first cell of a hole stands on the lowest row of its contour.
      const TStart start = {gaps->data[i].row - 1, gaps->data[i].first, 0};
      visit(start, run_links->data[find_Run(start)]);
    }
  }

 private:
  // The run that holds a set cell.
  uint32_t find_Run(const TStart& start) {
    const TRun* end = runs->data + runs->count;
    const TRun cell = {start.row, start.column, 0};
    return static_cast<uint32_t>(std::upper_bound<const TRun*>(runs->data, end, cell) - 1 -
                                 runs->data);
  }
};

// All starts, those of a group one after the other.
bool list_Starts(TGroups& groups, TArr<TStart>& starts) {
  // For each root the number of its contours, then the place of its next one.
  Scoped<TArr<uint32_t>> places;
  if (!alloc(*places, groups.runs->count)) return false;
  uint64_t count = 0;
  groups.each_Start([&](const TStart&, uint32_t group) {
    ++places->data[group];
    ++count;
  });
  if (count > UINT32_MAX || !alloc(starts, static_cast<uint32_t>(count))) return false;
  uint32_t place = 0;
  for (uint32_t i = 0; i < places->count; ++i) {
    const uint32_t contours = places->data[i];
    places->data[i] = place;
    place += contours;
  }
  groups.each_Start(
      [&](const TStart& start, uint32_t group) { starts.data[places->data[group]++] = start; });
  return true;
}

// ---- Following a border ------------------------------------------------------------------------

// The eight neighbours, counter-clockwise from that in the next column.
constexpr int kRows[8] = {0, 1, 1, 1, 0, -1, -1, -1};
constexpr int kColumns[8] = {1, 1, 0, -1, -1, -1, 0, 1};
constexpr int kAbove = 2, kBelow = 6, kNowhere = -1;

struct TCell {
  uint32_t row, column;

  // Wraps below 0 to a row or column that no grid has, which reads as clear.
  TCell next_To(int direction) const {
    return {row + static_cast<uint32_t>(kRows[direction]),
            column + static_cast<uint32_t>(kColumns[direction])};
  }
  bool operator==(const TCell& other) const = default;
};

// The direction of the first set neighbour, turning by one from `from` on, which comes last.
int find_Neighbour(const CBitMatrix& cells, const TCell& cell, int from, int turn) {
  for (int i = 1; i <= 8; ++i) {
    const int direction = (from + turn * i) & 7;
    const TCell next = cell.next_To(direction);
    if (cells.test(next.row, next.column)) return direction;
  }
  return kNowhere;
}

// Calls visit(cell) along the contour, the clear cells on its right. A cell with the direction from
// which it is reached tells what comes next and what came before, so the walk closes just where
// it comes back to its start as it left it.
template <typename Visit>
void follow_Border(const CBitMatrix& cells, const TStart& start, Visit visit) {
  const TCell first = {start.row, start.column};
  visit(first);
  const int before = find_Neighbour(cells, first, start.outer ? kBelow : kAbove, -1);
  if (before == kNowhere) return;
  TCell cell = first;
  for (int back = before;;) {
    const int ahead = find_Neighbour(cells, cell, back, 1);
    cell = cell.next_To(ahead);
    back = (ahead + 4) & 7;
    if (cell == first && back == before) return;
    visit(cell);
  }
}

bool trace_Contour(const CBitMatrix& cells, const TGriPar& grid, const TStart& start,
                   TArr<T3DVEC>& out) {
  uint64_t count = 0;
  follow_Border(cells, start, [&count](const TCell&) { ++count; });
  if (count > UINT32_MAX || !alloc(out, static_cast<uint32_t>(count))) return false;
  T3DVEC* end = out.data;
  follow_Border(cells, start, [&](const TCell& cell) {
    *end++ = {grid.org_xy.x + (cell.column + 0.5) * grid.f_dxx,
              grid.org_xy.y + (cell.row + 0.5) * grid.f_dyy, 0.0};
  });
  return true;
}

}  // namespace

bool grid_Trace(const CBitMatrix& cells, const TGriPar& grid, TArr<TArr<T3DVEC>>& out) {
  reset(out);
  TGroups groups;
  Scoped<TArr<TStart>> starts;
  Scoped<TArr<TArr<T3DVEC>>> contours;
  if (!groups.find(cells) || !list_Starts(groups, *starts) || !alloc(*contours, starts->count))
    return false;
  for (uint32_t i = 0; i < starts->count; ++i)
    if (!trace_Contour(cells, grid, starts->data[i], contours->data[i])) return false;
  out = contours.take();
  return out.count != 0;
}

}  // namespace undercut
