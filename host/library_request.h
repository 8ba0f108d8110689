// What every call of the library with a mesh begins and ends with.
#pragma once

#include <undercut/exports.h>

#include <vector>

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

// A view of a list of triangles, which must outlive it; without an array for an empty one, which
// the library takes for the whole mesh.
inline TLstU32 view_List(const std::vector<uint32_t>& triangles) {
  const auto count = static_cast<uint32_t>(triangles.size());
  if (count == 0) return {};
  return {const_cast<uint32_t*>(triangles.data()), count, count};
}

// The same for several lists.
inline std::vector<TLstU32> view_Lists(const std::vector<std::vector<uint32_t>>& lists) {
  std::vector<TLstU32> views;
  views.reserve(lists.size());
  for (const std::vector<uint32_t>& list : lists) views.push_back(view_List(list));
  return views;
}

// A view of points, which must outlive it.
inline TArrVec view_Points(const std::vector<T3DVEC>& points) {
  return {const_cast<T3DVEC*>(points.data()), static_cast<uint32_t>(points.size())};
}

// Names the regions of a request: views that must outlive it.
inline void set_Regions(TUcReq& request, std::vector<TLstU32>& views) {
  const auto count = static_cast<uint32_t>(views.size());
  request.cav = {views.data(), count, count};
}

// A request for what axes do with the listed triangles, which must outlive it like the mesh. Each
// axis is told as the direction of the tool.
struct AxesRequest {
  std::vector<T3DRAY> rays;
  TUcReq request;

  AxesRequest(const Mesh& mesh, const std::vector<T3DVEC>& axes,
              const std::vector<uint32_t>& triangles)
      : request(make_Request(mesh)) {
    rays.reserve(axes.size());
    for (const T3DVEC& axis : axes) rays.push_back({{0, 0, 0}, axis});
    request.axi = {rays.data(), static_cast<uint32_t>(rays.size())};
    request.roi = view_List(triangles);
  }
  AxesRequest(const AxesRequest&) = delete;
  AxesRequest& operator=(const AxesRequest&) = delete;
};

// Throws RunError for a status other than 0; `what` tells what the library could not do.
void check_Status(int32_t status, const char* what);

}  // namespace undercut::host
