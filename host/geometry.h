// Meshes of the command and the little vector arithmetic that it needs. Lengths in mm.
#pragma once

#include <undercut/exports.h>

#include <cmath>
#include <cstdint>
#include <vector>

namespace undercut::host {

// Corners of triangles, three in a row, in the order of the file.
using Soup = std::vector<T3DVEC>;

struct Mesh {
  std::vector<T3DVEC> vertices;
  std::vector<T3DTRI> triangles;
};

inline T3DVEC operator+(const T3DVEC& a, const T3DVEC& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline T3DVEC operator-(const T3DVEC& a, const T3DVEC& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline T3DVEC operator*(double f, const T3DVEC& a) { return {f * a.x, f * a.y, f * a.z}; }

inline double dot_Vec(const T3DVEC& a, const T3DVEC& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline T3DVEC cross_Vec(const T3DVEC& a, const T3DVEC& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double len_Vec(const T3DVEC& a) { return std::sqrt(dot_Vec(a, a)); }
inline T3DVEC unit_Vec(const T3DVEC& a) {
  const double length = len_Vec(a);
  return length > 0.0 ? T3DVEC{a.x / length, a.y / length, a.z / length} : a;
}

// What is told in a frame, in the coordinates that the frame is told in.
inline T3DVEC place_Point(const T3DFRM& frame, const T3DVEC& p) {
  return frame.org + p.x * frame.x + p.y * frame.y + p.z * frame.z;
}

inline bool is_Finite(const T3DVEC& a) {
  return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

// Two of the corners are the same vertex.
inline bool has_EqualCorners(const T3DTRI& t) { return t.a == t.b || t.b == t.c || t.c == t.a; }

inline double area_Tri(const Mesh& mesh, uint32_t triangle) {
  const T3DTRI& t = mesh.triangles[triangle];
  const T3DVEC& a = mesh.vertices[t.a];
  return 0.5 * len_Vec(cross_Vec(mesh.vertices[t.b] - a, mesh.vertices[t.c] - a));
}

inline T3DVEC centre_Tri(const Mesh& mesh, uint32_t triangle) {
  const T3DTRI& t = mesh.triangles[triangle];
  return (1.0 / 3.0) * (mesh.vertices[t.a] + mesh.vertices[t.b] + mesh.vertices[t.c]);
}

}  // namespace undercut::host
