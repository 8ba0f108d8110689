#include "statistics_answer.h"

#include <algorithm>
#include <cmath>

#include <nlohmann/json.hpp>

#include "library_call.h"
#include "number_file.h"
#include "prepare.h"
#include "region_file.h"
#include "surface_command.h"
#include "text.h"

namespace undercut::host {
namespace {

// The regions to rate, each with its axis, and the machine's Z.
struct Asked {
  std::vector<Roi> rois;
  std::vector<T3DVEC> axes;
  T3DVEC up{0, 0, 1};
  std::vector<Setting> settings;
};

Asked read_Asked(const StatisticsOptions& options, const Part& part) {
  Asked asked;
  asked.axes = options.axes;
  if (options.regions.empty()) {
    asked.rois = read_Rois(options.rois, part);
    if (asked.rois.empty()) asked.rois.push_back(whole_Roi(part));
  } else {
    RegionFile file = read_Regions(options.regions, part);
    for (NamedRegion& region : file.regions) {
      asked.rois.push_back(std::move(region.roi));
      if (options.axes.empty()) asked.axes.push_back(region.axis);
    }
    asked.up = file.up;
    if (options.allowed) asked.settings = std::move(file.bands);
  }
  if (options.up) asked.up = *options.up;
  asked.settings.insert(asked.settings.end(), options.settings.begin(), options.settings.end());
  return asked;
}

// Regions and axes in pairs: one axis for all, one for each, or several for a region alone.
std::vector<RatedRegion> pair_Up(const Asked& asked) {
  const size_t regions = asked.rois.size(), axes = asked.axes.size();
  if (axes != regions && axes != 1 && regions != 1) {
    throw UsageError("--axis is given " + std::to_string(axes) + " times for " +
                     std::to_string(regions) + " regions: give it once for all, or once for each.");
  }
  std::vector<RatedRegion> pairs(regions == 0 ? 0 : std::max(regions, axes));
  for (size_t k = 0; k < pairs.size(); ++k) {
    pairs[k].region = regions == 1 ? 0 : k;
    pairs[k].axis = asked.axes[axes == 1 ? 0 : k];
  }
  return pairs;
}

Band find_Band(const std::vector<Setting>& settings, size_t k) {
  const std::string low = "dcm.a_th" + std::to_string(k), high = "dcm.b_th" + std::to_string(k);
  const Band band{find_Value<double>(settings, low.c_str()),
                  find_Value<double>(settings, high.c_str())};
  if (band.from > band.to) {
    throw UsageError("--allowed: " + low + " = " + fixed_Text(band.from, 3) + " lies above " +
                     high + " = " + fixed_Text(band.to, 3) + ": the lower angle comes first.");
  }
  return band;
}

std::vector<Band> list_Bands(const std::vector<Setting>& settings) {
  const auto count = static_cast<size_t>(find_Value<int64_t>(settings, "dcm.n_con"));
  if (count == 0) {
    throw UsageError(
        "--allowed: dcm.n_con is 0, so the machine allows every axis. Set it to the number of its "
        "polar bands.");
  }
  std::vector<Band> bands(count);
  for (size_t k = 0; k < count; ++k) bands[k] = find_Band(settings, k);
  return bands;
}

double find_Angle(const T3DVEC& a, const T3DVEC& b) {
  constexpr double kDegrees = 57.295779513082323;
  return kDegrees * std::atan2(len_Vec(cross_Vec(a, b)), dot_Vec(a, b));
}

void rate_Allowed(const Part& part, const Asked& asked, const Lists& lists,
                  StatisticsAnswer& answer) {
  const Rotation upright = rotate_Up(asked.up);
  for (const Band& band : list_Bands(asked.settings)) {
    std::vector<T3DVEC> turned, axes;
    for (const RatedRegion& rated : answer.rated) turned.push_back(upright.turn(rated.axis));
    for (const T3DVEC& axis : hold_Axes(turned, band)) {
      axes.push_back(unit_Vec(upright.turn_Back(axis)));
    }
    const std::vector<SeenRegion> seen = rate_Regions(part.mesh, lists, axes);
    for (size_t k = 0; k < axes.size(); ++k) {
      RatedRegion& rated = answer.rated[k];
      rated.allowed.push_back({band, axes[k], find_Angle(rated.axis, axes[k]), seen[k]});
    }
  }
}

}  // namespace

StatisticsAnswer rate_Part(const StatisticsOptions& options, const Part& part) {
  const Asked asked = read_Asked(options, part);
  StatisticsAnswer answer;
  answer.settings = asked.settings;
  answer.rois = asked.rois;
  answer.rated = pair_Up(asked);
  for (const Roi& roi : answer.rois) {
    answer.extents.push_back(measure(part.mesh, roi.triangles));
  }
  Lists lists;
  std::vector<T3DVEC> axes;
  for (const RatedRegion& rated : answer.rated) {
    lists.push_back(answer.rois[rated.region].triangles);
    axes.push_back(rated.axis);
  }
  const std::vector<SeenRegion> seen = rate_Regions(part.mesh, lists, axes);
  for (size_t k = 0; k < seen.size(); ++k) answer.rated[k].seen = seen[k];
  if (!options.values.empty()) {
    const std::vector<double> values = read_Values(options.values, part.mesh.triangles.size());
    const std::vector<std::optional<double>> largest = find_Largest(part.mesh, lists, values);
    for (size_t k = 0; k < largest.size(); ++k) answer.rated[k].largest = largest[k];
  }
  if (options.allowed) rate_Allowed(part, asked, lists, answer);
  return answer;
}

int run_Statistics(const StatisticsOptions& options, std::ostream& out, std::ostream& err) {
  const Part part = read_Part(options.part);
  const auto reads = [&](const Parameter& p) { return is_ReadByStatistics(p, options.allowed); };
  note_Unread(options.settings, reads, "the statistics", err);
  OutputFolder folder(options.folder, {"statistics.ply", "statistics.json"});
  const auto start = std::chrono::steady_clock::now();
  set_Parameters({options.settings, {}, false});
  StatisticsAnswer answer = rate_Part(options, part);
  answer.elapsed_ms = since_Ms(start);
  write_StatisticsPly(folder.file(0), part, answer);
  hand_Over(folder, make_StatisticsJson(part, options, answer), options.json, out,
            [&] { write_StatisticsTable(out, part, options, answer); });
  return kDone;
}

}  // namespace undercut::host
