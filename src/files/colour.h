// Colours of the mesh files: maps from a value to a colour, and the palette of the regions.
#pragma once

#include <cstdint>

namespace undercut {

struct TRgb {
  uint8_t r, g, b;
  bool operator==(const TRgb&) const = default;
};

// The colour of a value in the range low to high. Everything is single precision: value and bounds
// are narrowed first, so that a value equal to a bound stays equal to it.
//   1: white over yellow and round the circle of hues to red    3: white to black
//   2: white to red                                             4: white, green, yellow, red
// A value at or below the low bound is white in every mode; of equal bounds the low one holds. A
// value above a range of no length, or at or above the high bound, has the last colour. What is not
// a number is white, and so is any value in a range without a finite length. A mode outside 1 to 4
// gives black.
TRgb col_Map(double value, double low, double high, int32_t mode);

inline constexpr int32_t kPaletteSize = 150;
// The last index that is used. The table has one entry more, which no region ever gets: labels wrap
// at 149, and the colours of all files hang on that.
inline constexpr int32_t kPaletteLast = 148;

// The palette's colour; an index outside 0 to kPaletteLast gives the nearer end.
TRgb col_Pal(int64_t index);

}  // namespace undercut
