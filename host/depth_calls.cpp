#include "depth_calls.h"

#include <limits>

#include "capture.h"
#include "library_request.h"
#include "library_result.h"

namespace undercut::host {

std::vector<double> find_Depths(const Mesh& mesh, const std::vector<T3DVEC>& axes,
                                const std::vector<uint32_t>& triangles,
                                const std::vector<Mesh>& others, std::string& printed) {
  std::vector<double> depths(mesh.triangles.size(), std::numeric_limits<double>::quiet_NaN());
  // The library takes a list without an array for the whole mesh.
  if (triangles.empty()) return depths;
  std::vector<T3DMSH> shadows;
  shadows.reserve(others.size());
  for (const Mesh& other : others) shadows.push_back(view_Mesh(other));
  AxesRequest asked(mesh, axes, triangles);
  asked.request.msh_b = {shadows.data(), static_cast<uint32_t>(shadows.size())};
  LibraryResult result;
  Capture capture;
  const int32_t status = others.empty() ? get_dFi(&asked.request, &result.record)
                                        : get_dFb(&asked.request, &result.record);
  printed += capture.finish();
  check_Status(status, "tell the depths");
  for (const uint32_t triangle : triangles) {
    const double depth = result.record.dfi[triangle];
    if (depth < std::numeric_limits<double>::max()) depths[triangle] = depth;
  }
  return depths;
}

}  // namespace undercut::host
