// Cuts a mesh apart where it is no surface.
#pragma once

#include "geometry.h"

namespace undercut::host {

// Triangles stay joined across edges that exactly two of them share; across an edge of more they
// are parted, and so are the fans that touch in one vertex only. Every fan gets a vertex of its
// own, at the same place (after A. Gueziec, G. Taubin, F. Lazarus, W. Horn, Cutting and Stitching,
// 2001). The first fan of a vertex, by triangle number, keeps it; copies are appended. Returns
// their number.
uint32_t cut_Singular(Mesh& mesh);

}  // namespace undercut::host
