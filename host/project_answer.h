// The subcommand project: points and curves put onto the part, and lines that meet it.
#pragma once

#include <iosfwd>
#include <optional>
#include <vector>

#include "project_options.h"
#include "surface.h"

namespace undercut::host {

// The number of the form of projection.json, told in docs/json.md; raised when a key changes.
inline constexpr int kProjectionSchema = 1;

// A file of points, its triangles and its direction.
struct MovedArea {
  std::string source;
  Roi roi;
  Extent region;
  T3DFRM frame{};
  bool in_frame = false;       // the points of the file are told in the frame
  std::vector<size_t> curves;  // how many points each curve has; none for bare points
  std::vector<T3DVEC> before;  // in the part's coordinates
  std::vector<T3DVEC> after;
  std::vector<bool> on_part;         // ended on the part
  size_t stayed = 0, off_part = 0;   // did not move at all; are not on the part afterwards
  double mean = 0.0, largest = 0.0;  // distance moved, mm
};

struct MetLine {
  T3DRAY line;
  std::optional<T3DVEC> point;
  double distance = 0.0;  // along the line, negative behind its origin, mm
};

struct ProjectAnswer {
  std::vector<MovedArea> areas;
  std::vector<MetLine> lines;
  double elapsed_ms = 0.0;
};

// Reads the parameters that are set. Throws InputError and RunError.
ProjectAnswer project_Points(const ProjectOptions& options, const Part& part);

Json make_ProjectionJson(const Part& part, const ProjectOptions& options,
                         const ProjectAnswer& answer);
void write_ProjectionTable(std::ostream& out, const Part& part, const ProjectOptions& options,
                           const ProjectAnswer& answer);

// Returns the exit status. Throws the errors of errors.h.
int run_Project(const ProjectOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
