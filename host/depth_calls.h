// The library's depth field as a function of plain values.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "geometry.h"

namespace undercut::host {

// For each triangle of the mesh how far it lies under an overhang, in mm (get_dFi; get_dFb where
// `others` cast shadow too): 0 where an axis sees it, not a number where there is no answer, and
// for triangles that are not listed. An axis is told as the direction of the tool. `printed` gets
// what the library says on standard output. Throws RunError.
std::vector<double> find_Depths(const Mesh& mesh, const std::vector<T3DVEC>& axes,
                                const std::vector<uint32_t>& triangles,
                                const std::vector<Mesh>& others, std::string& printed);

}  // namespace undercut::host
