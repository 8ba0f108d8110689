// The keys are told in docs/json.md. Their order is fixed.
#include <algorithm>
#include <bit>
#include <cmath>
#include <iomanip>
#include <ostream>

#include <nlohmann/json.hpp>

#include "depth_answer.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {
namespace {

Json show_Axes(const std::vector<T3DVEC>& axes) {
  Json list = Json::array();
  for (const T3DVEC& axis : axes) list.push_back(show_Vec(axis));
  return list;
}

Json show_Ranges(const DepthAnswer& answer) {
  Json list = Json::array();
  for (const DepthRange& range : answer.ranges) {
    Json one{{"from", range.from}, {"to", range.to}};
    one.update(show_Extent(range.extent, answer.region.area));
    list.push_back(std::move(one));
  }
  return list;
}

// A line of the histogram; the bar shows the share of the area.
void write_Bar(std::ostream& out, const std::string& name, const Extent& extent, double whole) {
  constexpr double kLongest = 30.0;
  const double share = find_Share(extent.area, whole);
  const auto marks = static_cast<size_t>(std::lround(kLongest * share));
  out << std::setw(24) << name << std::setw(12) << extent.count << std::setw(14)
      << fixed_Text(extent.area, 3) << std::setw(10) << show_Percent(extent.area, whole)
      << (marks > 0 ? "  " : "") << std::string(marks, '#') << "\n";
}

// As many digits as tell the ends of ranges apart.
int count_Digits(double step) {
  return step > 0.0 ? std::clamp(1 - static_cast<int>(std::floor(std::log10(step))), 2, 12) : 2;
}

}  // namespace

Colour shade_Depth(double depth, double top) {
  // A ladder of one hue to the next that darkens all the way, so that it reads without colours too.
  constexpr Colour kSteps[] = {{255, 237, 160}, {254, 178, 76}, {240, 59, 32}, {128, 0, 38}};
  const double at = top > 0.0 ? 3.0 * std::fmin(depth / top, 1.0) : 0.0;
  const auto step = static_cast<size_t>(std::fmin(at, 2.0));
  Colour colour{};
  for (size_t k = 0; k < 3; ++k) {
    const double low = kSteps[step][k], high = kSteps[step + 1][k];
    colour[k] =
        static_cast<uint8_t>(std::lround(low + (high - low) * (at - static_cast<double>(step))));
  }
  return colour;
}

Json make_DepthJson(const Part& part, const ShadowOptions& options, const DepthAnswer& answer) {
  const double whole = answer.region.area;
  Json no_answer = show_Extent(answer.unknown, whole);
  no_answer["triangles"] = answer.unknown_triangles;
  return {{"schema", kDepthSchema},
          {"program", show_Program()},
          {"units", show_Units()},
          {"input", show_Input(part)},
          {"against", show_Parts(answer.others)},
          {"parameters", show_Settings(options.settings)},
          {"region", show_Region(answer.roi, answer.region)},
          {"axes", show_Axes(options.axes)},
          {"seen", show_Extent(answer.seen, whole)},
          {"deep", show_Extent(answer.deep, whole)},
          {"no_answer", std::move(no_answer)},
          {"largest", answer.largest},
          {"histogram", show_Ranges(answer)},
          {"deeper", show_Extent(answer.deeper, whole)},
          {"depths", answer.depths},
          {"elapsed", answer.elapsed_ms}};
}

void write_DepthTable(std::ostream& out, const Part& part, const ShadowOptions& options,
                      const DepthAnswer& answer) {
  const double whole = answer.region.area;
  write_Shadow(out, part, answer.others, options.settings, answer.roi, answer.region);
  out << "\naxes, from the part towards the tool\n";
  for (const T3DVEC& axis : options.axes) out << "  " << show_Direction(axis) << "\n";
  out << "\n                depth mm   triangles      area mm2     share\n";
  const int digits = count_Digits(answer.top / 10.0);
  write_Bar(out, "0, seen", answer.seen, whole);
  for (const DepthRange& range : answer.ranges) {
    write_Bar(out, fixed_Text(range.from, digits) + " to " + fixed_Text(range.to, digits),
              range.extent, whole);
  }
  if (answer.deeper.count > 0) {
    write_Bar(out, "above " + fixed_Text(answer.top, digits), answer.deeper, whole);
  }
  if (answer.unknown.count > 0) write_Bar(out, "no answer", answer.unknown, whole);
  out << "\n"
      << show_Percent(answer.deep.area + answer.unknown.area, whole)
      << " is seen from no axis; the deepest lies " << fixed_Text(answer.largest, 3)
      << " mm under an overhang; in " << fixed_Text(answer.elapsed_ms / 1000.0, 2) << " s\n";
}

void write_DepthPly(std::ostream& out, const Part& part, const DepthAnswer& answer) {
  std::vector<bool> asked(part.mesh.triangles.size(), false);
  for (const uint32_t triangle : answer.roi.triangles) asked[triangle] = true;
  const auto pick = [&](size_t i) -> Colour {
    if (!asked[i]) return {90, 90, 90};
    const double depth = answer.depths[i];
    if (std::isnan(depth)) return {120, 60, 200};
    return depth > 0.0 ? shade_Depth(depth, answer.top) : Colour{200, 200, 200};
  };
  const auto put_Depth = [&](size_t i, std::string& bytes) {
    put_Bytes(bytes, std::bit_cast<uint64_t>(answer.depths[i]), 8);
  };
  write_FacePly(out, part.mesh,
                {"undercut depth; depth in mm: 0 seen, nan no answer or in no region of interest",
                 "double depth", pick, put_Depth});
}

}  // namespace undercut::host
