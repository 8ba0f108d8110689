#include "axis_calls.h"

#include "capture.h"
#include "library_request.h"
#include "library_result.h"

namespace undercut::host {

std::vector<bool> find_Hidden(const Mesh& mesh, const std::vector<T3DVEC>& axes,
                              const std::vector<uint32_t>& triangles) {
  // The library takes a list without an array for the whole mesh.
  if (triangles.empty()) return std::vector<bool>(mesh.triangles.size(), false);
  const AxesRequest asked(mesh, axes, triangles);
  LibraryResult result;
  Capture capture;
  check_Status(get_UCs(&asked.request, &result.record), "tell what the axes see");
  const uint8_t* const bytes = result.record.ucs;
  return std::vector<bool>(bytes, bytes + mesh.triangles.size());
}

}  // namespace undercut::host
