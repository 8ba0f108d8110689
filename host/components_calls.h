// The library's connected pieces as functions of plain values.
#pragma once

#include <cstdint>
#include <vector>

#include "curve_file.h"
#include "geometry.h"

namespace undercut::host {

// The connected pieces of the listed triangles, in the order of their lowest triangles (get_Com),
// each ascending. Reads ucs.f_eps. Throws RunError.
std::vector<std::vector<uint32_t>> find_Pieces(const Mesh& mesh,
                                               const std::vector<uint32_t>& triangles);

// Those pieces that are not below flt.f_srf and flt.f_dep and reach into no set of curves, in their
// order (flt_Com); a value being given for each triangle. Throws RunError, and InputError where the
// curves bound nothing of the mesh.
std::vector<std::vector<uint32_t>> filter_Pieces(const Mesh& mesh,
                                                 const std::vector<std::vector<uint32_t>>& pieces,
                                                 const std::vector<double>& values,
                                                 const std::vector<std::vector<Curve>>& outside);

}  // namespace undercut::host
