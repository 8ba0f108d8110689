// What every call of the library with a mesh begins and ends with.
#pragma once

#include <undercut/exports.h>

#include "geometry.h"

namespace undercut::host {

// A view of a mesh, which must outlive it. Its pointers are not const, but the library never writes
// what a host owns.
inline T3DMSH view_Mesh(const Mesh& mesh) {
  return {const_cast<T3DVEC*>(mesh.vertices.data()), static_cast<uint32_t>(mesh.vertices.size()),
          const_cast<T3DTRI*>(mesh.triangles.data()), static_cast<uint32_t>(mesh.triangles.size())};
}

inline TUcReq make_Request(const Mesh& mesh) {
  TUcReq request{};
  ini_Req(&request);
  request.msh = view_Mesh(mesh);
  return request;
}

// The records of axes, each told as the direction of the tool.
inline std::vector<T3DRAY> make_Rays(const std::vector<T3DVEC>& axes) {
  std::vector<T3DRAY> rays;
  rays.reserve(axes.size());
  for (const T3DVEC& axis : axes) rays.push_back({{0, 0, 0}, axis});
  return rays;
}

// Throws RunError for a status other than 0; `what` tells what the library could not do.
void check_Status(int32_t status, const char* what);

}  // namespace undercut::host
