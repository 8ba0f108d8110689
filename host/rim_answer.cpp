#include "rim_answer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

#include "axis_calls.h"
#include "find_rois.h"
#include "library_call.h"
#include "number_file.h"
#include "surface_command.h"
#include "text.h"

namespace undercut::host {
namespace {

// In relation to the width of the area, and at least so many cells: the grid is twice the radius
// wider than the area on each side, and where that is less than two cells, the closing takes a cell
// from the outline.
constexpr double kRadiusShare = 1.0 / 200.0;
constexpr double kRadiusCells = 1.5;
constexpr double kErrorShare = 1.0 / 2000.0;

// What the library takes into an area: what is seen, and does not face away.
std::vector<bool> find_Seen(const Mesh& mesh, const std::vector<uint32_t>& triangles,
                            const T3DVEC& axis) {
  const std::vector<bool> hidden = find_Hidden(mesh, {-1.0 * axis}, triangles);
  std::vector<bool> seen(mesh.triangles.size(), false);
  for (const uint32_t i : triangles) {
    seen[i] = !hidden[i] && dot_Vec(normal_Tri(mesh, i), axis) >= std::cos(std::acos(0.0));
  }
  return seen;
}

void check_Start(uint32_t start, const Part& part, const RimAnswer& answer,
                 const std::vector<bool>& seen) {
  const std::string name = "--start " + std::to_string(start);
  const size_t count = part.mesh.triangles.size();
  if (start >= count) {
    throw InputError(name + ": out of range. The part has triangles 0 to " +
                     std::to_string(count - 1) + ".");
  }
  if (has_EqualCorners(part.mesh.triangles[start])) {
    throw InputError(name + ": this triangle has two equal corners. Name another one.");
  }
  const std::vector<uint32_t>& list = answer.roi.triangles;
  if (std::find(list.begin(), list.end(), start) == list.end()) {
    throw InputError(name + ": this triangle is not in the region of interest (" +
                     answer.roi.source + "). Name one of it.");
  }
  if (!seen[start]) {
    throw InputError(name +
                     ": this triangle is not seen along the axis. Name another one, or leave "
                     "--start out.");
  }
}

// The area and its start: the connected seen patch of the start, or the largest patch of all and
// its largest triangle.
void find_Area(const RimOptions& options, const Part& part, RimAnswer& answer) {
  const std::vector<bool> seen = find_Seen(part.mesh, answer.roi.triangles, answer.frame.z);
  if (options.start) check_Start(*options.start, part, answer, seen);
  for (MarkedPatch& patch : list_Patches(part.mesh, seen)) {
    const std::vector<uint32_t>& list = patch.triangles;
    if (options.start && !std::binary_search(list.begin(), list.end(), *options.start)) continue;
    answer.start = options.start
                       ? *options.start
                       : *std::max_element(list.begin(), list.end(), [&](uint32_t a, uint32_t b) {
                           return area_Tri(part.mesh, a) < area_Tri(part.mesh, b);
                         });
    answer.area = std::move(patch.triangles);
    return;
  }
  throw RunError(
      "nothing of the region of interest is seen along the axis, so there is no area to bound. "
      "--axis points from the part towards the tool: turn it round, or take --method grid-roi.");
}

bool is_Set(const RimOptions& options, const char* name) {
  return std::any_of(options.settings.begin(), options.settings.end(),
                     [&](const Setting& s) { return s.parameter->name() == name; });
}

double pick_Radius(const RimOptions& options, double width) {
  const auto find = [&](const char* name) {
    return static_cast<double>(find_Value<int64_t>(options.settings, name));
  };
  const double cell = find("gri.b_res") != 0.0
                          ? std::fmax(find_Value<double>(options.settings, "gri.f_dxx"),
                                      find_Value<double>(options.settings, "gri.f_dyy"))
                          : width / std::fmin(find("gri.n_row"), find("gri.n_col"));
  return std::fmax(width * kRadiusShare, kRadiusCells * cell);
}

// Radius and tolerance, unless the user tells them, go by the width of the area.
void fit_ToWidth(const RimOptions& options, const Mesh& mesh, RimAnswer& answer) {
  const double width = find_Width(mesh, answer.area, answer.frame);
  if (options.cell && width > static_cast<double>(kMostCells) * *options.cell) {
    throw UsageError("--cell: the area is " + fixed_Text(width, 3) +
                     " mm wide, which takes more than " + std::to_string(kMostCells) +
                     " cells. Take larger ones.");
  }
  if (options.method != RimMethod::kEdges)
    answer.radius = options.radius ? *options.radius : pick_Radius(options, width);
  answer.settings = options.settings;
  if (is_Set(options, "ucs.f_err")) return;
  const Setting error{&find_Parameter("ucs.f_err"), width * kErrorShare};
  error.parameter->store(error.value);
  answer.settings.insert(answer.settings.begin(), error);
}

T3DVEC read_Vec(const Json& json, const char* key) {
  const auto list = json.find(key);
  if (list == json.end() || !list->is_array() || list->size() != 3) return {};
  for (const Json& number : *list) {
    if (!number.is_number()) return {};
  }
  return {(*list)[0].get<double>(), (*list)[1].get<double>(), (*list)[2].get<double>()};
}

}  // namespace

T3DFRM read_AnyFrame(const std::filesystem::path& path) {
  if (!equal_Text(path.extension().string(), ".json")) return read_Frame(path);
  const Json document = read_Document(path);
  const auto inner = document.find("frame");
  const Json json = inner != document.end() && inner->is_object() ? *inner : document;
  const T3DFRM frame{read_Vec(json, "x"), read_Vec(json, "y"), read_Vec(json, "z"),
                     read_Vec(json, "origin")};
  // What could not be read is zero.
  constexpr double kLoose = 1e-6;
  const bool good = std::fabs(len_Vec(frame.x) - 1.0) < kLoose &&
                    std::fabs(len_Vec(frame.y) - 1.0) < kLoose &&
                    len_Vec(cross_Vec(frame.x, frame.y) - frame.z) < kLoose;
  if (!good) {
    throw InputError(path.string() +
                     ": this holds no frame. Write x, y, z and origin, three numbers each: the "
                     "axes of length 1, at right angles and right-handed.");
  }
  return frame;
}

RimAnswer find_Rim(const RimOptions& options, const Part& part) {
  RimAnswer answer;
  answer.frame =
      options.frame.empty() ? make_AxisFrame(options.axis) : read_AnyFrame(options.frame);
  answer.roi = read_Together(options.rois, part);
  answer.region = measure(part.mesh, answer.roi.triangles);
  set_Parameters({options.settings, {}, false});
  // Rims know nothing of triangles that grow.
  const double none = 0.0;
  ucs_Dil(&none);
  if (options.method == RimMethod::kGridRoi) {
    answer.area = answer.roi.triangles;
    std::sort(answer.area.begin(), answer.area.end());
  } else {
    find_Area(options, part, answer);
  }
  answer.extent = measure(part.mesh, answer.area);
  fit_ToWidth(options, part.mesh, answer);
  std::vector<Curve> curves;
  const int32_t status = trace_Rim(
      part.mesh, answer.roi.triangles,
      {options.method, answer.frame, answer.start.value_or(0), answer.radius.value_or(0.0)},
      curves);
  if (status != 0) {
    const RimTrouble trouble = explain_Rim(options.method, status);
    throw RunError(std::string("the rim could not be traced: ") + trouble.reason + " (status " +
                   std::to_string(status) + "). " + trouble.advice);
  }
  answer.curves = place_Curves(part.mesh, answer.area, answer.frame, std::move(curves));
  return answer;
}

int run_Rim(const RimOptions& options, std::ostream& out, std::ostream& err) {
  const Part part = read_Part(options.part);
  note_Unread(
      options.settings, [&](const Parameter& p) { return is_ReadByRim(options.method, p); },
      "the rim", err);
  OutputFolder folder(options.folder, {"rim.ply", "rim.json", "rim.pol"});
  const auto start = std::chrono::steady_clock::now();
  RimAnswer answer = find_Rim(options, part);
  answer.elapsed_ms = since_Ms(start);
  write_RimPly(folder.file(0), part, answer);
  for (size_t i = 0; i < answer.curves.size(); ++i) {
    write_Curve(folder.file(2), pad_Number(i), answer.curves[i].placed);
  }
  hand_Over(
      folder, make_RimJson(part, options, answer), options.json, out,
      [&] { write_RimTable(out, part, options, answer); }, ", " + folder.path(2).string());
  return kDone;
}

}  // namespace undercut::host
