// Parts with overhangs of which the answers are known, and a plain computation of what an axis
// sees.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "host/geometry.h"
#include "host/part.h"

namespace undercut::host {

// A box whose faces are squares of side 1 in halves; corners are whole numbers.
inline Soup make_Box(const T3DVEC& low, const T3DVEC& high) {
  Soup corners;
  // The face that starts at `a` and runs along u and v, which turn to its outer side.
  const auto add_Face = [&](const T3DVEC& a, const T3DVEC& u, const T3DVEC& v, double n, double m) {
    for (double i = 0; i < n; ++i) {
      for (double j = 0; j < m; ++j) {
        const T3DVEC p = a + i * u + j * v;
        corners.insert(corners.end(), {p, p + u, p + u + v, p, p + u + v, p + v});
      }
    }
  };
  const T3DVEC x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1}, d = high - low;
  add_Face(low, y, x, d.y, d.x);
  add_Face(low, x, z, d.x, d.z);
  add_Face(low, z, y, d.z, d.y);
  add_Face(high, -1.0 * x, -1.0 * y, d.x, d.y);
  add_Face(high, -1.0 * z, -1.0 * x, d.z, d.x);
  add_Face(high, -1.0 * y, -1.0 * z, d.y, d.z);
  return corners;
}

inline Soup join_Soups(Soup a, const Soup& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// A plate of 10 by 10, and one of 10 by 5 that floats above its half with y below 5.
inline Soup make_Lower() { return make_Box({0, 0, 0}, {10, 10, 1}); }
inline Soup make_Upper() { return make_Box({0, 0, 4}, {10, 5, 5}); }
inline Soup make_Plates() { return join_Soups(make_Lower(), make_Upper()); }

inline Part make_Part(const Soup& corners) {
  Part part{"a part", weld_Corners(corners), 0, {}};
  return part;
}

// The triangles whose centre passes a test, one a line.
template <typename Test>
std::string list_Centres(const Mesh& mesh, const Test& test) {
  std::string text;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    if (test(centre_Tri(mesh, i))) text += std::to_string(i) + "\n";
  }
  return text;
}

// A ray meets a triangle ahead of its start, from either side (T. Moeller, B. Trumbore, Fast,
// Minimum Storage Ray/Triangle Intersection, 1997).
inline bool meets(const T3DVEC& start, const T3DVEC& way, const Mesh& mesh, uint32_t triangle) {
  const T3DTRI& t = mesh.triangles[triangle];
  const T3DVEC a = mesh.vertices[t.a], u = mesh.vertices[t.b] - a, v = mesh.vertices[t.c] - a;
  const T3DVEC p = cross_Vec(way, v);
  const double volume = dot_Vec(u, p);
  if (volume == 0.0) return false;
  const T3DVEC s = start - a, q = cross_Vec(s, u);
  const double k = dot_Vec(s, p) / volume, m = dot_Vec(way, q) / volume;
  return k >= 0.0 && m >= 0.0 && k + m <= 1.0 && dot_Vec(v, q) / volume >= 0.0;
}

// A ray from a triangle's centre, lifted by a thousandth, leaves the mesh along an axis.
inline bool sees_Axis(const Mesh& mesh, uint32_t triangle, const T3DVEC& axis) {
  const T3DTRI& t = mesh.triangles[triangle];
  const T3DVEC a = mesh.vertices[t.a];
  const T3DVEC n = unit_Vec(cross_Vec(mesh.vertices[t.b] - a, mesh.vertices[t.c] - a));
  const T3DVEC start = centre_Tri(mesh, triangle) + 0.001 * n;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) {
    if (meets(start, axis, mesh, i)) return false;
  }
  return true;
}

inline double area_Mesh(const Mesh& mesh) {
  double area = 0.0;
  for (uint32_t i = 0; i < mesh.triangles.size(); ++i) area += area_Tri(mesh, i);
  return area;
}

// The property of a triangle in a PLY of the command that has one value of `size` bytes at its end.
inline std::string load_Value(const std::string& ply, const Mesh& mesh, size_t triangle,
                              size_t size) {
  const size_t body = ply.find("end_header\n") + 11 + 24 * mesh.vertices.size();
  return ply.substr(body + triangle * (16 + size) + 16, size);
}

}  // namespace undercut::host
