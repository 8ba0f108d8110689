// The command line of the subcommand components.
#pragma once

#include <optional>

#include "corridor_options.h"
#include "geometry.h"
#include "surface_options.h"

namespace undercut::host {

struct ComponentsOptions : SurfaceOptions {
  std::optional<T3DRAY> corridor;              // its reference axis, unit direction
  std::vector<T3DVEC> axes;                    // of the corridor's slabs, unit vectors
  std::filesystem::path values;                // a value for each triangle; empty for none
  std::vector<std::filesystem::path> outside;  // sets of closed curves that pieces must not touch
  bool filter = false;                         // drop pieces; the limits are among the settings
};

struct ComponentsWords : SurfaceWords {
  CorridorWords corridor;
  std::vector<std::string> axes, outside;
  std::optional<std::string> merge, values, min_area, min_value;
};

CLI::App* add_Components(CLI::App& app, ComponentsWords& words);
// Throws UsageError.
ComponentsOptions check_Components(const ComponentsWords& words);

bool is_ReadByComponents(const Parameter& parameter, bool corridor);

}  // namespace undercut::host
