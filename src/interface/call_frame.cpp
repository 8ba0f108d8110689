// The checks of indices that stand before every read through them.
#include "interface/call_frame.h"

#include "foundation/parallel.h"

namespace undercut {

bool ok_Triangles(const TLst<uint32_t>& lst, uint32_t n_tri) {
  return !lst.data || holds_All(lst.count, [&](uint32_t i) { return lst.data[i] < n_tri; });
}

bool ok_Regions(const TLst<TLst<uint32_t>>& regions, uint32_t n_tri) {
  for (uint32_t k = 0; regions.data && k < regions.capacity; ++k) {
    if (!ok_Triangles(regions.data[k], n_tri)) return false;
  }
  return true;
}

}  // namespace undercut
