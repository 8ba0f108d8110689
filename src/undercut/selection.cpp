#include "undercut/selection.h"

#include "mesh/curve_cut.h"

namespace undercut {

int32_t sel_Bits(const T3DMSH& msh, const TLst<uint32_t>& roi, const TArrArrVec& curves,
                 CBitVector& sel) {
  sel.release();
  if (roi.data && !sel.from_Lst(roi, msh.n_tri)) return -7;
  if (!curves.data || curves.count == 0) return 0;
  Scoped<TLst<TLst<uint32_t>>> sides;
  if (crv_Cut(msh, curves, *sides) != 0) return -8;
  if (!sel.is_Valid() && !sel.init(msh.n_tri)) return -8;
  const TLst<uint32_t>& inside = sides->data[1];
  for (uint32_t i = 0; i < inside.count; ++i) sel.set(inside.data[i]);
  return 0;
}

void clear_Outside(const CBitVector& sel, TArr<double>& values) {
  if (!sel.is_Valid()) return;
  for (uint32_t t = 0; t < values.count; ++t)
    if (!sel.test(t)) values.data[t] = 0.0;
}

}  // namespace undercut
