// The two checks of indices that stand before every read through them.
#include "interface/call_frame.h"

namespace undercut {

bool ok_Vertices(const T3DMSH& msh) {
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    const T3DTRI& tri = msh.tri[t];
    if (tri.a >= msh.n_vtx || tri.b >= msh.n_vtx || tri.c >= msh.n_vtx) return false;
  }
  return true;
}

bool ok_Triangles(const TLst<uint32_t>& lst, uint32_t n_tri) {
  for (uint32_t i = 0; lst.data && i < lst.count; ++i) {
    if (lst.data[i] >= n_tri) return false;
  }
  return true;
}

bool ok_Regions(const TLst<TLst<uint32_t>>& regions, uint32_t n_tri) {
  for (uint32_t k = 0; regions.data && k < regions.capacity; ++k) {
    if (!ok_Triangles(regions.data[k], n_tri)) return false;
  }
  return true;
}

}  // namespace undercut
