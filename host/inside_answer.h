// The subcommand inside: the triangles inside closed curves.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "curve_file.h"
#include "inside_options.h"
#include "surface.h"

namespace undercut::host {

// The number of the form of inside.json, told in docs/json.md; raised when a key changes.
inline constexpr int kInsideSchema = 1;

struct GivenCurve {
  std::string source;  // its file
  Curve points;        // as given, or the other way round
  Curve laid;          // along the edges of the mesh
};

struct InsideAnswer {
  std::vector<GivenCurve> curves;
  std::vector<uint32_t> triangles;  // ascending
  Extent part, inside, outside;     // triangles with two equal corners left out
  double elapsed_ms = 0.0;
};

// Throws InputError and RunError.
InsideAnswer find_Inside(const InsideOptions& options, const Part& part);

Json make_InsideJson(const Part& part, const InsideOptions& options, const InsideAnswer& answer);
void write_InsideTable(std::ostream& out, const Part& part, const InsideAnswer& answer);
// Each triangle with 1 inside, 0 outside, -1 for two equal corners.
void write_InsidePly(std::ostream& out, const Part& part, const InsideAnswer& answer);

// Returns the exit status. Throws the errors of errors.h.
int run_Inside(const InsideOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
