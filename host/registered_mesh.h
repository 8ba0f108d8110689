// The library's registered mesh, which lives as long as the object.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "geometry.h"

namespace undercut::host {

class RegisteredMesh {
 public:
  // Only one may live at a time. Throws RunError, also where the library has not all triangles.
  explicit RegisteredMesh(const Mesh& mesh);
  RegisteredMesh(const RegisteredMesh&) = delete;
  RegisteredMesh& operator=(const RegisteredMesh&) = delete;
  ~RegisteredMesh();

  // How many triangles the library has (cnt_Tri).
  uint32_t count() const;

  // How many triangles are shaded (get_Shd): none as yet, since nothing shades one. Throws
  // RunError.
  uint32_t count_Shaded() const;

  // Where a line meets the mesh nearest to its origin, ahead or behind; of equally near places the
  // one ahead. The direction is a unit vector. Throws RunError.
  std::optional<T3DVEC> meet_Line(const T3DRAY& line) const;

  // The origin lies on the mesh, as measured along the line, but for rounding. Throws RunError.
  bool touches(const T3DRAY& line) const;

  // The triangles that reach into a slab for each axis, round the plane through the ray that holds
  // the axis (det_Roi), as they are first met. Reads con.f_wid. Throws RunError.
  std::vector<uint32_t> pick_Slabs(const T3DRAY& ray, const std::vector<T3DVEC>& axes) const;

  // What a tool cannot reach that follows slabs round the plane through the ray that holds the axis
  // of a pose; an axis is told as the direction in which the tool moves. Both read con.f_wid and
  // ucs.f_tol. Throw RunError.
  //
  // For each triangle whether the obstacle blocks it in the slab of some pose (get_UCd).
  std::vector<bool> find_Blocked(const Mesh& obstacle, const T3DRAY& ray,
                                 const std::vector<T3DVEC>& axes) const;
  // The triangles in the slab of the last pose that the obstacle blocks at every pose in whose slab
  // they lie (get_UCc). One with two equal corners is among them.
  std::vector<uint32_t> list_NeverSeen(const Mesh& obstacle, const T3DRAY& ray,
                                       const std::vector<T3DVEC>& axes) const;

 private:
  // Where a line meets the mesh right at its origin.
  std::optional<T3DVEC> meet_Here(const T3DRAY& line) const;

  double near_ = 0.0;  // mm; what lies closer together is one place
};

}  // namespace undercut::host
