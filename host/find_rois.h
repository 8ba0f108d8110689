// Finds the regions of interest of a part where the user names none: the connected patches of its
// surface that a three-axis machine does not reach from either end of its best axis.
//
// That axis is the one of the library's search, with true areas rated. The search walks in steps of
// degrees, and a wall is seen from an end only where the axis runs along it to a hundredth of a
// degree; so the normals of the largest flat faces are looked along too.
#pragma once

#include <vector>

#include "parameters.h"
#include "part.h"

namespace undercut::host {

// Of the part's area: patches smaller than this are dropped, unless the user says otherwise.
inline constexpr double kSmallestShare = 0.001;

// Areas in mm2.
struct Search {
  T3DVEC axis{};  // the best one, as a unit vector: the machine's Z in the file's coordinates
  bool from_face = false;  // it is the normal of flat faces, not what the library's search found
  double area = 0.0;
  double undercut = 0.0;  // seen along neither the axis nor its opposite
  size_t triangles = 0;   // in it
  double min_area = 0.0;
  std::vector<Roi> patches;  // the largest first
  size_t dropped = 0;        // patches that are smaller than min_area
  double dropped_area = 0.0;
  std::vector<uint32_t> dropped_triangles;  // ascending

  double seen() const { return area > 0.0 ? (area - undercut) / area : 0.0; }
};

// The patches into which marked triangles fall: connected where they share an edge. Triangles
// without an area are left out. Each patch ascends; the largest comes first, of equal ones that
// with the lowest triangle.
struct MarkedPatch {
  std::vector<uint32_t> triangles;
  double area = 0.0;
};
std::vector<MarkedPatch> list_Patches(const Mesh& mesh, const std::vector<bool>& marked);

// What holds in a search unless the user sets it: three polar bands, since what neither end sees
// needs tools from the side, and ratings by true areas, since projected ones draw the axis away
// from the walls of a machined part. Set ahead of the user's settings.
std::vector<Setting> add_SearchSettings(const std::vector<Setting>& settings);

// Reads the parameters that are set. `min_area` below 0 stands for kSmallestShare of the part's
// area. Throws RunError, and InputError where the part has no surface.
Search search_Rois(const Part& part, double min_area);

// The search reads it.
bool is_ReadBySearch(const Parameter& parameter);

}  // namespace undercut::host
