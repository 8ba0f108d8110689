// The library's classification as a function of plain values.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry.h"

namespace undercut::host {

// For each triangle whether it is in the list and seen along none of the axes (get_UCs); an axis is
// told as the direction in which the tool moves. Reads the parameters that are set; what the
// library prints on standard output is held back. Throws RunError.
std::vector<bool> find_Hidden(const Mesh& mesh, const std::vector<T3DVEC>& axes,
                              const std::vector<uint32_t>& triangles);

}  // namespace undercut::host
