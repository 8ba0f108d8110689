// The keys are told in docs/json.md. Their order is fixed.
#include <cmath>
#include <iomanip>
#include <ostream>

#include <nlohmann/json.hpp>

#include "project_answer.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

Json show_Points(const MovedArea& area) {
  Json points = Json::array();
  for (size_t i = 0; i < area.before.size(); ++i) {
    points.push_back({{"before", show_Vec(area.before[i])},
                      {"after", show_Vec(area.after[i])},
                      {"distance", len_Vec(area.after[i] - area.before[i])},
                      {"on_part", static_cast<bool>(area.on_part[i])}});
  }
  return points;
}

Json show_Area(const MovedArea& area, size_t index) {
  return {{"index", index},
          {"source", area.source},
          {"region", show_Region(area.roi, area.region)},
          {"axis", show_Vec(area.frame.z)},
          {"frame", area.in_frame ? show_Frame(area.frame) : Json(nullptr)},
          {"count", area.before.size()},
          {"stayed", area.stayed},
          {"off_part", area.off_part},
          {"mean", area.mean},
          {"largest", area.largest},
          {"curves", area.curves},
          {"points", show_Points(area)}};
}

Json show_Line(const MetLine& met) {
  Json line{{"origin", show_Vec(met.line.org)},
            {"direction", show_Vec(met.line.dir)},
            {"point", nullptr},
            {"distance", nullptr}};
  if (met.point) {
    line["point"] = show_Vec(*met.point);
    line["distance"] = met.distance;
  }
  return line;
}

void write_Areas(std::ostream& out, const ProjectAnswer& answer) {
  out << "\nfile      points     moved    stayed  off part     mean mm  largest mm   axis, "
         "source\n";
  for (size_t k = 0; k < answer.areas.size(); ++k) {
    const MovedArea& area = answer.areas[k];
    const size_t count = area.before.size();
    out << std::setw(4) << k + 1 << std::setw(12) << count << std::setw(10) << count - area.stayed
        << std::setw(10) << area.stayed << std::setw(10) << area.off_part << std::setw(12)
        << fixed_Text(area.mean, 4) << std::setw(12) << fixed_Text(area.largest, 4) << " "
        << show_Direction(area.frame.z) << "  " << area.source << " on " << area.roi.source << "\n";
  }
  size_t off = 0;
  for (const MovedArea& area : answer.areas) off += area.off_part;
  if (off > 0) {
    out << count_Word(off, "point is", "points are")
        << " not on the part afterwards: no surface lies within prj.f_tol along the axis.\n";
  }
}

std::string show_Point(const T3DVEC& point) {
  std::string text;
  for (const double value : {point.x, point.y, point.z}) {
    const std::string number = fixed_Text(std::round(value * 1e4) / 1e4 + 0.0, 4);
    text += std::string(number.size() < 11 ? 11 - number.size() : 1, ' ') + number;
  }
  return text;
}

void write_Lines(std::ostream& out, const ProjectAnswer& answer) {
  out << "\nline                      from, mm" << std::setw(38) << "point on the part, mm"
      << "   distance mm\n";
  for (size_t k = 0; k < answer.lines.size(); ++k) {
    const MetLine& met = answer.lines[k];
    out << std::setw(4) << k + 1 << show_Point(met.line.org) << "  ";
    if (met.point) {
      out << show_Point(*met.point) << std::setw(14) << fixed_Text(met.distance, 4) << "\n";
    } else {
      out << "   misses the part\n";
    }
  }
}

}  // namespace

Json make_ProjectionJson(const Part& part, const ProjectOptions& options,
                         const ProjectAnswer& answer) {
  Json areas = Json::array(), lines = Json::array();
  for (size_t k = 0; k < answer.areas.size(); ++k) areas.push_back(show_Area(answer.areas[k], k));
  for (const MetLine& met : answer.lines) lines.push_back(show_Line(met));
  return {{"schema", kProjectionSchema},
          {"program", show_Program()},
          {"units", show_Units()},
          {"input", show_Input(part)},
          {"parameters", show_Settings(options.settings)},
          {"areas", std::move(areas)},
          {"lines", std::move(lines)},
          {"elapsed", answer.elapsed_ms}};
}

void write_ProjectionTable(std::ostream& out, const Part& part, const ProjectOptions& options,
                           const ProjectAnswer& answer) {
  write_Part(out, part);
  write_Settings(out, options.settings);
  if (answer.lines.empty()) {
    write_Areas(out, answer);
  } else {
    write_Lines(out, answer);
  }
  out << "\nin " << fixed_Text(answer.elapsed_ms / 1000.0, 2) << " s\n";
}

}  // namespace undercut::host
