// The keys are told in docs/json.md. Their order is fixed.
#include <nlohmann/json.hpp>

#include "json_parts.h"
#include "report.h"
#include "rim_report.h"

namespace undercut::host {
namespace {

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

Json show_Search(const Answer& answer) {
  if (!answer.search) return nullptr;
  const Search& search = *answer.search;
  return {{"axis", show_Vec(search.axis)},
          {"found_by", search.from_face ? "flat faces" : "get_3ax"},
          {"seen", search.seen()},
          {"undercut",
           {{"count", search.triangles},
            {"area", search.undercut},
            {"covered", find_Share(answer.covered, search.undercut)}}},
          {"min_area", search.min_area},
          {"patches", search.patches.size()},
          {"dropped",
           {{"patches", search.dropped},
            {"count", search.dropped_triangles.size()},
            {"area", search.dropped_area},
            {"triangles", search.dropped_triangles}}}};
}

Json show_Sight(const RegionSight& sight) {
  return {{"area", sight.area},
          {"share", sight.share},
          {"rim_share", sight.rim_share},
          {"edges", sight.edges},
          {"edges_seen", sight.edges_seen}};
}

Json show_Rim(const RegionRim& rim) {
  if (!rim.failure.empty()) return nullptr;
  Json curves = Json::array();
  for (const RimCurve& curve : rim.curves) curves.push_back(show_Curve(curve));
  return curves;
}

Json show_Region(const Region& region) {
  return {{"number", region.number},
          {"count", region.triangles.size()},
          {"area", region.area},
          {"axis", show_Vec(region.axis)},
          {"centre", show_Vec(region.centre)},
          {"frame", show_Frame(region.frame)},
          {"aperture", region.aperture},
          {"seen", show_Sight(region.sight)},
          {"rim", show_Rim(region.rim)},
          {"no_rim", region.rim.failure.empty() ? Json(nullptr) : Json(region.rim.failure)},
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
  return {{"call", note.call},
          {"aperture", note.aperture},
          {"position", note.position},
          {"tilt", name_Tilt(note.tilt)},
          {"keep_small", note.keep_small},
          {"patches", note.patches},
          {"triangles", note.triangles},
          {"failed", note.failed},
          {"first", note.first},
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

}  // namespace

Json make_Json(const Part& part, const DecomposeOptions& options, const Answer& answer) {
  Json rois = Json::array();
  for (size_t i = 0; i < answer.rois.size(); ++i) {
    rois.push_back(show_Roi(answer.rois[i], i, part));
  }
  Json stages = Json::array();
  for (const StageTime& time : answer.times) {
    stages.push_back({{"stage", time.stage}, {"ms", time.ms}, {"runs", time.runs}});
  }
  return {{"schema", kSchema},
          {"program", show_Program()},
          {"units", show_Units()},
          {"input", show_Input(part)},
          {"search", show_Search(answer)},
          {"preparation", show_Preparation(options)},
          {"parameters", show_Settings(options.settings)},
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
