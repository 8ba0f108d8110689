// Closing of a grid of cells, cell by cell over plain arrays.
#pragma once

#include <cstdint>
#include <vector>

namespace reference {

// A structuring element: a half width for each row offset.
struct PlainDisk {
  std::vector<uint32_t> half;
  std::vector<int32_t> row;
};

struct PlainGrid {
  int rows = 0, columns = 0;
  std::vector<char> cells;

  PlainGrid(int n_row, int n_col) : rows(n_row), columns(n_col), cells(n_row * n_col, 0) {}
  bool has(int r, int c) const { return r >= 0 && r < rows && c >= 0 && c < columns; }
  bool at(int r, int c) const { return has(r, c) && cells[r * columns + c]; }
};

inline bool is_Border(const PlainGrid& grid, int r, int c) {
  const int near[5][2] = {{r, c}, {r, c + 1}, {r + 1, c}, {r, c - 1}, {r - 1, c}};
  bool set = false, clear = false;
  for (const auto& cell : near) (grid.at(cell[0], cell[1]) ? set : clear) = true;
  return set && clear;
}

inline void stamp(PlainGrid& grid, int r, int c, const PlainDisk& disk, bool value) {
  for (int row = 0; row < grid.rows; ++row)
    for (int col = 0; col < grid.columns; ++col)
      for (size_t i = 0; i < disk.row.size(); ++i) {
        const int half = static_cast<int>(disk.half[i]);
        if (row == r + disk.row[i] && c - half <= col && col <= c + half)
          grid.cells[row * grid.columns + col] = value;
      }
}

// Not inlined: gcc 12 would warn of the release of a buffer that it loses track of.
[[gnu::noinline]] inline PlainGrid dilate(const PlainGrid& grid, const PlainDisk& disk) {
  PlainGrid inverse = grid, out = grid;
  for (char& cell : inverse.cells) cell = !cell;
  for (int r = 1; r + 1 < grid.rows; ++r)
    for (int c = 1; c + 1 < grid.columns; ++c)
      if (inverse.at(r, c) && is_Border(inverse, r, c)) stamp(out, r, c, disk, true);
  return out;
}

inline PlainGrid erode(const PlainGrid& grid, const PlainDisk& disk) {
  PlainGrid out = grid;
  for (int r = 0; r < grid.rows; ++r)
    for (int c = 0; c < grid.columns; ++c)
      if (grid.at(r, c) && is_Border(grid, r, c)) stamp(out, r, c, disk, false);
  return out;
}

}  // namespace reference
