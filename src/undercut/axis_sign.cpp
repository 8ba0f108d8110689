#include "undercut/axis_sign.h"

#include <utility>

#include "foundation/box.h"

namespace undercut {

namespace {

void sort_ByZ(T3DFAC& f) {
  if (f.a.z > f.b.z) std::swap(f.a, f.b);
  if (f.a.z > f.c.z) std::swap(f.a, f.c);
  if (f.b.z > f.c.z) std::swap(f.b, f.c);
}

}  // namespace

bool is_Reversed(const T3DMSH& msh, const T3DFRM& frm, const CBitVector& seen) {
  C3DAABB box;
  box.from_Points(msh.vtx, msh.n_vtx, frm);
  const double bottom = box.min.z, height = box.max.z - box.min.z;
  double below = 0.0, above = 0.0;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    if (!seen.test(t)) continue;
    const T3DFAC world = get_Fac(msh, t);
    if (is_Flat(world)) continue;
    T3DFAC f = to_Local(frm, world);
    sort_ByZ(f);
    const double area = area_Tri(T2DVEC{f.a.x, f.a.y}, T2DVEC{f.b.x, f.b.y}, T2DVEC{f.c.x, f.c.y});
    const double prism = area * (f.a.z - bottom);
    below += prism;
    above += area * height - prism;
  }
  return below < above;
}

}  // namespace undercut
