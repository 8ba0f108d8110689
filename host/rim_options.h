// The command line of the subcommand rim.
#pragma once

#include <optional>

#include "geometry.h"
#include "rim_calls.h"
#include "surface_options.h"

namespace undercut::host {

struct RimOptions : SurfaceOptions {
  T3DVEC axis{};                // unit vector from the part towards the tool
  std::filesystem::path frame;  // a file that tells the frame instead; empty for none
  RimMethod method = RimMethod::kGrid;
  std::optional<uint32_t> start;
  std::optional<double> radius;  // mm
  std::optional<double> cell;    // mm; it stands among the settings too
};

struct RimWords : SurfaceWords {
  std::optional<std::string> axis, frame, method, start, radius, cell, rows, columns;
};

CLI::App* add_Rim(CLI::App& app, RimWords& words);
// Throws UsageError.
RimOptions check_Rim(const RimWords& words);

// More cells along a side than this take too long.
inline constexpr int64_t kMostCells = 20000;

bool is_ReadByRim(RimMethod method, const Parameter& parameter);

}  // namespace undercut::host
