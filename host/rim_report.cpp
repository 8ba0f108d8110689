// The keys are told in docs/json.md. Their order is fixed.
#include "rim_report.h"

#include <iomanip>
#include <ostream>

#include <nlohmann/json.hpp>

#include "face_ply.h"
#include "rim_answer.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

const char* name_Method(RimMethod method) {
  switch (method) {
    case RimMethod::kEdges:
      return "edges";
    case RimMethod::kGrid:
      return "grid";
    default:
      return "grid-roi";
  }
}

template <typename Number>
Json show_Optional(const std::optional<Number>& number) {
  return number ? Json(*number) : Json(nullptr);
}

void write_Vector(std::ostream& out, const char* name, const T3DVEC& v) {
  out << "  " << std::left << std::setw(10) << name << std::right << show_Direction(v) << "\n";
}

double sum_Enclosed(const std::vector<RimCurve>& curves) {
  double area = 0.0;
  for (const RimCurve& curve : curves) area += curve.hole ? -curve.area : curve.area;
  return area;
}

}  // namespace

Json show_Curve(const RimCurve& curve) {
  Json points = Json::array();
  for (const T3DVEC& p : curve.flat) points.push_back(Json::array({p.x + 0.0, p.y + 0.0}));
  return {{"closed", true},         {"hole", curve.hole}, {"count", curve.flat.size()},
          {"length", curve.length}, {"area", curve.area}, {"points", std::move(points)}};
}

Json make_RimJson(const Part& part, const RimOptions& options, const RimAnswer& answer) {
  Json area = show_Extent(answer.extent, answer.region.area);
  area["triangles"] = answer.area;
  Json curves = Json::array();
  for (const RimCurve& curve : answer.curves) curves.push_back(show_Curve(curve));
  return {{"schema", kRimSchema},
          {"program", show_Program()},
          {"units", show_Units()},
          {"input", show_Input(part)},
          {"parameters", show_Settings(answer.settings)},
          {"region", show_Region(answer.roi, answer.region)},
          {"axis", show_Vec(answer.frame.z)},
          {"frame", show_Frame(answer.frame)},
          {"method", name_Method(options.method)},
          {"start", show_Optional(answer.start)},
          {"radius", show_Optional(answer.radius)},
          {"area", std::move(area)},
          {"enclosed", sum_Enclosed(answer.curves)},
          {"curves", std::move(curves)},
          {"elapsed", answer.elapsed_ms}};
}

void write_RimTable(std::ostream& out, const Part& part, const RimOptions& options,
                    const RimAnswer& answer) {
  write_Shadow(out, part, {}, answer.settings, answer.roi, answer.region);
  out << "\nframe, its z from the part towards the tool\n";
  write_Vector(out, "x", answer.frame.x);
  write_Vector(out, "y", answer.frame.y);
  write_Vector(out, "z", answer.frame.z);
  write_Vector(out, "origin", answer.frame.org);
  out << "method " << name_Method(options.method);
  if (answer.radius)
    out << ", closed by a disk of radius " << fixed_Text(*answer.radius, 3) << " mm";
  if (answer.start) {
    out << "\nstart at triangle " << *answer.start
        << (options.start ? "" : ", the largest of the largest area that is seen");
  }
  out << "\narea: " << count_Word(answer.extent.count, "triangle", "triangles") << ", "
      << fixed_Text(answer.extent.area, 3) << " mm2\n"
      << "\n   curve      points     length mm   encloses mm2\n";
  for (size_t i = 0; i < answer.curves.size(); ++i) {
    const RimCurve& curve = answer.curves[i];
    out << std::setw(8) << i << std::setw(12) << curve.flat.size() << std::setw(14)
        << fixed_Text(curve.length, 3) << std::setw(15) << fixed_Text(curve.area, 3)
        << (curve.hole ? "  round a hole" : "") << "\n";
  }
  out << "\n"
      << count_Word(answer.curves.size(), "curve bounds", "curves bound") << " "
      << fixed_Text(sum_Enclosed(answer.curves), 3) << " mm2 as seen along the axis, in "
      << fixed_Text(answer.elapsed_ms / 1000.0, 2) << " s\n";
}

void write_RimPly(std::ostream& out, const Part& part, const RimAnswer& answer) {
  std::vector<int32_t> marks(part.mesh.triangles.size(), -1);
  for (const uint32_t triangle : answer.roi.triangles) marks[triangle] = 0;
  for (const uint32_t triangle : answer.area) marks[triangle] = 1;
  if (answer.start) marks[*answer.start] = 2;
  const auto pick = [&](size_t i) -> Colour {
    switch (marks[i]) {
      case 0:
        return {200, 200, 200};
      case 1:
        return {90, 150, 210};
      case 2:
        return {214, 39, 40};
      default:
        return {90, 90, 90};
    }
  };
  const auto put_Mark = [&](size_t i, std::string& bytes) {
    put_Bytes(bytes, static_cast<uint32_t>(marks[i]), 4);
  };
  write_FacePly(
      out, part.mesh,
      {"undercut rim; area: 1 of the area, 2 its start, 0 not, -1 in no region of interest",
       "int area", pick, put_Mark});
}

}  // namespace undercut::host
