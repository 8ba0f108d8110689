// Lays closed curves along the edges of a mesh.
//
// The library walks from vertex to vertex wherever that brings it nearer to the next point of a
// curve. On coarse meshes such a walk ends beside the curve, or runs along the foot of a wall. So
// the command finds the way of each curve itself, and hands over the vertices of the way, which the
// library's walk then follows as they are.
#pragma once

#include <cstdint>
#include <vector>

#include "curve_file.h"

namespace undercut::host {

class CurvePaths {
 public:
  // The mesh must outlive the object.
  explicit CurvePaths(const Mesh& mesh);

  // A loop of different vertices, each joined to the next by an edge: from the vertex nearest to a
  // point to that nearest to the next, on the way that is short and near to the curve (E. Dijkstra
  // 1959). Where the way meets itself, that of its loops is kept that encloses the most in the
  // sense in which the curve runs. Empty where the points lie on pieces of the mesh that are not
  // connected, and where no loop of three vertices is left.
  std::vector<uint32_t> lay(const Curve& curve);

 private:
  uint32_t find_Nearest(const T3DVEC& point) const;
  bool add_Way(uint32_t from, uint32_t to, const T3DVEC& a, const T3DVEC& b,
               std::vector<uint32_t>& path);
  std::vector<uint32_t> keep_Main(const std::vector<uint32_t>& path, const T3DVEC& aim) const;

  const Mesh& mesh_;
  std::vector<uint32_t> by_x_;   // vertices of triangles, by rising x
  std::vector<uint32_t> first_;  // for each vertex the first of its neighbours, and their end
  std::vector<uint32_t> neighbours_;
  // Of the search that last met a vertex.
  std::vector<uint32_t> search_, before_;
  std::vector<double> cost_;
  uint32_t searches_ = 0;
};

}  // namespace undercut::host
