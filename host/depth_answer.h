// The subcommand depth: how far each triangle lies under an overhang.
#pragma once

#include <iosfwd>
#include <vector>

#include "face_ply.h"
#include "shadow_options.h"
#include "surface.h"

namespace undercut::host {

// The number of the form of depth.json, told in docs/json.md; raised when a key changes.
inline constexpr int kDepthSchema = 1;

// Depths above `from` up to `to`, mm.
struct DepthRange {
  double from = 0.0, to = 0.0;
  Extent extent;
};

struct DepthAnswer {
  Roi roi;
  Extent region;
  std::vector<Part> others;
  std::vector<double> depths;  // by triangle, mm; not a number: no answer, or not asked for
  double largest = 0.0;        // mm
  double top = 0.0;            // upper end of the colours and of the ranges, mm
  Extent seen;                 // depth 0
  Extent deep;                 // depth above 0
  Extent deeper;               // depth above top
  Extent unknown;              // no answer
  std::vector<uint32_t> unknown_triangles;  // ascending
  std::vector<DepthRange> ranges;           // from 0 to top, none where that is 0
  double elapsed_ms = 0.0;
};

// Sorts the depths of the region of interest into ranges; `top` is the largest depth unless it is
// told. Needs roi and depths.
void sort_Depths(const Mesh& mesh, const std::optional<double>& top, DepthAnswer& answer);

// From light yellow for 0 to dark red at the top and above.
Colour shade_Depth(double depth, double top);

Json make_DepthJson(const Part& part, const ShadowOptions& options, const DepthAnswer& answer);
void write_DepthTable(std::ostream& out, const Part& part, const ShadowOptions& options,
                      const DepthAnswer& answer);
void write_DepthPly(std::ostream& out, const Part& part, const DepthAnswer& answer);

// Returns the exit status. Throws the errors of errors.h.
int run_Depth(const ShadowOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
