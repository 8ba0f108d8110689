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

// Square tiles, row after row.
struct TTiles {
  float low_x, low_y, per_unit;
  uint32_t columns, rows;

  uint32_t count() const { return columns * rows; }
  // Neither falls where its coordinate rises, whatever the rounding: what lies between two points
  // lies between their tiles. Points beyond the tiles count to the outermost ones.
  uint32_t column(float x) const { return place((x - low_x) * per_unit, columns); }
  uint32_t row(float y) const { return place((y - low_y) * per_unit, rows); }
  uint32_t tile(float x, float y) const { return row(y) * columns + column(x); }

 private:
  static uint32_t place(float at, uint32_t count) {
    return static_cast<uint32_t>(std::clamp(at, 0.0f, static_cast<float>(count - 1)));
  }
};

}  // namespace undercut
