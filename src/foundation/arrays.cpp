// Allocation of the views of meshes and polylines, and the check of their indices.
#include "foundation/arrays.h"

#include <cstring>

#include "foundation/parallel.h"

namespace undercut {

namespace {

template <typename Pol>
bool alloc_Segments(Pol& pol, uint32_t n_pnt, uint32_t n_sgm) {
  pol = {};
  if (n_pnt == 0 || n_sgm == 0) return false;
  pol.pnt = new_Zeroed<std::remove_pointer_t<decltype(pol.pnt)>>(n_pnt);
  pol.sgm = new_Zeroed<T3DSGM>(n_sgm);
  if (!pol.pnt || !pol.sgm) return false;
  pol.n_pnt = n_pnt;
  pol.n_sgm = n_sgm;
  return true;
}

}  // namespace

void clear_Bytes(void* data, uint64_t count) {
  constexpr uint32_t kBlock = 1u << 16, kFewBlocks = 16;
  each_Block(
      count, kBlock,
      [&](uint64_t first, uint64_t end) {
        std::memset(static_cast<uint8_t*>(data) + first, 0, end - first);
      },
      kFewBlocks);
}

bool alloc_Msh(T3DMSH& msh, uint32_t n_vtx, uint32_t n_tri) {
  msh = {};
  if (n_vtx == 0 || n_tri == 0) return true;
  msh.vtx = new_Zeroed<T3DVEC>(n_vtx);
  msh.tri = new_Zeroed<T3DTRI>(n_tri);
  if (!msh.vtx || !msh.tri) return false;
  msh.n_vtx = n_vtx;
  msh.n_tri = n_tri;
  return true;
}

bool ok_Vertices(const T3DMSH& msh) {
  return holds_All(msh.n_tri, [&](uint32_t t) { return ok_Corners(msh, msh.tri[t]); });
}

bool alloc_Pol(T3DPOL& pol, uint32_t n_pnt, uint32_t n_sgm) {
  return alloc_Segments(pol, n_pnt, n_sgm);
}

bool alloc_Pol(T2DPOL& pol, uint32_t n_pnt, uint32_t n_sgm) {
  return alloc_Segments(pol, n_pnt, n_sgm);
}

bool flat_Pol(const T3DPOL& src, T2DPOL& dst) {
  if (!src.pnt || !src.sgm) {
    dst = {};
    return false;
  }
  if (!alloc_Pol(dst, src.n_pnt, src.n_sgm)) return false;
  for (uint32_t i = 0; i < src.n_pnt; ++i) dst.pnt[i] = {src.pnt[i].x, src.pnt[i].y};
  std::memcpy(dst.sgm, src.sgm, src.n_sgm * sizeof(T3DSGM));
  return true;
}

}  // namespace undercut
