#include "undercut/joined_mesh.h"

#include <algorithm>

namespace undercut {

bool join_Meshes(const TArr<T3DMSH>& meshes, T3DMSH& out) {
  uint64_t n_vtx = 0, n_tri = 0;
  for (uint32_t i = 0; i < meshes.count; ++i) {
    if (!is_Usable(meshes.data[i])) continue;
    n_vtx += meshes.data[i].n_vtx;
    n_tri += meshes.data[i].n_tri;
  }
  if (n_tri == 0 || n_vtx > UINT32_MAX || n_tri > UINT32_MAX) return false;
  if (!alloc_Msh(out, static_cast<uint32_t>(n_vtx), static_cast<uint32_t>(n_tri))) return false;
  T3DVEC* vtx = out.vtx;
  T3DTRI* tri = out.tri;
  for (uint32_t i = 0; i < meshes.count; ++i) {
    const T3DMSH part = meshes.data[i];
    if (!is_Usable(part)) continue;
    const auto up = static_cast<uint32_t>(vtx - out.vtx);
    vtx = std::copy(part.vtx, part.vtx + part.n_vtx, vtx);
    for (uint32_t t = 0; t < part.n_tri; ++t)
      *tri++ = {part.tri[t].a + up, part.tri[t].b + up, part.tri[t].c + up};
  }
  return true;
}

}  // namespace undercut
