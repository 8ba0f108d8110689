#include "registered_mesh.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "errors.h"
#include "library_request.h"
#include "library_result.h"

namespace undercut::host {
namespace {

double find_Far(const Mesh& mesh) {
  double far = 1.0;
  for (const T3DVEC& v : mesh.vertices) {
    for (const double value : {v.x, v.y, v.z}) far = std::fmax(far, std::fabs(value));
  }
  return far;
}

// The crossing that the library finds nearest to the origin (det_Prj). It passes over triangles
// whose box lies behind the origin, and over those whose box is flat and holds it.
std::optional<T3DVEC> find_Crossing(const T3DRAY& line) {
  constexpr int32_t kMissed = -7;
  T3DVEC point{};
  const int32_t status = det_Prj(&line, &point);
  if (status == kMissed) return std::nullopt;
  check_Status(status, "meet the mesh with a line");
  return point;
}

// A request for a tool that follows a corridor past an obstacle, which must outlive it.
struct CorridorRequest : AxesRequest {
  CorridorRequest(const Mesh& obstacle, const T3DRAY& ray, const std::vector<T3DVEC>& axes)
      : AxesRequest({}, axes, {}) {
    request.ray = ray;
    request.msh_c = view_Mesh(obstacle);
  }
};

}  // namespace

RegisteredMesh::RegisteredMesh(const Mesh& mesh) : near_(1e-7 * find_Far(mesh)) {
  const T3DMSH view = view_Mesh(mesh);
  const int32_t status = ini_Adt(&view);
  if (status != 0) clr_Dll();
  check_Status(status, "register the mesh");
  const uint32_t got = count();
  if (got == mesh.triangles.size()) return;
  clr_Dll();
  throw RunError("the library registered " + std::to_string(got) + " of " +
                 std::to_string(mesh.triangles.size()) + " triangles of the mesh.");
}

RegisteredMesh::~RegisteredMesh() { clr_Dll(); }

uint32_t RegisteredMesh::count() const {
  uint32_t triangles = 0;
  cnt_Tri(&triangles);
  return triangles;
}

uint32_t RegisteredMesh::count_Shaded() const {
  TLstU32 list{};
  check_Status(get_Shd(&list), "list the shaded triangles");
  const uint32_t shaded = list.count;
  clr_Sub(&list);
  return shaded;
}

std::optional<T3DVEC> RegisteredMesh::meet_Here(const T3DRAY& line) const {
  const T3DVEC start = line.org - near_ * line.dir;
  std::optional<T3DVEC> met = find_Crossing({start, line.dir});
  if (met && len_Vec(*met - start) > 2.0 * near_) met.reset();
  return met;
}

bool RegisteredMesh::touches(const T3DRAY& line) const { return meet_Here(line).has_value(); }

std::optional<T3DVEC> RegisteredMesh::meet_Line(const T3DRAY& line) const {
  const std::optional<T3DVEC> ahead = find_Crossing(line);
  const std::optional<T3DVEC> behind = find_Crossing({line.org, -1.0 * line.dir});
  const auto measure = [&](const std::optional<T3DVEC>& met) {
    return met ? len_Vec(*met - line.org) : std::numeric_limits<double>::infinity();
  };
  const std::optional<T3DVEC>& nearer = measure(behind) < measure(ahead) ? behind : ahead;
  if (measure(nearer) <= near_) return nearer;
  const std::optional<T3DVEC> here = meet_Here(line);
  return here ? here : nearer;
}

std::vector<uint32_t> RegisteredMesh::pick_Slabs(const T3DRAY& ray,
                                                 const std::vector<T3DVEC>& axes) const {
  AxesRequest asked({}, axes, {});
  asked.request.ray = ray;
  check_Status(det_Roi(&asked.request), "pick the triangles of the corridor");
  // A view of what the library keeps.
  TLstU32 list{};
  get_Roi(&list);
  return copy_List(list);
}

std::vector<bool> RegisteredMesh::find_Blocked(const Mesh& obstacle, const T3DRAY& ray,
                                               const std::vector<T3DVEC>& axes) const {
  const CorridorRequest asked(obstacle, ray, axes);
  LibraryResult result;
  check_Status(get_UCd(&asked.request, &result.record), "tell what is blocked at some pose");
  const uint8_t* const bytes = result.record.ucs;
  return std::vector<bool>(bytes, bytes + count());
}

std::vector<uint32_t> RegisteredMesh::list_NeverSeen(const Mesh& obstacle, const T3DRAY& ray,
                                                     const std::vector<T3DVEC>& axes) const {
  const CorridorRequest asked(obstacle, ray, axes);
  LibraryResult result;
  check_Status(get_UCc(&asked.request, &result.record), "tell what is blocked at every pose");
  // Not a frame here, but a view of what the library keeps.
  TLstU32 list{};
  std::memcpy(&list, &result.record.frm_a, sizeof list);
  return copy_List(list);
}

}  // namespace undercut::host
