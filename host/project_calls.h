// The library's projection as a function of plain values.
#pragma once

#include <vector>

#include "geometry.h"

namespace undercut::host {

// What moves together: points along the Z axis of a frame, onto triangles, then onto the mesh.
struct PointsArea {
  const std::vector<uint32_t>& triangles;
  const std::vector<T3DVEC>& points;
  T3DFRM frame;
};

// For each area the moved points (get_Prj). Reads the parameters that are set. Throws RunError.
std::vector<std::vector<T3DVEC>> move_Points(const Mesh& mesh,
                                             const std::vector<PointsArea>& areas);

}  // namespace undercut::host
