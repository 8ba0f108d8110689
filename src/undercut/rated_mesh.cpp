#include "undercut/rated_mesh.h"

#include "foundation/arrays.h"
#include "foundation/parallel.h"

namespace undercut {

bool CRatedMsh::prepare(const T3DMSH& mesh) {
  clear();
  // The tree comes first because it finds vertex indices out of range.
  if (!tree.Prepare(mesh)) return false;
  nml = new_Zeroed<T3DVEC>(mesh.n_tri);
  area = new_Zeroed<double>(mesh.n_tri);
  sight = new_Zeroed<uint8_t>(mesh.n_tri);
  if (!nml || !area || !sight) {
    clear();
    return false;
  }
  each_Index(mesh.n_tri, [&](uint32_t t) {
    const T3DFAC f = get_Fac(mesh, t);
    if (is_Flat(f)) return;
    area[t] = area_Tri(f);
    nml[t] = nml_Tri(f);
  });
  msh = mesh;
  return true;
}

void CRatedMsh::clear() {
  msh = {};
  eye.clear();
  tree.Clear();
  free_Array(nml);
  free_Array(area);
  free_Array(sight);
  nml = nullptr;
  area = nullptr;
  sight = nullptr;
}

}  // namespace undercut
