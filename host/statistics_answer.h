// The subcommand statistics: how much of regions is seen along axes.
#pragma once

#include <iosfwd>
#include <optional>
#include <vector>

#include "statistics_calls.h"
#include "statistics_options.h"
#include "surface.h"

namespace undercut::host {

// The number of the form of statistics.json, told in docs/json.md; raised when a key changes.
inline constexpr int kStatisticsSchema = 1;

// The nearest axis in a polar band of the machine.
struct AllowedAxis {
  Band band;
  T3DVEC axis{};
  double angle = 0.0;  // from the region's axis, degrees
  SeenRegion seen;
};

struct RatedRegion {
  size_t region = 0;  // which of the answer's
  T3DVEC axis{};      // unit vector from the part towards the tool
  SeenRegion seen;
  std::optional<double> largest;     // of the values
  std::vector<AllowedAxis> allowed;  // one for each band; none where they are not asked for
};

struct StatisticsAnswer {
  std::vector<Setting> settings;  // the user's, behind the bands of a regions.json
  std::vector<Roi> rois;
  std::vector<Extent> extents;     // of each
  std::vector<RatedRegion> rated;  // one for each region, or for each axis of a region alone
  double elapsed_ms = 0.0;
};

// Reads the parameters that are set. Throws the errors of errors.h.
StatisticsAnswer rate_Part(const StatisticsOptions& options, const Part& part);

Json make_StatisticsJson(const Part& part, const StatisticsOptions& options,
                         const StatisticsAnswer& answer);
void write_StatisticsTable(std::ostream& out, const Part& part, const StatisticsOptions& options,
                           const StatisticsAnswer& answer);
// Each triangle with the share that is seen of the first region that has it.
void write_StatisticsPly(std::ostream& out, const Part& part, const StatisticsAnswer& answer);

// Returns the exit status. Throws the errors of errors.h.
int run_Statistics(const StatisticsOptions& options, std::ostream& out, std::ostream& err);

}  // namespace undercut::host
