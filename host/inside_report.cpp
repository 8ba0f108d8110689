// The keys are told in docs/json.md. Their order is fixed.
#include <iomanip>
#include <ostream>

#include <nlohmann/json.hpp>

#include "face_ply.h"
#include "inside_answer.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

void write_Line(std::ostream& out, const char* name, const Extent& extent, double whole) {
  out << std::setw(8) << name << std::setw(12) << extent.count << std::setw(14)
      << fixed_Text(extent.area, 3) << std::setw(10) << show_Percent(extent.area, whole) << "\n";
}

// The way along the edges is that much longer than the curve. On an even mesh a zigzag beside a
// straight line takes it to a good quarter more.
bool is_Astray(const GivenCurve& curve) {
  return measure_Length(curve.laid) > 1.3 * measure_Length(curve.points);
}

}  // namespace

Json make_InsideJson(const Part& part, const InsideOptions& options, const InsideAnswer& answer) {
  Json curves = Json::array();
  for (const GivenCurve& curve : answer.curves) {
    curves.push_back({{"source", curve.source},
                      {"count", curve.points.size()},
                      {"length", measure_Length(curve.points)},
                      {"vertices", curve.laid.size()},
                      {"laid", measure_Length(curve.laid)}});
  }
  Json inside = show_Extent(answer.inside, answer.part.area);
  inside["triangles"] = answer.triangles;
  return {{"schema", kInsideSchema},     {"program", show_Program()},
          {"units", show_Units()},       {"input", show_Input(part)},
          {"reverse", options.reverse},  {"curves", std::move(curves)},
          {"inside", std::move(inside)}, {"outside", show_Extent(answer.outside, answer.part.area)},
          {"elapsed", answer.elapsed_ms}};
}

void write_InsideTable(std::ostream& out, const Part& part, const InsideAnswer& answer) {
  write_Part(out, part);
  out << "\n   curve      points     length mm    vertices       laid mm   file\n";
  for (size_t i = 0; i < answer.curves.size(); ++i) {
    const GivenCurve& curve = answer.curves[i];
    out << std::setw(8) << i << std::setw(12) << curve.points.size() << std::setw(14)
        << fixed_Text(measure_Length(curve.points), 3) << std::setw(12) << curve.laid.size()
        << std::setw(14) << fixed_Text(measure_Length(curve.laid), 3) << "   " << curve.source
        << "\n";
  }
  for (size_t i = 0; i < answer.curves.size(); ++i) {
    if (!is_Astray(answer.curves[i])) continue;
    out << "Curve " << i << " is laid along a much longer way: it does not lie on the part, or the "
        << "mesh is too coarse there.\n";
  }
  out << "\n           triangles      area mm2     share\n";
  write_Line(out, "inside", answer.inside, answer.part.area);
  write_Line(out, "outside", answer.outside, answer.part.area);
  if (answer.inside.area > answer.outside.area) {
    out << "Inside is to the left of a curve. If the smaller part was meant, --reverse takes it.\n";
  }
  out << "\nin " << fixed_Text(answer.elapsed_ms / 1000.0, 2) << " s\n";
}

void write_InsidePly(std::ostream& out, const Part& part, const InsideAnswer& answer) {
  std::vector<int32_t> marks(part.mesh.triangles.size(), 0);
  for (const uint32_t triangle : answer.triangles) marks[triangle] = 1;
  for (const uint32_t triangle : part.degenerate) marks[triangle] = -1;
  const auto put_Mark = [&](size_t i, std::string& bytes) {
    put_Bytes(bytes, static_cast<uint32_t>(marks[i]), 4);
  };
  write_FacePly(out, part.mesh,
                {"undercut inside; inside: 1 inside the curves, 0 outside, -1 two equal corners",
                 "int inside", [&](size_t i) { return pick_Colour(marks[i]); }, put_Mark});
}

}  // namespace undercut::host
