#include "files/outline.h"

#include <algorithm>

#include "files/elements.h"
#include "mesh/boundary.h"
#include "mesh/weld.h"

namespace undercut {

namespace {

// In rising order, each number once. The array keeps its room.
void sort_Unique(TArr<uint32_t>& numbers) {
  std::sort(numbers.data, numbers.data + numbers.count);
  const uint32_t* end = std::unique(numbers.data, numbers.data + numbers.count);
  numbers.count = static_cast<uint32_t>(end - numbers.data);
}

uint32_t position(const TArr<uint32_t>& sorted, uint32_t number) {
  const uint32_t* first = sorted.data;
  return static_cast<uint32_t>(std::lower_bound(first, first + sorted.count, number) - first);
}

}  // namespace

bool COutline::copy_Tris(const T3DMSH& msh, const TArr<uint32_t>& tris) {
  if (tris.count > kNone / 3) return false;
  Scoped<TArr<uint32_t>> vertices;
  if (!alloc(*vertices, 3 * tris.count)) return false;
  for (uint32_t i = 0; i < tris.count; ++i) {
    const T3DTRI& tri = msh.tri[tris.data[i]];
    if (!ok_Corners(msh, tri)) return false;
    for (uint32_t k = 0; k < 3; ++k) vertices->data[3 * i + k] = corner(tri, k);
  }
  sort_Unique(*vertices);

  if (!alloc_Msh(*msh_, vertices->count, tris.count)) return false;
  for (uint32_t v = 0; v < vertices->count; ++v) msh_->vtx[v] = msh.vtx[vertices->data[v]];
  for (uint32_t i = 0; i < tris.count; ++i) {
    const T3DTRI& tri = msh.tri[tris.data[i]];
    msh_->tri[i] = {position(*vertices, tri.a), position(*vertices, tri.b),
                    position(*vertices, tri.c)};
  }
  return true;
}

bool COutline::init(const T3DMSH& msh, const TLst<uint32_t>& ids) {
  if (!is_Usable(msh) || is_Empty(ids)) return false;
  Scoped<TArr<uint32_t>> tris;
  if (!alloc(*tris, ids.count)) return false;
  std::copy(ids.data, ids.data + ids.count, tris->data);
  sort_Unique(*tris);
  if (!copy_Tris(msh, *tris)) return false;

  CBitVector all;
  if (!all.init(msh_->n_tri)) return false;
  all.set_All();
  return bnd_Own(*msh_, all, *edges_) == 0 && edges_->count != 0;
}

bool COutline::loops(TArr<TArr<T3DVEC>>& out) {
  Scoped<TArr<TArr<uint32_t>>> chains;
  if (!bnd_Loops(*msh_, *edges_, *chains) || !alloc(out, chains->count)) return false;
  for (uint32_t i = 0; i < chains->count; ++i) {
    const TArr<uint32_t>& chain = chains->data[i];
    if (!alloc(out.data[i], chain.count)) return false;
    for (uint32_t k = 0; k < chain.count; ++k) out.data[i].data[k] = msh_->vtx[chain.data[k]];
  }
  return true;
}

bool COutline::edges(T3DPOL& out) {
  if (!alloc_Pol(out, msh_->n_vtx, edges_->count)) return false;
  std::copy(msh_->vtx, msh_->vtx + msh_->n_vtx, out.pnt);
  std::copy(edges_->data, edges_->data + edges_->count, out.sgm);
  return wld_Pol(out);
}

}  // namespace undercut
