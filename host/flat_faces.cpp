// Normals fall into the cells of a grid; each cell gets the sum of their areas. Coordinates in
// single precision spread the normals of one plane far less than a cell, so a face is split only
// where it lies at the border of cells, and then its larger half still tells its direction.
#include "flat_faces.h"

#include <algorithm>
#include <array>
#include <map>

namespace undercut::host {
namespace {

constexpr double kCells = 1000.0;  // along a unit vector

// The one of two opposite vectors whose first coordinate that is not 0 in the grid is positive.
T3DVEC fold_Vec(const T3DVEC& v, std::array<int64_t, 3>& cell) {
  const auto sign = [&] {
    for (const int64_t k : cell) {
      if (k != 0) return k > 0;
    }
    return true;
  };
  if (sign()) return v;
  for (int64_t& k : cell) k = -k;
  return -1.0 * v;
}

}  // namespace

std::vector<T3DVEC> list_FaceNormals(const Mesh& mesh, size_t most, double share) {
  double whole = 0.0;                              // doubled area
  std::map<std::array<int64_t, 3>, T3DVEC> faces;  // sums of unit normals times doubled areas
  for (const T3DTRI& t : mesh.triangles) {
    const T3DVEC& a = mesh.vertices[t.a];
    const T3DVEC normal = cross_Vec(mesh.vertices[t.b] - a, mesh.vertices[t.c] - a);
    const double length = len_Vec(normal);
    if (!(length > 0.0) || !std::isfinite(length)) continue;
    const T3DVEC unit = unit_Vec(normal);
    std::array<int64_t, 3> cell{std::llround(kCells * unit.x), std::llround(kCells * unit.y),
                                std::llround(kCells * unit.z)};
    const T3DVEC folded = fold_Vec(normal, cell);
    whole += length;
    T3DVEC& sum = faces[cell];
    sum = sum + folded;
  }
  std::vector<T3DVEC> sums;
  for (const auto& [cell, sum] : faces) {
    if (len_Vec(sum) >= share * whole) sums.push_back(sum);
  }
  std::stable_sort(sums.begin(), sums.end(),
                   [](const T3DVEC& a, const T3DVEC& b) { return len_Vec(a) > len_Vec(b); });
  if (sums.size() > most) sums.resize(most);
  for (T3DVEC& sum : sums) sum = unit_Vec(sum);
  return sums;
}

}  // namespace undercut::host
