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

void write_Line(std::ostream& out, const std::string& name, const Extent& extent, double whole,
                const std::string& axis) {
  out << std::left << std::setw(18) << name << std::right << std::setw(12) << extent.count
      << std::setw(14) << fixed_Text(extent.area, 3) << std::setw(10)
      << show_Percent(extent.area, whole) << axis << "\n";
}

}  // namespace

Json make_UndercutJson(const Part& part, const ShadowOptions& options,
                       const ClassifyAnswer& answer) {
  Json undercut = show_Extent(answer.undercut, answer.region.area);
  undercut["triangles"] = show_Triangles(answer.reach, is_Undercut);
  Json from_others = nullptr;
  if (!answer.others.empty()) {
    from_others = show_Extent(answer.from_others, answer.region.area);
    from_others["triangles"] =
        show_Triangles(answer.reach, [](Reach reach) { return reach == Reach::kOthers; });
  }
  return {{"schema", kUndercutSchema},
          {"program", show_Program()},
          {"units", show_Units()},
          {"input", show_Input(part)},
          {"against", show_Parts(answer.others)},
          {"parameters", show_Settings(options.settings)},
          {"region", show_Region(answer.roi, answer.region)},
          {"axes", show_Axes(options, answer)},
          {"undercut", std::move(undercut)},
          {"from_others", std::move(from_others)},
          {"elapsed", answer.elapsed_ms}};
}

void write_UndercutTable(std::ostream& out, const Part& part, const ShadowOptions& options,
                         const ClassifyAnswer& answer) {
  const double whole = answer.region.area;
  write_Shadow(out, part, answer.others, options.settings, answer.roi, answer.region);
  out << "\nseen from            triangles      area mm2     share   axis, from the part towards "
         "the "
         "tool\n";
  for (size_t k = 0; k < options.axes.size(); ++k) {
    write_Line(out, "axis " + std::to_string(k + 1), answer.seen[k], whole,
               "  " + show_Direction(options.axes[k]));
  }
  const Extent any{answer.region.count - answer.undercut.count,
                   std::max(0.0, whole - answer.undercut.area)};
  write_Line(out, "any axis", any, whole, "");
  write_Line(out, "no axis: undercut", answer.undercut, whole, "");
  if (!answer.others.empty()) {
    write_Line(out, "  from the others", answer.from_others, whole, "");
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
      default:
        return {90, 90, 90};
    }
  };
  const auto put_Reach = [&](size_t i, std::string& bytes) {
    put_Bytes(bytes, static_cast<uint32_t>(static_cast<int32_t>(answer.reach[i])), 4);
  };
  write_FacePly(out, part.mesh,
                {"undercut classify; undercut: 0 seen, 1 undercut, 2 undercut by the other meshes, "
                 "-1 in no region of interest",
                 "int undercut", pick, put_Reach});
}

}  // namespace undercut::host
