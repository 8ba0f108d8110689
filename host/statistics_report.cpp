// The keys are told in docs/json.md. Their order is fixed.
#include <bit>
#include <iomanip>
#include <limits>
#include <ostream>

#include <nlohmann/json.hpp>

#include "depth_answer.h"
#include "face_ply.h"
#include "statistics_answer.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

Json show_Known(const std::optional<double>& value) { return value ? Json(*value) : Json(nullptr); }

Json show_Surface(const SeenRegion& seen) {
  return {{"share", show_Known(seen.share)},
          {"area_seen", seen.area_seen},
          {"area", seen.area},
          {"all", seen.all}};
}

Json show_Rim(const SeenRegion& seen) {
  return {{"share", show_Known(seen.rim_share)},
          {"edges_seen", seen.rim_seen},
          {"edges", seen.rim},
          {"all", seen.rim_all}};
}

Json show_Allowed(const RatedRegion& rated) {
  Json list = Json::array();
  for (const AllowedAxis& allowed : rated.allowed) {
    list.push_back({{"from", allowed.band.from},
                    {"to", allowed.band.to},
                    {"axis", show_Vec(allowed.axis)},
                    {"tilt", allowed.angle},
                    {"surface", show_Surface(allowed.seen)},
                    {"rim", show_Rim(allowed.seen)}});
  }
  return list;
}

// "12.5 %", or "-" where there is no share.
std::string show_Share(const std::optional<double>& share) {
  return share ? show_Percent(*share, 1.0) : "-";
}

void write_Seen(std::ostream& out, const SeenRegion& seen) {
  out << std::setw(10) << show_Share(seen.share) << std::setw(10) << show_Share(seen.rim_share)
      << std::setw(16) << std::to_string(seen.rim_seen) + " of " + std::to_string(seen.rim);
}

void write_Rated(std::ostream& out, const StatisticsOptions& options,
                 const StatisticsAnswer& answer, size_t k) {
  const RatedRegion& rated = answer.rated[k];
  out << std::setw(4) << k + 1 << std::setw(11) << answer.extents[rated.region].count
      << std::setw(14) << fixed_Text(rated.seen.area, 3);
  write_Seen(out, rated.seen);
  if (!options.values.empty()) {
    out << std::setw(12) << (rated.largest ? fixed_Text(*rated.largest, 4) : "-");
  }
  out << " " << show_Direction(rated.axis) << "  " << answer.rois[rated.region].source << "\n";
  for (const AllowedAxis& allowed : rated.allowed) {
    out << std::setw(29)
        << fixed_Text(allowed.band.from, 1) + " to " + fixed_Text(allowed.band.to, 1) + " deg";
    write_Seen(out, allowed.seen);
    if (!options.values.empty()) out << std::setw(12) << "";
    out << " " << show_Direction(allowed.axis) << "  tilted by " << fixed_Text(allowed.angle, 2)
        << " deg\n";
  }
}

}  // namespace

Json make_StatisticsJson(const Part& part, const StatisticsOptions& options,
                         const StatisticsAnswer& answer) {
  Json regions = Json::array();
  for (size_t k = 0; k < answer.rated.size(); ++k) {
    const RatedRegion& rated = answer.rated[k];
    regions.push_back(
        {{"index", k},
         {"region", show_Region(answer.rois[rated.region], answer.extents[rated.region])},
         {"axis", show_Vec(rated.axis)},
         {"surface", show_Surface(rated.seen)},
         {"rim", show_Rim(rated.seen)},
         {"largest", show_Known(rated.largest)},
         {"allowed", show_Allowed(rated)}});
  }
  return {{"schema", kStatisticsSchema},
          {"program", show_Program()},
          {"units", show_Units()},
          {"input", show_Input(part)},
          {"parameters", show_Settings(answer.settings)},
          {"values", options.values.empty() ? Json(nullptr) : Json(options.values.string())},
          {"regions", std::move(regions)},
          {"elapsed", answer.elapsed_ms}};
}

void write_StatisticsTable(std::ostream& out, const Part& part, const StatisticsOptions& options,
                           const StatisticsAnswer& answer) {
  write_Part(out, part);
  write_Settings(out, answer.settings);
  const bool values = !options.values.empty();
  out << "\n      triangles      area mm2      seen  rim seen       rim edges"
      << (values ? "     largest" : "") << "   axis, from the part towards the tool; region\n";
  for (size_t k = 0; k < answer.rated.size(); ++k) write_Rated(out, options, answer, k);
  if (answer.rated.empty()) out << "  no region\n";
  out << "\nin " << fixed_Text(answer.elapsed_ms / 1000.0, 2) << " s\n";
}

void write_StatisticsPly(std::ostream& out, const Part& part, const StatisticsAnswer& answer) {
  const double none = std::numeric_limits<double>::quiet_NaN();
  std::vector<double> shares(part.mesh.triangles.size(), none);
  std::vector<bool> rated(part.mesh.triangles.size(), false);
  for (const RatedRegion& region : answer.rated) {
    for (const uint32_t triangle : answer.rois[region.region].triangles) {
      if (rated[triangle]) continue;
      rated[triangle] = true;
      shares[triangle] = region.seen.share.value_or(none);
    }
  }
  // What is seen altogether is light, what is not seen at all dark red.
  const auto pick = [&](size_t i) -> Colour {
    if (!rated[i]) return {90, 90, 90};
    const double share = shares[i];
    return share <= 1.0 ? shade_Depth(1.0 - share, 1.0) : shade_Depth(0.0, 1.0);
  };
  const auto put_Share = [&](size_t i, std::string& bytes) {
    put_Bytes(bytes, std::bit_cast<uint64_t>(shares[i]), 8);
  };
  write_FacePly(out, part.mesh,
                {"undercut statistics; share of its region that is seen, 0 to 1; nan in no region",
                 "double share", pick, put_Share});
}

}  // namespace undercut::host
