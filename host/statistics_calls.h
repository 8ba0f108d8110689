// The library's ratings of regions as functions of plain values. Axes are unit vectors from the
// part towards the tool.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "geometry.h"

namespace undercut::host {

// How much of a region is seen along an axis.
struct SeenRegion {
  bool all = false;             // no ray from it is blocked
  std::optional<double> share;  // of its area, 0 to 1; none without area
  double area_seen = 0.0;       // mm2
  double area = 0.0;
  bool rim_all = false;             // no ray from its rim is blocked
  std::optional<double> rim_share;  // of its length; none without a rim
  uint32_t rim_seen = 0, rim = 0;   // edges
};

using Lists = std::vector<std::vector<uint32_t>>;

// Rates each list along its axis (get_Sta, get_Stb). Reads ucs.f_tol. Throws RunError.
std::vector<SeenRegion> rate_Regions(const Mesh& mesh, const Lists& lists,
                                     const std::vector<T3DVEC>& axes);

// The largest value in each list (get_Stc), a value being given for each triangle; none where all
// triangles of a list have two equal corners or the lowest value of all. Throws RunError.
std::vector<std::optional<double>> find_Largest(const Mesh& mesh, const Lists& lists,
                                                const std::vector<double>& values);

// A range of polar angles, from the machine's Z, in degrees.
struct Band {
  double from = 0.0, to = 0.0;
};

// For each axis the nearest one whose polar angle from Z lies in the band (err_Nml). Overwrites
// the parameters dcm.n_con, dcm.a_th0 and dcm.b_th0. Throws RunError.
std::vector<T3DVEC> hold_Axes(const std::vector<T3DVEC>& axes, const Band& band);

}  // namespace undercut::host
