// From flat rim curves back to the part.
#pragma once

#include <vector>

#include "curve_file.h"

namespace undercut::host {

// A rim curve as it is told.
struct RimCurve {
  Curve flat;                       // in the frame, z = 0
  Curve placed;                     // in the part's coordinates, on the border of the area
  double length = 0.0, area = 0.0;  // of the flat curve; mm, mm2
  bool hole = false;                // it runs clockwise, round what is not of the area
};

// A frame round an axis, from the part towards the tool: the origin is that of the file, and X is
// the file's X, or its Y where the axis is near X, laid across the axis. So it is the file's own
// frame for the axis 0,0,1.
T3DFRM make_AxisFrame(const T3DVEC& axis);

// Unit normal, zero where there is none.
T3DVEC normal_Tri(const Mesh& mesh, uint32_t triangle);

// In the coordinates of the frame.
T3DVEC to_Frame(const T3DFRM& frame, const T3DVEC& point);

// The larger side of the box, across the frame's Z, that holds the triangles; mm.
double find_Width(const Mesh& mesh, const std::vector<uint32_t>& triangles, const T3DFRM& frame);

// Gives each point of flat curves the height of the area's border where that comes nearest to it
// across Z; of places about as near those are taken with which the curve climbs the least. The
// border is that of what faces Z: the foot of a wall is none.
std::vector<RimCurve> place_Curves(const Mesh& mesh, const std::vector<uint32_t>& area,
                                   const T3DFRM& frame, std::vector<Curve> curves);

}  // namespace undercut::host
