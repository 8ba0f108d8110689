// Components by breadth-first search, and vertices that are no manifold points.
#include "mesh/components.h"

#include "mesh/edge_counts.h"
#include "mesh/flood.h"

namespace undercut {

namespace {

// The components one after the other, each as it was found, and where each begins.
struct TSearch {
  Scoped<TArr<uint8_t>> waiting;  // by triangle: in the set and not found yet
  Scoped<TArr<uint32_t>> order, starts;
};

// Stores the components, each against the order of the search: it ends with its seed.
bool store_Components(TSearch& search, uint32_t count, TLst<TLst<uint32_t>>& out) {
  if (!alloc(out, count)) return false;
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t first = search.starts->data[i];
    const uint32_t end = i + 1 < count ? search.starts->data[i + 1] : search.order->count;
    TLst<uint32_t>& component = out.data[i];
    if (!alloc(component, end - first)) {
      release(out);
      return false;
    }
    for (uint32_t k = end; k > first; --k)
      component.data[component.count++] = search.order->data[k - 1];
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

bool cmp_Adj(const T3DMSH& msh, const TAdj& tri_tri, const CBitVector& set,
             TLst<TLst<uint32_t>>& out) {
  reset(out);
  if (!is_Usable(msh) || set.size() != msh.n_tri || !tri_tri.lists || !tri_tri.counts) return false;
  TSearch search;
  const uint32_t members = static_cast<uint32_t>(set.count());
  if (!set.to_Bytes(*search.waiting) || !alloc(*search.order, members) ||
      !alloc(*search.starts, members))
    return false;
  uint32_t end = 0, count = 0;
  for (uint32_t t = 0; t < msh.n_tri; ++t) {
    if (!search.waiting->data[t]) continue;
    search.starts->data[count++] = end;
    end = flood_Patch(tri_tri, t, search.waiting->data, search.order->data, end);
  }
  return store_Components(search, count, out);
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
