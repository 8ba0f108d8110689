// Components by breadth-first search, and vertices that are no manifold points.
#include "mesh/components.h"

#include "mesh/edge_counts.h"
#include "mesh/flood.h"

namespace undercut {

namespace {

// Stores the components, each against the order of the search: it ends with its seed.
bool store_Components(TComponents& found, TLst<TLst<uint32_t>>& out) {
  const uint32_t count = found.count();
  if (!alloc(out, count)) return false;
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t first = found.first(i), end = found.end(i);
    TLst<uint32_t>& component = out.data[i];
    if (!alloc(component, end - first)) {
      release(out);
      return false;
    }
    for (uint32_t k = end; k > first; --k)
      component.data[component.count++] = found.order->data[k - 1];
  }
  out.count = count;
  return true;
}

// Raises the count of each vertex that shares an edge with v. True if v is no manifold point.
bool count_Around(const T3DMSH& msh, const TAdj& vtx_tri, uint32_t v, uint32_t* shared) {
  bool bow = false;
  for (uint32_t i = 0; i < vtx_tri.counts[v]; ++i) {
    const T3DTRI& tri = msh.tri[vtx_tri.lists[v][i]];
    bow = bow || is_Flat(tri);
    each_Corner(tri, [&](uint32_t w) {
      if (w != v && ++shared[w] > 2) bow = true;
    });
  }
  return bow;
}

}  // namespace

bool find_Components(const TAdj& tri_tri, const CBitVector& set, TComponents& out) {
  const auto members = static_cast<uint32_t>(set.count());
  if (!set.to_Bytes(*out.waiting) || !alloc(*out.order, members) || !alloc(*out.starts, members))
    return false;
  uint32_t end = 0, count = 0;
  for (uint32_t t = 0; t < out.waiting->count; ++t) {
    if (!out.waiting->data[t]) continue;
    out.starts->data[count++] = end;
    end = flood_Patch(tri_tri, t, out.waiting->data, out.order->data, end);
  }
  out.starts->count = count;
  return true;
}

bool cmp_Adj(const T3DMSH& msh, const TAdj& tri_tri, const CBitVector& set,
             TLst<TLst<uint32_t>>& out) {
  reset(out);
  if (!is_Usable(msh) || set.size() != msh.n_tri || !tri_tri.lists || !tri_tri.counts) return false;
  TComponents found;
  return find_Components(tri_tri, set, found) && store_Components(found, out);
}

bool cmp_Own(const T3DMSH& msh, const CBitVector& set, TLst<TLst<uint32_t>>& out) {
  reset(out);
  if (!is_Usable(msh) || set.size() != msh.n_tri) return false;
  Scoped<TAdj> tri_tri;
  return adj_TriTri(msh, *tri_tri) == 0 && cmp_Adj(msh, *tri_tri, set, out);
}

bool vtx_Bow(const T3DMSH& msh, CBitVector& vertices, const TAdj& vtx_tri) {
  vertices.release();
  if (!is_Usable(msh) || !vtx_tri.lists || !vtx_tri.counts) return false;
  Scoped<TArr<uint32_t>> shared;
  if (!alloc(*shared, msh.n_vtx) || !vertices.init(msh.n_vtx)) return false;
  for (uint32_t v = 0; v < msh.n_vtx; ++v) {
    if (count_Around(msh, vtx_tri, v, shared->data)) vertices.set(v);
    for (uint32_t i = 0; i < vtx_tri.counts[v]; ++i)
      each_Corner(msh.tri[vtx_tri.lists[v][i]], [&](uint32_t w) { shared->data[w] = 0; });
  }
  return true;
}

}  // namespace undercut
