// The command line of the subcommand axis.
#pragma once

#include <array>
#include <optional>

#include "surface_options.h"

namespace undercut::host {

struct AxisOptions : SurfaceOptions {
  int machine = 0;                             // 3, 4 or 5 axes
  std::optional<std::array<double, 2>> start;  // theta and phi, degrees; machine 3 only
  // Window of the search as the user gave it: none, two tilts, or theta and phi at both ends.
  // It stands among the settings too.
  std::vector<double> window;
};

struct AxisWords : SurfaceWords {
  std::optional<std::string> machine, start, window, plane;
};

CLI::App* add_Axis(CLI::App& app, AxisWords& words);
// Throws UsageError.
AxisOptions check_Axis(const AxisWords& words);

// The search on a machine of so many axes reads a parameter, or the measuring of what it sees.
bool is_ReadByAxis(int machine, const Parameter& parameter);

}  // namespace undercut::host
