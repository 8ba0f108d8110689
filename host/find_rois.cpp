#include "find_rois.h"

#include <algorithm>
#include <map>
#include <utility>

#include "axis_calls.h"
#include "edges.h"
#include "flat_faces.h"
#include "search_calls.h"
#include "surface.h"

namespace undercut::host {
namespace {

// Directions of flat faces that are looked along, and the part's area that each has at least: on
// the free-form surface of a tooth there is none.
constexpr size_t kFaceNormals = 6;
constexpr double kFaceShare = 0.01;

double measure_Seen(const Part& part, const std::vector<uint32_t>& triangles,
                    const std::vector<bool>& hidden) {
  return measure(part.mesh, triangles, [&](uint32_t i) { return !hidden[i]; }).area;
}

// An axis, what neither of its ends sees, and the area that they see.
struct Look {
  T3DVEC axis{};
  std::vector<bool> hidden;
  double seen = 0.0;
};

Look look_Along(const Part& part, const std::vector<uint32_t>& triangles, const T3DVEC& axis) {
  Look look{axis, find_Hidden(part.mesh, {axis, -1.0 * axis}, triangles), 0.0};
  look.seen = measure_Seen(part, triangles, look.hidden);
  return look;
}

// Up is the end that sees more: the tool moves down.
T3DVEC turn_Up(const Part& part, const std::vector<uint32_t>& triangles, const T3DVEC& axis) {
  const T3DVEC down = -1.0 * axis;
  const double above = measure_Seen(part, triangles, find_Hidden(part.mesh, {down}, triangles));
  const double below = measure_Seen(part, triangles, find_Hidden(part.mesh, {axis}, triangles));
  return above < below ? down : axis;
}

}  // namespace

std::vector<MarkedPatch> list_Patches(const Mesh& mesh, const std::vector<bool>& marked) {
  const auto count = static_cast<uint32_t>(mesh.triangles.size());
  std::vector<bool> taken(count, false);
  for (uint32_t i = 0; i < count; ++i) {
    taken[i] = marked[i] && !has_EqualCorners(mesh.triangles[i]) && area_Tri(mesh, i) > 0.0;
  }
  Groups groups = join_Marked(list_Edges(mesh), taken);
  // The leader of a group is its lowest triangle, so the patches come in the order of those.
  std::map<uint32_t, MarkedPatch> found;
  for (uint32_t i = 0; i < count; ++i) {
    if (!taken[i]) continue;
    MarkedPatch& patch = found[groups.find(i)];
    patch.triangles.push_back(i);
    patch.area += area_Tri(mesh, i);
  }
  std::vector<MarkedPatch> patches;
  patches.reserve(found.size());
  for (auto& [leader, patch] : found) patches.push_back(std::move(patch));
  std::stable_sort(patches.begin(), patches.end(),
                   [](const MarkedPatch& a, const MarkedPatch& b) { return a.area > b.area; });
  return patches;
}

Search search_Rois(const Part& part, double min_area) {
  const Roi whole = whole_Roi(part);
  Search search;
  for (const uint32_t triangle : whole.triangles) search.area += area_Tri(part.mesh, triangle);
  search.min_area = min_area < 0.0 ? kSmallestShare * search.area : min_area;
  const T3DFRM frame = search_ThreeAxis(part.mesh, {}).frame;
  Look best = look_Along(part, whole.triangles, unit_Vec(frame.z));
  for (const T3DVEC& normal : list_FaceNormals(part.mesh, kFaceNormals, kFaceShare)) {
    Look look = look_Along(part, whole.triangles, normal);
    if (look.seen <= best.seen) continue;
    best = std::move(look);
    search.from_face = true;
  }
  search.axis = search.from_face ? turn_Up(part, whole.triangles, best.axis) : best.axis;
  for (MarkedPatch& patch : list_Patches(part.mesh, best.hidden)) {
    search.undercut += patch.area;
    search.triangles += patch.triangles.size();
    if (patch.area < search.min_area) {
      ++search.dropped;
      search.dropped_area += patch.area;
      search.dropped_triangles.insert(search.dropped_triangles.end(), patch.triangles.begin(),
                                      patch.triangles.end());
    } else {
      search.patches.push_back({"undercut patch", std::move(patch.triangles), 0});
    }
  }
  std::sort(search.dropped_triangles.begin(), search.dropped_triangles.end());
  return search;
}

std::vector<Setting> add_SearchSettings(const std::vector<Setting>& settings) {
  std::vector<Setting> all;
  for (const char* text : {"dcm.n_con=3", "err.f_gew=1"}) {
    const Setting setting = parse_Setting(text);
    const auto same = [&](const Setting& s) { return s.parameter == setting.parameter; };
    if (std::none_of(settings.begin(), settings.end(), same)) all.push_back(setting);
  }
  all.insert(all.end(), settings.begin(), settings.end());
  return all;
}

bool is_ReadBySearch(const Parameter& parameter) {
  const std::string name = parameter.name();
  return name.starts_with("amo.") || name.starts_with("nxn.") || name == "err.f_gew" ||
         name == "ucs.f_tol" || name == "ucs.f_dil";
}

}  // namespace undercut::host
