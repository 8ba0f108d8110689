// The subcommand rim: the closed curves that bound an area as seen along an axis.
#pragma once

#include <iosfwd>
#include <optional>
#include <vector>

#include "rim_options.h"
#include "rim_place.h"
#include "surface.h"

namespace undercut::host {

// The number of the form of rim.json, told in docs/json.md; raised when a key changes.
inline constexpr int kRimSchema = 1;

struct RimAnswer {
  Roi roi;
  Extent region;
  T3DFRM frame{};                 // Z from the part towards the tool
  std::optional<uint32_t> start;  // none for grid-roi
  std::vector<uint32_t> area;     // ascending; as it is found, before gaps and holes are closed
  Extent extent;                  // of the area
  std::optional<double> radius;   // mm; none for edges
  std::vector<Setting> settings;  // with those that the command takes by itself in front
  std::vector<RimCurve> curves;
  double elapsed_ms = 0.0;
};

// A frame from a matrix of four lines, or from a file .json: an object with x, y, z and origin, or
// one that has it under "frame", as rim.json. Throws InputError.
T3DFRM read_AnyFrame(const std::filesystem::path& path);

// Hands the settings to the library. Throws InputError and RunError.
RimAnswer find_Rim(const RimOptions& options, const Part& part);

Json make_RimJson(const Part& part, const RimOptions& options, const RimAnswer& answer);
void write_RimTable(std::ostream& out, const Part& part, const RimOptions& options,
                    const RimAnswer& answer);
// Each triangle with 1 if it is of the area, 2 for the start.
void write_RimPly(std::ostream& out, const Part& part, const RimAnswer& answer);

// Returns the exit status. Throws the errors of errors.h.
int run_Rim(const RimOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
