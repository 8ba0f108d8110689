// Rays and lines against every triangle of a mesh in turn: what the tree's queries must answer.
#pragma once

#include <vector>

#include "foundation/primitives.h"

namespace reference {

inline bool reaches_Box(const T3DRAY& ray, const undercut::T3DFAC& f) {
  undercut::C3DAABB box;
  box.from_Tri(f);
  return undercut::hit_Box(ray, box);
}

inline bool any_Hit(const T3DMSH& msh, const T3DRAY& ray) {
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const undercut::T3DFAC f = undercut::get_Fac(msh, t);
    if (reaches_Box(ray, f) && undercut::hit_Tri(ray, f)) return true;
  }
  return false;
}

// Triangles on the whole line, among those whose box the ray reaches; by rising index.
inline std::vector<uint32_t> on_Line(const T3DMSH& msh, const T3DRAY& ray) {
  std::vector<uint32_t> found;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const undercut::T3DFAC f = undercut::get_Fac(msh, t);
    const T3DRAY back = {ray.org, -ray.dir};
    if (reaches_Box(ray, f) && (undercut::hit_Tri(ray, f) || undercut::hit_Tri(back, f)))
      found.push_back(t);
  }
  return found;
}

}  // namespace reference
