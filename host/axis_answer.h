// The subcommand axis: searches for the best axis, and what the axes that were found see.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <vector>

#include "axis_options.h"
#include "json_parts.h"
#include "search_calls.h"
#include "surface.h"

namespace undercut::host {

// The number of the form of axis.json, told in docs/json.md; raised when a key changes.
inline constexpr int kAxisSchema = 1;

// What is seen of the region that an axis was searched for, and of the whole part. All of the part
// is an obstacle.
struct Sight {
  Extent region, part;
};

struct AxisResult {
  Roi roi;
  Extent region;
  FoundAxis found;
  T3DVEC axis{};  // unit vector from the part towards the tool
  Sight from_axis;
  Sight from_opposite, from_either;  // three axes only
};

struct AxisAnswer {
  std::vector<AxisResult> axes;  // one for each region of interest
  std::vector<int32_t> seen_by;  // by triangle: number of the first axis that sees it, or 0
  Extent part;                   // triangles with two equal corners left out
  double elapsed_ms = 0.0;
};

Json make_AxisJson(const Part& part, const AxisOptions& options, const AxisAnswer& answer);
void write_AxisTable(std::ostream& out, const Part& part, const AxisOptions& options,
                     const AxisAnswer& answer);
// Each triangle with the number of the first axis that sees it, 0 for none.
void write_AxisPly(std::ostream& out, const Part& part, const AxisAnswer& answer);

// The triangles of a list as a mesh of their own.
Mesh cut_Out(const Mesh& mesh, const std::vector<uint32_t>& triangles);

// Reads the parameters that are set. Tells on `progress` which region is searched for, unless null.
AxisAnswer find_Axes(const AxisOptions& options, const Part& part, std::ostream* progress);

// Returns the exit status. Throws the errors of errors.h.
int run_Axis(const AxisOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
