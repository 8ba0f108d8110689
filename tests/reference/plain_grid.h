// Triangles drawn into a grid and the outlines of its set cells, cell by cell and side by side.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <vector>

#include "tests/reference/plain_closing.h"

namespace reference {

// ---- Drawing -----------------------------------------------------------------------------------

template <typename Number>
struct PlainPoint {
  Number x, y;
};
template <typename Number>
using PlainTriangle = std::array<PlainPoint<Number>, 3>;

// How far a triangle and a rectangle stand apart on the axis that separates them best, each axis
// not normalised: above 0 apart, 0 touching, below 0 overlapping (H. Gottschalk, Separating axis
// theorem, 1996). Exact for small whole numbers.
template <typename Number>
Number get_Gap(const PlainTriangle<Number>& tri, const PlainPoint<Number>& low,
               const PlainPoint<Number>& high) {
  std::vector<PlainPoint<Number>> axes = {{1, 0}, {0, 1}};
  for (int k = 0; k < 3; ++k) {
    const PlainPoint<Number>&a = tri[k], &b = tri[(k + 1) % 3];
    if (a.x != b.x || a.y != b.y) axes.push_back({a.y - b.y, b.x - a.x});
  }
  Number gap = 0;
  for (size_t i = 0; i < axes.size(); ++i) {
    const auto at = [&](Number x, Number y) { return axes[i].x * x + axes[i].y * y; };
    const Number t[3] = {at(tri[0].x, tri[0].y), at(tri[1].x, tri[1].y), at(tri[2].x, tri[2].y)};
    const Number q[4] = {at(low.x, low.y), at(high.x, low.y), at(low.x, high.y),
                         at(high.x, high.y)};
    Number apart = std::max(*std::min_element(t, t + 3) - *std::max_element(q, q + 4),
                            *std::min_element(q, q + 4) - *std::max_element(t, t + 3));
    gap = i == 0 ? apart : std::max(gap, apart);
  }
  return gap;
}

// Sets the cells of the grid, each `size` wide and high from the origin on, that a closed triangle
// of whole coordinates touches.
inline void draw(PlainGrid& grid, const PlainTriangle<int64_t>& tri, int64_t size) {
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.columns; ++c) {
      const PlainPoint<int64_t> low = {c * size, r * size};
      if (get_Gap<int64_t>(tri, low, {low.x + size, low.y + size}) <= 0)
        grid.cells[r * grid.columns + c] = 1;
    }
}

// ---- Outlines ----------------------------------------------------------------------------------

struct PlainCell {
  int row, column;
};
inline bool operator==(const PlainCell& a, const PlainCell& b) {
  return a.row == b.row && a.column == b.column;
}
inline bool operator<(const PlainCell& a, const PlainCell& b) {
  return a.row != b.row ? a.row < b.row : a.column < b.column;
}

// Marks with one number what is connected, in the order of the first cells, from 1 on; the cells of
// the other kind are 0. Outside the grid there is nothing.
inline std::vector<int> label(const PlainGrid& grid, bool value, bool diagonal) {
  std::vector<int> labels(grid.cells.size(), 0);
  int count = 0;
  for (int start = 0; start < int(labels.size()); ++start) {
    if (labels[start] || (grid.cells[start] != 0) != value) continue;
    std::vector<int> open = {start};
    labels[start] = ++count;
    while (!open.empty()) {
      const int r = open.back() / grid.columns, c = open.back() % grid.columns;
      open.pop_back();
      for (int dr = -1; dr <= 1; ++dr)
        for (int dc = -1; dc <= 1; ++dc) {
          if (!grid.has(r + dr, c + dc) || (!diagonal && dr && dc)) continue;
          const int next = (r + dr) * grid.columns + c + dc;
          if (labels[next] || (grid.cells[next] != 0) != value) continue;
          labels[next] = count;
          open.push_back(next);
        }
    }
  }
  return labels;
}

// A side of a set cell with nothing set across: side 0 below, 1 right, 2 above, 3 left, walked
// counter-clockwise round its cell.
struct PlainSide {
  PlainCell cell;
  int side;
};
inline bool operator<(const PlainSide& a, const PlainSide& b) {
  return a.cell == b.cell ? a.side < b.side : a.cell < b.cell;
}

// The side that follows at the end of another. Set cells that touch at a corner hang together, so
// the walk goes over to the one that is met there.
inline PlainSide get_Next(const PlainGrid& grid, const PlainSide& s) {
  static constexpr int kAhead[4][2] = {{0, 1}, {1, 0}, {0, -1}, {-1, 0}};  // rows, columns
  const int* ahead = kAhead[s.side];
  const int* right = kAhead[(s.side + 3) % 4];
  const PlainCell straight = {s.cell.row + ahead[0], s.cell.column + ahead[1]};
  const PlainCell across = {straight.row + right[0], straight.column + right[1]};
  if (grid.at(across.row, across.column)) return {across, (s.side + 3) % 4};
  if (grid.at(straight.row, straight.column)) return {straight, s.side};
  return {s.cell, (s.side + 1) % 4};
}

struct PlainContour {
  bool outer;
  int group;
  std::vector<PlainCell> cells;
};

// The walk along the sides from one on, as the cells that it comes by.
inline PlainContour walk(const PlainGrid& grid, const PlainSide& start,
                         std::map<PlainSide, bool>& walked) {
  PlainContour contour = {start.side == 0, 0, {}};
  for (PlainSide s = start; !walked[s]; s = get_Next(grid, s)) {
    walked[s] = true;
    if (contour.cells.empty() || !(contour.cells.back() == s.cell)) contour.cells.push_back(s.cell);
  }
  if (contour.cells.size() > 1 && contour.cells.back() == contour.cells.front())
    contour.cells.pop_back();
  return contour;
}

// All contours. Row by row, the first side not yet walked of an outer contour is the lower one of a
// cell, that of an inner one the upper one; the sides on the left and right are met from these.
inline std::vector<PlainContour> trace_Sides(const PlainGrid& grid) {
  const std::vector<int> groups = label(grid, true, true);
  std::vector<PlainContour> contours;
  std::map<PlainSide, bool> walked;
  std::vector<bool> seen(grid.cells.size() + 1, false);
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.columns; ++c) {
      if (!grid.at(r, c)) continue;
      const int group = groups[r * grid.columns + c];
      for (const int side : {0, 2}) {
        const PlainSide s = {{r, c}, side};
        const bool is_Clear = !grid.at(r + side - 1, c);
        if (!is_Clear || walked[s] || (side == 0 && seen[group])) continue;
        seen[group] = true;
        contours.push_back(walk(grid, s, walked));
        contours.back().group = group;
      }
    }
  std::stable_sort(contours.begin(), contours.end(), [](const auto& a, const auto& b) {
    return a.group != b.group ? a.group < b.group : a.outer && !b.outer;
  });
  return contours;
}

}  // namespace reference
