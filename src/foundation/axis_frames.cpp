#include "foundation/axis_frames.h"

#include <cmath>

namespace undercut {

bool frm_Axis(const T3DRAY& axis, T3DFRM& frm) {
  const T3DVEC& d = axis.dir;
  if (!std::isfinite(d.x) || !std::isfinite(d.y) || !std::isfinite(d.z)) return false;
  frm = frm_Ray(axis);
  return true;
}

int32_t mat_Axes(const TArr<T3DRAY>& axi, TArr<T3DMAT>& out) {
  if (!alloc(out, axi.data ? axi.count : 0)) return -5;
  for (uint32_t k = 0; k < out.count; ++k) {
    T3DFRM frm;
    if (!frm_Axis(axi.data[k], frm)) return -6;
    frm_ToMat(out.data[k], frm);
  }
  return 0;
}

}  // namespace undercut
