// The command line of the subcommand statistics.
#pragma once

#include <optional>

#include "geometry.h"
#include "surface_options.h"

namespace undercut::host {

struct StatisticsOptions : SurfaceOptions {
  // Unit vectors from the part towards the tool: one for all regions, or one for each; a region
  // alone may have several. May be empty where `regions` tells its own.
  std::vector<T3DVEC> axes;
  std::filesystem::path regions;  // a regions.json of decompose to rate; empty for none
  std::filesystem::path values;   // a value for each triangle; empty for none
  bool allowed = false;           // rate the nearest axes in the machine's polar bands too
  std::optional<T3DVEC> up;       // the machine's Z, for the bands
};

struct StatisticsWords : SurfaceWords {
  std::vector<std::string> axes;
  std::optional<std::string> regions, values, up;
  bool allowed = false;
};

CLI::App* add_Statistics(CLI::App& app, StatisticsWords& words);
// Throws UsageError.
StatisticsOptions check_Statistics(const StatisticsWords& words);

bool is_ReadByStatistics(const Parameter& parameter, bool allowed);

}  // namespace undercut::host
