#include "region_file.h"

#include <nlohmann/json.hpp>

#include "errors.h"
#include "number_file.h"

namespace undercut::host {
namespace {

T3DVEC read_Vec(const Json& json) {
  return {json.at(0).get<double>(), json.at(1).get<double>(), json.at(2).get<double>()};
}

NamedRegion read_Region(const Json& json, const std::string& path, size_t triangles) {
  NamedRegion region;
  region.roi.source = "region " + std::to_string(json.at("number").get<uint32_t>());
  region.axis = unit_Vec(read_Vec(json.at("axis")));
  const double length = len_Vec(region.axis);
  if (!(length > 0.5 && length < 2.0)) {
    throw InputError(path + ": the axis of " + region.roi.source + " has no direction.");
  }
  std::vector<bool> known(triangles, false);
  for (const Json& entry : json.at("triangles")) {
    const auto triangle = entry.get<int64_t>();
    if (triangle < 0 || static_cast<uint64_t>(triangle) >= triangles) {
      throw InputError(path + ": " + region.roi.source + " names triangle " +
                       std::to_string(triangle) + ", but the part has triangles 0 to " +
                       std::to_string(triangles - 1) + ".");
    }
    if (known[static_cast<size_t>(triangle)]) {
      ++region.roi.repeated;
      continue;
    }
    known[static_cast<size_t>(triangle)] = true;
    region.roi.triangles.push_back(static_cast<uint32_t>(triangle));
  }
  return region;
}

std::vector<Setting> read_Bands(const Json& parameters) {
  std::vector<Setting> bands;
  for (const Parameter& parameter : all_Parameters()) {
    const auto value = parameters.find(parameter.name());
    if (value == parameters.end() || !is_Band(parameter)) continue;
    bands.push_back({&parameter, parse_Value(parameter, value->dump())});
  }
  return bands;
}

}  // namespace

bool is_Band(const Parameter& parameter) {
  const std::string name = parameter.name();
  return name == "dcm.n_con" || name.starts_with("dcm.a_th") || name.starts_with("dcm.b_th");
}

RegionFile read_Regions(const std::filesystem::path& path, const Part& part) {
  const Json document = read_Document(path);
  RegionFile file;
  try {
    const size_t count = part.mesh.triangles.size();
    if (document.at("input").at("triangles").get<size_t>() != count) {
      throw InputError(path.string() + ": its part has " +
                       document.at("input").at("triangles").dump() + " triangles, but " +
                       part.path + " has " + std::to_string(count) +
                       ". Name the part that it was made from.");
    }
    file.bands = read_Bands(document.at("parameters"));
    file.up = read_Vec(document.at("preparation").at("up"));
    for (const Json& roi : document.at("regions_of_interest")) {
      for (const Json& region : roi.at("regions")) {
        file.regions.push_back(read_Region(region, path.string(), count));
      }
    }
  } catch (const UsageError& error) {
    throw InputError(path.string() + ": a parameter in it is wrong. " + error.what());
  } catch (const Json::exception&) {
    throw InputError(path.string() +
                     ": this is no regions.json of 'undercut decompose'. Name one, or regions by "
                     "--roi.");
  }
  return file;
}

}  // namespace undercut::host
