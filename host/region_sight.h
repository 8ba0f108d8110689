// What is told of each region once all are found: how much of it is seen along its axis, and its
// rim.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "rim_place.h"

namespace undercut::host {

struct Answer;
struct Part;

// Seen along the region's axis, with the mesh of the file as the obstacle.
struct RegionSight {
  double area = 0.0;                   // mm2
  double share = 0.0;                  // of the region's area, 0 to 1
  double rim_share = 0.0;              // of the length of its border; not a number without a border
  uint32_t edges = 0, edges_seen = 0;  // of its border
};

// As seen along the Z axis of the region's frame.
struct RegionRim {
  std::vector<RimCurve> curves;
  std::string failure;  // why there are none; empty where there are
};

// Rates all regions (get_Sta, get_Stb). Reads ucs.f_tol. Throws RunError.
void rate_Regions(const Part& part, Answer& answer);

// Finds the rim of each region (get_Rmc): of its triangles alone, on a grid that goes by its size.
// Sets the parameters of rims.
void trace_Regions(const Part& part, Answer& answer);

// What both do, in a time that is small beside the decomposition.
inline void measure_Regions(const Part& part, Answer& answer) {
  rate_Regions(part, answer);
  trace_Regions(part, answer);
}

}  // namespace undercut::host
