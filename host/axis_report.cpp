// The keys are told in docs/json.md. Their order is fixed.
#include <iomanip>
#include <ostream>

#include <nlohmann/json.hpp>

#include "axis_answer.h"
#include "face_ply.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

Json show_Sight(const Sight& sight, const AxisResult& result, const AxisAnswer& answer) {
  return {{"region", show_Extent(sight.region, result.region.area)},
          {"part", show_Extent(sight.part, answer.part.area)}};
}

Json show_Axis(const AxisResult& result, size_t index, int machine, const AxisAnswer& answer) {
  Json seen{{"axis", show_Sight(result.from_axis, result, answer)},
            {"opposite", nullptr},
            {"either", nullptr}};
  if (machine == 3) {
    seen["opposite"] = show_Sight(result.from_opposite, result, answer);
    seen["either"] = show_Sight(result.from_either, result, answer);
  }
  return {{"index", index},
          {"region", show_Region(result.roi, result.region)},
          {"axis", show_Vec(result.axis)},
          {"frame", show_Frame(result.found.frame)},
          {"search", result.found.search},
          {"theta", result.found.theta},
          {"phi", result.found.phi},
          {"rating", result.found.rating},
          {"ratings", result.found.ratings},
          {"seen", std::move(seen)}};
}

void write_Vector(std::ostream& out, const char* name, const T3DVEC& v, const char* note) {
  out << "  " << std::left << std::setw(10) << name << std::right << show_Direction(v);
  out << (*note != '\0' ? "   " : "") << note << "\n";
}

// What is seen of the region and, where that is not all of it, of the part.
void write_Sight(std::ostream& out, const char* name, const Sight& sight, const AxisResult& result,
                 const AxisAnswer& answer, bool whole) {
  const auto write = [&](const Extent& seen, const Extent& all) {
    out << std::setw(16) << fixed_Text(seen.area, 3) << std::setw(9)
        << show_Percent(seen.area, all.area);
  };
  out << "    " << std::left << std::setw(18) << name << std::right;
  write(sight.region, result.region);
  if (!whole) write(sight.part, answer.part);
  out << "\n";
}

void write_Axis(std::ostream& out, const AxisResult& result, size_t index,
                const AxisOptions& options, const AxisAnswer& answer) {
  const FoundAxis& found = result.found;
  const bool three = options.machine == 3, whole = options.rois.empty();
  out << "\nRegion of interest " << index << " (" << result.roi.source
      << "): " << count_Word(result.region.count, "triangle", "triangles") << ", "
      << fixed_Text(result.region.area, 3) << " mm2\n";
  write_Vector(out, "axis", result.axis, "from the part towards the tool");
  write_Vector(out, "frame x", found.frame.x, "");
  write_Vector(out, "      y", found.frame.y, "");
  write_Vector(out, "      z", found.frame.z, "");
  write_Vector(out, " origin", found.frame.org, "mm");
  out << "  rating      " << fixed_Text(found.rating, 4) << (three ? " mm2" : "") << ", after "
      << count_Word(found.ratings, "rating", "ratings") << " by " << found.search
      << " (lower is better)\n"
      << "  direction   theta " << fixed_Text(found.theta, 3) << ", phi "
      << fixed_Text(found.phi, 3) << " deg\n"
      << "  seen                   of the " << (whole ? "part" : "region") << ", mm2"
      << (whole ? "" : "             of the part, mm2") << "\n";
  write_Sight(out, "from the axis", result.from_axis, result, answer, whole);
  if (!three) return;
  write_Sight(out, "from its opposite", result.from_opposite, result, answer, whole);
  write_Sight(out, "from either", result.from_either, result, answer, whole);
}

}  // namespace

Json make_AxisJson(const Part& part, const AxisOptions& options, const AxisAnswer& answer) {
  Json axes = Json::array();
  for (size_t i = 0; i < answer.axes.size(); ++i) {
    axes.push_back(show_Axis(answer.axes[i], i, options.machine, answer));
  }
  Json json{{"schema", kAxisSchema},
            {"program", show_Program()},
            {"units", show_Units()},
            {"input", show_Input(part)},
            {"parameters", show_Settings(options.settings)},
            {"machine", options.machine},
            {"start", nullptr},
            {"window", nullptr},
            {"axes", std::move(axes)},
            {"elapsed", answer.elapsed_ms}};
  if (options.start) json["start"] = *options.start;
  if (!options.window.empty()) json["window"] = options.window;
  return json;
}

void write_AxisTable(std::ostream& out, const Part& part, const AxisOptions& options,
                     const AxisAnswer& answer) {
  write_Part(out, part);
  out << "Machine: " << options.machine << " axes\n";
  write_Settings(out, options.settings);
  for (size_t i = 0; i < answer.axes.size(); ++i) {
    write_Axis(out, answer.axes[i], i, options, answer);
  }
  out << "\n"
      << count_Word(answer.axes.size(), "axis", "axes") << ", in "
      << fixed_Text(answer.elapsed_ms / 1000.0, 2) << " s\n";
}

void write_AxisPly(std::ostream& out, const Part& part, const AxisAnswer& answer) {
  const auto put_Number = [&](size_t i, std::string& bytes) {
    put_Bytes(bytes, static_cast<uint32_t>(answer.seen_by[i]), 4);
  };
  write_FacePly(out, part.mesh,
                {"undercut axis; seen: number of the first axis that sees it, from 1; 0 none",
                 "int seen", [&](size_t i) { return pick_Colour(answer.seen_by[i]); }, put_Number});
}

}  // namespace undercut::host
