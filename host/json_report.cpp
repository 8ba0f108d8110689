// The keys are told in docs/json.md. Their order is fixed.
#include <nlohmann/json.hpp>

#include <algorithm>

#include "report.h"

namespace undercut::host {
namespace {

// Adding 0.0 turns -0.0 into 0.0.
Json show_Vec(const T3DVEC& v) { return Json::array({v.x + 0.0, v.y + 0.0, v.z + 0.0}); }

Json show_Setting(const Value& value) {
  return std::visit([](const auto& v) { return Json(v); }, value);
}

double find_Share(double part, double whole) { return whole > 0.0 ? part / whole : 0.0; }

Json show_Input(const Part& part) {
  double area = 0.0;
  for (uint32_t i = 0; i < part.mesh.triangles.size(); ++i) area += area_Tri(part.mesh, i);
  return {{"path", part.path},
          {"triangles", part.mesh.triangles.size()},
          {"vertices", part.mesh.vertices.size()},
          {"welded", part.welded},
          {"area", area},
          {"degenerate", part.degenerate}};
}

Json show_Preparation(const DecomposeOptions& options) {
  const PrepareRules& rules = options.prepare;
  const bool plain = options.plain;
  Json json{{"plain", plain},
            {"up", show_Vec(rules.up)},
            {"displacement", plain ? 0.0 : rules.displacement},
            {"needle", plain ? 0.0 : rules.needle},
            {"cut", !plain && rules.cut},
            {"max_edge", nullptr}};
  if (rules.max_edge > 0.0) json["max_edge"] = rules.max_edge;
  return json;
}

Json show_Region(const Region& region) {
  return {{"number", region.number},
          {"count", region.triangles.size()},
          {"area", region.area},
          {"axis", show_Vec(region.axis)},
          {"centre", show_Vec(region.centre)},
          {"frame",
           {{"x", show_Vec(region.frame.x)},
            {"y", show_Vec(region.frame.y)},
            {"z", show_Vec(region.frame.z)},
            {"origin", show_Vec(region.frame.org)}}},
          {"aperture", region.aperture},
          {"triangles", region.triangles}};
}

const char* name_Tilt(Tilt tilt) {
  switch (tilt) {
    case Tilt::kLow:
      return "low";
    case Tilt::kHigh:
      return "high";
    case Tilt::kMiddle:
      return "middle";
    default:
      return "band";
  }
}

Json show_Note(const CallNote& note) {
  return {{"call", note.call},         {"aperture", note.aperture},
          {"position", note.position}, {"tilt", name_Tilt(note.tilt)},
          {"patches", note.patches},   {"triangles", note.triangles},
          {"failed", note.failed},     {"first", note.first},
          {"second", note.second}};
}

Json show_Needed(const RoiAnswer& roi) {
  Json attempts = Json::array();
  for (const CallNote& note : roi.notes) attempts.push_back(show_Note(note));
  return {{"calls", roi.notes.size()}, {"narrowest_aperture", roi.narrowest},
          {"halvings", roi.halvings},  {"set_apart", roi.set_apart},
          {"given_up", roi.given_up},  {"attempts", std::move(attempts)}};
}

Json show_Roi(const RoiAnswer& roi, size_t index, const Part& part) {
  double free_area = 0.0;
  for (const uint32_t triangle : roi.free) free_area += area_Tri(part.mesh, triangle);
  Json regions = Json::array();
  for (const Region& region : roi.regions) regions.push_back(show_Region(region));
  return {{"index", index},
          {"source", roi.roi.source},
          {"status", roi.failed() ? "failed" : "done"},
          {"codes", {{"first", roi.first}, {"second", roi.second}}},
          {"count", roi.roi.triangles.size()},
          {"repeated", roi.roi.repeated},
          {"area", roi.area},
          {"covered", find_Share(roi.covered, roi.area)},
          {"needed", show_Needed(roi)},
          {"regions", std::move(regions)},
          {"free", {{"count", roi.free.size()}, {"area", free_area}, {"triangles", roi.free}}}};
}

std::string dump_Plain(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

void print_Value(const Json& json, const std::string& margin, std::string& text) {
  const bool nested =
      std::any_of(json.begin(), json.end(), [](const Json& item) { return item.is_structured(); });
  if (!nested) {
    text += dump_Plain(json);
    return;
  }
  const std::string inner = margin + "  ";
  text += json.is_object() ? "{" : "[";
  bool first = true;
  for (auto item = json.begin(); item != json.end(); ++item) {
    text += (first ? "\n" : ",\n") + inner;
    first = false;
    if (json.is_object()) text += dump_Plain(Json(item.key())) + ": ";
    print_Value(*item, inner, text);
  }
  text += "\n" + margin + (json.is_object() ? "}" : "]");
}

}  // namespace

Json make_Json(const Part& part, const DecomposeOptions& options, const Answer& answer) {
  Json parameters = Json::object();
  for (const Setting& s : options.settings) parameters[s.parameter->name()] = show_Setting(s.value);
  Json rois = Json::array();
  for (size_t i = 0; i < answer.rois.size(); ++i) {
    rois.push_back(show_Roi(answer.rois[i], i, part));
  }
  Json stages = Json::array();
  for (const StageTime& time : answer.times) {
    stages.push_back({{"stage", time.stage}, {"ms", time.ms}, {"runs", time.runs}});
  }
  return {{"schema", kSchema},
          {"program", {{"name", "undercut"}, {"version", UNDERCUT_VERSION}}},
          {"units", {{"length", "mm"}, {"area", "mm2"}, {"angle", "deg"}, {"time", "ms"}}},
          {"input", show_Input(part)},
          {"preparation", show_Preparation(options)},
          {"parameters", std::move(parameters)},
          {"status", answer.failed() ? "failed" : "done"},
          {"library_status", answer.status},
          {"calls", answer.calls},
          {"regions", answer.regions},
          {"area", answer.area},
          {"covered", find_Share(answer.covered, answer.area)},
          {"regions_of_interest", std::move(rois)},
          {"elapsed", answer.elapsed_ms},
          {"stages", std::move(stages)}};
}

std::string print_Json(const Json& json) {
  std::string text;
  print_Value(json, "", text);
  return text + "\n";
}

Json make_ParametersJson() {
  Json list = Json::array();
  for (const Parameter& p : all_Parameters()) {
    list.push_back({{"name", p.name()},
                    {"block", p.block},
                    {"key", p.key},
                    {"setter", p.setter},
                    {"type", show_Kind(p.kind)},
                    {"default", show_Setting(p.standard)},
                    {"unit", p.unit},
                    {"range", p.range},
                    {"sentence", p.sentence}});
  }
  return list;
}

}  // namespace undercut::host
