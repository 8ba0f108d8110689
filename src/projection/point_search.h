// One point on its way onto a mesh, along a direction: first near its own area, then onto the
// surface. Lengths in mm.
#pragma once

#include "interface/parameters.h"
#include "mesh/trees.h"

namespace undercut {

// The radii round a point's line that are tried, rising: f_off, then f_inc more each time, while
// they are below f_lim. The list ends early where a step no longer raises the radius, and at a
// million. False for no memory.
bool list_Radii(const TPrjPar& par, TArr<double>& radii);

// `line` is the point and the direction, a unit vector or zero; `hits` is scratch with room for
// every triangle of the tree.

// The point at the height of the centroid that lies nearest to the line, of the triangles that the
// first radius finds that finds any; of equally near ones the first listed. A point that no radius
// finds a triangle for stays.
T3DVEC to_Area(const C3DTriAABBTree& area, const T3DRAY& line, const TArr<double>& radii,
               TLst<uint32_t>& hits);

// The nearest crossing of the line with the mesh; the point itself where there is none or where it
// lies farther away than the tolerance.
T3DVEC onto_Mesh(const C3DTriAABBTree& mesh, const T3DRAY& line, double tolerance,
                 TLst<uint32_t>& hits);

}  // namespace undercut
