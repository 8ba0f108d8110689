// The library's searches for an axis as functions of plain values. They read the parameters that
// are set, but for ucs.b_sta: the line that a search prints is read and held back.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "geometry.h"

namespace undercut::host {

// What a search found. Angles in degrees.
struct FoundAxis {
  const char* search = "";  // the function of the library
  T3DFRM frame{};           // as the library hands it out
  double theta = 0.0, phi = 0.0;
  double rating = 0.0;  // lower is better
  uint32_t ratings = 0;
};

// The axis along whose two ends the most of the mesh is seen; `start` is theta and phi, without it
// all directions are scanned. Throws RunError.
FoundAxis search_ThreeAxis(const Mesh& mesh, const std::optional<std::array<double, 2>>& start);

// The best tilt for a region, the whole mesh if it is empty. Throws RunError, and UsageError where
// parameters contradict one another.
FoundAxis search_FourAxis(const Mesh& mesh, const std::vector<uint32_t>& region);

// The best direction for the whole mesh, or for a region of it within a window of directions. The
// whole mesh is an obstacle. Throws as search_FourAxis.
FoundAxis search_FiveAxis(const Mesh& mesh);
FoundAxis search_Window(const Mesh& mesh, const std::vector<uint32_t>& region);

// Reads "NAME :: ratings 71, rating -1.5, theta 2, phi 3", the last such line of a text, into the
// numbers of `found`; false if there is none.
bool read_Search(std::string_view printed, std::string_view name, FoundAxis& found);

}  // namespace undercut::host
