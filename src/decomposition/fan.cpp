// The fan round a candidate: the triangles that a region would close in if it took it.
//
// A candidate that meets the region along one edge only opens a notch at each end of that edge. The
// walk goes round both ends, over the triangles between the candidate and the next border of the
// region, so that the candidate is judged by how it would close the notch.
#include "decomposition/candidates.h"

namespace undercut {

namespace {

// Appends to scratch A, and marks; false if it is full.
bool push_Fan(CMap& map, int32_t triangle) {
  TLst<uint32_t>& fan = map.scratch_a;
  if (fan.count == fan.capacity) return false;
  fan.data[fan.count++] = static_cast<uint32_t>(triangle);
  map.mark.set(static_cast<uint32_t>(triangle));
  return true;
}

// The edge of a triangle that leads on round the pivot, the first of its three: one end is the
// pivot, the other is not the vertex that the walk came by, and takes its place. 3 if there is
// none.
uint32_t edge_On(const T3DTRI& tri, uint32_t pivot, uint32_t& came_by) {
  const uint32_t ends[4] = {tri.a, tri.b, tri.c, tri.a};
  for (uint32_t k = 0; k < 3; ++k) {
    const uint32_t p = ends[k], q = ends[k + 1];
    if (p == pivot && q != came_by) {
      came_by = q;
      return k;
    }
    if (q == pivot && p != came_by) {
      came_by = p;
      return k;
    }
  }
  return 3;
}

// From the candidate through its edge k, round the pivot, up to the region, the border of the mesh
// or of the region of interest. On a mesh that is no surface the walk may not come back: scratch A
// bounds it.
bool walk_Round(CMap& map, uint32_t start, uint32_t k, uint32_t pivot, uint32_t last, int32_t id) {
  uint32_t at = start;
  for (;;) {
    const int32_t to = map.slots[at][k];
    if (to == -1 || map.region_of[to] == id || map.region_of[to] == -1) return true;
    if (!push_Fan(map, to)) return false;
    at = static_cast<uint32_t>(to);
    k = edge_On(map.msh.tri[at], pivot, last);
    if (k == 3) return true;
  }
}

}  // namespace

bool walk_Fan(CMap& map, uint32_t triangle, int32_t id) {
  map.mark.clear_All();
  map.scratch_a.count = 0;
  if (map.region_of[triangle] == id) return false;
  uint32_t touching = 0, k = 0;
  for (uint32_t slot = 0; slot < 3; ++slot) {
    const int32_t nb = map.slots[triangle][slot];
    if (nb == -1 || map.region_of[nb] != id) continue;
    ++touching;
    k = slot;
  }
  if (touching == 0) return false;
  push_Fan(map, static_cast<int32_t>(triangle));
  if (touching >= 2) return true;  // the candidate alone
  const T3DTRI& tri = map.msh.tri[triangle];
  const uint32_t p = corner(tri, k), q = corner(tri, k + 1), o = corner(tri, k + 2);
  return walk_Round(map, triangle, (k + 2) % 3, p, o, id) &&
         walk_Round(map, triangle, (k + 1) % 3, q, o, id);
}

bool sum_Fan(const CMap& map, int32_t id, double& shared, double& other) {
  shared = other = 0;
  for (uint32_t i = 0; i < map.scratch_a.count; ++i) {
    const uint32_t t = map.scratch_a.data[i];
    const T3DTRI& tri = map.msh.tri[t];
    for (uint32_t k = 0; k < 3; ++k) {
      const int32_t nb = map.slots[t][k];
      if (nb == -1 || map.mark.test(static_cast<uint32_t>(nb))) continue;
      const double edge = dst(map.msh.vtx[corner(tri, k)], map.msh.vtx[corner(tri, k + 1)]);
      (map.region_of[nb] == id ? shared : other) += edge;
    }
  }
  return true;
}

}  // namespace undercut
