#include "surface.h"

#include <ostream>

#include <nlohmann/json.hpp>

#include "errors.h"
#include "table_parts.h"
#include "text.h"

namespace undercut::host {

Roi read_Together(const std::vector<std::filesystem::path>& paths, const Part& part) {
  if (paths.empty()) return whole_Roi(part);
  Roi all;
  std::vector<bool> known(part.mesh.triangles.size(), false);
  for (const Roi& roi : read_Rois(paths, part)) {
    all.source += (all.source.empty() ? "" : ", ") + roi.source;
    all.repeated += roi.repeated;
    for (const uint32_t triangle : roi.triangles) {
      if (known[triangle]) {
        ++all.repeated;
        continue;
      }
      known[triangle] = true;
      all.triangles.push_back(triangle);
    }
  }
  return all;
}

std::vector<Part> read_Parts(const std::vector<std::filesystem::path>& paths) {
  std::vector<Part> parts;
  parts.reserve(paths.size());
  for (const auto& path : paths) parts.push_back(read_Part(path));
  return parts;
}

Mesh join_Meshes(const Mesh& first, const std::vector<Part>& others) {
  Mesh joined = first;
  for (const Part& other : others) {
    if (joined.triangles.size() + other.mesh.triangles.size() > kMostTriangles) {
      throw InputError(other.path + ": with this mesh there are too many triangles. Reduce it.");
    }
    const auto base = static_cast<uint32_t>(joined.vertices.size());
    joined.vertices.insert(joined.vertices.end(), other.mesh.vertices.begin(),
                           other.mesh.vertices.end());
    for (const T3DTRI& t : other.mesh.triangles) {
      joined.triangles.push_back({base + t.a, base + t.b, base + t.c});
    }
  }
  return joined;
}

std::vector<T3DVEC> turn_Round(const std::vector<T3DVEC>& axes) {
  std::vector<T3DVEC> tools;
  tools.reserve(axes.size());
  for (const T3DVEC& axis : axes) tools.push_back(-1.0 * axis);
  return tools;
}

Json show_Extent(const Extent& extent, double whole) {
  return {
      {"count", extent.count}, {"area", extent.area}, {"share", find_Share(extent.area, whole)}};
}

Json show_Region(const Roi& roi, const Extent& extent) {
  return {{"source", roi.source},
          {"count", extent.count},
          {"repeated", roi.repeated},
          {"area", extent.area}};
}

Json show_Parts(const std::vector<Part>& parts) {
  Json list = Json::array();
  for (const Part& part : parts) list.push_back(show_Input(part));
  return list;
}

void write_Shadow(std::ostream& out, const Part& part, const std::vector<Part>& others,
                  const std::vector<Setting>& settings, const Roi& roi, const Extent& region) {
  write_Part(out, part);
  for (const Part& other : others) {
    out << "against ";
    write_Part(out, other);
  }
  write_Settings(out, settings);
  out << "Region of interest (" << roi.source
      << "): " << count_Word(region.count, "triangle", "triangles") << ", "
      << fixed_Text(region.area, 3) << " mm2\n";
  if (roi.repeated > 0) {
    out << "  " << count_Word(roi.repeated, "repeated entry", "repeated entries")
        << " of the list left out.\n";
  }
}

}  // namespace undercut::host
