// What the command does to a mesh before the library sees it, so that real parts go through.
//
// The library fails a region of interest where rounding drives a measure out of its range. That
// happens on surfaces in special position: flat faces seen squarely, needles, doubled triangles. So
// the command hands over a copy of the mesh that is in general position, far below any tolerance,
// and in which such triangles are nobody's neighbours. Triangle numbers are translated back.
#pragma once

#include <cstdint>
#include <vector>

#include "geometry.h"

namespace undercut::host {

struct PrepareRules {
  T3DVEC up{0.0, 0.0, 1.0};    // the machine's Z in the file's coordinates
  double displacement = 1e-4;  // of a corner, as a share of its shortest edge; 0 for none
  double needle = 1e-3;        // largest height of a needle as a share of its longest edge; 0: none
  bool cut = true;             // part the triangles where the mesh is no surface
  double max_edge = 0.0;       // longer edges are split; 0 for none
};

// A rotation: rows x, y, z.
struct Rotation {
  T3DVEC x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};

  T3DVEC turn(const T3DVEC& v) const { return {dot_Vec(x, v), dot_Vec(y, v), dot_Vec(z, v)}; }
  T3DVEC turn_Back(const T3DVEC& v) const { return v.x * x + v.y * y + v.z * z; }
};

struct Prepared {
  Mesh mesh;                     // in the machine's coordinates
  std::vector<uint32_t> origin;  // for each of its triangles that of the file, never descending
  std::vector<bool> apart;       // for each of its triangles: nobody's neighbour, to be left out
  Rotation rotation;             // from the file's coordinates to the machine's
  // For each vertex where it rests, how far it may be displaced on each axis, and the vertex that
  // it is a copy of: copies go where that goes.
  std::vector<T3DVEC> rest;
  std::vector<double> reach;
  std::vector<uint32_t> root;
};

// The shortest rotation that takes `up`, not zero, to Z. Turns by right angles are exact.
Rotation rotate_Up(const T3DVEC& up);

// Brings the mesh into a general position: each vertex is moved as far as it may be, in a direction
// that hangs on its root and on the number of the position alone.
void place_Vertices(Prepared& prepared, uint32_t position);

// Triangles whose height over their longest edge is not above `share` of that edge, and those that
// have the same three corners as an earlier one.
std::vector<bool> find_Awkward(const Mesh& mesh, double share);

// Gives each triangle marked vertices of its own, at the same places.
void set_Apart(Mesh& mesh, const std::vector<bool>& marked);

Prepared prepare_Mesh(const Mesh& mesh, const PrepareRules& rules);

// The mesh as it is.
Prepared keep_Plain(const Mesh& mesh);

}  // namespace undercut::host
