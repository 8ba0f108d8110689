// The coordinates of a sweep and its tiles.
#pragma once

#include <algorithm>
#include <cstdint>

#include "foundation/values.h"

namespace undercut {

// Centred on the mesh, z along the direction, the mesh within -1 and 1: the axes are as long as
// that takes.
struct TAcross {
  T3DVEC centre, x, y, z;

  T3DVEC operator()(const T3DVEC& p) const {
    const T3DVEC q = p - centre;
    return {dot(q, x), dot(q, y), dot(q, z)};
  }
};

// The way of D. Hilbert's curve (1891) through the cells of a tile, row by row: it keeps neighbours
// together, and cut off below, its numbers are those of the curve through larger cells.
inline constexpr uint32_t kCells = 16;  // of a tile along each side
struct TCurve {
  int32_t at[kCells * kCells];

  constexpr TCurve() : at() {
    for (uint32_t row = 0; row < kCells; ++row)
      for (uint32_t column = 0; column < kCells; ++column) {
        uint32_t x = column, y = row, way = 0;
        for (uint32_t half = kCells / 2; half > 0; half /= 2) {
          const uint32_t right = (x & half) != 0 ? 1 : 0, up = (y & half) != 0 ? 1 : 0;
          way += half * half * ((3 * right) ^ up);
          if (up == 1) continue;
          if (right == 1) x = kCells - 1 - x, y = kCells - 1 - y;
          const uint32_t turned = x;
          x = y, y = turned;
        }
        at[row * kCells + column] = static_cast<int32_t>(way);
      }
  }
};
inline constexpr TCurve kCurve;

// Square tiles, row after row; fewer than 2^24.
struct TTiles {
  float low_x, low_y, per_unit;
  uint32_t columns, rows;

  uint32_t count() const { return columns * rows; }
  // Neither falls where its coordinate rises, whatever the rounding: what lies between two points
  // lies between their tiles. Points beyond the tiles count to the outermost ones.
  uint32_t column(float x) const { return place((x - low_x) * per_unit, columns); }
  uint32_t row(float y) const { return place((y - low_y) * per_unit, rows); }
  // The tile, and in the lower eight bits the place of the point's cell along kCurve: an order for
  // rays, no more.
  uint32_t spot(float x, float y) const {
    const uint32_t i = place((x - low_x) * per_unit * kCells, columns * kCells);
    const uint32_t k = place((y - low_y) * per_unit * kCells, rows * kCells);
    const uint32_t cell = k % kCells * kCells + i % kCells;
    return (k / kCells * columns + i / kCells) << 8 | static_cast<uint32_t>(kCurve.at[cell]);
  }

 private:
  static uint32_t place(float at, uint32_t count) {
    return static_cast<uint32_t>(std::clamp(at, 0.0f, static_cast<float>(count - 1)));
  }
};

}  // namespace undercut
