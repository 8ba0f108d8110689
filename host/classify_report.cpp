// The keys are told in docs/json.md. Their order is fixed.
#include <algorithm>
#include <iomanip>
#include <ostream>

#include <nlohmann/json.hpp>

#include "classify_answer.h"
#include "face_ply.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

Json show_Axes(const ShadowOptions& options, const ClassifyAnswer& answer) {
  Json axes = Json::array();
  for (size_t k = 0; k < options.axes.size(); ++k) {
    axes.push_back({{"axis", show_Vec(options.axes[k])},
                    {"seen", show_Extent(answer.seen[k], answer.region.area)}});
  }
  return axes;
}

// The triangles for which a test holds, ascending.
template <typename Test>
Json show_Triangles(const std::vector<Reach>& reach, const Test& test) {
  Json list = Json::array();
  for (size_t i = 0; i < reach.size(); ++i) {
    if (test(reach[i])) list.push_back(i);
  }
  return list;
}

bool is_Undercut(Reach reach) { return reach == Reach::kOwn || reach == Reach::kOthers; }

// An extent of the whole, with its triangles.
Json list_Extent(const Extent& extent, double whole, Json triangles) {
  Json json = show_Extent(extent, whole);
  json["triangles"] = std::move(triangles);
  return json;
}

Json show_Corridor(const ShadowOptions& options, const ClassifyAnswer& answer) {
  if (!answer.corridor) return nullptr;
  const CorridorAnswer& corridor = *answer.corridor;
  const double whole = answer.region.area;
  Json bands = Json::array();
  for (const Extent& band : corridor.bands) bands.push_back(show_Extent(band, whole));
  Json from_others = nullptr;
  if (!answer.others.empty()) {
    from_others = list_Extent(corridor.from_others_extent, whole, corridor.from_others);
  }
  return {{"origin", show_Vec(options.corridor->org)},
          {"direction", show_Vec(options.corridor->dir)},
          {"width", find_Value<double>(options.settings, kWidth)},
          {"registered", {{"triangles", corridor.registered}, {"shaded", corridor.shaded}}},
          {"bands", std::move(bands)},
          {"blocked", list_Extent(corridor.blocked_extent, whole, corridor.blocked)},
          {"from_others", std::move(from_others)}};
}

// `name` stands in a column of its own, as wide as the longest name of the table.
void write_Line(std::ostream& out, int width, const std::string& name, const Extent& extent,
                double whole, const std::string& axis) {
  out << std::left << std::setw(width) << name << std::right << std::setw(12) << extent.count
      << std::setw(14) << fixed_Text(extent.area, 3) << std::setw(10)
      << show_Percent(extent.area, whole) << axis << "\n";
}

void write_Axes(std::ostream& out, const ShadowOptions& options, const ClassifyAnswer& answer) {
  constexpr int kNames = 18;
  const double whole = answer.region.area;
  out << "\nseen from            triangles      area mm2     share   axis, from the part towards "
         "the tool\n";
  for (size_t k = 0; k < options.axes.size(); ++k) {
    write_Line(out, kNames, "axis " + std::to_string(k + 1), answer.seen[k], whole,
               "  " + show_Direction(options.axes[k]));
  }
  const Extent any{answer.region.count - answer.undercut.count,
                   std::max(0.0, whole - answer.undercut.area)};
  write_Line(out, kNames, "any axis", any, whole, "");
  write_Line(out, kNames, "no axis: undercut", answer.undercut, whole, "");
  if (!answer.others.empty()) {
    write_Line(out, kNames, "  from the others", answer.from_others, whole, "");
  }
}

void write_Poses(std::ostream& out, const ShadowOptions& options, const ClassifyAnswer& answer) {
  constexpr int kNames = 24;
  const CorridorAnswer& corridor = *answer.corridor;
  const double whole = answer.region.area;
  const bool others = !answer.others.empty();
  out << "\nin the corridor            triangles      area mm2     share   axis, from the part "
         "towards the tool\n";
  for (size_t k = 0; k < options.axes.size(); ++k) {
    const std::string pose = "pose " + std::to_string(k + 1);
    write_Line(out, kNames, pose + ": band", corridor.bands[k], whole,
               "  " + show_Direction(options.axes[k]));
    write_Line(out, kNames, "  seen", answer.seen[k], whole, "");
  }
  write_Line(out, kNames, "all bands", answer.region, whole, "");
  write_Line(out, kNames, "blocked at some pose", corridor.blocked_extent, whole, "");
  if (others) {
    write_Line(out, kNames, "  from the others", corridor.from_others_extent, whole, "");
  }
  write_Line(out, kNames, "blocked at every pose", answer.undercut, whole, "");
  if (others) write_Line(out, kNames, "  from the others", answer.from_others, whole, "");
}

}  // namespace

Json make_UndercutJson(const Part& part, const ShadowOptions& options,
                       const ClassifyAnswer& answer) {
  const double whole = answer.region.area;
  Json from_others = nullptr;
  if (!answer.others.empty()) {
    from_others = list_Extent(
        answer.from_others, whole,
        show_Triangles(answer.reach, [](Reach reach) { return reach == Reach::kOthers; }));
  }
  return {
      {"schema", kUndercutSchema},
      {"program", show_Program()},
      {"units", show_Units()},
      {"input", show_Input(part)},
      {"against", show_Parts(answer.others)},
      {"parameters", show_Settings(options.settings)},
      {"region", show_Region(answer.roi, answer.region)},
      {"axes", show_Axes(options, answer)},
      {"undercut", list_Extent(answer.undercut, whole, show_Triangles(answer.reach, is_Undercut))},
      {"from_others", std::move(from_others)},
      {"corridor", show_Corridor(options, answer)},
      {"elapsed", answer.elapsed_ms}};
}

void write_UndercutTable(std::ostream& out, const Part& part, const ShadowOptions& options,
                         const ClassifyAnswer& answer) {
  write_Shadow(out, part, answer.others, options.settings, answer.roi, answer.region);
  if (answer.corridor) {
    write_Poses(out, options, answer);
  } else {
    write_Axes(out, options, answer);
  }
  out << "\nin " << fixed_Text(answer.elapsed_ms / 1000.0, 2) << " s\n";
}

void write_UndercutPly(std::ostream& out, const Part& part, const ClassifyAnswer& answer) {
  const auto pick = [&](size_t i) -> Colour {
    switch (answer.reach[i]) {
      case Reach::kSeen:
        return {200, 200, 200};
      case Reach::kOwn:
        return {214, 39, 40};
      case Reach::kOthers:
        return {255, 160, 40};
      case Reach::kSometimes:
        return {240, 220, 90};
      case Reach::kSometimesOthers:
        return {120, 180, 220};
      default:
        return {90, 90, 90};
    }
  };
  const auto put_Reach = [&](size_t i, std::string& bytes) {
    put_Bytes(bytes, static_cast<uint32_t>(static_cast<int32_t>(answer.reach[i])), 4);
  };
  write_FacePly(out, part.mesh,
                {"undercut classify; undercut: 0 seen, 1 undercut, 2 undercut by the other meshes, "
                 "3 blocked at some pose, 4 the same by the other meshes, -1 not asked",
                 "int undercut", pick, put_Reach});
}

}  // namespace undercut::host
